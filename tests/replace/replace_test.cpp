// Template parsing and the two replacement walks, with their stop rules.
#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "regexp/replace/replace_record.h"
#include "zevch.h"

namespace {

struct Template {
    std::vector<uint8_t> block;
    zevStatus status;
    explicit Template(const char* text) {
        int32_t size = 0;
        EXPECT_EQ(zevsRegExpReplaceGetSize(text, &size), zevStatusOk);
        block.assign(static_cast<size_t>(size), 0xEE);
        status = zevsRegExpReplaceInit(text, state());
    }
    RegExpReplaceState* state() { return reinterpret_cast<RegExpReplaceState*>(block.data()); }
    uint32_t count() { return ownReplaceSegmentCount(state()); }
    ReplaceSegment at(uint32_t i) { return ownReplaceSegment(state(), i); }
};

struct Pattern {
    RegExpState* state = nullptr;
    Pattern(const char* text, const char* options) {
        int32_t err = -1;
        EXPECT_EQ(zevsRegExpInitAlloc(text, options, &state, &err), zevStatusOk) << text;
    }
    ~Pattern() { zevsRegExpFree(state); }
};

struct Result {
    zevStatus status;
    int32_t srcLen;
    int32_t dstLen;
    std::string out;
};

// Runs one replacement with an output of `capacity` bytes and a find array of
// `findCapacity` entries.
Result replace(const std::string& src, const char* pattern, const char* options,
               const char* tmpl, int32_t capacity, int32_t findCapacity = 64) {
    Pattern p(pattern, options);
    Template t(tmpl);
    EXPECT_EQ(t.status, zevStatusOk);
    std::vector<uint8_t> dst(static_cast<size_t>(capacity) + 1, '#');
    std::vector<RegExpFindEntry> find(static_cast<size_t>(findCapacity > 0 ? findCapacity : 1));
    Result r{};
    r.srcLen = static_cast<int32_t>(src.size());
    r.dstLen = capacity;
    int32_t findCount = findCapacity;
    r.status = zevsRegExpReplace_8u(reinterpret_cast<const uint8_t*>(src.data()), &r.srcLen,
                                    dst.data(), &r.dstLen, find.data(), &findCount, p.state,
                                    t.state());
    EXPECT_EQ(dst[static_cast<size_t>(capacity)], '#') << "wrote past the output";
    if (r.status == zevStatusOk) r.out.assign(dst.begin(), dst.begin() + r.dstLen);
    return r;
}

Result complete(const std::string& src, const char* pattern, const char* options, const char* tmpl) {
    return replace(src, pattern, options, tmpl, 4096);
}

TEST(ReplaceTemplate, SizeIsTwelveBytesPerTemplateByte) {
    int32_t size = -1;
    EXPECT_EQ(zevsRegExpReplaceGetSize("abc", nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplaceGetSize(nullptr, &size), zevStatusOk);
    EXPECT_EQ(size, 12);
    EXPECT_EQ(zevsRegExpReplaceGetSize("", &size), zevStatusOk);
    EXPECT_EQ(size, 12);
    EXPECT_EQ(zevsRegExpReplaceGetSize("a$1b", &size), zevStatusOk);
    EXPECT_EQ(size, 60);
    EXPECT_EQ(zevsRegExpReplaceInit("x", nullptr), zevStatusNullPointer);
}

TEST(ReplaceTemplate, LiteralsPointIntoTheCallersText) {
    const char* text = "a$1b";
    Template t(text);
    ASSERT_EQ(t.status, zevStatusOk);
    ASSERT_EQ(t.count(), 3u);
    EXPECT_EQ(ownReplaceBase(t.state()), text);
    ReplaceSegment s = t.at(0);
    EXPECT_EQ(s.kind, SegmentLiteral);
    EXPECT_EQ(s.value, 1);
    EXPECT_EQ(s.offset, 0u);
    s = t.at(1);
    EXPECT_EQ(s.kind, SegmentGroup);
    EXPECT_EQ(s.value, 1);
    s = t.at(2);
    EXPECT_EQ(s.kind, SegmentLiteral);
    EXPECT_EQ(s.value, 1);
    EXPECT_EQ(s.offset, 3u);
}

TEST(ReplaceTemplate, BackslashSplitsRunsButDoesNotProtectDollar) {
    Template t("a\\$1b");  // a \ $ 1 b: same segments as "a$1b"
    ASSERT_EQ(t.status, zevStatusOk);
    ASSERT_EQ(t.count(), 3u);
    EXPECT_EQ(t.at(1).kind, SegmentGroup);
    EXPECT_EQ(t.at(2).offset, 4u);

    Template twelve("$12");
    ASSERT_EQ(twelve.count(), 1u);
    EXPECT_EQ(twelve.at(0).value, 12);
    Template split("$1\\2");
    ASSERT_EQ(split.count(), 2u);
    EXPECT_EQ(split.at(0).value, 1);
    EXPECT_EQ(split.at(1).kind, SegmentLiteral);
    EXPECT_EQ(split.at(1).offset, 3u);

    Template both("x\\\\y\\");  // x \ \ y \: both backslashes and the trailing one vanish
    ASSERT_EQ(both.status, zevStatusOk);
    ASSERT_EQ(both.count(), 2u);
    EXPECT_EQ(both.at(1).offset, 3u);

    Template whole("<$&>");
    ASSERT_EQ(whole.count(), 3u);
    EXPECT_EQ(whole.at(1).kind, SegmentGroup);
    EXPECT_EQ(whole.at(1).value, 0);
}

TEST(ReplaceTemplate, BadReferences) {
    for (const char* bad : {"$0", "$00", "a$", "$x", "$$", "$-1"}) {
        Template t(bad);
        EXPECT_EQ(t.status, zevStatusRegExpBadReference) << bad;
    }
    // The count is written only by a parse that succeeds.
    Template t("ab$1");
    ASSERT_EQ(t.count(), 2u);
    EXPECT_EQ(zevsRegExpReplaceInit("$0", t.state()), zevStatusRegExpBadReference);
    EXPECT_EQ(t.count(), 2u);
}

TEST(ReplaceTemplate, NullAndEmptyTemplates) {
    Template null(nullptr);
    EXPECT_EQ(null.status, zevStatusOk);
    EXPECT_EQ(null.count(), 0u);
    EXPECT_EQ(ownReplaceBase(null.state()), nullptr);
    const char* empty = "";
    Template e(empty);
    EXPECT_EQ(e.count(), 0u);
    EXPECT_EQ(ownReplaceBase(e.state()), empty);
}

TEST(ReplaceTemplate, HugeGroupNumbersSaturate) {
    Template t("$99999999999999999999");
    ASSERT_EQ(t.status, zevStatusOk);
    ASSERT_EQ(t.count(), 1u);
    EXPECT_EQ(t.at(0).value, INT32_MAX);
    Template edge("$2147483647$2147483648");
    ASSERT_EQ(edge.count(), 2u);
    EXPECT_EQ(edge.at(0).value, INT32_MAX);
    EXPECT_EQ(edge.at(1).value, INT32_MAX);
    // Such a reference adds nothing, in both walks.
    EXPECT_EQ(complete("abc", "b", "", "[$99999999999]").out, "a[]c");
    EXPECT_EQ(complete("abc", "b", "g", "[$99999999999]").out, "a[]c");
}

// Random templates over the bytes that mean something: the parse never writes
// past the block that the size rule gives, and never yields more segments than
// the template has bytes.
TEST(ReplaceTemplate, RandomTemplatesStayInsideTheirBlock) {
    std::mt19937 rng(20260);
    const char alphabet[] = "a$\\&109";
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        const int len = static_cast<int>(rng() % 12);
        for (int i = 0; i < len; ++i) text += alphabet[rng() % (sizeof(alphabet) - 1)];
        int32_t size = 0;
        ASSERT_EQ(zevsRegExpReplaceGetSize(text.c_str(), &size), zevStatusOk);
        std::vector<uint8_t> block(static_cast<size_t>(size) + 16, 0xA5);
        auto* state = reinterpret_cast<RegExpReplaceState*>(block.data());
        if (zevsRegExpReplaceInit(text.c_str(), state) == zevStatusOk) {
            EXPECT_LE(ownReplaceSegmentCount(state), text.size()) << text;
        }
        for (size_t i = static_cast<size_t>(size); i < block.size(); ++i) {
            ASSERT_EQ(block[i], 0xA5) << "overran the block for '" << text << "'";
        }
    }
}

TEST(Replace, ArgumentChecksInOrder) {
    Pattern p("a", "");
    Template t("b");
    const uint8_t src[] = "xa";
    uint8_t dst[8];
    RegExpFindEntry find[4];
    int32_t srcLen = 2, dstLen = 8, findCount = 4;
    const RegExpReplaceState* rs = t.state();
    EXPECT_EQ(zevsRegExpReplace_8u(nullptr, &srcLen, dst, &dstLen, find, &findCount, p.state, rs), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, nullptr, dst, &dstLen, find, &findCount, p.state, rs), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, find, &findCount, nullptr, rs), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, nullptr, &dstLen, find, &findCount, p.state, rs), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, find, &findCount, p.state, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, nullptr, find, &findCount, p.state, rs), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, find, nullptr, p.state, rs), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, nullptr, &findCount, p.state, rs), zevStatusNullPointer);
    // A null pointer wins over a bad length.
    srcLen = 0;
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, nullptr, &findCount, p.state, rs), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, find, &findCount, p.state, rs), zevStatusBadSize);
    srcLen = 2;
    dstLen = 0;
    EXPECT_EQ(zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, find, &findCount, p.state, rs), zevStatusBadSize);
    EXPECT_EQ(srcLen, 2);
    EXPECT_EQ(findCount, 4);
}

