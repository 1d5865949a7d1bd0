// strings/hash.cpp - three 32-bit string hashes over 8-bit and 16-bit
// elements. Every bit of each value is fixed by its recurrence (32-bit
// wrapping arithmetic, elements entering at their unsigned value), so callers
// may store the values.
#include "core/core.h"
#include "strings/strings_internal.h"

namespace {

// h = (h * 2) ^ e, from 0, over all len elements.
struct ShiftXor {
    static constexpr uint32_t start = 0;
    static constexpr bool stopAtZero = false;
    static uint32_t step(uint32_t h, uint32_t e) { return (h << 1) ^ e; }
};
// h = h * 31 + e, from 0, over all len elements.
struct Times31 {
    static constexpr uint32_t start = 0;
    static constexpr bool stopAtZero = false;
    static uint32_t step(uint32_t h, uint32_t e) { return h * 31u + e; }
};
// h = (h * 33) ^ e, from 5381, ending early at a zero element.
struct Times33Xor {
    static constexpr uint32_t start = 5381;
    static constexpr bool stopAtZero = true;
    static uint32_t step(uint32_t h, uint32_t e) { return (h * 33u) ^ e; }
};

template <typename Rule, typename T>
zevStatus hashWith(const T* src, int32_t len, uint32_t* out) {
    if (ownAnyNull(src, out)) return zevStatusNullPointer;
    if (len < 0) return zevStatusBadLength;
    uint32_t h = Rule::start;
    for (int32_t i = 0; i < len; ++i) {
        if (Rule::stopAtZero && src[i] == 0) break;
        h = Rule::step(h, src[i]);
    }
    *out = h;
    return zevStatusOk;
}

}  // namespace

extern "C" {

zevStatus zevsHash_8u32u(const uint8_t* src, int32_t len, uint32_t* hash) {
    return hashWith<ShiftXor>(src, len, hash);
}
zevStatus zevsHash_16u32u(const uint16_t* src, int32_t len, uint32_t* hash) {
    return hashWith<ShiftXor>(src, len, hash);
}
zevStatus zevsHashSJ2_8u32u(const uint8_t* src, int32_t len, uint32_t* hash) {
    return hashWith<Times31>(src, len, hash);
}
zevStatus zevsHashSJ2_16u32u(const uint16_t* src, int32_t len, uint32_t* hash) {
    return hashWith<Times31>(src, len, hash);
}
zevStatus zevsHashMSCS_8u32u(const uint8_t* src, int32_t len, uint32_t* hash) {
    return hashWith<Times33Xor>(src, len, hash);
}
zevStatus zevsHashMSCS_16u32u(const uint16_t* src, int32_t len, uint32_t* hash) {
    return hashWith<Times33Xor>(src, len, hash);
}

}  // extern "C"
