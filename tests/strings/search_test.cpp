// Search family: argument checks, the no-match conventions, and every member
// of both widths against a plain candidate-by-candidate reference on random
// strings over a small alphabet (many overlapping hits), at all offsets.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "width_api.h"

namespace {


template <typename T>
int32_t refFind(const T* s, int32_t n, const T* p, int32_t m, bool rev) {
    if (n == 0 || m == 0 || n < m) return -1;
    for (int32_t k = 0; k <= n - m; ++k) {
        const int32_t c = rev ? n - m - k : k;
        int32_t j = 0;
        while (j < m && s[c + j] == p[j]) ++j;
        if (j == m) return c;
    }
    return -1;
}

template <typename T>
int32_t refFindAny(const T* s, int32_t n, const T* set, int32_t m, bool rev) {
    for (int32_t k = 0; k < n; ++k) {
        const int32_t i = rev ? n - 1 - k : k;
        for (int32_t j = 0; j < m; ++j)
            if (s[i] == set[j]) return i;
    }
    return -1;
}

template <typename T>
class SearchTyped : public ::testing::Test {};
TYPED_TEST_SUITE(SearchTyped, Widths);

TYPED_TEST(SearchTyped, MatchesReferenceAtAllOffsets) {
    using T = TypeParam;
    using A = Api<T>;
    std::mt19937 rng(12345);
    // Values high in the width check unsigned handling and 16-bit compares.
    const T alphabet[3] = {static_cast<T>(1), static_cast<T>(sizeof(T) == 1 ? 0xFF : 0xFF01), 0};
    for (int32_t len : {0, 1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100}) {
        for (int round = 0; round < 12; ++round) {
            const int32_t off = round % 8;  // every alignment of the start
            std::vector<T> buf(off + (len > 0 ? len : 1));  // the source ends where the buffer ends
            for (auto& v : buf) v = alphabet[rng() % 3];
            const T* s = buf.data() + off;
            const int32_t m = static_cast<int32_t>(rng() % 5);
            std::vector<T> needle(m + 1);
            for (auto& v : needle) v = alphabet[rng() % 3];
            const T c = alphabet[rng() % 3];
            int32_t idx = 99;
            ASSERT_EQ(A::find(s, len, needle.data(), m, &idx), zevStatusOk);
            EXPECT_EQ(idx, refFind(s, len, needle.data(), m, false)) << len << " " << m;
            ASSERT_EQ(A::findRev(s, len, needle.data(), m, &idx), zevStatusOk);
            EXPECT_EQ(idx, refFind(s, len, needle.data(), m, true)) << len << " " << m;
            ASSERT_EQ(A::findC(s, len, c, &idx), zevStatusOk);
            EXPECT_EQ(idx, refFind(s, len, &c, 1, false));
            ASSERT_EQ(A::findRevC(s, len, c, &idx), zevStatusOk);
            EXPECT_EQ(idx, refFind(s, len, &c, 1, true));
            ASSERT_EQ(A::findCAny(s, len, needle.data(), m, &idx), zevStatusOk);
            EXPECT_EQ(idx, refFindAny(s, len, needle.data(), m, false));
            ASSERT_EQ(A::findRevCAny(s, len, needle.data(), m, &idx), zevStatusOk);
            EXPECT_EQ(idx, refFindAny(s, len, needle.data(), m, true));
        }
    }
}

TYPED_TEST(SearchTyped, LongNeedlesAcrossBlockEdges) {
    using T = TypeParam;
    using A = Api<T>;
    std::mt19937 rng(4321);
    // Two letters and periodic text: many candidates share first and last
    // element and fail in the middle.
    for (int round = 0; round < 300; ++round) {
        const int32_t len = static_cast<int32_t>(rng() % 300);
        const int32_t m = 1 + static_cast<int32_t>(rng() % 40);
        std::vector<T> src(len > 0 ? len : 1), needle(m);  // exact size: a sanitizer sees any overread
        const int32_t period = 1 + static_cast<int32_t>(rng() % 5);
        for (int32_t i = 0; i < len; ++i) src[i] = static_cast<T>(i % period == 0 || rng() % 9 == 0 ? 7 : 3);
        const int32_t at = len > m ? static_cast<int32_t>(rng() % (len - m + 1)) : 0;
        for (int32_t j = 0; j < m; ++j) needle[j] = at + j < len && rng() % 4 ? src[at + j] : static_cast<T>(rng() % 2 ? 7 : 3);
        int32_t idx = 99;
        ASSERT_EQ(A::find(src.data(), len, needle.data(), m, &idx), zevStatusOk);
        ASSERT_EQ(idx, refFind(src.data(), len, needle.data(), m, false)) << len << " " << m;
        ASSERT_EQ(A::findRev(src.data(), len, needle.data(), m, &idx), zevStatusOk);
        ASSERT_EQ(idx, refFind(src.data(), len, needle.data(), m, true)) << len << " " << m;
    }
}

TYPED_TEST(SearchTyped, ArgumentChecksInOrder) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[3] = {1, 2, 3};
    int32_t idx = 7;
    EXPECT_EQ(A::find(nullptr, -1, s, 1, &idx), zevStatusNullPointer);  // null wins over a bad length
    EXPECT_EQ(A::find(s, 3, nullptr, 1, &idx), zevStatusNullPointer);
    EXPECT_EQ(A::find(s, 3, s, 1, nullptr), zevStatusNullPointer);
    EXPECT_EQ(A::find(s, -1, s, 1, &idx), zevStatusBadLength);
    EXPECT_EQ(A::findRev(s, 3, s, -1, &idx), zevStatusBadLength);
    EXPECT_EQ(A::findC(s, -1, 1, &idx), zevStatusBadLength);
    EXPECT_EQ(A::findRevC(nullptr, 3, 1, &idx), zevStatusNullPointer);
    EXPECT_EQ(A::findCAny(s, 3, nullptr, 0, &idx), zevStatusNullPointer);
    EXPECT_EQ(A::findRevCAny(s, 3, s, -2, &idx), zevStatusBadLength);
    EXPECT_EQ(idx, 7) << "a failed check leaves index as it was";
    EXPECT_EQ(A::findZ(nullptr, s, &idx), zevStatusNullPointer);
    EXPECT_EQ(A::findCZ(nullptr, 1, &idx), zevStatusNullPointer);
    const T z[2] = {5, 0};
    EXPECT_EQ(A::findZ(z, z, nullptr), zevStatusNullPointer);  // found by the inner call
    EXPECT_EQ(idx, 7);
}

