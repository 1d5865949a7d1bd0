// Case conversion: both full mappings over all 65536 codes against a table
// parsed here from the mapping lists written as text (a transcription kept
// apart from the library's own rows), the Latin forms over every byte and
// unit, and the in-place forms against the copying ones.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "zevch.h"

namespace {

// Rows "first[-last][/2] +add", separated by "; ". Codes on no row are unmapped.
const char* const LowerList =
    "0041-005A +32; 00C0-00D6 +32; 00D8-00DE +32; 0100-012E/2 +1; 0130 -199; 0132-0136/2 +1; 0139-0147/2 "
    "+1; 014A-0176/2 +1; 0178 -121; 0179-017D/2 +1; 0181 +210; 0182-0184/2 +1; 0186 +206; 0187 +1; "
    "0189-018A +205; 018B +1; 018E-018F +202; 0190 +203; 0191 +1; 0193 +205; 0194 +207; 0196 +211; 0197 "
    "+209; 0198 +1; 019C +211; 019D +213; 01A0-01A4/2 +1; 01A7 +1; 01A9 +218; 01AC +1; 01AE +218; 01AF "
    "+1; 01B1-01B2 +217; 01B3-01B5/2 +1; 01B7 +219; 01B8 +1; 01BC +1; 01C4 +2; 01C5 +1; 01C7 +2; 01C8 +1; "
    "01CA +2; 01CB-01DB/2 +1; 01DE-01EE/2 +1; 01F1 +2; 01F2-01F4/2 +1; 01FA-0216/2 +1; 0386 +38; "
    "0388-038A +37; 038C +64; 038E-038F +63; 0391-03A1 +32; 03A3-03AB +32; 03E2-03EE/2 +1; 0401-040C +80; "
    "040E-040F +80; 0410-042F +32; 0460-0480/2 +1; 0490-04BE/2 +1; 04C1-04C3/2 +1; 04C7 +1; 04CB +1; "
    "04D0-04EA/2 +1; 04EE-04F4/2 +1; 04F8 +1; 0531-0556 +48; 10A0-10C5 +48; 1E00-1E94/2 +1; 1EA0-1EF8/2 "
    "+1; 1F08-1F0F -8; 1F18-1F1D -8; 1F28-1F2F -8; 1F38-1F3F -8; 1F48-1F4D -8; 1F59-1F5F/2 -8; 1F68-1F6F "
    "-8; 1F88-1F8F -8; 1F98-1F9F -8; 1FA8-1FAF -8; 1FB8-1FB9 -8; 1FBA-1FBB -74; 1FBC -9; 1FC8-1FCB -86; "
    "1FCC -9; 1FD8-1FD9 -8; 1FDA-1FDB -100; 1FE8-1FE9 -8; 1FEA-1FEB -112; 1FEC -7; 1FF8-1FF9 -128; "
    "1FFA-1FFB -126; 1FFC -9; 2160-216F +16; 24B6-24CF +26; FF21-FF3A +32 ";
const char* const UpperList =
    "0061-007A -32; 00E0-00F6 -32; 00F8-00FE -32; 00FF +121; 0101-012F/2 -1; 0131 -232; 0133-0137/2 -1; "
    "013A-0148/2 -1; 014B-0177/2 -1; 017A-017E/2 -1; 017F -300; 0183-0185/2 -1; 0188 -1; 018C -1; 0192 "
    "-1; 0199 -1; 01A1-01A5/2 -1; 01A8 -1; 01AD -1; 01B0 -1; 01B4-01B6/2 -1; 01B9 -1; 01BD -1; 01C5 -1; "
    "01C6 -2; 01C8 -1; 01C9 -2; 01CB -1; 01CC -2; 01CE-01DC/2 -1; 01DF-01EF/2 -1; 01F2 -1; 01F3 -2; 01F5 "
    "-1; 01FB-0217/2 -1; 0253 -210; 0254 -206; 0256-0257 -205; 0258-0259 -202; 025B -203; 0260 -205; 0263 "
    "-207; 0268 -209; 0269 -211; 026F -211; 0272 -213; 0283 -218; 0288 -218; 028A-028B -217; 0292 -219; "
    "03AC -38; 03AD-03AF -37; 03B1-03C1 -32; 03C3-03CB -32; 03CC -64; 03CD-03CE -63; 03D0 -62; 03D1 -57; "
    "03D5 -47; 03D6 -54; 03E3-03EF/2 -1; 03F0 -86; 03F1 -80; 0430-044F -32; 0451-045C -80; 045E-045F -80; "
    "0461-0481/2 -1; 0491-04BF/2 -1; 04C2-04C4/2 -1; 04C8 -1; 04CC -1; 04D1-04EB/2 -1; 04EF-04F5/2 -1; "
    "04F9 -1; 0561-0586 -48; 1E01-1E95/2 -1; 1EA1-1EF9/2 -1; 1F00-1F07 +8; 1F10-1F15 +8; 1F20-1F27 +8; "
    "1F30-1F37 +8; 1F40-1F45 +8; 1F51-1F57/2 +8; 1F60-1F67 +8; 1F70-1F71 +74; 1F72-1F75 +86; 1F76-1F77 "
    "+100; 1F78-1F79 +128; 1F7A-1F7B +112; 1F7C-1F7D +126; 1F80-1F87 +8; 1F90-1F97 +8; 1FA0-1FA7 +8; "
    "1FB0-1FB1 +8; 1FB3 +9; 1FC3 +9; 1FD0-1FD1 +8; 1FE0-1FE1 +8; 1FE5 +7; 1FF3 +9; 2170-217F -16; "
    "24D0-24E9 -26; FF41-FF5A -32 ";

std::vector<uint16_t> parseList(const char* text) {
    std::vector<uint16_t> map(65536);
    for (uint32_t c = 0; c < 65536; ++c) map[c] = static_cast<uint16_t>(c);
    std::stringstream in(text);
    std::string row;
    while (std::getline(in, row, ';')) {
        std::istringstream r(row);
        std::string range, add;
        r >> range >> add;
        if (range.empty()) continue;
        const bool everySecond = range.size() > 2 && range.substr(range.size() - 2) == "/2";
        if (everySecond) range.resize(range.size() - 2);
        const size_t dash = range.find('-');
        const uint32_t first = std::strtoul(range.substr(0, dash).c_str(), nullptr, 16);
        const uint32_t last = dash == std::string::npos ? first : std::strtoul(range.substr(dash + 1).c_str(), nullptr, 16);
        const int delta = std::atoi(add.c_str());
        for (uint32_t c = first; c <= last; c += everySecond ? 2 : 1) {
            EXPECT_EQ(map[c], c) << "code listed twice: " << std::hex << c;
            map[c] = static_cast<uint16_t>(c + delta);
        }
    }
    return map;
}

std::vector<uint16_t> allCodes() {
    std::vector<uint16_t> v(65536);
    for (uint32_t c = 0; c < 65536; ++c) v[c] = static_cast<uint16_t>(c);
    return v;
}

TEST(Case, FullMappingsOfEveryCode) {
    const std::vector<uint16_t> lower = parseList(LowerList), upper = parseList(UpperList);
    const std::vector<uint16_t> codes = allCodes();
    std::vector<uint16_t> out(65536);
    ASSERT_EQ(zevsLowercase_16u(codes.data(), out.data(), 65536), zevStatusOk);
    for (uint32_t c = 0; c < 65536; ++c) ASSERT_EQ(out[c], lower[c]) << "lower of " << std::hex << c;
    ASSERT_EQ(zevsUppercase_16u(codes.data(), out.data(), 65536), zevStatusOk);
    for (uint32_t c = 0; c < 65536; ++c) ASSERT_EQ(out[c], upper[c]) << "upper of " << std::hex << c;
    // The in-place forms give the same.
    out = codes;
    ASSERT_EQ(zevsLowercase_16u_I(out.data(), 65536), zevStatusOk);
    EXPECT_EQ(out, lower);
    out = codes;
    ASSERT_EQ(zevsUppercase_16u_I(out.data(), 65536), zevStatusOk);
    EXPECT_EQ(out, upper);
    // Case-insensitive compare folds through the same lowercase mapping.
    for (uint32_t c = 0; c < 65536; c += 1) {
        const uint16_t a = static_cast<uint16_t>(c), b = lower[c];
        int32_t r = 1;
        zevsCompareIgnoreCase_16u(&a, &b, 1, &r);
        ASSERT_EQ(r, static_cast<int32_t>(lower[c]) - lower[b]) << std::hex << c;
    }
}

uint16_t low16(uint16_t c) { uint16_t o = 0; zevsLowercase_16u(&c, &o, 1); return o; }
uint16_t up16(uint16_t c) { uint16_t o = 0; zevsUppercase_16u(&c, &o, 1); return o; }

TEST(Case, OddCornersOfTheLists) {
    EXPECT_EQ(up16(0x00FF), 0x0178);
    EXPECT_EQ(up16(0x00B5), 0x00B5);
    EXPECT_EQ(up16(0x00DF), 0x00DF);
    EXPECT_EQ(low16(0x01C5), 0x01C6);
    EXPECT_EQ(up16(0x01C5), 0x01C4);
    EXPECT_EQ(low16(0x2126), 0x2126);
    EXPECT_EQ(low16(0x212A), 0x212A);
    EXPECT_EQ(up16(0x0250), 0x0250);
    EXPECT_EQ(low16(0x0130), 0x0069);
    EXPECT_EQ(up16(0x0069), 0x0049);
    EXPECT_EQ(up16(0x017F), 0x0053);
    EXPECT_EQ(low16(0x018E), 0x0258);
    EXPECT_EQ(up16(0x0258), 0x018E);
    EXPECT_EQ(low16(0x10A0), 0x10D0);
    EXPECT_EQ(up16(0x10D0), 0x10D0);
    const uint16_t pair[2] = {0xD801, 0xDC00};
    uint16_t out[2];
    zevsUppercase_16u(pair, out, 2);
    EXPECT_EQ(out[0], 0xD801);
    EXPECT_EQ(out[1], 0xDC00);
}

TEST(Case, LatinFormsOfEveryByteAndUnit) {
    std::vector<uint8_t> bytes(256), out8(256);
    for (int c = 0; c < 256; ++c) bytes[c] = static_cast<uint8_t>(c);
    ASSERT_EQ(zevsLowercaseLatin_8u(bytes.data(), out8.data(), 256), zevStatusOk);
    for (int c = 0; c < 256; ++c) EXPECT_EQ(out8[c], c >= 'A' && c <= 'Z' ? c + 32 : c);
    ASSERT_EQ(zevsUppercaseLatin_8u_I(out8.data(), 256), zevStatusOk);
    for (int c = 0; c < 256; ++c) EXPECT_EQ(out8[c], c >= 'a' && c <= 'z' ? c - 32 : c) << c;
    std::vector<uint8_t> in = bytes;
    zevsLowercaseLatin_8u_I(in.data(), 256);
    zevsLowercaseLatin_8u(bytes.data(), out8.data(), 256);
    EXPECT_EQ(in, out8);
    zevsUppercaseLatin_8u(bytes.data(), bytes.data(), 256);  // src may equal dst
    for (int c = 0; c < 256; ++c) EXPECT_EQ(bytes[c], c >= 'a' && c <= 'z' ? c - 32 : c);

    const std::vector<uint16_t> codes = allCodes();
    std::vector<uint16_t> out(65536), inPlace = codes;
    zevsLowercaseLatin_16u(codes.data(), out.data(), 65536);
    zevsLowercaseLatin_16u_I(inPlace.data(), 65536);
    EXPECT_EQ(out, inPlace);
    for (uint32_t c = 0; c < 65536; ++c) ASSERT_EQ(out[c], c >= 'A' && c <= 'Z' ? c + 32 : c);
    inPlace = codes;
    zevsUppercaseLatin_16u(codes.data(), out.data(), 65536);
    zevsUppercaseLatin_16u_I(inPlace.data(), 65536);
    EXPECT_EQ(out, inPlace);
    for (uint32_t c = 0; c < 65536; ++c) ASSERT_EQ(out[c], c >= 'a' && c <= 'z' ? c - 32 : c);
}

TEST(Case, LatinFormsAtEveryLengthAndOffset) {
    // Lengths and offsets around the vector widths the compiler may use.
    std::vector<uint8_t> text(64 + 3);
    for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<uint8_t>("aZ@[`{zA"[i % 8] + (i % 3 == 0 ? 0x80 : 0));
    const std::vector<uint16_t> wide(text.begin(), text.end());
    for (int32_t off = 0; off < 4; ++off) {
        for (int32_t len = 0; len <= 64; ++len) {
            std::vector<uint8_t> dst(off + len + 1, 0xEE);
            ASSERT_EQ(zevsUppercaseLatin_8u(text.data() + off, dst.data() + off, len), zevStatusOk);
            for (int32_t i = 0; i < len; ++i) {
                const uint8_t c = text[off + i];
                ASSERT_EQ(dst[off + i], c >= 'a' && c <= 'z' ? c - 32 : c);
            }
            EXPECT_EQ(dst[off + len], 0xEE);
            // The full mapping over a string equals the mapping one element at a time.
            std::vector<uint16_t> low(off + len + 1, 0xEEEE);
            ASSERT_EQ(zevsLowercase_16u(wide.data() + off, low.data() + off, len), zevStatusOk);
            for (int32_t i = 0; i < len; ++i) ASSERT_EQ(low[off + i], low16(wide[off + i]));
            EXPECT_EQ(low[off + len], 0xEEEE);
        }
    }
}

TEST(Case, ChecksAndEmptyLength) {
    uint8_t b[2] = {'A', 'B'};
    uint16_t w[2] = {'A', 'B'};
    EXPECT_EQ(zevsLowercaseLatin_8u(nullptr, b, -1), zevStatusNullPointer);
    EXPECT_EQ(zevsLowercaseLatin_8u(b, nullptr, 1), zevStatusNullPointer);
    EXPECT_EQ(zevsUppercase_16u(w, nullptr, 1), zevStatusNullPointer);
    EXPECT_EQ(zevsLowercase_16u_I(nullptr, 1), zevStatusNullPointer);
    EXPECT_EQ(zevsLowercaseLatin_16u_I(w, -1), zevStatusBadLength);
    EXPECT_EQ(zevsUppercaseLatin_8u_I(b, -1), zevStatusBadLength);
    EXPECT_EQ(zevsLowercase_16u(w, w, -1), zevStatusBadLength);
    EXPECT_EQ(zevsLowercase_16u(w, w, 0), zevStatusOk);
    EXPECT_EQ(zevsLowercaseLatin_8u(b, b, 0), zevStatusOk);
    EXPECT_EQ(b[0], 'A');
    EXPECT_EQ(w[0], 'A');
}

}  // namespace
