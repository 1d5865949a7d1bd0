// Tests of the library frame: version record, memory wrappers, and the copy,
// move and zero primitives with their size and overlap rules.
#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <vector>

#include "core/core.h"

TEST(Version, ConstantRecord) {
    const LibVersion* v = zevchGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, zevchGetLibVersion());
    EXPECT_EQ(v->major, 6);
    EXPECT_EQ(v->minor, 1);
    EXPECT_EQ(v->buildMajor, 137);
    EXPECT_EQ(v->buildMinor, 742);
    EXPECT_EQ(0, std::memcmp(v->targetCode, "px\0\0", 4));
    EXPECT_STREQ(v->fileName, "zevchpx-6.1.dll");
    EXPECT_STREQ(v->versionText, "6.1 build 137.20");
    EXPECT_STREQ(v->buildDate, "Jun 10 2009");
}

TEST(Memory, MallocOfNothingIsNull) {
    EXPECT_EQ(ownMalloc(0), nullptr);
    EXPECT_EQ(ownMalloc(-5), nullptr);
    void* p = ownMalloc(16);
    ASSERT_NE(p, nullptr);
    ownFree(p);
    ownFree(nullptr);
}

TEST(Primitives, ChecksComeBeforeWork) {
    uint8_t a[4] = {1, 2, 3, 4}, b[4] = {9, 9, 9, 9};
    EXPECT_EQ(ownCopy_8u(nullptr, b, -1), zevStatusNullPointer);
    EXPECT_EQ(ownCopy_8u(a, b, 0), zevStatusBadSize);
    EXPECT_EQ(ownMove_8u(a, b, -3), zevStatusBadSize);
    EXPECT_EQ(ownZero_8u(b, 0), zevStatusBadSize);
    EXPECT_EQ(ownZero_8u(nullptr, 3), zevStatusNullPointer);
    EXPECT_EQ(b[0], 9);
}

// Every alignment of source and destination and lengths across the 32-byte
// block edge against memcpy / memset.
TEST(Primitives, CopyAndZeroAgreeWithLibc) {
    std::vector<uint8_t> src(200), dst(200), want(200);
    std::iota(src.begin(), src.end(), 1);
    for (int so = 0; so < 4; ++so)
        for (int d = 0; d < 4; ++d)
            for (int n : {1, 3, 4, 5, 31, 32, 33, 63, 64, 65, 100}) {
                std::fill(dst.begin(), dst.end(), 0xEE);
                want = dst;
                std::memcpy(want.data() + d, src.data() + so, n);
                EXPECT_EQ(ownCopy_8u(src.data() + so, dst.data() + d, n), zevStatusOk);
                EXPECT_EQ(dst, want) << so << " " << d << " " << n;
                std::memset(want.data() + d, 0, n);
                EXPECT_EQ(ownZero_8u(dst.data() + d, n), zevStatusOk);
                EXPECT_EQ(dst, want);
            }
}

TEST(Primitives, MoveOverlapsEitherWay) {
    for (int n : {1, 17, 3200, 3201, 4000, 5000}) {
        for (int shift : {-1, 1, -7, 9}) {
            std::vector<uint8_t> buf(n + 40);
            std::iota(buf.begin(), buf.end(), 0);
            std::vector<uint8_t> want = buf;
            int from = 20, to = 20 + shift;
            std::memmove(want.data() + to, want.data() + from, n);
            ASSERT_EQ(ownMove_8u(buf.data() + from, buf.data() + to, n), zevStatusOk);
            EXPECT_EQ(buf, want) << n << " " << shift;
        }
    }
}

TEST(Primitives, MoveTakesBulkCopyOnlyForDisjointDownwardMovesAbove3200) {
    std::vector<uint8_t> buf(20000, 7);
    int before = ownBulkCopyCount();
    ownMove_8u(buf.data() + 1, buf.data(), 4000);      // overlapping: byte loop
    EXPECT_EQ(ownBulkCopyCount(), before);
    ownMove_8u(buf.data(), buf.data() + 1, 4000);      // upward: byte loop
    EXPECT_EQ(ownBulkCopyCount(), before);
    ownMove_8u(buf.data() + 5000, buf.data(), 4000);   // disjoint: bulk
    EXPECT_EQ(ownBulkCopyCount(), before + 1);
    ownMove_8u(buf.data() + 5000, buf.data(), 3200);   // at the threshold: loop
    EXPECT_EQ(ownBulkCopyCount(), before + 1);
    std::vector<uint16_t> wide(10000, 1);
    ownMove_16u(wide.data() + 3000, wide.data(), 1601);  // 3202 bytes, disjoint
    EXPECT_EQ(ownBulkCopyCount(), before + 2);
}

TEST(Threads, OverrideForcesTheCount) {
    ownSetNumThreadsOverride(5);
    EXPECT_EQ(ownGetNumThreads(), 5);
    ownSetNumThreadsOverride(0);
    EXPECT_GE(ownGetNumThreads(), 1);
}
