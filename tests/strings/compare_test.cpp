// Comparison and equality: the real difference of the first differing
// elements, found alike at every length, offset and pair of alignments, and
// the two kinds of case folding.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "width_api.h"

namespace {

template <typename T>
int32_t refCompare(const T* a, const T* b, int32_t n) {
    for (int32_t i = 0; i < n; ++i)
        if (a[i] != b[i]) return static_cast<int32_t>(a[i]) - static_cast<int32_t>(b[i]);
    return 0;
}

zevStatus compare(const uint8_t* a, const uint8_t* b, int32_t n, int32_t* r) { return zevsCompare_8u(a, b, n, r); }
zevStatus compare(const uint16_t* a, const uint16_t* b, int32_t n, int32_t* r) { return zevsCompare_16u(a, b, n, r); }
zevStatus equal(const uint8_t* a, const uint8_t* b, int32_t n, int32_t* r) { return zevsEqual_8u(a, b, n, r); }
zevStatus equal(const uint16_t* a, const uint16_t* b, int32_t n, int32_t* r) { return zevsEqual_16u(a, b, n, r); }

template <typename T>
class CompareTyped : public ::testing::Test {};
TYPED_TEST_SUITE(CompareTyped, Widths);

TYPED_TEST(CompareTyped, FirstDifferenceAtEveryPositionAndAlignment) {
    using T = TypeParam;
    std::mt19937 rng(7);
    for (int32_t len : {1, 3, 4, 7, 8, 9, 15, 16, 17, 31, 33, 64, 100, 1030, 2100}) {
        for (int32_t offA = 0; offA < 4; ++offA) {
            for (int32_t offB = 0; offB < 4; ++offB) {
                std::vector<T> a(offA + len), b(offB + len);  // both strings end where their buffers end
                for (int32_t i = 0; i < len; ++i) a[offA + i] = b[offB + i] = static_cast<T>(rng());
                const T* pa = a.data() + offA;
                T* pb = b.data() + offB;
                int32_t r = 5;
                ASSERT_EQ(compare(pa, pb, len, &r), zevStatusOk);
                EXPECT_EQ(r, 0);
                ASSERT_EQ(equal(pa, pb, len, &r), zevStatusOk);
                EXPECT_EQ(r, 1);
                // Positions near word and probe edges, and the very last one.
                for (int32_t pos : {0, 1, 3, 7, 8, len / 2, len - 9, len - 2, len - 1}) {
                    if (pos < 0 || pos >= len) continue;
                    const T keep = pb[pos];
                    pb[pos] = static_cast<T>(keep ^ (pos & 1 ? T(0x80) : T(sizeof(T) == 2 ? 0x8001 : 1)));
                    compare(pa, pb, len, &r);
                    EXPECT_EQ(r, refCompare(pa, pb, len)) << len << " " << pos;
                    equal(pa, pb, len, &r);
                    EXPECT_EQ(r, 0);
                    // A later difference does not change the result.
                    if (pos + 1 < len) {
                        const T keep2 = pb[len - 1];
                        pb[len - 1] = static_cast<T>(~pa[len - 1]);
                        compare(pa, pb, len, &r);
                        EXPECT_EQ(r, refCompare(pa, pb, len));
                        pb[len - 1] = keep2;
                    }
                    pb[pos] = keep;
                }
            }
        }
    }
}

TEST(Compare, RealDifferenceNotSign) {
    const uint8_t a[1] = {200}, b[1] = {100};
    int32_t r = 0;
    zevsCompare_8u(a, b, 1, &r);
    EXPECT_EQ(r, 100);
    zevsCompare_8u(b, a, 1, &r);
    EXPECT_EQ(r, -100);
    const uint16_t x[1] = {0xFFFF}, y[1] = {0};
    zevsCompare_16u(x, y, 1, &r);
    EXPECT_EQ(r, 65535);
    zevsCompare_16u(y, x, 1, &r);
    EXPECT_EQ(r, -65535);
}

TEST(Compare, ChecksAndEmptyLength) {
    const uint8_t a[2] = {1, 2};
    const uint16_t w[2] = {1, 2};
    int32_t r = 42;
    EXPECT_EQ(zevsCompare_8u(nullptr, a, -1, &r), zevStatusNullPointer);
    EXPECT_EQ(zevsCompare_8u(a, nullptr, 1, &r), zevStatusNullPointer);
    EXPECT_EQ(zevsEqual_8u(a, a, 1, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsCompareIgnoreCase_16u(w, w, -1, &r), zevStatusBadLength);
    EXPECT_EQ(zevsCompareIgnoreCaseLatin_8u(a, a, -3, &r), zevStatusBadLength);
    EXPECT_EQ(zevsEqual_16u(w, w, -1, &r), zevStatusBadLength);
    EXPECT_EQ(r, 42);
    EXPECT_EQ(zevsCompare_16u(w, w, 0, &r), zevStatusOk);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(zevsEqual_8u(a, a, 0, &r), zevStatusOk);
    EXPECT_EQ(r, 1);
    r = 9;
    EXPECT_EQ(zevsCompareIgnoreCaseLatin_16u(w, w, 0, &r), zevStatusOk);
    EXPECT_EQ(r, 0);
}

TEST(Compare, LatinFoldGoesTowardsLowerCase) {
    int32_t r = 9;
    const uint8_t A[1] = {'A'}, a[1] = {'a'}, under[1] = {95}, hi[1] = {0xC0}, hiLow[1] = {0xE0};
    zevsCompareIgnoreCaseLatin_8u(A, a, 1, &r);
    EXPECT_EQ(r, 0);
    zevsCompareIgnoreCaseLatin_8u(A, under, 1, &r);
    EXPECT_EQ(r, 2);
    zevsCompareIgnoreCaseLatin_8u(hi, hiLow, 1, &r);
    EXPECT_EQ(r, 0xC0 - 0xE0);
    const uint8_t s1[5] = {'H', 'e', 'L', 'l', 'O'}, s2[5] = {'h', 'E', 'l', 'L', 'p'};
    zevsCompareIgnoreCaseLatin_8u(s1, s2, 5, &r);
    EXPECT_EQ(r, 'o' - 'p');

    const uint16_t c0[1] = {0x00C0}, e0[1] = {0x00E0};
    zevsCompareIgnoreCaseLatin_16u(c0, e0, 1, &r);
    EXPECT_EQ(r, -32);
    zevsCompareIgnoreCase_16u(c0, e0, 1, &r);
    EXPECT_EQ(r, 0);
}

TEST(Compare, TableFoldIsByElement) {
    int32_t r = 9;
    const uint16_t dotted[1] = {0x0130}, dotless[1] = {0x0131}, i[1] = {0x0069};
    zevsCompareIgnoreCase_16u(dotted, dotless, 1, &r);
    EXPECT_EQ(r, 0x69 - 0x131);
    zevsCompareIgnoreCase_16u(dotted, i, 1, &r);
    EXPECT_EQ(r, 0);
    // Surrogates have no mapping and compare as they are; Greek sigma folds.
    const uint16_t s1[3] = {0xD800, 0xDC00, 0x03A3}, s2[3] = {0xD800, 0xDC00, 0x03C3};
    zevsCompareIgnoreCase_16u(s1, s2, 3, &r);
    EXPECT_EQ(r, 0);
    const uint16_t s3[2] = {0xD800, 0xDC01};
    zevsCompareIgnoreCase_16u(s1, s3, 2, &r);
    EXPECT_EQ(r, -1);
}

}  // namespace
