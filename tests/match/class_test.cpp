// Character classes: the item forms (bytes against codes, the two forms of a
// range, case folding, invert marks), the greedy and lazy repeats, and the
// ASCII bit set of a repeat against the item-by-item check.

#include <gtest/gtest.h>

#include <random>

#include "repeat_machine.h"

using namespace repeat_test;

namespace {

Outcome run(Machine& m, const std::string& subject, uint32_t flags = 0, int32_t areaEnd = -1) {
    bool agree = false;
    Outcome o = m.both(subject, 1000, 0, areaEnd, [&](MatchContext& c) { c.flags = flags; }, &agree);
    EXPECT_TRUE(agree) << subject;
    return o;
}

// Whole-match length of `items` as a class at the start of `subject`, or -1.
int32_t take(std::vector<RegExpNode> classNodes, const std::string& subject, uint32_t flags = 0) {
    Machine m(std::move(classNodes));
    Outcome o = run(m, subject, flags);
    return o.result == 0 ? o.length : -1;
}

const std::string EAcute = "\xC3\xA9";

TEST(Class, OneCharacterWhateverItsSize) {
    EXPECT_EQ(take({cls(1, -1), chr('a')}, EAcute), 2);
    EXPECT_EQ(take({cls(1, -1), chr('a')}, "\x80"), 1);
    EXPECT_EQ(take({cls(1, -1), chr('a')}, ""), -1);
    EXPECT_EQ(take({cls(0, -1)}, "z"), 1);          // a negated class of nothing
    EXPECT_EQ(take({cls(0)}, "z"), -1);
    Machine star({cls(1, -1), chr('a'), greedy(0, Many), chr('x')});
    EXPECT_EQ(spent(run(star, ""), 1000), 2);       // the continuation runs once
}

TEST(Class, BytesAndCodes) {
    EXPECT_EQ(take({cls(1), chr(0xE9)}, EAcute), -1);       // a literal meets the first byte
    EXPECT_EQ(take({cls(1), chr(0xE9)}, "\xE9"), 1);
    EXPECT_EQ(take({cls(1), range(0xE0, 0xFF)}, EAcute), 2);   // code form
    EXPECT_EQ(take({cls(1), range(0xE0, 0xFF)}, "\xE9"), 1);   // byte form
    EXPECT_EQ(take({cls(1), range(0x100, 0x200)}, "\x80"), -1);
    EXPECT_EQ(take({cls(1), range(0, 0x200)}, "\x80"), 1);     // a malformed byte has code 0
    EXPECT_EQ(take({cls(1), wide(0xE9)}, EAcute), 2);
    EXPECT_EQ(take({cls(1), wide(0)}, "\xC3"), 1);
}

TEST(Class, IgnoreCase) {
    EXPECT_EQ(take({cls(1), range('a', 'z')}, "Q", OptionIgnoreCase), 1);
    EXPECT_EQ(take({cls(1), range('a', 'z')}, "Q"), -1);
    EXPECT_EQ(take({cls(1), chr('q')}, "Q", OptionIgnoreCase), 1);
    const std::string capitalA = "\xD0\x90", smallA = "\xD0\xB0";   // U+0410, U+0430
    for (RegExpNode repeat : {greedy(1, Many), lazy(1, Many)}) {
        Machine cyrillic({cls(1), range(0x410, 0x42F), repeat});
        EXPECT_EQ(run(cyrillic, capitalA + smallA, OptionIgnoreCase).length, repeat.kind == NodeRepeat ? 4 : 2);
        EXPECT_EQ(run(cyrillic, smallA, OptionIgnoreCase).length, 2);
        EXPECT_EQ(run(cyrillic, smallA).result, 1);
    }
    // Folded ends 0x450 and 0x44F: low above high, nothing is inside.
    EXPECT_EQ(take({cls(1), range(0x400, 0x42F)}, capitalA, OptionIgnoreCase), -1);
    EXPECT_EQ(take({cls(1), wide(0xE9)}, "\xC3\x89", OptionIgnoreCase), 2);
}

TEST(Class, InvertMarksAndTypes) {
    EXPECT_EQ(take({cls(1), chr('a', -1)}, "b"), 1);          // the item alone is inverted
    EXPECT_EQ(take({cls(1), chr('a', -1)}, "a"), -1);
    EXPECT_EQ(take({cls(1, -1), chr('a', -1)}, "a"), 1);      // and the head inverts the whole
    EXPECT_EQ(take({cls(2), chr('x'), range('0', '9', -1)}, "5"), -1);
    Machine notDigit({cls(1, -1), type('d'), greedy(1, Many)});
    EXPECT_EQ(run(notDigit, "ab1").length, 2);
    EXPECT_EQ(take({cls(1), type('.')}, "\n"), -1);
    EXPECT_EQ(take({cls(1), type('.')}, "\n", OptionDotAll), 1);
}

TEST(Class, GreedyAndLazyOrder) {
    Machine greedyB({cls(2), chr('a'), chr('b'), greedy(0, Many), chr('b')});
    Outcome g = run(greedyB, "abab");
    EXPECT_EQ(g.length, 4);
    EXPECT_EQ(spent(g, 1000), 3);   // runs at 4 and 3
    Machine lazyC({cls(2), chr('a'), chr('b'), lazy(2, 3), chr('c')});
    Outcome l = run(lazyC, "abac");
    EXPECT_EQ(l.length, 4);
    EXPECT_EQ(spent(l, 1000), 3);   // runs at 2 and 3: two characters before the first
    Machine failing({cls(1), range('a', 'z'), greedy(1, 3), chr('x')});
    Outcome f = run(failing, "abcd");
    EXPECT_EQ(f.result, 1);
    EXPECT_EQ(spent(f, 1000), 4);   // runs at 3, 2, 1
    // A character that starts inside the search area is read whole, and the
    // class goes on past the area's end while bytes are left.
    Machine all({cls(1, -1), chr('a'), greedy(0, Many)});
    EXPECT_EQ(run(all, EAcute + "bc", 0, 1).length, 4);
    EXPECT_EQ(run(all, EAcute, 0, 1).length, 2);
}

// A class repeat answers ASCII bytes from a set of bits made on entry; it
// must agree with the item-by-item check for every byte, class and option.
TEST(Class, RepeatAgreesWithTheCheckOnEveryByte) {
    std::mt19937 rng(11);
    const char letters[] = {'.', 'd', 'D', 'w', 'W', 's', 'S', 'q'};
    const uint8_t literals[] = {'a', 'Z', '-', '@', 0x7F, 0x80, 0xE9, '\n'};
    for (int round = 0; round < 300; ++round) {
        int32_t n = static_cast<int32_t>(rng() % 4);
        std::vector<RegExpNode> nodes{cls(n, rng() % 3 == 0 ? -1 : 0)};
        for (int32_t i = 0; i < n; ++i) {
            int32_t invert = rng() % 4 == 0 ? -1 : 0;
            int32_t low = static_cast<int32_t>(rng() % 140);
            switch (rng() % 4) {
                case 0: nodes.push_back(chr(literals[rng() % 8], invert)); break;
                case 1: nodes.push_back(node(NodeCharType, letters[rng() % 8], 0, invert)); break;
                case 2: nodes.push_back(range(low, low + static_cast<int32_t>(rng() % 60), invert)); break;
                default: nodes.push_back(node(NodeWideChar, literals[rng() % 8], 0, invert)); break;
            }
        }
        nodes.push_back(greedy(1, 2));   // more than one character: the set is used
        Machine m(nodes);
        for (uint32_t flags : {0u, 1u, 4u, 5u}) {
            for (int c = 0; c < 256; ++c) {
                std::string subject(1, static_cast<char>(c));
                Outcome o = m.run(subject, 10, 1, 0, -1, [&](MatchContext& ctx) { ctx.flags = flags; });
                MatchContext& ctx = m.context();
                bool member = ownCheckClass(reinterpret_cast<const uint8_t*>(subject.data()), 1, &ctx, 0) > 0;
                ASSERT_EQ(o.result == 0, member) << "round " << round << " byte " << c << " flags " << flags;
            }
        }
    }
}

TEST(Class, CheckAtTheSubjectsEnd) {
    Machine m({cls(1, -1)});
    m.run("");
    EXPECT_LT(ownCheckClass(reinterpret_cast<const uint8_t*>(""), 0, &m.context(), 0), 0);
}

}  // namespace
