// regexp/compile/classes.cpp - bracket classes.
//
// Entry point: ownRegExpClass, cursor on the `[`. A class is a NodeClass head
// (word1 0 or -1 for `[^`, word2 the number of items) followed by its items:
// NodeChar, NodeWideChar, NodeRange, NodeCharType, NodeProperty, NodeBlock,
// NodeScript. A range is built in place: at `-` the previous character node
// turns into a NodeRange with word2 = 0 ("open"), and the next code becomes
// its high end. A positive class of a single character or character type is
// replaced by that item.
//
// Tested by tests/compile/golden_test.cpp (golden.txt) and errors_test.cpp
// (faults.txt).
#include <cstring>

#include "regexp/compile/compile_internal.h"

namespace {

struct PosixItem {
    uint32_t kind;
    int32_t  low;
    int32_t  high;
};

struct PosixName {
    const char* name;
    int32_t     length;
    int32_t     count;
    PosixItem   items[4];
};

// "word" stands apart: \w, or \W when negated, with no invert mark.
constexpr PosixName PosixNames[] = {
    {"alnum", 5, 3, {{NodeRange, 97, 122}, {NodeRange, 65, 90}, {NodeRange, 48, 57}}},
    {"alpha", 5, 2, {{NodeRange, 97, 122}, {NodeRange, 65, 90}}},
    {"ascii", 5, 1, {{NodeRange, 0, 127}}},
    {"blank", 5, 2, {{NodeChar, 32, 0}, {NodeChar, 9, 0}}},
    {"cntrl", 5, 1, {{NodeRange, 0, 31}}},
    {"digit", 5, 1, {{NodeRange, 48, 57}}},
    {"graph", 5, 1, {{NodeRange, 33, 255}}},
    {"lower", 5, 1, {{NodeRange, 97, 122}}},
    {"print", 5, 1, {{NodeRange, 32, 255}}},
    {"punct", 5, 4, {{NodeRange, 32, 47}, {NodeRange, 58, 64}, {NodeRange, 91, 96}, {NodeRange, 123, 255}}},
    {"space", 5, 2, {{NodeRange, 9, 13}, {NodeChar, 32, 0}}},
    {"upper", 5, 1, {{NodeRange, 65, 90}}},
    {"word", 4, 0, {}},
    {"xdigit", 6, 3, {{NodeRange, 97, 102}, {NodeRange, 65, 70}, {NodeRange, 48, 57}}},
};

bool isDelimiter(char c) { return c == ':' || c == '.' || c == '='; }

RegExpNode& previous(CompileState* cs) { return cs->nodes[cs->nodeCount - 1]; }

bool openRange(CompileState* cs) {
    const RegExpNode& p = previous(cs);
    return p.kind == NodeRange && p.word2 == 0;
}

void appendItem(CompileState* cs, uint32_t kind, int32_t word1) { ownNewNode(cs, kind, word1, 0, 0); }

// A code for the class: the high end of an open range, or a node of its own.
// `fault` is where a reversed range is reported.
zevStatus addCode(CompileState* cs, int32_t code, uint32_t kind, const char* fault) {
    if (openRange(cs)) {
        RegExpNode& range = previous(cs);
        if (code < range.word1) return ownFail(cs, zevStatusRegExpBadClass, fault);
        range.word2 = code;
        return zevStatusOk;
    }
    appendItem(cs, kind, code);
    return zevStatusOk;
}

// An open range met by something that cannot end it: its low end and the
// hyphen become plain characters.
void dissolveRange(CompileState* cs) {
    previous(cs).kind = NodeChar;
    appendItem(cs, NodeChar, '-');
}

zevStatus literal(CompileState* cs) {
    const uint8_t* place = reinterpret_cast<const uint8_t*>(cs->cursor);
    int32_t code = place[0];
    int32_t length = 1;
    if (code >= 128) {
        // The pattern is zero-terminated: the terminator fails any
        // continuation test, so the decoder reads nothing beyond it.
        int32_t decoded;
        int32_t n = ownDecodeUtf8(place, INT32_MAX, &decoded);
        if (n > 0) {
            code = decoded;
            length = n;
        }
    }
    zevStatus st = addCode(cs, code, code < 256 ? NodeChar : NodeWideChar, cs->cursor);
    cs->cursor += length;
    return st;
}

// The hyphen: the high end of an open range, the start of a range behind a
// character, or a plain member.
zevStatus hyphen(CompileState* cs) {
    RegExpNode& p = previous(cs);
    zevStatus st = zevStatusOk;
    if (p.kind == NodeRange && p.word2 != 0) {
        appendItem(cs, NodeChar, '-');
    } else if (p.kind == NodeRange) {
        st = addCode(cs, '-', NodeChar, cs->cursor);
    } else if ((p.kind == NodeChar || p.kind == NodeWideChar) && cs->cursor[1] != ']') {
        p.kind = NodeRange;  // word1 is the low end; word2 = 0 marks it open
        p.word2 = 0;
    } else {
        appendItem(cs, NodeChar, '-');
    }
    ++cs->cursor;
    return st;
}

// \Q...\E inside a class: every byte an item, undecoded; a hyphen in it is a
// plain hyphen. The first byte ends an open range without an order test.
zevStatus classQuote(CompileState* cs) {
    const char* q = cs->cursor + 2;
    if (q[0] == '\\' && q[1] == 'E') {
        if (openRange(cs)) dissolveRange(cs);
        cs->cursor = q + 2;
        return zevStatusOk;
    }
    bool first = true;
    for (;; ++q) {
        if (*q == 0) return ownFail(cs, zevStatusRegExpBadClass, q);
        if (q[0] == '\\' && q[1] == 'E') break;
        if (first && openRange(cs)) previous(cs).word2 = ownByte(q);
        else appendItem(cs, NodeChar, ownByte(q));
        first = false;
    }
    cs->cursor = q + 2;
    return zevStatusOk;
}

// An escape inside a class; cursor on the backslash.
zevStatus classEscape(CompileState* cs) {
    const char* backslash = cs->cursor;
    const char* e = backslash + 1;
    uint8_t letter = ownByte(e);
    switch (letter) {
    case 0:
        // A lone backslash at the end of the pattern.
        return ownFail(cs, zevStatusRegExpBadSyntax, e);
    case '0': case '1': case '2': case '3': case '4': case '5': case '6': case '7': {
        int32_t value;
        cs->cursor = ownReadOctal(e, 3, &value);
        return addCode(cs, value, NodeChar, cs->cursor - 1);
    }
    case '8': case '9':
        // Code 0; the digit is read again as the next item.
        cs->cursor = e;
        return addCode(cs, 0, NodeChar, backslash);
    case 'D': case 'S': case 'W': case 'd': case 's': case 'w':
        if (openRange(cs)) dissolveRange(cs);
        ownNewNode(cs, NodeCharType, letter, 0, 0);
        cs->cursor = e + 1;
        return zevStatusOk;
    case 'E':
        cs->cursor = e + 1;  // an open range stays open
        return zevStatusOk;
    case 'P': case 'p':
        return ownPropertyEscape(cs, e);  // an open range in front stays open
    case 'Q':
        return classQuote(cs);
    case ']':
        cs->cursor = e + 1;
        return addCode(cs, ']', NodeChar, e);
    case 'a': case 'b': case 'e': case 'f': case 'n': case 'r': case 't': case 'v': {
        static constexpr char letters[] = "abefnrtv";
        static constexpr int32_t values[] = {7, 8, 27, 12, 10, 13, 9, 11};
        int32_t i = 0;
        while (letters[i] != static_cast<char>(letter)) ++i;
        cs->cursor = e + 1;
        return addCode(cs, values[i], NodeChar, e);
    }
    case 'c':
        if (e[1] == 0) return ownFail(cs, zevStatusRegExpBadSyntax, e + 1);
        cs->cursor = e + 2;
        return addCode(cs, ownControlValue(ownByte(e + 1)), NodeChar, e);
    case 'x': {
        uint32_t value;
        if (e[1] != '{') {
            cs->cursor = ownReadHex(e + 1, 2, &value);
            return addCode(cs, static_cast<int32_t>(value), NodeChar, cs->cursor - 1);
        }
        const char* q = ownReadHex(e + 2, 8, &value);
        if (*q != '}') return ownFail(cs, zevStatusRegExpBadProperty, q);
        cs->cursor = q + 1;
        return addCode(cs, static_cast<int32_t>(value), NodeWideChar, q);
    }
    default:
        // Any other byte is itself, undecoded: \X, \C, \A, \B ... are letters.
        cs->cursor = e + 1;
        return addCode(cs, letter, NodeChar, backslash);
    }
}

// [:name:], [.name.] or [=name=]; cursor on the `[`, its delimiter behind.
zevStatus posixElement(CompileState* cs) {
    const char* open = cs->cursor;
    char d = open[1];
    const char* q = open + 2;
    bool negated = false;
    if (*q == '^') {
        negated = true;
        ++q;
    }
    const PosixName* found = nullptr;
    for (const PosixName& entry : PosixNames) {
        if (std::strncmp(q, entry.name, static_cast<size_t>(entry.length)) == 0) {
            found = &entry;
            q += entry.length;
            break;
        }
    }
    if (*q != d || q[1] != ']') {
        // Malformed. If a delimiter with `]` (or the end) behind it lies
        // ahead, the element was meant and is wrong; otherwise `[` and the
        // delimiter are plain members.
        const char* r = open + 2;
        if (*r != ']') {
            const char* s = r;
            while (*s != 0 && *s != d) ++s;
            if (*s == d && (s[1] == ']' || s[1] == 0)) return ownFail(cs, zevStatusRegExpBadClass, open);
        }
        appendItem(cs, NodeChar, '[');
        appendItem(cs, NodeChar, static_cast<uint8_t>(d));
        cs->cursor = open + 2;
        return zevStatusOk;
    }
    if (openRange(cs)) dissolveRange(cs);
    if (found == nullptr) return ownFail(cs, zevStatusRegExpBadClass, open);
    if (found->count == 0) {
        ownNewNode(cs, NodeCharType, negated ? 'W' : 'w', 0, 0);
    } else {
        int32_t invert = negated ? -1 : 0;
        for (int32_t i = 0; i < found->count; ++i) {
            const PosixItem& item = found->items[i];
            ownNewNode(cs, item.kind, item.low, item.high, invert);
        }
    }
    cs->cursor = q + 2;
    return zevStatusOk;
}

zevStatus endOfClass(CompileState* cs, int32_t head) {
    int32_t items = cs->nodeCount - head - 1;
    RegExpNode* nodes = cs->nodes;
    if (items == 0) return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
    if (items == 1 && nodes[head].word1 == 0) {
        const RegExpNode& item = nodes[head + 1];
        if (item.kind == NodeChar && item.word1 == '^') return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
        if (item.kind == NodeChar || item.kind == NodeCharType) {
            nodes[head] = item;
            --cs->nodeCount;
            ++cs->cursor;
            return zevStatusOk;
        }
    }
    nodes[head].word2 = items;
    ++cs->cursor;
    return zevStatusOk;
}

}  // namespace

