// The zevch command run as a process on files in a scratch directory.
#include <gtest/gtest.h>

#ifdef ZEVCH_HAVE_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#endif
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string quote(const std::string& s) {
    std::string q = "'";
    for (char c : s) {
        if (c == '\'') {
            q += "'\\''";
        } else {
            q += c;
        }
    }
    return q + "'";
}

std::string slurp(const std::string& path) {
    std::ifstream f(path, std::ios::binary);
    std::stringstream ss;
    ss << f.rdbuf();
    return ss.str();
}

struct Outcome {
    int exit;
    std::string out;
    std::string err;
};

class Tool : public ::testing::Test {
protected:
    void SetUp() override {
        const char* base = std::getenv("TMPDIR");
        std::string templ = std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/zevch-tool-XXXXXX";
        std::vector<char> buf(templ.begin(), templ.end());
        buf.push_back('\0');
        ASSERT_NE(mkdtemp(buf.data()), nullptr);
        dir_ = buf.data();
    }
    void TearDown() override { std::system(("rm -rf " + quote(dir_)).c_str()); }

    std::string path(const std::string& name) const { return dir_ + "/" + name; }

    std::string write(const std::string& name, const std::string& content) {
        std::ofstream f(path(name), std::ios::binary);
        f << content;
        return path(name);
    }

    // Runs the tool with `args`; `input` names a file for standard input,
    // handed over as a file or, with `pipe`, through a pipe.
    Outcome run(const std::vector<std::string>& args, const std::string& input = "/dev/null",
                bool pipe = false) {
        std::string cmd = pipe ? "cat " + quote(input) + " | " : "";
        cmd += quote(ZEVCH_TOOL_PATH);
        for (const std::string& a : args) cmd += " " + quote(a);
        if (!pipe) cmd += " < " + quote(input);
        cmd += " > " + quote(path(".out")) + " 2> " + quote(path(".err"));
        const int status = std::system(cmd.c_str());
        Outcome r;
        r.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        r.out = slurp(path(".out"));
        r.err = slurp(path(".err"));
        return r;
    }

    std::string dir_;
};

TEST_F(Tool, GrepSelectsLinesAndExitsAsGrepDoes) {
    const std::string f = write("words.txt", "alpha\nbeta\ngamma\nalphabet\nALPHA\n");
    Outcome r = run({"grep", "alpha", f});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out, "alpha\nalphabet\n");
    r = run({"grep", "-c", "-i", "alpha", f});
    EXPECT_EQ(r.out, "3\n");
    r = run({"grep", "-n", "bet", f});
    EXPECT_EQ(r.out, "2:beta\n4:alphabet\n");
    r = run({"grep", "-o", "[ae]\\w", f});
    EXPECT_EQ(r.out, "al\net\nam\nal\nab\net\n");
    r = run({"grep", "zeta", f});
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.out, "");
    const std::string g = write("other.txt", "no greek here\n");
    r = run({"grep", "-l", "e", f, g});
    EXPECT_EQ(r.out, f + "\n" + g + "\n");
    r = run({"grep", "-c", "alpha", f, g});
    EXPECT_EQ(r.out, f + ":2\n" + g + ":0\n");
    // Standard input, and a last line without a newline.
    const std::string in = write("stdin.txt", "one\ntwo\nthree");
    r = run({"grep", "t"}, in);
    EXPECT_EQ(r.out, "two\nthree\n");
}

TEST_F(Tool, GrepWholeSearchesAcrossLines) {
    const std::string f = write("text.txt", "start\nmiddle\nend\nstart again\n");
    Outcome r = run({"grep", "--whole", "-n", "art\\nmid", f});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out, "1:start\n2:middle\n");
    r = run({"grep", "--whole", "-c", "start", f});
    EXPECT_EQ(r.out, "2\n");
    r = run({"grep", "--whole", "-o", "-n", "e\\w", f});
    EXPECT_EQ(r.out, "3:en\n");
    r = run({"grep", "--whole", "-m", "^\\w+$", f});
    EXPECT_EQ(r.out, "start\nmiddle\nend\n");
}

