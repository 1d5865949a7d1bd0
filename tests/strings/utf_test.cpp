// UTF conversion: the fixed cases of malformed input, long forms, surrogates
// and byte order; both directions against a plain one-character-at-a-time
// model on random and corrupted input, at every capacity around the block
// edges of the ASCII runs; and the UTF-16 -> UTF-8 -> UTF-16 round trip.
// Buffers are sized exactly, so that a sanitizer build sees any stray access.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

#include "zevch.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Units = std::vector<uint16_t>;

uint16_t swap16(uint16_t u) { return static_cast<uint16_t>((u << 8) | (u >> 8)); }

struct Result8to16 {
    Units out;
    uint32_t consumed;
};

// Model of the UTF-8 decoder: one pass per character, nothing clever.
Result8to16 model8to16(const Bytes& src, uint32_t room, bool big) {
    static const uint32_t highest[6] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
    Result8to16 r{{}, 0};
    size_t i = 0;
    while (i < src.size() && r.out.size() < room) {
        const uint8_t b = src[i];
        uint32_t code = b;
        size_t used = 1;
        int n = 0;
        for (int bit = 6; bit >= 1 && (b >> bit & 1) && (b & 0x80); --bit) ++n;
        if (b >= 0x80 && n >= 1 && n <= 5 && i + n < src.size()) {
            uint32_t c = (b & (0x7F >> (n + 1))) ;
            bool ok = true;
            for (int k = 1; k <= n; ++k) {
                if ((src[i + k] & 0xC0) != 0x80) ok = false;
                c = (c << 6) | (src[i + k] & 0x3F);
            }
            int cls = 0;
            while (highest[cls] < c) ++cls;
            if (ok && cls == n) {
                code = c;
                used = n + 1;
            }
        }
        Units add;
        if (code <= 0xFFFF) {
            add.push_back(static_cast<uint16_t>(code));
        } else {
            const uint32_t v = code - 0x10000;
            add.push_back(static_cast<uint16_t>(0xD800 | ((v >> 10) & 0x3FF)));
            add.push_back(static_cast<uint16_t>(0xDC00 | (v & 0x3FF)));
        }
        if (r.out.size() + add.size() > room) break;
        for (uint16_t u : add) r.out.push_back(big ? swap16(u) : u);
        i += used;
    }
    r.consumed = static_cast<uint32_t>(i);
    return r;
}

struct Result16to8 {
    Bytes out;
    uint32_t consumed;
};

Result16to8 model16to8(const Units& src, uint32_t room, bool big) {
    Result16to8 r{{}, 0};
    size_t i = 0;
    while (i < src.size()) {
        const uint16_t u = big ? swap16(src[i]) : src[i];
        uint32_t code = u;
        size_t used = 1;
        if (u >= 0xD800 && u < 0xDC00 && i + 1 < src.size()) {
            const uint16_t v = big ? swap16(src[i + 1]) : src[i + 1];
            if (v >= 0xDC00 && v < 0xE000) {
                code = 0x10000 + ((u - 0xD800u) << 10) + (v - 0xDC00u);
                used = 2;
            }
        }
        Bytes add;
        if (code < 0x80) {
            add = {static_cast<uint8_t>(code)};
        } else if (code < 0x800) {
            add = {static_cast<uint8_t>(0xC0 | code >> 6), static_cast<uint8_t>(0x80 | (code & 0x3F))};
        } else if (code < 0x10000) {
            add = {static_cast<uint8_t>(0xE0 | code >> 12), static_cast<uint8_t>(0x80 | (code >> 6 & 0x3F)),
                   static_cast<uint8_t>(0x80 | (code & 0x3F))};
        } else {
            add = {static_cast<uint8_t>(0xF0 | code >> 18), static_cast<uint8_t>(0x80 | (code >> 12 & 0x3F)),
                   static_cast<uint8_t>(0x80 | (code >> 6 & 0x3F)), static_cast<uint8_t>(0x80 | (code & 0x3F))};
        }
        if (r.out.size() + add.size() > room) break;
        r.out.insert(r.out.end(), add.begin(), add.end());
        i += used;
    }
    r.consumed = static_cast<uint32_t>(i);
    return r;
}

