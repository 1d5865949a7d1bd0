// strings/utf.cpp - conversion between UTF-8 and UTF-16, in the machine's
// byte order or with the two bytes of each unit exchanged.
//
// Neither direction fails on its data. The UTF-8 side knows the old forms of
// up to six bytes; a byte that does not start a well-formed, shortest
// sequence becomes the unit of its own value (so 0x80..0xFF pass as
// U+0080..U+00FF), and lone surrogates travel as three-byte forms. Codes
// above U+10FFFF are not refused: they wrap into the 20 bits of a surrogate
// pair. A character is written whole or not at all, and on return srcLen and
// dstLen hold what was consumed and what was produced.
//
// Runs of ASCII go 16 elements at a time (SSE2, or 8 with plain words).
#include <cstring>

#include "core/core.h"
#include "strings/strings_internal.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// Row k describes a sequence of k + 1 bytes.
struct UtfClass {
    uint32_t highest;    // highest code of the class
    uint8_t  mark;       // mark of the first byte
    uint8_t  firstMask;  // code bits of the first byte
};
constexpr UtfClass UtfClasses[6] = {
    {0x7F, 0x00, 0xFF},      {0x7FF, 0xC0, 0x1F},      {0xFFFF, 0xE0, 0x0F},
    {0x1FFFFF, 0xF0, 0x07},  {0x3FFFFFF, 0xF8, 0x03},  {0x7FFFFFFF, 0xFC, 0x01},
};

// Bytes beyond the first of the shortest form of code.
inline int classOf(uint32_t code) {
    int k = 0;
    while (UtfClasses[k].highest < code) ++k;
    return k;
}

inline uint16_t swapIf(uint16_t u, bool swap) {
    return swap ? static_cast<uint16_t>((u << 8) | (u >> 8)) : u;
}

// Widens ASCII bytes while both sides have at least a block left; returns
// how many bytes went (each made one unit).
size_t widenAscii(const uint8_t* s, uint16_t* d, size_t n, bool swap) {
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    for (; n - i >= 16; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        if (_mm_movemask_epi8(v) != 0) break;
        // A swapped unit carries the byte high: interleave with zero the other way round.
        const __m128i lo = swap ? _mm_unpacklo_epi8(zero, v) : _mm_unpacklo_epi8(v, zero);
        const __m128i hi = swap ? _mm_unpackhi_epi8(zero, v) : _mm_unpackhi_epi8(v, zero);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), lo);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 8), hi);
    }
#else
    for (; n - i >= 8; i += 8) {
        uint64_t w;
        std::memcpy(&w, s + i, 8);
        if (w & 0x8080808080808080ull) break;
        for (size_t k = 0; k < 8; ++k) d[i + k] = swapIf(s[i + k], swap);
    }
#endif
    return i;
}

// Narrows units below 0x80 while both sides have a block left; returns how
// many units went (each made one byte).
size_t narrowAscii(const uint16_t* s, uint8_t* d, size_t n, bool swap) {
    size_t i = 0;
#if defined(__SSE2__)
    for (; n - i >= 8; i += 8) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        if (swap) v = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
        // Any unit with a bit at 0x80 or above ends the run.
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, _mm_set1_epi16(static_cast<short>(0xFF80))),
                                              _mm_setzero_si128())) != 0xFFFF)
            break;
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d + i), _mm_packus_epi16(v, v));
    }
#else
    for (; n - i >= 4; i += 4) {
        uint16_t u[4];
        for (size_t k = 0; k < 4; ++k) u[k] = swapIf(s[i + k], swap);
        if ((u[0] | u[1] | u[2] | u[3]) >= 0x80) break;
        for (size_t k = 0; k < 4; ++k) d[i + k] = static_cast<uint8_t>(u[k]);
    }
#endif
    return i;
}

