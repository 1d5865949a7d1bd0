// regexp/unicode/unicode_tables.h - the constant Unicode 5.1.0 data of the
// engine: general categories and simple case mappings per character, the
// runs of like characters, and the block and script tables of the property
// escapes.
//
// The definitions are generated at build time by make_unicode_tables.py from
// the UCD files in regexp/unicode/ucd-5.1.0 (see CMakeLists.txt); the
// generator checks every count below against the data and fails otherwise.
// Nothing here is read from a file at run time, and nothing is ever written.
#pragma once

#include <cstdint>

// A category is one flags word: the group in the bits from 7 up (0x80
// letters, 0x100 marks, 0x200 separators, 0x400 symbols, 0x800 numbers,
// 0x1000 punctuation, 0x2000 other), one sub-bit below bit 7 for the member,
// e.g. Lu = 0x82, Mn = 0x101. 0x2010 (Cn, unassigned) is in no table.
constexpr uint32_t CategoryGroupMask = ~0x7Fu;
constexpr uint32_t CategoryMarkGroup = 0x100;
constexpr uint32_t CategoryUnassigned = 0x2010;

// One assigned character. A mapping of 0 means none; a row never holds both
// (the four titlecase letters with both keep only `lower`). Titlecase
// mappings are not kept. Only `lower` is read by the engine.
struct CharRow {
    int32_t  code;
    uint32_t flags;
    uint32_t upper;
    uint32_t lower;
};

// A run of like characters that has no rows of its own (CJK ideographs,
// Hangul syllables, surrogates, private use). No code lies in both tables.
struct CharRangeRow {
    int32_t  low;
    int32_t  high;
    uint32_t flags;
};

// A block: "In" + its name without blanks and hyphens ("InLatin1Supplement").
struct BlockRow {
    const char* name;
    int32_t     low;
    int32_t     high;
};

// A script: `count` pairs of ScriptRangeTable from pair `firstPair` on, one
// per line of Scripts.txt, rising by code.
struct ScriptRow {
    const char* name;
    uint32_t    firstPair;
    int32_t     count;
};

constexpr int32_t CharTableCount   = 19316;  // sorted by code, row 0 is U+0000
constexpr int32_t CharTableLastCode = 0xE01EF;
constexpr int32_t CharRangesCount  = 10;
constexpr int32_t BlockTableCount  = 171;    // rising by low
constexpr int32_t ScriptTableCount = 77;
constexpr int32_t ScriptRangeCount = 1344;   // pairs in ScriptRangeTable

// Index into CharTable by 256-code page: CharPageFirstRow[p] is the first row
// whose code is not below p * 256; the entry at CharPageCount is
// CharTableCount. It narrows the row search to one page's rows.
constexpr int32_t CharPageShift = 8;
constexpr int32_t CharPageCount = (CharTableLastCode >> CharPageShift) + 1;
// Rows 0 to CharDensePrefix - 1 hold the codes equal to their index (U+0000
// to U+0377 are all assigned), so those codes need no search at all.
constexpr int32_t CharDensePrefix = 888;

// Where each code 0..0x10FFFF has its data, in two stages of 128 codes:
// CharClassBlocks[(CharClassIndex[code >> 7] << 7) + (code & 127)] is 0 for an
// unassigned code, row + 1 for a code with a CharTable row, and
// CharClassRange + r for a code in CharRanges row r. It answers in two loads
// what the row search and the range scan answer together (58 KB; identical
// blocks are shared, 194 of the 8,704 are distinct).
constexpr int32_t  CharClassShift = 7;
constexpr int32_t  CharClassCodeSpace = 0x110000;
constexpr int32_t  CharClassIndexCount = CharClassCodeSpace >> CharClassShift;
constexpr int32_t  CharClassBlockCount = 194;
constexpr uint32_t CharClassRange = 0xFFF0;

extern const CharRow      CharTable[CharTableCount];
extern const CharRangeRow CharRanges[CharRangesCount];
extern const uint16_t     CharPageFirstRow[CharPageCount + 1];
extern const uint8_t      CharClassIndex[CharClassIndexCount];
extern const uint16_t     CharClassBlocks[CharClassBlockCount << CharClassShift];
extern const BlockRow     BlockTable[BlockTableCount];
extern const ScriptRow    ScriptTable[ScriptTableCount];
extern const int32_t      ScriptRangeTable[2 * ScriptRangeCount];

// The row search: for a code of 0 or below, row 0; otherwise the first row
// whose code is not below `code`, or -1 when there is none (the code is above
// U+E01EF). A row holding a higher code means the code is unassigned.
int32_t ownLookupChar(int32_t code);

// Script part of the property parser: *cursor is on the first byte of the
// name. 0: a NodeScript was appended and the cursor is on the closing brace;
// -1: no such script, the cursor has not moved.
struct RegExpNode;
int32_t ownRegExpParseScript(const char** cursor, RegExpNode* nodes, int32_t* nodeCount,
                             int32_t negate);
