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
// and well-formed UTF-8 is decoded by table rather than by branches.
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

// Shortest well-formed sequences of one to four bytes, decoded without a
// branch on their length, indexed by that length (0: not such a first byte).
struct Utf8Form {
    uint32_t firstMask;  // code bits of the first byte
    uint32_t shift0;     // place of those bits in the code
    uint32_t mask1, shift1, mask2, shift2, mask3;  // following bytes' code bits and places
    uint32_t contMask;   // top two bits of each following byte ...
    uint32_t contWant;   // ... must read 10
    uint32_t minCode;    // below this the form would be longer than needed
};
constexpr Utf8Form Utf8Forms[5] = {
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFFFFFFFF},
    {0x7F, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0x1F, 6, 0x3F, 0, 0, 0, 0, 0xC000, 0x8000, 0x80},
    {0x0F, 12, 0x3F, 6, 0x3F, 0, 0, 0xC0C000, 0x808000, 0x800},
    {0x07, 18, 0x3F, 12, 0x3F, 6, 0x3F, 0xC0C0C000, 0x80808000, 0x10000},
};
// Length of the form that a first byte announces, by its top five bits.
constexpr uint8_t Utf8Length[32] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                    0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 2, 2, 3, 3, 4, 0};

// One UTF-8 character (or one malformed byte) to one or two units.
//
// Away from the ends (4 source bytes, 3 units of room) a well-formed
// character is decoded by table and written as two units, the second one
// counted only for a pair: the branches on the character's length and on
// pair or not are what costs most on mixed text. The spare unit is always
// overwritten by the next character, for which room remains.
bool pass8to16(Cursor<uint8_t, uint16_t>& c) {
    const uint8_t* s = c.s;
    if (c.left >= 4 && c.room >= 3) {
        const uint32_t w = s[0] | static_cast<uint32_t>(s[1]) << 8 | static_cast<uint32_t>(s[2]) << 16 |
                           static_cast<uint32_t>(s[3]) << 24;
        if ((w & 0x80808080u) == 0) {
            asciiRun(c, AsciiBlock, widenAscii);
            return true;
        }
        const uint32_t len = Utf8Length[(w & 0xFF) >> 3];
        const Utf8Form& f = Utf8Forms[len];
        const uint32_t code = (w & f.firstMask) << f.shift0 | ((w >> 8) & f.mask1) << f.shift1 |
                              ((w >> 16) & f.mask2) << f.shift2 | ((w >> 24) & f.mask3);
        if ((w & f.contMask) == f.contWant && code >= f.minCode) {
            const uint32_t v = code - 0x10000;  // for a pair; bits above 20 are dropped
            const uint32_t pair = code > 0xFFFF;
            put(c.d, pair ? 0xD800 | ((v >> 10) & 0x3FF) : code, c.swap);
            put(c.d + 1, 0xDC00 | (v & 0x3FF), c.swap);
            c.step(len, 1 + pair);
            return true;
        }
    }
    if (s[0] < 0x80) {
        asciiRun(c, AsciiBlock, widenAscii);
        return true;
    }
    uint32_t code;
    const size_t used = decodeUtf8(s, c.left, &code);
    if (code <= 0xFFFF) {
        put(c.d, code, c.swap);
        c.step(used, 1);
        return true;
    }
    if (c.room < 2) return false;  // the pair does not fit; the sequence stays unread
    const uint32_t v = code - 0x10000;
    put(c.d, 0xD800 | ((v >> 10) & 0x3FF), c.swap);
    put(c.d + 1, 0xDC00 | (v & 0x3FF), c.swap);
    c.step(used, 2);
    return true;
}

// One unit (or a surrogate pair) to a UTF-8 sequence, written only whole.
bool pass16to8(Cursor<uint16_t, uint8_t>& c) {
    const uint16_t u = swapIf(c.s[0], c.swap);
    if (c.left >= 4 && c.room >= 16) {
        // Away from the ends the sequence is built without branches as four
        // bytes, of which the first k + 1 count. The spare bytes are always
        // overwritten: the three or more units behind this one make at least
        // a byte each, and the room left holds them.
        const uint16_t next = swapIf(c.s[1], c.swap);
        if ((u | next | swapIf(c.s[2], c.swap) | swapIf(c.s[3], c.swap)) < 0x80) {
            asciiRun(c, 8, narrowAscii);
            return true;
        }
        const uint32_t pair = (u & 0xFC00) == 0xD800 && (next & 0xFC00) == 0xDC00;
        const uint32_t code = pair ? ((static_cast<uint32_t>(u & 0x3FF) << 10) | (next & 0x3FF)) + 0x10000 : u;
        const uint32_t k = (code >= 0x80) + (code >= 0x800) + pair;  // continuation bytes
        // Continuation bytes of a four-byte form in bytes 1..3, shifted so
        // that the last k of them stand in bytes 1..k.
        const uint32_t cont = (0x80u | ((code >> 12) & 0x3F)) << 8 | (0x80u | ((code >> 6) & 0x3F)) << 16 |
                              (0x80u | (code & 0x3F)) << 24;
        const uint32_t w = (UtfClasses[k].mark | code >> (6 * k)) | ((cont >> (8 * (3 - k))) & 0xFFFFFF00u);
        uint8_t* d = c.d;
        d[0] = static_cast<uint8_t>(w);
        d[1] = static_cast<uint8_t>(w >> 8);
        d[2] = static_cast<uint8_t>(w >> 16);
        d[3] = static_cast<uint8_t>(w >> 24);
        c.step(1 + pair, k + 1);
        return true;
    }
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
