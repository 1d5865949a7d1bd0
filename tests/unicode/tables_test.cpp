// The generated Unicode 5.1.0 tables: shape, sample rows, and the row search
// against a plain search of the whole table.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>

#include "regexp/regexp_record.h"
#include "regexp/unicode/unicode_tables.h"

namespace {

const CharRow* rowOf(int32_t code) {
    int32_t i = ownLookupChar(code);
    return (i >= 0 && CharTable[i].code == code) ? &CharTable[i] : nullptr;
}

TEST(UnicodeTables, CharTableRowsByCategory) {
    const struct { uint32_t flags; int32_t rows; } expected[] = {
        {0x81, 1748}, {0x82, 1421}, {0x84, 31}, {0x88, 187}, {0x90, 8671},
        {0x101, 1032}, {0x102, 236}, {0x104, 13},
        {0x201, 18}, {0x202, 1}, {0x204, 1},
        {0x401, 945}, {0x402, 41}, {0x404, 99}, {0x408, 3225},
        {0x801, 370}, {0x802, 214}, {0x804, 349},
        {0x1001, 20}, {0x1002, 72}, {0x1004, 71}, {0x1008, 12}, {0x1010, 10},
        {0x1020, 10}, {0x1040, 315},
        {0x2001, 65}, {0x2002, 139}};
    int32_t total = 0;
    for (auto e : expected) {
        int32_t rows = static_cast<int32_t>(std::count_if(
            std::begin(CharTable), std::end(CharTable),
            [&](const CharRow& r) { return r.flags == e.flags; }));
        EXPECT_EQ(rows, e.rows) << std::hex << e.flags;
        total += rows;
    }
    EXPECT_EQ(total, CharTableCount);
    EXPECT_EQ(CharTable[0].code, 0);
    EXPECT_EQ(CharTable[CharTableCount - 1].code, 0xE01EF);
    EXPECT_TRUE(std::is_sorted(std::begin(CharTable), std::end(CharTable),
                               [](const CharRow& a, const CharRow& b) { return a.code <= b.code; }));
    auto withUpper = std::count_if(std::begin(CharTable), std::end(CharTable),
                                   [](const CharRow& r) { return r.upper != 0; });
    auto withLower = std::count_if(std::begin(CharTable), std::end(CharTable),
                                   [](const CharRow& r) { return r.lower != 0; });
    auto withBoth = std::count_if(std::begin(CharTable), std::end(CharTable),
                                  [](const CharRow& r) { return r.upper != 0 && r.lower != 0; });
    EXPECT_EQ(withUpper, 1027);
    EXPECT_EQ(withLower, 1023);
    EXPECT_EQ(withBoth, 0);
}

TEST(UnicodeTables, SampleRows) {
    const struct { int32_t code; uint32_t flags, upper, lower; } samples[] = {
        {0x41, 0x82, 0, 0x61}, {0x61, 0x81, 0x41, 0}, {0x0, 0x2001, 0, 0},
        {0xDF, 0x81, 0, 0}, {0x1E9E, 0x82, 0, 0xDF}, {0x1C5, 0x84, 0, 0x1C6},
        {0x1C8, 0x84, 0, 0x1C9}, {0x1CB, 0x84, 0, 0x1CC}, {0x1F2, 0x84, 0, 0x1F3},
        {0x130, 0x82, 0, 0x69}, {0x131, 0x81, 0x49, 0}, {0x212A, 0x82, 0, 0x6B},
        {0x17F, 0x81, 0x53, 0}, {0x345, 0x101, 0x399, 0}, {0x370, 0x82, 0, 0x371},
        {0xA640, 0x82, 0, 0xA641}, {0x10D0, 0x90, 0, 0}, {0x2028, 0x202, 0, 0},
        {0x2029, 0x204, 0, 0}};
    for (auto s : samples) {
        const CharRow* row = rowOf(s.code);
        ASSERT_NE(row, nullptr) << std::hex << s.code;
        EXPECT_EQ(row->flags, s.flags) << std::hex << s.code;
        EXPECT_EQ(row->upper, s.upper) << std::hex << s.code;
        EXPECT_EQ(row->lower, s.lower) << std::hex << s.code;
    }
    // Assigned only in later versions, or only inside a range row.
    for (int32_t code : {0x524, 0xA6A0, 0x4E00, 0x9FC4, 0xE01F0, 0xF0000}) {
        EXPECT_EQ(rowOf(code), nullptr) << std::hex << code;
    }
}

TEST(UnicodeTables, RangeRows) {
    const CharRangeRow expected[CharRangesCount] = {
        {0x3400, 0x4DB5, 0x90}, {0x4E00, 0x9FC3, 0x90}, {0xAC00, 0xD7A3, 0x90},
        {0xD800, 0xDB7F, 0x2008}, {0xDB80, 0xDBFF, 0x2008}, {0xDC00, 0xDFFF, 0x2008},
        {0xE000, 0xF8FF, 0x2004}, {0x20000, 0x2A6D6, 0x90}, {0xF0000, 0xFFFFD, 0x2004},
        {0x100000, 0x10FFFD, 0x2004}};
    for (int32_t i = 0; i < CharRangesCount; ++i) {
        EXPECT_EQ(CharRanges[i].low, expected[i].low);
        EXPECT_EQ(CharRanges[i].high, expected[i].high);
        EXPECT_EQ(CharRanges[i].flags, expected[i].flags);
        // No code lies in both tables.
        int32_t at = ownLookupChar(CharRanges[i].low);
        EXPECT_TRUE(at < 0 || CharTable[at].code > CharRanges[i].high);
    }
}

// Block names in table order: the first row a prefix fits is the one taken,
// so the order is part of what a pattern means.
const char BlockNames[] =
    "InBasicLatin InLatin1Supplement InLatinExtendedA InLatinExtendedB InIPAExtensions "
    "InSpacingModifierLetters InCombiningDiacriticalMarks InGreekandCoptic InCyrillic "
    "InCyrillicSupplement InArmenian InHebrew InArabic InSyriac InArabicSupplement InThaana "
    "InNKo InDevanagari InBengali InGurmukhi InGujarati InOriya InTamil InTelugu InKannada "
    "InMalayalam InSinhala InThai InLao InTibetan InMyanmar InGeorgian InHangulJamo "
    "InEthiopic InEthiopicSupplement InCherokee InUnifiedCanadianAboriginalSyllabics InOgham "
    "InRunic InTagalog InHanunoo InBuhid InTagbanwa InKhmer InMongolian InLimbu InTaiLe "
    "InNewTaiLue InKhmerSymbols InBuginese InBalinese InSundanese InLepcha InOlChiki "
    "InPhoneticExtensions InPhoneticExtensionsSupplement "
    "InCombiningDiacriticalMarksSupplement InLatinExtendedAdditional InGreekExtended "
    "InGeneralPunctuation InSuperscriptsandSubscripts InCurrencySymbols "
    "InCombiningDiacriticalMarksforSymbols InLetterlikeSymbols InNumberForms InArrows "
    "InMathematicalOperators InMiscellaneousTechnical InControlPictures "
    "InOpticalCharacterRecognition InEnclosedAlphanumerics InBoxDrawing InBlockElements "
    "InGeometricShapes InMiscellaneousSymbols InDingbats InMiscellaneousMathematicalSymbolsA "
    "InSupplementalArrowsA InBraillePatterns InSupplementalArrowsB "
    "InMiscellaneousMathematicalSymbolsB InSupplementalMathematicalOperators "
    "InMiscellaneousSymbolsandArrows InGlagolitic InLatinExtendedC InCoptic "
    "InGeorgianSupplement InTifinagh InEthiopicExtended InCyrillicExtendedA "
    "InSupplementalPunctuation InCJKRadicalsSupplement InKangxiRadicals "
    "InIdeographicDescriptionCharacters InCJKSymbolsandPunctuation InHiragana InKatakana "
    "InBopomofo InHangulCompatibilityJamo InKanbun InBopomofoExtended InCJKStrokes "
    "InKatakanaPhoneticExtensions InEnclosedCJKLettersandMonths InCJKCompatibility "
    "InCJKUnifiedIdeographsExtensionA InYijingHexagramSymbols InCJKUnifiedIdeographs "
    "InYiSyllables InYiRadicals InVai InCyrillicExtendedB InModifierToneLetters "
    "InLatinExtendedD InSylotiNagri InPhagspa InSaurashtra InKayahLi InRejang InCham "
    "InHangulSyllables InHighSurrogates InHighPrivateUseSurrogates InLowSurrogates "
    "InPrivateUseArea InCJKCompatibilityIdeographs InAlphabeticPresentationForms "
    "InArabicPresentationFormsA InVariationSelectors InVerticalForms InCombiningHalfMarks "
    "InCJKCompatibilityForms InSmallFormVariants InArabicPresentationFormsB "
    "InHalfwidthandFullwidthForms InSpecials InLinearBSyllabary InLinearBIdeograms "
    "InAegeanNumbers InAncientGreekNumbers InAncientSymbols InPhaistosDisc InLycian InCarian "
    "InOldItalic InGothic InUgaritic InOldPersian InDeseret InShavian InOsmanya "
    "InCypriotSyllabary InPhoenician InLydian InKharoshthi InCuneiform "
    "InCuneiformNumbersandPunctuation InByzantineMusicalSymbols InMusicalSymbols "
    "InAncientGreekMusicalNotation InTaiXuanJingSymbols InCountingRodNumerals "
    "InMathematicalAlphanumericSymbols InMahjongTiles InDominoTiles "
    "InCJKUnifiedIdeographsExtensionB InCJKCompatibilityIdeographsSupplement InTags "
    "InVariationSelectorsSupplement InSupplementaryPrivateUseAreaA "
    "InSupplementaryPrivateUseAreaB ";

TEST(UnicodeTables, BlocksAndScripts) {
    std::istringstream names(BlockNames);
    for (int32_t i = 0; i < BlockTableCount; ++i) {
        const BlockRow& b = BlockTable[i];
        std::string name;
        names >> name;
        EXPECT_EQ(name, b.name) << i;
        EXPECT_LE(b.low, b.high);
        if (i > 0) {
            EXPECT_GT(b.low, BlockTable[i - 1].high) << b.name;
        }
    }
    EXPECT_STREQ(ScriptTable[0].name, "Common");
    EXPECT_EQ(ScriptTable[0].count, 530);
    EXPECT_STREQ(ScriptTable[ScriptTableCount - 1].name, "Cham");
    EXPECT_EQ(ScriptTable[ScriptTableCount - 1].count, 13);
    // "Common starts 0 to 0x1F, 0x20, 0x21 to 0x23": lines are not merged.
    const int32_t* common = ownScriptRanges(ScriptTable[0].firstPair);
    const int32_t start[] = {0, 0x1F, 0x20, 0x20, 0x21, 0x23};
    EXPECT_TRUE(std::equal(std::begin(start), std::end(start), common));
    // The scripts are consecutive slices of one table, each rising by code.
    uint32_t next = 0;
    for (const ScriptRow& s : ScriptTable) {
        EXPECT_EQ(s.firstPair, next) << s.name;
        next += static_cast<uint32_t>(s.count);
        const int32_t* r = ownScriptRanges(s.firstPair);
        for (int32_t i = 0; i < s.count; ++i) {
            EXPECT_LE(r[2 * i], r[2 * i + 1]) << s.name;
            if (i > 0) {
                EXPECT_GT(r[2 * i], r[2 * i - 1]) << s.name;
            }
        }
    }
    EXPECT_EQ(next, static_cast<uint32_t>(ScriptRangeCount));
}

// The paged search must give the row that a plain search from the top gives,
// for every code and beyond both ends.
TEST(UnicodeTables, LookupAgreesWithPlainSearch) {
    auto plain = [](int32_t code) -> int32_t {
        if (code <= 0) return 0;
        const CharRow* at = std::lower_bound(
            std::begin(CharTable), std::end(CharTable), code,
            [](const CharRow& r, int32_t c) { return r.code < c; });
        return at == std::end(CharTable) ? -1 : static_cast<int32_t>(at - CharTable);
    };
    for (int32_t code = -2; code <= 0x110001; ++code) {
        ASSERT_EQ(ownLookupChar(code), plain(code)) << std::hex << code;
    }
    for (int32_t code : {INT32_MIN, -0x10000, 0x7FFFFFFF, 0x40000000, 0xE01EF, 0xE01F0}) {
        EXPECT_EQ(ownLookupChar(code), plain(code)) << std::hex << code;
    }
}

// The class table used by the per-character checks says, for every code,
// what the range scan followed by the row search says.
TEST(UnicodeTables, ClassTableAgreesWithRangesAndRowSearch) {
    for (int32_t code = 0; code < CharClassCodeSpace; ++code) {
        uint32_t expected = 0;
        for (int32_t r = 0; r < CharRangesCount; ++r) {
            if (code >= CharRanges[r].low && code <= CharRanges[r].high) {
                expected = CharClassRange + static_cast<uint32_t>(r);
            }
        }
        int32_t row = ownLookupChar(code);
        if (row >= 0 && CharTable[row].code == code) {
            ASSERT_EQ(expected, 0u) << std::hex << code << " in both tables";
            expected = static_cast<uint32_t>(row) + 1;
        }
        uint32_t block = CharClassIndex[code >> CharClassShift];
        uint32_t got = CharClassBlocks[(block << CharClassShift) | (code & ((1 << CharClassShift) - 1))];
        ASSERT_EQ(got, expected) << std::hex << code;
    }
}

}  // namespace