// Runs a conversion with a source and an output of exactly the given sizes,
// both starting `off` elements into their buffers so that the block paths
// meet every alignment.
template <typename To, typename From, typename Fn>
std::pair<std::vector<To>, uint32_t> run(Fn convert, const std::vector<From>& src, uint32_t room, bool big,
                                         size_t off) {
    std::vector<From> s(off + src.size() + (src.empty() ? 1 : 0));
    std::copy(src.begin(), src.end(), s.begin() + off);
    const To unused = static_cast<To>(0xA5A5);
    std::vector<To> d(off + room + (room == 0 ? 1 : 0), unused);
    uint32_t sl = static_cast<uint32_t>(src.size()), dl = room;
    EXPECT_EQ(convert(s.data() + off, &sl, d.data() + off, &dl, big ? 1 : 0), zevStatusOk);
    // Nothing is written behind what the call reports as produced.
    for (size_t i = off + dl; i < d.size(); ++i) EXPECT_EQ(d[i], unused) << "written at " << i << " of " << room;
    return {std::vector<To>(d.begin() + off, d.begin() + off + dl), sl};
}
Result8to16 run8to16(const Bytes& src, uint32_t room, bool big, size_t off = 0) {
    auto [out, consumed] = run<uint16_t>(zevsConvertUTF_8u16u, src, room, big, off);
    return {out, consumed};
}
Result16to8 run16to8(const Units& src, uint32_t room, bool big, size_t off = 0) {
    auto [out, consumed] = run<uint8_t>(zevsConvertUTF_16u8u, src, room, big, off);
    return {out, consumed};
}

TEST(Utf, FixedCases8to16) {
    auto units = [](const Bytes& b, uint32_t room = 16, bool big = false) { return run8to16(b, room, big).out; };
    EXPECT_TRUE(units({}).empty());  // empty source, room to spare
    EXPECT_EQ(units({0xC0, 0x80}), (Units{0x00C0, 0x0080}));
    EXPECT_EQ(units({0xFF}), (Units{0x00FF}));
    EXPECT_EQ(units({0xFE, 0x41}), (Units{0x00FE, 0x0041}));
    EXPECT_EQ(units({0xE2, 0x82, 'A'}), (Units{0x00E2, 0x0082, 0x0041}));
    EXPECT_EQ(units({0xE2, 0x82, 0xAC}), (Units{0x20AC}));
    EXPECT_EQ(units({0xF0, 0x90, 0x80, 0x80}), (Units{0xD800, 0xDC00}));
    EXPECT_EQ(units({0xED, 0xA0, 0x80}), (Units{0xD800}));
    EXPECT_EQ(units({0xF8, 0x88, 0x80, 0x80, 0x80}), (Units{0xDBC0, 0xDC00}));
    EXPECT_EQ(units({0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}), (Units{0xDBC0, 0xDC00}));  // 0x4000000 wraps
    EXPECT_EQ(units({0xF8, 0x80, 0x80, 0x80, 0x80}).size(), 5u);  // over-long five-byte form
    // Over-long forms one below each class boundary are malformed byte by byte.
    EXPECT_EQ(units({0xC1, 0xBF}), (Units{0x00C1, 0x00BF}));
    EXPECT_EQ(units({0xE0, 0x9F, 0xBF}), (Units{0x00E0, 0x009F, 0x00BF}));
    EXPECT_EQ(units({0xF0, 0x8F, 0xBF, 0xBF}), (Units{0x00F0, 0x008F, 0x00BF, 0x00BF}));
    // Codes above U+10FFFF wrap into the pair's 20 bits.
    EXPECT_EQ(units({0xF4, 0x90, 0x80, 0x80}), (Units{0xD800, 0xDC00}));  // U+110000
    EXPECT_EQ(units({0xF7, 0xBF, 0xBF, 0xBF}), (Units{0xDBBF, 0xDFFF}));
    // A sequence cut off by the end of the source is malformed, byte by byte.
    EXPECT_EQ(units({'a', 0xE2, 0x82}), (Units{'a', 0x00E2, 0x0082}));
    // The pair does not fit in one unit of room: nothing is written or consumed.
    const Result8to16 r = run8to16({0xF0, 0x90, 0x80, 0x80}, 1, false);
    EXPECT_TRUE(r.out.empty());
    EXPECT_EQ(r.consumed, 0u);
    // Byte order: units swapped, their order kept.
    EXPECT_EQ(units({'A'}, 16, true), (Units{0x4100}));
    EXPECT_EQ(units({0xE2, 0x82, 0xAC}, 16, true), (Units{0xAC20}));
    EXPECT_EQ(units({0xF0, 0x90, 0x80, 0x80}, 16, true), (Units{0x00D8, 0x00DC}));
}

