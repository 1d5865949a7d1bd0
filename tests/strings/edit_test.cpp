// Editing: insert and remove (copying and in place) against a std::vector
// model at every position, the list forms and their stop at a bad entry,
// and the split with its two warnings.
#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "width_api.h"

namespace {


template <typename T>
std::vector<T> seq(int32_t n, int32_t from = 1) {
    std::vector<T> v(n);
    std::iota(v.begin(), v.end(), static_cast<T>(from));
    return v;
}

// A valid pointer even for an empty vector: null would fail the pointer checks.
template <typename T>
T* ptr(std::vector<T>& v) {
    static T none[1];
    return v.empty() ? none : v.data();
}
template <typename T>
const T* ptr(const std::vector<T>& v) {
    return ptr(const_cast<std::vector<T>&>(v));
}

template <typename T>
class EditTyped : public ::testing::Test {};
TYPED_TEST_SUITE(EditTyped, Widths);

TYPED_TEST(EditTyped, InsertAndRemoveAtEveryPosition) {
    using T = TypeParam;
    using A = Api<T>;
    // 1700 16-bit elements pass the 3200-byte bulk threshold of the moves.
    for (int32_t len : {0, 1, 5, 17, 1700}) {
        const std::vector<T> src = seq<T>(len);
        const std::vector<T> ins = seq<T>(3, 200);
        for (int32_t start = 0; start <= len; start += (len > 20 ? 97 : 1)) {
            std::vector<T> model = src;
            model.insert(model.begin() + start, ins.begin(), ins.end());
            std::vector<T> dst(len + 3, 0);
            ASSERT_EQ(A::insert(ptr(src), len, ins.data(), 3, ptr(dst), start), zevStatusOk);
            EXPECT_EQ(dst, model);
            std::vector<T> buf = src;
            buf.resize(len + 3);
            int32_t n = len;
            ASSERT_EQ(A::insertI(ins.data(), 3, buf.data(), &n, start), zevStatusOk);
            EXPECT_EQ(n, len + 3);
            EXPECT_EQ(buf, model);

            for (int32_t cut : {0, 1, 2}) {
                if (start + cut > len) continue;
                std::vector<T> rmodel = src;
                rmodel.erase(rmodel.begin() + start, rmodel.begin() + start + cut);
                std::vector<T> out(len, 0);
                ASSERT_EQ(A::remove(ptr(src), len, ptr(out), start, cut), zevStatusOk);
                out.resize(len - cut);
                EXPECT_EQ(out, rmodel);
                std::vector<T> inPlace = src;
                n = len;
                ASSERT_EQ(A::removeI(ptr(inPlace), &n, start, cut), zevStatusOk);
                EXPECT_EQ(n, len - cut);
                inPlace.resize(n);
                EXPECT_EQ(inPlace, rmodel);
            }
        }
    }
}

TYPED_TEST(EditTyped, InsertAndRemoveChecks) {
    using T = TypeParam;
    using A = Api<T>;
    const std::vector<T> src = seq<T>(4);
    std::vector<T> dst(8, 0);
    int32_t n = 4;
    EXPECT_EQ(A::insert(nullptr, -1, src.data(), 1, dst.data(), 0), zevStatusNullPointer);
    EXPECT_EQ(A::insert(src.data(), 4, src.data(), 1, dst.data(), 5), zevStatusBadLength);
    EXPECT_EQ(A::insert(src.data(), 4, src.data(), -1, dst.data(), 0), zevStatusBadLength);
    EXPECT_EQ(A::insert(src.data(), 4, src.data(), 1, dst.data(), -1), zevStatusBadLength);
    // No insert: dst is not written at all.
    EXPECT_EQ(A::insert(src.data(), 4, src.data(), 0, dst.data(), 2), zevStatusOk);
    EXPECT_EQ(dst, std::vector<T>(8, 0));
    EXPECT_EQ(A::insertI(src.data(), 1, dst.data(), nullptr, 0), zevStatusNullPointer);
    n = -1;
    EXPECT_EQ(A::insertI(src.data(), 1, dst.data(), &n, 0), zevStatusBadLength);
    n = 4;
    EXPECT_EQ(A::insertI(src.data(), 1, dst.data(), &n, 5), zevStatusBadLength);
    EXPECT_EQ(A::insertI(src.data(), 0, dst.data(), &n, 2), zevStatusOk);
    EXPECT_EQ(n, 4);

    EXPECT_EQ(A::remove(src.data(), 4, nullptr, 0, 1), zevStatusNullPointer);
    EXPECT_EQ(A::remove(src.data(), 4, dst.data(), 3, 2), zevStatusBadLength);
    EXPECT_EQ(A::remove(src.data(), -1, dst.data(), 0, 0), zevStatusBadLength);
    EXPECT_EQ(A::remove(src.data(), 4, dst.data(), 0x7FFFFFFF, 0x7FFFFFFF), zevStatusBadLength);
    EXPECT_EQ(A::removeI(dst.data(), &n, 1, -1), zevStatusBadLength);
    EXPECT_EQ(A::removeI(dst.data(), &n, 3, 2), zevStatusBadLength);
    EXPECT_EQ(n, 4);
    EXPECT_EQ(dst, std::vector<T>(8, 0));
    EXPECT_EQ(A::removeI(dst.data(), &n, 0, 4), zevStatusOk);
    EXPECT_EQ(n, 0);
}

TYPED_TEST(EditTyped, ConcatForms) {
    using T = TypeParam;
    using A = Api<T>;
    const std::vector<T> a = seq<T>(3, 1), b = seq<T>(2, 10);
    std::vector<T> dst(8, 0);
    EXPECT_EQ(A::concat(a.data(), 3, b.data(), 2, dst.data()), zevStatusOk);
    EXPECT_EQ(dst, (std::vector<T>{1, 2, 3, 10, 11, 0, 0, 0}));
    std::vector<T> none(2, 0);
    EXPECT_EQ(A::concat(a.data(), 0, b.data(), 0, none.data()), zevStatusOk);
    EXPECT_EQ(none, std::vector<T>(2, 0));
    EXPECT_EQ(A::concat(a.data(), -1, nullptr, 0, dst.data()), zevStatusNullPointer);
    EXPECT_EQ(A::concat(a.data(), 1, b.data(), -1, dst.data()), zevStatusBadLength);

    const T* strings[3] = {a.data(), b.data(), a.data()};
    int32_t lengths[3] = {3, 0, 1};
    std::vector<T> out(10, 0);
    EXPECT_EQ(A::concatC(strings, lengths, 3, 99, out.data()), zevStatusOk);
    EXPECT_EQ(out, (std::vector<T>{1, 2, 3, 99, 99, 1, 0, 0, 0, 0}));
    out.assign(10, 0);
    EXPECT_EQ(A::concatList(strings, lengths, 3, out.data()), zevStatusOk);
    EXPECT_EQ(out, (std::vector<T>{1, 2, 3, 1, 0, 0, 0, 0, 0, 0}));
    out.assign(10, 0);
    EXPECT_EQ(A::concatC(strings, lengths, 1, 99, out.data()), zevStatusOk);  // one entry: no delimiter
    EXPECT_EQ(out, (std::vector<T>{1, 2, 3, 0, 0, 0, 0, 0, 0, 0}));
    int32_t empties[2] = {0, 0};
    out.assign(10, 0);
    EXPECT_EQ(A::concatC(strings, empties, 2, 99, out.data()), zevStatusOk);
    EXPECT_EQ(out[0], 99);
    EXPECT_EQ(out[1], 0);

    // A bad entry stops the walk with the earlier pieces written.
    EXPECT_EQ(A::concatC(strings, lengths, 0, 99, out.data()), zevStatusBadSize);
    EXPECT_EQ(A::concatC(nullptr, lengths, 0, 99, out.data()), zevStatusNullPointer);
    const T* withNull[3] = {a.data(), nullptr, b.data()};
    out.assign(10, 0);
    EXPECT_EQ(A::concatC(withNull, lengths, 3, 99, out.data()), zevStatusNullPointer);
    EXPECT_EQ(out, (std::vector<T>{1, 2, 3, 0, 0, 0, 0, 0, 0, 0}));
    int32_t badLen[3] = {3, 2, -1};
    out.assign(10, 0);
    EXPECT_EQ(A::concatC(strings, badLen, 3, 99, out.data()), zevStatusBadLength);
    EXPECT_EQ(out, (std::vector<T>{1, 2, 3, 99, 10, 11, 0, 0, 0, 0}));
}

// Splits src into up to `slots` slots of capacity cap each.
template <typename T>
struct SplitRun {
    zevStatus status;
    int32_t count;
    std::vector<std::vector<T>> pieces;
};
template <typename T>
SplitRun<T> split(const std::vector<T>& src, T delim, int32_t slots, int32_t cap) {
    std::vector<std::vector<T>> bufs(slots, std::vector<T>(cap > 0 ? cap : 1, 0));
    std::vector<T*> ptrs(slots);
    std::vector<int32_t> lens(slots, cap);
    for (int32_t i = 0; i < slots; ++i) ptrs[i] = bufs[i].data();
    SplitRun<T> r;
    r.count = slots;
    r.status = Api<T>::split(ptr(src), static_cast<int32_t>(src.size()), delim, ptrs.data(), lens.data(), &r.count);
    for (int32_t i = 0; i < r.count && r.status >= 0; ++i)
        r.pieces.emplace_back(bufs[i].begin(), bufs[i].begin() + lens[i]);
    return r;
}

TYPED_TEST(EditTyped, SplitPiecesAndWarnings) {
    using T = TypeParam;
    const T d = 0;  // delimiter
    using P = std::vector<std::vector<T>>;
    auto r = split<T>({1, d, 2}, d, 1, 8);
    EXPECT_EQ(r.status, zevStatusInputLeft);
    EXPECT_EQ(r.count, 1);
    EXPECT_EQ(r.pieces, (P{{1}}));
    r = split<T>({d, 1, 2, d, d, 3, d}, d, 4, 8);  // leading and doubled delimiters, one at the end
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.pieces, (P{{}, {1, 2}, {}, {3}}));
    r = split<T>({d, 1, 2, d, d, 3, d}, d, 3, 8);
    EXPECT_EQ(r.status, zevStatusInputLeft);
    EXPECT_EQ(r.count, 3);
    r = split<T>({d, 1, 2, d, d, 3, d}, d, 9, 8);
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.count, 4);
    r = split<T>({1, 2, 3, 4, 5, d, 6}, d, 2, 2);
    EXPECT_EQ(r.status, zevStatusPieceTruncated);
    EXPECT_EQ(r.pieces, (P{{1, 2}, {6}}));
    r = split<T>({1, 2, 3}, d, 1, 0);
    EXPECT_EQ(r.status, zevStatusPieceTruncated);
    EXPECT_EQ(r.pieces, (P{{}}));
    r = split<T>({1, 2, 3, d, 4, d, 5}, d, 2, 1);  // cut and then input left: input left wins
    EXPECT_EQ(r.status, zevStatusInputLeft);
    EXPECT_EQ(r.pieces, (P{{1}, {4}}));
    r = split<T>({}, d, 2, 8);
    EXPECT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.count, 0);
}

