// The six calls of the compiled-pattern record: sizes, the option string,
// argument checks and their order, allocation, and the two setters.
#include <gtest/gtest.h>

#include <string>

#include "tests/compile/compile_helpers.h"

TEST(Record, SizeFollowsThePatternLength) {
    int32_t size = -1;
    EXPECT_EQ(zevsRegExpGetSize("", &size), zevStatusOk);
    EXPECT_EQ(size, 40052);
    EXPECT_EQ(zevsRegExpGetSize("0123456789", &size), zevStatusOk);
    EXPECT_EQ(size, 40252);
    // Nothing in the pattern is checked.
    EXPECT_EQ(zevsRegExpGetSize("((", &size), zevStatusOk);
    EXPECT_EQ(size, 40092);
    EXPECT_EQ(zevsRegExpGetSize(nullptr, &size), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpGetSize("a", nullptr), zevStatusNullPointer);
}

TEST(Record, EmptyPattern) {
    Compiled c = compilePattern("");
    ASSERT_EQ(c.status, zevStatusOk);
    const RegExpState* s = c.state();
    EXPECT_EQ(s->magic, RegExpMagic);
    EXPECT_EQ(0, std::memcmp(&s->magic, "rgEx", 4));
    EXPECT_EQ(s->nodeCount, 0);
    EXPECT_EQ(s->captureCount, 1);
    EXPECT_EQ(s->trailingLiteral, -1);
    EXPECT_EQ(s->matchLimit, 10000);
    EXPECT_EQ(s->format, 1);
    EXPECT_EQ(s->options, 0u);
    EXPECT_EQ(c.errOffset, -12345);
}

TEST(Record, OptionString) {
    Compiled null = compilePattern("a(b)c", nullptr);
    Compiled empty = compilePattern("a(b)c", "");
    ASSERT_EQ(null.status, zevStatusOk);
    ASSERT_EQ(empty.status, zevStatusOk);
    EXPECT_EQ(0, std::memcmp(null.block.get(), empty.block.get(), static_cast<size_t>(null.size)));

    Compiled all = compilePattern("a", "gimsx");
    EXPECT_EQ(all.state()->options, 31u);
    EXPECT_EQ(compilePattern("a", "iiiggg").state()->options,
              static_cast<uint32_t>(OptionIgnoreCase | OptionGlobal));

    for (const char* bad : {"ix ", "I", "e", "g-i", "ig\n"}) {
        Compiled c = compilePattern("a", bad);
        EXPECT_EQ(c.status, zevStatusRegExpBadOptions) << bad;
        EXPECT_EQ(c.errOffset, 0) << bad;
        EXPECT_EQ(c.state()->magic, 0xA5A5A5A5u) << bad;
    }
}

// The x of the option string starts the pattern in extended mode; an inline
// (?-x) ends it.
TEST(Record, ExtendedOptionFromTheOptionString) {
    Compiled x = compilePattern("a b", "x");
    ASSERT_EQ(x.status, zevStatusOk);
    EXPECT_EQ(x.state()->nodeCount, 2);
    Compiled off = compilePattern("(?-x)a b", "x");
    ASSERT_EQ(off.status, zevStatusOk);
    EXPECT_EQ(off.state()->nodeCount, 1);
    EXPECT_EQ(off.node(0).kind, NodeString);
}

TEST(Record, NullArgumentsWriteNothing) {
    Compiled c = compilePattern("a");
    int32_t err = 77;
    EXPECT_EQ(zevsRegExpInit(nullptr, nullptr, c.state(), &err), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpInit("a", nullptr, nullptr, &err), zevStatusNullPointer);
    EXPECT_EQ(err, 77);
    Compiled fresh;
    fresh.block.reset(new uint8_t[40072]);
    std::memset(fresh.block.get(), 0xA5, 40072);
    EXPECT_EQ(zevsRegExpInit("a", nullptr, fresh.state(), nullptr), zevStatusNullPointer);
    EXPECT_EQ(fresh.state()->magic, 0xA5A5A5A5u);
    // The option string is read only after the pointers are checked.
    EXPECT_EQ(zevsRegExpInit(nullptr, "bad", fresh.state(), &err), zevStatusNullPointer);
}

TEST(Record, RecompilingResetsTheSetters) {
    Compiled c = compilePattern("abcdef");
    ASSERT_EQ(c.status, zevStatusOk);
    EXPECT_EQ(zevsRegExpSetMatchLimit(5, c.state()), zevStatusOk);
    EXPECT_EQ(zevsRegExpSetFormat(0, c.state()), zevStatusOk);
    int32_t err;
    ASSERT_EQ(zevsRegExpInit("x+", "i", c.state(), &err), zevStatusOk);
    EXPECT_EQ(c.state()->matchLimit, 10000);
    EXPECT_EQ(c.state()->format, 1);
    EXPECT_EQ(c.state()->nodeCount, 2);
    EXPECT_EQ(c.state()->options, static_cast<uint32_t>(OptionIgnoreCase));
}

