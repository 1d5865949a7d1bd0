// Multi-pattern sets: slot management, the serial and parallel finds, and the
// static division of slots among threads.
#include <gtest/gtest.h>

#ifdef _OPENMP
#include <omp.h>
#endif

#include <string>
#include <vector>

#include "core/core.h"
#include "psregexpmulti/multi_internal.h"
#include "zevch.h"

namespace {

struct Patterns {
    std::vector<RegExpState*> states;
    explicit Patterns(const std::vector<std::string>& texts, const char* options = "g") {
        for (const std::string& t : texts) {
            RegExpState* s = nullptr;
            int32_t err = -1;
            EXPECT_EQ(zevsRegExpInitAlloc(t.c_str(), options, &s, &err), zevStatusOk) << t;
            states.push_back(s);
        }
    }
    ~Patterns() {
        for (RegExpState* s : states) zevsRegExpFree(s);
    }
    RegExpState* operator[](size_t i) { return states[i]; }
};

struct Set {
    RegExpMultiState* state = nullptr;
    explicit Set(uint32_t slots) { EXPECT_EQ(zevsRegExpMultiInitAlloc(&state, slots), zevStatusOk); }
    ~Set() { zevsRegExpMultiFree(state); }
};

// Restores the library's own thread count when a test ends.
struct ThreadCount {
    explicit ThreadCount(int32_t n) { ownSetNumThreadsOverride(n); }
    ~ThreadCount() { ownSetNumThreadsOverride(0); }
};

struct Results {
    std::vector<RegExpMultiResult> records;
    std::vector<std::vector<RegExpFindEntry>> finds;
    Results(uint32_t slots, int32_t capacity) : records(slots), finds(slots) {
        for (uint32_t i = 0; i < slots; ++i) {
            finds[i].assign(static_cast<size_t>(capacity), RegExpFindEntry{nullptr, -7});
            records[i] = RegExpMultiResult{77, 77, capacity, 77, finds[i].data()};
        }
    }
};

// What a result says, as offsets, so that two runs can be compared.
std::string describe(const Results& r, const uint8_t* src) {
    std::string out;
    for (const RegExpMultiResult& rec : r.records) {
        out += std::to_string(rec.done) + "/" + std::to_string(rec.id) + "/" +
               std::to_string(rec.status) + "/" + std::to_string(rec.findCount) + ":";
        for (int32_t k = 0; rec.done == 1 && k < rec.findCount; ++k) {
            out += std::to_string(rec.find[k].start - src) + "+" + std::to_string(rec.find[k].length) + " ";
        }
        out += "\n";
    }
    return out;
}

TEST(MultiSet, SizeRule) {
    uint32_t size = 0;
    const uint32_t header = 3 * sizeof(void*);
    const uint32_t perSlot = sizeof(void*) + 4;
    ASSERT_EQ(zevsRegExpMultiGetSize(1, &size), zevStatusOk);
    EXPECT_EQ(size, perSlot + header);  // 20 on a 32-bit build, 36 on x86-64
    ASSERT_EQ(zevsRegExpMultiGetSize(1000, &size), zevStatusOk);
    EXPECT_EQ(size, 1000 * perSlot + header);  // 8012, or 12024
    EXPECT_EQ(zevsRegExpMultiGetSize(1, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiGetSize(0, &size), zevStatusBadSize);
    EXPECT_EQ(zevsRegExpMultiGetSize(0xFFFFFFFFu, &size), zevStatusBadSize);  // does not fit 32 bits
    EXPECT_EQ(zevsRegExpMultiInit(nullptr, 4), zevStatusNullPointer);
    RegExpMultiState* out = reinterpret_cast<RegExpMultiState*>(&size);
    EXPECT_EQ(zevsRegExpMultiInitAlloc(nullptr, 4), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiInitAlloc(&out, 0), zevStatusBadSize);
    EXPECT_EQ(zevsRegExpMultiInitAlloc(&out, 0xFFFFFFFFu), zevStatusNullPointer);
    EXPECT_EQ(out, nullptr);
}

TEST(MultiSet, InitOnTheCallersBlock) {
    uint32_t size = 0;
    ASSERT_EQ(zevsRegExpMultiGetSize(3, &size), zevStatusOk);
    std::vector<uint8_t> block(size + 8, 0xCC);
    auto* state = reinterpret_cast<RegExpMultiState*>(block.data());
    ASSERT_EQ(zevsRegExpMultiInit(state, 0), zevStatusBadSize);
    ASSERT_EQ(zevsRegExpMultiInit(state, 3), zevStatusOk);
    EXPECT_EQ(state->slotCount, 3u);
    for (uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(state->patterns[i], nullptr);
        EXPECT_EQ(state->ids[i], 0u);
    }
    EXPECT_EQ(reinterpret_cast<uint8_t*>(state->ids + 3), block.data() + size);
    for (size_t i = size; i < block.size(); ++i) EXPECT_EQ(block[i], 0xCC);
}

TEST(MultiSet, AddFillsTheLowestFreeSlot) {
    Patterns p({"a", "b", "c", "d"});
    Set set(3);
    EXPECT_EQ(zevsRegExpMultiAdd(nullptr, 0, set.state), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiAdd(p[0], 0, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiAdd(p[0], 0, set.state), zevStatusBadId);
    ASSERT_EQ(zevsRegExpMultiAdd(p[0], 10, set.state), zevStatusOk);
    ASSERT_EQ(zevsRegExpMultiAdd(p[1], 20, set.state), zevStatusOk);
    ASSERT_EQ(zevsRegExpMultiAdd(p[2], 30, set.state), zevStatusOk);
    EXPECT_EQ(zevsRegExpMultiAdd(p[3], 40, set.state), zevStatusTableFull);
    // Deleting a slot below occupied ones makes it the next one filled.
    ASSERT_EQ(zevsRegExpMultiDelete(10, set.state), zevStatusOk);
    EXPECT_EQ(set.state->patterns[0], nullptr);
    EXPECT_EQ(set.state->ids[0], 0u);
    ASSERT_EQ(zevsRegExpMultiAdd(p[3], 40, set.state), zevStatusOk);
    EXPECT_EQ(set.state->patterns[0], p[3]);
    EXPECT_EQ(set.state->ids[0], 40u);
    EXPECT_EQ(set.state->ids[1], 20u);
    EXPECT_EQ(set.state->ids[2], 30u);
}

TEST(MultiSet, ModifyAndDeleteReachTheLowestSlotWithTheId) {
    Patterns p({"a", "b", "c"});
    Set set(4);
    EXPECT_EQ(zevsRegExpMultiModify(p[0], 5, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiModify(nullptr, 5, set.state), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiModify(p[0], 0, set.state), zevStatusBadId);
    EXPECT_EQ(zevsRegExpMultiModify(p[0], 5, set.state), zevStatusEntryNotFound);
    EXPECT_EQ(zevsRegExpMultiDelete(5, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiDelete(0, set.state), zevStatusBadId);
    EXPECT_EQ(zevsRegExpMultiDelete(5, set.state), zevStatusEntryNotFound);

    ASSERT_EQ(zevsRegExpMultiAdd(p[0], 5, set.state), zevStatusOk);
    ASSERT_EQ(zevsRegExpMultiAdd(p[1], 5, set.state), zevStatusOk);  // the same id twice
    ASSERT_EQ(zevsRegExpMultiModify(p[2], 5, set.state), zevStatusOk);
    EXPECT_EQ(set.state->patterns[0], p[2]);
    EXPECT_EQ(set.state->patterns[1], p[1]);
    ASSERT_EQ(zevsRegExpMultiDelete(5, set.state), zevStatusOk);
    EXPECT_EQ(set.state->patterns[0], nullptr);
    EXPECT_EQ(set.state->ids[1], 5u);
    ASSERT_EQ(zevsRegExpMultiModify(p[0], 5, set.state), zevStatusOk);
    EXPECT_EQ(set.state->patterns[1], p[0]);
    ASSERT_EQ(zevsRegExpMultiDelete(5, set.state), zevStatusOk);
    EXPECT_EQ(zevsRegExpMultiDelete(5, set.state), zevStatusEntryNotFound);
}

TEST(MultiFind, ChecksAndUntouchedRecords) {
    Patterns p({"b+"});
    Set set(2);
    const uint8_t text[] = "abbc";
    Results r(2, 4);
    EXPECT_EQ(zevsRegExpMultiFind_8u(nullptr, 4, r.records.data(), set.state), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiFind_8u(text, 4, r.records.data(), nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpMultiFind_8u(text, 4, nullptr, set.state), zevStatusNullPointer);
    // Free slots only: nothing is touched.
    EXPECT_EQ(zevsRegExpMultiFind_8u(text, 4, r.records.data(), set.state), zevStatusOk);
    EXPECT_EQ(r.records[0].done, 77u);
    EXPECT_EQ(r.records[1].status, 77);

    ASSERT_EQ(zevsRegExpMultiAdd(p[0], 9, set.state), zevStatusOk);
    EXPECT_EQ(zevsRegExpMultiFind_8u(text, 0, r.records.data(), set.state), zevStatusBadSize);
    EXPECT_EQ(r.records[0].done, 77u);
    EXPECT_EQ(zevsRegExpMultiFind_8u(text, 4, r.records.data(), set.state), zevStatusOk);
    EXPECT_EQ(r.records[0].done, 1u);
    EXPECT_EQ(r.records[0].id, 9u);
    EXPECT_EQ(r.records[0].status, zevStatusOk);
    ASSERT_EQ(r.records[0].findCount, 1);
    EXPECT_EQ(r.finds[0][0].start, text + 1);
    EXPECT_EQ(r.finds[0][0].length, 2);
    EXPECT_EQ(r.records[1].done, 77u);  // still free

    // A failing search is that record's status, and the call still succeeds.
    r.records[0].findCount = 0;
    EXPECT_EQ(zevsRegExpMultiFind_8u(text, 4, r.records.data(), set.state), zevStatusOk);
    EXPECT_EQ(r.records[0].status, zevStatusBadSize);
    EXPECT_EQ(r.records[0].done, 1u);
    EXPECT_EQ(r.records[0].id, 9u);
}

TEST(MultiFind, DivisionOfSlotsAmongThreads) {
    auto blocks = [](uint32_t slots, int32_t threads) {
        std::string out;
        for (int32_t t = 0; t < threads; ++t) {
            uint32_t b = 0, e = 0;
            ownMultiThreadSlots(slots, threads, slots / threads, slots % threads, t, &b, &e);
            out += std::to_string(b) + "-" + std::to_string(e) + " ";
        }
        return out;
    };
    EXPECT_EQ(blocks(11, 3), "0-3 3-6 6-11 ");
    EXPECT_EQ(blocks(5, 2), "0-2 2-5 ");  // five slots, a team of two
    EXPECT_EQ(blocks(3, 2), "0-1 1-3 ");  // one above the thread count: chunk 1, remainder 1
    EXPECT_EQ(blocks(7, 1), "0-7 ");
    // Every division covers each slot exactly once, in ascending blocks.
    for (uint32_t slots = 1; slots < 70; ++slots) {
        for (int32_t threads = 1; threads < 12; ++threads) {
            uint32_t next = 0;
            for (int32_t t = 0; t < threads; ++t) {
                uint32_t b = 0, e = 0;
                ownMultiThreadSlots(slots, threads, slots / threads, slots % threads, t, &b, &e);
                if (b == e) continue;
                ASSERT_EQ(b, next) << slots << " slots, " << threads << " threads";
                next = e;
            }
            ASSERT_EQ(next, slots) << slots << " slots, " << threads << " threads";
        }
    }
}

// The same set searched serially and in parallel, at several team sizes,
// gives the same records.
TEST(MultiFind, SerialAndParallelAgree) {
    const std::string text =
        "alpha beta 42 gamma 7 delta\nepsilon 1999 zeta eta theta 3.14 iota kappa\n"
        "lambda mu nu xi omicron pi rho sigma tau upsilon phi chi psi omega 2026\n";
    const auto* src = reinterpret_cast<const uint8_t*>(text.data());
    const int32_t len = static_cast<int32_t>(text.size());
    Patterns p({"\\d+", "[aeiou]{2}", "(\\w)a\\b", "^\\w+", "ta", "z", "(x)(i)", "q+", "\\bp\\w*",
                "a\\w*a", "o"});
    for (uint32_t slots : {1u, 2u, 3u, 5u, 11u, 16u}) {
        Set set(slots);
        for (uint32_t i = 0; i < slots && i < p.states.size(); ++i) {
            if (i == 1) continue;  // one free slot in the middle
            ASSERT_EQ(zevsRegExpMultiAdd(p[i], 100 + i, set.state), zevStatusOk);
        }
        std::string serial;
        {
            ThreadCount tc(64);
            Results r(slots, 64);
            ASSERT_EQ(zevsRegExpMultiFind_8u(src, len, r.records.data(), set.state), zevStatusOk);
            serial = describe(r, src);
        }
        for (int32_t threads : {1, 2, 3, 4}) {
            ThreadCount tc(threads);
            Results r(slots, 64);
            ASSERT_EQ(zevsRegExpMultiFind_8u(src, len, r.records.data(), set.state), zevStatusOk);
            EXPECT_EQ(describe(r, src), serial) << slots << " slots, " << threads << " threads";
        }
    }
}

// An enclosing parallel region leaves the find's own region a team of one:
// the parallel path then runs every slot on that thread.
TEST(MultiFind, NestedRegionRunsAsATeamOfOne) {
    const std::string text = "one 1 two 22 three 333";
    const auto* src = reinterpret_cast<const uint8_t*>(text.data());
    Patterns first({"\\d+", "t\\w+", "e", "o", "w"});
    Patterns second({"\\d+", "t\\w+", "e", "o", "w"});
    ThreadCount tc(2);
    std::string outcome[2];
    std::string expected;
    {
        Set set(5);
        for (uint32_t i = 0; i < 5; ++i) zevsRegExpMultiAdd(first[i], i + 1, set.state);
        Results r(5, 16);
        ThreadCount serial(8);
        zevsRegExpMultiFind_8u(src, static_cast<int32_t>(text.size()), r.records.data(), set.state);
        expected = describe(r, src);
    }
    ownSetNumThreadsOverride(2);
#ifdef _OPENMP
    omp_set_max_active_levels(1);
#pragma omp parallel num_threads(2)
#endif
    {
#ifdef _OPENMP
        const int t = omp_get_thread_num();
#else
        const int t = 0;
#endif
        Patterns& mine = t == 0 ? first : second;
        Set set(5);
        for (uint32_t i = 0; i < 5; ++i) zevsRegExpMultiAdd(mine[i], i + 1, set.state);
        Results r(5, 16);
        zevsRegExpMultiFind_8u(src, static_cast<int32_t>(text.size()), r.records.data(), set.state);
        outcome[t] = describe(r, src);
    }
    EXPECT_EQ(outcome[0], expected);
#ifdef _OPENMP
    EXPECT_EQ(outcome[1], expected);
#endif
}

// 64 slots, each with a record of its own, searched again and again in the
// parallel path: every round must give what the serial path gives.
TEST(MultiFind, StressSixtyFourSlots) {
    std::string text;
    for (int i = 0; i < 200; ++i) {
        text += "user" + std::to_string(i) + "@example.org visits http://host" + std::to_string(i % 7) +
                ".net/p?q=" + std::to_string(i * 37) + " at 10.0." + std::to_string(i % 256) + ".1\n";
    }
    const auto* src = reinterpret_cast<const uint8_t*>(text.data());
    const int32_t len = static_cast<int32_t>(text.size());
    const std::vector<std::string> kinds = {"\\w+@\\w+\\.org", "http://\\w+", "\\d+", "q=(\\d+)",
                                            "10\\.0\\.\\d+", "user1\\d", "visits", "\\.net/"};
    std::vector<std::string> texts;
    for (int i = 0; i < 64; ++i) texts.push_back(kinds[i % kinds.size()]);
    Patterns p(texts);
    for (auto* s : p.states) zevsRegExpSetMatchLimit(10000000, s);
    Set set(64);
    for (uint32_t i = 0; i < 64; ++i) ASSERT_EQ(zevsRegExpMultiAdd(p[i], i + 1, set.state), zevStatusOk);

    std::string serial;
    {
        ThreadCount tc(64);
        Results r(64, 2048);
        ASSERT_EQ(zevsRegExpMultiFind_8u(src, len, r.records.data(), set.state), zevStatusOk);
        serial = describe(r, src);
        for (const RegExpMultiResult& rec : r.records) {
            ASSERT_EQ(rec.status, zevStatusOk);
            ASSERT_GT(rec.findCount, 0);
        }
    }
    ThreadCount tc(2);
    for (int round = 0; round < 20; ++round) {
        Results r(64, 2048);
        ASSERT_EQ(zevsRegExpMultiFind_8u(src, len, r.records.data(), set.state), zevStatusOk);
        ASSERT_EQ(describe(r, src), serial) << "round " << round;
    }
}

}  // namespace
