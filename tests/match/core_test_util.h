// tests/match/core_test_util.h - compiling a pattern and running one search
// both ways (plain and with the shortcuts) for the driver, interpreter,
// group, lookaround and atomic tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "regexp/match/match_internal.h"
#include "zevch.h"

namespace matchcore {

struct Entry {
    int32_t offset;   // -1 for a null start
    int32_t length;
    bool operator==(const Entry& o) const { return offset == o.offset && length == o.length; }
};

struct Outcome {
    zevStatus status = zevStatusOk;
    int32_t count = 0;
    std::vector<Entry> entries;
    int32_t budgetLeft = 0;
    bool operator==(const Outcome& o) const {
        return status == o.status && count == o.count && entries == o.entries && budgetLeft == o.budgetLeft;
    }
};

inline std::ostream& operator<<(std::ostream& os, const Outcome& o) {
    os << "{status " << o.status << ", count " << o.count << ", budget " << o.budgetLeft << ", [";
    for (const Entry& e : o.entries) {
        os << " (" << e.offset << "," << e.length << ")";
    }
    return os << " ]}";
}

struct StateFree {
    void operator()(RegExpState* s) const { zevsRegExpFree(s); }
};
using StatePtr = std::unique_ptr<RegExpState, StateFree>;

inline StatePtr compile(const char* pattern, const char* options = nullptr) {
    RegExpState* state = nullptr;
    int32_t err = -1;
    const zevStatus st = zevsRegExpInitAlloc(pattern, options, &state, &err);
    EXPECT_EQ(st, zevStatusOk) << "pattern " << pattern << " at " << err;
    return StatePtr(st == zevStatusOk ? state : nullptr);
}

// One search on a copy of the subject in a buffer of its exact size (so a
// read past the end shows under AddressSanitizer).
inline Outcome searchOnce(RegExpState* state, std::string_view subject, int32_t capacity, int32_t fast,
                          int32_t replaceMode = 0) {
    std::unique_ptr<uint8_t[]> copy(new uint8_t[subject.size() + 1]);
    std::memcpy(copy.get(), subject.data(), subject.size());
    std::vector<RegExpFindEntry> find(static_cast<size_t>(capacity) + 1, RegExpFindEntry{nullptr, 77});
    Outcome out;
    out.count = capacity;
    out.status = ownRegExpSearchProbe(copy.get(), static_cast<int32_t>(subject.size()), state, find.data(),
                                      &out.count, replaceMode, fast, &out.budgetLeft);
    const int32_t shown = out.status == zevStatusRegExpMatchLimit ? capacity : out.count;
    for (int32_t i = 0; i < shown && i < capacity; ++i) {
        if (find[i].length == 77 && find[i].start == nullptr) {
            break;   // not written
        }
        out.entries.push_back({find[i].start ? static_cast<int32_t>(find[i].start - copy.get()) : -1,
                               find[i].length});
    }
    return out;
}

// Runs the search plain and with the shortcuts, expects the two to agree in
// everything (status, entries, budget left) and returns the outcome.
inline Outcome search(RegExpState* state, std::string_view subject, int32_t capacity = 10,
                      int32_t replaceMode = 0) {
    const Outcome plain = searchOnce(state, subject, capacity, 0, replaceMode);
    const Outcome fast = searchOnce(state, subject, capacity, 1, replaceMode);
    EXPECT_EQ(plain, fast) << "plain and fast paths differ";
    return fast;
}

struct Options {
    const char* options = nullptr;
    int32_t limit = -1;    // -1: the compiled default
    int32_t format = 1;
    int32_t capacity = 10;
};

// Compiles, adjusts and searches; both paths.
inline Outcome find(const char* pattern, std::string_view subject, Options o = {}) {
    StatePtr state = compile(pattern, o.options);
    if (!state) {
        return Outcome{zevStatusRegExpBadState, 0, {}, 0};
    }
    if (o.limit >= 0) {
        EXPECT_EQ(zevsRegExpSetMatchLimit(o.limit, state.get()), zevStatusOk);
    }
    EXPECT_EQ(zevsRegExpSetFormat(o.format, state.get()), zevStatusOk);
    return search(state.get(), subject, o.capacity);
}

// The whole match of a single search: {offset, length}, or {-1, -1} when
// nothing matched.
inline Entry whole(const char* pattern, std::string_view subject, const char* options = nullptr) {
    Options o;
    o.options = options;
    const Outcome r = find(pattern, subject, o);
    EXPECT_EQ(r.status, zevStatusOk) << pattern;
    if (r.count == 0) {
        return {-1, -1};
    }
    return r.entries.at(0);
}

// The smallest match limit with which the search does not end in
// zevStatusRegExpMatchLimit, or -1 if there is none up to `cap`. A larger
// limit must give the same outcome.
inline int32_t unitsNeeded(const char* pattern, std::string_view subject, const char* options = nullptr,
                           int32_t cap = 1000) {
    StatePtr state = compile(pattern, options);
    for (int32_t limit = 0; state && limit <= cap; ++limit) {
        zevsRegExpSetMatchLimit(limit, state.get());
        const Outcome found = search(state.get(), subject);
        if (found.status != zevStatusRegExpMatchLimit) {
            zevsRegExpSetMatchLimit(limit + 100, state.get());
            const Outcome more = search(state.get(), subject);
            EXPECT_EQ(more.status, found.status) << pattern;
            EXPECT_EQ(more.entries, found.entries) << pattern;
            return limit;
        }
    }
    return -1;
}

inline std::vector<Entry> E(std::initializer_list<Entry> list) { return list; }

}  // namespace matchcore
