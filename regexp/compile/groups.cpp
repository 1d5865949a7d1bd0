// regexp/compile/groups.cpp - groups, alternation and quantifiers.
//
// Entry points: ownRegExpOpenGroup, ownRegExpCloseGroup, ownRegExpAlternate,
// ownRegExpQuantifier, each called by the translation loop with the cursor on
// its byte. The node array has no tree and no links. While a group is open,
// its head holds the depth just inside it in word1 and its group id in word2;
// a NodeAlternate in it holds the depth in word1. At the `)` the head is
// found by searching backward for that depth (closed heads hold ids, which
// are always above the depth of any group around them), and these temporary
// words are replaced by the id and the span.
//
// Tested by tests/compile/golden_test.cpp (golden.txt), errors_test.cpp
// (faults.txt) and limits_test.cpp.
#include "regexp/compile/compile_internal.h"

namespace {

// (?imsx-imsx) or (?imsx-imsx: ...; cursor on the first letter, the head
// slot at `head`.
zevStatus optionLetters(CompileState* cs, int32_t head) {
    int32_t mask = 0;
    for (;;) {
        char c = *cs->cursor;
        uint32_t bit = c == 'i' ? OptionIgnoreCase : c == 'm' ? OptionMultiLine
                     : c == 's' ? OptionDotAll : c == 'x' ? OptionExtended : 0;
        if (bit != 0) {
            mask ^= static_cast<int32_t>(bit);
            if (mask < 0) cs->activeOptions &= static_cast<uint32_t>(mask);
            else cs->activeOptions |= static_cast<uint32_t>(mask);
        } else if (c == '-') {
            mask = -1;
        } else if (c == ':') {
            RegExpNode& node = cs->nodes[head];
            node.kind = NodeOptionGroup;
            node.word1 = cs->depth;
            node.word3 = static_cast<int32_t>(cs->activeOptions);
            node.word4 = 0;
            ++cs->nodeCount;
            ++cs->cursor;
            return zevStatusOk;
        } else if (c == ')') {
            // Not a group: the options hold to the end of the enclosing group.
            --cs->depth;
            --cs->nextGroupId;
            const char* end = cs->cursor;
            // Extended mode matters only to the compiler, so (?x) and (?-x)
            // leave no node.
            bool onlyX = (end[-2] == '?' && end[-1] == 'x') ||
                         (end[-3] == '?' && end[-2] == '-' && end[-1] == 'x');
            if (!onlyX) ownNewNode(cs, NodeSetOptions, static_cast<int32_t>(cs->activeOptions), 0, 0);
            ++cs->cursor;
            return zevStatusOk;
        } else {
            return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
        }
        ++cs->cursor;
    }
}

// (?( ... ; cursor on the second `(`. A numbered condition becomes a
// NodeBackRef; a lookaround condition is opened by the main loop.
zevStatus conditional(CompileState* cs, int32_t head) {
    RegExpNode& node = cs->nodes[head];
    node.kind = NodeConditional;
    node.word1 = cs->depth;
    node.word3 = 0;
    node.word4 = 0;
    ++cs->nodeCount;
    const char* open = cs->cursor;
    if (open[1] == '?') return zevStatusOk;  // the cursor stays on this `(`
    const char* t = open + 1;
    if (*t == ')') return ownFail(cs, zevStatusRegExpBadReference, t + 1);
    if (!ownIsDigit(ownByte(t))) return ownFail(cs, zevStatusRegExpBadSyntax, t);
    int32_t number = 0, digits = 0;
    const char* q = t;
    while (digits < 3 && ownIsDigit(ownByte(q))) {
        number = number * 10 + (*q - '0');
        ++digits;
        ++q;
    }
    if (*q != ')') return ownFail(cs, zevStatusRegExpBadSyntax, q);
    if (number == 0) return ownFail(cs, zevStatusRegExpBadReference, q + 1 - digits);
    // Not compared with the capture count: the condition is simply false
    // for a group that does not exist.
    ownNewNode(cs, NodeBackRef, number, 0, 0);
    cs->cursor = q + 1;
    return zevStatusOk;
}

// Checks the condition of a closed conditional: a back-reference or a
// lookaround, not followed by a quantifier.
bool conditionIsSound(const CompileState* cs, int32_t head, int32_t span) {
    if (span < 1) return false;  // a quantifier removed the condition
    const RegExpNode* nodes = cs->nodes;
    const RegExpNode& condition = nodes[head + 1];
    int32_t next;
    if (condition.kind == NodeBackRef) next = head + 2;
    else if (ownIsLookaroundKind(condition.kind)) next = head + 3 + condition.word2;
    else return false;
    return !(next <= head + span && ownIsRepeatKind(nodes[next].kind));
}

}  // namespace

