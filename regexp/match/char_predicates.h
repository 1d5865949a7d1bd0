// regexp/match/char_predicates.h - the byte predicates behind NodeCharType.
//
// Each predicate maps one byte (0..255) to a signed value whose sign alone is
// the answer: negative means no. They are built without branches from
//   range lo..hi:  (c - lo) | (hi - c)   negative exactly outside the range
//   equal to k:    -(c ^ k)              zero when equal, negative otherwise
// combined by AND (negative only if every part is) and inverted by NOT. The
// class check combines results the same way, so the answer must live in the
// sign bit. A multi-byte UTF-8 character starts with a byte of 0x80 or above,
// so \d, \s, \w never accept one and \D, \S, \W, '.' always do.
//
// The function-pointer forms of predicates.cpp and the repeat loops of
// repeat_chartype.cpp are built from these same inline functions.
#pragma once

#include <cstdint>

namespace zevch_match {

inline constexpr int32_t byteInRange(uint32_t c, int32_t low, int32_t high) {
    int32_t v = static_cast<int32_t>(c);
    return (v - low) | (high - v);
}

inline constexpr int32_t byteEquals(uint32_t c, uint32_t k) {
    return -static_cast<int32_t>(c ^ k);
}

inline constexpr int32_t isDigitByte(uint32_t c) { return byteInRange(c, 0x30, 0x39); }
inline constexpr int32_t isNotDigitByte(uint32_t c) { return ~isDigitByte(c); }
inline constexpr int32_t isWordByte(uint32_t c) {
    return byteInRange(c, 0x41, 0x5A) & byteInRange(c, 0x61, 0x7A) & byteInRange(c, 0x30, 0x39) &
           byteEquals(c, 0x5F);
}
inline constexpr int32_t isNotWordByte(uint32_t c) { return ~isWordByte(c); }
// Five bytes: tab, line feed, form feed, carriage return, blank. 0x0B is not
// one of them.
inline constexpr int32_t isSpaceByte(uint32_t c) {
    return byteEquals(c, 0x09) & byteEquals(c, 0x0A) & byteEquals(c, 0x0C) & byteEquals(c, 0x0D) &
           byteEquals(c, 0x20);
}
inline constexpr int32_t isNotSpaceByte(uint32_t c) { return ~isSpaceByte(c); }
inline constexpr int32_t isNotNewlineByte(uint32_t c) { return ~byteEquals(c, 0x0A); }
inline constexpr int32_t anyByte(uint32_t) { return 0; }
inline constexpr int32_t noByte(uint32_t) { return -1; }

// The predicate families by selector, so that templates can inline them.
enum PredicateKind : int32_t {
    PredicateDigit, PredicateNotDigit, PredicateWord, PredicateNotWord,
    PredicateSpace, PredicateNotSpace, PredicateNotNewline, PredicateAny, PredicateNone,
};

// The selection shared by both function-pointer forms and the repeat loops:
// the letter (low byte of the node's word1) and whether dot-all is on.
inline constexpr PredicateKind selectPredicate(uint32_t letter, uint32_t dotAll) {
    switch (letter) {
        case 'd': return PredicateDigit;
        case 'D': return PredicateNotDigit;
        case 'w': return PredicateWord;
        case 'W': return PredicateNotWord;
        case 's': return PredicateSpace;
        case 'S': return PredicateNotSpace;
        case '.': return dotAll != 0 ? PredicateAny : PredicateNotNewline;
        default:  return PredicateNone;
    }
}

template <PredicateKind K>
inline constexpr int32_t testByte(uint32_t c) {
    if constexpr (K == PredicateDigit) return isDigitByte(c);
    else if constexpr (K == PredicateNotDigit) return isNotDigitByte(c);
    else if constexpr (K == PredicateWord) return isWordByte(c);
    else if constexpr (K == PredicateNotWord) return isNotWordByte(c);
    else if constexpr (K == PredicateSpace) return isSpaceByte(c);
    else if constexpr (K == PredicateNotSpace) return isNotSpaceByte(c);
    else if constexpr (K == PredicateNotNewline) return isNotNewlineByte(c);
    else if constexpr (K == PredicateAny) return anyByte(c);
    else return noByte(c);
}

// The same test with the kind chosen at run time.
inline constexpr int32_t testByteOf(PredicateKind kind, uint32_t c) {
    switch (kind) {
        case PredicateDigit:      return testByte<PredicateDigit>(c);
        case PredicateNotDigit:   return testByte<PredicateNotDigit>(c);
        case PredicateWord:       return testByte<PredicateWord>(c);
        case PredicateNotWord:    return testByte<PredicateNotWord>(c);
        case PredicateSpace:      return testByte<PredicateSpace>(c);
        case PredicateNotSpace:   return testByte<PredicateNotSpace>(c);
        case PredicateNotNewline: return testByte<PredicateNotNewline>(c);
        case PredicateAny:        return testByte<PredicateAny>(c);
        case PredicateNone:       break;
    }
    return testByte<PredicateNone>(c);
}

// Each predicate as a set of 256 bits, for callers that pick the predicate
// at run time and test many bytes with it.
struct PredicateByteSet {
    uint64_t bits[4];
    bool has(uint8_t c) const { return ((bits[c >> 6] >> (c & 63)) & 1) != 0; }
};

inline constexpr PredicateByteSet predicateByteSet(PredicateKind kind) {
    PredicateByteSet set{{0, 0, 0, 0}};
    for (uint32_t c = 0; c < 256; ++c) {
        if (testByteOf(kind, c) >= 0) {
            set.bits[c >> 6] |= 1ull << (c & 63);
        }
    }
    return set;
}

inline constexpr PredicateByteSet PredicateByteSets[] = {
    predicateByteSet(PredicateDigit),      predicateByteSet(PredicateNotDigit),
    predicateByteSet(PredicateWord),       predicateByteSet(PredicateNotWord),
    predicateByteSet(PredicateSpace),      predicateByteSet(PredicateNotSpace),
    predicateByteSet(PredicateNotNewline), predicateByteSet(PredicateAny),
    predicateByteSet(PredicateNone),
};
static_assert(sizeof PredicateByteSets / sizeof *PredicateByteSets == PredicateNone + 1,
              "one set per predicate kind");

}  // namespace zevch_match
