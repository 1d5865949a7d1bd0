// Hostile patterns and subjects: each call must end with a status, inside
// sane bounds of time and memory. Nothing here asserts on time; each case
// prints its wall time and the process's peak RSS so that a regression shows
// in the log.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "zevch.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool Instrumented = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool Instrumented = true;
#else
constexpr bool Instrumented = false;
#endif
#else
constexpr bool Instrumented = false;
#endif

// Prints the wall time of a scope and the peak RSS at its end.
class Measure {
public:
    explicit Measure(std::string what) : what_(std::move(what)), t0_(std::chrono::steady_clock::now()) {}
    ~Measure() {
        const double ms =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0_).count();
        rusage ru{};
        getrusage(RUSAGE_SELF, &ru);
        std::printf("[ hostile  ] %-48s %9.1f ms  peak RSS %6ld MB\n", what_.c_str(), ms, ru.ru_maxrss / 1024);
    }

private:
    std::string what_;
    std::chrono::steady_clock::time_point t0_;
};

bool isStatus(zevStatus s) {
    switch (s) {
        case zevStatusOk:
        case zevStatusRegExpBadProperty:
        case zevStatusRegExpBadClass:
        case zevStatusRegExpBadReference:
        case zevStatusRegExpBadSyntax:
        case zevStatusRegExpBadRepeat:
        case zevStatusRegExpMatchLimit:
            return true;
        default:
            return false;
    }
}

// Compiles through a caller's block of the advertised size and searches a
// small subject with it; returns the compile status.
zevStatus compileAndSearch(const std::string& pattern, const char* options, const std::string& subject) {
    int32_t size = 0;
    EXPECT_EQ(zevsRegExpGetSize(pattern.c_str(), &size), zevStatusOk);
    EXPECT_EQ(static_cast<int64_t>(size), 40052 + 20 * static_cast<int64_t>(pattern.size()));
    std::vector<uint8_t> block(static_cast<size_t>(size));
    RegExpState* state = reinterpret_cast<RegExpState*>(block.data());
    int32_t err = -1;
    const zevStatus s = zevsRegExpInit(pattern.c_str(), options, state, &err);
    EXPECT_TRUE(isStatus(s)) << s;
    if (s != zevStatusOk) {
        EXPECT_GE(err, 0);
        EXPECT_LE(err, static_cast<int32_t>(pattern.size()));
        return s;
    }
    RegExpFindEntry find[8];
    int32_t count = 8;
    const zevStatus f = zevsRegExpFind_8u(reinterpret_cast<const uint8_t*>(subject.data()),
                                          static_cast<int32_t>(subject.size()), state, find, &count);
    EXPECT_TRUE(f == zevStatusOk || f == zevStatusRegExpMatchLimit) << f;
    return s;
}

std::string repeat(const std::string& piece, size_t times) {
    std::string out;
    out.reserve(piece.size() * times);
    for (size_t i = 0; i < times; ++i) out += piece;
    return out;
}

TEST(HostilePatterns, MegabytePatternsCompile) {
    const size_t mb = 1 << 20;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"literal run", repeat("a", mb)},
        {"repeats", repeat("a*", mb / 2)},
        {"classes", repeat("[a-z]", mb / 5)},
        {"groups", repeat("(a)", mb / 3)},           // passes the group limit
        {"escapes", repeat("\\w\\d\\s", mb / 6)},
        {"properties", repeat("\\p{L}", mb / 5)},
        {"alternation", repeat("ab|", mb / 3) + "c"},
    };
    for (const auto& [name, pattern] : cases) {
        Measure m("1 MB pattern: " + name);
        compileAndSearch(pattern, "", "abc 123 xyz");
    }
}

TEST(HostilePatterns, DeepNestingEndsWithStatus) {
    const size_t n = 100000;
    for (const char* open : {"(", "(?:", "(?>", "(?=", "(?<=", "(?i:"}) {
        Measure m(std::string("100000 nested ") + open);
        const std::string pattern = repeat(open, n) + "a" + repeat(")", n);
        EXPECT_EQ(compileAndSearch(pattern, "", "a"), zevStatusRegExpBadSyntax);
    }
    {
        Measure m("100000 unclosed (");
        EXPECT_EQ(compileAndSearch(repeat("(", n), "", "a"), zevStatusRegExpBadSyntax);
    }
    {
        Measure m("100000 unmatched )");
        EXPECT_EQ(compileAndSearch(repeat(")", n), "", "a"), zevStatusRegExpBadSyntax);
    }
    {
        // Within the limit: 999 open groups at one time compile and match.
        Measure m("999 nested (?:");
        EXPECT_EQ(compileAndSearch(repeat("(?:", 999) + "a" + repeat(")", 999), "", "a"), zevStatusOk);
    }
}

TEST(HostilePatterns, HundredThousandAlternatives) {
    std::string pattern;
    for (int i = 0; i < 100000; ++i) {
        if (i) pattern += '|';
        pattern += "w" + std::to_string(i);
    }
    Measure m("100000 alternatives");
    EXPECT_EQ(compileAndSearch(pattern, "", "no such word but w99999"), zevStatusOk);
    EXPECT_EQ(compileAndSearch("(" + pattern + ")", "g", "w1 w2 w99999"), zevStatusOk);
}