zevStatus ownRegExpOpenGroup(CompileState* cs) {
    ownFlushRun(cs);
    int32_t head = cs->nodeCount;
    const char* open = cs->cursor;
    if (head >= cs->capacity || cs->overflow) return ownFail(cs, zevStatusRegExpBadSyntax, open);
    if (cs->depth >= OptionStackSize) return ownFail(cs, zevStatusRegExpBadSyntax, open);
    cs->optionStack[cs->depth++] = cs->activeOptions;
    RegExpNode& node = cs->nodes[head];
    node.word2 = cs->nextGroupId++;
    if (cs->nextGroupId > GroupIdLimit) return ownFail(cs, zevStatusRegExpBadSyntax, open);
    ++cs->cursor;
    if (*cs->cursor != '?') {
        node.kind = NodeCapture;
        node.word1 = cs->depth;
        node.word3 = cs->nextCapture++;
        node.word4 = 0;
        ++cs->nodeCount;
        return zevStatusOk;
    }
    ++cs->cursor;
    uint32_t kind = 0;
    switch (*cs->cursor) {
    case ':': kind = NodeGroup; break;
    case '=': kind = NodeLookahead; break;
    case '!': kind = NodeNegLookahead; break;
    case '>': kind = NodeAtomic; break;
    case '<':
        ++cs->cursor;
        if (*cs->cursor == '=') kind = NodeLookbehind;
        else if (*cs->cursor == '!') kind = NodeNegLookbehind;
        else return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
        break;
    case '#':
        // A comment: no node, and its number is given back.
        while (*cs->cursor != 0 && *cs->cursor != ')') ++cs->cursor;
        if (*cs->cursor == 0) return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
        ++cs->cursor;
        --cs->depth;
        --cs->nextGroupId;
        return zevStatusOk;
    case ')':
        ++cs->cursor;
        --cs->depth;
        --cs->nextGroupId;
        return zevStatusOk;
    case '(':
        return conditional(cs, head);
    case '-': case 'i': case 'm': case 's': case 'x':
        return optionLetters(cs, head);
    default:
        return ownFail(cs, zevStatusRegExpBadSyntax, cs->cursor);
    }
    node.kind = kind;
    node.word1 = cs->depth;
    node.word3 = 0;
    node.word4 = 0;
    ++cs->nodeCount;
    ++cs->cursor;
    return zevStatusOk;
}

