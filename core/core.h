// core/core.h - the library frame's internal interface.
//
// The memory wrappers over the platform allocator, the thread count of the
// parallel search, and the copy, move and zero primitives that the string
// families and the regular-expression services share. Nothing here is
// exported; see zevch.map for the exported names.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zevch.h"

// Platform layer (core/platform.cpp): the contract of the vendor's core
// support library, implemented here on top of the C runtime and OpenMP.
void*   zevMalloc(int32_t size);
void    zevFree(void* block);
int32_t ownGetNumThreads(void);
// Test hook: a value above 0 makes ownGetNumThreads return it; 0 restores the
// runtime's own answer. Not exported from the shared library.
void    ownSetNumThreadsOverride(int32_t threads);

// Memory wrappers (core/memory.cpp).
void* ownMalloc(int32_t size);   // size below 1: null, the platform is not called
void  ownFree(void* block);      // hands any pointer on, null included

// Raw primitives: forward copy without overlap handling and zero fill, both
// aligning the destination to 4 bytes and then working in 32-byte blocks.
// A count below 1 does nothing. Both return the destination.
void* ownCopyBytes(const void* src, void* dst, int32_t count);
void* ownZeroBytes(void* dst, int32_t count);

// Checked primitives. Source first, destination second. A null pointer gives
// zevStatusNullPointer, a count below 1 zevStatusBadSize with nothing written;
// callers ignore that status, so an empty piece never needs a check.
zevStatus ownCopy_8u (const uint8_t*  src, uint8_t*  dst, int32_t count);
zevStatus ownCopy_16u(const uint16_t* src, uint16_t* dst, int32_t count);
zevStatus ownMove_8u (const uint8_t*  src, uint8_t*  dst, int32_t count);
zevStatus ownMove_16u(const uint16_t* src, uint16_t* dst, int32_t count);
zevStatus ownZero_8u (uint8_t* dst, int32_t count);

// Width-generic spellings for the templates of strings/: ownCopy<T> and
// ownMove<T> pick the _8u or _16u primitive by element type.
template <typename T> inline zevStatus ownCopy(const T* src, T* dst, int32_t count);
template <> inline zevStatus ownCopy<uint8_t>(const uint8_t* s, uint8_t* d, int32_t n) { return ownCopy_8u(s, d, n); }
template <> inline zevStatus ownCopy<uint16_t>(const uint16_t* s, uint16_t* d, int32_t n) { return ownCopy_16u(s, d, n); }
template <typename T> inline zevStatus ownMove(const T* src, T* dst, int32_t count);
template <> inline zevStatus ownMove<uint8_t>(const uint8_t* s, uint8_t* d, int32_t n) { return ownMove_8u(s, d, n); }
template <> inline zevStatus ownMove<uint16_t>(const uint16_t* s, uint16_t* d, int32_t n) { return ownMove_16u(s, d, n); }

// Above this many bytes a move between disjoint ranges uses the platform's
// bulk copy (memcpy); at or below it the plain loops run.
constexpr int32_t BulkCopyThreshold = 3200;

// Test hook for the move path taken; counts calls of the bulk copy. Only the
// tests read it.
int32_t ownBulkCopyCount(void);
// Used by the in-place trims as well as by ownMove_*: counts, then memcpy.
void ownBulkCopy(const void* src, void* dst, size_t bytes);
