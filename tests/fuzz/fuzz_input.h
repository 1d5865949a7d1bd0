// tests/fuzz/fuzz_input.h - what every fuzz target shares: a reader that
// takes small numbers and zero-free strings off the front of the input, heap
// buffers of exact size, and the check that stops a run on a broken promise.
//
// The input format is the same for all targets, so one seed can drive any of
// them: a header of option bytes, then strings separated by 0xFF bytes (a
// pattern, a subject, a template ...), read by next().
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "regexp/regexp_record.h"
#include "zevch.h"

// A broken invariant: print where and why, then abort so that libFuzzer (or
// the replay program) records the input.
#define FUZZ_CHECK(cond)                                                              \
    do {                                                                              \
        if (!(cond)) {                                                                \
            std::fprintf(stderr, "%s:%d: invariant failed: %s\n", __FILE__, __LINE__, \
                         #cond);                                                      \
            std::abort();                                                             \
        }                                                                             \
    } while (0)

class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    // One byte, 0 once the input is used up.
    uint8_t byte() { return pos_ < size_ ? data_[pos_++] : 0; }

    // A number in [0, n) from one or two bytes; 0 for n below 2.
    uint32_t below(uint32_t n) {
        if (n < 2) return 0;
        uint32_t v = byte();
        if (n > 256) v = (v << 8) | byte();
        return v % n;
    }

    bool flag() { return (byte() & 1) != 0; }

    // The bytes up to the next separator 0xFF (or the end), as a string with
    // no zero bytes when `zeroFree` (patterns and templates are terminated
    // text); zero bytes are kept for subjects.
    std::vector<uint8_t> next(bool zeroFree) {
        std::vector<uint8_t> out;
        while (pos_ < size_ && data_[pos_] != 0xFF) {
            const uint8_t b = data_[pos_++];
            if (!zeroFree || b != 0) out.push_back(b);
        }
        if (pos_ < size_) ++pos_;   // the separator
        return out;
    }

    // The rest of the input, unsplit.
    std::vector<uint8_t> rest() {
        std::vector<uint8_t> out(data_ + pos_, data_ + size_);
        pos_ = size_;
        return out;
    }

    bool empty() const { return pos_ >= size_; }

private:
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
};

// A heap block of exactly `n` elements (at least one byte is allocated so
// that an empty buffer still has an address), so that AddressSanitizer sees
// any read or write beyond the caller's length.
template <typename T>
struct ExactBuffer {
    T* data;
    size_t size;
    explicit ExactBuffer(size_t n) : data(static_cast<T*>(std::malloc(n ? n * sizeof(T) : 1))), size(n) {}
    ExactBuffer(const T* src, size_t n) : ExactBuffer(n) {
        if (n) std::memcpy(data, src, n * sizeof(T));
    }
    ~ExactBuffer() { std::free(data); }
    ExactBuffer(const ExactBuffer&) = delete;
    ExactBuffer& operator=(const ExactBuffer&) = delete;
};

// Zero-terminated copy of a string read by next(true), in an exact block.
struct CText {
    ExactBuffer<char> buf;
    explicit CText(const std::vector<uint8_t>& s) : buf(s.size() + 1) {
        if (!s.empty()) std::memcpy(buf.data, s.data(), s.size());
        buf.data[s.size()] = 0;
    }
    const char* c_str() const { return buf.data; }
};

// Option letters from the bits of one byte: g, i, m, s, x, and rarely a
// letter that compilation must refuse.
inline std::vector<uint8_t> fuzzOptionLetters(uint8_t bits) {
    std::vector<uint8_t> out;
    const char letters[] = {'g', 'i', 'm', 's', 'x'};
    for (int i = 0; i < 5; ++i)
        if (bits & (1u << i)) out.push_back(static_cast<uint8_t>(letters[i]));
    if ((bits & 0xE0) == 0xE0) out.push_back('q');
    return out;
}

// A match limit: mostly small, so that searches end on the limit often,
// sometimes the default, rarely large.
inline int32_t fuzzMatchLimit(FuzzInput& in) {
    const uint8_t kind = in.byte();
    if (kind < 160) return static_cast<int32_t>(in.below(64));
    if (kind < 224) return static_cast<int32_t>(in.below(4000));
    if (kind < 250) return 10000;
    return 100000;
}

// The pattern compiled by zevsRegExpInitAlloc with the given option letters
// and match limit, or null when it does not compile. Free with zevsRegExpFree.
inline RegExpState* fuzzCompile(const std::vector<uint8_t>& pattern, const std::vector<uint8_t>& letters,
                                int32_t limit) {
    const CText text(pattern);
    const CText options(letters);
    RegExpState* state = nullptr;
    int32_t err = 0;
    if (zevsRegExpInitAlloc(text.c_str(), options.c_str(), &state, &err) != zevStatusOk) return nullptr;
    zevsRegExpSetMatchLimit(limit, state);
    return state;
}

// Compiled pattern in a caller's block of exactly zevsRegExpGetSize bytes,
// filled with garbage first, since the compiler must not read what it has not
// written.
struct OwnedRecord {
    ExactBuffer<uint8_t> block;
    explicit OwnedRecord(int32_t size, uint8_t garbage) : block(static_cast<size_t>(size)) {
        std::memset(block.data, garbage, block.size);
    }
    RegExpState* state() { return reinterpret_cast<RegExpState*>(block.data); }
};

// A NodeWideChar steps over as many bytes as its own code takes in UTF-8, not
// as the subject's character takes, so under case folding a match can end up
// to five bytes behind the subject (`(?i)\x{212A}` on "k" is three bytes
// long). The search reports that length as it is; the replacement and the
// tool cut such a match at the subject's end and never read behind it.
constexpr bool MatchMayEndBehindSubject = true;

inline bool fuzzHasWideChar(const RegExpState* state) {
    for (int32_t i = 0; i < state->nodeCount; ++i)
        if (state->nodes[i].kind == NodeWideChar) return true;
    return false;
}