TEST(Utf, FixedCases16to8) {
    auto bytes = [](const Units& u, uint32_t room = 16) { return run16to8(u, room, false).out; };
    EXPECT_TRUE(bytes({}).empty());
    EXPECT_EQ(bytes({0xD800}), (Bytes{0xED, 0xA0, 0x80}));
    EXPECT_EQ(bytes({0xDC00}), (Bytes{0xED, 0xB0, 0x80}));
    EXPECT_EQ(bytes({0xD800, 0x0041}), (Bytes{0xED, 0xA0, 0x80, 0x41}));
    EXPECT_EQ(bytes({0xD800, 0xDC00}), (Bytes{0xF0, 0x90, 0x80, 0x80}));
    EXPECT_EQ(bytes({0xDBFF, 0xDFFF}), (Bytes{0xF4, 0x8F, 0xBF, 0xBF}));
    EXPECT_EQ(bytes({0x00E9, 0x07FF, 0x0800}), (Bytes{0xC3, 0xA9, 0xDF, 0xBF, 0xE0, 0xA0, 0x80}));
    const Result16to8 r = run16to8({'a', 0x20AC}, 3, false);
    EXPECT_EQ(r.out, (Bytes{'a'}));
    EXPECT_EQ(r.consumed, 1u);
    EXPECT_EQ(run16to8({0x4100, 0xAC20}, 16, true).out, (Bytes{'A', 0xE2, 0x82, 0xAC}));
}

TEST(Utf, NullPointersInOrder) {
    uint8_t b[2] = {'a', 'b'};
    uint16_t u[2] = {0, 0};
    uint32_t sl = 2, dl = 2;
    EXPECT_EQ(zevsConvertUTF_8u16u(nullptr, nullptr, u, &dl, 0), zevStatusNullPointer);
    EXPECT_EQ(zevsConvertUTF_8u16u(b, nullptr, u, &dl, 0), zevStatusNullPointer);
    EXPECT_EQ(zevsConvertUTF_8u16u(b, &sl, nullptr, &dl, 0), zevStatusNullPointer);
    EXPECT_EQ(zevsConvertUTF_16u8u(u, &sl, b, nullptr, 0), zevStatusNullPointer);
    EXPECT_EQ(zevsConvertUTF_16u8u(nullptr, &sl, b, &dl, 0), zevStatusNullPointer);
    EXPECT_EQ(sl, 2u);
    EXPECT_EQ(dl, 2u);
    EXPECT_EQ(b[0], 'a');
}

// Random text: runs of ASCII (to reach the block paths) mixed with two-,
// three- and four-byte characters and lone surrogates.
Units randomUnits(std::mt19937& rng, size_t n) {
    Units u;
    while (u.size() < n) {
        switch (rng() % 6) {
            case 0: case 1: {
                const size_t run = rng() % 40;
                for (size_t i = 0; i < run; ++i) u.push_back(static_cast<uint16_t>(rng() % 0x80));
                break;
            }
            case 2: u.push_back(static_cast<uint16_t>(0x80 + rng() % 0x780)); break;
            case 3: u.push_back(static_cast<uint16_t>(0x800 + rng() % 0xF800)); break;  // lone surrogates too
            case 4: u.push_back(static_cast<uint16_t>(0xD800 + rng() % 0x400));
                    u.push_back(static_cast<uint16_t>(0xDC00 + rng() % 0x400)); break;
            default: u.push_back(static_cast<uint16_t>(0xD800 + rng() % 0x800)); break;
        }
    }
    u.resize(n);
    return u;
}

