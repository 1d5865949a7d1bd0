// UTF-8 reading and the character checks: decoding edge cases and a
// property test against an encoder, case folding, category, block and script
// checks, and grapheme clusters.

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "regexp/regexp_record.h"
#include "regexp/unicode/unicode_tables.h"
#include "regexp/unicode/utf8_inline.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Encodes `code` in `length` bytes (1..6); a length above the shortest gives
// an overlong form.
Bytes encode(uint32_t code, int length) {
    if (length == 1) return {static_cast<uint8_t>(code)};
    Bytes out(length);
    for (int i = length - 1; i > 0; --i) {
        out[i] = static_cast<uint8_t>(0x80 | (code & 0x3F));
        code >>= 6;
    }
    out[0] = static_cast<uint8_t>((0xFF00u >> length) | code);
    return out;
}

int shortestLength(uint32_t code) {
    if (code < 0x80) return 1;
    if (code < 0x800) return 2;
    if (code < 0x10000) return 3;
    if (code < 0x200000) return 4;
    if (code < 0x4000000) return 5;
    return 6;
}

Bytes utf8(uint32_t code) { return encode(code, shortestLength(code)); }

// Decodes a copy placed at the very end of a heap block, so that a read past
// `left` is caught by the address sanitizer.
int32_t decode(const Bytes& bytes, int32_t* code) {
    std::vector<uint8_t> tight(bytes);
    return ownDecodeUtf8(tight.data(), static_cast<int64_t>(tight.size()), code);
}

TEST(DecodeUtf8, WellFormedSequencesOfEveryLength) {
    const struct { Bytes bytes; int32_t code; } cases[] = {
        {{0x00}, 0}, {{0x41}, 0x41}, {{0x7F}, 0x7F},
        {{0xC2, 0x80}, 0x80}, {{0xDF, 0xBF}, 0x7FF},
        {{0xE0, 0xA0, 0x80}, 0x800}, {{0xED, 0xA0, 0x80}, 0xD800},
        {{0xEF, 0xBF, 0xBF}, 0xFFFF},
        {{0xF0, 0x90, 0x80, 0x80}, 0x10000}, {{0xF4, 0x90, 0x80, 0x80}, 0x110000},
        {{0xF7, 0xBF, 0xBF, 0xBF}, 0x1FFFFF},
        {{0xF8, 0x88, 0x80, 0x80, 0x80}, 0x200000},
        {{0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}, 0x4000000},
        {{0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF}, 0x7FFFFFFF}};
    for (const auto& c : cases) {
        int32_t code = -5;
        EXPECT_EQ(decode(c.bytes, &code), static_cast<int32_t>(c.bytes.size()));
        EXPECT_EQ(code, c.code);
        EXPECT_EQ(ownUtf8Length(c.bytes.data(), c.bytes.size()), static_cast<int32_t>(c.bytes.size()));
    }
}

TEST(DecodeUtf8, MalformedSequencesLeaveTheCodeAndMeasureOne) {
    const Bytes cases[] = {
        {0xC0, 0x80}, {0xC1, 0xBF}, {0xE0, 0x80, 0x80}, {0xE0, 0x9F, 0xBF},
        {0xF0, 0x8F, 0xBF, 0xBF}, {0xF8, 0x87, 0xBF, 0xBF, 0xBF},
        {0xFC, 0x83, 0xBF, 0xBF, 0xBF, 0xBF},        // overlong
        {0x80}, {0xBF}, {0xFE}, {0xFF}, {0xFE, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80},
        {0xC3, 0x41}, {0xE2, 0x82, 0xC0}, {0xE2, 0x28, 0xA1},
        {0xC3}, {0xE2, 0x82}, {0xF0, 0x9F, 0x98}, {0xFD, 0xBF, 0xBF, 0xBF, 0xBF}};
    for (const Bytes& bytes : cases) {
        int32_t code = -5;
        EXPECT_EQ(decode(bytes, &code), 0) << int(bytes[0]);
        EXPECT_EQ(code, -5);
        EXPECT_EQ(ownUtf8Length(bytes.data(), bytes.size()), 1);
    }
}

TEST(DecodeUtf8, EndOfSubjectCutsASequenceWhateverFollowsInMemory) {
    const uint8_t memory[] = {0x41, 0xE2, 0x82, 0xAC};
    int32_t code = 0;
    EXPECT_EQ(ownDecodeUtf8(memory + 1, 3, &code), 3);
    EXPECT_EQ(code, 0x20AC);
    EXPECT_EQ(ownDecodeUtf8(memory + 1, 2, &code), 0);
    EXPECT_EQ(ownDecodeUtf8(memory + 1, 1, &code), 0);
    EXPECT_EQ(ownDecodeUtf8(memory + 1, 0, &code), 0);
    EXPECT_EQ(ownUtf8Length(memory + 1, 2), 1);
    // Zero-terminated text read with no known end stops at the terminator.
    const char text[] = "\xE2\x82";
    EXPECT_EQ(ownDecodeUtf8(reinterpret_cast<const uint8_t*>(text), INT32_MAX, &code), 0);
}

