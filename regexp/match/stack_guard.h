// regexp/match/stack_guard.h - how deep the matcher's recursion may go on the
// calling thread.
//
// The interpreter recurses once per consumed node, so the call stack is the
// backtrack stack. A search with a raised match limit could run out of stack
// on a long subject; instead, the search takes the lowest address its
// recursion may reach at start, and the interpreter ends the search with the
// match-limit status when a frame would go below it (see interpreter.cpp).
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
