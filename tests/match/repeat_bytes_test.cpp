// Repeats of bytes and back-references: the lengths tried and their order
// (seen through which continuation wins and through the budget its runs
// spend), the early exits, the look of the lazy loops, and the bookkeeping of
// captures[0].length. Every run is made with the shortcuts off and on, and
// both must agree on result, budget and length.

#include <gtest/gtest.h>

#include "repeat_machine.h"

using namespace repeat_test;

namespace {

struct Case {
    Machine machine;
    Outcome run(const std::string& subject, int32_t budget = 1000, int32_t start = 0, uint32_t flags = 0,
                CaptureRecord group = CaptureRecord{0, -1}, int32_t length0 = 0) {
        bool agree = false;
        Outcome o = machine.both(subject, budget, start, -1,
                                 [&](MatchContext& c) {
                                     c.flags = flags;
                                     c.captures[1] = group;
                                     c.captures[0].length = length0;
                                 },
                                 &agree);
        EXPECT_TRUE(agree) << subject;
        return o;
    }
};

TEST(RepeatChar, GreedyStarThenLiteralSpendsTwoUnitsWhateverTheRun) {
    Case c{Machine({chr('a'), greedy(0, Many), chr('b')})};
    for (const char* s : {"ab", "aaab", "aaaaaaaaaaaaaaaaaaab"}) {
        Outcome o = c.run(s);
        EXPECT_EQ(o.result, 0);
        EXPECT_EQ(spent(o, 1000), 2) << s;
        EXPECT_EQ(o.length, static_cast<int32_t>(strlen(s)));
    }
    EXPECT_EQ(c.run("aaab", 2).result, 0);
    Outcome starved = c.run("aaab", 1);
    EXPECT_EQ(starved.result, 1);
    EXPECT_LT(starved.budgetLeft, 0);
}

TEST(RepeatChar, BoundedGreedyTriesLongestFirstDownToTheMinimum) {
    Case failing{Machine({chr('a'), greedy(2, 3), chr('x')})};
    Outcome o = failing.run("aaaa");
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 1000), 3);   // the node, then runs at offsets 3 and 2
    EXPECT_EQ(o.length, 0);
    Case taking{Machine({chr('a'), greedy(2, 3), chr('a')})};
    EXPECT_EQ(taking.run("aaaa").length, 4);   // offset 3 is tried first
}

TEST(RepeatChar, LazyTriesShortestFirstAndLooksAtTheNextByte) {
    Case taking{Machine({chr('a'), lazy(2, 3), chr('a')})};
    EXPECT_EQ(taking.run("aaaa").length, 3);   // offset 2 is tried first
    Case failing{Machine({chr('a'), lazy(2, 3), chr('x')})};
    EXPECT_EQ(spent(failing.run("aaaa"), 1000), 1);                  // the look rules out both
    EXPECT_EQ(spent(failing.run("aaaa", 1000, 0, OptionIgnoreCase), 1000), 3);   // no look
    Case ab{Machine({chr('a'), lazy(0, Many), chr('b')})};
    Outcome o = ab.run("aab");
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(spent(o, 1000), 2);   // one run only, at offset 2
    EXPECT_EQ(spent(ab.run("aab", 1000, 0, OptionIgnoreCase), 1000), 4);
}

TEST(RepeatChar, EmptyAreaAndZeroCounts) {
    Case plus{Machine({chr('a'), greedy(1, Many), chr('x')})};
    EXPECT_EQ(spent(plus.run(""), 1000), 1);   // refused before any matcher runs
    Case star{Machine({chr('a'), greedy(0, Many), chr('x')})};
    EXPECT_EQ(spent(star.run(""), 1000), 2);   // one run of the continuation
    Case zero{Machine({chr('a'), greedy(0, 0), chr('a')})};
    EXPECT_EQ(zero.run("aaa").length, 1);
    Case zeroLazy{Machine({chr('a'), lazy(0, 0), chr('x')})};
    Outcome o = zeroLazy.run("aaa", 1000, 0, OptionIgnoreCase);
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 1000), 2);
    Case tooFew{Machine({chr('x'), greedy(3, 3)})};
    EXPECT_EQ(tooFew.run("xx").result, 1);
}

TEST(RepeatChar, FailureLeavesTheWholeMatchLengthAsFound) {
    for (RegExpNode repeat : {greedy(0, Many), lazy(0, Many), greedy(1, 2), lazy(1, 2)}) {
        Case c{Machine({chr('a'), repeat, chr('x')})};
        Outcome o = c.run("aaa", 1000, 0, OptionIgnoreCase, CaptureRecord{0, -1}, 7);
        EXPECT_EQ(o.result, 1);
        EXPECT_EQ(o.length, 7);
    }
}

TEST(RepeatChar, IgnoreCaseIsAsciiOnly) {
    Case c{Machine({chr('k'), greedy(0, Many)})};
    EXPECT_EQ(c.run("kKkK\xC4\xB8k", 1000, 0, OptionIgnoreCase).length, 4);
    EXPECT_EQ(c.run("kKkK", 1000, 0, 0).length, 1);
}

