// regexp/unicode/utf8_reading.cpp - reading the subject as UTF-8 and the
// character checks of the matcher: decode, measure, fold case, test a
// category, a block or a script, read one grapheme cluster.
//
// Everything here is stateless and reads only the subject and the constant
// tables of unicode_tables.h. These run once per character in the matcher's
// inner loops, so each takes the shortest road its result allows: ASCII is
// decoded without a loop, and fold, category and cluster checks find a code's
// row or range row through the two-stage class table in two loads. The row
// search ownLookupChar (per-page index, then a binary search within the page)
// gives the same answers and is kept as the reference the tests hold the
// class table to.
//
// Tested by tests/unicode/utf8_reading_test.cpp and
// tests/unicode/ucd_exhaustive_test.cpp.

#include <bit>

#include "regexp/regexp_record.h"
#include "regexp/unicode/unicode_tables.h"

namespace {

// Per number of continuation bytes n: the payload bits of the lead byte and
// the largest code that a sequence of n + 1 bytes may carry.
constexpr uint8_t  LeadMask[6] = {0xFF, 0x1F, 0x0F, 0x07, 0x03, 0x01};
constexpr uint32_t LargestCode[6] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};

// Number of continuation bytes announced by a lead byte of 0x80 or above, or
// -1 for a byte that cannot lead (a continuation byte, 0xFE, 0xFF).
inline int32_t continuationCount(uint32_t lead) {
    int32_t ones = std::countl_one(static_cast<uint8_t>(lead));
    return (ones == 1 || ones >= 7) ? -1 : ones - 1;
}

// Where the data of `code` lies: 0 none (unassigned, negative, or above
// U+10FFFF), row + 1 for a CharTable row, CharClassRange + r for CharRanges
// row r. One answer for what the range scan and the row search give.
inline uint32_t charClass(int32_t code) {
    uint32_t u = static_cast<uint32_t>(code);
    if (u >= static_cast<uint32_t>(CharClassCodeSpace)) {
        return 0;
    }
    uint32_t block = CharClassIndex[u >> CharClassShift];
    return CharClassBlocks[(block << CharClassShift) | (u & ((1u << CharClassShift) - 1))];
}

inline bool isRowClass(uint32_t cls) { return cls != 0 && cls < CharClassRange; }

// Whether the row search finds a row at all: it does for every code up to the
// table's last one (a row with a higher code meaning "unassigned").
inline bool hasRowAtOrAbove(int32_t code) { return code <= CharTableLastCode; }

// +1 when the condition holds and negate is 0, or fails and negate is set;
// -1 otherwise. Without a branch: the outcome follows the text.
inline int32_t answer(bool condition, int32_t negate) {
    return 2 * static_cast<int32_t>(condition ^ (negate != 0)) - 1;
}

inline bool isMarkRow(uint32_t cls) {
    return (CharTable[cls - 1].flags & CategoryGroupMask) == CategoryMarkGroup;
}

}  // namespace

int32_t ownDecodeUtf8(const uint8_t* place, int64_t left, int32_t* code) {
    if (left <= 0) {
        return 0;
    }
    uint32_t lead = place[0];
    if (lead < 0x80) {
        *code = static_cast<int32_t>(lead);
        return 1;
    }
    // The two- and three-byte forms carry nearly all non-ASCII text; they
    // are spelled out, each byte read only when the one before it passed.
    if (lead >= 0xC2 && lead < 0xE0) {
        if (left < 2 || (place[1] & 0xC0) != 0x80) {
            return 0;
        }
        *code = static_cast<int32_t>(((lead & 0x1F) << 6) | (place[1] & 0x3F));
        return 2;
    }
    if (lead >= 0xE0 && lead < 0xF0) {
        if (left < 3 || (place[1] & 0xC0) != 0x80 || (place[2] & 0xC0) != 0x80) {
            return 0;
        }
        uint32_t value = ((lead & 0x0F) << 12) | ((place[1] & 0x3Fu) << 6) | (place[2] & 0x3Fu);
        if (value < 0x800) {
            return 0;
        }
        *code = static_cast<int32_t>(value);
        return 3;
    }
    int32_t n = continuationCount(lead);
    if (n < 0) {
        return 0;
    }
    uint32_t value = (lead & LeadMask[n]) << (6 * n);
    for (int32_t k = 1; k <= n; ++k) {
        // A byte past the end fails like a byte that is no continuation, and
        // a failing byte ends the read, so nothing behind it is touched.
        if (k >= left || (place[k] & 0xC0) != 0x80) {
            return 0;
        }
        value |= static_cast<uint32_t>(place[k] & 0x3F) << (6 * (n - k));
    }
    // Overlong: a shorter sequence could carry this code.
    if (n > 0 && value <= LargestCode[n - 1]) {
        return 0;
    }
    *code = static_cast<int32_t>(value);
    return n + 1;
}