TEST(Replace, SingleReplacesTheFirstMatchOnly) {
    Result r = complete("a cat, a hat", "(\\w)at", "", "<$1|$&>");
    EXPECT_EQ(r.out, "a <c|cat>, a hat");
    EXPECT_EQ(r.srcLen, 12);  // the single walk keeps the source length
    EXPECT_EQ(complete("ab", "b", "", "").out, "a");
    // Group 1 took no part: nothing goes in, and the byte before it stays.
    EXPECT_EQ(complete("xb", "(a)|b", "", "[$1]").out, "x[]");
    // Group numbers past the pattern's groups add nothing; parsing accepted them.
    EXPECT_EQ(complete("xay", "a", "", "[$&$7]").out, "x[a]y");
}

TEST(Replace, SingleGroupsAreBoundedByTheFindCapacity) {
    Result r = replace("xaby", "(a)(b)", "", "[$2$1$&]", 64, 2);
    EXPECT_EQ(r.out, "x[aab]y");
}

TEST(Replace, GlobalReplacesEveryMatch) {
    Result r = complete("one two  three", "(\\w+)", "g", "<$1>");
    EXPECT_EQ(r.out, "<one> <two>  <three>");
    EXPECT_EQ(r.srcLen, 0);  // the tail behind the last match is empty
    r = complete("xay-ab", "a", "g", "A");
    EXPECT_EQ(r.out, "xAy-Ab");
    EXPECT_EQ(r.srcLen, 1);  // the global walk leaves the tail's length
    EXPECT_EQ(complete("banana", "an", "g", "").out, "ba");
    EXPECT_EQ(complete("a,b,,c", "(?:,)(\\w)?", "g", "[$1]").out, "a[b][][c]");
}

