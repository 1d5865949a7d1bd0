// regexp/match/predicates.cpp - selection of the NodeCharType predicates.
//
// Two forms of the same predicates: one reads the byte through a reference
// (the repeats and the plain match of a multi-byte character), one takes its
// value (the class check and the plain match of a single byte). Both select
// by the letter of the node and the dot-all bit. A letter without a meaning
// gives the predicate that refuses every byte.
//
// Tested by tests/match/predicate_test.cpp.

#include "regexp/match/char_predicates.h"
#include "regexp/match/match_internal.h"

using namespace zevch_match;

namespace {

template <PredicateKind K>
int32_t predicateByRef(const uint8_t* byte) {
    return testByte<K>(*byte);
}

template <PredicateKind K>
int32_t predicateByValue(uint32_t byte) {
    return testByte<K>(byte & 0xFF);
}

template <template <PredicateKind> class Form, typename Fn>
Fn pick(PredicateKind kind) {
    switch (kind) {
        case PredicateDigit:      return Form<PredicateDigit>::fn;
        case PredicateNotDigit:   return Form<PredicateNotDigit>::fn;
        case PredicateWord:       return Form<PredicateWord>::fn;
        case PredicateNotWord:    return Form<PredicateNotWord>::fn;
        case PredicateSpace:      return Form<PredicateSpace>::fn;
        case PredicateNotSpace:   return Form<PredicateNotSpace>::fn;
        case PredicateNotNewline: return Form<PredicateNotNewline>::fn;
        case PredicateAny:        return Form<PredicateAny>::fn;
        case PredicateNone:       break;
    }
    return Form<PredicateNone>::fn;
}

template <PredicateKind K>
struct RefForm {
    static constexpr CharPredicateRef fn = predicateByRef<K>;
};

template <PredicateKind K>
struct ValueForm {
    static constexpr CharPredicateValue fn = predicateByValue<K>;
};

}  // namespace

CharPredicateRef ownGetCharPredicate(uint32_t letter, uint32_t dotAll) {
    return pick<RefForm, CharPredicateRef>(selectPredicate(letter & 0xFF, dotAll));
}

CharPredicateValue ownGetCharPredicateByValue(uint32_t letter, uint32_t dotAll) {
    return pick<ValueForm, CharPredicateValue>(selectPredicate(letter & 0xFF, dotAll));
}