// The scan of a literal run goes eight bytes at a time: runs of every length
// around that width, from unaligned starts, with and without a bound.
TEST(RepeatChar, RunsAcrossWordWidths) {
    Case star{Machine({chr('a'), greedy(0, Many)})};
    Case bounded{Machine({chr('a'), greedy(0, 9)})};
    for (int n = 0; n <= 20; ++n) {
        for (int start = 0; start < 3; ++start) {
            std::string s = std::string(static_cast<size_t>(start), 'b') + std::string(static_cast<size_t>(n), 'a') + "ba";
            EXPECT_EQ(star.run(s, 1000, start).length, n) << n << " from " << start;
            EXPECT_EQ(bounded.run(s, 1000, start).length, std::min(n, 9)) << n << " from " << start;
            EXPECT_EQ(star.run(s.substr(0, static_cast<size_t>(start + n)), 1000, start).length, n);
        }
    }
}

TEST(RepeatAnyByte, StepsBackThroughMultiByteCharacters) {
    Case c{Machine({node(NodeAnyByte), greedy(0, Many), chr(0x82)})};
    Outcome o = c.run("\xE2\x82\xAC");
    EXPECT_EQ(o.result, 0);
    EXPECT_EQ(o.length, 2);
    EXPECT_EQ(spent(o, 1000), 4);   // the node, runs at 3, 2 and 1
    Case lazyX{Machine({node(NodeAnyByte), lazy(0, Many), chr('x')})};
    Outcome l = lazyX.run("abcx");
    EXPECT_EQ(l.length, 4);
    EXPECT_EQ(spent(l, 1000), 2);
}

TEST(RepeatBackRef, CopiesOfTheCapturedText) {
    Case c{Machine({node(NodeBackRef, 1), greedy(0, Many), chr('x')})};
    Outcome o = c.run("ababab", 1000, 2, 0, CaptureRecord{0, 2});
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 1000), 4);   // two copies taken: runs at 4, 2, 0
    Case tail{Machine({node(NodeBackRef, 1), greedy(0, Many)})};
    EXPECT_EQ(tail.run("abAB", 1000, 2, OptionIgnoreCase, CaptureRecord{0, 2}).length, 2);
    EXPECT_EQ(tail.run("abAB", 1000, 2, 0, CaptureRecord{0, 2}).length, 0);
    // Unset group: no copy; with a minimum of 1 no match.
    EXPECT_EQ(tail.run("b", 1000, 0).length, 0);
    Case needed{Machine({node(NodeBackRef, 1), greedy(1, Many)})};
    EXPECT_EQ(needed.run("b", 1000, 0).result, 1);
    // The early exit counts L bytes per copy of the minimum.
    Case two{Machine({node(NodeBackRef, 1), greedy(2, Many)})};
    EXPECT_EQ(two.run("abab" "a", 1000, 2, 0, CaptureRecord{0, 2}).result, 1);
    EXPECT_EQ(two.run("ababab", 1000, 2, 0, CaptureRecord{0, 2}).length, 4);
}

TEST(RepeatBackRef, EmptyCaptureRunsTheSameContinuationPerCount) {
    Case c{Machine({node(NodeBackRef, 1), greedy(0, Many), chr('y')})};
    Outcome o = c.run("xxxxx", 1000, 0, 0, CaptureRecord{0, 0});
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 1000), 7);   // counts 5 down to 0: six runs
    Case lazyRef{Machine({node(NodeBackRef, 1), lazy(0, Many), chr('y')})};
    EXPECT_EQ(spent(lazyRef.run("xxxxx", 1000, 0, 0, CaptureRecord{0, 0}), 1000), 1);   // the look
    Outcome unbounded = lazyRef.run("xxxxx", 1000, 0, OptionIgnoreCase, CaptureRecord{0, 0});
    EXPECT_EQ(unbounded.result, 1);
    EXPECT_LT(unbounded.budgetLeft, 0);   // every pass spends until none is left
    Case bounded{Machine({node(NodeBackRef, 1), lazy(0, 3), chr('y')})};
    EXPECT_EQ(spent(bounded.run("xx", 1000, 0, OptionIgnoreCase, CaptureRecord{0, 0}), 1000), 5);
    Case last{Machine({node(NodeBackRef, 1), lazy(0, Many)})};
    EXPECT_EQ(last.run("xx", 1000, 0, 0, CaptureRecord{0, 0}).result, 0);
}

TEST(RepeatBackRef, RejectEmptyEndsTheLazyPassesWithoutSpending) {
    Machine m({node(NodeBackRef, 1), lazy(0, Many)});
    bool agree = false;
    Outcome o = m.both("xx", 1000, 0, -1,
                       [](MatchContext& c) {
                           c.rejectEmpty = 1;
                           c.captures[1] = CaptureRecord{0, 0};
                       },
                       &agree);
    EXPECT_TRUE(agree);
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 1000), 1);
}

}  // namespace
