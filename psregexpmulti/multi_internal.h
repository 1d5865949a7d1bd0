// psregexpmulti/multi_internal.h - the layout of RegExpMultiState and the
// static division of slots among the threads of the parallel find.
#pragma once

#include <cstdint>

#include "zevch.h"

// Three pointer-sized fields, then the pattern array (slotCount pointers) and
// the id array (slotCount 32-bit ids). The two pointers point into the block
// itself, so an initialised set must not be moved. A slot is free exactly when
// its pattern is null, and a free slot's id is 0.
struct RegExpMultiState {
    uint32_t      slotCount;
    RegExpState** patterns;
    uint32_t*     ids;
};
static_assert(sizeof(RegExpMultiState) == 3 * sizeof(void*),
              "header of three pointer-sized fields (12 bytes on 32-bit, 24 on 64-bit)");

// Slots [*begin, *end) of thread `thread` in a team of `numThreads`, given the
// master's chunk (slotCount / numThreads) and remainder: contiguous blocks of
// `chunk` slots, the whole remainder on the last thread, the end cut to
// slotCount.
inline void ownMultiThreadSlots(uint32_t slotCount, int32_t numThreads, uint32_t chunk,
                                uint32_t remainder, int32_t thread, uint32_t* begin,
                                uint32_t* end) {
    const uint64_t first = static_cast<uint64_t>(thread) * chunk;
    uint64_t last = first + chunk;
    if (thread == numThreads - 1) last += remainder;
    if (last > slotCount) last = slotCount;
    *begin = static_cast<uint32_t>(first < last ? first : last);
    *end = static_cast<uint32_t>(last);
}
