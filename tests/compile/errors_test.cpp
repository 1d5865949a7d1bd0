// Every fault the compiler reports (tests/compile/faults.txt), with its
// status and byte offset, and the state it leaves the record in: a
// validation fault writes no header field, a translation fault writes magic,
// captureCount, options and format only.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/compile/compile_helpers.h"

namespace {

constexpr uint32_t Untouched = 0xA5A5A5A5u;

struct Fault {
    std::string pattern;
    zevStatus   status = 0;
    int32_t     offset = 0;
    bool        validation = false;
    int         line = 0;
};

zevStatus statusByName(const std::string& name) {
    static const std::map<std::string, zevStatus> names = {
        {"BadProperty", zevStatusRegExpBadProperty},   {"BadClass", zevStatusRegExpBadClass},
        {"BadReference", zevStatusRegExpBadReference}, {"BadSyntax", zevStatusRegExpBadSyntax},
        {"BadRepeat", zevStatusRegExpBadRepeat}};
    auto it = names.find(name);
    return it == names.end() ? zevStatusOk : it->second;
}

std::vector<Fault> readFaults(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<Fault> faults;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        size_t tab = line.find('\t');
        if (line.empty() || line[0] == '#' || tab == std::string::npos) continue;
        std::istringstream head(line.substr(0, tab));
        std::string status, pass;
        Fault f;
        head >> status >> f.offset >> pass;
        f.status = statusByName(status);
        f.validation = pass == "V";
        f.pattern = line.substr(tab + 1);
        f.line = number;
        faults.push_back(f);
    }
    return faults;
}

}  // namespace

TEST(Faults, StatusOffsetAndRecordState) {
    std::vector<Fault> faults = readFaults(ZEVCH_SOURCE_DIR "/tests/compile/faults.txt");
    ASSERT_GT(faults.size(), 120u);
    for (const Fault& f : faults) {
        SCOPED_TRACE("faults.txt:" + std::to_string(f.line) + " " + f.pattern);
        ASSERT_NE(f.status, zevStatusOk);
        Compiled c = compilePattern(f.pattern.c_str());
        EXPECT_EQ(c.status, f.status);
        EXPECT_EQ(c.errOffset, f.offset);
        const RegExpState* s = c.state();
        if (f.validation) {
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

// The first pass must see exactly the real parentheses: those in classes,
// escapes, quotes and extended-mode comments open nothing, and the capture
// count it finds is the record's.
TEST(Faults, ParenthesesHiddenFromTheFirstPass) {
    struct Case { const char* pattern; const char* options; int32_t captureCount; };
    for (const Case& c : {Case{"[(]", nullptr, 1}, Case{"\\(", nullptr, 1}, Case{"\\Q(\\E", nullptr, 1},
                          Case{"[]()]", nullptr, 1}, Case{"[^]()]", nullptr, 1}, Case{"[[:alpha:](]", nullptr, 1},
                          Case{"\\Q(", nullptr, 1}, Case{"#(\n()", "x", 2}, Case{"(?x)#(\n()", nullptr, 2},
                          Case{"(?x:#()\n)#()", nullptr, 2}, Case{"(?-x)#()", "x", 2}, Case{"[\\Q(\\E](", nullptr, 0},
                          Case{"(?#(()", nullptr, 1}, Case{"\\c(", nullptr, 1}, Case{"(?i:(?x)#(\n)(", nullptr, 0}}) {
        Compiled r = compilePattern(c.pattern, c.options);
        if (c.captureCount == 0) {
            EXPECT_EQ(r.status, zevStatusRegExpBadSyntax) << c.pattern;
            EXPECT_EQ(r.errOffset, static_cast<int32_t>(std::strlen(c.pattern))) << c.pattern;
        } else {
            ASSERT_EQ(r.status, zevStatusOk) << c.pattern;
            EXPECT_EQ(r.state()->captureCount, c.captureCount) << c.pattern;
        }
    }
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
