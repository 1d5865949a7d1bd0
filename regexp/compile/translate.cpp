// regexp/compile/translate.cpp - the translation loop and the atoms.
//
// Entry point: ownRegExpTranslate. One pass, left to right, with a dispatch
// on the byte under the cursor. Literal bytes are not written at once: they
// gather in a pending run (the runLength bytes just before the cursor) that
// becomes one NodeChar or NodeString when something else needs a node
// (ownFlushRun). Escapes, `.`, anchors and the character-type folding live
// here; bracket classes are in classes.cpp, the bytes of structure in
// groups.cpp.
//
// Tested by tests/compile/golden_test.cpp (golden.txt) and errors_test.cpp
// (faults.txt).
#include "regexp/compile/compile_internal.h"

RegExpNode* ownNewNode(CompileState* cs, uint32_t kind, int32_t word1, int32_t word2, int32_t word3) {
    RegExpNode* node;
    if (cs->nodeCount < cs->capacity) {
        node = &cs->nodes[cs->nodeCount++];
    } else {
        cs->overflow = true;
        node = &cs->spill;
    }
    node->kind = kind;
    node->word1 = word1;
    node->word2 = word2;
    node->word3 = word3;
    node->word4 = 0;
    return node;
}

// A literal node at depth 0 is the candidate for the trailing literal, unless
// a top-level alternation has ruled one out (-2). Its word3 keeps the options
// in force, so that the search's scan for it can honour OptionIgnoreCase.
void ownNoteLiteral(CompileState* cs, int32_t index) {
    if (cs->literalCandidate >= -1 && cs->depth == 0 && index < cs->capacity) {
        cs->literalCandidate = index;
        cs->nodes[index].word3 = static_cast<int32_t>(cs->activeOptions);
    }
}

void ownFlushRun(CompileState* cs) {
    if (cs->runLength == 0) return;
    if (cs->runLength == 1) {
        ownNewNode(cs, NodeChar, ownByte(cs->cursor - 1), 0, 0);
    } else {
        // word4 holds the end of the run in the pattern until the literal
        // bytes are copied into the record at the end.
        RegExpNode* node = ownNewNode(cs, NodeString, 0, cs->runLength, 0);
        node->word4 = static_cast<uint32_t>(ownOffset(cs, cs->cursor));
    }
    ownNoteLiteral(cs, cs->nodeCount - 1);
    cs->runLength = 0;
}

bool ownIsBraceQuantifier(const char* place) {
    const char* q = place + 1;
    while (ownIsDigit(ownByte(q))) ++q;
    if (*q == ',') {
        ++q;
        while (ownIsDigit(ownByte(q))) ++q;
    }
    return *q == '}';
}

bool ownQuantifierFollows(const char* place) {
    char c = *place;
    return c == '*' || c == '+' || c == '?' || (c == '{' && ownIsBraceQuantifier(place));
}

const char* ownReadOctal(const char* place, int32_t maxDigits, int32_t* value) {
    int32_t v = 0;
    for (int32_t i = 0; i < maxDigits && ownIsOctalDigit(ownByte(place)); ++i, ++place) v = v * 8 + (*place - '0');
    *value = v;
    return place;
}

const char* ownReadHex(const char* place, int32_t maxDigits, uint32_t* value) {
    uint32_t v = 0;
    for (int32_t i = 0; i < maxDigits && ownHexValue(ownByte(place)) >= 0; ++i, ++place)
        v = v * 16 + static_cast<uint32_t>(ownHexValue(ownByte(place)));
    *value = v;
    return place;
}

zevStatus ownPropertyEscape(CompileState* cs, const char* letter) {
    if (cs->nodeCount >= cs->capacity) return ownFail(cs, zevStatusRegExpBadSyntax, letter);
    cs->cursor = letter;
    if (ownRegExpParseProperty(&cs->cursor, cs->nodes, &cs->nodeCount, *letter == 'P' ? -1 : 0) < 0)
        return ownFail(cs, zevStatusRegExpBadProperty, cs->cursor);
    return zevStatusOk;
}

int32_t ownControlValue(uint8_t k) {
    if (k >= 32 && k <= 63) return k + 64;
    int32_t value = k - 64;
    if (k >= 96 && k <= 122) value -= 32;
    return value;
}

