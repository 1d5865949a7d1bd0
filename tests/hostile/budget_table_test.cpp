// What a table of searches returns and spends, pinned: status, entry count,
// the first entry, and the budget left at the end. The record keeps every
// word at 32 bits, so these numbers must come out the same on the 32-bit
// build (scripts/test-m32.sh) as on x86-64; a difference in either build
// shows as a failure here.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "regexp/match/match_internal.h"
#include "zevch.h"

namespace {

struct Pinned {
    const char* pattern;
    const char* options;
    const char* subject;
    int32_t limit;
    zevStatus status;
    int32_t count;
    long firstOffset;   // -1 for none
    int32_t firstLength;
    int32_t budgetLeft;
};

const Pinned Table[] = {
    {"a.c", "", "abc", 3, 0, 1, 0, 3, 0},
    {"a.c", "", "abc", 2, -188, 1, -1, -1, -1},
    {"(a|b)*c", "", "ababababc", 10000, 0, 2, 0, 9, 9976},
    {"(a+)+$", "", "aaaaaaaaaaaaaaaaaaaab", 10000, 0, 0, -1, -1, 6666},
    {"(a|aa)*b", "", "aaaaaaaaaaaaaaaaaaaaaaaa", 5000, 0, 0, -1, -1, 4996},
    {"\\w+@\\w+\\.com", "g", "mail me at a@b.com or c@d.com", 10000, 0, 2, 11, 7, 9957},
    {"(?i)hello", "g", "Hello HELLO hello", 10000, 0, 3, 0, 5, 9988},
    {"^\\d+$", "m", "12\nab\n345", 10000, 0, 1, 0, 2, 9997},
    {"(\\w)\\1", "g", "aabbcdde", 10000, 0, 3, 0, 1, 9978},
    {"(?=a)\\w{2}", "g", "abacad", 10000, 0, 3, 0, 2, 9989},
    {"(?<=x)y", "g", "xyzxy", 10000, 0, 2, 1, 1, 9987},
    {"(?>a+)b", "", "aaaab", 10000, 0, 1, 0, 5, 9997},
    {"\\p{Lu}\\p{Ll}+", "g", "Hello World Zevch", 10000, 0, 3, 0, 5, 9991},
    {"[^\\s,]+", "g", "a,b c,,d", 10000, 0, 4, 0, 1, 9991},
    {"x*", "g", "abc", 10000, 0, 4, 0, 0, 9990},
    {"\\X", "g", "e\xcc""\x81""a\xcc""\x88""", 10000, 0, 2, 0, 3, 9997},
    {"(a)|(b)|(c)", "g", "abcabc", 10000, 0, 15, 0, 1, 9973},
    {".*foo", "", "xxxxxxxxxxfoo", 10000, 0, 1, 0, 13, 9994},
    {"(?:ab)+?c", "", "abababc", 10000, 0, 1, 0, 7, 9990},
    {"a{2,5}?b", "g", "aaaaaabab", 10000, 0, 1, 1, 6, 9994},
    {"(x)?(?(1)y|z)", "g", "xyzxz", 10000, 0, 3, 0, 1, 9973},
    {"\\bw\\w*\\b", "g", "what a wonderful world", 10000, 0, 3, 0, 4, 9978},
    {"[\\x{100}-\\x{2FF}]+", "", "abc\xc4""\x80""\xc8""\x80""z", 10000, 0, 1, 3, 4, 9996},
    {"(a*)*b", "", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaa", 20000, 0, 0, -1, -1, 19995},
    {"(.)(.)(.)\\3\\2\\1", "", "xabccbay", 10000, 0, 4, 1, 6, 9978},
};

TEST(PinnedBudgets, TableOfSearches) {
    for (const Pinned& c : Table) {
        SCOPED_TRACE(c.pattern);
        RegExpState* state = nullptr;
        int32_t err = 0;
        ASSERT_EQ(zevsRegExpInitAlloc(c.pattern, c.options, &state, &err), zevStatusOk);
        ASSERT_EQ(zevsRegExpSetMatchLimit(c.limit, state), zevStatusOk);
        const uint8_t* subject = reinterpret_cast<const uint8_t*>(c.subject);
        const int32_t length = static_cast<int32_t>(std::strlen(c.subject));
        for (int32_t fastPaths = 0; fastPaths < 2; ++fastPaths) {
            RegExpFindEntry find[16];
            int32_t count = 16;
            int32_t budget = 0;
            const zevStatus s = ownRegExpSearchProbe(subject, length, state, find, &count, 0, fastPaths, &budget);
            EXPECT_EQ(s, c.status);
            EXPECT_EQ(count, c.count);
            EXPECT_EQ(budget, c.budgetLeft);
            if (s == zevStatusOk && count > 0) {
                EXPECT_EQ(find[0].start ? find[0].start - subject : -1, c.firstOffset);
                EXPECT_EQ(find[0].length, c.firstLength);
            }
        }
        zevsRegExpFree(state);
    }
}

// The record sizes callers allocate, written out for each build rather than
// computed from sizeof, so that a change of layout cannot follow silently.
TEST(PinnedBudgets, RecordSizesOfThisBuild) {
    int32_t size = 0;
    ASSERT_EQ(zevsRegExpGetSize("", &size), zevStatusOk);
    EXPECT_EQ(size, 40052);
    ASSERT_EQ(zevsRegExpGetSize("0123456789", &size), zevStatusOk);
    EXPECT_EQ(size, 40252);
    ASSERT_EQ(zevsRegExpReplaceGetSize("$1-$2", &size), zevStatusOk);
    EXPECT_EQ(size, 72);
    uint32_t multi = 0;
    ASSERT_EQ(zevsRegExpMultiGetSize(1000, &multi), zevStatusOk);
#if UINTPTR_MAX == 0xFFFFFFFFu
    EXPECT_EQ(multi, 8012u);    // 8 x n + 12
#else
    EXPECT_EQ(multi, 12024u);   // 12 x n + 24 on x86-64
#endif
}

}  // namespace
