// What the compiler works out for the matcher: the trailing literal with its
// option bits, and the width of lookbehind bodies.
#include <gtest/gtest.h>

#include "tests/compile/compile_helpers.h"

namespace {

struct Trailing {
    const char* pattern;
    const char* options;
    int32_t     index;     // trailingLiteral
    uint32_t    kind;      // kind of that node, when index >= 0
    int32_t     word3;     // its option bits
};

constexpr Trailing TrailingRows[] = {
    {"ab", nullptr, 0, NodeString, 0},
    {"(a|b)c+", nullptr, 5, NodeChar, 0},
    {"abc+", nullptr, 1, NodeChar, 0},
    {"abc*", nullptr, -1, 0, 0},
    {"abc?", nullptr, -1, 0, 0},
    {"abc{0,1}", nullptr, -1, 0, 0},
    {"abc{1,2}", nullptr, 1, NodeChar, 0},
    {"abc{1,2}?", nullptr, 1, NodeChar, 0},
    {"a+b+", nullptr, 2, NodeChar, 0},
    {"a\\n", nullptr, 1, NodeChar, 0},
    {"\\n+", nullptr, -1, 0, 0},
    {"ab$", nullptr, -1, 0, 0},
    {"ab\\d", nullptr, -1, 0, 0},
    {"ab(c)", nullptr, -1, 0, 0},
    {"ab[c]", nullptr, -1, 0, 0},
    {"\\d+ab", nullptr, 2, NodeString, 0},
    {"(?i)ab", nullptr, 1, NodeString, OptionIgnoreCase},
    {"ab", "im", 0, NodeString, OptionIgnoreCase | OptionMultiLine},
    {"(?i:a)b", nullptr, 3, NodeChar, 0},
    {"\\x{41}", nullptr, -1, 0, 0},
    {"[a]", nullptr, -1, 0, 0},
    {"(?:ab)", nullptr, -1, 0, 0},
    {"(?:ab)c", nullptr, 1, NodeChar, 0},
    {"a|b", nullptr, -2, 0, 0},
    {"ab|c", nullptr, -2, 0, 0},
    {"a|b*c", nullptr, -2, 0, 0},
    {"(a|b)|c+", nullptr, -2, 0, 0},
    {"\\Qab\\E", nullptr, 0, NodeString, 0},
    {"a\\Q\\E", nullptr, 0, NodeChar, 0},
    {"a(?=b)*c", nullptr, 1, NodeChar, 0},
    {"", nullptr, -1, 0, 0},
};

struct Width {
    const char* pattern;
    int32_t     width;  // word3 of the lookbehind at node 0
};

constexpr Width Widths[] = {
    {"(?<=ab)c", 2},           {"(?<=a|b)", 1},          {"(?<=a{2})", 2},
    {"(?<=(?:ab|cd)e)", 3},    {"(?<=(ab){3})", 6},      {"(?<=[ab]{3})", 3},
    {"(?<=\\d\\d)", 2},        {"(?<=^a)", 1},           {"(?<=(?=x)ab)", 2},
    {"(?<=\\C)", 0},           {"(?<=a{0})", 1},         {"(?<=)", 0},
    {"(?<!\\x{20AC}\\p{L})", 2}, {"(?<=\\X|[^a])", 1},   {"(?<=(?>ab)c|def|g.\\w)", 3},
    {"(?<=(a|b)(cd|ef){2})", 5}, {"(?<=(?i)ab|cd)", 2},  {"(?<=a(?!bc|d)b)", 2},
};

}  // namespace