namespace {

// `.`, \d, \D, \s, \S, \w, \W outside a class. A run of the same test folds
// into one NodeCharType and a counted NodeRepeat: `...` is `.{3}`. When a
// quantifier follows, the repeat is left for it to add its counts to.
void appendCharType(CompileState* cs, uint8_t letter) {
    ownFlushRun(cs);
    int32_t n = cs->nodeCount;
    RegExpNode* nodes = cs->nodes;
    bool quantified = ownQuantifierFollows(cs->cursor);
    if (n >= 1 && nodes[n - 1].kind == NodeCharType && nodes[n - 1].word1 == letter) {
        int32_t count = quantified ? 1 : 2;
        ownNewNode(cs, NodeRepeat, count, count, 0);
    } else if (n >= 2 && nodes[n - 2].kind == NodeCharType && nodes[n - 2].word1 == letter &&
               ownIsRepeatKind(nodes[n - 1].kind)) {
        if (!quantified) {
            nodes[n - 1].word1 = ownAddCounts(nodes[n - 1].word1, 1);
            nodes[n - 1].word2 = ownAddCounts(nodes[n - 1].word2, 1);
        }
    } else {
        ownNewNode(cs, NodeCharType, letter, 0, 0);
    }
}

void appendLiteralChar(CompileState* cs, int32_t value) {
    ownNewNode(cs, NodeChar, value, 0, 0);
    ownNoteLiteral(cs, cs->nodeCount - 1);
}

// \1 to \999: a back-reference if such a group exists anywhere in the
// pattern, else an octal escape of the leading octal digits. Cursor on the
// first digit.
zevStatus escapeNumber(CompileState* cs) {
    const char* digits = cs->cursor;
    if (!ownIsDigit(ownByte(digits + 1))) {
        int32_t number = ownByte(digits) - '0';
        if (number >= cs->captureCount) return ownFail(cs, zevStatusRegExpBadReference, digits);
        ownNewNode(cs, NodeBackRef, number, 0, 0);
        cs->cursor = digits + 1;
        return zevStatusOk;
    }
    int32_t decimal = 0, decimalCount = 0;
    while (decimalCount < 3 && ownIsDigit(ownByte(digits + decimalCount))) {
        decimal = decimal * 10 + (ownByte(digits + decimalCount) - '0');
        ++decimalCount;
    }
    if (decimal < cs->captureCount) {
        ownNewNode(cs, NodeBackRef, decimal, 0, 0);
        cs->cursor = digits + decimalCount;
        return zevStatusOk;
    }
    // No such group: the octal digits among the first three, up to an 8 or 9.
    // Digits not taken are read again as literals.
    int32_t octal = 0, octalCount = 0;
    while (octalCount < decimalCount && ownIsOctalDigit(ownByte(digits + octalCount))) {
        octal = octal * 8 + (ownByte(digits + octalCount) - '0');
        ++octalCount;
    }
    appendLiteralChar(cs, octal);
    cs->cursor = digits + octalCount;
    return zevStatusOk;
}

// \xHH gives a NodeChar; \x{H...} a NodeWideChar of up to eight digits.
// Cursor on the `x`.
zevStatus escapeHex(CompileState* cs) {
    const char* q = cs->cursor + 1;
    uint32_t value;
    if (*q != '{') {
        cs->cursor = ownReadHex(q, 2, &value);
        appendLiteralChar(cs, static_cast<int32_t>(value));
        return zevStatusOk;
    }
    const char* first = q + 1;
    q = ownReadHex(first, 8, &value);
    if (*q != '}') return ownFail(cs, zevStatusRegExpBadProperty, first);
    // Compared by code point; never a trailing-literal candidate.
    ownNewNode(cs, NodeWideChar, static_cast<int32_t>(value), 0, 0);
    cs->cursor = q + 1;
    return zevStatusOk;
}

// \Q...\E outside a class: the quoted bytes become one finished node that
// does not join the literals around it. Cursor on the `Q`.
void escapeQuote(CompileState* cs) {
    const char* start = cs->cursor + 1;
    const char* end = start;
    while (*end != 0 && !(end[0] == '\\' && end[1] == 'E')) ++end;
    int32_t count = static_cast<int32_t>(end - start);
    if (count == 1) {
        appendLiteralChar(cs, ownByte(start));
    } else if (count >= 2) {
        RegExpNode* node = ownNewNode(cs, NodeString, 0, count, 0);
        node->word4 = static_cast<uint32_t>(ownOffset(cs, end));
        ownNoteLiteral(cs, cs->nodeCount - 1);
    }
    cs->cursor = *end != 0 ? end + 2 : end;
}

// An escape outside a class; cursor on the backslash.
zevStatus escape(CompileState* cs) {
    ownFlushRun(cs);
    const char* e = cs->cursor + 1;
    uint8_t letter = ownByte(e);
    switch (letter) {
    case 0:
        // A lone backslash at the end of the pattern.
        return ownFail(cs, zevStatusRegExpBadSyntax, e);
    case '0': {
        int32_t value;
        cs->cursor = ownReadOctal(e + 1, 2, &value);
        appendLiteralChar(cs, value);
        return zevStatusOk;
    }
    case '1': case '2': case '3': case '4': case '5': case '6': case '7': case '8': case '9':
        cs->cursor = e;
        return escapeNumber(cs);
    case 'A': case 'B': case 'G': case 'Z': case 'b': case 'z':
        ownNewNode(cs, NodeAssert, letter, 0, 0);
        cs->cursor = e + 1;
        return zevStatusOk;
    case 'C':
        ownNewNode(cs, NodeAnyByte, 0, 0, 0);
        cs->cursor = e + 1;
        return zevStatusOk;
    case 'X':
        ownNewNode(cs, NodeGrapheme, 0, 0, 0);
        cs->cursor = e + 1;
        return zevStatusOk;
    case 'D': case 'S': case 'W': case 'd': case 's': case 'w':
        cs->cursor = e + 1;
        appendCharType(cs, letter);
        return zevStatusOk;
    case 'E':
        cs->cursor = e + 1;
        return zevStatusOk;
    case 'P': case 'p':
        return ownPropertyEscape(cs, e);
    case 'Q':
        cs->cursor = e;
        escapeQuote(cs);
        return zevStatusOk;
    case 'a': case 'e': case 'f': case 'n': case 'r': case 't': case 'v': {
        static constexpr char letters[] = "aefnrtv";
        static constexpr int32_t values[] = {7, 27, 12, 10, 13, 9, 11};
        int32_t i = 0;
        while (letters[i] != static_cast<char>(letter)) ++i;
        appendLiteralChar(cs, values[i]);
        cs->cursor = e + 1;
        return zevStatusOk;
    }
    case 'c':
        if (e[1] == 0) return ownFail(cs, zevStatusRegExpBadSyntax, e + 1);
        appendLiteralChar(cs, ownControlValue(ownByte(e + 1)));
        cs->cursor = e + 2;
        return zevStatusOk;
    case 'x':
        cs->cursor = e;
        return escapeHex(cs);
    default:
        // The byte stands for itself and opens a new run; the backslash is
        // not part of it.
        cs->runLength = 1;
        cs->cursor = e + 1;
        return zevStatusOk;
    }
}

void literalByte(CompileState* cs) {
    ++cs->runLength;
    ++cs->cursor;
}

bool isExtendedBlank(uint8_t c) { return c == 9 || c == 12 || c == 13 || c == 32; }

}  // namespace

