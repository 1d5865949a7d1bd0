// Hashes: the stored values of fixed inputs, the zero-element rule of the
// third hash, and the equality of both widths on elements below 256.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "zevch.h"

namespace {

struct Hashes {
    uint32_t shiftXor, times31, times33;
};

Hashes hash8(const std::vector<uint8_t>& s) {
    Hashes h{1, 1, 1};
    const int32_t n = static_cast<int32_t>(s.size());
    const uint8_t* p = s.empty() ? reinterpret_cast<const uint8_t*>("") : s.data();
    EXPECT_EQ(zevsHash_8u32u(p, n, &h.shiftXor), zevStatusOk);
    EXPECT_EQ(zevsHashSJ2_8u32u(p, n, &h.times31), zevStatusOk);
    EXPECT_EQ(zevsHashMSCS_8u32u(p, n, &h.times33), zevStatusOk);
    return h;
}

Hashes hash16(const std::vector<uint16_t>& s) {
    Hashes h{1, 1, 1};
    const int32_t n = static_cast<int32_t>(s.size());
    const uint16_t zero = 0;
    const uint16_t* p = s.empty() ? &zero : s.data();
    EXPECT_EQ(zevsHash_16u32u(p, n, &h.shiftXor), zevStatusOk);
    EXPECT_EQ(zevsHashSJ2_16u32u(p, n, &h.times31), zevStatusOk);
    EXPECT_EQ(zevsHashMSCS_16u32u(p, n, &h.times33), zevStatusOk);
    return h;
}

std::vector<uint8_t> bytes(const char* s, size_t n) { return std::vector<uint8_t>(s, s + n); }

TEST(Hash, StoredValues) {
    struct Case {
        std::vector<uint8_t> in;
        Hashes want;
    };
    const Case cases[] = {
        {{}, {0, 0, 5381}},
        {bytes("a", 1), {97, 97, 177604}},
        {bytes("ab", 2), {160, 3105, 5860902}},
        {bytes("abc", 3), {291, 96354, 193409669}},
        {bytes("ab\0c", 4), {739, 2984004, 5860902}},
        {std::vector<uint8_t>(40, 255), {85, 2874240384u, 4159062661u}},
    };
    for (const Case& c : cases) {
        const Hashes h = hash8(c.in);
        EXPECT_EQ(h.shiftXor, c.want.shiftXor) << c.in.size();
        EXPECT_EQ(h.times31, c.want.times31) << c.in.size();
        EXPECT_EQ(h.times33, c.want.times33) << c.in.size();
    }
    const Hashes w = hash16({65535, 65535});
    EXPECT_EQ(w.shiftXor, 65537u);
    EXPECT_EQ(w.times31, 2097120u);
    EXPECT_EQ(w.times33, 4942437u);
    // A leading zero element ends the third hash at once.
    EXPECT_EQ(hash16({0, 5, 6}).times33, 5381u);
    EXPECT_EQ(hash8({0, 5, 6}).times31, 5u * 31 + 6);
}

TEST(Hash, WidthsAgreeBelow256) {
    std::mt19937 rng(3);
    for (int round = 0; round < 50; ++round) {
        std::vector<uint8_t> b(rng() % 70);
        for (auto& v : b) v = static_cast<uint8_t>(rng() % 8 == 0 ? 0 : rng());
        const std::vector<uint16_t> w(b.begin(), b.end());
        const Hashes h8 = hash8(b), h16 = hash16(w);
        EXPECT_EQ(h8.shiftXor, h16.shiftXor);
        EXPECT_EQ(h8.times31, h16.times31);
        EXPECT_EQ(h8.times33, h16.times33);
    }
}

TEST(Hash, Checks) {
    const uint8_t s[1] = {1};
    const uint16_t w[1] = {1};
    uint32_t h = 123;
    EXPECT_EQ(zevsHash_8u32u(nullptr, -1, &h), zevStatusNullPointer);
    EXPECT_EQ(zevsHashSJ2_8u32u(s, 1, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsHashMSCS_16u32u(w, -1, &h), zevStatusBadLength);
    EXPECT_EQ(zevsHash_16u32u(w, -1, &h), zevStatusBadLength);
    EXPECT_EQ(h, 123u);
}

}  // namespace