TEST(Replace, GlobalMatchesAreLimitedByTheFindCapacity) {
    // Capacity for two matches of one entry: the third stands in the tail.
    Result r = replace("a1a2a3", "a", "g", "X", 64, 2);
    EXPECT_EQ(r.out, "X1X2a3");
    // A capacity below captureCount records no match: a plain copy.
    r = replace("a1a2", "(a)(\\d)", "g", "X", 64, 2);
    EXPECT_EQ(r.out, "a1a2");
    EXPECT_EQ(r.srcLen, 4);
    EXPECT_EQ(r.dstLen, 4);
}

TEST(Replace, NoMatchCopiesWhatFits) {
    Result r = replace("abcdef", "z", "", "Q", 4);
    EXPECT_EQ(r.out, "abcd");
    EXPECT_EQ(r.srcLen, 4);
    EXPECT_EQ(r.dstLen, 4);
    r = replace("abcdef", "z", "g", "Q", 6);  // may fill the output to its last byte
    EXPECT_EQ(r.out, "abcdef");
    EXPECT_EQ(r.srcLen, 6);
    r = replace("abcdef", "b", "", "Q", 8, 0);  // a capacity below 1 counts as no match
    EXPECT_EQ(r.out, "abcdef");
}

TEST(Replace, StopsKeepOneByteFree) {
    Result r = replace("abcde", "a", "", "X", 5);
    EXPECT_EQ(r.srcLen, 1);
    EXPECT_EQ(r.dstLen, 1);
    EXPECT_EQ(r.out, "X");
    r = replace("abcde", "a", "", "X", 6);
    EXPECT_EQ(r.srcLen, 5);
    EXPECT_EQ(r.dstLen, 5);
    EXPECT_EQ(r.out, "Xbcde");
    // A gap that would fill the output stops before the first match.
    r = replace("xa", "a", "", "Y", 1);
    EXPECT_EQ(r.srcLen, 0);
    EXPECT_EQ(r.dstLen, 0);
    // A template that does not fit stops at the match's start and leaves what
    // it put down uncounted.
    r = replace("xa", "a", "", "LONG", 4);
    EXPECT_EQ(r.srcLen, 1);
    EXPECT_EQ(r.dstLen, 1);
    r = replace("xaxa", "a", "g", "LONG", 8);
    EXPECT_EQ(r.srcLen, 3);
    EXPECT_EQ(r.dstLen, 6);
    EXPECT_EQ(r.out, "xLONGx");
}