TEST_F(Tool, BinaryAndEmptyInputs) {
    const char raw[] = "head\0\x01\xff match me\ntail\n";
    const std::string bin = write("data.bin", std::string(raw, sizeof raw - 1));
    Outcome r = run({"grep", "match", bin});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out, "Binary file " + bin + " matches\n");
    r = run({"grep", "-c", "a", bin});
    EXPECT_EQ(r.out, "2\n");
    r = run({"replace", "-g", "\\x00", "<NUL>", bin});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out, std::string("head<NUL>\x01\xff match me\ntail\n"));

    const std::string empty = write("empty.txt", "");
    r = run({"grep", "-c", "x", empty});
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.out, "0\n");
    r = run({"replace", "-g", "x", "y", empty});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out, "");
    const std::string list = write("patterns.txt", "x\n^$\n");
    r = run({"multi", "-f", list, empty});
    EXPECT_EQ(r.out, "1\t0\tx\n2\t1\t^$\n");
}

TEST_F(Tool, ErrorsAreSentencesAndTheOtherFilesGoOn) {
    const std::string f = write("a.txt", "apple\n");
    Outcome r = run({"grep", "p+", path("missing.txt"), f});
    EXPECT_EQ(r.exit, 2);
    EXPECT_EQ(r.out, f + ":apple\n");
    EXPECT_NE(r.err.find("zevch: cannot open " + path("missing.txt")), std::string::npos) << r.err;

    r = run({"grep", "a{2,1}", f});
    EXPECT_EQ(r.exit, 2);
    EXPECT_EQ(r.err, "zevch: bad pattern at offset 2: zevStatusRegExpBadRepeat\n");
    r = run({"replace", "a", "$0", f});
    EXPECT_EQ(r.exit, 2);
    EXPECT_NE(r.err.find("zevStatusRegExpBadReference"), std::string::npos) << r.err;
    r = run({"frobnicate"});
    EXPECT_EQ(r.exit, 2);
    r = run({"grep", "--bogus", "a", f});
    EXPECT_EQ(r.exit, 2);
    EXPECT_NE(r.err.find("unknown option --bogus"), std::string::npos);
    r = run({"grep", "--limit", "many", "a", f});
    EXPECT_EQ(r.exit, 2);
    r = run({"grep", "a", dir_});
    EXPECT_EQ(r.exit, 2);
    EXPECT_NE(r.err.find("is a directory"), std::string::npos);
}

TEST_F(Tool, MatchLimitIsReportedNotFatal) {
    const std::string f = write("long.txt", std::string(200, 'a') + "\nc\n");
    Outcome r = run({"grep", "--limit", "300", "(a|b)*[cd]", f});
    EXPECT_EQ(r.exit, 2);
    EXPECT_EQ(r.out, "c\n");
    EXPECT_NE(r.err.find("zevStatusRegExpMatchLimit"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find(f + ":1:"), std::string::npos) << r.err;
    // The replacement passes the line on unchanged.
    r = run({"replace", "--limit", "300", "(a|b)*[cd]", "X", f});
    EXPECT_EQ(r.exit, 2);
    EXPECT_EQ(r.out, std::string(200, 'a') + "\nX\n");
}

TEST_F(Tool, ReplaceGrowsItsBuffersUntilNothingIsLost) {
    const std::string f = write("dates.txt", "from 2026-03-14 to 2026-03-16\nnone\n\nlast 1999-12-31");
    Outcome r = run({"replace", "-g", "(\\d{4})-(\\d\\d)-(\\d\\d)", "$3.$2.$1", f});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out, "from 14.03.2026 to 16.03.2026\nnone\n\nlast 31.12.1999");
    r = run({"replace", "\\d+", "#", f});
    EXPECT_EQ(r.out, "from #-03-14 to 2026-03-16\nnone\n\nlast #-12-31");

    // Each byte becomes eight: the output passes every first guess.
    std::string text;
    for (int i = 0; i < 20000; ++i) text += static_cast<char>('a' + i % 26);
    const std::string big = write("big.txt", text);
    r = run({"replace", "-g", "--whole", "\\w", "$&$&$&$&$&$&$&$&", big});
    EXPECT_EQ(r.exit, 0);
    ASSERT_EQ(r.out.size(), text.size() * 8);
    EXPECT_EQ(r.out.substr(0, 16), "aaaaaaaabbbbbbbb");
    EXPECT_EQ(r.out.substr(r.out.size() - 8), std::string(8, text.back()));
    // Many more matches than the first match array holds; with groups.
    r = run({"replace", "-g", "--whole", "(\\w)", "[$1]", big});
    ASSERT_EQ(r.out.size(), text.size() * 3);
    EXPECT_EQ(r.out.substr(r.out.size() - 3), std::string("[") + text.back() + "]");
}