// Decodes the sequence starting at s[0] (left >= 1 bytes available). Returns
// the bytes consumed and stores the code. A malformed first byte, including
// one whose sequence runs past the end of the source, is one byte and its own
// code.
inline size_t decodeUtf8(const uint8_t* s, size_t left, uint32_t* code) {
    const uint8_t b = s[0];
    *code = b;
    if (b < 0x80) return 1;
    int n = 0;  // 1 bits right behind the top bit, up to 6
    while (n < 6 && (b & (0x40 >> n))) ++n;
    if (n == 0 || n == 6 || static_cast<size_t>(n) >= left) return 1;
    uint32_t c = static_cast<uint32_t>(b & UtfClasses[n].firstMask) << (6 * n);
    for (int k = 1; k <= n; ++k) {
        if ((s[k] & 0xC0) != 0x80) return 1;
        c |= static_cast<uint32_t>(s[k] & 0x3F) << (6 * (n - k));
    }
    if (classOf(c) != n) return 1;  // longer than it needs to be
    *code = c;
    return static_cast<size_t>(n) + 1;
}

zevStatus utf8To16(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen, int32_t bigEndian) {
    if (ownAnyNull(src, srcLen, dst, dstLen)) return zevStatusNullPointer;
    const bool swap = bigEndian != 0;
    size_t left = *srcLen, room = *dstLen;
    const uint8_t* s = src;
    uint16_t* d = dst;
    while (left > 0 && room > 0) {
        if (*s < 0x80) {
            const size_t run = widenAscii(s, d, left < room ? left : room, swap);
            s += run, d += run, left -= run, room -= run;
            if (run > 0) continue;
        }
        uint32_t code;
        const size_t used = decodeUtf8(s, left, &code);
        if (code <= 0xFFFF) {
            *d++ = swapIf(static_cast<uint16_t>(code), swap);
            room -= 1;
        } else {
            if (room < 2) break;  // the pair does not fit; the sequence stays unread
            const uint32_t v = code - 0x10000;
            d[0] = swapIf(static_cast<uint16_t>(0xD800 | ((v >> 10) & 0x3FF)), swap);
            d[1] = swapIf(static_cast<uint16_t>(0xDC00 | (v & 0x3FF)), swap);
            d += 2;
            room -= 2;
        }
        s += used;
        left -= used;
    }
    *srcLen -= static_cast<uint32_t>(left);
    *dstLen -= static_cast<uint32_t>(room);
    return zevStatusOk;
}

zevStatus utf16To8(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen, int32_t bigEndian) {
    if (ownAnyNull(src, srcLen, dst, dstLen)) return zevStatusNullPointer;
    const bool swap = bigEndian != 0;
    size_t left = *srcLen, room = *dstLen;
    const uint16_t* s = src;
    uint8_t* d = dst;
    while (left > 0 && room > 0) {
        const uint16_t u = swapIf(s[0], swap);
        if (u < 0x80) {
            const size_t run = narrowAscii(s, d, left < room ? left : room, swap);
            s += run, d += run, left -= run, room -= run;
            if (run > 0) continue;
        }
        uint32_t code = u;
        size_t used = 1;
        if (u >= 0xD800 && u <= 0xDBFF && left > 1) {
            const uint16_t next = swapIf(s[1], swap);
            if (next >= 0xDC00 && next <= 0xDFFF) {
                code = ((static_cast<uint32_t>(u & 0x3FF) << 10) | (next & 0x3FF)) + 0x10000;
                used = 2;
            }
        }
        const int k = classOf(code);
        if (static_cast<size_t>(k) + 1 > room) break;  // only whole characters are written
        uint8_t seq[6];
        for (int i = k; i > 0; --i) {
            seq[i] = static_cast<uint8_t>(0x80 | (code & 0x3F));
            code >>= 6;
        }
        seq[0] = static_cast<uint8_t>(code | UtfClasses[k].mark);
        std::memcpy(d, seq, static_cast<size_t>(k) + 1);
        d += k + 1;
        room -= static_cast<size_t>(k) + 1;
        s += used;
        left -= used;
    }
    *srcLen -= static_cast<uint32_t>(left);
    *dstLen -= static_cast<uint32_t>(room);
    return zevStatusOk;
}

}  // namespace

extern "C" {

zevStatus zevsConvertUTF_8u16u(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen,
                               int32_t bigEndian) {
    return utf8To16(src, srcLen, dst, dstLen, bigEndian);
}
zevStatus zevsConvertUTF_16u8u(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen,
                               int32_t bigEndian) {
    return utf16To8(src, srcLen, dst, dstLen, bigEndian);
}

}  // extern "C"
