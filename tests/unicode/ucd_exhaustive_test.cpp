// Every code point from 0 to 0x10FFFF against the published 5.1.0 data, read
// here by a parser of its own: category checks, case folding, script
// membership and cluster bases and marks. The generator and the row search
// are thereby checked against the source files, not against themselves.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "regexp/regexp_record.h"
#include "regexp/unicode/unicode_tables.h"

namespace {

constexpr int32_t CodeSpace = 0x110000;
constexpr int32_t LastRowCode = 0xE01EF;

struct Point {
    uint32_t flags = 0;       // 0: unassigned
    bool     inRun = false;   // from a First/Last pair
    int32_t  lower = 0;
    int16_t  script = -1;
};

uint32_t categoryFlags(const std::string& name) {
    static const char* const names[] = {
        "Ll", "Lu", "Lt", "Lm", "Lo", "Mn", "Mc", "Me", "Zs", "Zl", "Zp",
        "Sm", "Sc", "Sk", "So", "Nd", "Nl", "No",
        "Pd", "Ps", "Pe", "Pi", "Pf", "Pc", "Po", "Cc", "Cf", "Co", "Cs"};
    static const uint32_t values[] = {
        0x81, 0x82, 0x84, 0x88, 0x90, 0x101, 0x102, 0x104, 0x201, 0x202, 0x204,
        0x401, 0x402, 0x404, 0x408, 0x801, 0x802, 0x804,
        0x1001, 0x1002, 0x1004, 0x1008, 0x1010, 0x1020, 0x1040, 0x2001, 0x2002, 0x2004, 0x2008};
    for (size_t i = 0; i < sizeof(values) / sizeof(values[0]); ++i) {
        if (name == names[i]) return values[i];
    }
    ADD_FAILURE() << "unknown category " << name;
    return 0;
}

std::vector<std::string> split(const std::string& line, char separator) {
    std::vector<std::string> out;
    std::stringstream in(line);
    std::string field;
    while (std::getline(in, field, separator)) out.push_back(field);
    if (!line.empty() && line.back() == separator) out.push_back("");
    return out;
}

std::string trim(const std::string& s) {
    size_t a = s.find_first_not_of(" \t");
    size_t b = s.find_last_not_of(" \t\r");
    return a == std::string::npos ? "" : s.substr(a, b - a + 1);
}

std::string ucdPath(const char* file) {
    return std::string(ZEVCH_SOURCE_DIR) + "/regexp/unicode/ucd-5.1.0/" + file;
}

class UcdExhaustive : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        points = new std::vector<Point>(CodeSpace);
        scriptNames = new std::vector<std::string>();
        readUnicodeData();
        readScripts();
    }
    static void TearDownTestSuite() {
        delete points;
        delete scriptNames;
    }

    static void readUnicodeData() {
        std::ifstream in(ucdPath("UnicodeData.txt"));
        ASSERT_TRUE(in) << "UnicodeData.txt";
        std::string line;
        int32_t runStart = -1;
        while (std::getline(in, line)) {
            std::vector<std::string> f = split(line, ';');
            ASSERT_EQ(f.size(), 15u) << line;
            int32_t code = std::stoi(f[0], nullptr, 16);
            uint32_t flags = categoryFlags(f[2]);
            if (f[1].find(", First>") != std::string::npos) {
                runStart = code;
                continue;
            }
            if (f[1].find(", Last>") != std::string::npos) {
                for (int32_t c = runStart; c <= code; ++c) {
                    (*points)[c].flags = flags;
                    (*points)[c].inRun = true;
                }
                continue;
            }
            (*points)[code].flags = flags;
            if (!f[13].empty()) (*points)[code].lower = std::stoi(f[13], nullptr, 16);
        }
    }

    static void readScripts() {
        std::ifstream in(ucdPath("Scripts.txt"));
        ASSERT_TRUE(in) << "Scripts.txt";
        std::string line;
        while (std::getline(in, line)) {
            line = trim(line.substr(0, line.find('#')));
            if (line.empty()) continue;
            std::vector<std::string> f = split(line, ';');
            std::string name = trim(f[1]);
            std::string span = trim(f[0]);
            size_t dots = span.find("..");
            int32_t low = std::stoi(span.substr(0, dots), nullptr, 16);
            int32_t high = dots == std::string::npos ? low : std::stoi(span.substr(dots + 2), nullptr, 16);
            if (scriptNames->empty() || scriptNames->back() != name) scriptNames->push_back(name);
            for (int32_t c = low; c <= high; ++c) {
                (*points)[c].script = static_cast<int16_t>(scriptNames->size() - 1);
            }
        }
    }

    static std::vector<Point>* points;
    static std::vector<std::string>* scriptNames;
};

std::vector<Point>* UcdExhaustive::points = nullptr;
std::vector<std::string>* UcdExhaustive::scriptNames = nullptr;