TEST(Utf, RoundTripWithLoneSurrogates) {
    std::mt19937 rng(2024);
    for (bool big : {false, true}) {
        for (int round = 0; round < 300; ++round) {
            Units u = randomUnits(rng, rng() % 120);
            if (big)
                for (auto& x : u) x = swap16(x);
            const Result16to8 there = run16to8(u, static_cast<uint32_t>(u.size() * 3), big);
            ASSERT_EQ(there.consumed, u.size());
            const Result8to16 back = run8to16(there.out, static_cast<uint32_t>(u.size()), big);
            ASSERT_EQ(back.consumed, there.out.size());
            ASSERT_EQ(back.out, u);
        }
    }
}

TEST(Utf, AgainstModelAtEveryCapacity) {
    std::mt19937 rng(77);
    for (bool big : {false, true}) {
        for (size_t len : {15, 16, 17, 31, 32, 33, 47, 64, 65, 200}) {
            for (int round = 0; round < 6; ++round) {
                const Units u = randomUnits(rng, len);
                const size_t off = static_cast<size_t>(round % 4);
                for (uint32_t room = 0; room <= len * 3 + 1; room += (room < 40 ? 1 : 7)) {
                    const Result16to8 got = run16to8(u, room, big, off), want = model16to8(u, room, big);
                    ASSERT_EQ(got.out, want.out) << len << " " << room;
                    ASSERT_EQ(got.consumed, want.consumed);
                }
                const Bytes b = model16to8(u, static_cast<uint32_t>(len * 3), false).out;
                for (uint32_t room = 0; room <= len + 1; ++room) {
                    const Result8to16 got = run8to16(b, room, big, off), want = model8to16(b, room, big);
                    ASSERT_EQ(got.out, want.out) << len << " " << room;
                    ASSERT_EQ(got.consumed, want.consumed);
                }
            }
        }
    }
}

TEST(Utf, CorruptedInputAtEveryPosition) {
    // Each byte of valid text in turn, including the last one, replaced by
    // continuation bytes, start bytes of every length and 0xFE/0xFF; and
    // every prefix of the text.
    std::mt19937 rng(5);
    const Units u = randomUnits(rng, 90);
    const Bytes good = model16to8(u, 1000, false).out;
    for (size_t pos = 0; pos < good.size(); ++pos) {
        for (uint8_t bad : {0x80, 0xBF, 0xC2, 0xE0, 0xF0, 0xF8, 0xFC, 0xFE, 0xFF, 0x41}) {
            Bytes b = good;
            b[pos] = bad;
            const uint32_t room = static_cast<uint32_t>(b.size());
            const Result8to16 got = run8to16(b, room, false), want = model8to16(b, room, false);
            ASSERT_EQ(got.out, want.out) << pos;
            ASSERT_EQ(got.consumed, b.size());
        }
        const Bytes prefix(good.begin(), good.begin() + pos);
        ASSERT_EQ(run8to16(prefix, static_cast<uint32_t>(pos), false).out, model8to16(prefix, pos, false).out);
    }
    // Each unit in turn, including the last one, made a lone high or low
    // surrogate; and every prefix, which may end in half a pair.
    for (size_t pos = 0; pos < u.size(); ++pos) {
        for (uint16_t bad : {0xD800, 0xDBFF, 0xDC00, 0xDFFF}) {
            Units v = u;
            v[pos] = bad;
            const uint32_t room = static_cast<uint32_t>(v.size() * 3);
            const Result16to8 got = run16to8(v, room, false), want = model16to8(v, room, false);
            ASSERT_EQ(got.out, want.out) << pos;
            ASSERT_EQ(got.consumed, v.size());
        }
        const Units prefix(u.begin(), u.begin() + pos);
        ASSERT_EQ(run16to8(prefix, 1000, false).out, model16to8(prefix, 1000, false).out);
    }
}

TEST(Utf, RandomBytes) {
    std::mt19937 rng(11);
    for (int round = 0; round < 500; ++round) {
        Bytes b(rng() % 50);
        for (auto& v : b) v = static_cast<uint8_t>(rng() % 3 == 0 ? rng() % 0x80 : 0x80 + rng() % 0x80);
        const uint32_t room = static_cast<uint32_t>(rng() % 60);
        const Result8to16 got = run8to16(b, room, round & 1), want = model8to16(b, room, round & 1);
        ASSERT_EQ(got.out, want.out);
        ASSERT_EQ(got.consumed, want.consumed);
    }
}

}  // namespace
