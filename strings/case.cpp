// strings/case.cpp - lower and upper case of 8-bit and 16-bit strings.
//
// The Latin forms know only the 26 ASCII letters. The full forms (16-bit
// only) go through CaseTable, which is built at compile time from the two
// mapping lists below: a code that no row names has no mapping in that
// direction. The lists are complete as they stand; codes that later Unicode
// versions map (U+0250, U+2126, ...) stay unmapped on purpose.
#include <array>

#include "core/core.h"
#include "strings/strings_internal.h"

namespace {

// One row of a mapping list: codes first..last (every second one when step is
// 2), each mapped to code + add.
struct CaseRow {
    uint16_t first;
    uint16_t last;
    uint8_t  step;
    int16_t  add;
};

constexpr CaseRow LowerRows[] = {
    {0x0041, 0x005A, 1, 32},   {0x00C0, 0x00D6, 1, 32},   {0x00D8, 0x00DE, 1, 32},
    {0x0100, 0x012E, 2, 1},    {0x0130, 0x0130, 1, -199}, {0x0132, 0x0136, 2, 1},
    {0x0139, 0x0147, 2, 1},    {0x014A, 0x0176, 2, 1},    {0x0178, 0x0178, 1, -121},
    {0x0179, 0x017D, 2, 1},    {0x0181, 0x0181, 1, 210},  {0x0182, 0x0184, 2, 1},
    {0x0186, 0x0186, 1, 206},  {0x0187, 0x0187, 1, 1},    {0x0189, 0x018A, 1, 205},
    {0x018B, 0x018B, 1, 1},    {0x018E, 0x018F, 1, 202},  {0x0190, 0x0190, 1, 203},
    {0x0191, 0x0191, 1, 1},    {0x0193, 0x0193, 1, 205},  {0x0194, 0x0194, 1, 207},
    {0x0196, 0x0196, 1, 211},  {0x0197, 0x0197, 1, 209},  {0x0198, 0x0198, 1, 1},
    {0x019C, 0x019C, 1, 211},  {0x019D, 0x019D, 1, 213},  {0x01A0, 0x01A4, 2, 1},
    {0x01A7, 0x01A7, 1, 1},    {0x01A9, 0x01A9, 1, 218},  {0x01AC, 0x01AC, 1, 1},
    {0x01AE, 0x01AE, 1, 218},  {0x01AF, 0x01AF, 1, 1},    {0x01B1, 0x01B2, 1, 217},
    {0x01B3, 0x01B5, 2, 1},    {0x01B7, 0x01B7, 1, 219},  {0x01B8, 0x01B8, 1, 1},
    {0x01BC, 0x01BC, 1, 1},    {0x01C4, 0x01C4, 1, 2},    {0x01C5, 0x01C5, 1, 1},
    {0x01C7, 0x01C7, 1, 2},    {0x01C8, 0x01C8, 1, 1},    {0x01CA, 0x01CA, 1, 2},
    {0x01CB, 0x01DB, 2, 1},    {0x01DE, 0x01EE, 2, 1},    {0x01F1, 0x01F1, 1, 2},
    {0x01F2, 0x01F4, 2, 1},    {0x01FA, 0x0216, 2, 1},    {0x0386, 0x0386, 1, 38},
    {0x0388, 0x038A, 1, 37},   {0x038C, 0x038C, 1, 64},   {0x038E, 0x038F, 1, 63},
    {0x0391, 0x03A1, 1, 32},   {0x03A3, 0x03AB, 1, 32},   {0x03E2, 0x03EE, 2, 1},
    {0x0401, 0x040C, 1, 80},   {0x040E, 0x040F, 1, 80},   {0x0410, 0x042F, 1, 32},
    {0x0460, 0x0480, 2, 1},    {0x0490, 0x04BE, 2, 1},    {0x04C1, 0x04C3, 2, 1},
    {0x04C7, 0x04C7, 1, 1},    {0x04CB, 0x04CB, 1, 1},    {0x04D0, 0x04EA, 2, 1},
    {0x04EE, 0x04F4, 2, 1},    {0x04F8, 0x04F8, 1, 1},    {0x0531, 0x0556, 1, 48},
    {0x10A0, 0x10C5, 1, 48},   {0x1E00, 0x1E94, 2, 1},    {0x1EA0, 0x1EF8, 2, 1},
    {0x1F08, 0x1F0F, 1, -8},   {0x1F18, 0x1F1D, 1, -8},   {0x1F28, 0x1F2F, 1, -8},
    {0x1F38, 0x1F3F, 1, -8},   {0x1F48, 0x1F4D, 1, -8},   {0x1F59, 0x1F5F, 2, -8},
    {0x1F68, 0x1F6F, 1, -8},   {0x1F88, 0x1F8F, 1, -8},   {0x1F98, 0x1F9F, 1, -8},
    {0x1FA8, 0x1FAF, 1, -8},   {0x1FB8, 0x1FB9, 1, -8},   {0x1FBA, 0x1FBB, 1, -74},
    {0x1FBC, 0x1FBC, 1, -9},   {0x1FC8, 0x1FCB, 1, -86},  {0x1FCC, 0x1FCC, 1, -9},
    {0x1FD8, 0x1FD9, 1, -8},   {0x1FDA, 0x1FDB, 1, -100}, {0x1FE8, 0x1FE9, 1, -8},
    {0x1FEA, 0x1FEB, 1, -112}, {0x1FEC, 0x1FEC, 1, -7},   {0x1FF8, 0x1FF9, 1, -128},
    {0x1FFA, 0x1FFB, 1, -126}, {0x1FFC, 0x1FFC, 1, -9},   {0x2160, 0x216F, 1, 16},
    {0x24B6, 0x24CF, 1, 26},   {0xFF21, 0xFF3A, 1, 32},
};

constexpr CaseRow UpperRows[] = {
    {0x0061, 0x007A, 1, -32},  {0x00E0, 0x00F6, 1, -32},  {0x00F8, 0x00FE, 1, -32},
    {0x00FF, 0x00FF, 1, 121},  {0x0101, 0x012F, 2, -1},   {0x0131, 0x0131, 1, -232},
    {0x0133, 0x0137, 2, -1},   {0x013A, 0x0148, 2, -1},   {0x014B, 0x0177, 2, -1},
    {0x017A, 0x017E, 2, -1},   {0x017F, 0x017F, 1, -300}, {0x0183, 0x0185, 2, -1},
    {0x0188, 0x0188, 1, -1},   {0x018C, 0x018C, 1, -1},   {0x0192, 0x0192, 1, -1},
    {0x0199, 0x0199, 1, -1},   {0x01A1, 0x01A5, 2, -1},   {0x01A8, 0x01A8, 1, -1},
    {0x01AD, 0x01AD, 1, -1},   {0x01B0, 0x01B0, 1, -1},   {0x01B4, 0x01B6, 2, -1},
    {0x01B9, 0x01B9, 1, -1},   {0x01BD, 0x01BD, 1, -1},   {0x01C5, 0x01C5, 1, -1},
    {0x01C6, 0x01C6, 1, -2},   {0x01C8, 0x01C8, 1, -1},   {0x01C9, 0x01C9, 1, -2},
    {0x01CB, 0x01CB, 1, -1},   {0x01CC, 0x01CC, 1, -2},   {0x01CE, 0x01DC, 2, -1},
    {0x01DF, 0x01EF, 2, -1},   {0x01F2, 0x01F2, 1, -1},   {0x01F3, 0x01F3, 1, -2},
    {0x01F5, 0x01F5, 1, -1},   {0x01FB, 0x0217, 2, -1},   {0x0253, 0x0253, 1, -210},
    {0x0254, 0x0254, 1, -206}, {0x0256, 0x0257, 1, -205}, {0x0258, 0x0259, 1, -202},
    {0x025B, 0x025B, 1, -203}, {0x0260, 0x0260, 1, -205}, {0x0263, 0x0263, 1, -207},
    {0x0268, 0x0268, 1, -209}, {0x0269, 0x0269, 1, -211}, {0x026F, 0x026F, 1, -211},
    {0x0272, 0x0272, 1, -213}, {0x0283, 0x0283, 1, -218}, {0x0288, 0x0288, 1, -218},
    {0x028A, 0x028B, 1, -217}, {0x0292, 0x0292, 1, -219}, {0x03AC, 0x03AC, 1, -38},
    {0x03AD, 0x03AF, 1, -37},  {0x03B1, 0x03C1, 1, -32},  {0x03C3, 0x03CB, 1, -32},
    {0x03CC, 0x03CC, 1, -64},  {0x03CD, 0x03CE, 1, -63},  {0x03D0, 0x03D0, 1, -62},
    {0x03D1, 0x03D1, 1, -57},  {0x03D5, 0x03D5, 1, -47},  {0x03D6, 0x03D6, 1, -54},
    {0x03E3, 0x03EF, 2, -1},   {0x03F0, 0x03F0, 1, -86},  {0x03F1, 0x03F1, 1, -80},
    {0x0430, 0x044F, 1, -32},  {0x0451, 0x045C, 1, -80},  {0x045E, 0x045F, 1, -80},
    {0x0461, 0x0481, 2, -1},   {0x0491, 0x04BF, 2, -1},   {0x04C2, 0x04C4, 2, -1},
    {0x04C8, 0x04C8, 1, -1},   {0x04CC, 0x04CC, 1, -1},   {0x04D1, 0x04EB, 2, -1},
    {0x04EF, 0x04F5, 2, -1},   {0x04F9, 0x04F9, 1, -1},   {0x0561, 0x0586, 1, -48},
    {0x1E01, 0x1E95, 2, -1},   {0x1EA1, 0x1EF9, 2, -1},   {0x1F00, 0x1F07, 1, 8},
    {0x1F10, 0x1F15, 1, 8},    {0x1F20, 0x1F27, 1, 8},    {0x1F30, 0x1F37, 1, 8},
    {0x1F40, 0x1F45, 1, 8},    {0x1F51, 0x1F57, 2, 8},    {0x1F60, 0x1F67, 1, 8},
    {0x1F70, 0x1F71, 1, 74},   {0x1F72, 0x1F75, 1, 86},   {0x1F76, 0x1F77, 1, 100},
    {0x1F78, 0x1F79, 1, 128},  {0x1F7A, 0x1F7B, 1, 112},  {0x1F7C, 0x1F7D, 1, 126},
    {0x1F80, 0x1F87, 1, 8},    {0x1F90, 0x1F97, 1, 8},    {0x1FA0, 0x1FA7, 1, 8},
    {0x1FB0, 0x1FB1, 1, 8},    {0x1FB3, 0x1FB3, 1, 9},    {0x1FC3, 0x1FC3, 1, 9},
    {0x1FD0, 0x1FD1, 1, 8},    {0x1FE0, 0x1FE1, 1, 8},    {0x1FE5, 0x1FE5, 1, 7},
    {0x1FF3, 0x1FF3, 1, 9},    {0x2170, 0x217F, 1, -16},  {0x24D0, 0x24E9, 1, -26},
    {0xFF41, 0xFF5A, 1, -32},
};

// The level-3 entry of a code: direction bits plus the signed delta. One delta
// serves both directions, so lower = code + delta and upper = code - delta.
constexpr uint32_t makeEntry(uint32_t bits, int32_t delta) {
    return bits | (static_cast<uint32_t>(delta) << 22);
}

struct CaseBuild {
    CaseTable table{};
    int32_t   blocks = 0;       // distinct level-2 blocks
    int32_t   entries = 0;      // distinct level-3 entries
    bool      consistent = true;  // every code's two mappings agree on one delta
};

constexpr CaseBuild buildCaseTable() {
    CaseBuild b;
    // Flat per-code entries first, from the rows.
    std::array<uint32_t, 65536> flat{};
    for (const CaseRow& r : LowerRows)
        for (uint32_t c = r.first; c <= r.last; c += r.step) flat[c] = makeEntry(CaseHasLower, r.add);
    for (const CaseRow& r : UpperRows) {
        for (uint32_t c = r.first; c <= r.last; c += r.step) {
            // Upper = code - delta, so the delta of an upper row is -add.
            const uint32_t e = makeEntry(CaseHasUpper, -r.add);
            if (flat[c] != 0) {
                if ((flat[c] >> 22) != (e >> 22)) b.consistent = false;
                flat[c] |= e;
            } else {
                flat[c] = e;
            }
        }
    }
    // Level 3: distinct entries, entry 0 meaning "no mapping".
    b.entries = 1;
    std::array<uint8_t, 65536> index{};
    for (uint32_t c = 0; c < 65536; ++c) {
        if (flat[c] == 0) continue;
        int32_t k = 1;
        while (k < b.entries && b.table.level3[k] != flat[c]) ++k;
        if (k == b.entries) {
            if (b.entries == 128) { b.consistent = false; return b; }
            b.table.level3[b.entries++] = flat[c];
        }
        index[c] = static_cast<uint8_t>(k);
    }
    // Levels 1 and 2: 64-code stretches with equal content share one block.
    for (uint32_t blk = 0; blk < 1024; ++blk) {
        int32_t found = -1;
        for (int32_t k = 0; k < b.blocks && found < 0; ++k) {
            bool same = true;
            for (uint32_t i = 0; i < 64 && same; ++i)
                same = b.table.level2[k * 64 + i] == index[blk * 64 + i];
            if (same) found = k;
        }
        if (found < 0) {
            if (b.blocks == 122) { b.consistent = false; return b; }
            found = b.blocks++;
            for (uint32_t i = 0; i < 64; ++i) b.table.level2[found * 64 + i] = index[blk * 64 + i];
        }
        b.table.level1[blk] = static_cast<uint16_t>(found * 64);
    }
    return b;
}

constexpr CaseBuild CaseBuilt = buildCaseTable();
static_assert(CaseBuilt.consistent, "case lists give one code two different deltas, or overflow a level");
// The lists give 33 distinct blocks and 76 distinct entries; the table keeps
// room for 122 blocks and 128 entries, the rest zero (no mapping).
static_assert(CaseBuilt.blocks <= 122, "level 2 holds up to 122 distinct blocks");
static_assert(CaseBuilt.entries <= 128, "level 3 holds up to 128 entries");

}  // namespace

