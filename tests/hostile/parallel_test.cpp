// The parallel multi-pattern find against the serial one: 64 patterns, each
// in a record of its own, the parallel region forced by a thread count below
// the slot count. MultiRun many times, so that a race in the division of slots or
// in the result records shows as a difference (and under ThreadSanitizer,
// scripts/tsan.sh, as a report). ZEVCH_STRESS_RUNS sets the number of runs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "core/core.h"
#include "zevch.h"

namespace {

constexpr uint32_t Slots = 64;
constexpr int32_t Capacity = 16;

const char* const Patterns[] = {
    "a",        "b+",       "(a|b)c",      "\\d+",        "\\w+\\s",   "[aeiou]{2}", "(?i)the", "o\\b",
    "x*",       "(a)(b)?",  "^\\w+",       "\\s$",        ".+?,",      "(?=q)\\w",   "\\p{Lu}", "[^a-z ]+",
    "(\\w)\\1", "(?>a+)b",  "(?<=o)\\w",   "\\bq\\w*",    "z{0,2}",    "(?m)^.",     "\\X",     "[[:digit:]]+",
};

struct MultiRun {
    std::vector<RegExpMultiResult> records;
    std::vector<std::vector<RegExpFindEntry>> finds;
};

MultiRun findAll(const std::string& text, const RegExpMultiState* set, int32_t threads) {
    MultiRun r;
    r.records.resize(Slots);
    r.finds.assign(Slots, std::vector<RegExpFindEntry>(Capacity, RegExpFindEntry{nullptr, -7}));
    for (uint32_t i = 0; i < Slots; ++i) r.records[i] = RegExpMultiResult{0, 0, Capacity, 0, r.finds[i].data()};
    ownSetNumThreadsOverride(threads);
    const zevStatus s = zevsRegExpMultiFind_8u(reinterpret_cast<const uint8_t*>(text.data()),
                                               static_cast<int32_t>(text.size()), r.records.data(), set);
    ownSetNumThreadsOverride(0);
    EXPECT_EQ(s, zevStatusOk);
    return r;
}

bool same(const MultiRun& a, const MultiRun& b) {
    for (uint32_t i = 0; i < Slots; ++i) {
        const RegExpMultiResult& x = a.records[i];
        const RegExpMultiResult& y = b.records[i];
        if (x.done != y.done || x.id != y.id || x.findCount != y.findCount || x.status != y.status) return false;
        for (int32_t k = 0; k < Capacity; ++k)
            if (a.finds[i][k].start != b.finds[i][k].start || a.finds[i][k].length != b.finds[i][k].length)
                return false;
    }
    return true;
}

TEST(ParallelFind, SixtyFourPatternsAgreeWithSerialRuns) {
    std::vector<RegExpState*> states;
    RegExpMultiState* set = nullptr;
    ASSERT_EQ(zevsRegExpMultiInitAlloc(&set, Slots), zevStatusOk);
    for (uint32_t i = 0; i < Slots; ++i) {
        RegExpState* st = nullptr;
        int32_t err = 0;
        const char* options = (i % 3 == 0) ? "g" : "";
        ASSERT_EQ(zevsRegExpInitAlloc(Patterns[i % (sizeof Patterns / sizeof *Patterns)], options, &st, &err),
                  zevStatusOk);
        if (i % 5 == 0) zevsRegExpSetMatchLimit(40, st);   // some slots end on the limit
        states.push_back(st);
        ASSERT_EQ(zevsRegExpMultiAdd(st, 1000 + i, set), zevStatusOk);
    }
    std::string text = "The quick brown fox, 42 jumps over the lazy dog; aabbc Zebra q9 ";
    for (int i = 0; i < 6; ++i) text += text;

    const MultiRun serial = findAll(text, set, static_cast<int32_t>(Slots));
    const char* env = std::getenv("ZEVCH_STRESS_RUNS");
    const int runs = env ? std::atoi(env) : 100;
    int differing = 0;
    for (int r = 0; r < runs; ++r) {
        const int32_t threads = 2 + r % 7;   // teams of 2 to 8, all below the slot count
        if (!same(findAll(text, set, threads), serial)) ++differing;
    }
    EXPECT_EQ(differing, 0) << "of " << runs << " parallel runs";
    for (uint32_t i = 0; i < Slots; ++i) EXPECT_EQ(serial.records[i].done, 1u);

    zevsRegExpMultiFree(set);
    for (RegExpState* st : states) zevsRegExpFree(st);
}

}  // namespace