zevStatus ownRegExpTranslate(CompileState* cs) {
    zevStatus st = zevStatusOk;
    while (*cs->cursor != 0) {
        uint8_t c = ownByte(cs->cursor);
        bool extended = (cs->activeOptions & OptionExtended) != 0;
        switch (c) {
        case '\n':
            if (extended) {
                ownFlushRun(cs);
                ++cs->cursor;
            } else {
                literalByte(cs);
            }
            break;
        case '#':
            if (extended) {
                ownFlushRun(cs);
                while (*cs->cursor != 0 && *cs->cursor != '\n') ++cs->cursor;
                if (*cs->cursor != 0) ++cs->cursor;
            } else {
                literalByte(cs);
            }
            break;
        case '$':
        case '^':
            ownFlushRun(cs);
            ownNewNode(cs, NodeAssert, c, 0, 0);
            ++cs->cursor;
            break;
        case '(':
            st = ownRegExpOpenGroup(cs);
            break;
        case ')':
            st = ownRegExpCloseGroup(cs);
            break;
        case '|':
            ownRegExpAlternate(cs);
            break;
        case '*':
        case '+':
        case '?':
            st = ownRegExpQuantifier(cs);
            break;
        case '{':
            if (ownIsBraceQuantifier(cs->cursor)) {
                st = ownRegExpQuantifier(cs);
            } else {
                literalByte(cs);
            }
            break;
        case '.':
            ownFlushRun(cs);   // the run ends in front of the cursor: flush before moving it
            ++cs->cursor;
            appendCharType(cs, '.');
            break;
        case '[':
            st = ownRegExpClass(cs);
            break;
        case '\\':
            st = escape(cs);
            break;
        default:
            if (extended && isExtendedBlank(c)) {
                ownFlushRun(cs);
                while (isExtendedBlank(ownByte(cs->cursor)) || *cs->cursor == '\n') ++cs->cursor;
            } else {
                literalByte(cs);
            }
            break;
        }
        if (st != zevStatusOk) return st;
        if (cs->overflow) return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
    }
    ownFlushRun(cs);
    if (cs->overflow) return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
    // The validation pass proved the parentheses balance; this only guards
    // against the two passes reading a pattern differently.
    if (cs->depth != 0) return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
    return zevStatusOk;
}
