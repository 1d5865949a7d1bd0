// tests/match/driver_test.cpp - the search driver: argument checks, the
// trailing-literal cut, anchor modes, format stepping, single and global
// walks with the one-byte retry, and where the budget turns into a status.
#include "tests/match/core_test_util.h"

using namespace matchcore;

namespace {

TEST(MatchDriver, ChecksComeInOrder) {
    StatePtr state = compile("a");
    RegExpFindEntry find[2] = {};
    int32_t count = 2;
    const uint8_t text[] = "a";
    EXPECT_EQ(zevsRegExpFind_8u(nullptr, -1, state.get(), find, &count), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpFind_8u(text, 1, nullptr, find, &count), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpFind_8u(text, 1, state.get(), nullptr, &count), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpFind_8u(text, -1, state.get(), find, &count), zevStatusBadLength);
    count = 0;
    EXPECT_EQ(zevsRegExpFind_8u(text, 1, state.get(), find, &count), zevStatusBadSize);
    EXPECT_EQ(count, 0);
    // A record whose first word is not the magic.
    std::vector<uint8_t> raw(RegExpBaseSize + 40, 0);
    count = 2;
    EXPECT_EQ(zevsRegExpFind_8u(text, 1, reinterpret_cast<RegExpState*>(raw.data()), find, &count),
              zevStatusRegExpBadState);
    EXPECT_EQ(count, 2);
    // An empty subject still gets one attempt; a null one is refused even so.
    EXPECT_EQ(zevsRegExpFind_8u(nullptr, 0, state.get(), find, &count), zevStatusNullPointer);
    EXPECT_EQ(find[0].start, nullptr);
}

TEST(MatchDriver, SingleSearchEntries) {
    Outcome r = find("a", "bab");
    EXPECT_EQ(r.count, 1);
    EXPECT_EQ(r.entries, E({{1, 1}}));

    Options three;
    three.capacity = 3;
    r = find("(a)(b)?", "a", three);
    EXPECT_EQ(r.count, 3);
    EXPECT_EQ(r.entries, E({{0, 1}, {0, 1}, {-1, -1}}));

    Options one;
    one.capacity = 1;
    r = find("(a)(b)?", "a", one);
    EXPECT_EQ(r.count, 1);
    EXPECT_EQ(r.entries, E({{0, 1}}));

    r = find("x", "abc");
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.count, 0);

    // The empty pattern matches the empty string at once.
    r = find("", "abc");
    EXPECT_EQ(r.entries, E({{0, 0}}));
    r = find("", "");
    EXPECT_EQ(r.entries, E({{0, 0}}));
}

TEST(MatchDriver, TrailingLiteralCut) {
    // The literal's last occurrence bounds every match: `a.*b` cannot run past
    // the last b, and a subject without it is searched as an empty one.
    EXPECT_EQ(whole("a\\S*b", "xaxbxbxx"), (Entry{1, 5}));
    EXPECT_EQ(whole("a\\S*b", "xaxx"), (Entry{-1, -1}));
    EXPECT_EQ(whole("x*b", "aaa"), (Entry{-1, -1}));
    // Case-blind literals are found case-blind, by ASCII letters only.
    EXPECT_EQ(whole("a\\S*b", "aBxb", "i"), (Entry{0, 4}));
    EXPECT_EQ(whole("a\\S*bc", "aBCxBc", "i"), (Entry{0, 6}));
    EXPECT_EQ(whole("(?i)a\\S*bc", "aBCxBcz"), (Entry{0, 6}));
    EXPECT_EQ(whole("\\xe9\\S*b", "\xC9" "b", "i"), (Entry{-1, -1}));
    // $ sees the end of the cut area, not of the subject.
    EXPECT_EQ(whole("ab$", "abab"), (Entry{2, 2}));
}

TEST(MatchDriver, AnchorModes) {
    EXPECT_EQ(whole("^b", "ab"), (Entry{-1, -1}));
    EXPECT_EQ(whole("\\Ab", "ab"), (Entry{-1, -1}));
    EXPECT_EQ(whole("^b", "a\nb", "m"), (Entry{2, 1}));
    // Only the record's options count for the analysis: with an inline (?m)
    // the pattern starts with a NodeSetOptions, not an assertion.
    EXPECT_EQ(whole("(?m)^b", "a\nb"), (Entry{2, 1}));
    // An optional anchor binds nothing.
    EXPECT_EQ(whole("^*b", "ab"), (Entry{1, 1}));
    // In line mode the optional anchor still limits the places to line starts.
    EXPECT_EQ(whole("^*b", "ab", "m"), (Entry{-1, -1}));
    // A top-level bar turns the analysis off.
    EXPECT_EQ(whole("^a|b", "cb"), (Entry{1, 1}));
    // The implicit anchor of a leading .*: every place is tried, line starts pass.
    EXPECT_EQ(whole(".*b", "xx\nab"), (Entry{3, 2}));
    EXPECT_EQ(whole(".*b", "xb\nab"), (Entry{0, 2}));
    EXPECT_EQ(whole(".*b", "xx\nac"), (Entry{-1, -1}));
}

TEST(MatchDriver, LineModeVisitsOnlyLineStarts) {
    // Budget shows the number of attempts: ^b with m on "a\nb" tries offsets
    // 0 and 2 only, each dispatching the assertion and the b.
    EXPECT_EQ(unitsNeeded("^b", "a\nb", "m"), 4);
    EXPECT_EQ(unitsNeeded("^b", "a\nxb", "m"), 4);
}

TEST(MatchDriver, InlineOptionsDoNotOutliveAnAttempt) {
    EXPECT_EQ(whole("x(?i)y", "xaXy"), (Entry{-1, -1}));
    EXPECT_EQ(whole("x(?i)y", "xaxY"), (Entry{2, 2}));
}

