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
// Runs of ASCII go a block at a time (SSE2 where the compiler offers it),
// and well-formed two- and three-byte characters take a short cut.
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

// Block size of the ASCII runs, in elements of the source.
constexpr size_t AsciiBlock = 16;

// Widens the ASCII run at the start of s, block by block while both sides
// have a whole block left, and returns the bytes it took (each made one
// unit): whole blocks, then the ASCII head of the first block that is not.
// Nothing is written beyond the units produced.
size_t widenAscii(const uint8_t* s, uint16_t* d, size_t n, bool swap) {
    size_t i = 0;
    for (; n - i >= AsciiBlock; i += AsciiBlock) {
#if defined(__SSE2__)
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const unsigned high = static_cast<unsigned>(_mm_movemask_epi8(v));
        if (high == 0) {
            // A swapped unit carries the byte high: interleave with zero the other way round.
            const __m128i zero = _mm_setzero_si128();
            const __m128i lo = swap ? _mm_unpacklo_epi8(zero, v) : _mm_unpacklo_epi8(v, zero);
            const __m128i hi = swap ? _mm_unpackhi_epi8(zero, v) : _mm_unpackhi_epi8(v, zero);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), lo);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 8), hi);
            continue;
        }
        const size_t head = static_cast<size_t>(__builtin_ctz(high));
#else
        uint64_t w[2];
        std::memcpy(w, s + i, 16);
        const uint64_t high0 = w[0] & 0x8080808080808080ull, high1 = w[1] & 0x8080808080808080ull;
        if ((high0 | high1) == 0) {
            for (size_t k = 0; k < AsciiBlock; ++k) d[i + k] = swapIf(s[i + k], swap);
            continue;
        }
        size_t head = 0;
        while (s[i + head] < 0x80) ++head;
#endif
        for (size_t k = 0; k < head; ++k) d[i + k] = swapIf(s[i + k], swap);
        return i + head;
    }
    return i;
}

// Narrows the run of units below 0x80 at the start of s in the same way and
// returns the units it took (each made one byte).
size_t narrowAscii(const uint16_t* s, uint8_t* d, size_t n, bool swap) {
    constexpr size_t block = 8;
    size_t i = 0;
    for (; n - i >= block; i += block) {
#if defined(__SSE2__)
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        if (swap) v = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
        // Two mask bits per unit, set where the unit is below 0x80.
        const __m128i ascii = _mm_cmpeq_epi16(_mm_and_si128(v, _mm_set1_epi16(static_cast<short>(0xFF80))),
                                              _mm_setzero_si128());
        const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(ascii));
        if (mask == 0xFFFF) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(d + i), _mm_packus_epi16(v, v));
            continue;
        }
        const size_t head = static_cast<size_t>(__builtin_ctz(~mask)) / 2;
#else
        size_t head = 0;
        while (head < block && swapIf(s[i + head], swap) < 0x80) ++head;
        if (head == block) {
            for (size_t k = 0; k < block; ++k) d[i + k] = static_cast<uint8_t>(swapIf(s[i + k], swap));
            continue;
        }
#endif
        for (size_t k = 0; k < head; ++k) d[i + k] = static_cast<uint8_t>(swapIf(s[i + k], swap));
        return i + head;
    }
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

// The state of one conversion: read and write positions, the source
// elements not yet consumed and the output elements not yet used.
template <typename From, typename To>
struct Cursor {
    const From* s;
    To* d;
    size_t left;
    size_t room;
    bool swap;
    void step(size_t used, size_t written) {
        s += used, left -= used;
        d += written, room -= written;
    }
};

// The value of a source element and the output element of a value, with the
// 16-bit side's two bytes exchanged when asked.
inline uint32_t valueOf(uint8_t b, bool) { return b; }
inline uint32_t valueOf(uint16_t u, bool swap) { return swapIf(u, swap); }
inline void put(uint8_t* d, uint32_t v, bool) { *d = static_cast<uint8_t>(v); }
inline void put(uint16_t* d, uint32_t v, bool swap) { *d = swapIf(static_cast<uint16_t>(v), swap); }

// Copies the ASCII run at the read position, block-wise when both sides
// have a whole block left, element by element otherwise.
template <typename From, typename To, typename Block>
inline void asciiRun(Cursor<From, To>& c, size_t blockSize, Block block) {
    const size_t n = c.left < c.room ? c.left : c.room;
    size_t run = 0;
    if (n >= blockSize) {
        run = block(c.s, c.d, n, c.swap);
    } else {
        for (uint32_t v; run < n && (v = valueOf(c.s[run], c.swap)) < 0x80; ++run) put(c.d + run, v, c.swap);
    }
    c.step(run, run);
}