// Built at compile time: no code runs to set the table up.
constinit const CaseTable ownCaseTable = CaseBuilt.table;

namespace {

template <typename T>
struct LatinLower {
    T operator()(T c) const { return (c >= 65 && c <= 90) ? static_cast<T>(c + 32) : c; }
};
template <typename T>
struct LatinUpper {
    T operator()(T c) const { return (c >= 97 && c <= 122) ? static_cast<T>(c - 32) : c; }
};
struct TableLower {
    uint16_t operator()(uint16_t c) const { return ownCaseLower16(c); }
};
struct TableUpper {
    uint16_t operator()(uint16_t c) const { return ownCaseUpper16(c); }
};

// One ascending element-by-element pass; src may equal dst.
template <typename T, typename Map>
zevStatus mapCase(const T* src, T* dst, int32_t len, Map map) {
    if (ownAnyNull(src, dst)) return zevStatusNullPointer;
    if (len < 0) return zevStatusBadLength;
    for (int32_t i = 0; i < len; ++i) dst[i] = map(src[i]);
    return zevStatusOk;
}

}  // namespace

extern "C" {

zevStatus zevsLowercaseLatin_8u(const uint8_t* src, uint8_t* dst, int32_t len) {
    return mapCase(src, dst, len, LatinLower<uint8_t>{});
}
zevStatus zevsLowercaseLatin_16u(const uint16_t* src, uint16_t* dst, int32_t len) {
    return mapCase(src, dst, len, LatinLower<uint16_t>{});
}
zevStatus zevsUppercaseLatin_8u(const uint8_t* src, uint8_t* dst, int32_t len) {
    return mapCase(src, dst, len, LatinUpper<uint8_t>{});
}
zevStatus zevsUppercaseLatin_16u(const uint16_t* src, uint16_t* dst, int32_t len) {
    return mapCase(src, dst, len, LatinUpper<uint16_t>{});
}
zevStatus zevsLowercaseLatin_8u_I(uint8_t* srcDst, int32_t len) {
    return mapCase<uint8_t>(srcDst, srcDst, len, LatinLower<uint8_t>{});
}
zevStatus zevsLowercaseLatin_16u_I(uint16_t* srcDst, int32_t len) {
    return mapCase<uint16_t>(srcDst, srcDst, len, LatinLower<uint16_t>{});
}
zevStatus zevsUppercaseLatin_8u_I(uint8_t* srcDst, int32_t len) {
    return mapCase<uint8_t>(srcDst, srcDst, len, LatinUpper<uint8_t>{});
}
zevStatus zevsUppercaseLatin_16u_I(uint16_t* srcDst, int32_t len) {
    return mapCase<uint16_t>(srcDst, srcDst, len, LatinUpper<uint16_t>{});
}
zevStatus zevsLowercase_16u(const uint16_t* src, uint16_t* dst, int32_t len) {
    return mapCase(src, dst, len, TableLower{});
}
zevStatus zevsUppercase_16u(const uint16_t* src, uint16_t* dst, int32_t len) {
    return mapCase(src, dst, len, TableUpper{});
}
zevStatus zevsLowercase_16u_I(uint16_t* srcDst, int32_t len) {
    return mapCase<uint16_t>(srcDst, srcDst, len, TableLower{});
}
zevStatus zevsUppercase_16u_I(uint16_t* srcDst, int32_t len) {
    return mapCase<uint16_t>(srcDst, srcDst, len, TableUpper{});
}

}  // extern "C"
