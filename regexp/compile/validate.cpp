// regexp/compile/validate.cpp - the first pass over the pattern text.
//
// Entry point: ownRegExpValidate. It writes nothing into the record. It
// counts the capturing groups, so that the translation pass can tell a
// back-reference from an octal escape (and allow references forward), and it
// proves that the parentheses balance, so that the translation pass may run
// to a group's `)` without looking for the terminator. To know which
// parentheses are real it passes over everything that can hide one: escapes,
// \Q...\E, bracket classes, (?#...) and, in extended mode, # comments. It
// checks nothing else; all other faults belong to the translation pass.
//
// Tested by tests/compile/errors_test.cpp (faults.txt) and limits_test.cpp.
#include "regexp/compile/compile_internal.h"

namespace {

constexpr int32_t MaxOpenParens = 999;
// captureTotal counts the whole match too; above this the pattern has more
// than 1000 capturing parentheses.
constexpr int32_t CaptureTotalLimit = 1001;

struct Scan {
    const char* pattern;
    const char* p;
    int32_t*    errOffset;
};

zevStatus fail(Scan& s, zevStatus status, const char* place) {
    *s.errOffset = static_cast<int32_t>(place - s.pattern);
    return status;
}

// Behind the next "\E" from `p`, or on the terminator if there is none.
// *found tells which.
const char* skipQuote(const char* p, bool* found) {
    for (; *p != 0; ++p) {
        if (p[0] == '\\' && p[1] == 'E') {
            *found = true;
            return p + 2;
        }
    }
    *found = false;
    return p;
}

// Passes over a bracket class; s.p is just behind the `[`. An unterminated
// class is no fault here: the scan stops on the terminator and the
// translation pass reports it.
zevStatus skipClass(Scan& s) {
    const char*& p = s.p;
    if (*p == '^') ++p;
    if (*p == ']') ++p;     // a `]` first in the class is a member
    bool inElement = false; // inside [:name:], [.name.] or [=name=]
    char delimiter = 0;
    for (;;) {
        char b = *p;
        if (b == 0) return zevStatusOk;
        if (b == '[') {
            if (p[1] == '.' || p[1] == ':' || p[1] == '=') {
                delimiter = p[1];
                inElement = true;
                p += 2;
            } else {
                ++p;
            }
        } else if (b == '\\') {
            if (p[1] == 'Q') {
                bool found;
                p = skipQuote(p + 2, &found);
                if (!found) return fail(s, zevStatusRegExpBadClass, p);
            } else if (p[1] == 0) {
                // A lone backslash at the end of the pattern.
                return fail(s, zevStatusRegExpBadSyntax, p + 1);
            } else {
                p += 2;
            }
        } else if (b == '.' || b == ':' || b == '=') {
            ++p;
            if (inElement && b == delimiter && *p == ']') {
                ++p;  // the `]` of the element does not close the class
                inElement = false;
            }
        } else if (b == ']') {
            ++p;
            return zevStatusOk;
        } else {
            ++p;
        }
    }
}

}  // namespace

zevStatus ownRegExpValidate(const char* pattern, uint32_t options, uint32_t* optionStack,
                            int32_t* captureTotal, int32_t* errOffset) {
    Scan s{pattern, pattern, errOffset};
    const char*& p = s.p;
    int32_t depth = 0;
    int32_t total = 1;
    uint32_t opts = options;

    while (*p != 0) {
        char c = *p;
        if (c == '(') {
            if (depth >= MaxOpenParens) return fail(s, zevStatusRegExpBadSyntax, p);
            optionStack[depth++] = opts;
            const char* open = p++;
            if (*p != '?') {
                if (++total > CaptureTotalLimit) return fail(s, zevStatusRegExpBadSyntax, open);
                continue;
            }
            ++p;
            char f = *p;
            if (f == '-' || f == 'i' || f == 'm' || f == 's' || f == 'x') {
                // Option letters up to `)` or `:`. Only x matters here; a mask
                // turns negative at `-`, so that x before it sets the bit and
                // x behind it clears it.
                int32_t mask = 0;
                while (*p != 0 && *p != ')' && *p != ':') {
                    if (*p == '-') {
                        mask = -1;
                    } else {
                        if (*p == 'x') mask ^= OptionExtended;
                        if (mask < 0) opts &= static_cast<uint32_t>(mask);
                        else opts |= static_cast<uint32_t>(mask);
                    }
                    ++p;
                }
                if (*p == 0) break;  // the end test reports the open group
                if (*p == ')') --depth;  // (?flags): no group; the bits stay
                ++p;
            } else if (f == '#') {
                while (*p != 0 && *p != ')') ++p;
                if (*p == 0) return fail(s, zevStatusRegExpBadSyntax, p);
                ++p;
                --depth;
            } else if (f == '(') {
                // Head of a conditional: its condition is closed by its own
                // `)`. The depth limit is not tested here.
                optionStack[depth++] = opts;
                ++p;
            } else if (f == 0) {
                break;
            }
            // Any other byte is looked at by the loop itself.
        } else if (c == ')') {
            if (--depth < 0) return fail(s, zevStatusRegExpBadSyntax, p);
            opts = optionStack[depth];
            ++p;
        } else if (c == '#') {
            ++p;
            if (opts & OptionExtended) {
                while (*p != 0 && *p != '\n') ++p;
                if (*p != 0) ++p;
            }
        } else if (c == '\\') {
            char n = p[1];
            if (n == 0) return fail(s, zevStatusRegExpBadSyntax, p + 1);
            if (n == 'Q') {
                bool found;
                p = skipQuote(p + 2, &found);  // unterminated: to the end
            } else if (n == 'c') {
                if (p[2] == 0) return fail(s, zevStatusRegExpBadSyntax, p + 2);
                p += 3;
            } else {
                p += 2;
            }
        } else if (c == '[') {
            ++p;
            zevStatus st = skipClass(s);
            if (st != zevStatusOk) return st;
        } else {
            ++p;
        }
    }

    if (depth != 0) return fail(s, zevStatusRegExpBadSyntax, p);
    *captureTotal = total;
    return zevStatusOk;
}
