// bench/multi_bench.cpp - the multi-pattern find on one and two threads,
// against the same 64 patterns searched one after the other.
//
// The text is the first MB of the regex benchmark text (bench-data), or, when
// that file is absent, generated from a fixed seed. The 64 patterns mix the
// benchmark's Email, URI and IPv4 patterns (class-heavy, many start
// positions), whole words (a literal behind \b), word prefixes with \w*ing
// (long repeats that backtrack) and digit runs.
#include <benchmark/benchmark.h>

#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "core/core.h"
#include "zevch.h"

namespace {

constexpr size_t TextBytes = size_t{1} << 20;
constexpr int32_t FindCapacity = 1 << 16;

std::string loadText() {
    for (const char* path : {ZEVCH_SOURCE_DIR "/../shared/bench-data/mariomka-input-text.txt",
                             "/work/shared/bench-data/mariomka-input-text.txt"}) {
        std::ifstream f(path, std::ios::binary);
        if (!f) continue;
        std::string text(TextBytes, '\0');
        f.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<size_t>(f.gcount()));
        if (!text.empty()) return text;
    }
    std::mt19937 rng(1);
    const char* words[] = {"the", "string", "function", "returns", "mail", "user@example.org",
                           "http://example.com/a?b=1", "10.0.0.1", "1999", "class", "reading"};
    std::string text;
    while (text.size() < TextBytes) {
        text += words[rng() % (sizeof words / sizeof *words)];
        text += rng() % 9 == 0 ? '\n' : ' ';
    }
    return text;
}

std::vector<std::string> sixtyFourPatterns() {
    std::vector<std::string> p = {
        "[\\w\\.+-]+@[\\w\\.-]+\\.[\\w\\.-]+",
        "[\\w]+://[^/\\s?#]+[^\\s?#]+(?:\\?[^\\s#]*)?(?:#[^\\s]*)?",
        "(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])\\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])",
    };
    for (const char* w : {"function", "return", "class", "import", "public", "static", "void", "string",
                          "number", "array", "object", "while"}) {
        p.push_back(std::string("\\b") + w + "\\b");
    }
    for (char c : std::string("abcdefghiklmnprstuw")) p.push_back(std::string("\\b") + c + "\\w*ing\\b");
    for (char c : std::string("abcdefghilmnprst")) p.push_back(std::string("\\b[A-Z]") + c + "\\w+");
    for (char d = '0'; d <= '9'; ++d) p.push_back(std::string("\\b") + d + "\\d+\\b");
    p.push_back("\"[^\"\\n]*\"");
    p.push_back("\\(\\w+\\)");
    p.push_back("#+ \\w+");
    p.push_back("`[^`\\n]+`");
    p.resize(64);
    return p;
}

struct Fixture {
    std::string text = loadText();
    std::vector<RegExpState*> patterns;
    RegExpMultiState* set = nullptr;
    std::vector<RegExpMultiResult> results;
    std::vector<std::vector<RegExpFindEntry>> finds;

    Fixture() {
        const std::vector<std::string> texts = sixtyFourPatterns();
        zevsRegExpMultiInitAlloc(&set, static_cast<uint32_t>(texts.size()));
        for (size_t i = 0; i < texts.size(); ++i) {
            RegExpState* s = nullptr;
            int32_t err = 0;
            if (zevsRegExpInitAlloc(texts[i].c_str(), "g", &s, &err) != zevStatusOk) continue;
            zevsRegExpSetMatchLimit(INT32_MAX, s);
            patterns.push_back(s);
            zevsRegExpMultiAdd(s, static_cast<uint32_t>(i + 1), set);
        }
        results.resize(texts.size());
        finds.assign(texts.size(), std::vector<RegExpFindEntry>(FindCapacity));
    }
    ~Fixture() {
        zevsRegExpMultiFree(set);
        for (RegExpState* s : patterns) zevsRegExpFree(s);
    }
    const uint8_t* src() const { return reinterpret_cast<const uint8_t*>(text.data()); }
    int32_t length() const { return static_cast<int32_t>(text.size()); }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_MultiFind(benchmark::State& state) {
    Fixture& f = fixture();
    ownSetNumThreadsOverride(static_cast<int32_t>(state.range(0)));
    int64_t matches = 0;
    for (auto _ : state) {
        for (size_t i = 0; i < f.results.size(); ++i) {
            f.results[i] = RegExpMultiResult{0, 0, FindCapacity, 0, f.finds[i].data()};
        }
        zevsRegExpMultiFind_8u(f.src(), f.length(), f.results.data(), f.set);
        matches = 0;
        for (const RegExpMultiResult& r : f.results) matches += r.findCount;
    }
    ownSetNumThreadsOverride(0);
    state.counters["entries"] = static_cast<double>(matches);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * f.length());
}
BENCHMARK(BM_MultiFind)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

void BM_OneByOne(benchmark::State& state) {
    Fixture& f = fixture();
    int64_t matches = 0;
    for (auto _ : state) {
        matches = 0;
        for (size_t i = 0; i < f.patterns.size(); ++i) {
            int32_t count = FindCapacity;
            zevsRegExpFind_8u(f.src(), f.length(), f.patterns[i], f.finds[i].data(), &count);
            matches += count;
        }
    }
    state.counters["entries"] = static_cast<double>(matches);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * f.length());
}
BENCHMARK(BM_OneByOne)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