// Every code round-trips through its shortest form; every longer form and
// every cut-off prefix is refused.
TEST(DecodeUtf8, RoundTripAndOverlongProperty) {
    std::mt19937 random(1);
    std::vector<uint32_t> codes;
    for (uint32_t c = 0; c < 0x11000; ++c) codes.push_back(c);
    for (uint32_t limit : {0x7FFu, 0xFFFFu, 0x1FFFFFu, 0x3FFFFFFu}) {
        codes.push_back(limit);
        codes.push_back(limit + 1);
    }
    codes.push_back(0x7FFFFFFF);
    for (int i = 0; i < 20000; ++i) codes.push_back(random() & 0x7FFFFFFF);
    for (uint32_t c : codes) {
        int length = shortestLength(c);
        Bytes bytes = encode(c, length);
        int32_t code = -1;
        ASSERT_EQ(decode(bytes, &code), length) << std::hex << c;
        ASSERT_EQ(static_cast<uint32_t>(code), c);
        for (int longer = length + 1; longer <= 6; ++longer) {
            ASSERT_EQ(decode(encode(c, longer), &code), 0) << std::hex << c << " in " << longer;
        }
        for (int cut = 1; cut < length; ++cut) {
            ASSERT_EQ(decode(Bytes(bytes.begin(), bytes.begin() + cut), &code), 0);
        }
    }
}

TEST(InlineFronts, AgreeWithTheFunctionsTheyStandFor) {
    for (int32_t code = -300; code < 0x3000; ++code) {
        ASSERT_EQ(ownFoldCaseInline(code), ownFoldCase(code)) << code;
    }
    for (int b0 = 0; b0 < 256; ++b0) {
        for (int b1 : {0x00, 0x41, 0x80, 0xBF, 0xC0}) {
            const uint8_t bytes[2] = {static_cast<uint8_t>(b0), static_cast<uint8_t>(b1)};
            for (int64_t left : {0, 1, 2}) {
                int32_t a = -7, b = -7;
                ASSERT_EQ(ownDecodeUtf8Inline(bytes, left, &a), ownDecodeUtf8(bytes, left, &b));
                ASSERT_EQ(a, b);
                ASSERT_EQ(ownUtf8LengthInline(bytes, left), ownUtf8Length(bytes, left));
            }
        }
    }
}

TEST(EqualIgnoreAsciiCase, AllBytePairs) {
    for (int s = 0; s < 256; ++s) {
        for (int p = 0; p < 256; ++p) {
            bool letter = (s >= 'A' && s <= 'Z') || (s >= 'a' && s <= 'z');
            bool expected = s == p || (letter && (s ^ p) == 0x20);
            ASSERT_EQ(ownEqualIgnoreAsciiCase(s, p), expected) << s << " " << p;
        }
    }
}

// Codes 0 to 0x10FFFF are checked against the data files in
// ucd_exhaustive_test.cpp; these are the rules' corners and what lies outside.
TEST(FoldCase, RangeRowsTitlecaseAndTheEndOfTheTable) {
    const struct { int32_t code, folded; } cases[] = {
        {'A', 'a'}, {0x1C5, 0x1C6}, {0x17F, 0x17F}, {0x4E00, 0x4E00},
        {0x10FFFD, 0x10FFFD},            // range row above the last row
        {0x9FC4, 0x9FC4}, {0xE01EF, 0xE01EF},
        {0xE01F0, 0}, {0x10FFFF, 0}, {0x7FFFFFFF, 0}, {-3, -3}};
    for (auto c : cases) {
        EXPECT_EQ(ownFoldCase(c.code), c.folded) << std::hex << c.code;
    }
}

