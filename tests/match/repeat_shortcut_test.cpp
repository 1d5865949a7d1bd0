// The shortcuts of the repeat family against the plain path: random node
// arrays (one repeated item and a short continuation), random subjects,
// search areas, options and budgets. Both paths must give the same result,
// the same budget left and the same captures[0].length, and a failure must
// leave that length as it was on entry.

#include <gtest/gtest.h>

#include <random>

#include "repeat_machine.h"

using namespace repeat_test;

namespace {

class Generator {
public:
    explicit Generator(uint32_t seed) : rng_(seed) {}

    int32_t pick(int32_t n) { return static_cast<int32_t>(rng_() % static_cast<uint32_t>(n)); }

    std::string subject() {
        static const char* const pieces[] = {"a", "a", "b", "x", "A", "\n", "_", "1", "\xC3\xA9", "\xC3\x89",
                                             "\xCC\x81", "\x80", "\xE2\x82\xAC", "\xC3"};
        std::string s;
        int32_t n = pick(14);
        for (int32_t i = 0; i < n; ++i) {
            s += pieces[pick(14)];
        }
        return s;
    }

    uint8_t literal() {
        static const uint8_t bytes[] = {'a', 'b', 'x', 'A', 0xC3, 0xCC, '\n', '1'};
        return bytes[pick(8)];
    }

    RegExpNode repeat() {
        int32_t min = pick(3);
        int32_t max = pick(4) == 0 ? Many : min + pick(4);
        return pick(2) == 0 ? greedy(min, max) : lazy(min, max);
    }

    // One item that a repeat can take, with a class's items behind it.
    void item(std::vector<RegExpNode>& nodes) {
        static const char letters[] = {'.', 'd', 'D', 'w', 'W', 's', 'S'};
        switch (pick(9)) {
            case 0: nodes.push_back(chr(literal())); break;
            case 1: nodes.push_back(node(NodeAnyByte)); break;
            case 2: nodes.push_back(type(letters[pick(7)])); break;
            case 3: nodes.push_back(wide(pick(2) == 0 ? 0xE9 : 'a')); break;
            case 4: nodes.push_back(node(NodeBackRef, 1)); break;
            case 5: nodes.push_back(node(NodeGrapheme)); break;
            case 6: nodes.push_back(node(NodeBlock, 0x80, 0x24F, pick(2) == 0 ? 0 : -1)); break;
            default: {
                int32_t n = 1 + pick(3);
                nodes.push_back(cls(n, pick(3) == 0 ? -1 : 0));
                for (int32_t i = 0; i < n; ++i) {
                    switch (pick(4)) {
                        case 0: nodes.push_back(chr(literal(), pick(5) == 0 ? -1 : 0)); break;
                        case 1: nodes.push_back(range('a', 'z')); break;
                        case 2: nodes.push_back(range(0xC0, 0x17F)); break;
                        default: nodes.push_back(type(letters[pick(7)])); break;
                    }
                }
                break;
            }
        }
    }

    // The continuation: nothing, a literal, a string, a class with or
    // without a repeat, another repeated item, or new options (a failed run
    // leaves them changed for the next run).
    void continuation(std::vector<RegExpNode>& nodes, std::string& literals) {
        int32_t parts = pick(4);
        for (int32_t k = 0; k < parts; ++k) {
            switch (pick(6)) {
                case 5: nodes.push_back(node(NodeSetOptions, pick(2) == 0 ? OptionIgnoreCase : OptionDotAll)); break;
                case 0:
                case 1: nodes.push_back(chr(literal())); break;
                case 2: {
                    uint32_t at = static_cast<uint32_t>(literals.size());
                    literals += static_cast<char>(literal());
                    literals += static_cast<char>(literal());
                    nodes.push_back(node(NodeString, 0, 2, 0, at));
                    break;
                }
                default:
                    item(nodes);
                    if (pick(2) == 0) nodes.push_back(repeat());
                    break;
            }
        }
    }

private:
    std::mt19937 rng_;
};

TEST(RepeatShortcuts, AgreeWithThePlainPathOnRandomPatterns) {
    Generator g(20261123);
    int32_t matched = 0;
    for (int round = 0; round < 6000; ++round) {
        std::vector<RegExpNode> nodes;
        std::string literals;
        g.item(nodes);
        nodes.push_back(g.repeat());
        g.continuation(nodes, literals);
        Machine m(nodes, literals);
        std::string subject = g.subject();
        int32_t size = static_cast<int32_t>(subject.size());
        int32_t start = size == 0 ? 0 : g.pick(size + 1);
        int32_t areaEnd = g.pick(3) == 0 ? start + g.pick(size - start + 1) : -1;
        static const uint32_t flagSets[] = {0, OptionIgnoreCase, OptionDotAll, OptionIgnoreCase | OptionDotAll};
        uint32_t flags = flagSets[g.pick(4)];
        int32_t budget = g.pick(4) == 0 ? 100000 : g.pick(12);
        int32_t rejectEmpty = g.pick(6) == 0 ? 1 : 0;
        int32_t groupStart = size == 0 ? 0 : g.pick(size);
        int32_t groupLength = g.pick(4) == 0 ? -1 : g.pick(std::min(3, size - groupStart) + 1);
        const int32_t entryLength = 5;
        auto setup = [&](MatchContext& c) {
            c.flags = flags;
            c.rejectEmpty = rejectEmpty;
            c.captures[1] = CaptureRecord{groupStart, groupLength};
            c.captures[0].length = entryLength;
        };
        Outcome plain = m.run(subject, budget, 0, start, areaEnd, setup);
        Outcome fast = m.run(subject, budget, 1, start, areaEnd, setup);
        ASSERT_EQ(plain, fast) << "round " << round;
        if (plain.result == 1) {
            ASSERT_EQ(plain.length, entryLength) << "round " << round;
        } else {
            ++matched;
        }
    }
    EXPECT_GT(matched, 500) << matched;   // the generator reaches both outcomes
    EXPECT_LT(matched, 5500) << matched;
}

// Long runs in front of a literal: the shortcut skips whole stretches and
// must charge for each place it passes, also when the budget runs out on
// the way.
TEST(RepeatShortcuts, LongRunsChargeEveryPlacePassed) {
    std::string text(3000, 'a');
    text[100] = 'b';
    text[2000] = 'b';
    for (RegExpNode item : {type('.'), node(NodeAnyByte), chr('a')}) {
        for (int32_t budget : {0, 1, 2, 500, 998, 999, 1000, 1001, 5000}) {
            for (uint32_t flags : {0u, static_cast<uint32_t>(OptionIgnoreCase)}) {
                Machine m({item, greedy(1, Many), chr('b'), chr('q')});
                bool agree = false;
                Outcome o = m.both(text, budget, 0, -1, [&](MatchContext& c) { c.flags = flags; }, &agree);
                EXPECT_TRUE(agree) << budget;
                EXPECT_EQ(o.result, 1);
            }
        }
    }
}

}  // namespace
