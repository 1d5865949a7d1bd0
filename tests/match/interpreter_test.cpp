// tests/match/interpreter_test.cpp - the single steps of the node
// interpreter, the repeat hand-over and the budget per node dispatched.
#include "tests/match/core_test_util.h"

using namespace matchcore;

namespace {

TEST(MatchInterpreter, LiteralsAndCase) {
    EXPECT_EQ(whole("abc", "xxabcx"), (Entry{2, 3}));
    EXPECT_EQ(whole("abc", "ABC", "i"), (Entry{0, 3}));
    EXPECT_EQ(whole("abc", "ABC"), (Entry{-1, -1}));
    // ASCII letters only fold: 0xE9 and 0xC9 stay apart.
    EXPECT_EQ(whole("\\xe9", "\xC9", "i"), (Entry{-1, -1}));
    // A string longer than what is left fails without reading behind it.
    EXPECT_EQ(whole("abcd", "abc"), (Entry{-1, -1}));
}

TEST(MatchInterpreter, BackReferences) {
    EXPECT_EQ(whole("(a+)b\\1", "aabaa"), (Entry{0, 5}));
    EXPECT_EQ(whole("(a)\\1", "aA", "i"), (Entry{0, 2}));
    // A group that has not taken part fails the reference.
    EXPECT_EQ(whole("(a)?b\\1", "b"), (Entry{-1, -1}));
    // A group that matched empty: the reference fails at the end of the
    // subject and succeeds elsewhere.
    EXPECT_EQ(whole("(x?)\\1", ""), (Entry{-1, -1}));
    EXPECT_EQ(whole("(x?)\\1", "a"), (Entry{0, 0}));
}

TEST(MatchInterpreter, CharTypesStepOverWholeCharacters) {
    EXPECT_EQ(whole("\\D", "\xE2\x82\xAC"), (Entry{0, 3}));
    EXPECT_EQ(whole("\\W\\W", "\xE2\x82\xAC!"), (Entry{0, 4}));
    EXPECT_EQ(whole("\\w", "\xC3\xA9x"), (Entry{2, 1}));
    // A lone continuation byte is one malformed character.
    EXPECT_EQ(whole("\\S", "\x80"), (Entry{0, 1}));
    EXPECT_EQ(whole("a\\sb", "a\x0b" "b a b"), (Entry{4, 3}));
}

TEST(MatchInterpreter, WideCharsByCodePoint) {
    EXPECT_EQ(whole("\\x{20ac}", "x\xE2\x82\xAC"), (Entry{1, 3}));
    EXPECT_EQ(whole("\\x{e9}", "\xC3\x89", "i"), (Entry{0, 2}));
    // Under case folding k matches the Kelvin sign, and the step is the
    // length of k's encoding: one byte, not the three of U+212A.
    EXPECT_EQ(whole("\\x{6b}", "\xE2\x84\xAA", "i"), (Entry{0, 1}));
    EXPECT_EQ(whole("\\x{6b}\\x{84}", "\xE2\x84\xAA", "i"), (Entry{-1, -1}));
}

TEST(MatchInterpreter, PropertiesAndClusters) {
    EXPECT_EQ(whole("\\p{Lu}", "a\xC3\x89"), (Entry{1, 2}));
    EXPECT_EQ(whole("\\P{L}", "ab1"), (Entry{2, 1}));
    EXPECT_EQ(whole("\\p{Greek}", "a\xCE\xB1"), (Entry{1, 2}));
    EXPECT_EQ(whole("\\p{InGreek}", "a\xCE\xB1"), (Entry{1, 2}));
    EXPECT_EQ(whole("\\p{Any}", "\xE2\x82\xAC"), (Entry{0, 3}));
    // e + combining acute is one cluster; a mark alone begins none.
    EXPECT_EQ(whole("\\X", "e\xCC\x81" "a"), (Entry{0, 3}));
    EXPECT_EQ(whole("\\Xa", "\xCC\x81" "ba"), (Entry{2, 2}));
}

TEST(MatchInterpreter, AnyByteAndRepeatHandOver) {
    EXPECT_EQ(whole("\\C\\C", "\xC3\xA9"), (Entry{0, 2}));
    // A repeat with a minimum fails at once on an empty remainder.
    EXPECT_EQ(whole("a+", ""), (Entry{-1, -1}));
    EXPECT_EQ(whole("a*", ""), (Entry{0, 0}));
    EXPECT_EQ(whole("[ab]+c", "xabac"), (Entry{1, 4}));
    EXPECT_EQ(whole("[^a]", "\xE2\x82\xAC"), (Entry{0, 3}));
    // Each single-item family goes to its repeat matcher.
    EXPECT_EQ(whole("(a)\\1+b", "aaab"), (Entry{0, 4}));
    EXPECT_EQ(whole("\\C+?\\x{20ac}", "ab\xE2\x82\xAC"), (Entry{0, 5}));
    EXPECT_EQ(whole("\\X+", "e\xCC\x81" "a"), (Entry{0, 4}));
    EXPECT_EQ(whole("\\x{e9}+", "\xC3\xA9\xC3\xA9x"), (Entry{0, 4}));
}

TEST(MatchInterpreter, RepeatsWithoutOperandNeverRun) {
    // An assertion with a repeat of minimum 1 behind it: the assertion is
    // evaluated and the repeat node reached on its own fails.
    EXPECT_EQ(whole("a\\b+", "a b"), (Entry{-1, -1}));
}

TEST(MatchInterpreter, BudgetOneUnitPerNode) {
    // A pattern of N nodes that matches straight through needs N units.
    EXPECT_EQ(unitsNeeded("a\\db\\d", "a1b2"), 4);
    // Zero-width nodes cost their dispatch too.
    EXPECT_EQ(unitsNeeded("\\ba", "a"), 2);
    EXPECT_EQ(unitsNeeded("(?=a)a", "a"), 3);
    // A group costs its head, its body and its close.
    EXPECT_EQ(unitsNeeded("(a)", "a"), 3);
    // A failing search needs the units of all its places too, the end of
    // the subject included (a is dispatched there and fails).
    EXPECT_EQ(unitsNeeded("a\\d", "aaa"), 2 + 2 + 2 + 1);
}

TEST(MatchInterpreter, RejectEmptyAppliesAtTheEndOfEveryRange) {
    // In the retry an empty lookahead body at the start of the attempt
    // reaches its end with nothing consumed and fails: the lookahead fails.
    Options o;
    o.options = "g";
    EXPECT_EQ(find("(?=)a??", "a", o).entries, E({{0, 0}, {1, 0}}));
    EXPECT_EQ(find("a??", "a", o).entries, E({{0, 0}, {0, 1}, {1, 0}}));
}

}  // namespace
