// strings/strings_internal.h - what the string families share among
// themselves: the argument-check helpers, the forward character scan that the
// split functions run, and the 16-bit case table with its two lookups.
// Nothing here is exported.
#pragma once

#include <cstdint>

#include "zevch.h"

// True when any of the pointers is null; the checks of every family start so.
template <typename... P>
inline bool ownAnyNull(const P*... p) {
    return ((p == nullptr) || ...);
}

// Index of the first element equal to c in src[0, len), or -1. len >= 0.
// The same scan as zevsFindC_8u/_16u without their argument checks.
int32_t ownScanC(const uint8_t* src, int32_t len, uint8_t c);
int32_t ownScanC(const uint16_t* src, int32_t len, uint16_t c);

// Membership in a set of elements, as a bitmap for bytes and by walking the
// set for 16-bit units. Callers walk the string and ask per element, so the
// order and repeats of the set never change a result.
template <typename T>
struct SetTest;

template <>
struct SetTest<uint8_t> {
    uint32_t bits[8] = {};
    SetTest(const uint8_t* set, int32_t setLen) {
        for (int32_t i = 0; i < setLen; ++i) bits[set[i] >> 5] |= 1u << (set[i] & 31);
    }
    bool operator()(uint8_t c) const { return (bits[c >> 5] >> (c & 31)) & 1u; }
};

template <>
struct SetTest<uint16_t> {
    const uint16_t* set;
    int32_t setLen;
    SetTest(const uint16_t* s, int32_t n) : set(s), setLen(n) {}
    bool operator()(uint16_t c) const {
        for (int32_t j = 0; j < setLen; ++j)
            if (set[j] == c) return true;
        return false;
    }
};

// Three-level case table over all 65536 16-bit codes (strings/case.cpp).
// Level 1 is indexed by code >> 6 and holds the start of a 64-entry block of
// level 2; the level-2 entry at (start | code & 63) indexes level 3, whose
// 32-bit entry has bit 20 "has an uppercase mapping", bit 21 "has a lowercase
// mapping" and a signed 10-bit delta in bits 22..31 (lower = code + delta,
// upper = code - delta, both cut to 16 bits).
struct CaseTable {
    uint16_t level1[1024];
    uint8_t  level2[122 * 64];
    uint32_t level3[128];
};
extern const CaseTable ownCaseTable;

constexpr uint32_t CaseHasUpper = 1u << 20;
constexpr uint32_t CaseHasLower = 1u << 21;

inline uint32_t ownCaseEntry(uint16_t c) {
    return ownCaseTable.level3[ownCaseTable.level2[ownCaseTable.level1[c >> 6] | (c & 63)]];
}
inline int32_t ownCaseDelta(uint32_t entry) { return static_cast<int32_t>(entry) >> 22; }

inline uint16_t ownCaseLower16(uint16_t c) {
    const uint32_t e = ownCaseEntry(c);
    return (e & CaseHasLower) ? static_cast<uint16_t>(c + ownCaseDelta(e)) : c;
}
inline uint16_t ownCaseUpper16(uint16_t c) {
    const uint32_t e = ownCaseEntry(c);
    return (e & CaseHasUpper) ? static_cast<uint16_t>(c - ownCaseDelta(e)) : c;
}
