// strings/trim.cpp - removal of leading and trailing elements: one character
// at both ends (copying and in place), or any character of a set at both
// ends, at the start or at the end.
//
// The single-character forms scan 32-bit words against the character
// repeated (the byte four times, the 16-bit unit twice) from 16 elements on,
// so that a long run of it costs one compare per 4 bytes. The in-place form
// moves the result down with the platform's bulk copy only when the ranges
// are large and far enough apart not to overlap; otherwise plain ascending
// loops, which are safe for a move that only goes down.
#include <cstdint>
#include <cstring>

#include "core/core.h"
#include "strings/strings_internal.h"

namespace {

// Below this many elements the scans and the in-place move run plain loops.
constexpr int32_t WordScanMin = 16;
// More words than this, far enough apart, go by the bulk copy.
constexpr int32_t BulkWordsMin = 800;

template <typename T>
constexpr uint32_t repeated(T c) {
    return sizeof(T) == 1 ? 0x01010101u * c : 0x00010001u * c;
}

inline bool aligned4(const void* p) { return (reinterpret_cast<uintptr_t>(p) & 3) == 0; }

inline uint32_t loadWord(const void* p) {
    uint32_t w;
    std::memcpy(&w, p, 4);
    return w;
}

// Index of the first element other than c in s[0, len), or len if none.
template <typename T>
int32_t firstNot(const T* s, int32_t len, T c) {
    int32_t i = 0;
    if (len >= WordScanMin) {
        constexpr int32_t per = 4 / sizeof(T);
        const uint32_t pattern = repeated(c);
        for (; i < len && !aligned4(s + i); ++i)
            if (s[i] != c) return i;
        for (; len - i >= per && loadWord(s + i) == pattern; i += per) {
        }
    }
    for (; i < len; ++i)
        if (s[i] != c) return i;
    return len;
}

// Index of the last element other than c in s[from, len); s[from] is one.
template <typename T>
int32_t lastNot(const T* s, int32_t from, int32_t len, T c) {
    if (len - from < WordScanMin) {
        int32_t i = len - 1;
        while (s[i] == c) --i;
        return i;
    }
    constexpr int32_t per = 4 / sizeof(T);
    const uint32_t pattern = repeated(c);
    // Head up to the first 4-byte boundary, whole words, tail.
    int32_t wordsFrom = from;
    while (wordsFrom < len && !aligned4(s + wordsFrom)) ++wordsFrom;
    const int32_t wordsEnd = wordsFrom + (len - wordsFrom) / per * per;
    for (int32_t i = len - 1; i >= wordsEnd; --i)
        if (s[i] != c) return i;
    int32_t below = wordsFrom;  // elements below this index are still unscanned
    for (int32_t w = wordsEnd - per; w >= wordsFrom; w -= per) {
        if (loadWord(s + w) != pattern) {
            below = w + per;
            break;
        }
    }
    int32_t i = below - 1;
    while (s[i] == c) --i;
    return i;
}

// Moves count elements from src down to dst (dst below src, may overlap).
template <typename T>
void moveDown(const T* src, T* dst, int32_t count) {
    if (src == dst || count < 1) return;
    const size_t distance = static_cast<size_t>(reinterpret_cast<const uint8_t*>(src) -
                                                reinterpret_cast<const uint8_t*>(dst));
    const size_t bytes = static_cast<size_t>(count) * sizeof(T);
    if (count >= WordScanMin && ((reinterpret_cast<uintptr_t>(src) ^ reinterpret_cast<uintptr_t>(dst)) & 3) == 0) {
        constexpr int32_t per = 4 / sizeof(T);
        int32_t i = 0;
        for (; i < count && !aligned4(src + i); ++i) dst[i] = src[i];
        const int32_t words = (count - i) / per;
        const size_t wordBytes = static_cast<size_t>(words) * 4;
        if (words > BulkWordsMin && distance > wordBytes) {
            ownBulkCopy(src + i, dst + i, wordBytes);
        } else {
            for (int32_t w = 0; w < words; ++w) {
                const uint32_t v = loadWord(src + i + w * per);
                std::memcpy(dst + i + w * per, &v, 4);
            }
        }
        for (i += words * per; i < count; ++i) dst[i] = src[i];
        return;
    }
    if (bytes > static_cast<size_t>(BulkCopyThreshold) && distance > bytes) {
        ownBulkCopy(src, dst, bytes);
        return;
    }
    for (int32_t i = 0; i < count; ++i) dst[i] = src[i];
}

// The stretch left when c is trimmed at both ends: its start in *first and
// its length as the result (0 when every element is c).
template <typename T>
int32_t trimmedStretch(const T* s, int32_t len, T c, int32_t* first) {
    *first = firstNot(s, len, c);
    if (*first == len) return 0;
    return lastNot(s, *first, len, c) - *first + 1;
}

template <typename T>
zevStatus trimC(const T* src, int32_t srcLen, T c, T* dst, int32_t* dstLen) {
    if (ownAnyNull(src, dst, dstLen)) return zevStatusNullPointer;
    if (srcLen < 0) return zevStatusBadLength;
    int32_t first;
    const int32_t n = trimmedStretch(src, srcLen, c, &first);
    *dstLen = n;
    ownCopy(src + first, dst, n);
    return zevStatusOk;
}

template <typename T>
zevStatus trimCInPlace(T* srcDst, int32_t* srcDstLen, T c) {
    if (ownAnyNull(srcDst, srcDstLen)) return zevStatusNullPointer;
    const int32_t len = *srcDstLen;
    if (len < 0) return zevStatusBadLength;
    int32_t first;
    const int32_t n = trimmedStretch(srcDst, len, c, &first);
    *srcDstLen = n;
    moveDown(srcDst + first, srcDst, n);
    return zevStatusOk;
}

enum TrimEnds { TrimStart = 1, TrimEnd = 2, TrimBoth = 3 };

template <typename T>
zevStatus trimCAny(const T* src, int32_t srcLen, const T* set, int32_t setLen, T* dst, int32_t* dstLen,
                   int ends) {
    if (ownAnyNull(src, dst, set, dstLen)) return zevStatusNullPointer;
    if (srcLen < 0 || setLen < 0) return zevStatusBadLength;
    const SetTest<T> inSet(set, setLen);
    int32_t first = 0, end = srcLen;
    if (ends & TrimStart)
        while (first < srcLen && inSet(src[first])) ++first;
    if (ends & TrimEnd)
        while (end > first && inSet(src[end - 1])) --end;
    *dstLen = end - first;
    ownCopy(src + first, dst, end - first);
    return zevStatusOk;
}

}  // namespace

