// psregexpmulti/multi.cpp - a set of compiled patterns searched in one call.
//
// Call order: zevsRegExpMultiGetSize and a block of that size, then
// zevsRegExpMultiInit (or zevsRegExpMultiInitAlloc); zevsRegExpMultiAdd,
// Modify and Delete manage slots by caller-chosen non-zero ids; then any number
// of zevsRegExpMultiFind_8u calls. The set holds references only: the caller
// compiles, keeps alive and frees the patterns. Results are not compacted:
// record i of the caller's array belongs to slot i, and a free slot's record is
// left untouched.
//
// The find runs on the calling thread while the set has no more slots than the
// library has threads, and otherwise in one OpenMP region with a static
// division: contiguous blocks of slots, the remainder on the last thread. A
// search writes scratch tables inside its pattern, so in the parallel path no
// two slots may hold the same RegExpState.
//
// Tested by tests/multi/.
#ifdef _OPENMP
#include <omp.h>
#endif

#include "core/core.h"
#include "psregexpmulti/multi_internal.h"

namespace {

// Bytes of a set of n slots: the header, a pointer and an id per slot. On a
// 32-bit build that is 8 x n + 12, on x86-64 12 x n + 24.
uint64_t multiStateBytes(uint32_t maxPatterns) {
    return (sizeof(RegExpState*) + sizeof(uint32_t)) * static_cast<uint64_t>(maxPatterns) +
           sizeof(RegExpMultiState);
}

void initialise(RegExpMultiState* state, uint32_t maxPatterns) {
    uint8_t* block = reinterpret_cast<uint8_t*>(state);
    state->patterns = reinterpret_cast<RegExpState**>(block + sizeof(RegExpMultiState));
    state->ids = reinterpret_cast<uint32_t*>(block + sizeof(RegExpMultiState) +
                                             sizeof(RegExpState*) * static_cast<size_t>(maxPatterns));
    for (uint32_t i = 0; i < maxPatterns; ++i) {
        state->patterns[i] = nullptr;
        state->ids[i] = 0;
    }
    state->slotCount = maxPatterns;
}

// The lowest slot holding `id`, or slotCount.
uint32_t findSlot(const RegExpMultiState* state, uint32_t id) {
    uint32_t i = 0;
    while (i < state->slotCount && state->ids[i] != id) ++i;
    return i;
}

void runSlot(const uint8_t* src, int32_t srcLen, RegExpMultiResult* results,
             const RegExpMultiState* state, uint32_t slot) {
    RegExpState* pattern = state->patterns[slot];
    if (pattern == nullptr) return;
    RegExpMultiResult& r = results[slot];
    r.status = zevStatusOk;
    r.id = 0;
    r.done = 0;
    r.status = zevsRegExpFind_8u(src, srcLen, pattern, r.find, &r.findCount);
    r.id = state->ids[slot];
    r.done = 1;
}

}  // namespace

extern "C" zevStatus zevsRegExpMultiGetSize(uint32_t maxPatterns, uint32_t* size) {
    if (size == nullptr) return zevStatusNullPointer;
    if (maxPatterns == 0) return zevStatusBadSize;
    const uint64_t bytes = multiStateBytes(maxPatterns);
    // A set whose size does not fit the 32-bit answer cannot be described.
    if (bytes > UINT32_MAX) return zevStatusBadSize;
    *size = static_cast<uint32_t>(bytes);
    return zevStatusOk;
}

extern "C" zevStatus zevsRegExpMultiInit(RegExpMultiState* state, uint32_t maxPatterns) {
    if (state == nullptr) return zevStatusNullPointer;
    if (maxPatterns == 0) return zevStatusBadSize;
    initialise(state, maxPatterns);
    return zevStatusOk;
}