// Runs passes until the source is used up or a pass finds no room for the
// next character (it returns false), then reports what was consumed and
// produced through srcLen and dstLen.
template <typename From, typename To, typename Pass>
zevStatus convert(const From* src, uint32_t* srcLen, To* dst, uint32_t* dstLen, int32_t bigEndian, Pass pass) {
    if (ownAnyNull(src, srcLen, dst, dstLen)) return zevStatusNullPointer;
    Cursor<From, To> c{src, dst, *srcLen, *dstLen, bigEndian != 0};
    while (c.left > 0 && c.room > 0 && pass(c)) {
    }
    *srcLen -= static_cast<uint32_t>(c.left);
    *dstLen -= static_cast<uint32_t>(c.room);
    return zevStatusOk;
}

// One UTF-8 character (or one malformed byte) to one or two units.
bool pass8to16(Cursor<uint8_t, uint16_t>& c) {
    const uint8_t* s = c.s;
    const uint8_t b = s[0];
    if (b < 0x80) {
        asciiRun(c, AsciiBlock, widenAscii);
        return true;
    }
    // Well-formed two-, three- and four-byte forms, most of non-ASCII text,
    // take a short cut chosen by the top bits of the first byte (one jump
    // rather than a chain of tests); all else goes through the full decoder.
    uint32_t code = 0;
    size_t used = 0;
    switch (b >> 4) {
        case 0xC:
        case 0xD:
            if (b >= 0xC2 && c.left >= 2 && (s[1] & 0xC0) == 0x80) {
                code = static_cast<uint32_t>(b & 0x1F) << 6 | (s[1] & 0x3F);
                used = 2;
            }
            break;
        case 0xE:
            if (c.left >= 3 && (s[1] & 0xC0) == 0x80 && (s[2] & 0xC0) == 0x80 && (b != 0xE0 || s[1] >= 0xA0)) {
                code = static_cast<uint32_t>(b & 0x0F) << 12 | static_cast<uint32_t>(s[1] & 0x3F) << 6 | (s[2] & 0x3F);
                used = 3;
            }
            break;
        case 0xF:
            if (b < 0xF8 && c.left >= 4 && (s[1] & 0xC0) == 0x80 && (s[2] & 0xC0) == 0x80 &&
                (s[3] & 0xC0) == 0x80 && (b != 0xF0 || s[1] >= 0x90)) {
                code = static_cast<uint32_t>(b & 0x07) << 18 | static_cast<uint32_t>(s[1] & 0x3F) << 12 |
                       static_cast<uint32_t>(s[2] & 0x3F) << 6 | (s[3] & 0x3F);
                used = 4;
            }
            break;
        default:
            break;
    }
    if (used == 0) used = decodeUtf8(s, c.left, &code);
    if (code <= 0xFFFF) {
        put(c.d, code, c.swap);
        c.step(used, 1);
        return true;
    }
    if (c.room < 2) return false;  // the pair does not fit; the sequence stays unread
    const uint32_t v = code - 0x10000;  // bits above 20 are dropped
    put(c.d, 0xD800 | ((v >> 10) & 0x3FF), c.swap);
    put(c.d + 1, 0xDC00 | (v & 0x3FF), c.swap);
    c.step(used, 2);
    return true;
}

// One unit (or a surrogate pair) to a UTF-8 sequence, written only whole.
bool pass16to8(Cursor<uint16_t, uint8_t>& c) {
    const uint16_t u = swapIf(c.s[0], c.swap);
    if (u < 0x80) {
        asciiRun(c, 8, narrowAscii);
        return true;
    }
    uint32_t code = u;
    size_t used = 1;
    // A high surrogate with a low one behind it is one character; any other
    // surrogate goes out as the three-byte form of its own value.
    if (u >= 0xD800 && u <= 0xDBFF && c.left > 1) {
        const uint16_t next = swapIf(c.s[1], c.swap);
        if (next >= 0xDC00 && next <= 0xDFFF) {
            code = ((static_cast<uint32_t>(u & 0x3FF) << 10) | (next & 0x3FF)) + 0x10000;
            used = 2;
        }
    }
    const size_t k = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;  // continuation bytes
    if (k + 1 > c.room) return false;
    uint8_t* d = c.d;
    for (size_t i = k; i > 0; --i) {
        d[i] = static_cast<uint8_t>(0x80 | (code & 0x3F));
        code >>= 6;
    }
    d[0] = static_cast<uint8_t>(code | UtfClasses[k].mark);
    c.step(used, k + 1);
    return true;
}

}  // namespace

extern "C" {

zevStatus zevsConvertUTF_8u16u(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen,
                               int32_t bigEndian) {
    return convert(src, srcLen, dst, dstLen, bigEndian, pass8to16);
}
zevStatus zevsConvertUTF_16u8u(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen,
                               int32_t bigEndian) {
    return convert(src, srcLen, dst, dstLen, bigEndian, pass16to8);
}

}  // extern "C"
