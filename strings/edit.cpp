// strings/edit.cpp - insert, remove, concatenate, split and replace.
//
// The caller sizes every output; only the slots of the split functions carry
// a capacity. Pieces are copied with ownCopy/ownMove, whose "count below 1"
// status is ignored on purpose: an empty piece simply writes nothing.
// The list forms and the split functions check each entry when they reach
// it, so a bad entry stops them with the earlier pieces already written.
#include <cstdint>

#include "core/core.h"
#include "strings/strings_internal.h"

namespace {

template <typename T>
zevStatus insertCopy(const T* src, int32_t srcLen, const T* insert, int32_t insertLen, T* dst, int32_t start) {
    if (ownAnyNull(src, insert, dst)) return zevStatusNullPointer;
    if (srcLen < 0 || insertLen < 0 || start < 0 || start > srcLen) return zevStatusBadLength;
    // Nothing to splice: dst is left alone, it does not even get src.
    if (insertLen == 0) return zevStatusOk;
    ownCopy(src, dst, start);
    ownMove(src + start, dst + start + insertLen, srcLen - start);
    ownCopy(insert, dst + start, insertLen);
    return zevStatusOk;
}

template <typename T>
zevStatus insertInPlace(const T* insert, int32_t insertLen, T* srcDst, int32_t* srcDstLen, int32_t start) {
    if (ownAnyNull(insert, srcDst, srcDstLen)) return zevStatusNullPointer;
    if (insertLen < 0) return zevStatusBadLength;
    const int32_t len = *srcDstLen;
    if (len < 0 || start < 0 || start > len) return zevStatusBadLength;
    if (insertLen == 0) return zevStatusOk;
    ownMove(srcDst + start, srcDst + start + insertLen, len - start);
    ownCopy(insert, srcDst + start, insertLen);
    *srcDstLen = len + insertLen;
    return zevStatusOk;
}

template <typename T>
zevStatus removeCopy(const T* src, int32_t srcLen, T* dst, int32_t start, int32_t removeLen) {
    if (ownAnyNull(src, dst)) return zevStatusNullPointer;
    if (removeLen < 0 || start < 0 || static_cast<int64_t>(srcLen) < static_cast<int64_t>(start) + removeLen)
        return zevStatusBadLength;
    ownCopy(src, dst, start);
    const int32_t behind = srcLen - start - removeLen;
    if (behind > 0) ownCopy(src + start + removeLen, dst + start, behind);
    return zevStatusOk;
}

template <typename T>
zevStatus removeInPlace(T* srcDst, int32_t* srcDstLen, int32_t start, int32_t removeLen) {
    if (ownAnyNull(srcDst, srcDstLen)) return zevStatusNullPointer;
    if (removeLen < 0) return zevStatusBadLength;
    const int32_t len = *srcDstLen;
    if (len < 0 || start < 0 || static_cast<int64_t>(start) + removeLen > len) return zevStatusBadLength;
    const int32_t behind = len - start - removeLen;
    if (behind > 0) ownMove(srcDst + start + removeLen, srcDst + start, behind);
    *srcDstLen = len - removeLen;
    return zevStatusOk;
}

template <typename T>
zevStatus concat(const T* src1, int32_t len1, const T* src2, int32_t len2, T* dst) {
    if (ownAnyNull(src1, src2, dst)) return zevStatusNullPointer;
    if (len1 < 0 || len2 < 0) return zevStatusBadLength;
    ownCopy(src1, dst, len1);
    ownCopy(src2, dst + len1, len2);
    return zevStatusOk;
}

// Joins the listed strings, with one delimiter between neighbours when
// delimiter is given (count - 1 delimiters, empty entries included).
template <typename T>
zevStatus concatList(const T* const strings[], const int32_t lengths[], int32_t count, const T* delimiter, T* dst) {
    if (ownAnyNull(strings, lengths, dst)) return zevStatusNullPointer;
    if (count < 1) return zevStatusBadSize;
    for (int32_t i = 0; i < count; ++i) {
        if (strings[i] == nullptr) return zevStatusNullPointer;
        if (lengths[i] < 0) return zevStatusBadLength;
        if (delimiter != nullptr && i > 0) *dst++ = *delimiter;
        ownCopy(strings[i], dst, lengths[i]);
        dst += lengths[i];
    }
    return zevStatusOk;
}

template <typename T>
zevStatus splitC(const T* src, int32_t srcLen, T delimiter, T* strings[], int32_t lengths[], int32_t* count) {
    if (ownAnyNull(src, strings, lengths, count)) return zevStatusNullPointer;
    if (srcLen < 0) return zevStatusBadLength;
    const int32_t slots = *count;
    if (slots < 1) return zevStatusBadSize;
    zevStatus warning = zevStatusOk;
    int32_t pos = 0;  // read position, as an offset so that it may pass the end
    int32_t left = srcLen;
    int32_t i = 0;
    do {
        if (left < 1) break;
        if (strings[i] == nullptr) return zevStatusNullPointer;
        if (lengths[i] < 0) return zevStatusBadLength;
        const int32_t found = ownScanC(src + pos, left, delimiter);
        const int32_t pieceLen = found < 0 ? left : found;
        if (lengths[i] >= pieceLen)
            lengths[i] = pieceLen;
        else
            warning = zevStatusPieceTruncated;  // the slot keeps its capacity as length
        ownCopy(src + pos, strings[i], lengths[i]);
        // The whole piece and its delimiter are consumed, cut or not; behind a
        // last piece without delimiter left becomes -1.
        pos += pieceLen + 1;
        left -= pieceLen + 1;
        ++i;
    } while (i < slots);
    if (i == slots && left >= 1) warning = zevStatusInputLeft;
    *count = i;
    return warning;
}

template <typename T>
zevStatus replaceC(const T* src, T* dst, int32_t len, T oldC, T newC) {
    if (ownAnyNull(src, dst)) return zevStatusNullPointer;
    if (len < 0) return zevStatusBadLength;
    for (int32_t i = 0; i < len; ++i) dst[i] = src[i] == oldC ? newC : src[i];
    return zevStatusOk;
}

}  // namespace