extern "C" zevStatus zevsRegExpMultiInitAlloc(RegExpMultiState** stateOut, uint32_t maxPatterns) {
    if (stateOut == nullptr) return zevStatusNullPointer;
    if (maxPatterns == 0) return zevStatusBadSize;
    const uint64_t bytes = multiStateBytes(maxPatterns);
    // The allocator takes a signed 32-bit size; a larger set is an allocation
    // that cannot succeed.
    RegExpMultiState* state =
        bytes > INT32_MAX ? nullptr : static_cast<RegExpMultiState*>(ownMalloc(static_cast<int32_t>(bytes)));
    *stateOut = state;
    if (state == nullptr) return zevStatusNullPointer;
    initialise(state, maxPatterns);
    return zevStatusOk;
}

extern "C" void zevsRegExpMultiFree(RegExpMultiState* state) { ownFree(state); }

extern "C" zevStatus zevsRegExpMultiAdd(RegExpState* pattern, uint32_t id, RegExpMultiState* state) {
    if (pattern == nullptr || state == nullptr) return zevStatusNullPointer;
    if (id == 0) return zevStatusBadId;
    uint32_t i = 0;
    while (i < state->slotCount && state->patterns[i] != nullptr) ++i;
    if (i == state->slotCount) return zevStatusTableFull;
    state->patterns[i] = pattern;
    state->ids[i] = id;
    return zevStatusOk;
}

extern "C" zevStatus zevsRegExpMultiModify(RegExpState* pattern, uint32_t id, RegExpMultiState* state) {
    if (pattern == nullptr || state == nullptr) return zevStatusNullPointer;
    if (id == 0) return zevStatusBadId;
    const uint32_t i = findSlot(state, id);
    if (i == state->slotCount) return zevStatusEntryNotFound;
    state->patterns[i] = pattern;
    return zevStatusOk;
}

extern "C" zevStatus zevsRegExpMultiDelete(uint32_t id, RegExpMultiState* state) {
    if (state == nullptr) return zevStatusNullPointer;
    if (id == 0) return zevStatusBadId;
    const uint32_t i = findSlot(state, id);
    if (i == state->slotCount) return zevStatusEntryNotFound;
    state->patterns[i] = nullptr;
    state->ids[i] = 0;
    return zevStatusOk;
}

extern "C" zevStatus zevsRegExpMultiFind_8u(const uint8_t* src, int32_t srcLen,
                                            RegExpMultiResult* results,
                                            const RegExpMultiState* state) {
    if (src == nullptr || state == nullptr || results == nullptr) return zevStatusNullPointer;
    if (srcLen < 1) return zevStatusBadSize;

    const uint32_t slotCount = state->slotCount;
    // The comparison counts slots, occupied or not.
    if (slotCount <= static_cast<uint32_t>(ownGetNumThreads())) {
        for (uint32_t i = 0; i < slotCount; ++i) runSlot(src, srcLen, results, state, i);
        return zevStatusOk;
    }

    // Written by the master thread only, read by all after the barrier.
    int32_t numThreads = 1;
    uint32_t chunk = 0;
    uint32_t remainder = 0;
#ifdef _OPENMP
#pragma omp parallel num_threads(ownGetNumThreads()) default(none) \
    shared(src, srcLen, results, state, slotCount, numThreads, chunk, remainder)
#endif
    {
#ifdef _OPENMP
#pragma omp master
#endif
        {
#ifdef _OPENMP
            numThreads = omp_get_num_threads();
#endif
            chunk = slotCount / static_cast<uint32_t>(numThreads);
            remainder = slotCount % static_cast<uint32_t>(numThreads);
        }
#ifdef _OPENMP
#pragma omp barrier
        const int32_t thread = omp_get_thread_num();
#else
        const int32_t thread = 0;
#endif
        uint32_t begin = 0;
        uint32_t end = 0;
        ownMultiThreadSlots(slotCount, numThreads, chunk, remainder, thread, &begin, &end);
        for (uint32_t i = begin; i < end; ++i) runSlot(src, srcLen, results, state, i);
#ifdef _OPENMP
#pragma omp barrier
#endif
    }
    return zevStatusOk;
}
