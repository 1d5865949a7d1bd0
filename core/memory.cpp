// core/memory.cpp - memory wrappers and the copy, move and zero primitives.
#include <cstring>

#include <atomic>

#include "core/core.h"

void* ownMalloc(int32_t size) {
    if (size < 1) return nullptr;
    return zevMalloc(size);
}

void ownFree(void* block) { zevFree(block); }

namespace {
std::atomic<int32_t> bulkCopies{0};

// Copies whole 32-bit words without assuming source alignment.
inline void copyWord(const uint8_t* s, uint8_t* d) {
    uint32_t w;
    std::memcpy(&w, s, 4);
    std::memcpy(d, &w, 4);
}
}  // namespace

int32_t ownBulkCopyCount(void) { return bulkCopies.load(std::memory_order_relaxed); }

void ownBulkCopy(const void* src, void* dst, size_t bytes) {
    bulkCopies.fetch_add(1, std::memory_order_relaxed);
    std::memcpy(dst, src, bytes);
}

void* ownCopyBytes(const void* src, void* dst, int32_t count) {
    if (count < 1) return dst;
    const uint8_t* s = static_cast<const uint8_t*>(src);
    uint8_t* d = static_cast<uint8_t*>(dst);
    // Head: bytes up to a 4-byte boundary of the destination.
    while ((reinterpret_cast<uintptr_t>(d) & 3) != 0) {
        *d++ = *s++;
        if (--count == 0) return dst;
    }
    // Body: 32-byte blocks of eight words, ascending.
    for (int32_t blocks = count >> 5; blocks > 0; --blocks) {
        for (int i = 0; i < 32; i += 4) copyWord(s + i, d + i);
        s += 32;
        d += 32;
    }
    // Tail: 0 to 31 bytes.
    for (int32_t tail = count & 31; tail > 0; --tail) *d++ = *s++;
    return dst;
}

void* ownZeroBytes(void* dst, int32_t count) {
    if (count < 1) return dst;
    uint8_t* d = static_cast<uint8_t*>(dst);
    while ((reinterpret_cast<uintptr_t>(d) & 3) != 0) {
        *d++ = 0;
        if (--count == 0) return dst;
    }
    const uint32_t zero = 0;
    for (int32_t blocks = count >> 5; blocks > 0; --blocks) {
        for (int i = 0; i < 32; i += 4) std::memcpy(d + i, &zero, 4);
        d += 32;
    }
    for (int32_t tail = count & 31; tail > 0; --tail) *d++ = 0;
    return dst;
}

namespace {
// Overlap-safe move of n bytes. Downward moves of disjoint ranges above the
// threshold use the bulk copy; every other case is a byte loop in the
// direction that never overwrites unread source.
void moveBytes(const uint8_t* s, uint8_t* d, size_t n) {
    if (s == d) return;
    if (s > d) {
        if (n > static_cast<size_t>(BulkCopyThreshold) && static_cast<size_t>(s - d) > n) {
            ownBulkCopy(s, d, n);
            return;
        }
        for (size_t i = 0; i < n; ++i) d[i] = s[i];
    } else {
        for (size_t i = n; i > 0; --i) d[i - 1] = s[i - 1];
    }
}
}  // namespace

zevStatus ownCopy_8u(const uint8_t* src, uint8_t* dst, int32_t count) {
    if (src == nullptr || dst == nullptr) return zevStatusNullPointer;
    if (count < 1) return zevStatusBadSize;
    ownCopyBytes(src, dst, count);
    return zevStatusOk;
}

zevStatus ownCopy_16u(const uint16_t* src, uint16_t* dst, int32_t count) {
    if (src == nullptr || dst == nullptr) return zevStatusNullPointer;
    if (count < 1) return zevStatusBadSize;
    // The byte count of a long 16-bit string passes INT32_MAX; copy such a
    // string in pieces of 2^29 elements.
    constexpr int32_t piece = 1 << 29;
    while (count > piece) {
        ownCopyBytes(src, dst, piece * 2);
        src += piece;
        dst += piece;
        count -= piece;
    }
    ownCopyBytes(src, dst, count * 2);
    return zevStatusOk;
}

zevStatus ownMove_8u(const uint8_t* src, uint8_t* dst, int32_t count) {
    if (src == nullptr || dst == nullptr) return zevStatusNullPointer;
    if (count < 1) return zevStatusBadSize;
    moveBytes(src, dst, static_cast<size_t>(count));
    return zevStatusOk;
}

zevStatus ownMove_16u(const uint16_t* src, uint16_t* dst, int32_t count) {
    if (src == nullptr || dst == nullptr) return zevStatusNullPointer;
    if (count < 1) return zevStatusBadSize;
    moveBytes(reinterpret_cast<const uint8_t*>(src), reinterpret_cast<uint8_t*>(dst),
              static_cast<size_t>(count) * 2);
    return zevStatusOk;
}

zevStatus ownZero_8u(uint8_t* dst, int32_t count) {
    if (dst == nullptr) return zevStatusNullPointer;
    if (count < 1) return zevStatusBadSize;
    ownZeroBytes(dst, count);
    return zevStatusOk;
}
