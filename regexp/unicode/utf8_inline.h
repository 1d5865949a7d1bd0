// regexp/unicode/utf8_inline.h - inline fronts of the UTF-8 reading
// operations for the matcher's per-character loops.
//
// Each handles ASCII on the spot and hands everything else to the function it
// stands for (regexp/regexp_record.h), so results are those of that function
// for every input; tests/unicode/utf8_reading_test.cpp compares them over all
// codes. Use them where a loop runs once per subject byte or character.
#pragma once

#include <cstdint>

#include "regexp/regexp_record.h"

inline int32_t ownDecodeUtf8Inline(const uint8_t* place, int64_t left, int32_t* code) {
    if (left > 0 && place[0] < 0x80) {
        *code = place[0];
        return 1;
    }
    return ownDecodeUtf8(place, left, code);
}

inline int32_t ownUtf8LengthInline(const uint8_t* place, int64_t left) {
    if (left > 0 && place[0] < 0x80) {
        return 1;
    }
    return ownUtf8Length(place, left);
}

// In ASCII only A to Z have a lowercase mapping.
inline int32_t ownFoldCaseInline(int32_t code) {
    if (static_cast<uint32_t>(code) < 0x80) {
        return (code >= 'A' && code <= 'Z') ? code + 0x20 : code;
    }
    return ownFoldCase(code);
}
