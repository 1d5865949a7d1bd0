// tests/match/fast_path_test.cpp - the search with its shortcuts against the
// plain reference walk: random patterns, subjects and match limits must give
// the same status, the same entries and the same budget left.
//
// The skip plan and the run shortcut start on subjects of 256 bytes or more,
// so most subjects here are that long; shorter ones go through the per-byte
// skip of short searches. The alphabet mixes the bytes that the patterns'
// first nodes test with newlines, multi-byte and malformed UTF-8.
#include "tests/match/core_test_util.h"

#include <algorithm>
#include <random>
#include <vector>

using namespace matchcore;

namespace {

const char* const Atoms[] = {
    "a", "b", "ab", "@", "\\.", "[ab]", "[^a]", "[a-c\\d]", "[0-9]", "[01]", "\\d", "\\w", "\\s", "\\S",
    ".", "\\x{e9}", "[\\w.+-]", "(?:a|b)", "(a|bc)", "(?:25|2[0-4]|1?\\d)", "(?>a|ab)", "(?=a)", "(?!b)",
    "(?<=a)", "\\b", "$", "x", "(?i:a)", "[^\\s@]", "\\p{L}", "\\1", "(?(1)a|b)", "(?m)^", "\\C", "\\X",
    "[^\\W\\d]", "(a)", "(?:ab)", "(?<=\\w.)", "(?<!ab)", "(?<=\\C)",
};
const char* const Quantifiers[] = {"", "", "", "*", "+", "?", "{2}", "{1,3}", "*?", "+?", "??", "{0,2}", "{2,}", "{3,}"};
const char* const Pieces[] = {"a", "b", "c", "@", ".", "1", "2", "5", " ", "\n", "\xC3\xA9", "\xE2\x82\xAC",
                              "\x80", "A", "_", "x", "ab", "25", "a@b.c"};
const char* const Options[] = {nullptr, "g", "i", "gi", "m", "gm", "s"};
const int32_t Limits[] = {0, 1, 2, 3, 7, 20, 100, 1000, 10000, 1000000};

template <class T, size_t N>
const T& pick(std::mt19937& rng, const T (&list)[N]) {
    return list[rng() % N];
}

// The search plain and with the shortcuts at every match limit from 0 up to
// `below`, the steps widening by 1 + limit / spread, must agree in status,
// entries and budget left.
void expectAgreeAtLimits(RegExpState* state, std::string_view subject, int32_t capacity, int32_t below,
                         int32_t spread, const char* pattern) {
    for (int32_t limit = 0; limit < below; limit += 1 + limit / spread) {
        zevsRegExpSetMatchLimit(limit, state);
        ASSERT_EQ(searchOnce(state, subject, capacity, 0), searchOnce(state, subject, capacity, 1))
            << pattern << " limit " << limit;
    }
}

std::string repeated(std::string_view piece, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) {
        out += piece;
    }
    return out;
}

std::string randomSequence(std::mt19937& rng) {
    std::string out;
    const int n = 1 + static_cast<int>(rng() % 4);
    for (int i = 0; i < n; ++i) {
        out += pick(rng, Atoms);
        out += pick(rng, Quantifiers);
    }
    return out;
}

std::string randomPattern(std::mt19937& rng) {
    std::string pattern;
    switch (rng() % 8) {
    case 0:
        pattern = ".*";   // the line-start anchor
        break;
    case 1:
        pattern = "(?i)";
        break;
    default:
        break;
    }
    pattern += randomSequence(rng);
    if (rng() % 4 == 0) {
        pattern += '|';
        pattern += randomSequence(rng);
    }
    return pattern;
}

std::string randomSubject(std::mt19937& rng, size_t least = 256, size_t spread = 300) {
    std::string out;
    const size_t length = least + rng() % spread;
    // A few pieces dominate, so that runs of like bytes occur.
    const char* common[3] = {pick(rng, Pieces), pick(rng, Pieces), pick(rng, Pieces)};
    while (out.size() < length) {
        out += rng() % 4 == 0 ? pick(rng, Pieces) : common[rng() % 3];
    }
    return out;
}

