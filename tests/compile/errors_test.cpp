// Every fault the compiler reports, with its status and byte offset, and the
// state it leaves the record in: a validation fault writes no header field,
// a translation fault writes magic, captureCount, options and format only.
#include <gtest/gtest.h>

#include "tests/compile/compile_helpers.h"

namespace {

enum class Pass { Validation, Translation };

struct Fault {
    const char* pattern;
    zevStatus   status;
    int32_t     offset;
    Pass        pass;
};

constexpr uint32_t Untouched = 0xA5A5A5A5u;

constexpr Fault Faults[] = {
    // Validation pass: parentheses, comments, quotes in classes, and lone
    // trailing escapes. These leave the header unwritten.
    {"(", zevStatusRegExpBadSyntax, 1, Pass::Validation},
    {")", zevStatusRegExpBadSyntax, 0, Pass::Validation},
    {"a)", zevStatusRegExpBadSyntax, 1, Pass::Validation},
    {"(a))", zevStatusRegExpBadSyntax, 3, Pass::Validation},
    {"((a)", zevStatusRegExpBadSyntax, 4, Pass::Validation},
    {"(?#", zevStatusRegExpBadSyntax, 3, Pass::Validation},
    {"(?#a", zevStatusRegExpBadSyntax, 4, Pass::Validation},
    {"(?", zevStatusRegExpBadSyntax, 2, Pass::Validation},
    {"(?i:", zevStatusRegExpBadSyntax, 4, Pass::Validation},
    {"(?=", zevStatusRegExpBadSyntax, 3, Pass::Validation},
    {"(?i", zevStatusRegExpBadSyntax, 3, Pass::Validation},
    {"(?(1)", zevStatusRegExpBadSyntax, 5, Pass::Validation},
    {"[\\Qab", zevStatusRegExpBadClass, 5, Pass::Validation},
    {"a\\", zevStatusRegExpBadSyntax, 2, Pass::Validation},
    {"\\c", zevStatusRegExpBadSyntax, 2, Pass::Validation},
    {"[a\\", zevStatusRegExpBadSyntax, 3, Pass::Validation},
    {"[a\\c", zevStatusRegExpBadSyntax, 4, Pass::Translation},
    // Escapes outside a class and property escapes.
    {"\\1", zevStatusRegExpBadReference, 1, Pass::Translation},
    {"\\8", zevStatusRegExpBadReference, 1, Pass::Translation},
    {"\\x{41", zevStatusRegExpBadProperty, 3, Pass::Translation},
    {"\\x{41g}", zevStatusRegExpBadProperty, 3, Pass::Translation},
    {"[\\x{41", zevStatusRegExpBadProperty, 6, Pass::Translation},
    {"\\pX", zevStatusRegExpBadProperty, 2, Pass::Translation},
    {"\\p", zevStatusRegExpBadProperty, 2, Pass::Translation},
    {"\\P{^L}", zevStatusRegExpBadProperty, 3, Pass::Translation},
    {"\\p{Lu", zevStatusRegExpBadProperty, 5, Pass::Translation},
    {"\\p{Xyz}", zevStatusRegExpBadProperty, 3, Pass::Translation},
    {"\\p{}", zevStatusRegExpBadProperty, 3, Pass::Translation},
    {"\\p{Nonsense}", zevStatusRegExpBadProperty, 5, Pass::Translation},
    {"\\p{Lux}", zevStatusRegExpBadProperty, 5, Pass::Translation},
    {"\\p{Anything}", zevStatusRegExpBadProperty, 6, Pass::Translation},
    {"[\\pX]", zevStatusRegExpBadProperty, 3, Pass::Translation},
    // Classes: unclosed, POSIX shapes, reversed ranges by every kind of high
    // end, empty classes, and a lone `^`.
    {"[", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[a", zevStatusRegExpBadClass, 2, Pass::Translation},
    {"[\\Qa", zevStatusRegExpBadClass, 4, Pass::Validation},
    {"[\\Qa\\E", zevStatusRegExpBadClass, 6, Pass::Translation},
    {"[:alpha:]", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[.a.]", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[=a=]", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[a[:b:]c", zevStatusRegExpBadClass, 2, Pass::Translation},
    {"[[:foo:]]", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[[:alphax:]]", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[[::]]", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[[:a:]", zevStatusRegExpBadClass, 1, Pass::Translation},
    {"[c-a]", zevStatusRegExpBadClass, 3, Pass::Translation},
    {"[b-a]", zevStatusRegExpBadClass, 3, Pass::Translation},
    {"[b-\\]]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\a]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\b]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\e]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\f]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\n]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\r]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\t]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\v]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\cA]", zevStatusRegExpBadClass, 4, Pass::Translation},
    {"[b-\\01]", zevStatusRegExpBadClass, 5, Pass::Translation},
    {"[b-\\x01]", zevStatusRegExpBadClass, 6, Pass::Translation},
    {"[b-\\x{1}]", zevStatusRegExpBadClass, 7, Pass::Translation},
    {"[b-\\!]", zevStatusRegExpBadClass, 3, Pass::Translation},
    {"[b-\\8]", zevStatusRegExpBadClass, 3, Pass::Translation},
    {"[\\E]", zevStatusRegExpBadSyntax, 3, Pass::Translation},
    {"[\\Q\\E]", zevStatusRegExpBadSyntax, 5, Pass::Translation},
    {"[\\^]", zevStatusRegExpBadSyntax, 3, Pass::Translation},
    {"[\\x5e]", zevStatusRegExpBadSyntax, 5, Pass::Translation},
    // Opening forms, option letters and conditionals.
    {"(?P<n>a)", zevStatusRegExpBadSyntax, 2, Pass::Translation},
    {"(?'n'a)", zevStatusRegExpBadSyntax, 2, Pass::Translation},
    {"(?1)", zevStatusRegExpBadSyntax, 2, Pass::Translation},
    {"(?R)", zevStatusRegExpBadSyntax, 2, Pass::Translation},
    {"(?|a)", zevStatusRegExpBadSyntax, 2, Pass::Translation},
    {"(?C1)", zevStatusRegExpBadSyntax, 2, Pass::Translation},
    {"(?<n>a)", zevStatusRegExpBadSyntax, 3, Pass::Translation},
    {"(?z)", zevStatusRegExpBadSyntax, 2, Pass::Translation},
    {"(?ig)", zevStatusRegExpBadSyntax, 3, Pass::Translation},
    {"(?i-g:a)", zevStatusRegExpBadSyntax, 4, Pass::Translation},
    {"(?<a)", zevStatusRegExpBadSyntax, 3, Pass::Translation},
    {"(?())", zevStatusRegExpBadReference, 4, Pass::Translation},
    {"(?(a)b)", zevStatusRegExpBadSyntax, 3, Pass::Translation},
    {"(?(1a)b)", zevStatusRegExpBadSyntax, 4, Pass::Translation},
    {"(?(1234)b)", zevStatusRegExpBadSyntax, 6, Pass::Translation},
    {"(?(0)a)", zevStatusRegExpBadReference, 4, Pass::Translation},
    {"(?(00)a)", zevStatusRegExpBadReference, 4, Pass::Translation},
    {"(?(?:a)b)", zevStatusRegExpBadSyntax, 8, Pass::Translation},
    {"(?(a)", zevStatusRegExpBadSyntax, 5, Pass::Validation},
    {"(?(1)*a)", zevStatusRegExpBadSyntax, 7, Pass::Translation},
    {"(?(1)a|b|c)", zevStatusRegExpBadSyntax, 10, Pass::Translation},
    {"(?(?=a)*b)", zevStatusRegExpBadSyntax, 9, Pass::Translation},
    {"(?(?=a)x|y|z)", zevStatusRegExpBadSyntax, 12, Pass::Translation},
    // Quantifiers: nothing to repeat, a second quantifier, counts.
    {"*a", zevStatusRegExpBadRepeat, 0, Pass::Translation},
    {"+", zevStatusRegExpBadRepeat, 0, Pass::Translation},
    {"?", zevStatusRegExpBadRepeat, 0, Pass::Translation},
    {"{2}", zevStatusRegExpBadRepeat, 0, Pass::Translation},
    {"{,}", zevStatusRegExpBadRepeat, 0, Pass::Translation},
    {"a|*", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"(*a)", zevStatusRegExpBadRepeat, 1, Pass::Translation},
    {"(?:*a)", zevStatusRegExpBadRepeat, 3, Pass::Translation},
    {"(?i)*", zevStatusRegExpBadRepeat, 4, Pass::Translation},
    {"(?=*)", zevStatusRegExpBadRepeat, 3, Pass::Translation},
    {"(?>*a)", zevStatusRegExpBadRepeat, 3, Pass::Translation},
    {"(?<=*a)", zevStatusRegExpBadRepeat, 4, Pass::Translation},
    {"(?i:*a)", zevStatusRegExpBadRepeat, 4, Pass::Translation},
    {"a**", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a*??", zevStatusRegExpBadRepeat, 3, Pass::Translation},
    {"a{2}??", zevStatusRegExpBadRepeat, 5, Pass::Translation},
    {"a+?+", zevStatusRegExpBadRepeat, 3, Pass::Translation},
    {"a{2}{3}", zevStatusRegExpBadRepeat, 4, Pass::Translation},
    {"a*+", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a++", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a?+", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a{2}+", zevStatusRegExpBadRepeat, 4, Pass::Translation},
    {"a{65536}", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a{65536,}", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a{1,65536}", zevStatusRegExpBadRepeat, 4, Pass::Translation},
    {"a{3,2}", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a{99999999999}", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a{99999999999,}", zevStatusRegExpBadRepeat, 2, Pass::Translation},
    {"a{,99999999999}", zevStatusRegExpBadRepeat, 3, Pass::Translation},
    {"{99999}", zevStatusRegExpBadRepeat, 1, Pass::Translation},
    // Lookbehind bodies.
    {"(?<=a|bc)", zevStatusRegExpBadSyntax, 8, Pass::Translation},
    {"(?<=a*)", zevStatusRegExpBadSyntax, 6, Pass::Translation},
    {"(?<=a{2,3})", zevStatusRegExpBadSyntax, 10, Pass::Translation},
    {"(?<=(?:ab|c)e)", zevStatusRegExpBadSyntax, 13, Pass::Translation},
    {"(?<=\\1)(a)", zevStatusRegExpBadSyntax, 6, Pass::Translation},
    {"(?<=(?i:ab|c))", zevStatusRegExpBadSyntax, 13, Pass::Translation},
    {"(?<=a+?)", zevStatusRegExpBadSyntax, 7, Pass::Translation},
    {"(?<=(?(1)a))", zevStatusRegExpBadSyntax, 11, Pass::Translation},
};

}  // namespace

TEST(Faults, StatusOffsetAndRecordState) {
    for (const Fault& f : Faults) {
        SCOPED_TRACE(f.pattern);
        Compiled c = compilePattern(f.pattern);
        EXPECT_EQ(c.status, f.status);
        EXPECT_EQ(c.errOffset, f.offset);
        const RegExpState* s = c.state();
        if (f.pass == Pass::Validation) {
            EXPECT_EQ(s->magic, Untouched);
            EXPECT_EQ(static_cast<uint32_t>(s->captureCount), Untouched);
            EXPECT_EQ(s->options, Untouched);
            EXPECT_EQ(static_cast<uint32_t>(s->format), Untouched);
        } else {
            EXPECT_EQ(s->magic, RegExpMagic);
            EXPECT_GE(s->captureCount, 1);
            EXPECT_EQ(s->options, 0u);
            EXPECT_EQ(s->format, 1);
        }
        EXPECT_EQ(static_cast<uint32_t>(s->nodeCount), Untouched);
        EXPECT_EQ(static_cast<uint32_t>(s->matchLimit), Untouched);
        EXPECT_EQ(static_cast<uint32_t>(s->trailingLiteral), Untouched);
    }
}

TEST(Faults, TranslationFaultKeepsOptionsAndCaptureCount) {
    Compiled c = compilePattern("(a)(b)[c-a]", "gi");
    EXPECT_EQ(c.status, zevStatusRegExpBadClass);
    EXPECT_EQ(c.errOffset, 9);
    EXPECT_EQ(c.state()->captureCount, 3);
    EXPECT_EQ(c.state()->options, static_cast<uint32_t>(OptionGlobal | OptionIgnoreCase));
}

// The first fault in pattern order wins within a pass, and any validation
// fault wins over a translation fault earlier in the text.
TEST(Faults, OrderOfDetection) {
    Compiled a = compilePattern("[c-a](");
    EXPECT_EQ(a.status, zevStatusRegExpBadSyntax);
    EXPECT_EQ(a.errOffset, 6);
    Compiled b = compilePattern("a**[c-a]");
    EXPECT_EQ(b.status, zevStatusRegExpBadRepeat);
    EXPECT_EQ(b.errOffset, 2);
    Compiled o = compilePattern("(", "q");
    EXPECT_EQ(o.status, zevStatusRegExpBadOptions);
    EXPECT_EQ(o.errOffset, 0);
}

// Back-references: the number is checked against the capture total of the
// whole pattern, so forward references are fine and missing ones fail.
TEST(Faults, BackReferenceNumbers) {
    EXPECT_EQ(compilePattern("\\1(a)").status, zevStatusOk);
    Compiled two = compilePattern("(a)\\2");
    EXPECT_EQ(two.status, zevStatusRegExpBadReference);
    EXPECT_EQ(two.errOffset, 4);
    // Twelve groups make \12 a reference; with eleven it is octal 10.
    std::string twelve;
    for (int i = 0; i < 12; ++i) twelve += "(a)";
    Compiled r = compilePattern((twelve + "\\12").c_str());
    ASSERT_EQ(r.status, zevStatusOk);
    EXPECT_EQ(r.node(r.state()->nodeCount - 1).kind, NodeBackRef);
    EXPECT_EQ(r.node(r.state()->nodeCount - 1).word1, 12);
    Compiled o = compilePattern((twelve.substr(3) + "\\12").c_str());
    ASSERT_EQ(o.status, zevStatusOk);
    EXPECT_EQ(o.node(o.state()->nodeCount - 1).kind, NodeChar);
    EXPECT_EQ(o.node(o.state()->nodeCount - 1).word1, 10);
}