TYPED_TEST(EditTyped, SplitChecks) {
    using T = TypeParam;
    using A = Api<T>;
    const T src[3] = {1, 0, 2};
    T b0[4], b1[4];
    T* bufs[2] = {b0, b1};
    int32_t lens[2] = {4, 4};
    int32_t count = 2;
    EXPECT_EQ(A::split(src, -1, 0, bufs, lens, nullptr), zevStatusNullPointer);
    EXPECT_EQ(A::split(src, -1, 0, bufs, lens, &count), zevStatusBadLength);
    count = 0;
    EXPECT_EQ(A::split(src, 3, 0, bufs, lens, &count), zevStatusBadSize);
    // Slots on an empty source are not looked at.
    count = 1;
    T* nulls[1] = {nullptr};
    EXPECT_EQ(A::split(src, 0, 0, nulls, lens, &count), zevStatusOk);
    EXPECT_EQ(count, 0);
    // A bad second slot stops the split after the first piece; count stays.
    T* second[2] = {b0, nullptr};
    count = 2;
    EXPECT_EQ(A::split(src, 3, 0, second, lens, &count), zevStatusNullPointer);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(lens[0], 1);
    EXPECT_EQ(b0[0], 1);
    int32_t badCap[2] = {4, -1};
    EXPECT_EQ(A::split(src, 3, 0, bufs, badCap, &count), zevStatusBadLength);
    EXPECT_EQ(count, 2);
}

TYPED_TEST(EditTyped, ReplaceC) {
    using T = TypeParam;
    using A = Api<T>;
    std::vector<T> s = {1, 2, 1, 3}, out(4, 9);
    EXPECT_EQ(A::replace(s.data(), out.data(), 4, 1, 7), zevStatusOk);
    EXPECT_EQ(out, (std::vector<T>{7, 2, 7, 3}));
    EXPECT_EQ(A::replace(s.data(), s.data(), 4, 2, 8), zevStatusOk);  // in place
    EXPECT_EQ(s, (std::vector<T>{1, 8, 1, 3}));
    EXPECT_EQ(A::replace(nullptr, out.data(), -1, 1, 2), zevStatusNullPointer);
    EXPECT_EQ(A::replace(s.data(), out.data(), -1, 1, 2), zevStatusBadLength);
}

}  // namespace
