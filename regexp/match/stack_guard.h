// regexp/match/stack_guard.h - how deep the matcher's recursion may go on the
// calling thread.
//
// The interpreter recurses once per consumed node, so the call stack is the
// backtrack stack. A search with a raised match limit could run out of stack
// on a long subject; instead, the search takes the lowest address its
// recursion may reach at start, and the interpreter ends the search with the
// match-limit status when a frame would go below it (see interpreter.cpp).
//
// Depth per unit of budget (x86-64, -O2): every level of recursion has spent
// at least one unit. A repeated group costs about 130 bytes of stack per unit
// (two interpreter frames, an open and a close per iteration of two units),
// an atomic repeat about 80, a lazy item repeat inside a repeated group up to
// about 180. So the default limit of 10000 needs under 2 MB, and an 8 MB
// stack never ends a default search early.
#pragma once

#include <cstddef>

// Room kept free below the limit: the deepest chain of frames between two
// checks of the limit (a group close, a group open, a repeat matcher and the
// interpreter) plus whatever a signal handler or the C library may need.
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t StackGuardMargin = 256 * 1024;   // instrumented frames are several times larger
#else
constexpr size_t StackGuardMargin = 64 * 1024;
#endif

// Stack assumed below the current frame when the thread's bounds cannot be
// found or the search runs on a stack of its own making (a fiber).
constexpr size_t StackGuardFallbackBytes = 1024 * 1024;

// Lowest address the recursion of a search started here may reach.
const char* ownStackGuardLimit(void);

// Address of the caller's frame, the quantity compared with the limit.
#define OWN_STACK_HERE() (static_cast<const char*>(__builtin_frame_address(0)))
