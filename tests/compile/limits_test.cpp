// The limits of the pattern language, hostile input, and a property test:
// whatever the pattern, the compiler stays inside the record's size, never
// reads past the terminator, and leaves a well-formed node array.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/compile/compile_helpers.h"

namespace {

std::string repeat(const std::string& piece, int count) {
    std::string s;
    s.reserve(piece.size() * static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) s += piece;
    return s;
}

std::string nested(int depth, const std::string& inner = "a") {
    return repeat("(", depth) + inner + repeat(")", depth);
}

// Structural checks on a compiled record: heads and closes pair up, class
// items are items, literal bytes lie inside the record.
void checkWellFormed(const Compiled& c, size_t patternLength) {
    const RegExpState* s = c.state();
    ASSERT_LE(s->nodeCount, static_cast<int32_t>(patternLength) + 1);
    for (int32_t i = 0; i < s->nodeCount; ++i) {
        const RegExpNode& n = c.node(i);
        ASSERT_GE(n.kind, NodeKindFirst);
        ASSERT_LT(n.kind, NodeKindFirst + NodeKindCount);
        if (n.kind >= NodeLookbehind && n.kind <= NodeAtomic) {
            int32_t close = i + n.word2 + 1;
            ASSERT_GE(n.word2, 0);
            ASSERT_LT(close, s->nodeCount);
            EXPECT_EQ(c.node(close).kind, NodeClose);
            EXPECT_EQ(c.node(close).word1, n.word1);
            EXPECT_NE(n.word1, 0);
        } else if (n.kind == NodeClass) {
            ASSERT_GE(n.word2, 1);
            ASSERT_LT(i + n.word2, s->nodeCount);
            for (int32_t k = 1; k <= n.word2; ++k) {
                uint32_t item = c.node(i + k).kind;
                EXPECT_TRUE(item == NodeChar || item == NodeWideChar || item == NodeRange ||
                            item == NodeCharType || item == NodeProperty || item == NodeBlock ||
                            item == NodeScript);
            }
            i += n.word2;
        } else if (n.kind == NodeString) {
            EXPECT_GE(n.word2, 2);
            EXPECT_GE(n.word4, offsetof(RegExpState, nodes) + sizeof(RegExpNode) * s->nodeCount);
            EXPECT_LE(n.word4 + static_cast<uint32_t>(n.word2), static_cast<uint32_t>(c.size));
        }
    }
    int32_t t = s->trailingLiteral;
    EXPECT_GE(t, -2);
    if (t >= 0) {
        ASSERT_LT(t, s->nodeCount);
        EXPECT_TRUE(c.node(t).kind == NodeChar || c.node(t).kind == NodeString);
    }
}

}  // namespace

