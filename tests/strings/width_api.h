// The exported functions of the search, edit and trim families by element
// type, so that one typed test covers both widths.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "zevch.h"

using Widths = ::testing::Types<uint8_t, uint16_t>;

template <typename T>
struct Api;

template <>
struct Api<uint8_t> {
    static constexpr auto find = zevsFind_8u;
    static constexpr auto findRev = zevsFindRev_8u;
    static constexpr auto findC = zevsFindC_8u;
    static constexpr auto findRevC = zevsFindRevC_8u;
    static constexpr auto findCAny = zevsFindCAny_8u;
    static constexpr auto findRevCAny = zevsFindRevCAny_8u;
    static constexpr auto findZ = zevsFind_Z_8u;
    static constexpr auto findCZ = zevsFindC_Z_8u;
    static constexpr auto insert = zevsInsert_8u;
    static constexpr auto insertI = zevsInsert_8u_I;
    static constexpr auto remove = zevsRemove_8u;
    static constexpr auto removeI = zevsRemove_8u_I;
    static constexpr auto concat = zevsConcat_8u;
    static constexpr auto concatList = zevsConcat_8u_D2L;
    static constexpr auto concatC = zevsConcatC_8u_D2L;
    static constexpr auto split = zevsSplitC_8u_D2L;
    static constexpr auto replace = zevsReplaceC_8u;
    static constexpr auto trim = zevsTrimC_8u;
    static constexpr auto trimI = zevsTrimC_8u_I;
    static constexpr auto any = zevsTrimCAny_8u;
    static constexpr auto start = zevsTrimStartCAny_8u;
    static constexpr auto end = zevsTrimEndCAny_8u;
};

template <>
struct Api<uint16_t> {
    static constexpr auto find = zevsFind_16u;
    static constexpr auto findRev = zevsFindRev_16u;
    static constexpr auto findC = zevsFindC_16u;
    static constexpr auto findRevC = zevsFindRevC_16u;
    static constexpr auto findCAny = zevsFindCAny_16u;
    static constexpr auto findRevCAny = zevsFindRevCAny_16u;
    static constexpr auto findZ = zevsFind_Z_16u;
    static constexpr auto findCZ = zevsFindC_Z_16u;
    static constexpr auto insert = zevsInsert_16u;
    static constexpr auto insertI = zevsInsert_16u_I;
    static constexpr auto remove = zevsRemove_16u;
    static constexpr auto removeI = zevsRemove_16u_I;
    static constexpr auto concat = zevsConcat_16u;
    static constexpr auto concatList = zevsConcat_16u_D2L;
    static constexpr auto concatC = zevsConcatC_16u_D2L;
    static constexpr auto split = zevsSplitC_16u_D2L;
    static constexpr auto replace = zevsReplaceC_16u;
    static constexpr auto trim = zevsTrimC_16u;
    static constexpr auto trimI = zevsTrimC_16u_I;
    static constexpr auto any = zevsTrimCAny_16u;
    static constexpr auto start = zevsTrimStartCAny_16u;
    static constexpr auto end = zevsTrimEndCAny_16u;
};