// For every output length, a partial result is a prefix of the complete one;
// an output of exactly the complete length stops, one byte more completes.
TEST(Replace, PartialResultsArePrefixesOfTheCompleteOne) {
    struct Case { const char* src; const char* pattern; const char* options; const char* tmpl; };
    const Case cases[] = {
        {"the cat sat on the mat", "(\\w)at", "g", "<$1$&>"},
        {"the cat sat on the mat", "(\\w)at", "", "<$1$&>"},
        {"aaaa", "a", "g", ""},
        {"xyz", "q", "g", "Q"},
        {"ab ab ab", "(a)(b)", "g", "$2$1"},
    };
    for (const Case& c : cases) {
        const Result full = complete(c.src, c.pattern, c.options, c.tmpl);
        const int32_t n = static_cast<int32_t>(full.out.size());
        for (int32_t cap = 1; cap <= n + 1; ++cap) {
            Result r = replace(c.src, c.pattern, c.options, c.tmpl, cap);
            ASSERT_EQ(r.status, zevStatusOk);
            ASSERT_LE(r.dstLen, cap);
            EXPECT_EQ(r.out, full.out.substr(0, static_cast<size_t>(r.dstLen)))
                << c.pattern << " cap " << cap;
            if (cap == n + 1) {
                EXPECT_EQ(r.out, full.out);
                EXPECT_EQ(r.srcLen, full.srcLen);
            }
            if (cap == n && full.out != c.src) {
                EXPECT_LT(r.dstLen, n) << "an exact fit must stop: " << c.pattern;
            }
        }
    }
}

TEST(Replace, SearchFailuresAreReturnedWithNothingWritten) {
    // A single search reports the exhausted budget (a global one that ends
    // without a match does not look at it).
    Pattern p("a+b", "");
    ASSERT_EQ(zevsRegExpSetMatchLimit(0, p.state), zevStatusOk);
    Template t("X");
    const std::string src = "aaab aab";
    uint8_t dst[32];
    std::memset(dst, '#', sizeof dst);
    RegExpFindEntry find[16];
    int32_t srcLen = 8, dstLen = 32, findCount = 16;
    EXPECT_EQ(zevsRegExpReplace_8u(reinterpret_cast<const uint8_t*>(src.data()), &srcLen, dst,
                                   &dstLen, find, &findCount, p.state, t.state()),
              zevStatusRegExpMatchLimit);
    EXPECT_EQ(srcLen, 8);
    EXPECT_EQ(dstLen, 32);
    EXPECT_EQ(dst[0], '#');

    std::vector<uint8_t> notCompiled(40100, 0);
    EXPECT_EQ(zevsRegExpReplace_8u(reinterpret_cast<const uint8_t*>(src.data()), &srcLen, dst,
                                   &dstLen, find, &findCount,
                                   reinterpret_cast<RegExpState*>(notCompiled.data()), t.state()),
              zevStatusRegExpBadState);
    EXPECT_EQ(dst[0], '#');
}

}  // namespace

// Under case folding a \x{...} character steps over the UTF-8 length of its
// own code, so `(?i)\x{212A}` (three bytes) matches the one-byte "k" with a
// reported length of 3. The replacement cuts such a match at the source's
// end: the source sits at the very end of its heap block, so a read behind
// it would be caught by the sanitizers.
TEST(Replace, MatchReportedBehindTheSourceIsCutAtItsEnd) {
    for (const char* options : {"", "g"}) {
        std::unique_ptr<uint8_t[]> src(new uint8_t[2]{'x', 'k'});
        Pattern p("(?i)\\x{212A}", options);
        Template t("[$&]");
        std::vector<uint8_t> dst(16, '#');
        std::vector<RegExpFindEntry> find(4);
        int32_t srcLen = 2, dstLen = 16, findCount = 4;
        ASSERT_EQ(zevsRegExpReplace_8u(src.get(), &srcLen, dst.data(), &dstLen, find.data(), &findCount,
                                       p.state, t.state()),
                  zevStatusOk);
        EXPECT_EQ(find[0].length, 3) << "the match itself keeps the length the search reports";
        EXPECT_EQ(std::string(dst.begin(), dst.begin() + dstLen), "x[k]") << options;
        EXPECT_EQ(srcLen, *options == 'g' ? 0 : 2) << options;
    }
}

// After an empty match the one-byte retry can match past the next place, so
// the matches of a global search may overlap: here (0,2) is followed by
// (1,0). The walk never gives back what a match consumed and never writes
// before the output (it once moved its write position back by the negative
// gap).
TEST(Replace, OverlappingGlobalMatchesNeverMoveTheOutputBack) {
    const std::string src("\xc7\x8d\x02\x10" "c\0\0ab\n", 10);
    Result r = replace(src, "\\x9a*.??", "g", "", 213, 12);
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.out, std::string("\0\0ab\n", 5));
    EXPECT_EQ(r.srcLen, 4);
}
