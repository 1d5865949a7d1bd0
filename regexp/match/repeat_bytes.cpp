// regexp/match/repeat_bytes.cpp - repeats whose item has a fixed size in
// bytes: a literal byte (NodeChar), any byte (NodeAnyByte, \C) and the text
// of a capture (NodeBackRef). They never decode UTF-8, so they count and step
// in bytes and can stop inside a multi-byte character.
//
// Entered with currentNode on the repeated node; the repeat node stands
// behind it and the continuation behind that.
//
// Tested by tests/match/repeat_bytes_test.cpp.

#include "regexp/match/repeat_loops.h"

using namespace zevch_match;

namespace {

// A literal byte, or under ASCII case folding either case of a letter.
struct ByteItems {
    uint8_t byte;
    uint8_t other;

    int32_t take(const uint8_t* p, int32_t offset, int32_t remaining) const {
        if (offset >= remaining) {
            return -1;
        }
        uint8_t b = p[offset];
        return b == byte || b == other ? 1 : -1;
    }
    void scan(const uint8_t* p, int32_t remaining, int32_t& offset, int32_t& count, int32_t limit) const {
        int32_t end = offset + std::min(limit - count, remaining - offset);
        int32_t o = offset;
        if (byte == other) {
            // Eight bytes at a time while all of them are the literal.
            const uint64_t pattern = 0x0101010101010101ull * byte;
            while (end - o >= 8) {
                uint64_t word;
                std::memcpy(&word, p + o, sizeof word);
                if (word != pattern) {
                    break;
                }
                o += 8;
            }
            while (o < end && p[o] == byte) {
                ++o;
            }
        } else {
            while (o < end && (p[o] == byte || p[o] == other)) {
                ++o;
            }
        }
        count += o - offset;
        offset = o;
    }
    bool unitSteps() const { return true; }
    int32_t lastSize(const uint8_t*, int32_t) const { return 1; }
    static constexpr bool MayBeEmpty = false;
    bool emptyItems() const { return false; }
};

struct AnyByteItems {
    int32_t take(const uint8_t*, int32_t offset, int32_t remaining) const {
        return offset < remaining ? 1 : -1;
    }
    void scan(const uint8_t*, int32_t remaining, int32_t& offset, int32_t& count, int32_t limit) const {
        int32_t n = std::max(0, std::min(limit - count, remaining - offset));
        offset += n;
        count += n;
    }
    bool unitSteps() const { return true; }
    int32_t lastSize(const uint8_t*, int32_t) const { return 1; }
    static constexpr bool MayBeEmpty = false;
    bool emptyItems() const { return false; }
};

// The captured text once more. length -1: the group took no part, and no
// item can be taken; length 0: an item of no bytes, wherever a byte is left.
struct BackRefItems {
    const uint8_t* text;
    int32_t length;
    bool ignoreCase;

    int32_t take(const uint8_t* p, int32_t offset, int32_t remaining) const {
        if (length < 0 || offset >= remaining || remaining - offset < length) {
            return -1;
        }
        const uint8_t* q = p + offset;
        if (ignoreCase) {
            for (int32_t k = 0; k < length; ++k) {
                if (!ownEqualIgnoreAsciiCase(q[k], text[k])) {
                    return -1;
                }
            }
        } else if (length > 0 && std::memcmp(q, text, static_cast<size_t>(length)) != 0) {
            return -1;
        }
        return length;
    }
    void scan(const uint8_t* p, int32_t remaining, int32_t& offset, int32_t& count, int32_t limit) {
        scanByTaking(*this, p, remaining, offset, count, limit);
    }
    bool unitSteps() const { return length == 1; }
    int32_t lastSize(const uint8_t*, int32_t) const { return length; }
    static constexpr bool MayBeEmpty = true;
    bool emptyItems() const { return length == 0; }
};

inline ByteItems byteItemsOf(const MatchContext* ctx) {
    uint8_t byte = static_cast<uint8_t>(ctx->nodes[ctx->currentNode].word1);
    bool fold = (ctx->flags & OptionIgnoreCase) != 0;
    return {byte, fold ? otherCaseByte(byte) : byte};
}

inline BackRefItems backRefItemsOf(const MatchContext* ctx) {
    const CaptureRecord& group = ctx->captures[ctx->nodes[ctx->currentNode].word1];
    return {ctx->subject + group.start, group.length, (ctx->flags & OptionIgnoreCase) != 0};
}

// The early exit before the minimum: fewer bytes than the minimum needs.
inline bool tooShort(int32_t remaining, int64_t itemBytes, int32_t min) {
    return static_cast<int64_t>(remaining) < itemBytes * min;
}

}  // namespace

int32_t ownRepeatChar(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    if (tooShort(remaining, 1, b.min)) {
        return 1;
    }
    ByteItems items = byteItemsOf(ctx);
    return greedyRepeat(p, remaining, ctx, b.min, std::min(b.max, remaining), b.next, items);
}

int32_t ownRepeatCharLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    if (tooShort(remaining, 1, b.min)) {
        return 1;
    }
    ByteItems items = byteItemsOf(ctx);
    return lazyRepeat(p, remaining, ctx, b.min, b.max, b.next, lookByte(ctx, b.next), items);
}

int32_t ownRepeatAnyByte(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    if (tooShort(remaining, 1, b.min)) {
        return 1;
    }
    AnyByteItems items;
    return greedyRepeat(p, remaining, ctx, b.min, std::min(b.max, remaining), b.next, items);
}

int32_t ownRepeatAnyByteLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    if (tooShort(remaining, 1, b.min)) {
        return 1;
    }
    AnyByteItems items;
    return lazyRepeat(p, remaining, ctx, b.min, b.max, b.next, lookByte(ctx, b.next), items);
}

// The capture's length and start are copied on entry and used for the whole
// call, also after a continuation has rewritten the capture.
int32_t ownRepeatBackRef(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    BackRefItems items = backRefItemsOf(ctx);
    if (tooShort(remaining, items.length, b.min)) {
        return 1;
    }
    return greedyRepeat(p, remaining, ctx, b.min, std::min(b.max, remaining), b.next, items);
}

int32_t ownRepeatBackRefLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    RepeatBounds b = repeatBoundsOf(ctx);
    BackRefItems items = backRefItemsOf(ctx);
    if (tooShort(remaining, items.length, b.min)) {
        return 1;
    }
    return lazyRepeat(p, remaining, ctx, b.min, b.max, b.next, lookByte(ctx, b.next), items);
}
