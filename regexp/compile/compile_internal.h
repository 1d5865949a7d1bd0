// regexp/compile/compile_internal.h - state shared by the compiler's passes.
//
// The compiler reads the pattern twice. validate.cpp proves that the
// parentheses balance and counts the capturing groups; translate.cpp runs the
// one loop that appends nodes, handing classes to classes.cpp and the bytes
// of structure to groups.cpp; analysis.cpp holds the steps that shrink or
// annotate the node array (anchor prefix, group dissolving, lookbehind
// widths, trailing literal, literal copy). record.cpp strings them together
// behind ownRegExpCompile and the six exported calls.
//
// Tested by tests/compile/*.cpp.
#pragma once

#include <cstdint>

#include "regexp/regexp_record.h"

// Option bits saved at each open parenthesis; the validation pass allows at
// most 999 open at once (1000 through the head of a conditional).
constexpr int32_t OptionStackSize = 1000;
// Group ids run from 1 to MaxGroupId; nextGroupId passing this fails.
constexpr int32_t GroupIdLimit = MaxGroupId + 1;

// State of the translation pass, local to one compilation.
struct CompileState {
    const char*   pattern;           // first byte; offsets are taken from here
    const char*   cursor;            // current place
    RegExpState*  state;
    RegExpNode*   nodes;             // the record's node array
    int32_t       capacity;          // strlen(pattern) + 1 nodes fit the record
    int32_t       nodeCount;
    int32_t       runLength;         // pending literal bytes just before cursor
    uint32_t      activeOptions;     // option bits in force at the cursor
    int32_t       depth;             // open groups
    int32_t       nextGroupId;
    int32_t       nextCapture;
    int32_t       literalCandidate;  // future trailingLiteral: index, -1 or -2
    int32_t       captureCount;      // capturing groups + 1, from validation
    int32_t       errOffset;         // offset of the fault, when one is returned
    bool          overflow;          // a node did not fit; see ownNewNode
    RegExpNode    spill;             // target of writes that did not fit
    uint32_t      optionStack[OptionStackSize];
};

// Records a fault at `place` and hands the status back, for `return ownFail(...)`.
inline zevStatus ownFail(CompileState* cs, zevStatus status, const char* place) {
    cs->errOffset = static_cast<int32_t>(place - cs->pattern);
    return status;
}

inline int32_t ownOffset(const CompileState* cs, const char* place) {
    return static_cast<int32_t>(place - cs->pattern);
}

inline uint8_t ownByte(const char* place) { return static_cast<uint8_t>(*place); }

inline bool ownIsDigit(uint8_t c) { return c >= '0' && c <= '9'; }
inline bool ownIsOctalDigit(uint8_t c) { return c >= '0' && c <= '7'; }
// Value of a hexadecimal digit of either case, or -1.
inline int32_t ownHexValue(uint8_t c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

inline bool ownIsRepeatKind(uint32_t kind) { return kind == NodeRepeat || kind == NodeRepeatLazy; }
inline bool ownIsLookaroundKind(uint32_t kind) {
    return kind >= NodeLookbehind && kind <= NodeNegLookahead;
}
// Heads that a closing parenthesis looks for: the lookarounds through NodeAtomic.
inline bool ownIsHeadKind(uint32_t kind) { return kind >= NodeLookbehind && kind <= NodeAtomic; }
// Items that count one character in a width.
inline bool ownIsSingleWidthKind(uint32_t kind) {
    return kind == NodeChar || kind == NodeCharType || kind == NodeWideChar ||
           kind == NodeProperty || kind == NodeBlock || kind == NodeScript || kind == NodeGrapheme;
}

// Adds two repeat counts, stopping at RepeatUnbounded.
inline int32_t ownAddCounts(int32_t a, int32_t b) {
    int64_t sum = static_cast<int64_t>(a) + b;
    return sum >= RepeatUnbounded ? RepeatUnbounded : static_cast<int32_t>(sum);
}

// Appends a node with the given words (word4 = 0) and returns it. The node
// array is sized so that no pattern needs more than `capacity` nodes; should
// that ever fail, the write goes to cs->spill, cs->overflow is set and the
// translation loop gives up, so the record is never written past its size.
RegExpNode* ownNewNode(CompileState* cs, uint32_t kind, int32_t word1, int32_t word2, int32_t word3);

// translate.cpp
void ownNoteLiteral(CompileState* cs, int32_t index);
void ownFlushRun(CompileState* cs);
// Whether the text at `place` is a quantifier: *, +, ? or a well-formed {...}.
bool ownQuantifierFollows(const char* place);
bool ownIsBraceQuantifier(const char* place);
// Decodes \cX: the control value for the byte k behind the c.
int32_t ownControlValue(uint8_t k);
// Reads up to maxDigits octal or hexadecimal digits from `place` into
// *value (0 for none) and returns the place behind them.
const char* ownReadOctal(const char* place, int32_t maxDigits, int32_t* value);
const char* ownReadHex(const char* place, int32_t maxDigits, uint32_t* value);
// \p or \P, in a class or outside one; `letter` is on the p or P. Appends
// one node through the property parser or fails with BadProperty where the
// parser stopped.
zevStatus ownPropertyEscape(CompileState* cs, const char* letter);
zevStatus ownRegExpTranslate(CompileState* cs);

// validate.cpp: the first pass. Gives the number of capturing groups plus
// one through captureTotal. Writes only errOffset, and that only on failure.
zevStatus ownRegExpValidate(const char* pattern, uint32_t options, uint32_t* optionStack,
                            int32_t* captureTotal, int32_t* errOffset);

// classes.cpp: a bracket class, cursor on the `[`.
zevStatus ownRegExpClass(CompileState* cs);

// groups.cpp: the bytes of structure, cursor on the byte.
zevStatus ownRegExpOpenGroup(CompileState* cs);
zevStatus ownRegExpCloseGroup(CompileState* cs);
void      ownRegExpAlternate(CompileState* cs);
zevStatus ownRegExpQuantifier(CompileState* cs);

// analysis.cpp
bool    ownRegExpHasAnchorPrefix(const char* pattern);
// Width count of a group body: characters it matches, -1 if not countable.
int32_t ownRegExpWidthCount(const RegExpNode* nodes, int32_t head, int32_t span);
// Fixed width in characters of the body behind `head`, or -1 if it varies.
int32_t ownRegExpFixedWidth(const RegExpNode* nodes, int32_t head, int32_t span);
// Checks a closed lookbehind body and stores its width in word3 of the head.
zevStatus ownRegExpLookbehindWidth(CompileState* cs, int32_t head, int32_t span, const char* close);
// Moves a NodeGroup's body down over its head; the group leaves no trace.
void    ownRegExpDissolveGroup(CompileState* cs, int32_t head, int32_t span);
int32_t ownRegExpSettleTrailingLiteral(const RegExpNode* nodes, int32_t nodeCount, int32_t candidate);
// Copies the NodeString bytes behind the last node and makes word4 an
// offset from the record's start. False if they would not fit the record.
bool    ownRegExpCopyLiterals(CompileState* cs);
