// tests/fuzz/fuzz_strings.cpp - every exported string function, chosen by a
// table, on strings that end at the end of their heap block.
//
// Input: a width byte (8 or 16 bits), an operation byte, an alignment byte,
// two character bytes, then two strings separated by 0xFF (for 16-bit
// elements the bytes are read in pairs). Each string starts 0 to 3 elements
// into an exact block, so both alignments and the block's end are exercised.
//
// Checks: a found position lies inside the input and holds the needle, and no
// earlier (or later, for the backward forms) position does; a comparison is
// antisymmetric and agrees with equality; a case conversion works element by
// element and in place as in copy; edits give what the obvious vector
// operations give; a trim never grows the string and keeps a substring; the
// hashes follow their recurrences and agree across widths.
#include "fuzz_input.h"

namespace {

struct W8 {
    using T = uint8_t;
    static constexpr auto Find = zevsFind_8u;
    static constexpr auto FindRev = zevsFindRev_8u;
    static constexpr auto FindC = zevsFindC_8u;
    static constexpr auto FindRevC = zevsFindRevC_8u;
    static constexpr auto FindCAny = zevsFindCAny_8u;
    static constexpr auto FindRevCAny = zevsFindRevCAny_8u;
    static constexpr auto FindZ = zevsFind_Z_8u;
    static constexpr auto FindCZ = zevsFindC_Z_8u;
    static constexpr auto Compare = zevsCompare_8u;
    static constexpr auto CompareLatin = zevsCompareIgnoreCaseLatin_8u;
    static constexpr auto Equal = zevsEqual_8u;
    static constexpr auto Lower = zevsLowercaseLatin_8u;
    static constexpr auto Upper = zevsUppercaseLatin_8u;
    static constexpr auto LowerI = zevsLowercaseLatin_8u_I;
    static constexpr auto UpperI = zevsUppercaseLatin_8u_I;
    static constexpr auto Insert = zevsInsert_8u;
    static constexpr auto InsertI = zevsInsert_8u_I;
    static constexpr auto Remove = zevsRemove_8u;
    static constexpr auto RemoveI = zevsRemove_8u_I;
    static constexpr auto Concat = zevsConcat_8u;
    static constexpr auto ConcatL = zevsConcat_8u_D2L;
    static constexpr auto ConcatCL = zevsConcatC_8u_D2L;
    static constexpr auto Split = zevsSplitC_8u_D2L;
    static constexpr auto ReplaceC = zevsReplaceC_8u;
    static constexpr auto TrimC = zevsTrimC_8u;
    static constexpr auto TrimCI = zevsTrimC_8u_I;
    static constexpr auto TrimAny = zevsTrimCAny_8u;
    static constexpr auto TrimStart = zevsTrimStartCAny_8u;
    static constexpr auto TrimEnd = zevsTrimEndCAny_8u;
    static constexpr auto Hash = zevsHash_8u32u;
    static constexpr auto HashSJ2 = zevsHashSJ2_8u32u;
    static constexpr auto HashMSCS = zevsHashMSCS_8u32u;
};

struct W16 {
    using T = uint16_t;
    static constexpr auto Find = zevsFind_16u;
    static constexpr auto FindRev = zevsFindRev_16u;
    static constexpr auto FindC = zevsFindC_16u;
    static constexpr auto FindRevC = zevsFindRevC_16u;
    static constexpr auto FindCAny = zevsFindCAny_16u;
    static constexpr auto FindRevCAny = zevsFindRevCAny_16u;
    static constexpr auto FindZ = zevsFind_Z_16u;
    static constexpr auto FindCZ = zevsFindC_Z_16u;
    static constexpr auto Compare = zevsCompare_16u;
    static constexpr auto CompareLatin = zevsCompareIgnoreCaseLatin_16u;
    static constexpr auto Equal = zevsEqual_16u;
    static constexpr auto Lower = zevsLowercaseLatin_16u;
    static constexpr auto Upper = zevsUppercaseLatin_16u;
    static constexpr auto LowerI = zevsLowercaseLatin_16u_I;
    static constexpr auto UpperI = zevsUppercaseLatin_16u_I;
    static constexpr auto Insert = zevsInsert_16u;
    static constexpr auto InsertI = zevsInsert_16u_I;
    static constexpr auto Remove = zevsRemove_16u;
    static constexpr auto RemoveI = zevsRemove_16u_I;
    static constexpr auto Concat = zevsConcat_16u;
    static constexpr auto ConcatL = zevsConcat_16u_D2L;
    static constexpr auto ConcatCL = zevsConcatC_16u_D2L;
    static constexpr auto Split = zevsSplitC_16u_D2L;
    static constexpr auto ReplaceC = zevsReplaceC_16u;
    static constexpr auto TrimC = zevsTrimC_16u;
    static constexpr auto TrimCI = zevsTrimC_16u_I;
    static constexpr auto TrimAny = zevsTrimCAny_16u;
    static constexpr auto TrimStart = zevsTrimStartCAny_16u;
    static constexpr auto TrimEnd = zevsTrimEndCAny_16u;
    static constexpr auto Hash = zevsHash_16u32u;
    static constexpr auto HashSJ2 = zevsHashSJ2_16u32u;
    static constexpr auto HashMSCS = zevsHashMSCS_16u32u;
};

// A string placed `offset` elements into an exact block, ending at its end.
template <typename T>
struct Placed {
    ExactBuffer<T> block;
    T* data;
    int32_t len;
    Placed(const std::vector<T>& s, size_t offset) : block(s.size() + offset), data(block.data + offset),
                                                      len(static_cast<int32_t>(s.size())) {
        for (size_t i = 0; i < offset; ++i) block.data[i] = T(0x5A);
        if (!s.empty()) std::memcpy(data, s.data(), s.size() * sizeof(T));
    }
};

template <typename T>
std::vector<T> elements(const std::vector<uint8_t>& bytes) {
    std::vector<T> out(bytes.size() / sizeof(T));
    if (!out.empty()) std::memcpy(out.data(), bytes.data(), out.size() * sizeof(T));
    return out;
}

template <typename T>
bool occursAt(const std::vector<T>& s, const std::vector<T>& n, size_t at) {
    return !n.empty() && at + n.size() <= s.size() && std::equal(n.begin(), n.end(), s.begin() + at);
}

template <typename T>
int32_t naiveFind(const std::vector<T>& s, const std::vector<T>& n, bool reverse) {
    int32_t found = -1;
    for (size_t i = 0; i + n.size() <= s.size(); ++i)
        if (occursAt(s, n, i)) {
            found = static_cast<int32_t>(i);
            if (!reverse) break;
        }
    return found;
}

template <typename T>
int32_t naiveFindAny(const std::vector<T>& s, const std::vector<T>& set, bool reverse) {
    int32_t found = -1;
    for (size_t i = 0; i < s.size(); ++i)
        if (std::find(set.begin(), set.end(), s[i]) != set.end()) {
            found = static_cast<int32_t>(i);
            if (!reverse) break;
        }
    return found;
}

template <typename W>
void searches(const std::vector<typename W::T>& a, const std::vector<typename W::T>& b, typename W::T c,
              size_t off) {
    using T = typename W::T;
    const Placed<T> src(a, off), needle(b, (off + 1) & 3);
    int32_t idx = -7;
    FUZZ_CHECK(W::Find(src.data, src.len, needle.data, needle.len, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == naiveFind(a, b, false));
    FUZZ_CHECK(W::FindRev(src.data, src.len, needle.data, needle.len, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == naiveFind(a, b, true));
    FUZZ_CHECK(W::FindCAny(src.data, src.len, needle.data, needle.len, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == naiveFindAny(a, b, false));
    FUZZ_CHECK(W::FindRevCAny(src.data, src.len, needle.data, needle.len, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == naiveFindAny(a, b, true));
    const std::vector<T> one(1, c);
    FUZZ_CHECK(W::FindC(src.data, src.len, c, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == naiveFindAny(a, one, false));
    FUZZ_CHECK(W::FindRevC(src.data, src.len, c, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == naiveFindAny(a, one, true));
    // Zero-terminated forms: the strings end at their first zero element.
    std::vector<T> za(a), zb(b);
    za.push_back(0);
    zb.push_back(0);
    const Placed<T> zsrc(za, off), zneedle(zb, 0);
    const std::vector<T> ha(za.begin(), std::find(za.begin(), za.end(), T(0)));
    const std::vector<T> hb(zb.begin(), std::find(zb.begin(), zb.end(), T(0)));
    FUZZ_CHECK(W::FindZ(zsrc.data, zneedle.data, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == naiveFind(ha, hb, false));
    FUZZ_CHECK(W::FindCZ(zsrc.data, c, &idx) == zevStatusOk);
    FUZZ_CHECK(idx == (c == 0 ? -1 : naiveFindAny(ha, one, false)));
}

template <typename W>
void comparisons(const std::vector<typename W::T>& a, const std::vector<typename W::T>& b, size_t off) {
    using T = typename W::T;
    const size_t n = std::min(a.size(), b.size());
    const Placed<T> x(std::vector<T>(a.begin(), a.begin() + n), off);
    const Placed<T> y(std::vector<T>(b.begin(), b.begin() + n), (off * 3) & 3);
    const int32_t len = static_cast<int32_t>(n);
    int32_t ab = 0, ba = 0, eq = -1;
    FUZZ_CHECK(W::Compare(x.data, y.data, len, &ab) == zevStatusOk);
    FUZZ_CHECK(W::Compare(y.data, x.data, len, &ba) == zevStatusOk);
    FUZZ_CHECK(ab == -ba);
    int32_t expect = 0;
    for (size_t i = 0; i < n && expect == 0; ++i) expect = int32_t(a[i]) - int32_t(b[i]);
    FUZZ_CHECK(ab == expect);
    FUZZ_CHECK(W::Equal(x.data, y.data, len, &eq) == zevStatusOk);
    FUZZ_CHECK(eq == (ab == 0 ? 1 : 0));
    FUZZ_CHECK(W::CompareLatin(x.data, y.data, len, &ab) == zevStatusOk);
    FUZZ_CHECK(W::CompareLatin(y.data, x.data, len, &ba) == zevStatusOk);
    FUZZ_CHECK(ab == -ba);
    if constexpr (sizeof(T) == 2) {
        FUZZ_CHECK(zevsCompareIgnoreCase_16u(x.data, y.data, len, &ab) == zevStatusOk);
        FUZZ_CHECK(zevsCompareIgnoreCase_16u(y.data, x.data, len, &ba) == zevStatusOk);
        FUZZ_CHECK(ab == -ba);
        // A string compares equal, case ignored, with its own lowercase form.
        ExactBuffer<uint16_t> lower(n);
        FUZZ_CHECK(zevsLowercase_16u(x.data, lower.data, len) == zevStatusOk);
        FUZZ_CHECK(zevsCompareIgnoreCase_16u(x.data, lower.data, len, &ab) == zevStatusOk);
        // Only where lowering is idempotent; the table has codes that lower twice.
        ExactBuffer<uint16_t> twice(n);
        FUZZ_CHECK(zevsLowercase_16u(lower.data, twice.data, len) == zevStatusOk);
        if (n == 0 || std::memcmp(lower.data, twice.data, n * 2) == 0) FUZZ_CHECK(ab == 0);
    }
}

template <typename T, typename F, typename FI>
void caseForm(const std::vector<T>& a, size_t off, F copying, FI inPlace, bool latin, bool lowerDir) {
    const Placed<T> src(a, off);
    ExactBuffer<T> dst(a.size());
    FUZZ_CHECK(copying(src.data, dst.data, src.len) == zevStatusOk);
    Placed<T> inplace(a, off);
    FUZZ_CHECK(inPlace(inplace.data, inplace.len) == zevStatusOk);
    for (size_t i = 0; i < a.size(); ++i) {
        FUZZ_CHECK(dst.data[i] == inplace.data[i]);
        // Element by element: the one-element conversion gives the same.
        T single = 0;
        FUZZ_CHECK(copying(&a[i], &single, 1) == zevStatusOk);
        FUZZ_CHECK(single == dst.data[i]);
        if (latin) {
            const T from = lowerDir ? 'A' : 'a';
            const bool letter = a[i] >= from && a[i] <= T(from + 25);
            FUZZ_CHECK(dst.data[i] == (letter ? T(lowerDir ? a[i] + 32 : a[i] - 32) : a[i]));
        } else {
            // The table's deltas are signed 10-bit numbers.
            const int32_t delta = static_cast<int16_t>(static_cast<uint16_t>(dst.data[i] - a[i]));
            FUZZ_CHECK(delta >= -512 && delta <= 511);
        }
    }
}

template <typename W>
void cases(const std::vector<typename W::T>& a, size_t off) {
    caseForm(a, off, W::Lower, W::LowerI, true, true);
    caseForm(a, off, W::Upper, W::UpperI, true, false);
    if constexpr (sizeof(typename W::T) == 2) {
        caseForm(a, off, zevsLowercase_16u, zevsLowercase_16u_I, false, true);
        caseForm(a, off, zevsUppercase_16u, zevsUppercase_16u_I, false, false);
    }
}

template <typename W>
void edits(const std::vector<typename W::T>& a, const std::vector<typename W::T>& b, typename W::T c,
           typename W::T d, uint32_t pick, size_t off) {
    using T = typename W::T;
    const Placed<T> src(a, off), ins(b, 0);
    const int32_t start = static_cast<int32_t>(pick % (a.size() + 1));
    // Insert, copying and in place.
    {
        std::vector<T> expect(a);
        expect.insert(expect.begin() + start, b.begin(), b.end());
        ExactBuffer<T> dst(expect.size());
        FUZZ_CHECK(W::Insert(src.data, src.len, ins.data, ins.len, dst.data, start) == zevStatusOk);
        if (!b.empty()) FUZZ_CHECK(std::equal(expect.begin(), expect.end(), dst.data));
        ExactBuffer<T> buf(expect.size());
        if (!a.empty()) std::memcpy(buf.data, a.data(), a.size() * sizeof(T));
        int32_t len = src.len;
        FUZZ_CHECK(W::InsertI(ins.data, ins.len, buf.data, &len, start) == zevStatusOk);
        FUZZ_CHECK(len == static_cast<int32_t>(expect.size()));
        FUZZ_CHECK(std::equal(expect.begin(), expect.end(), buf.data));
        FUZZ_CHECK(W::Insert(src.data, src.len, ins.data, ins.len, dst.data, src.len + 1) == zevStatusBadLength);
    }
    // Remove, copying and in place.
    {
        const int32_t removeLen = static_cast<int32_t>((pick >> 8) % (a.size() - start + 1));
        std::vector<T> expect(a);
        expect.erase(expect.begin() + start, expect.begin() + start + removeLen);
        ExactBuffer<T> dst(expect.size());
        FUZZ_CHECK(W::Remove(src.data, src.len, dst.data, start, removeLen) == zevStatusOk);
        FUZZ_CHECK(std::equal(expect.begin(), expect.end(), dst.data));
        Placed<T> buf(a, off);
        int32_t len = buf.len;
        FUZZ_CHECK(W::RemoveI(buf.data, &len, start, removeLen) == zevStatusOk);
        FUZZ_CHECK(len == static_cast<int32_t>(expect.size()));
        FUZZ_CHECK(std::equal(expect.begin(), expect.end(), buf.data));
        FUZZ_CHECK(W::Remove(src.data, src.len, dst.data, start, src.len - start + 1) == zevStatusBadLength);
    }
    // Concatenation, plain and of lists with and without a delimiter.
    {
        std::vector<T> expect(a);
        expect.insert(expect.end(), b.begin(), b.end());
        ExactBuffer<T> dst(expect.size());
        FUZZ_CHECK(W::Concat(src.data, src.len, ins.data, ins.len, dst.data) == zevStatusOk);
        FUZZ_CHECK(std::equal(expect.begin(), expect.end(), dst.data));
        const T* strings[3] = {src.data, ins.data, src.data};
        const int32_t lengths[3] = {src.len, ins.len, src.len};
        const int32_t count = 1 + static_cast<int32_t>(pick % 3);
        std::vector<T> plain, delimited;
        for (int32_t i = 0; i < count; ++i) {
            const std::vector<T>& s = (i == 1) ? b : a;
            if (i > 0) delimited.push_back(c);
            plain.insert(plain.end(), s.begin(), s.end());
            delimited.insert(delimited.end(), s.begin(), s.end());
        }
        ExactBuffer<T> p(plain.size()), q(delimited.size());
        FUZZ_CHECK(W::ConcatL(strings, lengths, count, p.data) == zevStatusOk);
        FUZZ_CHECK(std::equal(plain.begin(), plain.end(), p.data));
        FUZZ_CHECK(W::ConcatCL(strings, lengths, count, c, q.data) == zevStatusOk);
        FUZZ_CHECK(std::equal(delimited.begin(), delimited.end(), q.data));
    }
    // Split into slots of random capacities, against a walk over the source.
    {
        const int32_t slots = 1 + static_cast<int32_t>(pick % 7);
        std::vector<ExactBuffer<T>*> buffers;
        std::vector<T*> strings;
        std::vector<int32_t> lengths, caps;
        for (int32_t i = 0; i < slots; ++i) {
            const int32_t cap = static_cast<int32_t>((pick >> (4 + i)) % 9);
            buffers.push_back(new ExactBuffer<T>(static_cast<size_t>(cap)));
            strings.push_back(buffers.back()->data);
            lengths.push_back(cap);
            caps.push_back(cap);
        }
        int32_t count = slots;
        const zevStatus s = W::Split(src.data, src.len, c, strings.data(), lengths.data(), &count);
        zevStatus expectStatus = zevStatusOk;
        size_t p = 0;
        int32_t left = src.len, i = 0;
        while (left >= 1) {
            size_t q = p;
            while (q < a.size() && a[q] != c) ++q;
            const int32_t piece = static_cast<int32_t>(q - p);
            const int32_t kept = std::min(piece, caps[i]);
            if (caps[i] < piece) expectStatus = zevStatusPieceTruncated;
            FUZZ_CHECK(lengths[i] == kept);
            FUZZ_CHECK(std::equal(a.begin() + p, a.begin() + p + kept, strings[i]));
            p = q + 1;
            left -= piece + 1;
            if (++i == slots) {
                if (left >= 1) expectStatus = zevStatusInputLeft;
                break;
            }
        }
        FUZZ_CHECK(s == expectStatus);
        FUZZ_CHECK(count == i);
        for (ExactBuffer<T>* e : buffers) delete e;
    }
    // Character replacement, to another block and in place.
    {
        ExactBuffer<T> dst(a.size());
        FUZZ_CHECK(W::ReplaceC(src.data, dst.data, src.len, c, d) == zevStatusOk);
        Placed<T> same(a, off);
        FUZZ_CHECK(W::ReplaceC(same.data, same.data, same.len, c, d) == zevStatusOk);
        for (size_t k = 0; k < a.size(); ++k) {
            FUZZ_CHECK(dst.data[k] == (a[k] == c ? d : a[k]));
            FUZZ_CHECK(same.data[k] == dst.data[k]);
        }
    }
}

template <typename T>
void checkTrim(const std::vector<T>& a, const std::vector<T>& set, bool front, bool back, const T* out,
               int32_t outLen) {
    auto trimmable = [&](T e) { return std::find(set.begin(), set.end(), e) != set.end(); };
    size_t lo = 0, hi = a.size();
    if (front)
        while (lo < hi && trimmable(a[lo])) ++lo;
    if (back)
        while (hi > lo && trimmable(a[hi - 1])) --hi;
    FUZZ_CHECK(outLen >= 0 && outLen <= static_cast<int32_t>(a.size()));   // never grows
    FUZZ_CHECK(outLen == static_cast<int32_t>(hi - lo));
    FUZZ_CHECK(std::equal(a.begin() + lo, a.begin() + hi, out));
}

template <typename W>
void trims(const std::vector<typename W::T>& a, const std::vector<typename W::T>& set, typename W::T c,
           size_t off) {
    using T = typename W::T;
    const Placed<T> src(a, off), s(set, 0);
    ExactBuffer<T> dst(a.size());
    int32_t len = -1;
    FUZZ_CHECK(W::TrimC(src.data, src.len, c, dst.data, &len) == zevStatusOk);
    checkTrim(a, std::vector<T>(1, c), true, true, dst.data, len);
    Placed<T> inplace(a, off);
    len = inplace.len;
    FUZZ_CHECK(W::TrimCI(inplace.data, &len, c) == zevStatusOk);
    checkTrim(a, std::vector<T>(1, c), true, true, inplace.data, len);
    FUZZ_CHECK(W::TrimAny(src.data, src.len, s.data, s.len, dst.data, &len) == zevStatusOk);
    checkTrim(a, set, true, true, dst.data, len);
    FUZZ_CHECK(W::TrimStart(src.data, src.len, s.data, s.len, dst.data, &len) == zevStatusOk);
    checkTrim(a, set, true, false, dst.data, len);
    FUZZ_CHECK(W::TrimEnd(src.data, src.len, s.data, s.len, dst.data, &len) == zevStatusOk);
    checkTrim(a, set, false, true, dst.data, len);
}

template <typename W>
void hashes(const std::vector<typename W::T>& a, size_t off) {
    const Placed<typename W::T> src(a, off);
    uint32_t h = 1, shift = 0, sj2 = 0, mscs = 5381;
    bool stopped = false;
    for (auto e : a) {
        shift = (shift * 2) ^ e;
        sj2 = sj2 * 31 + e;
        if (e == 0) stopped = true;
        if (!stopped) mscs = (mscs * 33) ^ e;
    }
    FUZZ_CHECK(W::Hash(src.data, src.len, &h) == zevStatusOk && h == shift);
    FUZZ_CHECK(W::HashSJ2(src.data, src.len, &h) == zevStatusOk && h == sj2);
    FUZZ_CHECK(W::HashMSCS(src.data, src.len, &h) == zevStatusOk && h == mscs);
    if constexpr (sizeof(typename W::T) == 1) {
        // The same values as 16-bit elements hash alike.
        std::vector<uint16_t> wide(a.begin(), a.end());
        wide.push_back(0);   // never a null pointer, also for an empty string
        uint32_t w = 0;
        FUZZ_CHECK(zevsHash_16u32u(wide.data(), src.len, &w) == zevStatusOk && w == shift);
        FUZZ_CHECK(zevsHashSJ2_16u32u(wide.data(), src.len, &w) == zevStatusOk && w == sj2);
        FUZZ_CHECK(zevsHashMSCS_16u32u(wide.data(), src.len, &w) == zevStatusOk && w == mscs);
    }
}

template <typename W>
void runAll(FuzzInput& in, uint8_t op) {
    using T = typename W::T;
    const size_t off = in.byte() & 3;
    const uint8_t c0 = in.byte(), c1 = in.byte();
    const uint32_t pick = (uint32_t(in.byte()) << 16) | (uint32_t(in.byte()) << 8) | in.byte();
    const std::vector<T> a = elements<T>(in.next(false));
    const std::vector<T> b = elements<T>(in.next(false));
    // Characters: mostly taken from the strings themselves, so that they occur.
    const T c = !a.empty() && (c0 & 0x80) ? a[c0 % a.size()] : T(c0 | (sizeof(T) == 2 ? (c1 << 8) : 0));
    const T d = T(c1);
    switch (op % 6) {
        case 0: searches<W>(a, b, c, off); break;
        case 1: comparisons<W>(a, b, off); break;
        case 2: cases<W>(a, off); break;
        case 3: edits<W>(a, b, c, d, pick, off); break;
        case 4: trims<W>(a, b, c, off); break;
        default: hashes<W>(a, off); break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    const uint8_t width = in.byte();
    const uint8_t op = in.byte();
    if (width & 1) runAll<W16>(in, op);
    else runAll<W8>(in, op);
    return 0;
}
