// tests/match/group_test.cpp - capturing, plain, option and conditional
// groups, their repetition through the group frames, and the captures of
// repeated and nested groups.
#include "tests/match/core_test_util.h"

using namespace matchcore;

namespace {

std::vector<Entry> groups(const char* pattern, std::string_view subject, const char* options = nullptr) {
    Options o;
    o.options = options;
    o.capacity = 10;
    const Outcome r = find(pattern, subject, o);
    EXPECT_EQ(r.status, zevStatusOk) << pattern;
    return r.entries;
}

TEST(MatchGroups, ZeroRepeatLeavesTheGroupOut) {
    EXPECT_EQ(groups("(a){0}b", "b"), E({{0, 1}, {-1, -1}}));
    // The options of the group do not reach the b.
    EXPECT_EQ(groups("(?i:a){0}b", "Bb"), E({{1, 1}}));
}

TEST(MatchGroups, FailedBranchRestoresItsCapture) {
    EXPECT_EQ(groups("(a)|b", "b"), E({{0, 1}, {-1, -1}}));
    EXPECT_EQ(groups("(a)x|ay", "ay"), E({{0, 2}, {-1, -1}}));
}

TEST(MatchGroups, RepeatedGroupKeepsTheLastIteration) {
    EXPECT_EQ(groups("(a)*", "aa"), E({{0, 2}, {1, 1}}));
    EXPECT_EQ(groups("(a|b)*c", "abc"), E({{0, 3}, {1, 1}}));
    EXPECT_EQ(groups("(a*)*", "b"), E({{0, 0}, {0, 0}}));
    EXPECT_EQ(groups("(a){2,3}", "aaaa"), E({{0, 3}, {2, 1}}));
    EXPECT_EQ(groups("(a){2,3}", "a"), E({}));
    // (a|b)*c on "abd": no match, and every count given back on the way.
    EXPECT_EQ(groups("(a|b)*c", "abd"), E({}));
    EXPECT_EQ(groups("(a|b)*d", "abd"), E({{0, 3}, {1, 1}}));
    // A quantified group whose body ends in a repeat of width one.
    EXPECT_EQ(groups("(a+)*b", "xaab"), E({{1, 3}, {1, 2}}));
    EXPECT_EQ(groups("(a+)*c", "aab"), E({}));
    EXPECT_EQ(groups("(?:a+)+b", "aaab"), E({{0, 4}}));
}

TEST(MatchGroups, BranchesAndTheWholeLength) {
    // Branch a fails at c; branch ab matches; the whole length is rebuilt.
    EXPECT_EQ(groups("(a|ab)c", "abc"), E({{0, 3}, {0, 2}}));
    EXPECT_EQ(groups("x(a|ab)(c|bcd)", "xabcd"), E({{0, 5}, {1, 1}, {2, 3}}));
}

TEST(MatchGroups, LazyGroups) {
    EXPECT_EQ(groups("(?:a|b)+?c", "abc"), E({{0, 3}}));
    EXPECT_EQ(groups("(a)+?", "aaa"), E({{0, 1}, {0, 1}}));
    EXPECT_EQ(groups("(a)*?b", "aab"), E({{0, 3}, {1, 1}}));
    EXPECT_EQ(groups("(a)??b", "b"), E({{0, 1}, {-1, -1}}));
    EXPECT_EQ(groups("(ab){2,}?", "ababab"), E({{0, 4}, {2, 2}}));
}

TEST(MatchGroups, EmptyIterationEndsTheRepeat) {
    EXPECT_EQ(groups("(a?){3}", ""), E({{0, 0}, {0, 0}}));
    EXPECT_EQ(groups("(a?){3}b", "ab"), E({{0, 2}, {1, 0}}));
}

TEST(MatchGroups, NestedFramesAreSharedByIterations) {
    // One frame per id: the inner group's frame is overwritten by the second
    // outer iteration, so the backtrack into the first finds no way out.
    EXPECT_EQ(groups("((a+)){2}", "aa"), E({}));
    EXPECT_EQ(groups("((a)b)+", "abab"), E({{0, 4}, {2, 2}, {2, 1}}));
    EXPECT_EQ(groups("(?:(a)|(b))+", "ab"), E({{0, 2}, {0, 1}, {1, 1}}));
}

TEST(MatchGroups, Conditionals) {
    EXPECT_EQ(groups("(a)(?(1)b|c)", "ab"), E({{0, 2}, {0, 1}}));
    EXPECT_EQ(groups("(a)?(?(1)b|c)", "c"), E({{0, 1}, {-1, -1}}));
    // Group 1 comes later and is unset: false, no second branch, c runs next.
    EXPECT_EQ(groups("(?(1)b)c(x)?", "c"), E({{0, 1}, {-1, -1}}));
    EXPECT_EQ(groups("(?(?=a)ab|cd)", "xcdab"), E({{1, 2}}));
    EXPECT_EQ(groups("(?(?!a)cd|ab)", "xab"), E({{1, 2}}));
    EXPECT_EQ(groups("(?(?<=x)a|b)", "bxa"), E({{0, 1}}));
}

TEST(MatchGroups, OptionGroupsAndInlineOptions) {
    EXPECT_EQ(groups("a(?i:b)c", "aBc"), E({{0, 3}}));
    EXPECT_EQ(groups("a(?i:b)c", "aBC"), E({}));
    // Options set in a branch hold to the end of the enclosing group, later
    // branches included.
    EXPECT_EQ(groups("a(?i)b|c", "C"), E({{0, 1}}));
    EXPECT_EQ(groups("(a(?i)b|c)d", "CD"), E({}));
    EXPECT_EQ(groups("(a(?i)b|c)d", "Cd"), E({{0, 2}, {0, 1}}));
    EXPECT_EQ(groups("(a(?i)b)c", "aBc"), E({{0, 3}, {0, 2}}));
    EXPECT_EQ(groups("(a(?i)b)c", "aBC"), E({}));
    EXPECT_EQ(groups("(?i:a|b)+c", "ABc"), E({{0, 3}}));
}

TEST(MatchGroups, BudgetOfAGroupRepeat) {
    // (?:ab)+ on "abab": the head, then "ab" and the close per iteration
    // (the re-entry is not dispatched), then "ab" failing at the end; the
    // continuation behind the group is the end of the pattern and free.
    EXPECT_EQ(unitsNeeded("(?:ab)+", "abab"), 6);
    EXPECT_EQ(unitsNeeded("(?:ab)+?", "abab"), 3);
    // The worked example: (a|b)*c on "abd" fails at 0, 1, 2 and 3.
    EXPECT_GT(unitsNeeded("(a|b)*c", "abd"), 0);
}

}  // namespace
