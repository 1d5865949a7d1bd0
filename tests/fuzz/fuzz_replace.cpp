// tests/fuzz/fuzz_replace.cpp - template parsing and replacement.
//
// Input: option bits, match limit, find capacity, output capacity, then the
// pattern, the template and the subject separated by 0xFF. The template
// record sits in an exact block of zevsRegExpReplaceGetSize bytes filled with
// garbage; the output has guard bytes on both sides that must stay untouched.
//
// Invariants: the reported source and output lengths lie within what was
// given; nothing is written outside the output; and since the output is
// written front to back, whole pieces or nothing, the output of a small
// capacity and that of a large one agree on their common length.
#include "fuzz_input.h"
#include "regexp/match/match_internal.h"

namespace {

constexpr size_t Guard = 16;
constexpr uint8_t GuardByte = 0xCD;

struct Replaced {
    zevStatus status;
    int32_t srcLen;
    int32_t dstLen;
    std::vector<uint8_t> out;
};

Replaced replace(const ExactBuffer<uint8_t>& subject, int32_t capacity, int32_t findCapacity,
                 RegExpState* pattern, const RegExpReplaceState* tmpl) {
    ExactBuffer<uint8_t> dst(Guard + static_cast<size_t>(capacity > 0 ? capacity : 0) + Guard);
    std::memset(dst.data, GuardByte, dst.size);
    std::vector<RegExpFindEntry> find(static_cast<size_t>(findCapacity > 0 ? findCapacity : 1));
    int32_t findCount = findCapacity;
    Replaced r;
    r.srcLen = static_cast<int32_t>(subject.size);
    r.dstLen = capacity;
    r.status = zevsRegExpReplace_8u(subject.data, &r.srcLen, dst.data + Guard, &r.dstLen, find.data(),
                                    &findCount, pattern, tmpl);
    for (size_t i = 0; i < Guard; ++i) {
        FUZZ_CHECK(dst.data[i] == GuardByte);
        FUZZ_CHECK(dst.data[dst.size - 1 - i] == GuardByte);
    }
    if (subject.size < 1 || capacity < 1) {
        FUZZ_CHECK(r.status == zevStatusBadSize);
        return r;
    }
    FUZZ_CHECK(r.status == zevStatusOk || r.status == zevStatusRegExpMatchLimit);
    if (r.status != zevStatusOk) return r;
    FUZZ_CHECK(r.srcLen >= 0 && r.srcLen <= static_cast<int32_t>(subject.size));
    FUZZ_CHECK(r.dstLen >= 0 && r.dstLen <= capacity);
    if (findCapacity < 1) FUZZ_CHECK(findCount == findCapacity);   // refused by the search: no match
    else FUZZ_CHECK(findCount >= 0 && findCount <= findCapacity);
    r.out.assign(dst.data + Guard, dst.data + Guard + r.dstLen);
    return r;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    const std::vector<uint8_t> letters = fuzzOptionLetters(in.byte() & 0x1F);
    const int32_t limit = fuzzMatchLimit(in);
    const int32_t findCapacity = static_cast<int32_t>(in.below(40)) - 1;
    const int32_t capacity = static_cast<int32_t>(in.below(300)) - 1;
    const std::vector<uint8_t> patternBytes = in.next(true);
    const std::vector<uint8_t> templateBytes = in.next(true);
    const std::vector<uint8_t> subjectBytes = in.next(false);

    // Template record: exact size, garbage first.
    const CText tmplText(templateBytes);
    int32_t tmplSize = -1;
    FUZZ_CHECK(zevsRegExpReplaceGetSize(tmplText.c_str(), &tmplSize) == zevStatusOk);
    FUZZ_CHECK(tmplSize == 12 * static_cast<int32_t>(templateBytes.size()) + 12);
    ExactBuffer<uint8_t> tmplBlock(static_cast<size_t>(tmplSize));
    std::memset(tmplBlock.data, 0xEE, tmplBlock.size);
    RegExpReplaceState* tmpl = reinterpret_cast<RegExpReplaceState*>(tmplBlock.data);
    const zevStatus ts = zevsRegExpReplaceInit(tmplText.c_str(), tmpl);
    FUZZ_CHECK(ts == zevStatusOk || ts == zevStatusRegExpBadReference);
    if (ts != zevStatusOk) return 0;

    RegExpState* state = fuzzCompile(patternBytes, letters, limit);
    if (state == nullptr) return 0;

    const ExactBuffer<uint8_t> subject(subjectBytes.data(), subjectBytes.size());
    const Replaced small = replace(subject, capacity, findCapacity, state, tmpl);
    if (small.status == zevStatusOk) {
        const int32_t large = 1 << 16;
        const Replaced big = replace(subject, large, findCapacity, state, tmpl);
        FUZZ_CHECK(big.status == zevStatusOk);
        const size_t common = std::min(small.out.size(), big.out.size());
        FUZZ_CHECK(common == 0 || std::memcmp(small.out.data(), big.out.data(), common) == 0);
    }
    zevsRegExpFree(state);
    return 0;
}