TEST(HostilePatterns, ClassesOfEveryCodePoint) {
    {
        Measure m("[\\x{0}-\\x{10FFFF}]");
        EXPECT_EQ(compileAndSearch("[\\x{0}-\\x{10FFFF}]+", "", "any \xe2\x82\xac text"), zevStatusOk);
        EXPECT_EQ(compileAndSearch("[^\\x{0}-\\x{10FFFF}]", "i", "any text"), zevStatusOk);
        EXPECT_EQ(compileAndSearch("[\\x{0}-\\x{7FFFFFFF}]*x", "", "abc"), zevStatusOk);
    }
    {
        // Every code point below U+10000 as its own two-code range.
        std::string pattern = "[";
        char buf[32];
        for (uint32_t c = 0x100; c < 0x10000; c += 2) {
            std::snprintf(buf, sizeof buf, "\\x{%X}-\\x{%X}", c, c + 1);
            pattern += buf;
        }
        pattern += "]+";
        Measure m("class of 32640 ranges");
        const zevStatus s = compileAndSearch(pattern, "", "\xc4\x80\xc4\x81 x");
        EXPECT_TRUE(s == zevStatusOk || s == zevStatusRegExpBadClass) << s;
    }
    {
        std::string pattern = "[";
        for (int i = 0; i < 20000; ++i) pattern += "[:alpha:]\\p{Lu}\\d";
        pattern += "]";
        Measure m("class of 60000 items");
        const zevStatus s = compileAndSearch(pattern, "", "A1");
        EXPECT_TRUE(s == zevStatusOk || s == zevStatusRegExpBadClass) << s;
    }
}

// Searches at the default match limit over one large subject: every call
// must come back with a status. The subject is allocated once.
TEST(HostileSubjects, DefaultLimitOnLargeSubject) {
    const size_t size = Instrumented ? (16u << 20) : (100u << 20);
    uint8_t* subject = static_cast<uint8_t*>(std::malloc(size));
    ASSERT_NE(subject, nullptr);
    std::memset(subject, 'a', size);
    for (size_t i = 4096; i < size; i += 65536) subject[i] = '\n';
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"(a+)+$", ""},      {"(a|aa)*c", ""},       {".*.*=.*", ""},       {"\\w+\\s", ""},
        {"(?:a*)*b", ""},    {"^(a?){30}a{30}$", "m"}, {"a", "g"},            {"(a)(a)?", "g"},
        {"\\X+z", ""},       {"[\\x{100}-\\x{10FFFF}]", ""}, {"(?<=a)b", ""}, {"(?i)A{2,}B", ""},
        {"", "g"},           {"x*", "g"},
    };
    for (const auto& [pattern, options] : cases) {
        RegExpState* state = nullptr;
        int32_t err = 0;
        ASSERT_EQ(zevsRegExpInitAlloc(pattern, options, &state, &err), zevStatusOk) << pattern;
        RegExpFindEntry find[64];
        int32_t count = 64;
        {
            Measure m(std::string(Instrumented ? "16 MB: " : "100 MB: ") + pattern);
            const zevStatus s = zevsRegExpFind_8u(subject, static_cast<int32_t>(size), state, find, &count);
            EXPECT_TRUE(s == zevStatusOk || s == zevStatusRegExpMatchLimit) << pattern << " " << s;
            EXPECT_GE(count, 0);
            EXPECT_LE(count, 64);
        }
        zevsRegExpFree(state);
    }
    std::free(subject);
}

// A match limit raised to the maximum turns the budget off; the recursion
// then goes as deep as the subject is long, and the stack guard must end it
// with the match-limit status, on the main thread and on a small thread
// stack alike.
TEST(HostileSubjects, UnlimitedBudgetEndsOnTheStackGuard) {
    const size_t size = Instrumented ? (1u << 20) : (4u << 20);
    std::vector<uint8_t> subject(size, 'a');
    // No trailing literal, so the subject is not cut short before the search.
    // (A lazy repeat is left out: without a budget it tries every length at
    // every start, quadratic by design rather than deep.)
    for (const char* pattern : {"(a)*\\d", "(?:a|b)*\\d", "(?:(a)|b)+\\d", "(?>a|b)*\\d"}) {
        RegExpState* state = nullptr;
        int32_t err = 0;
        ASSERT_EQ(zevsRegExpInitAlloc(pattern, "", &state, &err), zevStatusOk) << pattern;
        ASSERT_EQ(zevsRegExpSetMatchLimit(INT32_MAX, state), zevStatusOk);
        RegExpFindEntry find[4];
        int32_t count = 4;
        Measure m(std::string(Instrumented ? "1 MB, no budget: " : "4 MB, no budget: ") + pattern);
        const zevStatus s = zevsRegExpFind_8u(subject.data(), static_cast<int32_t>(size), state, find, &count);
        EXPECT_TRUE(s == zevStatusOk || s == zevStatusRegExpMatchLimit) << pattern << " " << s;
        zevsRegExpFree(state);
    }
}

}  // namespace
