// Repeats of grapheme clusters: boundaries tried only between clusters, what
// can begin a cluster, and stepping back over more clusters than the matcher
// keeps sizes of.

#include <gtest/gtest.h>

#include "repeat_machine.h"

using namespace repeat_test;

namespace {

const RegExpNode Cluster = node(NodeGrapheme);
const std::string Acute = "\xCC\x81";     // U+0301, a mark
const std::string Grave = "\xCC\x80";     // U+0300, a mark

Outcome run(Machine& m, const std::string& subject, int32_t budget = 100000) {
    bool agree = false;
    Outcome o = m.both(subject, budget, 0, -1, [](MatchContext&) {}, &agree);
    EXPECT_TRUE(agree) << subject;
    return o;
}

TEST(RepeatGrapheme, RunsOnlyBetweenClusters) {
    Machine failing({Cluster, greedy(0, Many), chr('x')});
    Outcome o = run(failing, "e" + Acute + "a", 1000);
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 1000), 4);   // runs at 4, 3 and 0
    Machine mark({Cluster, greedy(0, Many), chr(0xCC)});
    EXPECT_EQ(run(mark, "e" + Acute + "a").result, 1);
    Machine a({Cluster, greedy(0, Many), chr('a')});
    EXPECT_EQ(run(a, "e" + Acute + "a").length, 4);
}

TEST(RepeatGrapheme, WhatBeginsACluster) {
    Machine plus({Cluster, greedy(1, Many)});
    EXPECT_EQ(run(plus, Acute + "a").result, 1);
    Machine star({Cluster, greedy(0, Many)});
    EXPECT_EQ(run(star, Acute + "a").length, 0);
    EXPECT_EQ(run(star, "ab\xCD\xB8" "c").length, 2);   // U+0378 is unassigned
    EXPECT_EQ(run(star, "ab\x80" + Acute).length, 2);    // a malformed byte ends the scan
    Machine two({Cluster, greedy(2, 2)});
    EXPECT_EQ(run(two, "e" + Acute).result, 1);
    Machine lazyAlone({Cluster, lazy(0, Many)});
    EXPECT_EQ(run(lazyAlone, Acute).result, 0);
    Machine lazyY({Cluster, lazy(0, Many), chr('y')});
    EXPECT_EQ(run(lazyY, Acute + "y").result, 1);
    EXPECT_EQ(run(lazyY, "e" + Acute + "y").length, 4);
}

// Hundreds of clusters of 1, 3 and 5 bytes: every step back must land on a
// cluster boundary (a run at a mark would match 0xCC) and the number of runs
// is the number of clusters plus one.
TEST(RepeatGrapheme, LongRunsStepBackOnBoundaries) {
    std::string text;
    int32_t clusters = 0;
    for (int i = 0; i < 300; ++i, ++clusters) {
        text += "e";
        if (i % 3 >= 1) text += Acute;
        if (i % 3 == 2) text += Grave;
    }
    Machine failing({Cluster, greedy(0, Many), chr(0xCC)});
    Outcome o = run(failing, text);
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 100000), clusters + 2);
    Machine first({Cluster, greedy(0, Many), node(NodeString, 0, 3, 0, 0)}, "e" + Acute);
    Outcome f = run(first, text + "q");
    EXPECT_EQ(f.result, 0);
    EXPECT_EQ(f.length, static_cast<int32_t>(text.size()) - 5 + 3);   // in the last cluster, e + two marks
}

}  // namespace
