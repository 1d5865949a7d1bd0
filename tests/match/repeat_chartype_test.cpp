// Repeats of character types and of code-point items: whole characters as
// items, the offsets tried (seen through the budget and the winning run),
// malformed bytes, an overrun of the search area, the look, and the step
// back over multi-byte characters against a plain forward walk.

#include <gtest/gtest.h>

#include <random>

#include "regexp/match/repeat_loops.h"
#include "repeat_machine.h"

using namespace repeat_test;

namespace {

Outcome run(Machine& m, const std::string& subject, uint32_t flags = 0, int32_t areaEnd = -1,
            int32_t budget = 1000) {
    bool agree = false;
    Outcome o = m.both(subject, budget, 0, areaEnd, [&](MatchContext& c) { c.flags = flags; }, &agree);
    EXPECT_TRUE(agree) << subject;
    return o;
}

RegExpNode property(const char* text) {
    RegExpNode nodes[2];
    int32_t count = 0;
    const char* cursor = text;
    EXPECT_EQ(ownRegExpParseProperty(&cursor, nodes, &count, text[0] == 'P' ? -1 : 0), 0) << text;
    return nodes[0];
}

const std::string Euro = "\xE2\x82\xAC";
const std::string EAcute = "\xC3\xA9";

TEST(RepeatCharType, DotStepsOverWholeCharacters) {
    Machine failing({type('.'), greedy(0, Many), chr('x')});
    Outcome o = run(failing, "a" + Euro + "b");
    EXPECT_EQ(o.result, 1);
    EXPECT_EQ(spent(o, 1000), 5);   // runs at 5, 4, 1, 0
    Machine inside({type('.'), greedy(0, Many), chr(0x82)});
    EXPECT_EQ(run(inside, "a" + Euro + "b").result, 1);   // never inside the sequence
    Machine lead({type('.'), greedy(0, Many), chr(0xE2)});
    Outcome l = run(lead, "a" + Euro + "b");
    EXPECT_EQ(l.length, 2);
    EXPECT_EQ(spent(l, 1000), 4);
}

TEST(RepeatCharType, ItemsAndTheirEnds) {
    Machine dot({type('.'), greedy(0, Many)});
    EXPECT_EQ(run(dot, "ab\ncd").length, 2);
    EXPECT_EQ(run(dot, "ab\ncd", OptionDotAll).length, 5);
    EXPECT_EQ(run(dot, "\x80z").length, 2);            // a lone continuation byte is one item
    EXPECT_EQ(run(dot, "a\xE2\x82").length, 3);        // a cut sequence: bytes one by one
    // A character that starts inside the search area is read whole.
    EXPECT_EQ(run(dot, Euro, 0, 1).length, 3);
    Machine notDigit({type('D'), greedy(1, Many)});
    EXPECT_EQ(run(notDigit, EAcute + "1").length, 2);
    Machine digit({type('d'), greedy(0, Many)});
    EXPECT_EQ(run(digit, EAcute).length, 0);
    Machine two({type('.'), greedy(2, 2)});
    EXPECT_EQ(run(two, EAcute).result, 1);   // the second item finds the end
}

TEST(RepeatCharType, LazyLooksOnlyWithoutIgnoreCase) {
    Machine word({type('w'), lazy(1, Many), chr('x')});
    EXPECT_EQ(spent(run(word, "abcx"), 1000), 2);
    Outcome folded = run(word, "abcx", OptionIgnoreCase);
    EXPECT_EQ(folded.length, 4);
    EXPECT_EQ(spent(folded, 1000), 4);   // runs at 1, 2 and 3
    Machine notSpace({type('S'), lazy(0, Many), chr('y')});
    Outcome o = run(notSpace, "ab" + EAcute + "y");
    EXPECT_EQ(o.length, 5);
    EXPECT_EQ(spent(o, 1000), 2);
}

TEST(RepeatItems, LazyPropertyRunsEveryPass) {
    Machine digitAfter({property("p{L}"), lazy(0, Many), chr('1')});
    Outcome o = run(digitAfter, "ab1");
    EXPECT_EQ(o.length, 3);
    EXPECT_EQ(spent(o, 1000), 4);   // runs at 0, 1 and 2
    Machine alone({property("p{L}"), lazy(0, Many)});
    EXPECT_EQ(run(alone, "1a").length, 0);
    Machine plus({property("p{L}"), lazy(1, Many)});
    EXPECT_EQ(run(plus, "1a").result, 1);
    Machine x({property("p{L}"), lazy(0, Many), chr('x')});
    EXPECT_EQ(run(x, "1x").result, 1);
}

TEST(RepeatItems, WideCharacters) {
    Machine atEnd({chr('a'), wide(0x100), lazy(0, Many)});
    EXPECT_EQ(run(atEnd, "a").result, 0);
    const std::string a100 = "\xC4\x80";
    Machine noLook({wide(0x100), lazy(0, Many), wide(0x101)});
    Outcome o = run(noLook, a100 + a100 + "\xC4\x81");
    EXPECT_EQ(o.length, 6);
    EXPECT_EQ(spent(o, 1000), 4);   // runs at 0, 2 and 4
    Machine look({wide(0x100), lazy(0, Many), chr('y')});
    Outcome y = run(look, a100 + "y");
    EXPECT_EQ(y.length, 3);
    EXPECT_EQ(spent(y, 1000), 2);
    Machine lookX({wide(0x100), lazy(0, Many), chr('x')});
    EXPECT_EQ(run(lookX, a100 + "y").result, 1);
    Machine folded({wide(0xE9), greedy(1, Many)});
    EXPECT_EQ(run(folded, "\xC3\x89\xC3\xA9", OptionIgnoreCase).length, 4);
    EXPECT_EQ(run(folded, "\xC3\x89\xC3\xA9").result, 1);
    Machine lone({wide(0xE9), greedy(0, Many)});
    EXPECT_EQ(run(lone, "\xE9\xE9").length, 2);   // a malformed byte's code is its value
}

TEST(RepeatItems, UpperCaseStepsBackByCharacter) {
    Machine two({property("p{Lu}"), greedy(2, 2)});
    EXPECT_EQ(run(two, "A").result, 1);
    Machine failing({property("p{Lu}"), greedy(0, Many), chr('x')});
    EXPECT_EQ(spent(run(failing, "AB\xC4\x80"), 1000), 5);   // runs at 4, 2, 1, 0
    Machine lead({property("p{Lu}"), greedy(0, Many), chr(0xC4)});
    EXPECT_EQ(run(lead, "AB\xC4\x80").length, 3);
    Machine greek({property("p{Greek}"), greedy(0, Many)});
    EXPECT_EQ(run(greek, "\xCE\xB1\xCE\xB2x").length, 4);
}

// The step back finds the last item of a forward walk at once; it must agree
// with the walk at every boundary, from every start, on any bytes.
TEST(RepeatSteps, LastItemAgreesWithTheForwardWalk) {
    std::mt19937 rng(7);
    const std::vector<std::string> pieces = {"a", "\n", "\x80", "\xBF", "\xC3\xA9", "\xE2\x82\xAC",
                                             "\xF0\x9F\x98\x80", "\xC3", "\xE2\x82", "\xFE",
                                             "\xC0\x80", "\xF8\x88\x80\x80\x80", "\xFC\x84\x80\x80\x80\x80"};
    for (int round = 0; round < 400; ++round) {
        std::string text;
        int n = static_cast<int>(rng() % 12);
        for (int i = 0; i < n; ++i) {
            text += pieces[rng() % pieces.size()];
        }
        const uint8_t* s = reinterpret_cast<const uint8_t*>(text.data());
        MatchContext ctx{};
        ctx.subject = s;
        ctx.subjectLength = static_cast<int32_t>(text.size());
        for (size_t start = 0; start < text.size(); ++start) {
            std::vector<int32_t> ends;
            for (int64_t at = static_cast<int64_t>(start); at < static_cast<int64_t>(text.size());) {
                at += ownUtf8Length(s + at, static_cast<int64_t>(text.size()) - at);
                ends.push_back(static_cast<int32_t>(at - start));
            }
            int32_t previous = 0;
            for (int32_t end : ends) {
                EXPECT_EQ(zevch_match::lastUtf8ItemSize(s + start, end, &ctx), end - previous)
                    << "round " << round << " start " << start << " end " << end;
                previous = end;
            }
        }
    }
}

}  // namespace
