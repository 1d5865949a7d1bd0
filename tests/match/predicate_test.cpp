// Character predicates: every byte against a plain description of each
// letter (0x0B is no space, '.' refuses only 0x0A unless dot-all, no byte of
// 0x80 and above is a digit, word or space byte), in all three forms.

#include <gtest/gtest.h>

#include "regexp/match/char_predicates.h"
#include "regexp/match/match_internal.h"

namespace {

bool expected(char letter, bool dotAll, int c) {
    bool digit = c >= '0' && c <= '9';
    bool word = digit || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    bool space = c == 0x09 || c == 0x0A || c == 0x0C || c == 0x0D || c == 0x20;
    switch (letter) {
        case 'd': return digit;
        case 'D': return !digit;
        case 'w': return word;
        case 'W': return !word;
        case 's': return space;
        case 'S': return !space;
        case '.': return dotAll || c != 0x0A;
        default:  return false;
    }
}

TEST(Predicates, EveryByteOfEveryLetterInBothForms) {
    const char letters[] = {'d', 'D', 'w', 'W', 's', 'S', '.', 'x', 'b', 0};
    for (char letter : letters) {
        for (uint32_t dotAll : {0u, 1u}) {
            CharPredicateRef byRef = ownGetCharPredicate(static_cast<uint8_t>(letter), dotAll);
            CharPredicateValue byValue = ownGetCharPredicateByValue(static_cast<uint8_t>(letter), dotAll);
            ASSERT_NE(byRef, nullptr);
            ASSERT_NE(byValue, nullptr);
            for (int c = 0; c < 256; ++c) {
                uint8_t byte = static_cast<uint8_t>(c);
                bool want = expected(letter, dotAll != 0, c);
                EXPECT_EQ(byRef(&byte) >= 0, want) << letter << " dotAll " << dotAll << " byte " << c;
                EXPECT_EQ(byValue(byte) >= 0, want) << letter << " dotAll " << dotAll << " byte " << c;
                // The bit-set form used by the repeat continuations.
                const auto& set = zevch_match::PredicateByteSets[zevch_match::selectPredicate(
                    static_cast<uint8_t>(letter), dotAll)];
                EXPECT_EQ(set.has(byte), want) << letter << " dotAll " << dotAll << " byte " << c;
            }
        }
    }
}

TEST(Predicates, SelectionIgnoresAllButLetterAndDotAll) {
    EXPECT_EQ(ownGetCharPredicate('d', 0), ownGetCharPredicate('d', OptionDotAll));
    EXPECT_EQ(ownGetCharPredicate('d', 0), ownGetCharPredicate(0x100 | 'd', 0));   // the low byte only
    EXPECT_EQ(ownGetCharPredicateByValue('q', 0), ownGetCharPredicateByValue(0, OptionDotAll));
}

}  // namespace