TEST(MatchDriver, FormatDecidesTheStep) {
    // "é" is two bytes; format 1 never starts inside it, format 0 does.
    const std::string subject = "\xC3\xA9";
    Options o;
    o.format = 1;
    EXPECT_EQ(find("\\xA9", subject, o).count, 0);
    o.format = 0;
    EXPECT_EQ(find("\\xA9", subject, o).entries, E({{1, 1}}));
    // A malformed byte is a step of one byte in format 1 too.
    o.format = 1;
    EXPECT_EQ(find("\\xA9", "\xA9\xA9", o).entries, E({{0, 1}}));
    EXPECT_EQ(find("\\xA9", "\xC3\xA9\xA9", o).entries, E({{2, 1}}));
    // After a non-empty match the walk goes on behind it, whatever the format.
    o.options = "g";
    EXPECT_EQ(find("\\C", subject, o).entries, E({{0, 1}, {1, 1}}));
}

TEST(MatchDriver, GlobalReportsGroupsOrWholeMatch) {
    Options o;
    o.options = "g";
    EXPECT_EQ(find("a", "aba", o).entries, E({{0, 1}, {2, 1}}));
    EXPECT_EQ(find("(a)b", "abab", o).entries, E({{0, 1}, {2, 1}}));
    EXPECT_EQ(find("(a)(b)", "abab", o).entries, E({{0, 1}, {1, 1}, {2, 1}, {3, 1}}));
    // The replacement's search gets the whole match and the groups.
    StatePtr state = compile("(a)b", "g");
    const Outcome r = search(state.get(), "abab", 10, 1);
    EXPECT_EQ(r.entries, E({{0, 2}, {0, 1}, {2, 2}, {2, 1}}));
}

TEST(MatchDriver, GlobalCapacity) {
    Options o;
    o.options = "g";
    o.capacity = 1;
    Outcome r = find("(a)(b)", "ab", o);   // one match needs two entries
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.count, 0);
    o.capacity = 3;
    r = find("a", "aaaaa", o);
    EXPECT_EQ(r.count, 3);
    EXPECT_EQ(r.entries, E({{0, 1}, {1, 1}, {2, 1}}));
}

TEST(MatchDriver, EmptyMatchesAndTheRetry) {
    Options o;
    o.options = "g";
    // Empty at 0, the retry finds nothing, then 1 and 2 (the end).
    EXPECT_EQ(find("x*", "ab", o).entries, E({{0, 0}, {1, 0}, {2, 0}}));
    // The retry at an empty match finds the non-empty one at the same place;
    // the walk then goes on one byte behind the empty match.
    EXPECT_EQ(find("a??", "aa", o).entries, E({{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}}));
    // Top-level branches report an empty match in the retry again.
    EXPECT_EQ(find("|a", "a", o).entries, E({{0, 0}, {0, 0}, {1, 0}}));
    // No room for the retry's match: the walk just moves on.
    o.capacity = 2;
    EXPECT_EQ(find("a??", "aa", o).entries, E({{0, 0}, {1, 0}}));
}

TEST(MatchDriver, BudgetCounts) {
    EXPECT_EQ(unitsNeeded("a\\dc", "a1c"), 3);
    EXPECT_EQ(unitsNeeded("a*b", "aaab"), 2);
    EXPECT_EQ(unitsNeeded("a*b", "aaaaaaaab"), 2);
    // Every failed place costs its first node: one for "ab" at 0.
    EXPECT_EQ(unitsNeeded("ab", "bab"), 1 + 1);
    Options o;
    o.limit = 1;
    Outcome r = find("a*b", "aaab", o);
    EXPECT_EQ(r.status, zevStatusRegExpMatchLimit);
    EXPECT_EQ(r.count, 1);   // min(capacity, captureCount), set before the search
    o.limit = 0;
    EXPECT_EQ(find("a", "a", o).status, zevStatusRegExpMatchLimit);
    // With 0 the empty pattern still succeeds: no node is dispatched.
    EXPECT_EQ(find("", "a", o).status, zevStatusOk);
}

TEST(MatchDriver, BudgetInGlobalWalk) {
    Options o;
    o.options = "g";
    o.limit = 2;   // two matches of `a` spend one unit each; the third fails
    Outcome r = find("a", "aaa", o);
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.entries, E({{0, 1}, {1, 1}}));
    EXPECT_EQ(r.budgetLeft, -1);
    // A scan that ends without a match does not look at the budget...
    o.limit = 0;
    r = find("a", "aaa", o);
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.count, 0);
    // ...but the retry does: x* on "ab" spends 1 on the empty match at 0 and
    // 2 on the retry (offsets 0 and 1); with 2 units the retry runs dry. The
    // count keeps its input value, the entries so far are written.
    o.limit = 2;
    r = find("x*", "ab", o);
    EXPECT_EQ(r.status, zevStatusRegExpMatchLimit);
    EXPECT_EQ(r.count, 10);
    EXPECT_EQ(r.entries.at(0), (Entry{0, 0}));
    o.limit = 3;
    r = find("x*", "ab", o);
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.entries, E({{0, 0}}));
}

TEST(MatchDriver, ReadsNothingBehindTheSubject) {
    // \b at the true end sees a non-word byte there; `$` and `\z` the end.
    EXPECT_EQ(whole("a\\b", "a"), (Entry{0, 1}));
    EXPECT_EQ(whole("a\\B", "a"), (Entry{-1, -1}));
    // A lead byte at the end is a malformed one-byte character.
    EXPECT_EQ(whole(".$", "\xC3"), (Entry{0, 1}));
    EXPECT_EQ(whole("\\x{e9}", "\xC3"), (Entry{-1, -1}));
}

}  // namespace