TEST_F(Tool, MultiCountsAndTagsMatches) {
    const std::string f = write("log.txt", "a1 b22 c333\nmail x@y.org now\n");
    const std::string list = write("patterns.txt", "\\d+\n\n[a-c](\\d)\\d*\r\n\\w+@\\w+\\.org\n");
    Outcome r = run({"multi", "-f", list, f});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out, "1\t3\t\\d+\n2\t3\t[a-c](\\d)\\d*\n3\t1\t\\w+@\\w+\\.org\n");
    r = run({"multi", "-o", "-f", list, f});
    EXPECT_EQ(r.out, "1:1\n2:1\n1:22\n2:2\n1:333\n2:3\n3:x@y.org\n");
    const std::string bad = write("bad.txt", "ok\n(unclosed\n");
    r = run({"multi", "-f", bad, f});
    EXPECT_EQ(r.exit, 2);
    EXPECT_NE(r.err.find(bad + ":2: bad pattern at offset"), std::string::npos) << r.err;
    r = run({"multi", f});
    EXPECT_EQ(r.exit, 2);
}

TEST_F(Tool, ExplainShowsNodesOrTheFault) {
    Outcome r = run({"explain", "a+(b|c)", "i"});
    EXPECT_EQ(r.exit, 0);
    EXPECT_NE(r.out.find("NodeRepeat"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("NodeCapture"), std::string::npos) << r.out;
    r = run({"explain", "ab(c"});
    EXPECT_EQ(r.exit, 2);
    EXPECT_NE(r.err.find("zevStatusRegExpBadSyntax"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("  ab(c\n  "), std::string::npos) << r.err;
    EXPECT_EQ(r.err.back(), '\n');
    r = run({"explain", "a", "q"});
    EXPECT_EQ(r.exit, 2);
    EXPECT_NE(r.err.find("zevStatusRegExpBadOptions"), std::string::npos) << r.err;
}

TEST_F(Tool, HelpAndDemo) {
    for (const char* command : {"grep", "replace", "multi", "explain", "demo"}) {
        Outcome r = run({command, "--help"});
        EXPECT_EQ(r.exit, 0) << command;
        EXPECT_EQ(r.out.rfind(std::string("usage: zevch ") + command, 0), 0u) << r.out;
    }
    Outcome r = run({"--help"});
    EXPECT_EQ(r.exit, 0);
    r = run({"demo"});
    EXPECT_EQ(r.exit, 0) << r.err;
    EXPECT_NE(r.out.find("14.03.2026 09:12:01 INFO"), std::string::npos);
    EXPECT_NE(r.out.find("jane.doe+alerts@example.net"), std::string::npos);
    EXPECT_EQ(r.err, "");
}

// About 20 MB: line mode through a pipe (no mapping) and whole mode on the file.
TEST_F(Tool, LargeInput) {
    std::string text;
    text.reserve(21 << 20);
    int64_t expected = 0;
    for (int i = 0; text.size() < (size_t{20} << 20); ++i) {
        if (i % 97 == 0) {
            text += "line " + std::to_string(i) + " has user" + std::to_string(i) + "@example.org in it\n";
            ++expected;
        } else {
            text += "line " + std::to_string(i) + " is filler text without an address of any kind\n";
        }
    }
    const std::string f = write("large.txt", text);
    Outcome r = run({"grep", "-c", "\\w+@\\w+\\.org", "-"}, f, true);
    EXPECT_EQ(r.exit, 0) << r.err;
    EXPECT_EQ(r.out, std::to_string(expected) + "\n");
    r = run({"grep", "--whole", "-c", "\\w+@\\w+\\.org", f});
    EXPECT_EQ(r.out, std::to_string(expected) + "\n") << r.err;
    r = run({"replace", "-g", "filler", "F", f});
    EXPECT_EQ(r.exit, 0);
    EXPECT_EQ(r.out.size(), text.size() - 5 * (static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) -
                                               static_cast<size_t>(expected)));
}

// A file of 100 MB, line by line and as one subject (shrunk to 8 MB in
// sanitizer builds, where the tool itself runs instrumented).
TEST_F(Tool, HundredMegabyteFile) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    const size_t size = size_t{8} << 20;
#else
    const size_t size = size_t{100} << 20;
#endif
    const std::string line = "2026-11-23 12:00:00 GET /index.html 200 from 10.0.0.1\n";
    std::string text;
    text.reserve(size + line.size());
    int64_t lines = 0;
    while (text.size() < size) {
        text += line;
        ++lines;
    }
    const std::string f = write("hundred.txt", text);
    text.clear();
    text.shrink_to_fit();
    Outcome r = run({"grep", "-c", "GET /\\S+ 200", f});
    EXPECT_EQ(r.exit, 0) << r.err;
    EXPECT_EQ(r.out, std::to_string(lines) + "\n");
    r = run({"grep", "--whole", "-c", "10\\.0\\.0\\.\\d+", f});
    EXPECT_EQ(r.exit, 0) << r.err;
    EXPECT_EQ(r.out, std::to_string(lines) + "\n");
    r = run({"grep", "-c", "never there", f});
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.out, "0\n");
}