// Runs `body(state, trace, rng)` for `count` random patterns under random
// options, each compiled in a random format (those that do not compile are
// left out); trace names the pattern and options. Returns how many ran.
template <class Body>
int forRandomStates(uint32_t seed, int count, const Body& body) {
    std::mt19937 rng(seed);
    int compiled = 0;
    for (int i = 0; i < count; ++i) {
        const std::string pattern = randomPattern(rng);
        const char* options = pick(rng, Options);
        RegExpState* raw = nullptr;
        int32_t err = 0;
        if (zevsRegExpInitAlloc(pattern.c_str(), options, &raw, &err) != zevStatusOk) {
            continue;
        }
        StatePtr state(raw);
        ++compiled;
        zevsRegExpSetFormat(static_cast<int32_t>(rng() % 2), raw);
        body(raw, "pattern " + pattern + " options " + (options ? options : "-"), rng);
        if (::testing::Test::HasFatalFailure()) {
            break;
        }
    }
    return compiled;
}

TEST(MatchFastPaths, AgreeWithThePlainWalk) {
    const int compiled = forRandomStates(20261123, 5000, [](RegExpState* raw, const std::string& trace,
                                                            std::mt19937& rng) {
        for (int k = 0; k < 3; ++k) {
            zevsRegExpSetMatchLimit(pick(rng, Limits), raw);
            const std::string subject = randomSubject(rng);
            const int32_t capacity = 1 + static_cast<int32_t>(rng() % 12);
            SCOPED_TRACE(trace);
            const Outcome plain = searchOnce(raw, subject, capacity, 0);
            const Outcome fast = searchOnce(raw, subject, capacity, 1);
            ASSERT_EQ(plain, fast) << "limit " << raw->matchLimit << " format " << raw->format << " subject "
                                   << subject;
        }
    });
    EXPECT_GT(compiled, 3000);
}

// Short subjects (one line of a file, say) skip place by place with the cost
// of each byte worked out as it is met, costs that may differ from byte to
// byte, and use the run shortcut of a leading repeat; every small limit must
// still end where the plain walk ends.
TEST(MatchFastPaths, ShortSubjectsSkipByByte) {
    forRandomStates(20261124, 1500, [](RegExpState* raw, const std::string& trace, std::mt19937& rng) {
        const std::string subject = randomSubject(rng, 0, 40);
        SCOPED_TRACE(trace + " subject " + subject);
        expectAgreeAtLimits(raw, subject, 1 + static_cast<int32_t>(rng() % 12), 120, 6, trace.c_str());
    });
    // Costs that differ by byte, and (the last three) a leading repeat whose
    // later places are charged from the first one's attempt.
    const char* const patterns[] = {
        "a?b|c", "[ab]?c|d", "x?y?z", "(?:25|2[0-4]|1?\\d)\\.", "\\s?\\d+|@", "(?i)k?\\x{e9}|q",
        "[\\w.+-]+@[\\w.-]+", "\\w{2,}://", "[^\\s@]*@",
    };
    const std::string subject = "hello world 12.250.3.4 xyz k\xC3\xA9 \x80@ cd";
    for (const char* pattern : patterns) {
        for (const char* options : {"", "g"}) {
            for (int32_t format : {0, 1}) {
                StatePtr state = compile(pattern, options);
                zevsRegExpSetFormat(format, state.get());
                expectAgreeAtLimits(state.get(), subject, 64, 400, 8, pattern);
            }
        }
    }
}

// The costs a short search works out outlive it, for the next search of the
// same pattern; a record compiled anew in the same memory, to a pattern that
// differs in one node or only in a literal's bytes, must not inherit them.
TEST(MatchFastPaths, ShortSearchCostsFollowTheRecord) {
    const char* const pairs[][2] = {
        {"(?:25|1)\\d", "(?:35|1)\\d"},   // same nodes, other literal bytes
        {"x?c|@", "x?d|@"},                  // one node differs
        {"[a-f]+!", "[a-f]+?"},
        {"a|b", "(?i)a|b"},                  // the options differ
        {"\xC3+!", "\xC3+?"},              // a raw byte item: its run steps by bytes
    };
    const std::string subjects[] = {"3x 2y 35 25 d!", "cc dd @ AB", "\xC3\xC3\xA9!\xC3", ""};
    for (const auto& pair : pairs) {
        int32_t size = 0;
        ASSERT_EQ(zevsRegExpGetSize(pair[0], &size), zevStatusOk);
        int32_t other = 0;
        ASSERT_EQ(zevsRegExpGetSize(pair[1], &other), zevStatusOk);
        std::vector<uint8_t> block(static_cast<size_t>(std::max(size, other)) + 64);
        RegExpState* state = reinterpret_cast<RegExpState*>(block.data());
        for (int round = 0; round < 4; ++round) {
            const char* pattern = pair[round % 2];
            int32_t err = 0;
            ASSERT_EQ(zevsRegExpInit(pattern, "", state, &err), zevStatusOk) << pattern;
            for (int32_t format : {0, 1, 0}) {   // the run plan depends on it too
                zevsRegExpSetFormat(format, state);
                for (const std::string& subject : subjects) {
                    expectAgreeAtLimits(state, subject, 8, 60, 8, pattern);
                }
            }
        }
    }
}