TEST(Record, Setters) {
    Compiled c = compilePattern("a");
    RegExpState* s = c.state();
    EXPECT_EQ(zevsRegExpSetMatchLimit(0, s), zevStatusOk);
    EXPECT_EQ(s->matchLimit, 0);
    EXPECT_EQ(zevsRegExpSetMatchLimit(-1, s), zevStatusBadLength);
    EXPECT_EQ(s->matchLimit, 0);
    EXPECT_EQ(zevsRegExpSetMatchLimit(INT32_MAX, s), zevStatusOk);
    EXPECT_EQ(s->matchLimit, INT32_MAX);
    EXPECT_EQ(zevsRegExpSetMatchLimit(5, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpSetMatchLimit(-5, nullptr), zevStatusNullPointer);

    EXPECT_EQ(zevsRegExpSetFormat(2, s), zevStatusBadFormat);
    EXPECT_EQ(s->format, 1);
    EXPECT_EQ(zevsRegExpSetFormat(-1, s), zevStatusBadFormat);
    EXPECT_EQ(zevsRegExpSetFormat(0, s), zevStatusOk);
    EXPECT_EQ(s->format, 0);
    EXPECT_EQ(zevsRegExpSetFormat(1, nullptr), zevStatusNullPointer);
    EXPECT_EQ(zevsRegExpSetFormat(7, nullptr), zevStatusNullPointer);

    // Neither setter looks at the magic.
    Compiled raw;
    raw.block.reset(new uint8_t[RegExpBaseSize]);
    std::memset(raw.block.get(), 0, RegExpBaseSize);
    EXPECT_EQ(zevsRegExpSetMatchLimit(3, raw.state()), zevStatusOk);
    EXPECT_EQ(zevsRegExpSetFormat(0, raw.state()), zevStatusOk);
}

TEST(Record, InitAlloc) {
    RegExpState* s = reinterpret_cast<RegExpState*>(0x1);
    int32_t err = -9;
    ASSERT_EQ(zevsRegExpInitAlloc("(a|b)c+", "g", &s, &err), zevStatusOk);
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(err, -9);
    EXPECT_EQ(s->nodeCount, 7);
    EXPECT_EQ(s->trailingLiteral, 5);
    EXPECT_EQ(s->options, static_cast<uint32_t>(OptionGlobal));
    zevsRegExpFree(s);

    // Pattern faults free the record and leave null behind.
    s = reinterpret_cast<RegExpState*>(0x1);
    EXPECT_EQ(zevsRegExpInitAlloc("a{3,2}", nullptr, &s, &err), zevStatusRegExpBadRepeat);
    EXPECT_EQ(s, nullptr);
    EXPECT_EQ(err, 2);
    s = reinterpret_cast<RegExpState*>(0x1);
    EXPECT_EQ(zevsRegExpInitAlloc("a", "z", &s, &err), zevStatusRegExpBadOptions);
    EXPECT_EQ(s, nullptr);

    // A null errOffset fails in the compile step, after the allocation.
    s = reinterpret_cast<RegExpState*>(0x1);
    EXPECT_EQ(zevsRegExpInitAlloc("a", nullptr, &s, nullptr), zevStatusNullPointer);
    EXPECT_EQ(s, nullptr);

    // Null pattern or result pointer: nothing written at all.
    s = reinterpret_cast<RegExpState*>(0x1);
    EXPECT_EQ(zevsRegExpInitAlloc(nullptr, nullptr, &s, &err), zevStatusNullPointer);
    EXPECT_EQ(s, reinterpret_cast<RegExpState*>(0x1));
    EXPECT_EQ(zevsRegExpInitAlloc("a", nullptr, nullptr, &err), zevStatusNullPointer);
}

// The record holds no pointers: word4 of a NodeString is an offset from the
// record's start, and the bytes sit right behind the last node.
TEST(Record, LiteralBytesBehindTheNodes) {
    std::string text(1000, 'q');
    text[0] = 'a';
    text[999] = 'z';
    Compiled c = compilePattern(text.c_str());
    ASSERT_EQ(c.status, zevStatusOk);
    ASSERT_EQ(c.state()->nodeCount, 1);
    const RegExpNode& n = c.node(0);
    EXPECT_EQ(n.kind, NodeString);
    EXPECT_EQ(n.word2, 1000);
    EXPECT_EQ(n.word4, offsetof(RegExpState, nodes) + sizeof(RegExpNode));
    EXPECT_EQ(0, std::memcmp(ownNodeStringBytes(c.state(), n), text.data(), 1000));

    Compiled three = compilePattern("ab\\Qcd\\E(?:xyz)");
    ASSERT_EQ(three.status, zevStatusOk);
    ASSERT_EQ(three.state()->nodeCount, 3);
    uint32_t end = offsetof(RegExpState, nodes) + 3 * sizeof(RegExpNode);
    EXPECT_EQ(three.node(0).word4, end);
    EXPECT_EQ(three.node(1).word4, end + 2);
    EXPECT_EQ(three.node(2).word4, end + 4);
    EXPECT_EQ(0, std::memcmp(ownNodeStringBytes(three.state(), three.node(0)), "abcdxyz", 7));
}

TEST(Dump, BehavesLikeSnprintf) {
    Compiled c = compilePattern("(a|b)c+");
    std::string full = c.dump();
    int32_t n = ownRegExpDump(c.state(), nullptr, 0);
    EXPECT_EQ(n, static_cast<int32_t>(full.size()));
    char small[10];
    std::memset(small, 'X', sizeof small);
    EXPECT_EQ(ownRegExpDump(c.state(), small, 10), n);
    EXPECT_EQ(std::string(small), full.substr(0, 9));
    char one[1] = {'X'};
    EXPECT_EQ(ownRegExpDump(c.state(), one, 1), n);
    EXPECT_EQ(one[0], '\0');
    EXPECT_STREQ(ownRegExpKindName(NodeGrapheme), "NodeGrapheme");
    EXPECT_STREQ(ownRegExpKindName(NodeChar - 1), "?");
    EXPECT_STREQ(ownRegExpKindName(NodeGrapheme + 1), "?");
}