extern "C" {

zevStatus zevsTrimC_8u(const uint8_t* src, int32_t srcLen, uint8_t c, uint8_t* dst, int32_t* dstLen) {
    return trimC(src, srcLen, c, dst, dstLen);
}
zevStatus zevsTrimC_16u(const uint16_t* src, int32_t srcLen, uint16_t c, uint16_t* dst, int32_t* dstLen) {
    return trimC(src, srcLen, c, dst, dstLen);
}
zevStatus zevsTrimC_8u_I(uint8_t* srcDst, int32_t* srcDstLen, uint8_t c) { return trimCInPlace(srcDst, srcDstLen, c); }
zevStatus zevsTrimC_16u_I(uint16_t* srcDst, int32_t* srcDstLen, uint16_t c) {
    return trimCInPlace(srcDst, srcDstLen, c);
}
zevStatus zevsTrimCAny_8u(const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, uint8_t* dst,
                          int32_t* dstLen) {
    return trimCAny(src, srcLen, set, setLen, dst, dstLen, TrimBoth);
}
zevStatus zevsTrimCAny_16u(const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen, uint16_t* dst,
                           int32_t* dstLen) {
    return trimCAny(src, srcLen, set, setLen, dst, dstLen, TrimBoth);
}
zevStatus zevsTrimStartCAny_8u(const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen,
                               uint8_t* dst, int32_t* dstLen) {
    return trimCAny(src, srcLen, set, setLen, dst, dstLen, TrimStart);
}
zevStatus zevsTrimStartCAny_16u(const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen,
                                uint16_t* dst, int32_t* dstLen) {
    return trimCAny(src, srcLen, set, setLen, dst, dstLen, TrimStart);
}
zevStatus zevsTrimEndCAny_8u(const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, uint8_t* dst,
                             int32_t* dstLen) {
    return trimCAny(src, srcLen, set, setLen, dst, dstLen, TrimEnd);
}
zevStatus zevsTrimEndCAny_16u(const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen,
                              uint16_t* dst, int32_t* dstLen) {
    return trimCAny(src, srcLen, set, setLen, dst, dstLen, TrimEnd);
}

}  // extern "C"
