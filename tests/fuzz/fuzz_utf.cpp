// tests/fuzz/fuzz_utf.cpp - UTF-8 to UTF-16 and back.
//
// Input: a control byte, two capacity bytes, then the data: read as bytes for
// the UTF-8 side and as 16-bit units for the UTF-16 side.
//
// Properties, in both byte orders:
//   - reported lengths never exceed what was given, and nothing is written
//     beyond the capacity (exact heap blocks);
//   - a conversion cut short by its capacity produced exactly what a full
//     conversion of the consumed source produces: characters go out whole;
//   - UTF-16 -> UTF-8 -> UTF-16 gives the same units for every input, lone
//     surrogates included;
//   - the byte order flag only exchanges the bytes of each unit.
#include "fuzz_input.h"

namespace {

uint16_t swapped(uint16_t u) { return static_cast<uint16_t>((u << 8) | (u >> 8)); }

struct Converted16 {
    uint32_t consumed;
    std::vector<uint16_t> units;
};
struct Converted8 {
    uint32_t consumed;
    std::vector<uint8_t> bytes;
};

Converted16 to16(const std::vector<uint8_t>& src, uint32_t capacity, int32_t bigEndian) {
    const ExactBuffer<uint8_t> in(src.data(), src.size());
    ExactBuffer<uint16_t> out(capacity);
    uint32_t srcLen = static_cast<uint32_t>(src.size());
    uint32_t dstLen = capacity;
    FUZZ_CHECK(zevsConvertUTF_8u16u(in.data, &srcLen, out.data, &dstLen, bigEndian) == zevStatusOk);
    FUZZ_CHECK(srcLen <= src.size());
    FUZZ_CHECK(dstLen <= capacity);
    if (src.empty() || capacity == 0) FUZZ_CHECK(srcLen == 0 && dstLen == 0);
    // One byte in gives at most one unit out, a pair takes at least four bytes.
    FUZZ_CHECK(dstLen <= srcLen);
    return Converted16{srcLen, std::vector<uint16_t>(out.data, out.data + dstLen)};
}

Converted8 to8(const std::vector<uint16_t>& src, uint32_t capacity, int32_t bigEndian) {
    const ExactBuffer<uint16_t> in(src.data(), src.size());
    ExactBuffer<uint8_t> out(capacity);
    uint32_t srcLen = static_cast<uint32_t>(src.size());
    uint32_t dstLen = capacity;
    FUZZ_CHECK(zevsConvertUTF_16u8u(in.data, &srcLen, out.data, &dstLen, bigEndian) == zevStatusOk);
    FUZZ_CHECK(srcLen <= src.size());
    FUZZ_CHECK(dstLen <= capacity);
    if (src.empty() || capacity == 0) FUZZ_CHECK(srcLen == 0 && dstLen == 0);
    FUZZ_CHECK(dstLen <= 3 * srcLen);
    return Converted8{srcLen, std::vector<uint8_t>(out.data, out.data + dstLen)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    const uint8_t control = in.byte();
    const uint32_t cap8 = in.byte();
    const uint32_t cap16 = in.byte();
    const std::vector<uint8_t> bytes = in.rest();
    const int32_t bigEndian = (control & 1) ? (control | 1) : 0;   // any non-zero value counts

    // UTF-8 side: a full conversion, a cut one, and the other byte order.
    const uint32_t fullUnits = static_cast<uint32_t>(bytes.size());
    const Converted16 full = to16(bytes, fullUnits, bigEndian);
    FUZZ_CHECK(full.consumed == bytes.size());
    const Converted16 cut = to16(bytes, cap16, bigEndian);
    {
        const std::vector<uint8_t> head(bytes.begin(), bytes.begin() + cut.consumed);
        const Converted16 redo = to16(head, fullUnits, bigEndian);
        FUZZ_CHECK(redo.units == cut.units);
        FUZZ_CHECK(cut.units.size() <= full.units.size());
        FUZZ_CHECK(std::equal(cut.units.begin(), cut.units.end(), full.units.begin()));
    }
    const Converted16 other = to16(bytes, fullUnits, bigEndian ? 0 : 1);
    FUZZ_CHECK(other.units.size() == full.units.size());
    for (size_t i = 0; i < other.units.size(); ++i) FUZZ_CHECK(other.units[i] == swapped(full.units[i]));

    // UTF-16 side: the data as units, converted to UTF-8 and back.
    std::vector<uint16_t> units(bytes.size() / 2);
    if (!units.empty()) std::memcpy(units.data(), bytes.data(), units.size() * 2);
    const uint32_t fullBytes = 3 * static_cast<uint32_t>(units.size());
    const Converted8 utf8 = to8(units, fullBytes, bigEndian);
    FUZZ_CHECK(utf8.consumed == units.size());
    const Converted16 back = to16(utf8.bytes, static_cast<uint32_t>(units.size()), bigEndian);
    FUZZ_CHECK(back.consumed == utf8.bytes.size());
    FUZZ_CHECK(back.units == units);

    const Converted8 cut8 = to8(units, cap8, bigEndian);
    {
        const std::vector<uint16_t> head(units.begin(), units.begin() + cut8.consumed);
        const Converted8 redo = to8(head, fullBytes, bigEndian);
        FUZZ_CHECK(redo.bytes == cut8.bytes);
        FUZZ_CHECK(std::equal(cut8.bytes.begin(), cut8.bytes.end(), utf8.bytes.begin()));
        // Stopped early: the next character would not have fitted.
        if (cut8.consumed < units.size()) FUZZ_CHECK(cut8.bytes.size() + 4 > cap8);
    }
    return 0;
}