// Shapes the shortcuts were built for, with the budget running out at every
// point of the walk: the outcome must stay that of the plain walk.
TEST(MatchFastPaths, BudgetRunsOutMidSkip) {
    const char* const patterns[] = {
        "[\\w.+-]+@[\\w.-]+\\.[\\w.-]+",
        "\\w+://[^/\\s?#]+",
        "(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])\\.){3}",
        ".*@",
        "ab|cd|@",
        "x+y",
    };
    const std::string subject = repeated("foo bar.baz 12.250.3.4 x@y.z xxxy http://a.b/c\n\xC3\xA9t\xC3\xA9 ", 40);
    for (const char* pattern : patterns) {
        for (const char* options : {"", "g"}) {
            StatePtr state = compile(pattern, options);
            expectAgreeAtLimits(state.get(), subject, 64, 3000, 8, pattern);
        }
    }
}

// Class repeats remember each class's ASCII set per head and flags for the
// whole search, and scan ASCII runs by it. More classes than slots, the same
// class under other flags (inline options, and a lazy repeat whose
// continuation changes them), and multi-byte characters inside the runs:
// the outcome must stay that of the plain walk, at every small limit.
TEST(MatchFastPaths, RememberedClassSets) {
    const char* const patterns[] = {
        "[a-c]+[d-f]+[0-4]+[5-9]+[\\w.]+@",
        "(?:[a-c]+(?i)[a-c]+(?-i)[x-z]*[^\\s]+)+",
        "[a-c]*?(?i)[a-c]+(?-i)b",
        "[a-c]*?(?i)z",   // a failed continuation leaves (?i) for the next take
        // more classes than slots: heads 16 apart share one
        "(?:[a-c][d-f][0-4][5-9][g-i][j-l][m-o][p-r][s-u][v-x][y-z][A-C][D-F][G-I][J-L]\\d)+",
        "(?:[\\w.+-]+@|[\\w.-]+\\.)[\\w.-]{2,}",
        "(?i:[k-m]+)[k-m]+\\b",
        "[^\\s?#]+\\?[^\\s#]*",
        "[\\w]+://[^/\\s?#]+[^\\s?#]+",
    };
    const std::string subject = repeated(
        "abcDEF0129 xy.z@q abCab \xC3\xA9k\xE2\x84\xAAlm KLM kl?x#y a.b/c://d.e/f?g \x80z aBz "
        "ad05gjmpsvyADGJ1ad05gjmpsvyADGJ2 ad05gjm\n",
        12);
    for (const char* pattern : patterns) {
        for (const char* options : {"", "g", "gi"}) {
            StatePtr state = compile(pattern, options);
            expectAgreeAtLimits(state.get(), subject, 64, 1500, 6, pattern);
            zevsRegExpSetMatchLimit(1000000, state.get());
            for (size_t cut = 0; cut < 120; cut += 7) {
                const std::string_view part(subject.data(), cut);
                ASSERT_EQ(searchOnce(state.get(), part, 64, 0), searchOnce(state.get(), part, 64, 1)) << pattern;
            }
        }
    }
}

