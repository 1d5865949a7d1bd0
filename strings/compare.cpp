// strings/compare.cpp - comparison and equality of two strings of one length.
//
// A comparison gives the real difference of the first differing elements
// (first minus second, elements unsigned), not just its sign. Exact compares
// find that element by skipping equal stretches with memcmp and then
// locating the first differing byte a 64-bit word at a time; the folding
// compares walk element by element.
#include <cstring>

#include "core/core.h"
#include "strings/strings_internal.h"

namespace {

// Bytes per memcmp probe: long enough that the call costs nothing next to the
// compare, short enough that the word scan behind a hit stays cheap.
constexpr size_t ProbeBytes = 1024;

// Index of the first byte where a and b differ, or n when they are equal.
size_t firstDifferentByte(const uint8_t* a, const uint8_t* b, size_t n) {
    size_t i = 0;
    while (n - i >= ProbeBytes && std::memcmp(a + i, b + i, ProbeBytes) == 0) i += ProbeBytes;
    for (; n - i >= 8; i += 8) {
        uint64_t x, y;
        std::memcpy(&x, a + i, 8);
        std::memcpy(&y, b + i, 8);
        if (x != y) {
            const uint64_t d = x ^ y;
            if constexpr (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__)
                return i + static_cast<size_t>(__builtin_ctzll(d) >> 3);
            else
                return i + static_cast<size_t>(__builtin_clzll(d) >> 3);
        }
    }
    for (; i < n; ++i)
        if (a[i] != b[i]) return i;
    return n;
}

template <typename T>
zevStatus checkPair(const T* src1, const T* src2, int32_t len, const int32_t* result) {
    if (ownAnyNull(src1, src2, result)) return zevStatusNullPointer;
    if (len < 0) return zevStatusBadLength;
    return zevStatusOk;
}

template <typename T>
zevStatus compare(const T* src1, const T* src2, int32_t len, int32_t* result) {
    if (zevStatus st = checkPair(src1, src2, len, result); st != zevStatusOk) return st;
    const size_t bytes = static_cast<size_t>(len) * sizeof(T);
    const size_t at = firstDifferentByte(reinterpret_cast<const uint8_t*>(src1),
                                         reinterpret_cast<const uint8_t*>(src2), bytes);
    if (at == bytes) {
        *result = 0;
    } else {
        const size_t e = at / sizeof(T);
        *result = static_cast<int32_t>(src1[e]) - static_cast<int32_t>(src2[e]);
    }
    return zevStatusOk;
}

template <typename T>
zevStatus equal(const T* src1, const T* src2, int32_t len, int32_t* result) {
    if (zevStatus st = checkPair(src1, src2, len, result); st != zevStatusOk) return st;
    *result = std::memcmp(src1, src2, static_cast<size_t>(len) * sizeof(T)) == 0 ? 1 : 0;
    return zevStatusOk;
}

template <typename T>
struct LatinFold {
    int32_t operator()(T c) const { return (c >= 65 && c <= 90) ? c + 32 : c; }
};
struct TableFold {
    int32_t operator()(uint16_t c) const { return ownCaseLower16(c); }
};

template <typename T, typename Fold>
zevStatus compareFolded(const T* src1, const T* src2, int32_t len, int32_t* result, Fold fold) {
    if (zevStatus st = checkPair(src1, src2, len, result); st != zevStatusOk) return st;
    *result = 0;
    for (int32_t i = 0; i < len; ++i) {
        const int32_t d = fold(src1[i]) - fold(src2[i]);
        if (d != 0) {
            *result = d;
            break;
        }
    }
    return zevStatusOk;
}

}  // namespace

extern "C" {

zevStatus zevsCompare_8u(const uint8_t* src1, const uint8_t* src2, int32_t len, int32_t* result) {
    return compare(src1, src2, len, result);
}
zevStatus zevsCompare_16u(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result) {
    return compare(src1, src2, len, result);
}
zevStatus zevsCompareIgnoreCaseLatin_8u(const uint8_t* src1, const uint8_t* src2, int32_t len, int32_t* result) {
    return compareFolded(src1, src2, len, result, LatinFold<uint8_t>{});
}
zevStatus zevsCompareIgnoreCaseLatin_16u(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result) {
    return compareFolded(src1, src2, len, result, LatinFold<uint16_t>{});
}
zevStatus zevsCompareIgnoreCase_16u(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result) {
    return compareFolded(src1, src2, len, result, TableFold{});
}
zevStatus zevsEqual_8u(const uint8_t* src1, const uint8_t* src2, int32_t len, int32_t* result) {
    return equal(src1, src2, len, result);
}
zevStatus zevsEqual_16u(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result) {
    return equal(src1, src2, len, result);
}

}  // extern "C"