#ifdef ZEVCH_HAVE_PCRE2
// Line counts and -o output of `zevch grep` against PCRE2 run line by line,
// on random lines with empty lines, CRs and a last line without a newline.
TEST_F(Tool, GrepAgreesWithPcre2LineByLine) {
    std::mt19937 rng(7);
    const char alphabet[] = "ab c\r12-";
    std::vector<std::string> lines;
    std::string text;
    for (int i = 0; i < 400; ++i) {
        std::string line;
        const int len = static_cast<int>(rng() % 14);
        for (int k = 0; k < len; ++k) line += alphabet[rng() % (sizeof alphabet - 1)];
        lines.push_back(line);
        text += line;
        if (i != 399) text += '\n';
    }
    const std::string f = write("random.txt", text);
    for (const char* pattern : {"a", "ab|ba", "^a", "c$", "\\d+", "[ab]{2,}", "a\\r", "^$", "(a|b)c?\\d",
                                "\\bab", "-\\S*"}) {
        int error = 0;
        PCRE2_SIZE offset = 0;
        pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED, 0,
                                         &error, &offset, nullptr);
        ASSERT_NE(code, nullptr) << pattern;
        pcre2_match_data* md = pcre2_match_data_create_from_pattern(code, nullptr);
        int64_t matching = 0;
        std::string matches;
        for (const std::string& line : lines) {
            const auto* subject = reinterpret_cast<PCRE2_SPTR>(line.data());
            PCRE2_SIZE at = 0;
            bool any = false;
            while (at <= line.size() &&
                   pcre2_match(code, subject, line.size(), at, 0, md, nullptr) >= 0) {
                any = true;
                const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(md);
                if (ov[1] > ov[0]) matches += line.substr(ov[0], ov[1] - ov[0]) + "\n";
                at = ov[1] > ov[0] ? ov[1] : ov[1] + 1;
            }
            matching += any ? 1 : 0;
        }
        pcre2_match_data_free(md);
        pcre2_code_free(code);
        Outcome r = run({"grep", "-c", "-e", pattern, f});
        EXPECT_EQ(r.out, std::to_string(matching) + "\n") << pattern;
        r = run({"grep", "-o", "-e", pattern, f});
        EXPECT_EQ(r.out, matches) << pattern;
    }
}
#endif

}  // namespace
