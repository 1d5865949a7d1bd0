// tests/match/stack_test.cpp - the stack guarantee: whatever the match limit
// and the subject's length, a search either finishes with the exact result
// or ends with zevStatusRegExpMatchLimit; it never runs off its thread's
// stack. And at the default limit an 8 MB stack is always enough.
#include "tests/match/core_test_util.h"

#include <pthread.h>

using namespace matchcore;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr size_t SubjectBytes = 1u << 20;   // instrumented frames: keep it short
#else
constexpr size_t SubjectBytes = 8u << 20;
#endif

struct Job {
    const char* pattern;
    const std::string* subject;
    int32_t limit;
    int32_t fastPaths;
    zevStatus status;
    RegExpFindEntry whole;
};

void* runJob(void* arg) {
    Job* job = static_cast<Job*>(arg);
    RegExpState* state = nullptr;
    int32_t err = 0;
    if (zevsRegExpInitAlloc(job->pattern, nullptr, &state, &err) != zevStatusOk) {
        job->status = zevStatusRegExpBadSyntax;
        return nullptr;
    }
    zevsRegExpSetMatchLimit(job->limit, state);
    int32_t count = 1;
    job->status = ownRegExpSearchEx(reinterpret_cast<const uint8_t*>(job->subject->data()),
                                    static_cast<int32_t>(job->subject->size()), state, &job->whole, &count, 0,
                                    job->fastPaths);
    zevsRegExpFree(state);
    return nullptr;
}

Job runOnThread(const char* pattern, const std::string& subject, int32_t limit, size_t stackBytes,
                int32_t fastPaths = 1) {
    Job job{pattern, &subject, limit, fastPaths, zevStatusOk, {nullptr, -1}};
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, stackBytes);
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, &attr, runJob, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
    return job;
}

std::string repeated(const std::string& unit, size_t bytes, const std::string& tail) {
    std::string out;
    out.reserve(bytes + tail.size());
    while (out.size() + unit.size() <= bytes) {
        out += unit;
    }
    return out + tail;
}

TEST(MatchStack, OneMegabyteThreadNeverOverflows) {
    struct Case {
        const char* pattern;
        std::string subject;
    };
    const Case cases[] = {
        {"[a-z]*x", repeated("a", SubjectBytes, "x")},
        {"(a|b)*c", repeated("ab", SubjectBytes, "c")},
        {"(?:ab)+c", repeated("ab", SubjectBytes, "c")},
        {".*\\d", repeated("a", SubjectBytes, "1")},
        {"(a)*b", repeated("a", SubjectBytes, "b")},
        {"(?>a)*b", repeated("a", SubjectBytes, "b")},
        {"(?:a|b)*?c", repeated("ab", SubjectBytes, "c")},
    };
    for (const Case& c : cases) {
        for (int32_t fast = 0; fast <= 1; ++fast) {
            const Job job = runOnThread(c.pattern, c.subject, INT32_MAX, 1u << 20, fast);
            SCOPED_TRACE(c.pattern);
            if (job.status == zevStatusOk) {
                EXPECT_EQ(job.whole.start, reinterpret_cast<const uint8_t*>(c.subject.data()));
                EXPECT_EQ(static_cast<size_t>(job.whole.length), c.subject.size());
            } else {
                EXPECT_EQ(job.status, zevStatusRegExpMatchLimit);
            }
        }
    }
}

TEST(MatchStack, DefaultLimitFitsAnEightMegabyteStack) {
    // Subjects sized so that each search needs most of the default 10000
    // units, every one of them a level deeper.
    const std::string as = repeated("a", 4900, "b");
    const std::string abs = repeated("ab", 3600, "c");
    const std::string lazy = repeated("ab", 1600, "c");
    for (const auto& [pattern, subject] : {std::pair<const char*, const std::string*>{"(a)*b", &as},
                                           {"(?:a|b)*c", &abs}, {"(?:(a)|b)*?c", &lazy}}) {
        const Job job = runOnThread(pattern, *subject, DefaultMatchLimit, 8u << 20);
        SCOPED_TRACE(pattern);
        EXPECT_EQ(job.status, zevStatusOk);
        EXPECT_EQ(static_cast<size_t>(job.whole.length), subject->size());
    }
}

}  // namespace