zevStatus ownRegExpClass(CompileState* cs) {
    ownFlushRun(cs);
    int32_t head = cs->nodeCount;
    ++cs->cursor;
    char b = *cs->cursor;
    if (b == ']' || b == '-') {
        ownNewNode(cs, NodeClass, 0, 0, 0);
        appendItem(cs, NodeChar, static_cast<uint8_t>(b));
        ++cs->cursor;
    } else if (b == '^') {
        ownNewNode(cs, NodeClass, -1, 0, 0);
        ++cs->cursor;
        b = *cs->cursor;
        if (b == ']' || b == '-') {
            appendItem(cs, NodeChar, static_cast<uint8_t>(b));
            ++cs->cursor;
        }
    } else {
        ownNewNode(cs, NodeClass, 0, 0, 0);
    }
    if (cs->overflow) return zevStatusOk;  // the translation loop reports it

    for (;;) {
        zevStatus st = zevStatusOk;
        b = *cs->cursor;
        if (b == 0) return ownFail(cs, zevStatusRegExpBadClass, cs->cursor);
        if (b == ']') return endOfClass(cs, head);
        if (b == '[' && isDelimiter(cs->cursor[1])) {
            st = posixElement(cs);
        } else if (isDelimiter(b) && cs->cursor[-1] == '[') {
            // `[:alpha:]` written without the outer brackets.
            const char* s = cs->cursor + 1;
            while (*s != 0 && *s != ']' && *s != b) ++s;
            if (*s == b) return ownFail(cs, zevStatusRegExpBadClass, cs->cursor);
            st = literal(cs);
        } else if (b == '-') {
            st = hyphen(cs);
        } else if (b == '\\') {
            st = classEscape(cs);
        } else {
            st = literal(cs);
        }
        if (st != zevStatusOk) return st;
        if (cs->overflow) return zevStatusOk;
    }
}
