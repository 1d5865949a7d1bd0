// regexp/compile/analysis.cpp - what the compiler works out for the matcher.
//
// There is no optimising pass. These steps run along the way: the anchor
// prefix test before translation, group dissolving and lookbehind widths at
// a `)`, and at the end the trailing literal and the copy of the literal
// bytes into the record. The list is complete: no first-character set, no
// minimal length, no literal prefix.
//
// Tested by tests/compile/analysis_test.cpp and golden_test.cpp (golden.txt).
#include <cstring>

#include "core/core.h"
#include "regexp/compile/compile_internal.h"

// A pattern that starts with "anything" (.* or .+, not lazy, perhaps in a
// (?:...) of its own) can only match from a line start, so it gets a leading
// AssertLineStartAnchor.
bool ownRegExpHasAnchorPrefix(const char* pattern) {
    if (pattern[0] == '.' && (pattern[1] == '*' || pattern[1] == '+') && pattern[2] != '?') return true;
    return std::strncmp(pattern, "(?:.*)", 6) == 0 || std::strncmp(pattern, "(?:.+)", 6) == 0;
}

int32_t ownRegExpWidthCount(const RegExpNode* nodes, int32_t head, int32_t span) {
    int32_t width = 0;
    for (int32_t i = head + 1; i <= head + span; ++i) {
        const RegExpNode& n = nodes[i];
        if (ownIsSingleWidthKind(n.kind)) {
            ++width;
        } else if (n.kind == NodeString) {
            width += n.word2;
        } else if (n.kind == NodeClass) {
            ++width;
            i += n.word2;
        } else if (n.kind != NodeRepeat) {
            return -1;
        }
    }
    return width;
}

// Widths are summed in 32-bit words that wrap, as counts of the pattern
// language can multiply past 2^31 ((a{65535}){65535} ...); a wrapped
// negative width is refused like a varying one.
int32_t ownRegExpFixedWidth(const RegExpNode* nodes, int32_t head, int32_t span) {
    uint32_t total = 0, last = 0, firstWidth = 0;
    bool branched = false;
    for (int32_t i = head + 1; i <= head + span; ++i) {
        const RegExpNode& n = nodes[i];
        if (ownIsSingleWidthKind(n.kind)) {
            total += 1;
            last = 1;
        } else if (n.kind == NodeString) {
            total += static_cast<uint32_t>(n.word2);
        } else if (n.kind == NodeClass) {
            total += 1;
            last = 1;
            i += n.word2;
        } else if (n.kind == NodeAlternate) {
            if (!branched) firstWidth = total;
            else if (total != firstWidth) return -1;
            branched = true;
            total = 0;
            last = 0;
        } else if (ownIsRepeatKind(n.kind)) {
            if (n.word1 >= 1) total += static_cast<uint32_t>(n.word1 - 1) * last;
        } else if (ownIsLookaroundKind(n.kind)) {
            i += n.word2;  // zero width; its NodeClose counts nothing
        } else if (n.kind == NodeCapture || n.kind == NodeGroup || n.kind == NodeAtomic) {
            int32_t inner = ownRegExpFixedWidth(nodes, i, n.word2);
            if (inner < 0) return inner;
            last = static_cast<uint32_t>(inner);
            total += last;
            i += n.word2;
        }
        // Anything else counts nothing. The bodies of NodeOptionGroup and
        // NodeConditional are walked as part of this body, so their `|`
        // counts as a branch here.
    }
    if (branched && total != firstWidth) return -1;
    return static_cast<int32_t>(total);
}

zevStatus ownRegExpLookbehindWidth(CompileState* cs, int32_t head, int32_t span, const char* close) {
    const RegExpNode* nodes = cs->nodes;
    for (int32_t i = head + 1; i <= head + span; ++i) {
        const RegExpNode& n = nodes[i];
        if (n.kind == NodeBackRef || (ownIsRepeatKind(n.kind) && n.word1 != n.word2))
            return ownFail(cs, zevStatusRegExpBadSyntax, close);
    }
    int32_t width = span == 0 ? 0 : ownRegExpFixedWidth(nodes, head, span);
    if (width < 0) return ownFail(cs, zevStatusRegExpBadSyntax, close);
    cs->nodes[head].word3 = width;
    return zevStatusOk;
}

// A (?:...) that serves nothing: its body moves down over the head, no
// NodeClose is written and its id is given back. Such a body holds no group
// (it would have no width count), so nothing in it refers to the id.
void ownRegExpDissolveGroup(CompileState* cs, int32_t head, int32_t span) {
    std::memmove(&cs->nodes[head], &cs->nodes[head + 1], static_cast<size_t>(span) * sizeof(RegExpNode));
    cs->nodeCount = head + span;
    --cs->nextGroupId;
    cs->activeOptions = cs->optionStack[cs->depth];
}

// The candidate holds only if nothing but repeats stands behind it.
int32_t ownRegExpSettleTrailingLiteral(const RegExpNode* nodes, int32_t nodeCount, int32_t candidate) {
    if (candidate < 0) return candidate;
    if (candidate >= nodeCount) return -1;
    for (int32_t i = candidate + 1; i < nodeCount; ++i)
        if (!ownIsRepeatKind(nodes[i].kind)) return -1;
    return candidate;
}

bool ownRegExpCopyLiterals(CompileState* cs) {
    uint8_t* record = reinterpret_cast<uint8_t*>(cs->state);
    const size_t nodeArea = offsetof(RegExpState, nodes);
    const size_t recordSize = nodeArea + sizeof(RegExpNode) * static_cast<size_t>(cs->capacity);
    uint32_t place = static_cast<uint32_t>(nodeArea + sizeof(RegExpNode) * static_cast<size_t>(cs->nodeCount));
    for (int32_t i = 0; i < cs->nodeCount; ++i) {
        RegExpNode& n = cs->nodes[i];
        if (n.kind != NodeString) continue;
        // Every NodeString of k bytes came from at least k pattern bytes,
        // which brought 20 x k bytes of room; this only guards that rule.
        if (place + static_cast<size_t>(n.word2) > recordSize) return false;
        const char* bytes = cs->pattern + n.word4 - n.word2;
        ownCopyBytes(bytes, record + place, n.word2);
        n.word4 = place;
        place += static_cast<uint32_t>(n.word2);
    }
    return true;
}
