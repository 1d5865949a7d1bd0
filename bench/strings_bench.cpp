// String primitives measured side by side with their C library and ICU
// peers in the same run, on 1 MB of text generated from a fixed seed:
//   zevsFindC_8u / memchr, zevsFindRevC_8u / memrchr, zevsFind_8u / memmem,
//   zevsFindRev_8u (the regex literal prefilter), zevsCompare_8u / memcmp,
//   zevsConvertUTF_8u16u / u_strFromUTF8 and zevsConvertUTF_16u8u /
//   u_strToUTF8 on ASCII and on mixed UTF-8.
// Every search runs over the whole megabyte (the target is absent or last).
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "zevch.h"

#if ZEVCH_HAVE_ICU
#include <unicode/ustring.h>
#endif

namespace {

constexpr size_t TextBytes = 1 << 20;

// Lower-case words and spaces; no digits, so a digit is never found.
const std::vector<uint8_t>& asciiText() {
    static const std::vector<uint8_t> text = [] {
        std::mt19937 rng(1);
        std::vector<uint8_t> t(TextBytes);
        for (auto& b : t) b = static_cast<uint8_t>(rng() % 6 == 0 ? ' ' : 'a' + rng() % 26);
        return t;
    }();
    return text;
}

// Mostly ASCII with Latin-1, Greek, CJK and astral characters mixed in.
const std::vector<uint8_t>& mixedText() {
    static const std::vector<uint8_t> text = [] {
        std::mt19937 rng(2);
        std::vector<uint8_t> t;
        t.reserve(TextBytes + 4);
        while (t.size() < TextBytes - 4) {
            const uint32_t pick = rng() % 10;
            uint32_t c;
            if (pick < 6) c = 'a' + rng() % 26;
            else if (pick < 8) c = 0xC0 + rng() % 0x200;   // two bytes
            else if (pick < 9) c = 0x4E00 + rng() % 0x5000;  // three bytes
            else c = 0x1F300 + rng() % 0x300;               // four bytes
            if (c < 0x80) {
                t.push_back(static_cast<uint8_t>(c));
            } else if (c < 0x800) {
                t.push_back(static_cast<uint8_t>(0xC0 | c >> 6));
                t.push_back(static_cast<uint8_t>(0x80 | (c & 0x3F)));
            } else if (c < 0x10000) {
                t.push_back(static_cast<uint8_t>(0xE0 | c >> 12));
                t.push_back(static_cast<uint8_t>(0x80 | (c >> 6 & 0x3F)));
                t.push_back(static_cast<uint8_t>(0x80 | (c & 0x3F)));
            } else {
                t.push_back(static_cast<uint8_t>(0xF0 | c >> 18));
                t.push_back(static_cast<uint8_t>(0x80 | (c >> 12 & 0x3F)));
                t.push_back(static_cast<uint8_t>(0x80 | (c >> 6 & 0x3F)));
                t.push_back(static_cast<uint8_t>(0x80 | (c & 0x3F)));
            }
        }
        while (t.size() < TextBytes) t.push_back('z');
        return t;
    }();
    return text;
}

const std::vector<uint8_t>& textFor(const benchmark::State& state) {
    return state.range(0) == 0 ? asciiText() : mixedText();
}

void setBytes(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}

// ---- character search ----
void BM_FindC_zevs(benchmark::State& state) {
    const auto& t = asciiText();
    for (auto _ : state) {
        int32_t idx;
        zevsFindC_8u(t.data(), static_cast<int32_t>(t.size()), '7', &idx);
        benchmark::DoNotOptimize(idx);
    }
    setBytes(state, TextBytes);
}
void BM_FindC_memchr(benchmark::State& state) {
    const auto& t = asciiText();
    for (auto _ : state) benchmark::DoNotOptimize(std::memchr(t.data(), '7', t.size()));
    setBytes(state, TextBytes);
}
void BM_FindRevC_zevs(benchmark::State& state) {
    const auto& t = asciiText();
    for (auto _ : state) {
        int32_t idx;
        zevsFindRevC_8u(t.data(), static_cast<int32_t>(t.size()), '7', &idx);
        benchmark::DoNotOptimize(idx);
    }
    setBytes(state, TextBytes);
}
void BM_FindRevC_memrchr(benchmark::State& state) {
    const auto& t = asciiText();
    for (auto _ : state) benchmark::DoNotOptimize(memrchr(t.data(), '7', t.size()));
    setBytes(state, TextBytes);
}

// ---- needle search: absent needle of common letters ----
const uint8_t Needle[] = "the quick";
constexpr int32_t NeedleLen = sizeof(Needle) - 1;

void BM_Find_zevs(benchmark::State& state) {
    const auto& t = asciiText();
    for (auto _ : state) {
        int32_t idx;
        zevsFind_8u(t.data(), static_cast<int32_t>(t.size()), Needle, NeedleLen, &idx);
        benchmark::DoNotOptimize(idx);
    }
    setBytes(state, TextBytes);
}
void BM_Find_memmem(benchmark::State& state) {
    const auto& t = asciiText();
    for (auto _ : state) benchmark::DoNotOptimize(memmem(t.data(), t.size(), Needle, NeedleLen));
    setBytes(state, TextBytes);
}
void BM_FindRev_zevs(benchmark::State& state) {
    const auto& t = asciiText();
    for (auto _ : state) {
        int32_t idx;
        zevsFindRev_8u(t.data(), static_cast<int32_t>(t.size()), Needle, NeedleLen, &idx);
        benchmark::DoNotOptimize(idx);
    }
    setBytes(state, TextBytes);
}

// ---- compare: equal buffers, so the whole megabyte is read ----
void BM_Compare_zevs(benchmark::State& state) {
    const auto& t = asciiText();
    const std::vector<uint8_t> copy = t;
    for (auto _ : state) {
        int32_t r;
        zevsCompare_8u(t.data(), copy.data(), static_cast<int32_t>(t.size()), &r);
        benchmark::DoNotOptimize(r);
    }
    setBytes(state, TextBytes);
}
void BM_Compare_memcmp(benchmark::State& state) {
    const auto& t = asciiText();
    const std::vector<uint8_t> copy = t;
    for (auto _ : state) benchmark::DoNotOptimize(std::memcmp(t.data(), copy.data(), t.size()));
    setBytes(state, TextBytes);
}

// ---- UTF conversion; range(0): 0 ASCII, 1 mixed ----
void BM_Utf8To16_zevs(benchmark::State& state) {
    const auto& t = textFor(state);
    std::vector<uint16_t> out(t.size());
    for (auto _ : state) {
        uint32_t sl = static_cast<uint32_t>(t.size()), dl = static_cast<uint32_t>(out.size());
        zevsConvertUTF_8u16u(t.data(), &sl, out.data(), &dl, 0);
        benchmark::DoNotOptimize(dl);
    }
    setBytes(state, t.size());
}
void BM_Utf16To8_zevs(benchmark::State& state) {
    const auto& t = textFor(state);
    std::vector<uint16_t> units(t.size());
    uint32_t sl = static_cast<uint32_t>(t.size()), ul = static_cast<uint32_t>(units.size());
    zevsConvertUTF_8u16u(t.data(), &sl, units.data(), &ul, 0);
    std::vector<uint8_t> out(t.size());
    for (auto _ : state) {
        uint32_t n = ul, dl = static_cast<uint32_t>(out.size());
        zevsConvertUTF_16u8u(units.data(), &n, out.data(), &dl, 0);
        benchmark::DoNotOptimize(dl);
    }
    setBytes(state, t.size());
}

#if ZEVCH_HAVE_ICU
void BM_Utf8To16_icu(benchmark::State& state) {
    const auto& t = textFor(state);
    std::vector<UChar> out(t.size());
    for (auto _ : state) {
        UErrorCode err = U_ZERO_ERROR;
        int32_t n = 0;
        u_strFromUTF8(out.data(), static_cast<int32_t>(out.size()), &n, reinterpret_cast<const char*>(t.data()),
                      static_cast<int32_t>(t.size()), &err);
        benchmark::DoNotOptimize(n);
    }
    setBytes(state, t.size());
}
void BM_Utf16To8_icu(benchmark::State& state) {
    const auto& t = textFor(state);
    std::vector<UChar> units(t.size());
    UErrorCode err = U_ZERO_ERROR;
    int32_t ul = 0;
    u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &ul, reinterpret_cast<const char*>(t.data()),
                  static_cast<int32_t>(t.size()), &err);
    std::vector<char> out(t.size());
    for (auto _ : state) {
        UErrorCode e = U_ZERO_ERROR;
        int32_t n = 0;
        u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &n, units.data(), ul, &e);
        benchmark::DoNotOptimize(n);
    }
    setBytes(state, t.size());
}
#endif

}  // namespace

BENCHMARK(BM_FindC_zevs);
BENCHMARK(BM_FindC_memchr);
BENCHMARK(BM_FindRevC_zevs);
BENCHMARK(BM_FindRevC_memrchr);
BENCHMARK(BM_Find_zevs);
BENCHMARK(BM_Find_memmem);
BENCHMARK(BM_FindRev_zevs);
BENCHMARK(BM_Compare_zevs);
BENCHMARK(BM_Compare_memcmp);
BENCHMARK(BM_Utf8To16_zevs)->Arg(0)->Arg(1);
BENCHMARK(BM_Utf16To8_zevs)->Arg(0)->Arg(1);
#if ZEVCH_HAVE_ICU
BENCHMARK(BM_Utf8To16_icu)->Arg(0)->Arg(1);
BENCHMARK(BM_Utf16To8_icu)->Arg(0)->Arg(1);
#endif

BENCHMARK_MAIN();