TEST(CheckProperty, GroupSubBitsNegationUnassignedAndRangeRows) {
    const struct { int32_t code, mask, negate, answer; } cases[] = {
        {'A', 0x82, 0, 1}, {'A', 0x80, 0, 1}, {'A', 0x87, 0, 1}, {'A', 0x81, 0, -1},
        {'A', 0x81, -1, 1}, {'A', 0x100, -1, 1}, {0x1C5, 0x87, 0, 1}, {0x2B0, 0x87, 0, -1},
        {0, 0x2001, 0, 1}, {0, 0x2010, 0, -1},
        // Unassigned below the last row: only Cn, negated or not.
        {0x378, 0x2010, 0, 1}, {0x378, 0x2010, -1, 1}, {0x378, 0x80, -1, -1},
        {0xE0080, 0x2000, -1, -1}, {-1, 0x2010, 0, 1}, {-1, 0x80, -1, -1},
        // Beyond the table: nothing.
        {0xE01F0, 0x2010, 0, -1}, {0x7FFFFFFF, 0x80, -1, -1},
        // A range row says yes on its own; a refused test falls through to
        // the row search, which treats the code as unassigned.
        {0x4E00, 0x90, 0, 1}, {0x4E00, 0x80, 0, 1}, {0x4E00, 0x82, 0, -1},
        {0x4E00, 0x82, -1, 1}, {0x4E00, 0x90, -1, -1}, {0x4E00, 0x2010, 0, 1},
        {0x4E00, 0x2010, -1, 1}, {0xE000, 0x2000, 0, 1}, {0xD800, 0x2004, 0, -1},
        {0x100000, 0x2004, 0, 1}, {0x100000, 0x2010, 0, -1}, {0x100000, 0x2004, -1, -1}};
    for (auto c : cases) {
        EXPECT_EQ(ownCheckProperty(c.code, c.mask, c.negate), c.answer)
            << std::hex << c.code << " " << c.mask << " " << c.negate;
    }
}

TEST(CheckBlockAndScript, InsideOutsideAndNegation) {
    EXPECT_EQ(ownCheckBlock(0xE00, 0xE00, 0xE7F, 0), 1);
    EXPECT_EQ(ownCheckBlock(0xE7F, 0xE00, 0xE7F, 0), 1);
    EXPECT_EQ(ownCheckBlock(0xE80, 0xE00, 0xE7F, 0), -1);
    EXPECT_EQ(ownCheckBlock(0xE80, 0xE00, 0xE7F, -1), 1);
    EXPECT_EQ(ownCheckBlock(0xE10, 0xE00, 0xE7F, -1), -1);
    EXPECT_EQ(ownCheckBlock(-1, 0, 0x10FFFF, 0), -1);

    const int32_t pairs[] = {0x10, 0x1F, 0x30, 0x30, 0x40, 0x4F};
    for (int32_t code = 0; code < 0x60; ++code) {
        bool held = (code >= 0x10 && code <= 0x1F) || code == 0x30 || (code >= 0x40 && code <= 0x4F);
        EXPECT_EQ(ownCheckScript(code, pairs, 3, 0), held ? 1 : -1) << code;
        EXPECT_EQ(ownCheckScript(code, pairs, 3, -1), held ? -1 : 1) << code;
    }
    EXPECT_EQ(ownCheckScript(0x10, pairs, 0, 0), -1);
    EXPECT_EQ(ownCheckScript(0x10, pairs, 0, -1), 1);
}

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

int32_t cluster(const Bytes& bytes) {
    std::vector<uint8_t> tight(bytes);
    return ownReadCluster(tight.data(), static_cast<int64_t>(tight.size()));
}

TEST(ReadCluster, BaseAndMarks) {
    const Bytes acute = utf8(0x301);
    EXPECT_EQ(cluster(concat({{'a'}, acute, utf8(0x308)})), 5);
    EXPECT_EQ(cluster(concat({{'a'}, acute, {'b'}})), 3);
    EXPECT_EQ(cluster({'a'}), 1);
    EXPECT_EQ(cluster(acute), 0);                             // a mark begins nothing
    EXPECT_EQ(cluster(concat({utf8(0x378), acute})), 0);      // unassigned
    EXPECT_EQ(cluster(concat({{0x80}, acute})), 0);           // malformed
    EXPECT_EQ(cluster(concat({utf8(0xE01F0)})), 0);           // beyond the table
    EXPECT_EQ(cluster(concat({utf8(0x4E00), acute})), 5);     // range rows are bases
    EXPECT_EQ(cluster(concat({utf8(0x100000), acute})), 6);
    EXPECT_EQ(cluster(concat({{'a'}, acute, {0xCC}})), 3);    // stops before a malformed byte
    EXPECT_EQ(cluster(concat({{'a'}, utf8(0x903)})), 4);      // Mc joins
    EXPECT_EQ(cluster(concat({{'a'}, utf8(0x20DD)})), 4);     // Me joins
    EXPECT_EQ(cluster(concat({{'\n'}, acute})), 3);           // a control is a base
    EXPECT_EQ(ownReadCluster(reinterpret_cast<const uint8_t*>("a"), 0), 0);
    // The caller's end cuts the cluster, and a mark cut in half is malformed.
    Bytes text = concat({{'a'}, acute, acute});
    EXPECT_EQ(ownReadCluster(text.data(), 3), 3);
    EXPECT_EQ(ownReadCluster(text.data(), 4), 3);
}

}  // namespace