zevStatus ownRegExpCloseGroup(CompileState* cs) {
    ownFlushRun(cs);
    if (cs->overflow) return zevStatusOk;  // the translation loop reports it
    RegExpNode* nodes = cs->nodes;
    const int32_t close = cs->nodeCount;
    const char* paren = cs->cursor;
    if (cs->depth == 0) return ownFail(cs, zevStatusRegExpBadSyntax, paren);
    --cs->depth;
    ++cs->cursor;
    const int32_t inner = cs->depth + 1;

    int32_t head = close - 1;
    while (head >= 0 && !(ownIsHeadKind(nodes[head].kind) && nodes[head].word1 == inner)) --head;
    if (head < 0 || close >= cs->capacity) return ownFail(cs, zevStatusRegExpBadSyntax, paren);
    RegExpNode& h = nodes[head];
    const uint32_t kind = h.kind;
    const int32_t span = close - head - 1;
    const int32_t width = ownRegExpWidthCount(nodes, head, span);

    if (kind == NodeGroup) {
        bool quantified = ownQuantifierFollows(cs->cursor);
        if ((span == 1 && width == 1) || (width >= 2 && !quantified)) {
            ownRegExpDissolveGroup(cs, head, span);
            return zevStatusOk;
        }
    }

    cs->activeOptions = cs->optionStack[cs->depth];
    RegExpNode& c = nodes[close];
    c.word2 = static_cast<int32_t>(cs->activeOptions);
    // 1 marks a group whose body is one repeated character; a quantifier on
    // the group turns it into -1, which the matcher acts on.
    c.word3 = ((kind == NodeCapture || kind == NodeGroup) && close - 1 > head &&
               ownIsRepeatKind(nodes[close - 1].kind) && width == 1) ? 1 : 0;
    int32_t id = h.word2;
    if (ownIsLookaroundKind(kind) || kind == NodeAtomic) id = -id;
    h.word2 = span;

    if (kind == NodeConditional && !conditionIsSound(cs, head, span))
        return ownFail(cs, zevStatusRegExpBadSyntax, paren);
    if (kind == NodeLookbehind || kind == NodeNegLookbehind) {
        zevStatus st = ownRegExpLookbehindWidth(cs, head, span, paren);
        if (st != zevStatusOk) return st;
    }

    h.word1 = id;
    c.kind = NodeClose;
    c.word1 = id;
    c.word4 = 0;
    int32_t branches = 0;
    for (int32_t i = head + 1; i < close; ++i) {
        if (nodes[i].kind == NodeAlternate && nodes[i].word1 == inner) {
            nodes[i].word1 = id;
            ++branches;
        }
    }
    if (kind == NodeConditional && branches > 1) return ownFail(cs, zevStatusRegExpBadSyntax, paren);
    cs->nodeCount = close + 1;
    return zevStatusOk;
}

void ownRegExpAlternate(CompileState* cs) {
    if (cs->depth == 0) cs->literalCandidate = -2;  // before the flush notes a literal
    ownFlushRun(cs);
    ownNewNode(cs, NodeAlternate, cs->depth, static_cast<int32_t>(cs->activeOptions), 0);
    ++cs->cursor;
}

namespace {

// Reads decimal digits, stopping the value at RepeatUnbounded so that a
// count of any length stays too large.
int32_t readCount(const char** place) {
    int64_t value = 0;
    const char* q = *place;
    while (ownIsDigit(ownByte(q))) {
        if (value < RepeatUnbounded) value = value * 10 + (*q - '0');
        if (value > RepeatUnbounded) value = RepeatUnbounded;
        ++q;
    }
    *place = q;
    return static_cast<int32_t>(value);
}

}  // namespace