TYPED_TEST(SearchTyped, ZeroTerminatedForms) {
    using T = TypeParam;
    using A = Api<T>;
    const T src[6] = {1, 2, 3, 2, 3, 0};
    const T needle[3] = {2, 3, 0};
    const T empty[1] = {0};
    int32_t idx = 0;
    EXPECT_EQ(A::findZ(src, needle, &idx), zevStatusOk);
    EXPECT_EQ(idx, 1);
    A::findZ(src, empty, &idx);
    EXPECT_EQ(idx, -1);
    idx = 0;
    A::findZ(empty, empty, &idx);
    EXPECT_EQ(idx, -1);
    A::findCZ(src, 3, &idx);
    EXPECT_EQ(idx, 2);
    A::findCZ(src, 0, &idx);
    EXPECT_EQ(idx, -1) << "the terminator is not part of the string";
}

TEST(Search, SixteenBitUnitsAreNotBytes) {
    // 0x0201 0x0403 holds the bytes 01 02 03 04; the units 0x0302 never occur.
    const uint16_t src[2] = {0x0201, 0x0403};
    const uint16_t needle[1] = {0x0302};
    int32_t idx = 0;
    EXPECT_EQ(zevsFind_16u(src, 2, needle, 1, &idx), zevStatusOk);
    EXPECT_EQ(idx, -1);
    EXPECT_EQ(zevsFindC_16u(src, 2, 0x0302, &idx), zevStatusOk);
    EXPECT_EQ(idx, -1);
}

TYPED_TEST(SearchTyped, LongSourcesReachTheirEnds) {
    // The block loops run over many blocks before and after the hits.
    using T = TypeParam;
    using A = Api<T>;
    const T a = 'a', b = sizeof(T) == 1 ? T('b') : T(0x6162);
    std::vector<T> s(70000, a);
    s[69998] = b;
    s[3] = b;
    const T needle[2] = {a, b};
    int32_t idx = 0;
    A::findC(s.data(), 70000, b, &idx);
    EXPECT_EQ(idx, 3);
    A::findRevC(s.data(), 70000, b, &idx);
    EXPECT_EQ(idx, 69998);
    A::find(s.data(), 70000, needle, 2, &idx);
    EXPECT_EQ(idx, 2);
    A::findRev(s.data(), 70000, needle, 2, &idx);
    EXPECT_EQ(idx, 69997);
    A::findRev(s.data(), 69998, needle, 2, &idx);
    EXPECT_EQ(idx, 2);
}

}  // namespace
