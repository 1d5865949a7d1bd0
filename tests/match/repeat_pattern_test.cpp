// Compiled patterns built from repeats of every family, run through the
// search with the shortcuts off and on: status, entries and the budget left
// must agree for random subjects, options and match limits. And a search
// over a long subject with an unlimited match limit on a 1 MB stack.

#include <pthread.h>

#include <random>

#include "tests/match/core_test_util.h"

using namespace matchcore;

namespace {

const char* const Atoms[] = {
    "a", "b", "x", "ab", "xa", ".", "\\d", "\\w", "\\s", "\\S", "\\W", "[ab]", "[^a]", "[a-c\\d]",
    "[\\w.+-]", "[^/\\s?#]", "\\C", "\\x{e9}", "\\x{100}", "\\p{L}", "\\p{Lu}", "\\P{L}", "\\X",
    "(a|b)", "(a*)", "[\\x{c0}-\\x{17f}]", "\\p{Greek}",
};
const char* const Quantifiers[] = {"", "", "*", "+", "?", "{1,3}", "{2}", "{0,2}", "*?", "+?", "??", "{1,2}?"};
const char* const Pieces[] = {"a", "a", "b", "x", "A", "B", "\n", " ", "_", "1", "/", ".",
                              "\xC3\xA9", "\xC3\x89", "\xC4\x80", "\xCC\x81", "\x80", "\xE2\x82\xAC", "\xCE\xB1"};
const char* const OptionSets[] = {"", "", "i", "s", "g", "gi", "m"};

std::string randomPattern(std::mt19937& rng) {
    std::string p;
    int n = 1 + static_cast<int>(rng() % 4);
    bool group = false;
    for (int i = 0; i < n; ++i) {
        std::string atom = Atoms[rng() % (sizeof Atoms / sizeof *Atoms)];
        group = group || atom[0] == '(';
        p += atom;
        p += Quantifiers[rng() % (sizeof Quantifiers / sizeof *Quantifiers)];
    }
    if (group && rng() % 2 == 0) {
        p += rng() % 2 == 0 ? "\\1*" : "\\1+?";
        p += rng() % 2 == 0 ? "x" : "";
    }
    return p;
}

std::string randomSubject(std::mt19937& rng) {
    std::string s;
    int n = static_cast<int>(rng() % 16);
    for (int i = 0; i < n; ++i) {
        s += Pieces[rng() % (sizeof Pieces / sizeof *Pieces)];
    }
    return s;
}

TEST(RepeatPatterns, ShortcutsAgreeWithThePlainSearch) {
    std::mt19937 rng(5);
    int found = 0;
    for (int round = 0; round < 1500; ++round) {
        std::string pattern = randomPattern(rng);
        const char* options = OptionSets[rng() % (sizeof OptionSets / sizeof *OptionSets)];
        StatePtr state = compile(pattern.c_str(), options);
        ASSERT_TRUE(state) << pattern;
        int32_t limit = rng() % 3 == 0 ? static_cast<int32_t>(rng() % 40) : 100000;
        ASSERT_EQ(zevsRegExpSetMatchLimit(limit, state.get()), zevStatusOk);
        ASSERT_EQ(zevsRegExpSetFormat(static_cast<int32_t>(rng() % 2), state.get()), zevStatusOk);
        for (int k = 0; k < 4; ++k) {
            std::string subject = randomSubject(rng);
            Outcome plain = searchOnce(state.get(), subject, 8, 0);
            Outcome fast = searchOnce(state.get(), subject, 8, 1);
            ASSERT_EQ(plain, fast) << "pattern " << pattern << " options " << options << " limit " << limit;
            found += plain.count > 0 ? 1 : 0;
        }
    }
    EXPECT_GT(found, 1000);
}

struct LongSearch {
    const char* pattern;
    std::string subject;
    Outcome outcome;
};

void* searchOnSmallStack(void* arg) {
    auto* job = static_cast<LongSearch*>(arg);
    StatePtr state = compile(job->pattern);
    if (state) {
        zevsRegExpSetMatchLimit(INT32_MAX, state.get());
        job->outcome = searchOnce(state.get(), job->subject, 2, 1);
    }
    return nullptr;
}

// Repeats over megabytes keep one frame each, whatever the number of
// characters they take, and each of their runs returns before the next.
TEST(RepeatPatterns, LongSubjectsOnAOneMegabyteStack) {
    const std::string run(2 << 20, 'a');
    LongSearch jobs[] = {
        {"^[a-z]*\\d", run, {}},
        {"^[a-z]+?\\d", run, {}},
        {"^\\w+\\d", run, {}},
        {"^.*\\d", run, {}},
        {"^\\X*\\d", run, {}},
        {"^\\p{L}*?\\d", run, {}},
        {"[a-z]*", run, {}},
    };
    for (LongSearch& job : jobs) {
        pthread_attr_t attr;
        pthread_attr_init(&attr);
        pthread_attr_setstacksize(&attr, 1 << 20);
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, &attr, searchOnSmallStack, &job), 0);
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attr);
        EXPECT_EQ(job.outcome.status, zevStatusOk) << job.pattern;
    }
    EXPECT_EQ(jobs[6].outcome.entries.at(0).length, 2 << 20);
}

}  // namespace