TEST(Analysis, TrailingLiteral) {
    for (const Trailing& t : TrailingRows) {
        SCOPED_TRACE(t.pattern);
        Compiled c = compilePattern(t.pattern, t.options);
        ASSERT_EQ(c.status, zevStatusOk);
        ASSERT_EQ(c.state()->trailingLiteral, t.index);
        if (t.index < 0) continue;
        EXPECT_EQ(c.node(t.index).kind, t.kind);
        EXPECT_EQ(c.node(t.index).word3, t.word3);
        // Only repeats stand behind it.
        for (int32_t i = t.index + 1; i < c.state()->nodeCount; ++i)
            EXPECT_TRUE(c.node(i).kind == NodeRepeat || c.node(i).kind == NodeRepeatLazy);
    }
}

TEST(Analysis, LookbehindWidths) {
    for (const Width& w : Widths) {
        SCOPED_TRACE(w.pattern);
        Compiled c = compilePattern(w.pattern);
        ASSERT_EQ(c.status, zevStatusOk) << c.errOffset;
        ASSERT_TRUE(c.node(0).kind == NodeLookbehind || c.node(0).kind == NodeNegLookbehind);
        EXPECT_EQ(c.node(0).word3, w.width);
    }
}

// Nested repeats multiply the width; it is counted in 32-bit words, and a
// width that does not fit is refused like a varying one.
TEST(Analysis, LookbehindWidthOfNestedRepeats) {
    Compiled big = compilePattern("(?<=((a{1000}){1000}){2})");
    ASSERT_EQ(big.status, zevStatusOk);
    EXPECT_EQ(big.node(0).word3, 2000000);
    Compiled huge = compilePattern("(?<=((a{65535}){65535}){65535})");
    EXPECT_EQ(huge.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(huge.errOffset, 30);
}

// The implicit anchor: only a leading greedy .* or .+ (or exactly (?:.*) or
// (?:.+)) gets it, whatever the dot-all option says.
TEST(Analysis, ImplicitAnchor) {
    for (const char* yes : {".*", ".+", ".*a", ".+\\d", ".*.*", "(?:.*)", "(?:.+)x", "(?:.*)|a"}) {
        Compiled c = compilePattern(yes, "s");
        ASSERT_EQ(c.status, zevStatusOk) << yes;
        EXPECT_EQ(c.node(0).kind, NodeAssert) << yes;
        EXPECT_EQ(c.node(0).word1, AssertLineStartAnchor) << yes;
    }
    for (const char* no : {".", ".?", ".*?x", ".+?x", "a.*", "(.*)", "(?:.*?)", "(?:.*a)", "\\.*", "..*"}) {
        Compiled c = compilePattern(no);
        ASSERT_EQ(c.status, zevStatusOk) << no;
        EXPECT_FALSE(c.node(0).kind == NodeAssert && c.node(0).word1 == AssertLineStartAnchor) << no;
    }
    // The anchor is written before the option string is read: a bad option
    // still fails with offset 0.
    Compiled bad = compilePattern(".*", "q");
    EXPECT_EQ(bad.status, zevStatusRegExpBadOptions);
}

// A NodeClose carries 1 for a group around one repeated character test; a
// quantifier on the group turns that into -1.
TEST(Analysis, CloseMarks) {
    struct Mark { const char* pattern; int32_t mark; };
    for (const Mark& m : {Mark{"(a+)", 1}, Mark{"(a+)*", -1}, Mark{"(ab+)*", 0}, Mark{"(a|b+)*", 0},
                          Mark{"(a+?)+", 0}, Mark{"(?>a+)*", 0}, Mark{"(\\d\\d)*", -1},
                          Mark{"([ab]*)", 1}, Mark{"(?:a*)b", 1}, Mark{"(?:a*){2}", -1}}) {
        Compiled c = compilePattern(m.pattern);
        ASSERT_EQ(c.status, zevStatusOk) << m.pattern;
        int32_t close = -1;
        for (int32_t i = 0; i < c.state()->nodeCount; ++i)
            if (c.node(i).kind == NodeClose) close = i;
        ASSERT_GE(close, 0) << m.pattern;
        EXPECT_EQ(c.node(close).word3, m.mark) << m.pattern;
    }
}
