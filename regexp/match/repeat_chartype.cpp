// regexp/match/repeat_chartype.cpp - repeats of NodeCharType: .*, \d+, \w*?
// and the like. The item is one UTF-8 character: the predicate judges its
// first byte and ownUtf8Length gives its size (1 for a malformed byte).
//
// The predicate is selected once per call, by instantiating the loop for it,
// so the per-character test is inlined; it is the same predicate that
// ownGetCharPredicate hands out for the letter.
//
// Tested by tests/match/repeat_chartype_test.cpp.

#include "regexp/match/char_predicates.h"
#include "regexp/match/repeat_loops.h"

using namespace zevch_match;

namespace {

inline bool hasByte(uint64_t word, uint8_t value) {
    uint64_t x = word ^ (0x0101010101010101ull * value);
    return ((x - 0x0101010101010101ull) & ~x & 0x8080808080808080ull) != 0;
}

template <PredicateKind K>
struct CharTypeItems : Utf8Steps {
    int32_t take(const uint8_t* p, int32_t offset, int32_t remaining) {
        if (offset >= remaining) {
            return -1;
        }
        const uint8_t* q = p + offset;
        uint32_t b = *q;
        if (testByte<K>(b) < 0) {
            return -1;
        }
        if (b < 0x80) {
            return 1;
        }
        int32_t size = ownUtf8Length(q, ownBytesToEnd(ctx, q));
        unit = unit && size == 1;
        return size;
    }

    void scan(const uint8_t* p, int32_t remaining, int32_t& offset, int32_t& count, int32_t limit) {
        while (count < limit) {
            if constexpr (K == PredicateNotNewline || K == PredicateAny) {
                // Eight ASCII bytes that the predicate accepts are eight items.
                while (limit - count >= 8 && remaining - offset >= 8) {
                    uint64_t word;
                    std::memcpy(&word, p + offset, sizeof word);
                    if ((word & 0x8080808080808080ull) != 0 ||
                        (K == PredicateNotNewline && hasByte(word, 0x0A))) {
                        break;
                    }
                    offset += 8;
                    count += 8;
                }
            }
            int32_t size = take(p, offset, remaining);
            if (size < 0) {
                return;
            }
            offset += size;
            ++count;
        }
    }
};

template <PredicateKind K>
int32_t repeatWith(const uint8_t* p, int32_t remaining, MatchContext* ctx, bool lazy) {
    RepeatBounds b = repeatBoundsOf(ctx);
    CharTypeItems<K> items{{ctx}};
    if (lazy) {
        return lazyRepeat(p, remaining, ctx, b.min, b.max, b.next, lookByte(ctx, b.next), items);
    }
    return greedyRepeat(p, remaining, ctx, b.min, std::min(b.max, remaining), b.next, items);
}

int32_t repeatCharType(const uint8_t* p, int32_t remaining, MatchContext* ctx, bool lazy) {
    // Bytes against items: an early exit only, the minimum can still fail
    // further on where characters take several bytes.
    if (remaining < ctx->nodes[ctx->currentNode + 1].word1) {
        return 1;
    }
    uint32_t letter = static_cast<uint32_t>(ctx->nodes[ctx->currentNode].word1) & 0xFF;
    switch (selectPredicate(letter, ctx->flags & OptionDotAll)) {
        case PredicateDigit:      return repeatWith<PredicateDigit>(p, remaining, ctx, lazy);
        case PredicateNotDigit:   return repeatWith<PredicateNotDigit>(p, remaining, ctx, lazy);
        case PredicateWord:       return repeatWith<PredicateWord>(p, remaining, ctx, lazy);
        case PredicateNotWord:    return repeatWith<PredicateNotWord>(p, remaining, ctx, lazy);
        case PredicateSpace:      return repeatWith<PredicateSpace>(p, remaining, ctx, lazy);
        case PredicateNotSpace:   return repeatWith<PredicateNotSpace>(p, remaining, ctx, lazy);
        case PredicateNotNewline: return repeatWith<PredicateNotNewline>(p, remaining, ctx, lazy);
        case PredicateAny:        return repeatWith<PredicateAny>(p, remaining, ctx, lazy);
        case PredicateNone:       break;
    }
    return repeatWith<PredicateNone>(p, remaining, ctx, lazy);
}

}  // namespace

int32_t ownRepeatCharType(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    return repeatCharType(p, remaining, ctx, false);
}

int32_t ownRepeatCharTypeLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    return repeatCharType(p, remaining, ctx, true);
}
