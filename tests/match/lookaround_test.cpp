// tests/match/lookaround_test.cpp - NodeAssert letters, lookahead,
// lookbehind over UTF-8, and atomic groups.
#include "tests/match/core_test_util.h"

using namespace matchcore;

namespace {

// Offsets at which a zero-width pattern matches, through a global search.
std::vector<int32_t> places(const char* pattern, std::string_view subject, const char* options = "g") {
    Options o;
    o.options = options;
    o.capacity = 64;
    const Outcome r = find(pattern, subject, o);
    EXPECT_EQ(r.status, zevStatusOk) << pattern;
    std::vector<int32_t> out;
    for (const Entry& e : r.entries) {
        out.push_back(e.offset);
    }
    return out;
}

using V = std::vector<int32_t>;

TEST(MatchAssertions, LineAndSubjectEnds) {
    EXPECT_EQ(places("^", "a\n", "gm"), V({0}));
    EXPECT_EQ(places("$", "a\n"), V({1, 2}));
    EXPECT_EQ(places("\\Z", "a\nb\n", "gm"), V({3, 4}));
    EXPECT_EQ(places("\\z", "a\nb\n", "gm"), V({4}));
    EXPECT_EQ(places("$", "a\nb\n", "gm"), V({1, 3, 4}));
    EXPECT_EQ(places("\\A", "ab"), V({0}));
    EXPECT_EQ(places("\\G", "ab"), V({0}));
    // An inline (?m) counts for the assertion itself.
    EXPECT_EQ(places("(?m)$", "a\nb"), V({1, 3}));
}

TEST(MatchAssertions, WordBoundaries) {
    EXPECT_EQ(places("\\b", "ab cd"), V({0, 2, 3, 5}));
    EXPECT_EQ(places("\\B", "ab cd"), V({1, 4}));
    EXPECT_EQ(places("\\b", " a"), V({1, 2}));
    // Between a word byte and a multi-byte character there is a boundary:
    // the lead byte is non-word.
    EXPECT_EQ(places("\\b", "a\xC3\xA9"), V({0, 1}));
    // An optional \b is not evaluated at all.
    EXPECT_EQ(places("\\b?x", "ax"), V({1}));
}

TEST(MatchLookahead, PositiveAndNegative) {
    EXPECT_EQ(whole("a(?=b)", "acab"), (Entry{2, 1}));
    EXPECT_EQ(whole("a(?!b)", "abac"), (Entry{2, 1}));
    EXPECT_EQ(whole("(?=a|b)\\w", "cb"), (Entry{1, 1}));
    // Captures set in a positive lookahead stay set.
    Options o;
    o.capacity = 3;
    EXPECT_EQ(find("(?=(a))a\\1", "aa", o).entries, E({{0, 2}, {0, 1}}));
    EXPECT_EQ(find("(?!(a))b", "b", o).entries, E({{0, 1}, {-1, -1}}));
    // The body is atomic: the first way through it is final.
    EXPECT_EQ(whole("(?=(a+))a\\1$", "aaa"), (Entry{-1, -1}));
    EXPECT_EQ(whole("(?=(a+))a*b\\1", "baaabac"), (Entry{3, 3}));
}

TEST(MatchLookbehind, FixedWidthBehind) {
    EXPECT_EQ(whole("(?<=ab)c", "abc"), (Entry{2, 1}));
    EXPECT_EQ(whole("(?<=ab)c", "bc"), (Entry{-1, -1}));
    EXPECT_EQ(whole("(?<!a)b", "b"), (Entry{0, 1}));
    EXPECT_EQ(whole("(?<!a)b", "ab"), (Entry{-1, -1}));
    EXPECT_EQ(whole("(?<=a|b)c", "xbc"), (Entry{2, 1}));
    // The width counts characters: one for a two-byte "é".
    EXPECT_EQ(whole("(?<=\\x{e9})x", "\xC3\xA9x"), (Entry{2, 1}));
    EXPECT_EQ(whole("(?<=.)x", "\xE2\x82\xACx"), (Entry{3, 1}));
    EXPECT_EQ(whole("(?<=a\\S)x", "a\xE2\x82\xACx"), (Entry{4, 1}));
    // Fewer characters than the width but enough bytes: the body starts
    // `width` bytes back, and nothing checks that it ends at p.
    EXPECT_EQ(whole("(?<=..)x", "\xC3\xA9x"), (Entry{2, 1}));
    // \C has no width: its body runs forward from p.
    EXPECT_EQ(whole("(?<=\\C)x", "ax"), (Entry{1, 1}));
    EXPECT_EQ(whole("(?<=(b))c", "abc"), (Entry{2, 1}));
}

TEST(MatchAtomic, BodyIsFinal) {
    EXPECT_EQ(whole("(?>a+)a", "aaa"), (Entry{-1, -1}));
    EXPECT_EQ(whole("(?>a|ab)c", "abc"), (Entry{-1, -1}));
    EXPECT_EQ(whole("(?>a)+b", "aab"), (Entry{0, 3}));
    EXPECT_EQ(whole("(?>a){2,3}a", "aaa"), (Entry{0, 3}));
    EXPECT_EQ(whole("(?>a*)*b", "ccb"), (Entry{2, 1}));
    EXPECT_EQ(whole("(?>a?)??b", "b"), (Entry{0, 1}));
    EXPECT_EQ(whole("(?>a){0}b", "ab"), (Entry{1, 1}));
    EXPECT_EQ(whole("(?>ab)*?c", "ababc"), (Entry{0, 5}));
    EXPECT_EQ(whole("(?>ab){2,}?", "ababab"), (Entry{0, 4}));
    EXPECT_EQ(whole("(?>a)*?c", "aab"), (Entry{-1, -1}));
    EXPECT_EQ(whole("(?>x?)+?b", "b"), (Entry{0, 1}));
    EXPECT_EQ(whole("(?>x?)+?b", "c"), (Entry{-1, -1}));
    // Captures in the body stay as the body set them when what follows fails.
    Options o;
    o.capacity = 3;
    EXPECT_EQ(find("(?>(a))b|ac", "ac", o).entries, E({{0, 2}, {0, 1}}));
}

}  // namespace