// The skip over places of known cost sixteen bytes at a time: patterns whose
// bytes of unknown cost make one to eight ASCII ranges (and nine, which the
// byte-wise walk keeps), behind long gaps of prose with two-, three- and
// four-byte characters, malformed and cut sequences and surrogate forms, at
// every alignment against the sixteen-byte blocks, in both formats. The
// place count, and so the budget charged, must be that of the plain walk.
TEST(MatchFastPaths, WideSkipCountsPlaces) {
    const char* const patterns[] = {
        "(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])\\.){3}",
        "[0-9]{2}:",
        "[a-c]x|[x-z]y",
        "[+\\-]\\d|[A-F][0-9]|#!",
        "[%&][0-9]|[<>]=|[{}][a-c]|~~|@@",
        "[\\w.+-]+@",                        // six ranges
        "[%&][0-9]|[<>]=|[{}][a-c]|~~|@@|!!|\\^\\^|''|\\$\\$|::",   // nine ranges
        "(?:[0-4]|[6-8])[0-9]\\b",
    };
    const char* const fillers[] = {
        "   ",         "\xD0\x9F\xD1\x80\xD0\xB8", "\xE4\xB8\xAD\xE6\x96\x87", "\xF0\x9F\x98\x80",
        "\xED\xA0\x80", "\xC3",                       "\x80\x80",                     "\xE2\x82",
        "\xC0\xAF",   "\xE0\xA4\xB9",                "Gg",                             "\xDF\xBF.",
    };
    std::mt19937 rng(7071);
    for (int round = 0; round < 40; ++round) {
        std::string subject(rng() % 16, 'q');   // shifts the blocks
        while (subject.size() < 700) {
            const int gap = static_cast<int>(rng() % 40);
            for (int i = 0; i < gap; ++i) {
                subject += pick(rng, fillers);
            }
            subject += pick(rng, {"12.250.3.4 ", "07:", "ax", "zy", "-5", "C9", "#!", "%3", "<=", "}b", "~~", "@@",
                                       "!!", "^^", "''", "$$", "::", "x.y@z"});
        }
        for (const char* pattern : patterns) {
            StatePtr state = compile(pattern, "g");
            for (int32_t format = 0; format < 2; ++format) {
                zevsRegExpSetFormat(format, state.get());
                expectAgreeAtLimits(state.get(), subject, 32, 400, 5, pattern);
                zevsRegExpSetMatchLimit(1000000, state.get());
                ASSERT_EQ(searchOnce(state.get(), subject, 32, 0), searchOnce(state.get(), subject, 32, 1))
                    << pattern;
            }
        }
    }
}

// Branches of a group whose first node turns down the byte are charged
// without being entered, and a class that takes at most one character runs
// its one or two continuations directly. Groups of branches led by bytes,
// strings, types and classes, optional classes before literals, classes and
// groups, on subjects with multi-byte and malformed characters and the area
// ending inside one, at every small limit.
TEST(MatchFastPaths, BranchesAndSingleClasses) {
    const char* const patterns[] = {
        "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])\\.",
        "(?:ab|\\d[a-c]|[x-z]{2}|\\w\\.)+-",
        "([01]?[0-9]){2}:|[^\\s]?\\x{e9}",
        "(?:[a-c]?(?:b|c)|[\\x{e9}\\x{20ac}]?[^a-z]){1,3}z",
        "[ab]?[ab]?[ab]?b",
        "(?i)(?:[k-m]|\\x{212a})[^\\d]?x",
        "(?:(?=a)[a-c]|b[^a]?)+\\b",
        // bars inside nested bodies, and a bar right behind one
        "(?:(?:a|b)(?=c|x)c|(?>ab|a)(?:c|(b))z|(?<=a|\\x{e9})(?:(x)|1)|(?(2)z|9))+:",
        "((?:2|5)|(?!a|b)(?:c|\\d)|(?i:(a)|k))*x",
    };
    const char* const pieces[] = {"a", "b", "c", "z", "x", "K", "1", "2", "5", "9", ".", ":", "-", " ",
                                  "\xC3\xA9", "\xE2\x82\xAC", "\xE2\x84\xAA", "\x80", "\xC3"};
    std::mt19937 rng(4242);
    for (int round = 0; round < 60; ++round) {
        std::string subject;
        const size_t length = 1 + rng() % 300;
        while (subject.size() < length) {
            subject += pick(rng, pieces);
        }
        for (const char* pattern : patterns) {
            StatePtr state = compile(pattern, round % 2 == 0 ? "g" : "");
            expectAgreeAtLimits(state.get(), subject, 16, 60, 10, pattern);
            zevsRegExpSetMatchLimit(1000000, state.get());
            ASSERT_EQ(searchOnce(state.get(), subject, 16, 0), searchOnce(state.get(), subject, 16, 1)) << pattern;
            // The area cut inside the subject: a retry after an empty match.
            const std::string_view part(subject.data(), subject.size() / 2);
            ASSERT_EQ(searchOnce(state.get(), part, 16, 0), searchOnce(state.get(), part, 16, 1)) << pattern;
        }
    }
}

}  // namespace
