// regexp/replace/replace_record.h - layout of RegExpReplaceState.
//
// A parsed replacement template is one block the caller sizes with
// zevsRegExpReplaceGetSize (12 x strlen(template) + 12 bytes on every build):
//
//   offset 0   segmentCount   uint32, written only when parsing succeeds
//   offset 4   base           the template's address (memcpy'd; 8 bytes on a
//                             64-bit build, 4 bytes and 4 unused on 32-bit);
//                             null after a null template
//   offset 12  segments       three 32-bit words each, in template order
//
// A segment is {kind, value, offset}: kind SegmentLiteral or SegmentGroup;
// value the literal's length in bytes or the group number (0 = whole match);
// offset the literal's first byte counted from `base`, unused for a group.
// Literals are not copied, so the record stays 12 bytes per template byte on
// 32-bit and 64-bit builds alike and the caller's template must outlive it.
//
// A template of n bytes yields at most n segments (a segment always consumes
// at least one byte), which is what the size rule covers.
#pragma once

#include <cstdint>
#include <cstring>

#include "zevch.h"

// The numbers of NodeString and NodeBackRef, as the record has always used.
constexpr uint32_t SegmentLiteral = 0x10000001u;
constexpr uint32_t SegmentGroup   = 0x10000002u;

struct ReplaceSegment {
    uint32_t kind;
    int32_t  value;
    uint32_t offset;
};
static_assert(sizeof(ReplaceSegment) == 12, "a segment is three 32-bit words");

constexpr int32_t ReplaceHeaderSize = 12;
constexpr int32_t ReplaceBytesPerTemplateByte = 12;
static_assert(sizeof(const char*) <= 8, "the base pointer must fit in 8 bytes of header");

inline uint32_t ownReplaceSegmentCount(const RegExpReplaceState* state) {
    uint32_t count;
    std::memcpy(&count, state, sizeof(count));
    return count;
}

inline const char* ownReplaceBase(const RegExpReplaceState* state) {
    const char* base;
    std::memcpy(&base, reinterpret_cast<const uint8_t*>(state) + 4, sizeof(base));
    return base;
}

// The segment array is only 4-byte aligned in general; segments are read and
// written through memcpy.
inline ReplaceSegment ownReplaceSegment(const RegExpReplaceState* state, uint32_t index) {
    ReplaceSegment s;
    std::memcpy(&s, reinterpret_cast<const uint8_t*>(state) + ReplaceHeaderSize + 12u * index,
                sizeof(s));
    return s;
}
