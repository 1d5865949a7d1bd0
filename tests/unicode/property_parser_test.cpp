// Property escapes: the node written for each form of name and the cursor
// left behind, including every refused form and where it stops.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "regexp/regexp_record.h"
#include "regexp/unicode/unicode_tables.h"

namespace {

constexpr int32_t Untouched = 0x5A5A5A5A;

struct Parsed {
    int32_t result;
    int32_t offset;     // cursor offset from the start of the pattern
    int32_t count;      // nodes written
    RegExpNode node;    // the node at index 1 (index 0 is a guard)
};

// Parses the escape whose `p`/`P` is at `at` in `pattern`.
Parsed parse(const std::string& pattern, size_t at = 1) {
    RegExpNode nodes[4];
    for (RegExpNode& n : nodes) {
        n = {Untouched, Untouched, Untouched, Untouched, static_cast<uint32_t>(Untouched)};
    }
    const char* cursor = pattern.c_str() + at;
    int32_t count = 1;
    int32_t negate = pattern[at] == 'P' ? -1 : 0;
    Parsed out;
    out.result = ownRegExpParseProperty(&cursor, nodes, &count, negate);
    out.offset = static_cast<int32_t>(cursor - pattern.c_str());
    out.count = count - 1;
    out.node = nodes[1];
    EXPECT_EQ(nodes[0].kind, static_cast<uint32_t>(Untouched)) << pattern;
    EXPECT_EQ(nodes[2].kind, static_cast<uint32_t>(Untouched)) << pattern;
    return out;
}

void expectProperty(const std::string& pattern, int32_t mask, int32_t negate) {
    Parsed p = parse(pattern);
    ASSERT_EQ(p.result, 0) << pattern;
    EXPECT_EQ(p.offset, static_cast<int32_t>(pattern.size())) << pattern;
    EXPECT_EQ(p.count, 1) << pattern;
    EXPECT_EQ(p.node.kind, NodeProperty) << pattern;
    EXPECT_EQ(p.node.word1, mask) << pattern;
    EXPECT_EQ(p.node.word2, negate) << pattern;
    EXPECT_EQ(p.node.word3, Untouched) << pattern;
}

void expectBlock(const std::string& pattern, int32_t low, int32_t high, int32_t negate) {
    Parsed p = parse(pattern);
    ASSERT_EQ(p.result, 0) << pattern;
    EXPECT_EQ(p.offset, static_cast<int32_t>(pattern.size())) << pattern;
    EXPECT_EQ(p.node.kind, NodeBlock) << pattern;
    EXPECT_EQ(p.node.word1, low) << pattern;
    EXPECT_EQ(p.node.word2, high) << pattern;
    EXPECT_EQ(p.node.word3, negate) << pattern;
}

void expectScript(const std::string& pattern, const char* name, int32_t negate) {
    Parsed p = parse(pattern);
    ASSERT_EQ(p.result, 0) << pattern;
    EXPECT_EQ(p.offset, static_cast<int32_t>(pattern.size())) << pattern;
    EXPECT_EQ(p.node.kind, NodeScript) << pattern;
    EXPECT_EQ(p.node.word1, 1) << pattern;
    EXPECT_EQ(p.node.word2, negate) << pattern;
    const ScriptRow* row = nullptr;
    for (const ScriptRow& r : ScriptTable) {
        if (std::strcmp(r.name, name) == 0) row = &r;
    }
    ASSERT_NE(row, nullptr) << name;
    EXPECT_EQ(p.node.word3, row->count) << pattern;
    EXPECT_EQ(p.node.word4, row->firstPair) << pattern;
}

void expectFailure(const std::string& pattern, int32_t offset) {
    Parsed p = parse(pattern);
    EXPECT_EQ(p.result, -1) << pattern;
    EXPECT_EQ(p.offset, offset) << pattern;
}

TEST(PropertyParser, OneLetterAndBracedGroupsGiveTheSameMask) {
    expectProperty("\\pL", 0x80, 0);
    expectProperty("\\p{L}", 0x80, 0);
    expectProperty("\\p{^L}", 0x80, -1);
    expectProperty("\\PL", 0x80, -1);
    expectProperty("\\P{L}", 0x80, -1);
    const struct { char letter; int32_t mask; } groups[] = {
        {'C', 0x2000}, {'L', 0x80}, {'M', 0x100}, {'N', 0x800},
        {'P', 0x1000}, {'S', 0x400}, {'Z', 0x200}};
    for (auto g : groups) {
        expectProperty(std::string("\\p") + g.letter, g.mask, 0);
        expectProperty(std::string("\\P{") + g.letter + "}", g.mask, -1);
    }
}

TEST(PropertyParser, OneLetterFormReadsOneLetterOnly) {
    Parsed p = parse("\\pLu");
    EXPECT_EQ(p.result, 0);
    EXPECT_EQ(p.offset, 3);
    EXPECT_EQ(p.node.word1, 0x80);
}

TEST(PropertyParser, EveryTwoLetterCategory) {
    const struct { const char* name; int32_t mask; } names[] = {
        {"Cc", 0x2001}, {"Cf", 0x2002}, {"Cn", 0x2010}, {"Co", 0x2004}, {"Cs", 0x2008},
        {"L&", 0x87}, {"Ll", 0x81}, {"Lm", 0x88}, {"Lo", 0x90}, {"Lt", 0x84}, {"Lu", 0x82},
        {"Mc", 0x102}, {"Me", 0x104}, {"Mn", 0x101},
        {"Nd", 0x801}, {"Nl", 0x802}, {"No", 0x804},
        {"Pc", 0x1020}, {"Pd", 0x1001}, {"Pe", 0x1004}, {"Pf", 0x1010}, {"Pi", 0x1008},
        {"Po", 0x1040}, {"Ps", 0x1002},
        {"Sc", 0x402}, {"Sk", 0x404}, {"Sm", 0x401}, {"So", 0x408},
        {"Zl", 0x202}, {"Zp", 0x204}, {"Zs", 0x201}};
    for (auto n : names) {
        expectProperty(std::string("\\p{") + n.name + "}", n.mask, 0);
        expectProperty(std::string("\\p{^") + n.name + "}", n.mask, -1);
        expectProperty(std::string("\\P{") + n.name + "}", n.mask, -1);
    }
}

TEST(PropertyParser, EscapeInsideLongerPatternLeavesCursorBehindIt) {
    Parsed p = parse("a\\p{Lu}b", 2);
    EXPECT_EQ(p.result, 0);
    EXPECT_EQ(p.offset, 7);
    Parsed q = parse("[\\pNx]", 2);
    EXPECT_EQ(q.result, 0);
    EXPECT_EQ(q.offset, 4);
}

TEST(PropertyParser, NamesStartingWithCReachScriptsUnlessCategory) {
    expectScript("\\p{Common}", "Common", 0);
    expectScript("\\p{Coptic}", "Coptic", 0);
    expectScript("\\p{Cherokee}", "Cherokee", 0);
    expectScript("\\p{Cham}", "Cham", 0);
    expectScript("\\p{Cuneiform}", "Cuneiform", 0);
    expectScript("\\P{Cyrillic}", "Cyrillic", -1);
}

TEST(PropertyParser, EveryScriptByItsFullName) {
    for (const ScriptRow& row : ScriptTable) {
        // A name that starts like a category (none does in this table) would
        // stop at the category; "In..." names would try the blocks first.
        expectScript(std::string("\\p{") + row.name + "}", row.name, 0);
        expectScript(std::string("\\p{^") + row.name + "}", row.name, -1);
    }
    expectScript("\\p{Inherited}", "Inherited", 0);
}

TEST(PropertyParser, BlocksByPrefixFirstRowWins) {
    expectBlock("\\p{InThai}", 0xE00, 0xE7F, 0);
    expectBlock("\\p{InBasicLatin}", 0, 0x7F, 0);
    expectBlock("\\P{InCyrillic}", 0x400, 0x4FF, -1);
    expectBlock("\\p{InLatin}", 0x80, 0xFF, 0);
    expectBlock("\\p{InCJKUnifiedIdeographs}", 0x3400, 0x4DBF, 0);
    expectBlock("\\p{InCJKUnifiedIdeographsExtensionB}", 0x20000, 0x2A6DF, 0);
    expectBlock("\\p{InPhagspa}", 0xA840, 0xA87F, 0);
    expectBlock("\\p{InSupplementaryPrivateUseAreaB}", 0x100000, 0x10FFFF, 0);
    // The shortest prefixes still name the first block.
    expectBlock("\\p{In}", 0, 0x7F, 0);
    expectBlock("\\p{I}", 0, 0x7F, 0);
    // Names compare case-sensitively.
    expectFailure("\\p{Inthai}", 3);
}

TEST(PropertyParser, EveryBlockByItsFullName) {
    for (int32_t i = 0; i < BlockTableCount; ++i) {
        const BlockRow& row = BlockTable[i];
        // The row found is the first whose name starts with this one.
        int32_t first = i;
        for (int32_t j = 0; j < i; ++j) {
            if (std::strncmp(BlockTable[j].name, row.name, std::strlen(row.name)) == 0) {
                first = j;
                break;
            }
        }
        expectBlock(std::string("\\p{") + row.name + "}", BlockTable[first].low,
                    BlockTable[first].high, 0);
    }
}

TEST(PropertyParser, AnyIsTheWholeCodeSpace) {
    expectBlock("\\p{Any}", 0, 0x10FFFF, 0);
    expectBlock("\\P{Any}", 0, 0x10FFFF, -1);
    expectBlock("\\p{^Any}", 0, 0x10FFFF, -1);
    expectScript("\\p{Arabic}", "Arabic", 0);
    expectScript("\\p{Armenian}", "Armenian", 0);
}

TEST(PropertyParser, RefusedFormsStopAtTheFault) {
    expectFailure("\\pX", 2);
    expectFailure("\\p", 2);
    expectFailure("\\pl", 2);
    expectFailure("\\P{^L}", 3);
    expectFailure("\\p{^^L}", 4);
    expectFailure("\\p{Lu", 5);
    expectFailure("\\p{L", 3);   // no "L}": the script search refuses it
    expectFailure("\\p{", 3);
    expectFailure("\\p{Xyz}", 3);
    expectFailure("\\p{^Xyz}", 4);
    expectFailure("\\p{}", 3);
    expectFailure("\\p{Nonsense}", 5);
    expectFailure("\\p{Lux}", 5);
    expectFailure("\\p{Anything}", 6);
    expectFailure("\\p{InNoSuchBlock}", 3);
    expectFailure("\\p{latin}", 3);
    expectFailure("\\p{Latin", 3);
    expectFailure("\\p{Common", 3);
    expectFailure("\\p{Co", 3);
    expectFailure("\\p{L&x}", 5);
}

TEST(PropertyParser, NodeStaysWrittenWhenTheBraceIsMissing) {
    Parsed p = parse("\\p{Lu");
    EXPECT_EQ(p.result, -1);
    EXPECT_EQ(p.count, 1);
    EXPECT_EQ(p.node.kind, NodeProperty);
    Parsed q = parse("\\p{Xyz}");
    EXPECT_EQ(q.count, 0);
}

TEST(PropertyParser, ScriptPartLeavesCursorOnBraceOrUnmoved) {
    RegExpNode nodes[2];
    int32_t count = 0;
    const char* text = "Greek}x";
    const char* cursor = text;
    ASSERT_EQ(ownRegExpParseScript(&cursor, nodes, &count, 0), 0);
    EXPECT_EQ(cursor, text + 5);
    EXPECT_EQ(count, 1);
    const char* bad = "Greeks}";
    cursor = bad;
    EXPECT_EQ(ownRegExpParseScript(&cursor, nodes, &count, 0), -1);
    EXPECT_EQ(cursor, bad);
    const char* open = "Greek";
    cursor = open;
    EXPECT_EQ(ownRegExpParseScript(&cursor, nodes, &count, 0), -1);
    EXPECT_EQ(cursor, open);
    EXPECT_EQ(count, 1);
}

}  // namespace
