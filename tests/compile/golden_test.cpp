// Golden dumps of compiled patterns: tests/compile/golden.txt holds
// {pattern, options, expected dump} cases, one family of constructs per
// section; a failing case prints both dumps. Patterns that need a newline
// or a control byte are kept here instead.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/compile/compile_helpers.h"

namespace {

struct Golden {
    std::string pattern;
    std::string options;
    bool        hasOptions = false;
    std::string dump;
    int         line = 0;
};

std::vector<Golden> readGoldens(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<Golden> cases;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (line.rfind(">", 0) == 0) {
            Golden g;
            std::string text = line.size() > 2 ? line.substr(2) : "";
            size_t tab = text.find('\t');
            g.pattern = text.substr(0, tab);
            if (tab != std::string::npos) {
                g.options = text.substr(tab + 1);
                g.hasOptions = true;
            }
            g.line = number;
            cases.push_back(g);
        } else if (!line.empty() && line[0] != '#' && !cases.empty()) {
            cases.back().dump += line + "\n";
        }
    }
    return cases;
}

void checkGolden(const std::string& pattern, const char* options, const std::string& expected) {
    Compiled c = compilePattern(pattern.c_str(), options);
    ASSERT_EQ(c.status, zevStatusOk) << "at offset " << c.errOffset;
    EXPECT_EQ(c.errOffset, -12345) << "success must not write errOffset";
    EXPECT_EQ(c.dump(), expected);
}

}  // namespace

TEST(Golden, File) {
    std::vector<Golden> cases = readGoldens(ZEVCH_SOURCE_DIR "/tests/compile/golden.txt");
    ASSERT_GT(cases.size(), 150u);
    for (const Golden& g : cases) {
        SCOPED_TRACE("golden.txt:" + std::to_string(g.line) + " " + g.pattern);
        checkGolden(g.pattern, g.hasOptions ? g.options.c_str() : nullptr, g.dump);
    }
}

// Extended mode passes over newlines and # comments to the next newline; a
// byte 11 is no white space; without the option a newline and # are literals.
TEST(Golden, NewlinesAndComments) {
    checkGolden("a b\n#c\nd", "x",
                "nodeCount=3 captureCount=1 trailingLiteral=2 options=x matchLimit=10000 format=1\n"
                "0 NodeChar 'a'\n"
                "1 NodeChar 'b'\n"
                "2 NodeChar 'd' opts=x\n");
    checkGolden("a\x0b b", "x",
                "nodeCount=2 captureCount=1 trailingLiteral=1 options=x matchLimit=10000 format=1\n"
                "0 NodeString len=2 \"a\\x0B\"\n"
                "1 NodeChar 'b' opts=x\n");
    checkGolden("a\n#b", nullptr,
                "nodeCount=1 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
                "0 NodeString len=4 \"a\\x0A#b\" opts=-\n");
    checkGolden("(?x)a#(\n(b)", nullptr,
                "nodeCount=4 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
                "0 NodeChar 'a'\n"
                "1 NodeCapture id=1 span=1 capture=1\n"
                "2 NodeChar 'b'\n"
                "3 NodeClose id=1 opts=x mark=0\n");
}