// What a category check answers, from the data alone: a run answers yes when
// the mask is all in its flags (or, negated, when it is not); failing that,
// and for codes with no data, the code counts as unassigned, which only the
// mask 0x2010 accepts, and then only at or below the table's last code.
int32_t expectedProperty(const Point& p, int32_t code, uint32_t mask, int32_t negate) {
    if (p.inRun) {
        bool all = (p.flags & mask) == mask;
        if (negate == 0 ? all : !all) return 1;
    }
    if (p.flags == 0 || p.inRun) {
        return (code <= LastRowCode && mask == 0x2010) ? 1 : -1;
    }
    bool sameGroup = (p.flags >> 7) == (mask >> 7);
    bool holds = sameGroup && ((mask & 0x7F) == 0 || (mask & p.flags & 0x7F) != 0);
    return (negate == 0) == holds ? 1 : -1;
}

TEST_F(UcdExhaustive, CategoryOfEveryCode) {
    const uint32_t fixedMasks[] = {0x87, 0x2010, 0x2000, 0x80, 0x101};
    int32_t mismatches = 0;
    for (int32_t code = 0; code < CodeSpace && mismatches < 10; ++code) {
        const Point& p = (*points)[code];
        uint32_t masks[8] = {fixedMasks[0], fixedMasks[1], fixedMasks[2], fixedMasks[3],
                             fixedMasks[4], p.flags, p.flags & ~0x7Fu, p.flags ^ 0x7F};
        for (uint32_t mask : masks) {
            if (mask == 0) continue;
            for (int32_t negate : {0, -1}) {
                int32_t got = ownCheckProperty(code, static_cast<int32_t>(mask), negate);
                if (got != expectedProperty(p, code, mask, negate)) {
                    ADD_FAILURE() << std::hex << "code " << code << " mask " << mask << " negate "
                                  << negate << " got " << got;
                    ++mismatches;
                }
            }
        }
    }
}

TEST_F(UcdExhaustive, FoldOfEveryCode) {
    int32_t mismatches = 0;
    for (int32_t code = 0; code < CodeSpace && mismatches < 10; ++code) {
        const Point& p = (*points)[code];
        int32_t expected = p.lower != 0 ? p.lower : code;
        if (!p.inRun && code > LastRowCode) expected = 0;
        if (ownFoldCase(code) != expected) {
            ADD_FAILURE() << std::hex << code << " folds to " << ownFoldCase(code);
            ++mismatches;
        }
    }
}

TEST_F(UcdExhaustive, ScriptOfEveryCode) {
    ASSERT_EQ(scriptNames->size(), static_cast<size_t>(ScriptTableCount));
    for (int32_t s = 0; s < ScriptTableCount; ++s) {
        ASSERT_EQ((*scriptNames)[s], ScriptTable[s].name);
    }
    int32_t mismatches = 0;
    for (int32_t code = 0; code < CodeSpace && mismatches < 10; ++code) {
        int32_t own = (*points)[code].script;
        // Its own script holds it; the next script (and every script, for a
        // code with none) does not.
        int32_t other = own < 0 ? code % ScriptTableCount : (own + 1) % ScriptTableCount;
        for (int32_t s : {own, other}) {
            if (s < 0) continue;
            const ScriptRow& row = ScriptTable[s];
            const int32_t* ranges = ownScriptRanges(row.firstPair);
            bool held = s == own;
            if (ownCheckScript(code, ranges, row.count, 0) != (held ? 1 : -1) ||
                ownCheckScript(code, ranges, row.count, -1) != (held ? -1 : 1)) {
                ADD_FAILURE() << std::hex << code << " in " << row.name;
                ++mismatches;
            }
        }
    }
}

void put(std::vector<uint8_t>& out, int32_t code) {
    uint8_t bytes[4];
    int n = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    for (int i = n - 1; i > 0; --i) {
        bytes[i] = static_cast<uint8_t>(0x80 | (code & 0x3F));
        code >>= 6;
    }
    bytes[0] = static_cast<uint8_t>((n == 1 ? 0 : (0xFF00 >> n)) | code);
    out.insert(out.end(), bytes, bytes + n);
}

// Every code as a cluster's base (followed by a mark) and as the character
// behind a base.
TEST_F(UcdExhaustive, ClusterBasesAndMarks) {
    int32_t mismatches = 0;
    std::vector<uint8_t> text;
    for (int32_t code = 0; code < CodeSpace && mismatches < 10; ++code) {
        const Point& p = (*points)[code];
        bool mark = !p.inRun && (p.flags & ~0x7Fu) == 0x100;
        bool base = p.flags != 0 && !mark;

        text.clear();
        put(text, code);
        size_t codeLength = text.size();
        put(text, 0x301);
        int32_t expected = base ? static_cast<int32_t>(text.size()) : 0;
        int32_t got = ownReadCluster(text.data(), static_cast<int64_t>(text.size()));

        text.clear();
        text.push_back('x');
        put(text, code);
        int32_t expectedBehind = mark ? static_cast<int32_t>(1 + codeLength) : 1;
        int32_t gotBehind = ownReadCluster(text.data(), static_cast<int64_t>(text.size()));
        if (got != expected || gotBehind != expectedBehind) {
            ADD_FAILURE() << std::hex << code << ": " << got << " " << gotBehind;
            ++mismatches;
        }
    }
}

}  // namespace
