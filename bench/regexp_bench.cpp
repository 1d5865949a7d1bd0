// bench/regexp_bench.cpp - counting all matches of three everyday patterns
// in 6.8 MB of mixed prose, code and UTF-8 (the "Learn X in Y minutes"
// text), with zevsRegExpFind_8u in global mode and, in the same run, with
// PCRE2's interpreter (no JIT) as the peer, and PCRE2 with its JIT as the
// engine to beat next.
//
// The text is read from $ZEVCH_BENCH_DATA (a directory) or from the shared
// bench-data folder beside the source tree; without it the benchmarks are
// skipped. Each run checks its count against the published one.
//
//   Email  [\w\.+-]+@[\w\.-]+\.[\w\.-]+      92 matches: a class repeat at
//          nearly every place, and a long step-back at each word
//   URI    [\w]+://[^/\s?#]+[^\s?#]+(?:...)  5301: \w+ at every word, then
//          the literal "://" behind it
//   IPv4   (?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])\.){3}(?:...)  5: a
//          repeated group of three branches at every place
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "zevch.h"

#ifdef ZEVCH_HAVE_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#endif

namespace {

struct BenchPattern {
    const char* name;
    const char* pattern;
    int64_t expected;
};

const BenchPattern Patterns[] = {
    {"Email", "[\\w\\.+-]+@[\\w\\.-]+\\.[\\w\\.-]+", 92},
    {"URI", "[\\w]+://[^/\\s?#]+[^\\s?#]+(?:\\?[^\\s#]*)?(?:#[^\\s]*)?", 5301},
    {"IPv4",
     "(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])\\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])", 5},
};

const std::string& inputText() {
    static const std::string text = [] {
        std::string dir;
        if (const char* env = std::getenv("ZEVCH_BENCH_DATA")) {
            dir = env;
        } else {
            dir = ZEVCH_SOURCE_DIR "/../shared/bench-data";
        }
        std::ifstream in(dir + "/mariomka-input-text.txt", std::ios::binary);
        return in ? std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>())
                  : std::string();
    }();
    return text;
}

// All matches through the global search, re-calling behind the last match
// whenever the result array fills up.
int64_t countZevch(RegExpState* state, const std::string& text) {
    constexpr int32_t Capacity = 4096;
    static RegExpFindEntry find[Capacity];
    const uint8_t* base = reinterpret_cast<const uint8_t*>(text.data());
    const uint8_t* p = base;
    int32_t left = static_cast<int32_t>(text.size());
    int64_t total = 0;
    for (;;) {
        int32_t count = Capacity;
        if (zevsRegExpFind_8u(p, left, state, find, &count) != zevStatusOk) {
            return -1;
        }
        total += count;
        if (count < Capacity) {
            return total;
        }
        const RegExpFindEntry& last = find[count - 1];
        const uint8_t* next = last.start + (last.length > 0 ? last.length : 1);
        left -= static_cast<int32_t>(next - p);
        p = next;
        if (left < 0) {
            return total;
        }
    }
}

void BM_Zevch(benchmark::State& st, const BenchPattern* bp) {
    const std::string& text = inputText();
    if (text.empty()) {
        st.SkipWithError("bench-data/mariomka-input-text.txt not found (set ZEVCH_BENCH_DATA)");
        return;
    }
    RegExpState* state = nullptr;
    int32_t err = 0;
    if (zevsRegExpInitAlloc(bp->pattern, "g", &state, &err) != zevStatusOk) {
        st.SkipWithError("pattern does not compile");
        return;
    }
    zevsRegExpSetMatchLimit(INT32_MAX, state);
    int64_t found = 0;
    for (auto _ : st) {
        found = countZevch(state, text);
        benchmark::DoNotOptimize(found);
    }
    zevsRegExpFree(state);
    st.counters["matches"] = static_cast<double>(found);
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(text.size()));
    if (found != bp->expected) {
        st.SkipWithError("match count differs from the published one");
    }
}

#ifdef ZEVCH_HAVE_PCRE2
void BM_Pcre2(benchmark::State& st, const BenchPattern* bp, bool jit) {
    const std::string& text = inputText();
    if (text.empty()) {
        st.SkipWithError("bench-data/mariomka-input-text.txt not found (set ZEVCH_BENCH_DATA)");
        return;
    }
    int errorCode = 0;
    PCRE2_SIZE errorOffset = 0;
    pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(bp->pattern), PCRE2_ZERO_TERMINATED, 0,
                                     &errorCode, &errorOffset, nullptr);
    if (jit && pcre2_jit_compile(code, PCRE2_JIT_COMPLETE) != 0) {
        st.SkipWithError("PCRE2 JIT not available");
        pcre2_code_free(code);
        return;
    }
    pcre2_match_context* mctx = pcre2_match_context_create(nullptr);
    pcre2_set_match_limit(mctx, UINT32_MAX);
    pcre2_set_depth_limit(mctx, UINT32_MAX);
    pcre2_match_data* md = pcre2_match_data_create_from_pattern(code, nullptr);
    const PCRE2_SPTR subject = reinterpret_cast<PCRE2_SPTR>(text.data());
    int64_t found = 0;
    for (auto _ : st) {
        found = 0;
        PCRE2_SIZE offset = 0;
        while (offset <= text.size()) {
            if (pcre2_match(code, subject, text.size(), offset, 0, md, mctx) < 0) {
                break;
            }
            const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(md);
            ++found;
            offset = ov[1] > ov[0] ? ov[1] : ov[0] + 1;
        }
        benchmark::DoNotOptimize(found);
    }
    pcre2_match_data_free(md);
    pcre2_match_context_free(mctx);
    pcre2_code_free(code);
    st.counters["matches"] = static_cast<double>(found);
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(text.size()));
}
#endif

const int registered = [] {
    for (const BenchPattern& bp : Patterns) {
        benchmark::RegisterBenchmark((std::string("zevch/") + bp.name).c_str(), BM_Zevch, &bp)
            ->Unit(benchmark::kMillisecond);
#ifdef ZEVCH_HAVE_PCRE2
        benchmark::RegisterBenchmark((std::string("pcre2_interp/") + bp.name).c_str(), BM_Pcre2, &bp, false)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((std::string("pcre2_jit/") + bp.name).c_str(), BM_Pcre2, &bp, true)
            ->Unit(benchmark::kMillisecond);
#endif
    }
    return 0;
}();

}  // namespace

BENCHMARK_MAIN();