zevStatus ownRegExpQuantifier(CompileState* cs) {
    const char* start = cs->cursor;
    RegExpNode* nodes = cs->nodes;

    // The operand of a quantifier behind a run is the run's last byte alone.
    const int32_t run = cs->runLength;
    if (run != 0) {
        if (run >= 3) {
            RegExpNode* node = ownNewNode(cs, NodeString, 0, run - 1, 0);
            node->word4 = static_cast<uint32_t>(ownOffset(cs, start - 1));
        } else if (run == 2) {
            ownNewNode(cs, NodeChar, ownByte(start - 2), 0, 0);
        }
        ownNewNode(cs, NodeChar, ownByte(start - 1), 0, 0);
        cs->runLength = 0;
        if (cs->overflow) return zevStatusOk;  // the translation loop reports it
    }

    int32_t min, max;
    const char* after;
    if (*start == '*') {
        min = 0, max = RepeatUnbounded, after = start + 1;
    } else if (*start == '+') {
        min = 1, max = RepeatUnbounded, after = start + 1;
    } else if (*start == '?') {
        min = 0, max = 1, after = start + 1;
    } else {
        const char* q = start + 1;
        min = readCount(&q);
        if (*q == '}') {
            max = min;
        } else {
            ++q;  // the comma
            if (*q == '}') {
                max = RepeatUnbounded;
            } else {
                const char* maxDigits = q;
                max = readCount(&q);
                if (max > MaxRepeatCount) return ownFail(cs, zevStatusRegExpBadRepeat, maxDigits);
            }
        }
        if (min > MaxRepeatCount || min > max) return ownFail(cs, zevStatusRegExpBadRepeat, start + 1);
        after = q + 1;
    }

    if (cs->nodeCount == 0) return ownFail(cs, zevStatusRegExpBadRepeat, start);
    int32_t operand = cs->nodeCount - 1;
    RegExpNode& p = nodes[operand];
    switch (p.kind) {
    case NodeAlternate: case NodeLookbehind: case NodeNegLookbehind: case NodeLookahead:
    case NodeNegLookahead: case NodeOptionGroup: case NodeCapture: case NodeGroup: case NodeAtomic:
    case NodeSetOptions:
        return ownFail(cs, zevStatusRegExpBadRepeat, start);
    default:
        break;
    }

    int32_t repeat;
    if (ownIsRepeatKind(p.kind)) {
        // A repeat already stands there. Directly behind a quantifier this is
        // a second quantifier (a**, a{2}+); otherwise something that left no
        // node came between (a folded run, a comment, extended white space),
        // and the counts merge into one greedy repeat.
        char b = start[-1];
        if (b == '}' || b == '?' || b == '+' || b == '*') return ownFail(cs, zevStatusRegExpBadRepeat, start);
        cs->cursor = after;
        if (*cs->cursor == '?') ++cs->cursor;
        p.kind = NodeRepeat;
        p.word1 = ownAddCounts(p.word1, min);
        p.word2 = ownAddCounts(p.word2, max);
        repeat = operand;
    } else {
        if (p.kind == NodeChar || p.kind == NodeWideChar) {
            // A character split off a run can stay the trailing literal if
            // it must occur at least once.
            if (cs->literalCandidate >= -1 && cs->depth == 0 && min > 0 && run > 0) {
                cs->literalCandidate = operand;
                p.word3 = static_cast<int32_t>(cs->activeOptions);
            } else if (cs->literalCandidate >= -1) {
                cs->literalCandidate = -1;
            }
        }
        cs->cursor = after;
        uint32_t kind = NodeRepeat;
        if (*cs->cursor == '?') {
            ++cs->cursor;
            kind = NodeRepeatLazy;
        }
        ownNewNode(cs, kind, min, max, 0);
        repeat = cs->nodeCount - 1;
        if (cs->overflow) return zevStatusOk;
    }

    if (repeat >= 1 && nodes[repeat - 1].kind == NodeClose) {
        RegExpNode& close = nodes[repeat - 1];
        if (close.word3 == 1) close.word3 = -1;
        // A quantifier on a lookaround has no effect at run time: the
        // lookaround stands once, or not at all for a minimum of 0. The
        // first head below with the close's id is the group's own head (ids
        // of closed heads are unique, and an open head around it holds a
        // depth below any id inside it), so the search stops there rather
        // than running on to node 0 for every other group.
        for (int32_t i = repeat - 2; i >= 0; --i) {
            if (ownIsHeadKind(nodes[i].kind) && nodes[i].word1 == close.word1) {
                if (ownIsLookaroundKind(nodes[i].kind)) cs->nodeCount = min >= 1 ? repeat : i;
                break;
            }
        }
    }
    return zevStatusOk;
}