TEST(Limits, NestingDepth) {
    Compiled ok = compilePattern(nested(999).c_str());
    ASSERT_EQ(ok.status, zevStatusOk);
    EXPECT_EQ(ok.state()->captureCount, 1000);
    EXPECT_EQ(ok.state()->nodeCount, 999 * 2 + 1);
    Compiled deep = compilePattern(nested(1000).c_str());
    EXPECT_EQ(deep.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(deep.errOffset, 999);
    Compiled huge = compilePattern(nested(100000).c_str());
    EXPECT_EQ(huge.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(huge.errOffset, 999);
    // The head of a conditional may take the depth to 1000 in the first pass.
    Compiled cond = compilePattern(nested(998, "(?(1)a)").c_str());
    EXPECT_EQ(cond.status, zevStatusOk);
}

TEST(Limits, GroupIds) {
    // Lookarounds never give their id back, even when a quantifier removes them.
    EXPECT_EQ(compilePattern(repeat("(?=a)", 999).c_str()).status, zevStatusOk);
    Compiled look = compilePattern(repeat("(?=a)", 1000).c_str());
    EXPECT_EQ(look.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(look.errOffset, 5 * 999);
    Compiled gone = compilePattern(repeat("(?=a)*", 1000).c_str());
    EXPECT_EQ(gone.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(gone.errOffset, 6 * 999);
    EXPECT_EQ(compilePattern(repeat("(?=a)*", 999).c_str()).state()->nodeCount, 0);
    // Comments, (?), (?i) and dissolved groups give their number back.
    EXPECT_EQ(compilePattern(repeat("(?#c)", 3000).c_str()).status, zevStatusOk);
    EXPECT_EQ(compilePattern(repeat("(?)", 3000).c_str()).status, zevStatusOk);
    EXPECT_EQ(compilePattern(repeat("(?i)", 3000).c_str()).state()->nodeCount, 3000);
    EXPECT_EQ(compilePattern(repeat("(?:ab)", 3000).c_str()).state()->nodeCount, 3000);
    EXPECT_EQ(compilePattern(("(a)" + repeat("(?#c)", 3000) + "\\1").c_str()).status, zevStatusOk);
}

TEST(Limits, CapturingGroups) {
    Compiled most = compilePattern(repeat("()", 999).c_str());
    ASSERT_EQ(most.status, zevStatusOk);
    EXPECT_EQ(most.state()->captureCount, 1000);
    EXPECT_EQ(most.node(2 * 998).word3, 999);
    // The 1000th group fails on its id in the second pass ...
    Compiled thousand = compilePattern(repeat("()", 1000).c_str());
    EXPECT_EQ(thousand.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(thousand.errOffset, 2 * 999);
    EXPECT_EQ(thousand.state()->magic, RegExpMagic);
    // ... but 1001 capturing groups already fail in the first.
    Compiled over = compilePattern(repeat("()", 1001).c_str());
    EXPECT_EQ(over.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(over.errOffset, 2 * 1000);
    EXPECT_EQ(over.state()->magic, 0xA5A5A5A5u);
    // \999 is a reference when there are 999 groups.
    Compiled ref = compilePattern((repeat("()", 999) + "\\999").c_str());
    ASSERT_EQ(ref.status, zevStatusOk);
    EXPECT_EQ(ref.node(ref.state()->nodeCount - 1).kind, NodeBackRef);
    EXPECT_EQ(ref.node(ref.state()->nodeCount - 1).word1, 999);
}

TEST(Limits, RepeatCounts) {
    Compiled max = compilePattern("a{65535,65535}b{0,65535}");
    ASSERT_EQ(max.status, zevStatusOk);
    EXPECT_EQ(max.node(1).word1, 65535);
    // Merged counts stop at RepeatUnbounded.
    Compiled merged = compilePattern("a{65535} {65535} +", "x");
    ASSERT_EQ(merged.status, zevStatusOk);
    EXPECT_EQ(merged.node(1).word1, 131071);
    EXPECT_EQ(merged.node(1).word2, RepeatUnbounded);
    Compiled folded = compilePattern(("." + repeat(".{65535}", 20000)).c_str());
    ASSERT_EQ(folded.status, zevStatusOk);
    EXPECT_EQ(folded.state()->nodeCount, 2);
    EXPECT_EQ(folded.node(1).word1, RepeatUnbounded);
}

TEST(Limits, LargePatterns) {
    std::string mb(1 << 20, 'x');
    Compiled lit = compilePattern(mb.c_str());
    ASSERT_EQ(lit.status, zevStatusOk);
    EXPECT_EQ(lit.state()->nodeCount, 1);
    EXPECT_EQ(lit.node(0).word2, 1 << 20);

    Compiled alts = compilePattern(repeat("a|", 1 << 19).c_str());
    ASSERT_EQ(alts.status, zevStatusOk);
    EXPECT_EQ(alts.state()->nodeCount, 1 << 20);

    // The most nodes a pattern can give: one per byte plus the anchor.
    std::string dense = ".*" + repeat("$", (1 << 20) - 2);
    Compiled full = compilePattern(dense.c_str());
    ASSERT_EQ(full.status, zevStatusOk);
    EXPECT_EQ(full.state()->nodeCount, (1 << 20) + 1);

    Compiled unclosed = compilePattern(("[" + mb).c_str());
    EXPECT_EQ(unclosed.status, zevStatusRegExpBadClass);
    EXPECT_EQ(unclosed.errOffset, (1 << 20) + 1);
}

// Truncated constructs at the very end of the pattern give a status; the
// exact-size block and AddressSanitizer catch any read or write beyond.
TEST(Limits, TruncatedInput) {
    for (const char* p : {"\\", "a\\", "\\c", "[\\", "[\\c", "[a-\\", "\\x{", "\\x{12", "[\\x{", "\\p",
                          "\\p{", "\\p{L", "[\\p", "[\\p{", "\\P{^", "(?", "(?<", "(?(", "(?(1", "(?i",
                          "(?#", "[", "[^", "[]", "[[:", "[[:alpha:", "[[:alpha:]", "[a-", "\\Q", "[\\Q",
                          "a{", "a{1,", "a{1,2", "(?x)#", "\\0", "\\01", "[\\0", "\\1", "\\x", "[\\x"}) {
        std::string text(p);
        // Copy into a block of exactly strlen + 1 bytes.
        std::unique_ptr<char[]> exact(new char[text.size() + 1]);
        std::memcpy(exact.get(), text.c_str(), text.size() + 1);
        Compiled c = compilePattern(exact.get());
        if (c.status == zevStatusOk) {
            checkWellFormed(c, text.size());
        } else {
            EXPECT_GE(c.errOffset, 0) << p;
            EXPECT_LE(c.errOffset, static_cast<int32_t>(text.size())) << p;
        }
    }
}

// Compiles into a block with a guard zone behind the size the library
// gives, and checks the outcome. Returns whether the pattern compiled.
bool compileChecked(const std::string& pattern, const char* options) {
    int32_t size = 0;
    EXPECT_EQ(zevsRegExpGetSize(pattern.c_str(), &size), zevStatusOk);
    constexpr size_t Guard = 64;
    std::vector<uint8_t> block(static_cast<size_t>(size) + Guard, 0x5A);
    int32_t err = -1;
    zevStatus st = zevsRegExpInit(pattern.c_str(), options, reinterpret_cast<RegExpState*>(block.data()), &err);
    for (size_t g = 0; g < Guard; ++g) EXPECT_EQ(block[static_cast<size_t>(size) + g], 0x5A) << "write past the record";
    if (st != zevStatusOk) {
        EXPECT_TRUE(st == zevStatusRegExpBadSyntax || st == zevStatusRegExpBadClass ||
                    st == zevStatusRegExpBadReference || st == zevStatusRegExpBadRepeat ||
                    st == zevStatusRegExpBadProperty);
        EXPECT_GE(err, 0);
        EXPECT_LE(err, static_cast<int32_t>(pattern.size()));
        return false;
    }
    EXPECT_EQ(err, -1);
    // Moving the record keeps it valid: it holds offsets, not pointers.
    Compiled view;
    view.block.reset(new uint8_t[static_cast<size_t>(size)]);
    std::memcpy(view.block.get(), block.data(), static_cast<size_t>(size));
    view.size = size;
    checkWellFormed(view, pattern.size());
    return true;
}

const char* const OptionChoices[] = {nullptr, "x", "i", "xs"};

// Random patterns from a small alphabet of tokens that are, alone or
// together, most of the language's corner cases.
TEST(Limits, RandomTokenPatterns) {
    static const char* const tokens[] = {
        "a", "b", "ab", "abc", ".", "\\d", "\\w", "\\s", "(", ")", "(?:", "(?=", "(?!", "(?<=", "(?<!",
        "(?>", "(?i)", "(?x)", "(?-x)", "(?i:", "(?#c)", "|", "*", "+", "?", "??", "{2}", "{1,3}", "{,2}",
        "{}", "{", "}", ",", "[", "]", "[^", "-", "\\", "\\Q", "\\E", "[:alpha:]", "[[:digit:]]", "[:",
        ":]", "[.", "^", "$", "\\1", "\\12", "\\8", "\\0", "\\x41", "\\x{41}", "\\x{20AC}", "\\p{L}",
        "\\pL", "\\P{Greek}", "\\pX", "\\p{", "(?(1)", "(?(?=a)", "\xc3\xa9", "\xe2\x82\xac", "\xff",
        " ", "#", "\n", "\\c", "\\cA", "\\b", "\\B", "\\A", "\\z", "\\C", "\\X", ".*", ".+", "(?:.*)"};
    std::mt19937 rng(12345);
    std::uniform_int_distribution<size_t> pick(0, std::size(tokens) - 1);
    std::uniform_int_distribution<int> length(0, 14);
    int compiled = 0;
    for (int round = 0; round < 30000 && !HasFailure(); ++round) {
        std::string pattern;
        for (int n = length(rng); n > 0; --n) pattern += tokens[pick(rng)];
        SCOPED_TRACE(pattern);
        compiled += compileChecked(pattern, OptionChoices[round % 4]);
    }
    // The alphabet must reach both outcomes in earnest.
    EXPECT_GT(compiled, 3000);
    EXPECT_LT(compiled, 27000);
}

// Random bytes, most of them with a meaning somewhere in the language.
TEST(Limits, RandomBytePatterns) {
    static const char alphabet[] = "()[]{}\\|*+?.^$-:=!<>#,QEcxpP0189aAbBdDwWsSiLg{} \n\xc3\xa9";
    std::mt19937 rng(54321);
    std::uniform_int_distribution<size_t> pick(0, sizeof alphabet - 2);
    std::uniform_int_distribution<int> length(0, 24);
    for (int round = 0; round < 30000 && !HasFailure(); ++round) {
        std::string pattern;
        for (int n = length(rng); n > 0; --n) pattern += alphabet[pick(rng)];
        SCOPED_TRACE(pattern);
        compileChecked(pattern, OptionChoices[round % 4]);
    }
}
