// tests/fuzz/fuzz_find.cpp - compile a pattern and search a subject.
//
// Input: option bits, a control byte, match limit, capacity, then the pattern
// and the subject separated by 0xFF. The pattern is compiled twice, into a
// caller's block of exactly zevsRegExpGetSize bytes filled with garbage and
// through zevsRegExpInitAlloc; both must agree on status and fault offset and,
// after the same settings, on every search result. The subject lives in a heap
// block of exactly its length with no terminator.
//
// Invariants: compile statuses are the pattern statuses; a fault offset lies
// in the pattern (or at its terminator); success leaves errOffset alone; every
// entry returned lies inside the subject or is (null, -1); the count stays
// within the capacity and, for a single search, within captureCount; a search
// repeated on the same record gives the same answer.
#include "fuzz_input.h"
#include "regexp/regexp_record.h"

namespace {

bool isCompileStatus(zevStatus s) {
    return s == zevStatusOk || s == zevStatusRegExpBadProperty || s == zevStatusRegExpBadClass ||
           s == zevStatusRegExpBadReference || s == zevStatusRegExpBadSyntax ||
           s == zevStatusRegExpBadRepeat || s == zevStatusRegExpBadOptions;
}

struct Outcome {
    zevStatus status;
    int32_t count;
    std::vector<RegExpFindEntry> entries;
    bool operator==(const Outcome& o) const {
        if (status != o.status || count != o.count || entries.size() != o.entries.size()) return false;
        for (size_t i = 0; i < entries.size(); ++i)
            if (entries[i].start != o.entries[i].start || entries[i].length != o.entries[i].length)
                return false;
        return true;
    }
};

const uint8_t* const Sentinel = reinterpret_cast<const uint8_t*>(uintptr_t{0x5a5a5a5});

Outcome search(const ExactBuffer<uint8_t>& subject, RegExpState* state, int32_t capacity) {
    ExactBuffer<RegExpFindEntry> find(capacity > 0 ? static_cast<size_t>(capacity) : 1);
    for (size_t i = 0; i < find.size; ++i) find.data[i] = RegExpFindEntry{Sentinel, -77};
    int32_t count = capacity;
    Outcome out;
    out.status = zevsRegExpFind_8u(subject.data, static_cast<int32_t>(subject.size), state, find.data, &count);
    out.count = count;
    if (capacity < 1) {
        FUZZ_CHECK(out.status == zevStatusBadSize);
        FUZZ_CHECK(count == capacity);
        return out;
    }
    FUZZ_CHECK(out.status == zevStatusOk || out.status == zevStatusRegExpMatchLimit);
    FUZZ_CHECK(count >= 0 && count <= capacity);
    const bool global = (state->options & OptionGlobal) != 0;
    if (!global) FUZZ_CHECK(count <= state->captureCount);
    if (global && out.status == zevStatusRegExpMatchLimit) FUZZ_CHECK(count == capacity);
    // The entries that count: for a failed global search, those written so
    // far are still pointers into the subject or untouched.
    const int32_t shown = (out.status == zevStatusOk) ? count : (global ? capacity : 0);
    const uint8_t* begin = subject.data;
    const uint8_t* end = subject.data + subject.size;
    for (int32_t i = 0; i < shown; ++i) {
        const RegExpFindEntry& e = find.data[i];
        if (e.start == Sentinel && e.length == -77) {
            FUZZ_CHECK(out.status != zevStatusOk);   // an Ok count covers written entries only
            continue;
        }
        if (e.start == nullptr) {
            FUZZ_CHECK(e.length == -1);
            continue;
        }
        FUZZ_CHECK(e.length >= 0);
        FUZZ_CHECK(e.start >= begin && e.start <= end);
        if (!(MatchMayEndBehindSubject && fuzzHasWideChar(state))) FUZZ_CHECK(e.length <= end - e.start);
        else FUZZ_CHECK(e.length <= end - e.start + 5);   // at most a six-byte code minus one
    }
    if (out.status == zevStatusOk) out.entries.assign(find.data, find.data + count);
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    const std::vector<uint8_t> letters = fuzzOptionLetters(in.byte());
    const uint8_t control = in.byte();
    const int32_t limit = fuzzMatchLimit(in);
    int32_t capacity = static_cast<int32_t>(in.below(48)) - 2;   // now and then below 1
    const std::vector<uint8_t> patternBytes = in.next(true);
    const std::vector<uint8_t> subjectBytes = in.next(false);

    const CText pattern(patternBytes);
    const CText options(letters);
    const char* opts = (control & 1) ? nullptr : options.c_str();
    const int32_t format = (control >> 1) & 1;

    int32_t recordSize = -1;
    FUZZ_CHECK(zevsRegExpGetSize(pattern.c_str(), &recordSize) == zevStatusOk);
    FUZZ_CHECK(recordSize == RegExpBaseSize + RegExpBytesPerPatternByte * static_cast<int32_t>(patternBytes.size()));

    OwnedRecord owned(recordSize, static_cast<uint8_t>(control & 0xF0 ? control : 0xA5));
    int32_t errOwned = -12345;
    const zevStatus s1 = zevsRegExpInit(pattern.c_str(), opts, owned.state(), &errOwned);
    FUZZ_CHECK(isCompileStatus(s1));
    if (s1 == zevStatusOk) {
        FUZZ_CHECK(errOwned == -12345);
        FUZZ_CHECK(owned.state()->magic == RegExpMagic);
        FUZZ_CHECK(owned.state()->captureCount >= 1 && owned.state()->captureCount <= MaxCaptureCount);
        FUZZ_CHECK(owned.state()->nodeCount >= 0 &&
                   owned.state()->nodeCount <= static_cast<int32_t>(patternBytes.size()) + 1);
    } else {
        FUZZ_CHECK(errOwned >= 0 && errOwned <= static_cast<int32_t>(patternBytes.size()));
    }

    RegExpState* allocated = reinterpret_cast<RegExpState*>(uintptr_t{1});
    int32_t errAlloc = -12345;
    const zevStatus s2 = zevsRegExpInitAlloc(pattern.c_str(), opts, &allocated, &errAlloc);
    FUZZ_CHECK(s2 == s1);
    FUZZ_CHECK(errAlloc == errOwned);
    if (s2 != zevStatusOk) {
        FUZZ_CHECK(allocated == nullptr);
        return 0;
    }
    FUZZ_CHECK(allocated != nullptr);

    const ExactBuffer<uint8_t> subject(subjectBytes.data(), subjectBytes.size());
    for (RegExpState* st : {owned.state(), allocated}) {
        FUZZ_CHECK(zevsRegExpSetMatchLimit(limit, st) == zevStatusOk);
        FUZZ_CHECK(zevsRegExpSetFormat(format, st) == zevStatusOk);
    }
    const Outcome a = search(subject, owned.state(), capacity);
    const Outcome b = search(subject, allocated, capacity);
    FUZZ_CHECK(a == b);
    // A second search on the same record: nothing survives from the first.
    const Outcome again = search(subject, owned.state(), capacity);
    FUZZ_CHECK(again == a);

    // The global walk on a record of the same pattern with the g bit flipped
    // must keep the same invariants (covers both modes for every pattern).
    owned.state()->options ^= OptionGlobal;
    search(subject, owned.state(), capacity > 0 ? capacity : 1);

    zevsRegExpFree(allocated);
    return 0;
}
