// Trimming: the word-at-a-time scans and the in-place move against a plain
// reference at lengths around the 16-element threshold and word edges, at
// every alignment; which move path runs for large in-place trims; the set
// forms and the argument checks.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "core/core.h"
#include "width_api.h"

namespace {


template <typename T>
std::vector<T> refTrim(const T* s, int32_t n, const std::vector<T>& set, bool atStart, bool atEnd) {
    auto in = [&](T v) {
        for (T x : set)
            if (x == v) return true;
        return false;
    };
    int32_t a = 0, b = n;
    if (atStart)
        while (a < b && in(s[a])) ++a;
    if (atEnd)
        while (b > a && in(s[b - 1])) --b;
    return std::vector<T>(s + a, s + b);
}

template <typename T>
class TrimTyped : public ::testing::Test {};
TYPED_TEST_SUITE(TrimTyped, Widths);

TYPED_TEST(TrimTyped, SingleCharacterAgainstPlainScan) {
    using T = TypeParam;
    using A = Api<T>;
    // A unit with two different bytes: the word pattern is the unit twice.
    const T c = sizeof(T) == 1 ? T(0x20) : T(0x2010);
    const T other = sizeof(T) == 1 ? T(0x21) : T(0x1020);
    // Offsets in elements; 16-bit strings stay on 2-byte boundaries.
    for (int32_t off = 0; off < 4; ++off) {
        for (int32_t len = 0; len <= 40; ++len) {
            // All c, then one other element at each position, then two.
            for (int32_t p = -1; p < len; ++p) {
                for (int32_t q : {-1, len - 1 - (p < 0 ? 0 : p) / 2}) {
                    std::vector<T> buf(off + (len > 0 ? len : 1), T(0x55));  // the string ends where the buffer ends
                    T* s = buf.data() + off;
                    for (int32_t i = 0; i < len; ++i) s[i] = c;
                    if (p >= 0) s[p] = other;
                    if (q >= 0 && q < len) s[q] = other;
                    const std::vector<T> want = refTrim<T>(s, len, {c}, true, true);
                    std::vector<T> dst(len + 1, 0);
                    int32_t n = -5;
                    ASSERT_EQ(A::trim(s, len, c, dst.data(), &n), zevStatusOk);
                    ASSERT_EQ(n, static_cast<int32_t>(want.size())) << off << " " << len << " " << p;
                    EXPECT_EQ(std::vector<T>(dst.begin(), dst.begin() + n), want);
                    n = len;
                    ASSERT_EQ(A::trimI(s, &n, c), zevStatusOk);
                    ASSERT_EQ(n, static_cast<int32_t>(want.size()));
                    EXPECT_EQ(std::vector<T>(s, s + n), want);
                }
            }
        }
    }
}

TYPED_TEST(TrimTyped, SetFormsAgainstPlainScan) {
    using T = TypeParam;
    using A = Api<T>;
    std::mt19937 rng(99);
    for (int round = 0; round < 400; ++round) {
        const int32_t len = static_cast<int32_t>(rng() % 24);
        std::vector<T> s(len + 1);  // never empty, so data() is never null
        for (auto& v : s) v = static_cast<T>(1 + rng() % 4);
        std::vector<T> set(rng() % 4 + 1);
        const int32_t setLen = static_cast<int32_t>(set.size() - 1);  // the last one is never used
        for (auto& v : set) v = static_cast<T>(1 + rng() % 4);
        set.back() = 0;
        std::vector<T> dst(len + 1, 0);
        int32_t n = -1;
        ASSERT_EQ(A::any(s.data(), len, set.data(), setLen, dst.data(), &n), zevStatusOk);
        EXPECT_EQ(std::vector<T>(dst.begin(), dst.begin() + n), refTrim<T>(s.data(), len, set, true, true));
        ASSERT_EQ(A::start(s.data(), len, set.data(), setLen, dst.data(), &n), zevStatusOk);
        EXPECT_EQ(std::vector<T>(dst.begin(), dst.begin() + n), refTrim<T>(s.data(), len, set, true, false));
        ASSERT_EQ(A::end(s.data(), len, set.data(), setLen, dst.data(), &n), zevStatusOk);
        EXPECT_EQ(std::vector<T>(dst.begin(), dst.begin() + n), refTrim<T>(s.data(), len, set, false, true));
    }
}

TYPED_TEST(TrimTyped, ChecksLeaveEverythingAlone) {
    using T = TypeParam;
    using A = Api<T>;
    T s[3] = {1, 2, 1};
    T dst[3] = {9, 9, 9};
    int32_t n = 77;
    EXPECT_EQ(A::trim(s, -1, 1, nullptr, &n), zevStatusNullPointer);
    EXPECT_EQ(A::trim(s, 3, 1, dst, nullptr), zevStatusNullPointer);
    EXPECT_EQ(A::trim(s, -1, 1, dst, &n), zevStatusBadLength);
    EXPECT_EQ(A::trimI(nullptr, &n, 1), zevStatusNullPointer);
    EXPECT_EQ(A::trimI(s, nullptr, 1), zevStatusNullPointer);
    EXPECT_EQ(A::any(s, 3, nullptr, 1, dst, &n), zevStatusNullPointer);
    EXPECT_EQ(A::start(s, 3, s, -1, dst, &n), zevStatusBadLength);
    EXPECT_EQ(A::end(s, -1, s, 1, dst, &n), zevStatusBadLength);
    EXPECT_EQ(n, 77);
    EXPECT_EQ(dst[0], 9);
    n = -1;
    EXPECT_EQ(A::trimI(s, &n, 1), zevStatusBadLength);
    EXPECT_EQ(s[0], 1);
    // Empty source and empty set.
    EXPECT_EQ(A::end(s, 0, s, 1, dst, &n), zevStatusOk);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(A::any(s, 3, s, 0, dst, &n), zevStatusOk);
    EXPECT_EQ(n, 3);
    EXPECT_EQ(dst[1], 2);
}

TEST(Trim, InPlaceMovePaths) {
    // 2 leading c and 4998 others: the ranges overlap, plain loops run.
    std::vector<uint8_t> s(5000);
    for (size_t i = 0; i < s.size(); ++i) s[i] = static_cast<uint8_t>(1 + i % 200);
    s[0] = s[1] = ' ';
    std::vector<uint8_t> want(s.begin() + 2, s.end());
    int32_t before = ownBulkCopyCount();
    int32_t n = 5000;
    ASSERT_EQ(zevsTrimC_8u_I(s.data(), &n, ' '), zevStatusOk);
    EXPECT_EQ(n, 4998);
    EXPECT_EQ(std::vector<uint8_t>(s.begin(), s.begin() + n), want);
    EXPECT_EQ(ownBulkCopyCount(), before);

    // 5000 leading c and 4000 others: 5000 bytes apart, more than the 4000 moved.
    std::vector<uint8_t> t(9000, ' ');
    for (size_t i = 5000; i < t.size(); ++i) t[i] = static_cast<uint8_t>(1 + i % 200);
    want.assign(t.begin() + 5000, t.end());
    before = ownBulkCopyCount();
    n = 9000;
    ASSERT_EQ(zevsTrimC_8u_I(t.data(), &n, ' '), zevStatusOk);
    EXPECT_EQ(n, 4000);
    EXPECT_EQ(std::vector<uint8_t>(t.begin(), t.begin() + n), want);
    EXPECT_EQ(ownBulkCopyCount(), before + 1);

    // Misaligned against each other: the bulk copy needs more than 3200 bytes.
    std::vector<uint8_t> u(3301 + 3300, ' ');
    for (size_t i = 3301; i < u.size(); ++i) u[i] = 'x';
    before = ownBulkCopyCount();
    n = static_cast<int32_t>(u.size());
    ASSERT_EQ(zevsTrimC_8u_I(u.data(), &n, ' '), zevStatusOk);
    EXPECT_EQ(n, 3300);
    EXPECT_EQ(ownBulkCopyCount(), before + 1);
    EXPECT_EQ(u[0], 'x');
    EXPECT_EQ(u[3299], 'x');
}

}  // namespace