extern "C" {

zevStatus zevsInsert_8u(const uint8_t* src, int32_t srcLen, const uint8_t* insert, int32_t insertLen, uint8_t* dst,
                        int32_t start) {
    return insertCopy(src, srcLen, insert, insertLen, dst, start);
}
zevStatus zevsInsert_16u(const uint16_t* src, int32_t srcLen, const uint16_t* insert, int32_t insertLen,
                         uint16_t* dst, int32_t start) {
    return insertCopy(src, srcLen, insert, insertLen, dst, start);
}
zevStatus zevsInsert_8u_I(const uint8_t* insert, int32_t insertLen, uint8_t* srcDst, int32_t* srcDstLen,
                          int32_t start) {
    return insertInPlace(insert, insertLen, srcDst, srcDstLen, start);
}
zevStatus zevsInsert_16u_I(const uint16_t* insert, int32_t insertLen, uint16_t* srcDst, int32_t* srcDstLen,
                           int32_t start) {
    return insertInPlace(insert, insertLen, srcDst, srcDstLen, start);
}
zevStatus zevsRemove_8u(const uint8_t* src, int32_t srcLen, uint8_t* dst, int32_t start, int32_t removeLen) {
    return removeCopy(src, srcLen, dst, start, removeLen);
}
zevStatus zevsRemove_16u(const uint16_t* src, int32_t srcLen, uint16_t* dst, int32_t start, int32_t removeLen) {
    return removeCopy(src, srcLen, dst, start, removeLen);
}
zevStatus zevsRemove_8u_I(uint8_t* srcDst, int32_t* srcDstLen, int32_t start, int32_t removeLen) {
    return removeInPlace(srcDst, srcDstLen, start, removeLen);
}
zevStatus zevsRemove_16u_I(uint16_t* srcDst, int32_t* srcDstLen, int32_t start, int32_t removeLen) {
    return removeInPlace(srcDst, srcDstLen, start, removeLen);
}
zevStatus zevsConcat_8u(const uint8_t* src1, int32_t len1, const uint8_t* src2, int32_t len2, uint8_t* dst) {
    return concat(src1, len1, src2, len2, dst);
}
zevStatus zevsConcat_16u(const uint16_t* src1, int32_t len1, const uint16_t* src2, int32_t len2, uint16_t* dst) {
    return concat(src1, len1, src2, len2, dst);
}
zevStatus zevsConcat_8u_D2L(const uint8_t* const strings[], const int32_t lengths[], int32_t count, uint8_t* dst) {
    return concatList<uint8_t>(strings, lengths, count, nullptr, dst);
}
zevStatus zevsConcat_16u_D2L(const uint16_t* const strings[], const int32_t lengths[], int32_t count,
                             uint16_t* dst) {
    return concatList<uint16_t>(strings, lengths, count, nullptr, dst);
}
zevStatus zevsConcatC_8u_D2L(const uint8_t* const strings[], const int32_t lengths[], int32_t count,
                             uint8_t delimiter, uint8_t* dst) {
    return concatList(strings, lengths, count, &delimiter, dst);
}
zevStatus zevsConcatC_16u_D2L(const uint16_t* const strings[], const int32_t lengths[], int32_t count,
                              uint16_t delimiter, uint16_t* dst) {
    return concatList(strings, lengths, count, &delimiter, dst);
}
zevStatus zevsSplitC_8u_D2L(const uint8_t* src, int32_t srcLen, uint8_t delimiter, uint8_t* strings[],
                            int32_t lengths[], int32_t* count) {
    return splitC(src, srcLen, delimiter, strings, lengths, count);
}
zevStatus zevsSplitC_16u_D2L(const uint16_t* src, int32_t srcLen, uint16_t delimiter, uint16_t* strings[],
                             int32_t lengths[], int32_t* count) {
    return splitC(src, srcLen, delimiter, strings, lengths, count);
}
zevStatus zevsReplaceC_8u(const uint8_t* src, uint8_t* dst, int32_t len, uint8_t oldC, uint8_t newC) {
    return replaceC(src, dst, len, oldC, newC);
}
zevStatus zevsReplaceC_16u(const uint16_t* src, uint16_t* dst, int32_t len, uint16_t oldC, uint16_t newC) {
    return replaceC(src, dst, len, oldC, newC);
}

}  // extern "C"
