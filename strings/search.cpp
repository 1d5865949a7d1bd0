// strings/search.cpp - element-exact search in 8-bit and 16-bit strings: a
// needle, one character or any character of a set, forwards or backwards.
//
// Results are those of the plain candidate-by-candidate walk (first or last
// occurrence, overlapping occurrences all seen, an empty needle or set found
// nowhere). The 8-bit character scans are the C library's memchr and
// memrchr, the 16-bit ones go eight units at a time, and the 8-bit needle
// searches test sixteen candidates at a time by the needle's first and last
// byte before comparing the whole needle: the backward searches are also
// the literal prefilter of the regular-expression search and must keep up
// with memchr.
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "core/core.h"
#include "strings/strings_internal.h"

namespace {

#if defined(__SSE2__)
// Bit 2i (and 2i + 1) set where unit i of the eight at p equals the unit in c.
inline unsigned unitMatches8(const uint16_t* p, __m128i c) {
    return static_cast<unsigned>(
        _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), c)));
}
#endif

template <typename T>
int32_t scanC(const T* src, int32_t len, T c) {
    if constexpr (sizeof(T) == 1) {
        const void* p = len > 0 ? std::memchr(src, c, static_cast<size_t>(len)) : nullptr;
        return p ? static_cast<int32_t>(static_cast<const T*>(p) - src) : -1;
    } else {
        int32_t i = 0;
#if defined(__SSE2__)
        const __m128i unit = _mm_set1_epi16(static_cast<short>(c));
        for (; len - i >= 8; i += 8)
            if (const unsigned m = unitMatches8(src + i, unit)) return i + __builtin_ctz(m) / 2;
#endif
        for (; i < len; ++i)
            if (src[i] == c) return i;
        return -1;
    }
}

template <typename T>
int32_t scanRevC(const T* src, int32_t len, T c) {
    if constexpr (sizeof(T) == 1) {
        const void* p = len > 0 ? memrchr(src, c, static_cast<size_t>(len)) : nullptr;
        return p ? static_cast<int32_t>(static_cast<const T*>(p) - src) : -1;
    } else {
        int32_t i = len;  // elements below i are still unscanned
#if defined(__SSE2__)
        const __m128i unit = _mm_set1_epi16(static_cast<short>(c));
        for (; i >= 8; i -= 8)
            if (const unsigned m = unitMatches8(src + i - 8, unit)) return i - 8 + (31 - __builtin_clz(m)) / 2;
#endif
        while (--i >= 0)
            if (src[i] == c) return i;
        return -1;
    }
}

#if defined(__SSE2__)
// Bit i set where block[i] holds the needle's first byte and
// block[i + needleLen - 1] its last: the candidates worth a full compare.
inline unsigned candidates16(const uint8_t* block, int32_t needleLen, __m128i first, __m128i last) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + needleLen - 1));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, last))));
}
#endif

// Needle of at least one element, not longer than the source.
template <typename T>
int32_t scanNeedle(const T* src, int32_t srcLen, const T* needle, int32_t needleLen) {
    const size_t tailBytes = static_cast<size_t>(needleLen - 1) * sizeof(T);
    const int32_t last = srcLen - needleLen;  // greatest candidate
    int32_t from = 0;
#if defined(__SSE2__)
    if constexpr (sizeof(T) == 1) {
        if (needleLen == 1) return scanC(src, srcLen, needle[0]);
        // Sixteen candidates at a time, lowest first.
        const __m128i firstByte = _mm_set1_epi8(static_cast<char>(needle[0]));
        const __m128i lastByte = _mm_set1_epi8(static_cast<char>(needle[needleLen - 1]));
        for (; last - from >= 15; from += 16) {
            for (unsigned mask = candidates16(src + from, needleLen, firstByte, lastByte); mask != 0; mask &= mask - 1) {
                const int32_t pos = from + __builtin_ctz(mask);
                if (std::memcmp(src + pos + 1, needle + 1, tailBytes) == 0) return pos;
            }
        }
    }
#endif
    while (from <= last) {
        const int32_t at = scanC(src + from, last - from + 1, needle[0]);
        if (at < 0) return -1;
        const int32_t pos = from + at;
        if (std::memcmp(src + pos + 1, needle + 1, tailBytes) == 0) return pos;
        from = pos + 1;
    }
    return -1;
}

template <typename T>
int32_t scanRevNeedle(const T* src, int32_t srcLen, const T* needle, int32_t needleLen) {
    const size_t tailBytes = static_cast<size_t>(needleLen - 1) * sizeof(T);
    int32_t limit = srcLen - needleLen;  // candidates 0..limit
#if defined(__SSE2__)
    if constexpr (sizeof(T) == 1) {
        if (needleLen == 1) return scanRevC(src, srcLen, needle[0]);
        // Sixteen candidates at a time, highest first.
        const __m128i firstByte = _mm_set1_epi8(static_cast<char>(needle[0]));
        const __m128i lastByte = _mm_set1_epi8(static_cast<char>(needle[needleLen - 1]));
        for (; limit >= 15; limit -= 16) {
            const T* block = src + limit - 15;
            for (unsigned mask = candidates16(block, needleLen, firstByte, lastByte); mask != 0;) {
                const int bit = 31 - __builtin_clz(mask);
                if (std::memcmp(block + bit + 1, needle + 1, tailBytes) == 0)
                    return static_cast<int32_t>(block + bit - src);
                mask &= ~(1u << bit);
            }
        }
    }
#endif
    while (limit >= 0) {
        const int32_t pos = scanRevC(src, limit + 1, needle[0]);
        if (pos < 0) return -1;
        if (std::memcmp(src + pos + 1, needle + 1, tailBytes) == 0) return pos;
        limit = pos - 1;
    }
    return -1;
}

