// Character predicates: every byte against a plain description of each
// letter, both forms, and the signed-result convention the class check
// relies on.

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

TEST(Predicates, QuirksOfTheTable) {
    auto yes = [](char letter, uint32_t dotAll, uint32_t byte) {
        return ownGetCharPredicateByValue(static_cast<uint8_t>(letter), dotAll)(byte) >= 0;
    };
    EXPECT_FALSE(yes('s', 0, 0x0B));          // vertical tab is not space here
    EXPECT_TRUE(yes('.', 0, 0x0D));           // only line feed stops '.'
    EXPECT_FALSE(yes('.', 0, 0x0A));
    EXPECT_TRUE(yes('.', 1, 0x0A));
    EXPECT_TRUE(yes('w', 0, '_'));
    EXPECT_FALSE(yes('w', 0, 0xE9));          // no Latin-1 letters, no UTF-8 leads
    EXPECT_TRUE(yes('W', 0, 0xC3));
    // dot-all matters for '.' only, and OptionIgnoreCase is not an input.
    EXPECT_EQ(ownGetCharPredicate('d', 0), ownGetCharPredicate('d', OptionDotAll));
    // A letter outside the table refuses every byte, with any dotAll value.
    EXPECT_EQ(ownGetCharPredicateByValue('q', 0), ownGetCharPredicateByValue(0, OptionDotAll));
}

// The class check ANDs results and inverts by XOR with -1, so only the sign
// may carry the answer, and NOT must turn every yes into a no.
TEST(Predicates, ResultsCombineBySign) {
    for (int c = 0; c < 256; ++c) {
        int32_t d = ownGetCharPredicateByValue('d', 0)(c);
        int32_t notD = ownGetCharPredicateByValue('D', 0)(c);
        EXPECT_NE(d < 0, notD < 0) << c;
        EXPECT_EQ((d ^ -1) < 0, d >= 0) << c;
        int32_t w = ownGetCharPredicateByValue('w', 0)(c);
        int32_t s = ownGetCharPredicateByValue('s', 0)(c);
        EXPECT_EQ((w & s) >= 0, w >= 0 || s >= 0) << c;
    }
}

}  // namespace