int32_t ownUtf8Length(const uint8_t* place, int64_t left) {
    int32_t code;
    int32_t length = ownDecodeUtf8(place, left, &code);
    return length > 0 ? length : 1;
}

bool ownEqualIgnoreAsciiCase(uint8_t subjectByte, uint8_t patternByte) {
    if (subjectByte == patternByte) {
        return true;
    }
    uint8_t folded = subjectByte | 0x20;
    return folded >= 'a' && folded <= 'z' && (subjectByte ^ patternByte) == 0x20;
}

int32_t ownLookupChar(int32_t code) {
    if (code <= 0) {
        return 0;
    }
    if (code < CharDensePrefix) {
        return code;
    }
    int32_t page = code >> CharPageShift;
    if (page >= CharPageCount) {
        return -1;
    }
    // The answer lies in [first row of this page, first row of the next]:
    // the latter when every row of this page is below the code.
    int32_t low = CharPageFirstRow[page];
    int32_t high = CharPageFirstRow[page + 1];
    while (low < high) {
        int32_t middle = low + (high - low) / 2;
        if (CharTable[middle].code < code) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low < CharTableCount ? low : -1;
}

int32_t ownFoldCase(int32_t code) {
    uint32_t cls = charClass(code);
    if (isRowClass(cls)) {
        uint32_t lower = CharTable[cls - 1].lower;
        return lower != 0 ? static_cast<int32_t>(lower) : code;
    }
    if (cls != 0 || hasRowAtOrAbove(code)) {
        return code;   // a range row, or unassigned with a row above it
    }
    // Above the last row and in no range row: every such code folds to 0, so
    // any two of them compare equal when case is ignored.
    return 0;
}

int32_t ownCheckProperty(int32_t code, int32_t mask, int32_t negate) {
    uint32_t want = static_cast<uint32_t>(mask);
    uint32_t cls = charClass(code);
    if (isRowClass(cls)) {
        // Computed without branches, as whether a letter is upper or lower
        // case is as unpredictable as the text.
        uint32_t flags = CharTable[cls - 1].flags;
        uint32_t subBits = want & ~CategoryGroupMask;
        bool sameGroup = ((flags ^ want) & CategoryGroupMask) == 0;
        bool subBitsFit = (subBits == 0) | ((flags & subBits) != 0);
        return answer(sameGroup & subBitsFit, negate);
    }
    if (cls != 0) {
        // A range row compares the mask as a whole: with negate 0 every bit
        // must be set, with negate set some bit must be clear. When it does
        // not say yes, the row search decides, and it finds no row of the
        // code, so the code then counts as unassigned.
        bool all = (CharRanges[cls - CharClassRange].flags & want) == want;
        if (negate == 0 ? all : !all) {
            return 1;
        }
    }
    if (!hasRowAtOrAbove(code)) {
        return -1;   // the row search falls off the table: no, whatever negate says
    }
    // Unassigned: only the unassigned category itself says yes, whatever the
    // negation.
    return want == CategoryUnassigned ? 1 : -1;
}

int32_t ownCheckBlock(int32_t code, int32_t low, int32_t high, int32_t negate) {
    return answer((code >= low) & (code <= high), negate);
}

int32_t ownCheckScript(int32_t code, const int32_t* ranges, int32_t count, int32_t negate) {
    // The pairs rise by code, so the last pair whose low is not above the
    // code is the only one that can hold it.
    int32_t low = 0;
    int32_t high = count;
    while (low < high) {
        int32_t middle = low + (high - low) / 2;
        if (ranges[2 * middle] <= code) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    bool held = low > 0 && code <= ranges[2 * (low - 1) + 1];
    return answer(held, negate);
}

int32_t ownReadCluster(const uint8_t* place, int64_t left) {
    if (left <= 0) {
        return 0;
    }
    int32_t code;
    int32_t length = ownDecodeUtf8(place, left, &code);
    if (length <= 0) {
        // A malformed byte reads as its signed value, which no row holds.
        code = static_cast<int8_t>(place[0]);
        length = 1;
    }
    // A base is a range-row character or an assigned character that is no
    // mark; a mark, an unassigned code and a malformed byte begin nothing.
    uint32_t cls = charClass(code);
    if (cls == 0 || (isRowClass(cls) && isMarkRow(cls))) {
        return 0;
    }
    int64_t read = length;
    while (read < left) {
        int32_t next = ownDecodeUtf8(place + read, left - read, &code);
        if (next <= 0) {
            break;
        }
        cls = charClass(code);
        if (!isRowClass(cls) || !isMarkRow(cls)) {
            break;
        }
        read += next;
    }
    return static_cast<int32_t>(read);
}

const int32_t* ownScriptRanges(uint32_t firstPair) {
    return ScriptRangeTable + 2 * static_cast<size_t>(firstPair);
}