template <typename T>
zevStatus find(const T* src, int32_t srcLen, const T* needle, int32_t needleLen, int32_t* index, bool reverse) {
    if (ownAnyNull(src, needle, index)) return zevStatusNullPointer;
    if (srcLen < 0 || needleLen < 0) return zevStatusBadLength;
    *index = -1;
    if (srcLen == 0 || needleLen == 0 || srcLen < needleLen) return zevStatusOk;
    *index = reverse ? scanRevNeedle(src, srcLen, needle, needleLen) : scanNeedle(src, srcLen, needle, needleLen);
    return zevStatusOk;
}

template <typename T>
zevStatus findC(const T* src, int32_t srcLen, T c, int32_t* index, bool reverse) {
    if (ownAnyNull(src, index)) return zevStatusNullPointer;
    if (srcLen < 0) return zevStatusBadLength;
    *index = reverse ? scanRevC(src, srcLen, c) : scanC(src, srcLen, c);
    return zevStatusOk;
}

template <typename T>
zevStatus findCAny(const T* src, int32_t srcLen, const T* set, int32_t setLen, int32_t* index, bool reverse) {
    if (ownAnyNull(src, set, index)) return zevStatusNullPointer;
    if (srcLen < 0 || setLen < 0) return zevStatusBadLength;
    *index = -1;
    const SetTest<T> inSet(set, setLen);
    if (reverse) {
        for (int32_t i = srcLen - 1; i >= 0; --i)
            if (inSet(src[i])) { *index = i; break; }
    } else {
        for (int32_t i = 0; i < srcLen; ++i)
            if (inSet(src[i])) { *index = i; break; }
    }
    return zevStatusOk;
}

template <typename T>
int32_t measureZ(const T* s) {
    if constexpr (sizeof(T) == 1) {
        return static_cast<int32_t>(std::strlen(reinterpret_cast<const char*>(s)));
    } else {
        int32_t n = 0;
        while (s[n] != 0) ++n;
        return n;
    }
}

template <typename T>
zevStatus findZ(const T* src, const T* needle, int32_t* index) {
    if (ownAnyNull(src, needle)) return zevStatusNullPointer;
    return find(src, measureZ(src), needle, measureZ(needle), index, false);
}

template <typename T>
zevStatus findCZ(const T* src, T c, int32_t* index) {
    if (ownAnyNull(src)) return zevStatusNullPointer;
    return findC(src, measureZ(src), c, index, false);
}

}  // namespace

int32_t ownScanC(const uint8_t* src, int32_t len, uint8_t c) { return scanC(src, len, c); }
int32_t ownScanC(const uint16_t* src, int32_t len, uint16_t c) { return scanC(src, len, c); }

extern "C" {

zevStatus zevsFind_8u(const uint8_t* src, int32_t srcLen, const uint8_t* needle, int32_t needleLen, int32_t* index) {
    return find(src, srcLen, needle, needleLen, index, false);
}
zevStatus zevsFind_16u(const uint16_t* src, int32_t srcLen, const uint16_t* needle, int32_t needleLen, int32_t* index) {
    return find(src, srcLen, needle, needleLen, index, false);
}
zevStatus zevsFindRev_8u(const uint8_t* src, int32_t srcLen, const uint8_t* needle, int32_t needleLen, int32_t* index) {
    return find(src, srcLen, needle, needleLen, index, true);
}
zevStatus zevsFindRev_16u(const uint16_t* src, int32_t srcLen, const uint16_t* needle, int32_t needleLen,
                          int32_t* index) {
    return find(src, srcLen, needle, needleLen, index, true);
}
zevStatus zevsFindC_8u(const uint8_t* src, int32_t srcLen, uint8_t c, int32_t* index) {
    return findC(src, srcLen, c, index, false);
}
zevStatus zevsFindC_16u(const uint16_t* src, int32_t srcLen, uint16_t c, int32_t* index) {
    return findC(src, srcLen, c, index, false);
}
zevStatus zevsFindRevC_8u(const uint8_t* src, int32_t srcLen, uint8_t c, int32_t* index) {
    return findC(src, srcLen, c, index, true);
}
zevStatus zevsFindRevC_16u(const uint16_t* src, int32_t srcLen, uint16_t c, int32_t* index) {
    return findC(src, srcLen, c, index, true);
}
zevStatus zevsFindCAny_8u(const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, int32_t* index) {
    return findCAny(src, srcLen, set, setLen, index, false);
}
zevStatus zevsFindCAny_16u(const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen, int32_t* index) {
    return findCAny(src, srcLen, set, setLen, index, false);
}
zevStatus zevsFindRevCAny_8u(const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, int32_t* index) {
    return findCAny(src, srcLen, set, setLen, index, true);
}
zevStatus zevsFindRevCAny_16u(const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen,
                              int32_t* index) {
    return findCAny(src, srcLen, set, setLen, index, true);
}
zevStatus zevsFind_Z_8u(const uint8_t* src, const uint8_t* needle, int32_t* index) {
    return findZ(src, needle, index);
}
zevStatus zevsFind_Z_16u(const uint16_t* src, const uint16_t* needle, int32_t* index) {
    return findZ(src, needle, index);
}
zevStatus zevsFindC_Z_8u(const uint8_t* src, uint8_t c, int32_t* index) { return findCZ(src, c, index); }
zevStatus zevsFindC_Z_16u(const uint16_t* src, uint16_t c, int32_t* index) { return findCZ(src, c, index); }

}  // extern "C"
