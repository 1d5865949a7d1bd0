// tests/fuzz/fuzz_differential.cpp - the search with its shortcuts against the
// plain interpreter.
//
// Input: option bits, control byte, match limit, capacity, pattern, subject.
// The same search runs with fastPaths 0 and 1 through the budget-reporting
// hook; status, count, every entry and the budget left must be identical,
// also for searches that end on the match limit. Both the find walk
// (replaceMode 0) and the replacement's walk (replaceMode 1) are compared.
// Short subjects are stretched by repetition now and then, since some
// shortcuts only start above a few hundred bytes.
#include "fuzz_input.h"
#include "regexp/match/match_internal.h"

namespace {

struct Run {
    zevStatus status;
    int32_t count;
    int32_t budget;
    std::vector<RegExpFindEntry> entries;
};

Run runSearch(const ExactBuffer<uint8_t>& subject, RegExpState* state, int32_t capacity,
              int32_t replaceMode, int32_t fastPaths) {
    std::vector<RegExpFindEntry> find(static_cast<size_t>(capacity), RegExpFindEntry{nullptr, -77});
    Run r;
    r.count = capacity;
    r.budget = -999999;
    r.status = ownRegExpSearchProbe(subject.data, static_cast<int32_t>(subject.size), state, find.data(),
                                    &r.count, replaceMode, fastPaths, &r.budget);
    r.entries = find;   // compare the whole array: written entries and untouched ones
    return r;
}

void compare(const Run& plain, const Run& fast) {
    FUZZ_CHECK(plain.status == fast.status);
    FUZZ_CHECK(plain.count == fast.count);
    FUZZ_CHECK(plain.budget == fast.budget);
    for (size_t i = 0; i < plain.entries.size(); ++i) {
        FUZZ_CHECK(plain.entries[i].start == fast.entries[i].start);
        FUZZ_CHECK(plain.entries[i].length == fast.entries[i].length);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    const std::vector<uint8_t> letters = fuzzOptionLetters(in.byte() & 0x1F);
    const uint8_t control = in.byte();
    const int32_t limit = fuzzMatchLimit(in);
    const int32_t capacity = 1 + static_cast<int32_t>(in.below(40));
    const std::vector<uint8_t> patternBytes = in.next(true);
    std::vector<uint8_t> subjectBytes = in.next(false);

    // Stretch: repeat the subject up to a few kilobytes so that the plans of
    // long searches are built.
    if ((control & 0x0C) == 0x0C && !subjectBytes.empty()) {
        const size_t target = 256 + (static_cast<size_t>(control >> 4) << 8);
        std::vector<uint8_t> longer;
        while (longer.size() < target) longer.insert(longer.end(), subjectBytes.begin(), subjectBytes.end());
        subjectBytes.swap(longer);
    }

    RegExpState* state = fuzzCompile(patternBytes, letters, limit);
    if (state == nullptr) return 0;
    zevsRegExpSetFormat((control >> 1) & 1, state);

    const ExactBuffer<uint8_t> subject(subjectBytes.data(), subjectBytes.size());
    for (int32_t replaceMode = 0; replaceMode < 2; ++replaceMode) {
        const Run plain = runSearch(subject, state, capacity, replaceMode, 0);
        const Run fast = runSearch(subject, state, capacity, replaceMode, 1);
        compare(plain, fast);
        FUZZ_CHECK(plain.budget <= limit);
        // The exported call is the fast path.
        if (replaceMode == 0) {
            std::vector<RegExpFindEntry> find(static_cast<size_t>(capacity), RegExpFindEntry{nullptr, -77});
            int32_t count = capacity;
            const zevStatus s = zevsRegExpFind_8u(subject.data, static_cast<int32_t>(subject.size), state,
                                                  find.data(), &count);
            FUZZ_CHECK(s == fast.status && count == fast.count);
        }
    }
    zevsRegExpFree(state);
    return 0;
}
