// Golden dumps of compiled patterns: {pattern, options, expected dump}. Each
// table pins one family of constructs; a failing row prints both dumps.
#include <gtest/gtest.h>

#include "tests/compile/compile_helpers.h"

namespace {

struct Golden {
    const char* pattern;
    const char* options;
    const char* dump;
};

void checkGoldens(const Golden* rows, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Compiled c = compilePattern(rows[i].pattern, rows[i].options);
        ASSERT_EQ(c.status, zevStatusOk) << "pattern " << rows[i].pattern << " at " << c.errOffset;
        EXPECT_EQ(c.errOffset, -12345) << "success must not write errOffset: " << rows[i].pattern;
        EXPECT_EQ(c.dump(), rows[i].dump) << "pattern " << rows[i].pattern;
    }
}

// Literals, runs, escapes, quoting, anchors and property escapes.
constexpr Golden Atoms[] = {
    {"(a|b)c+", nullptr,
        "nodeCount=7 captureCount=2 trailingLiteral=5 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=3 capture=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeAlternate id=1 opts=-\n"
        "3 NodeChar 'b'\n"
        "4 NodeClose id=1 opts=- mark=0\n"
        "5 NodeChar 'c' opts=-\n"
        "6 NodeRepeat min=1 max=inf\n"    },
    {"", nullptr,
        "nodeCount=0 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"    },
    {"abc", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=3 \"abc\" opts=-\n"    },
    {"abc{2}", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=1 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=2 \"ab\"\n"
        "1 NodeChar 'c' opts=-\n"
        "2 NodeRepeat min=2 max=2\n"    },
    {"ab{2}", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeChar 'b' opts=-\n"
        "2 NodeRepeat min=2 max=2\n"    },
    {"a*?", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeRepeatLazy min=0 max=inf\n"    },
    {"a{2}?", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a' opts=-\n"
        "1 NodeRepeatLazy min=2 max=2\n"    },
    {"^a$", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeAssert ^\n"
        "1 NodeChar 'a'\n"
        "2 NodeAssert $\n"    },
    {"\\A\\B\\G\\Z\\b\\z", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeAssert \\A\n"
        "1 NodeAssert \\B\n"
        "2 NodeAssert \\G\n"
        "3 NodeAssert \\Z\n"
        "4 NodeAssert \\b\n"
        "5 NodeAssert \\z\n"    },
    {"a\\Eb", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeChar 'b' opts=-\n"    },
    {"\\-abc", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=4 \"-abc\" opts=-\n"    },
    {"\\a\\e\\f\\n\\r\\t\\v", nullptr,
        "nodeCount=7 captureCount=1 trailingLiteral=6 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 0x07\n"
        "1 NodeChar 0x1B\n"
        "2 NodeChar 0x0C\n"
        "3 NodeChar 0x0A\n"
        "4 NodeChar 0x0D\n"
        "5 NodeChar 0x09\n"
        "6 NodeChar 0x0B opts=-\n"    },
    {"\\cA\\ca\\c;\\c{", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=3 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 0x01\n"
        "1 NodeChar 0x01\n"
        "2 NodeChar '{'\n"
        "3 NodeChar ';' opts=-\n"    },
    {"\\012\\0123\\08", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=4 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 0x0A\n"
        "1 NodeChar 0x0A\n"
        "2 NodeChar '3'\n"
        "3 NodeChar 0x00\n"
        "4 NodeChar '8' opts=-\n"    },
    {"\\12\\18\\89\\1234", nullptr,
        "nodeCount=7 captureCount=1 trailingLiteral=6 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 0x0A\n"
        "1 NodeChar 0x01\n"
        "2 NodeChar '8'\n"
        "3 NodeChar 0x00\n"
        "4 NodeString len=2 \"89\"\n"
        "5 NodeChar 'S'\n"
        "6 NodeChar '4' opts=-\n"    },
    {"\\x\\xg\\x4\\x41", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=4 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 0x00\n"
        "1 NodeChar 0x00\n"
        "2 NodeChar 'g'\n"
        "3 NodeChar 0x04\n"
        "4 NodeChar 'A' opts=-\n"    },
    {"\\x{20AC}\\x{}", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeWideChar U+20AC\n"
        "1 NodeWideChar U+0000\n"    },
    {"ab\\Qcd\\Eef", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=2 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=2 \"ab\"\n"
        "1 NodeString len=2 \"cd\"\n"
        "2 NodeString len=2 \"ef\" opts=-\n"    },
    {"\\Qa\\E\\Q\\E\\Qab", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeString len=2 \"ab\" opts=-\n"    },
    {"\\C\\X\\h\\K", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=3 options=- matchLimit=10000 format=1\n"
        "0 NodeAnyByte\n"
        "1 NodeGrapheme\n"
        "2 NodeChar 'h'\n"
        "3 NodeChar 'K' opts=-\n"    },
    {"(a)\\1\\01", nullptr,
        "nodeCount=5 captureCount=2 trailingLiteral=4 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=1 capture=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeClose id=1 opts=- mark=0\n"
        "3 NodeBackRef ref=1\n"
        "4 NodeChar 0x01 opts=-\n"    },
    {"\\p{L}\\P{Lu}\\p{^N}", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeProperty mask=0x80\n"
        "1 NodeProperty mask=0x82 inv\n"
        "2 NodeProperty mask=0x800 inv\n"    },
    {"\\p{InThai}\\p{Any}\\P{Any}", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeBlock U+0E00-U+0E7F\n"
        "1 NodeBlock U+0000-U+10FFFF\n"
        "2 NodeBlock U+0000-U+10FFFF inv\n"    },
    {"[ ]\\ \\Q \\E", "x",
        "nodeCount=3 captureCount=1 trailingLiteral=2 options=x matchLimit=10000 format=1\n"
        "0 NodeChar 0x20\n"
        "1 NodeChar 0x20\n"
        "2 NodeChar 0x20 opts=x\n"    },
    {"ab(?#c)cd", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=1 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=2 \"ab\"\n"
        "1 NodeString len=2 \"cd\" opts=-\n"    },
    {"{a}{2", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=5 \"{a}{2\" opts=-\n"    },
    {"a b\n#c\nd", "x",
        "nodeCount=3 captureCount=1 trailingLiteral=2 options=x matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeChar 'b'\n"
        "2 NodeChar 'd' opts=x\n"},
    {"a\x0b b", "x",
        "nodeCount=2 captureCount=1 trailingLiteral=1 options=x matchLimit=10000 format=1\n"
        "0 NodeString len=2 \"a\\x0B\"\n"
        "1 NodeChar 'b' opts=x\n"},
    {"a\n#b", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=4 \"a\\x0A#b\" opts=-\n"},
};

// Bracket classes: first items, ranges, escapes, POSIX elements, single items.
constexpr Golden Classes[] = {
    {"[]]", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar ']'\n"},
    {"[]a]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar ']'\n"
        "2   NodeChar 'a'\n"},
    {"[^]a]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass neg items=2\n"
        "1   NodeChar ']'\n"
        "2   NodeChar 'a'\n"},
    {"[^-a]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass neg items=2\n"
        "1   NodeChar '-'\n"
        "2   NodeChar 'a'\n"},
    {"[-a]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar '-'\n"
        "2   NodeChar 'a'\n"},
    {"[a-]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 'a'\n"
        "2   NodeChar '-'\n"},
    {"[a-c-e]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=3\n"
        "1   NodeRange 'a'-'c'\n"
        "2   NodeChar '-'\n"
        "3   NodeChar 'e'\n"},
    {"[+--]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=1\n"
        "1   NodeRange '+'-'-'\n"},
    {"[a-\\d]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=3\n"
        "1   NodeChar 'a'\n"
        "2   NodeChar '-'\n"
        "3   NodeCharType \\d\n"},
    {"[\\d-a]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=3\n"
        "1   NodeCharType \\d\n"
        "2   NodeChar '-'\n"
        "3   NodeChar 'a'\n"},
    {"[a-[:digit:]]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=3\n"
        "1   NodeChar 'a'\n"
        "2   NodeChar '-'\n"
        "3   NodeRange '0'-'9'\n"},
    {"[[:alpha]", nullptr,
        "nodeCount=8 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=7\n"
        "1   NodeChar '['\n"
        "2   NodeChar ':'\n"
        "3   NodeChar 'a'\n"
        "4   NodeChar 'l'\n"
        "5   NodeChar 'p'\n"
        "6   NodeChar 'h'\n"
        "7   NodeChar 'a'\n"},
    {"[[:]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar '['\n"
        "2   NodeChar ':'\n"},
    {"[:a]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar ':'\n"
        "2   NodeChar 'a'\n"},
    {"[^:a:]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass neg items=3\n"
        "1   NodeChar ':'\n"
        "2   NodeChar 'a'\n"
        "3   NodeChar ':'\n"},
    {"[\\8]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 0x00\n"
        "2   NodeChar '8'\n"},
    {"[\\1012]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 'A'\n"
        "2   NodeChar '2'\n"},
    {"[\\777]", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 0x1FF\n"},
    {"[a^]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 'a'\n"
        "2   NodeChar '^'\n"},
    {"[^^]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass neg items=1\n"
        "1   NodeChar '^'\n"},
    {"[a]", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"},
    {"[\\d]", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\d\n"},
    {"[\\d]\\d", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\d\n"
        "1 NodeRepeat min=2 max=2\n"},
    {"[a\\d]\\d", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 'a'\n"
        "2   NodeCharType \\d\n"
        "3 NodeRepeat min=2 max=2\n"},
    {"[a-\\Eb]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=1\n"
        "1   NodeRange 'a'-'b'\n"},
    {"[z-\\Qa\\E]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=1\n"
        "1   NodeRange 'z'-'a'\n"},
    {"[a-\\Q\\E]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 'a'\n"
        "2   NodeChar '-'\n"},
    {"[\\Qa-c\\E]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=3\n"
        "1   NodeChar 'a'\n"
        "2   NodeChar '-'\n"
        "3   NodeChar 'c'\n"},
    {"[a-\\E]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=1\n"
        "1   NodeRange 'a'-0x00\n"},
    {"[\\x00-\\x00b]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=1\n"
        "1   NodeRange 0x00-'b'\n"},
    {"[a-\\p{L}]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeRange 'a'-0x00\n"
        "2   NodeProperty mask=0x80\n"},
    {"[a-[:x]", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=4\n"
        "1   NodeRange 'a'-0x00\n"
        "2   NodeChar '['\n"
        "3   NodeChar ':'\n"
        "4   NodeChar 'x'\n"},
    {"[\\]\\a\\b\\e\\f\\n\\r\\t\\v]", nullptr,
        "nodeCount=10 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=9\n"
        "1   NodeChar ']'\n"
        "2   NodeChar 0x07\n"
        "3   NodeChar 0x08\n"
        "4   NodeChar 0x1B\n"
        "5   NodeChar 0x0C\n"
        "6   NodeChar 0x0A\n"
        "7   NodeChar 0x0D\n"
        "8   NodeChar 0x09\n"
        "9   NodeChar 0x0B\n"},
    {"[\\cA\\x41\\x{41}\\x{20AC}]", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=4\n"
        "1   NodeChar 0x01\n"
        "2   NodeChar 'A'\n"
        "3   NodeWideChar U+0041\n"
        "4   NodeWideChar U+20AC\n"},
    {"[\\X\\C\\z-]", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=4\n"
        "1   NodeChar 'X'\n"
        "2   NodeChar 'C'\n"
        "3   NodeChar 'z'\n"
        "4   NodeChar '-'\n"},
    {"[\\s\\S\\w\\W\\D]", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=5\n"
        "1   NodeCharType \\s\n"
        "2   NodeCharType \\S\n"
        "3   NodeCharType \\w\n"
        "4   NodeCharType \\W\n"
        "5   NodeCharType \\D\n"},
    {"[\\pL\\P{Greek}]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeProperty mask=0x80\n"
        "2   NodeScript ranges=51 first=572 inv\n"},
    {"[[:alnum:][:alpha:][:ascii:][:blank:][:cntrl:]]", nullptr,
        "nodeCount=10 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=9\n"
        "1   NodeRange 'a'-'z'\n"
        "2   NodeRange 'A'-'Z'\n"
        "3   NodeRange '0'-'9'\n"
        "4   NodeRange 'a'-'z'\n"
        "5   NodeRange 'A'-'Z'\n"
        "6   NodeRange 0x00-0x7F\n"
        "7   NodeChar 0x20\n"
        "8   NodeChar 0x09\n"
        "9   NodeRange 0x00-0x1F\n"},
    {"[[:digit:][:graph:][:lower:][:print:][:punct:]]", nullptr,
        "nodeCount=9 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=8\n"
        "1   NodeRange '0'-'9'\n"
        "2   NodeRange '!'-0xFF\n"
        "3   NodeRange 'a'-'z'\n"
        "4   NodeRange 0x20-0xFF\n"
        "5   NodeRange 0x20-'/'\n"
        "6   NodeRange ':'-'@'\n"
        "7   NodeRange '['-'`'\n"
        "8   NodeRange '{'-0xFF\n"},
    {"[[:space:][:upper:][:word:][:xdigit:]]", nullptr,
        "nodeCount=8 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=7\n"
        "1   NodeRange 0x09-0x0D\n"
        "2   NodeChar 0x20\n"
        "3   NodeRange 'A'-'Z'\n"
        "4   NodeCharType \\w\n"
        "5   NodeRange 'a'-'f'\n"
        "6   NodeRange 'A'-'F'\n"
        "7   NodeRange '0'-'9'\n"},
    {"[[:^alpha:][:^blank:][:^word:]x]", nullptr,
        "nodeCount=7 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=6\n"
        "1   NodeRange 'a'-'z' inv\n"
        "2   NodeRange 'A'-'Z' inv\n"
        "3   NodeChar 0x20 inv\n"
        "4   NodeChar 0x09 inv\n"
        "5   NodeCharType \\W\n"
        "6   NodeChar 'x'\n"},
    {"[[.digit.][=upper=]x]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=3\n"
        "1   NodeRange '0'-'9'\n"
        "2   NodeRange 'A'-'Z'\n"
        "3   NodeChar 'x'\n"},
    {"[[:alpha:](]", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=3\n"
        "1   NodeRange 'a'-'z'\n"
        "2   NodeRange 'A'-'Z'\n"
        "3   NodeChar '('\n"},
    {"[\xc3""\xa9""]", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 0xE9\n"},
    {"[\xe2""\x82""\xac""]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=1\n"
        "1   NodeWideChar U+20AC\n"},
    {"[\xc3""\xa9""\xe2""\x82""\xac""]", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 0xE9\n"
        "2   NodeWideChar U+20AC\n"},
    {"[a-\xc3""\xa9""]", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=1\n"
        "1   NodeRange 'a'-0xE9\n"},
};

// Groups, options, conditionals, alternation and quantifiers on groups.
constexpr Golden Groups[] = {
    {"(a+)", nullptr,
        "nodeCount=4 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=2 capture=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeRepeat min=1 max=inf\n"
        "3 NodeClose id=1 opts=- mark=1\n"},
    {"(a+)*", nullptr,
        "nodeCount=5 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=2 capture=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeRepeat min=1 max=inf\n"
        "3 NodeClose id=1 opts=- mark=-1\n"
        "4 NodeRepeat min=0 max=inf\n"},
    {"(ab+)*", nullptr,
        "nodeCount=6 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=3 capture=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeChar 'b'\n"
        "3 NodeRepeat min=1 max=inf\n"
        "4 NodeClose id=1 opts=- mark=0\n"
        "5 NodeRepeat min=0 max=inf\n"},
    {"(a|b+)*", nullptr,
        "nodeCount=7 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=4 capture=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeAlternate id=1 opts=-\n"
        "3 NodeChar 'b'\n"
        "4 NodeRepeat min=1 max=inf\n"
        "5 NodeClose id=1 opts=- mark=0\n"
        "6 NodeRepeat min=0 max=inf\n"},
    {"(a+?)+", nullptr,
        "nodeCount=5 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=2 capture=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeRepeatLazy min=1 max=inf\n"
        "3 NodeClose id=1 opts=- mark=0\n"
        "4 NodeRepeat min=1 max=inf\n"},
    {"(?>a+)*", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeAtomic id=-1 span=2\n"
        "1 NodeChar 'a'\n"
        "2 NodeRepeat min=1 max=inf\n"
        "3 NodeClose id=-1 opts=- mark=0\n"
        "4 NodeRepeat min=0 max=inf\n"},
    {"(\\d\\d)*", nullptr,
        "nodeCount=5 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=2 capture=1\n"
        "1 NodeCharType \\d\n"
        "2 NodeRepeat min=2 max=2\n"
        "3 NodeClose id=1 opts=- mark=-1\n"
        "4 NodeRepeat min=0 max=inf\n"},
    {"(?=a)*", nullptr,
        "nodeCount=0 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"},
    {"(?!a)?", nullptr,
        "nodeCount=0 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"},
    {"(?=a)+", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookahead id=-1 span=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeClose id=-1 opts=- mark=0\n"},
    {"(?=a){2}", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookahead id=-1 span=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeClose id=-1 opts=- mark=0\n"},
    {"a(?=b)*c", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeChar 'c' opts=-\n"},
    {"(?=a)(?!b)(?<=c)(?<!d)", nullptr,
        "nodeCount=12 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookahead id=-1 span=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeClose id=-1 opts=- mark=0\n"
        "3 NodeNegLookahead id=-2 span=1\n"
        "4 NodeChar 'b'\n"
        "5 NodeClose id=-2 opts=- mark=0\n"
        "6 NodeLookbehind id=-3 span=1 width=1\n"
        "7 NodeChar 'c'\n"
        "8 NodeClose id=-3 opts=- mark=0\n"
        "9 NodeNegLookbehind id=-4 span=1 width=1\n"
        "10 NodeChar 'd'\n"
        "11 NodeClose id=-4 opts=- mark=0\n"},
    {"(?i)", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeSetOptions opts=i\n"},
    {"(?x)", nullptr,
        "nodeCount=0 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"},
    {"(?-x)", nullptr,
        "nodeCount=0 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"},
    {"(?i-x)", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeSetOptions opts=i\n"},
    {"(?ix)", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeSetOptions opts=ix\n"},
    {"(?-i)", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeSetOptions opts=-\n"},
    {"(?)a", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a' opts=-\n"},
    {"(?#c)a", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a' opts=-\n"},
    {"(?i)a|b", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-2 options=- matchLimit=10000 format=1\n"
        "0 NodeSetOptions opts=i\n"
        "1 NodeChar 'a'\n"
        "2 NodeAlternate id=0 opts=i\n"
        "3 NodeChar 'b'\n"},
    {"(?i:a|b)c", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=5 options=- matchLimit=10000 format=1\n"
        "0 NodeOptionGroup id=1 span=3 opts=i\n"
        "1 NodeChar 'a'\n"
        "2 NodeAlternate id=1 opts=i\n"
        "3 NodeChar 'b'\n"
        "4 NodeClose id=1 opts=- mark=0\n"
        "5 NodeChar 'c' opts=-\n"},
    {"(?s-i:a)", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeOptionGroup id=1 span=1 opts=s\n"
        "1 NodeChar 'a'\n"
        "2 NodeClose id=1 opts=- mark=0\n"},
    {"a(?m)b(?-m)c", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=4 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeSetOptions opts=m\n"
        "2 NodeChar 'b'\n"
        "3 NodeSetOptions opts=-\n"
        "4 NodeChar 'c' opts=-\n"},
    {"(?(1)a|b)", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeConditional id=1 span=4\n"
        "1 NodeBackRef ref=1\n"
        "2 NodeChar 'a'\n"
        "3 NodeAlternate id=1 opts=-\n"
        "4 NodeChar 'b'\n"
        "5 NodeClose id=1 opts=- mark=0\n"},
    {"(?(1)(a|b)|c)", nullptr,
        "nodeCount=10 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeConditional id=1 span=8\n"
        "1 NodeBackRef ref=1\n"
        "2 NodeCapture id=2 span=3 capture=1\n"
        "3 NodeChar 'a'\n"
        "4 NodeAlternate id=2 opts=-\n"
        "5 NodeChar 'b'\n"
        "6 NodeClose id=2 opts=- mark=0\n"
        "7 NodeAlternate id=1 opts=-\n"
        "8 NodeChar 'c'\n"
        "9 NodeClose id=1 opts=- mark=0\n"},
    {"(?(12)a)", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeConditional id=1 span=2\n"
        "1 NodeBackRef ref=12\n"
        "2 NodeChar 'a'\n"
        "3 NodeClose id=1 opts=- mark=0\n"},
    {"(?(?=a)+b)", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeConditional id=1 span=4\n"
        "1 NodeLookahead id=-2 span=1\n"
        "2 NodeChar 'a'\n"
        "3 NodeClose id=-2 opts=- mark=0\n"
        "4 NodeChar 'b'\n"
        "5 NodeClose id=1 opts=- mark=0\n"},
    {"(?(?!a)b|c)", nullptr,
        "nodeCount=8 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeConditional id=1 span=6\n"
        "1 NodeNegLookahead id=-2 span=1\n"
        "2 NodeChar 'a'\n"
        "3 NodeClose id=-2 opts=- mark=0\n"
        "4 NodeChar 'b'\n"
        "5 NodeAlternate id=1 opts=-\n"
        "6 NodeChar 'c'\n"
        "7 NodeClose id=1 opts=- mark=0\n"},
    {"(?(?<=a)b)", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeConditional id=1 span=4\n"
        "1 NodeLookbehind id=-2 span=1 width=1\n"
        "2 NodeChar 'a'\n"
        "3 NodeClose id=-2 opts=- mark=0\n"
        "4 NodeChar 'b'\n"
        "5 NodeClose id=1 opts=- mark=0\n"},
    {"|", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-2 options=- matchLimit=10000 format=1\n"
        "0 NodeAlternate id=0 opts=-\n"},
    {"a|", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-2 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeAlternate id=0 opts=-\n"},
    {"|a", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-2 options=- matchLimit=10000 format=1\n"
        "0 NodeAlternate id=0 opts=-\n"
        "1 NodeChar 'a'\n"},
    {"a||b", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-2 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeAlternate id=0 opts=-\n"
        "2 NodeAlternate id=0 opts=-\n"
        "3 NodeChar 'b'\n"},
    {"(|)", nullptr,
        "nodeCount=3 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=1 capture=1\n"
        "1 NodeAlternate id=1 opts=-\n"
        "2 NodeClose id=1 opts=- mark=0\n"},
    {"((a)|(b))", nullptr,
        "nodeCount=9 captureCount=4 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCapture id=1 span=7 capture=1\n"
        "1 NodeCapture id=2 span=1 capture=2\n"
        "2 NodeChar 'a'\n"
        "3 NodeClose id=2 opts=- mark=0\n"
        "4 NodeAlternate id=1 opts=-\n"
        "5 NodeCapture id=3 span=1 capture=3\n"
        "6 NodeChar 'b'\n"
        "7 NodeClose id=3 opts=- mark=0\n"
        "8 NodeClose id=1 opts=- mark=0\n"},
    {"(?:a(b)c)", nullptr,
        "nodeCount=7 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=5\n"
        "1 NodeChar 'a'\n"
        "2 NodeCapture id=2 span=1 capture=1\n"
        "3 NodeChar 'b'\n"
        "4 NodeClose id=2 opts=- mark=0\n"
        "5 NodeChar 'c'\n"
        "6 NodeClose id=1 opts=- mark=0\n"},
};

// Folding of like character tests, merged repeats, the implicit anchor,
// dissolved groups and lookbehind widths.
constexpr Golden Analysis[] = {
    {"..", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=2 max=2\n"},
    {"...", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=3 max=3\n"},
    {"..*", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=1 max=inf\n"},
    {"...*", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=2 max=inf\n"},
    {"....+", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=4 max=inf\n"},
    {".{2}.", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=3 max=3\n"},
    {".{2,3}.+", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=3 max=inf\n"},
    {"\\d\\d?\\d", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\d\n"
        "1 NodeRepeat min=2 max=3\n"},
    {"\\w\\w\\w*", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\w\n"
        "1 NodeRepeat min=2 max=inf\n"},
    {".+?.+", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=2 max=inf\n"},
    {"..??", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=1 max=2\n"},
    {"\\W{1,2}?\\W{1,2}?", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\W\n"
        "1 NodeRepeat min=2 max=4\n"},
    {".*?.", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeatLazy min=1 max=inf\n"},
    {"(?:\\d)\\d", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\d\n"
        "1 NodeRepeat min=2 max=2\n"},
    {"\\d(?#c)\\d", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\d\n"
        "1 NodeRepeat min=2 max=2\n"},
    {"\\d\\D", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\d\n"
        "1 NodeCharType \\D\n"},
    {".\\d", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeCharType \\d\n"},
    {". .", "x",
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=x matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=2 max=2\n"},
    {"a{2} {3}", "x",
        "nodeCount=2 captureCount=1 trailingLiteral=0 options=x matchLimit=10000 format=1\n"
        "0 NodeChar 'a' opts=x\n"
        "1 NodeRepeat min=5 max=5\n"},
    {"a+ +", "x",
        "nodeCount=2 captureCount=1 trailingLiteral=0 options=x matchLimit=10000 format=1\n"
        "0 NodeChar 'a' opts=x\n"
        "1 NodeRepeat min=2 max=inf\n"},
    {"ab(?#c)*", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=0 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=2 \"ab\" opts=-\n"
        "1 NodeRepeat min=0 max=inf\n"},
    {".*", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeAssert line-start\n"
        "1 NodeCharType .\n"
        "2 NodeRepeat min=0 max=inf\n"},
    {".+", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeAssert line-start\n"
        "1 NodeCharType .\n"
        "2 NodeRepeat min=1 max=inf\n"},
    {".", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"},
    {".?", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeat min=0 max=1\n"},
    {".*?x", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=2 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeatLazy min=0 max=inf\n"
        "2 NodeChar 'x' opts=-\n"},
    {".+?x", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=2 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType .\n"
        "1 NodeRepeatLazy min=1 max=inf\n"
        "2 NodeChar 'x' opts=-\n"},
    {".*.*", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeAssert line-start\n"
        "1 NodeCharType .\n"
        "2 NodeRepeat min=0 max=inf\n"},
    {"(?:.*)x", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=5 options=- matchLimit=10000 format=1\n"
        "0 NodeAssert line-start\n"
        "1 NodeGroup id=1 span=2\n"
        "2 NodeCharType .\n"
        "3 NodeRepeat min=0 max=inf\n"
        "4 NodeClose id=1 opts=- mark=1\n"
        "5 NodeChar 'x' opts=-\n"},
    {"(?:.+)", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeAssert line-start\n"
        "1 NodeGroup id=1 span=2\n"
        "2 NodeCharType .\n"
        "3 NodeRepeat min=1 max=inf\n"
        "4 NodeClose id=1 opts=- mark=1\n"},
    {"(?:.*?)", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=2\n"
        "1 NodeCharType .\n"
        "2 NodeRepeatLazy min=0 max=inf\n"
        "3 NodeClose id=1 opts=- mark=0\n"},
    {"(?:a)", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"},
    {"(?:ab)", nullptr,
        "nodeCount=1 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=2 \"ab\"\n"},
    {"(?:a)*", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeRepeat min=0 max=inf\n"},
    {"(?:\\d)+", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeCharType \\d\n"
        "1 NodeRepeat min=1 max=inf\n"},
    {"(?:ab)c", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=1 options=- matchLimit=10000 format=1\n"
        "0 NodeString len=2 \"ab\"\n"
        "1 NodeChar 'c' opts=-\n"},
    {"(?:a*b)", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeRepeat min=0 max=inf\n"
        "2 NodeChar 'b'\n"},
    {"(?:[ab]c)", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeClass pos items=2\n"
        "1   NodeChar 'a'\n"
        "2   NodeChar 'b'\n"
        "3 NodeChar 'c'\n"},
    {"(?:ab)*", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=1\n"
        "1 NodeString len=2 \"ab\"\n"
        "2 NodeClose id=1 opts=- mark=0\n"
        "3 NodeRepeat min=0 max=inf\n"},
    {"(?:a*)", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=2\n"
        "1 NodeChar 'a'\n"
        "2 NodeRepeat min=0 max=inf\n"
        "3 NodeClose id=1 opts=- mark=1\n"},
    {"(?:[ab])", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=3\n"
        "1 NodeClass pos items=2\n"
        "2   NodeChar 'a'\n"
        "3   NodeChar 'b'\n"
        "4 NodeClose id=1 opts=- mark=0\n"},
    {"(?:a|b)", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=3\n"
        "1 NodeChar 'a'\n"
        "2 NodeAlternate id=1 opts=-\n"
        "3 NodeChar 'b'\n"
        "4 NodeClose id=1 opts=- mark=0\n"},
    {"(?:^a)", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=2\n"
        "1 NodeAssert ^\n"
        "2 NodeChar 'a'\n"
        "3 NodeClose id=1 opts=- mark=0\n"},
    {"(?:)", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=0\n"
        "1 NodeClose id=1 opts=- mark=0\n"},
    {"(?:a*?b)", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeGroup id=1 span=3\n"
        "1 NodeChar 'a'\n"
        "2 NodeRepeatLazy min=0 max=inf\n"
        "3 NodeChar 'b'\n"
        "4 NodeClose id=1 opts=- mark=0\n"},
    {"(?:(?x)a b) c", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=2 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'a'\n"
        "1 NodeChar 'b'\n"
        "2 NodeString len=2 \" c\" opts=-\n"},
    {"x(?:(?i)ab)c", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=5 options=- matchLimit=10000 format=1\n"
        "0 NodeChar 'x'\n"
        "1 NodeGroup id=1 span=2\n"
        "2 NodeSetOptions opts=i\n"
        "3 NodeString len=2 \"ab\"\n"
        "4 NodeClose id=1 opts=- mark=0\n"
        "5 NodeChar 'c' opts=-\n"},
    {"(?<=ab)c", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=3 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=1 width=2\n"
        "1 NodeString len=2 \"ab\"\n"
        "2 NodeClose id=-1 opts=- mark=0\n"
        "3 NodeChar 'c' opts=-\n"},
    {"(?<=a|b)", nullptr,
        "nodeCount=5 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=3 width=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeAlternate id=-1 opts=-\n"
        "3 NodeChar 'b'\n"
        "4 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<!(?:ab|cd)e)", nullptr,
        "nodeCount=8 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeNegLookbehind id=-1 span=6 width=3\n"
        "1 NodeGroup id=2 span=3\n"
        "2 NodeString len=2 \"ab\"\n"
        "3 NodeAlternate id=2 opts=-\n"
        "4 NodeString len=2 \"cd\"\n"
        "5 NodeClose id=2 opts=- mark=0\n"
        "6 NodeChar 'e'\n"
        "7 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<=(ab){3})", nullptr,
        "nodeCount=6 captureCount=2 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=4 width=6\n"
        "1 NodeCapture id=2 span=1 capture=1\n"
        "2 NodeString len=2 \"ab\"\n"
        "3 NodeClose id=2 opts=- mark=0\n"
        "4 NodeRepeat min=3 max=3\n"
        "5 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<=[ab]{3})", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=4 width=3\n"
        "1 NodeClass pos items=2\n"
        "2   NodeChar 'a'\n"
        "3   NodeChar 'b'\n"
        "4 NodeRepeat min=3 max=3\n"
        "5 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<=^a)", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=2 width=1\n"
        "1 NodeAssert ^\n"
        "2 NodeChar 'a'\n"
        "3 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<=(?=x)ab)", nullptr,
        "nodeCount=6 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=4 width=2\n"
        "1 NodeLookahead id=-2 span=1\n"
        "2 NodeChar 'x'\n"
        "3 NodeClose id=-2 opts=- mark=0\n"
        "4 NodeString len=2 \"ab\"\n"
        "5 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<=\\C)", nullptr,
        "nodeCount=3 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=1 width=0\n"
        "1 NodeAnyByte\n"
        "2 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<=a{0})", nullptr,
        "nodeCount=4 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=2 width=1\n"
        "1 NodeChar 'a'\n"
        "2 NodeRepeat min=0 max=0\n"
        "3 NodeClose id=-1 opts=- mark=0\n"},
    {"(?<=)", nullptr,
        "nodeCount=2 captureCount=1 trailingLiteral=-1 options=- matchLimit=10000 format=1\n"
        "0 NodeLookbehind id=-1 span=0 width=0\n"
        "1 NodeClose id=-1 opts=- mark=0\n"},
};

}  // namespace

TEST(Golden, Atoms) { checkGoldens(Atoms, std::size(Atoms)); }
TEST(Golden, Classes) { checkGoldens(Classes, std::size(Classes)); }
TEST(Golden, Groups) { checkGoldens(Groups, std::size(Groups)); }
TEST(Golden, Analysis) { checkGoldens(Analysis, std::size(Analysis)); }
