// regexp/compile/record.cpp - the compiled-pattern record and its calls.
//
// Entry points: ownRegExpCompile, the one routine behind zevsRegExpInit and
// zevsRegExpInitAlloc, and the six exported calls that size, compile, adjust
// and free a record. A record is 40052 + 20 x strlen(pattern) bytes: the
// header, the search's scratch tables, strlen + 1 nodes and room for the
// literal bytes. No construct yields more nodes than it has bytes; the one
// extra node is the implicit anchor.
//
// Tested by tests/compile/record_test.cpp and limits_test.cpp.
#include <cstddef>
#include <cstring>

#include "core/core.h"
#include "regexp/compile/compile_internal.h"

namespace {

// The longest pattern whose record size still fits a signed 32-bit size.
constexpr size_t MaxPatternLength =
    (static_cast<size_t>(INT32_MAX) - RegExpBaseSize) / RegExpBytesPerPatternByte;

int32_t recordSize(size_t patternLength) {
    return RegExpBaseSize + RegExpBytesPerPatternByte * static_cast<int32_t>(patternLength);
}

// The option string: g, i, m, s, x, each ORing in its bit.
bool readOptions(const char* options, uint32_t* bits) {
    uint32_t result = 0;
    if (options != nullptr) {
        for (const char* o = options; *o != 0; ++o) {
            switch (*o) {
            case 'g': result |= OptionGlobal; break;
            case 'i': result |= OptionIgnoreCase; break;
            case 'm': result |= OptionMultiLine; break;
            case 's': result |= OptionDotAll; break;
            case 'x': result |= OptionExtended; break;
            default: return false;
            }
        }
    }
    *bits = result;
    return true;
}

RegExpNode* nodeArray(RegExpState* state) {
    return reinterpret_cast<RegExpNode*>(reinterpret_cast<uint8_t*>(state) + offsetof(RegExpState, nodes));
}

}  // namespace

zevStatus ownRegExpCompile(const char* pattern, const char* options, RegExpState* state,
                           int32_t* errOffset) {
    if (pattern == nullptr || state == nullptr || errOffset == nullptr) return zevStatusNullPointer;
    const size_t length = std::strlen(pattern);
    if (length > MaxPatternLength) return zevStatusBadLength;

    CompileState cs;
    cs.pattern = pattern;
    cs.cursor = pattern;
    cs.state = state;
    cs.nodes = nodeArray(state);
    cs.capacity = static_cast<int32_t>(length) + 1;
    cs.nodeCount = 0;
    cs.runLength = 0;
    cs.depth = 0;
    cs.nextGroupId = 1;
    cs.nextCapture = 1;
    cs.literalCandidate = -1;
    cs.errOffset = 0;
    cs.overflow = false;

    if (ownRegExpHasAnchorPrefix(pattern)) ownNewNode(&cs, NodeAssert, AssertLineStartAnchor, 0, 0);

    uint32_t bits;
    if (!readOptions(options, &bits)) {
        *errOffset = 0;
        return zevStatusRegExpBadOptions;
    }
    cs.activeOptions = bits;

    int32_t captureTotal = 1;
    zevStatus st = ownRegExpValidate(pattern, bits, cs.optionStack, &captureTotal, errOffset);
    if (st != zevStatusOk) return st;
    cs.captureCount = captureTotal;

    state->magic = RegExpMagic;
    state->captureCount = captureTotal;
    state->options = bits;
    state->format = 1;

    st = ownRegExpTranslate(&cs);
    if (st == zevStatusOk && !ownRegExpCopyLiterals(&cs)) st = ownFail(&cs, zevStatusRegExpBadSyntax, cs.cursor);
    if (st != zevStatusOk) {
        *errOffset = cs.errOffset;
        return st;
    }
    state->trailingLiteral = ownRegExpSettleTrailingLiteral(cs.nodes, cs.nodeCount, cs.literalCandidate);
    state->nodeCount = cs.nodeCount;
    state->matchLimit = DefaultMatchLimit;
    return zevStatusOk;
}

zevStatus zevsRegExpGetSize(const char* pattern, int32_t* size) {
    if (pattern == nullptr || size == nullptr) return zevStatusNullPointer;
    size_t length = std::strlen(pattern);
    if (length > MaxPatternLength) return zevStatusBadLength;
    *size = recordSize(length);
    return zevStatusOk;
}

zevStatus zevsRegExpInit(const char* pattern, const char* options, RegExpState* state, int32_t* errOffset) {
    return ownRegExpCompile(pattern, options, state, errOffset);
}

zevStatus zevsRegExpInitAlloc(const char* pattern, const char* options, RegExpState** stateOut,
                              int32_t* errOffset) {
    if (pattern == nullptr || stateOut == nullptr) return zevStatusNullPointer;
    size_t length = std::strlen(pattern);
    if (length > MaxPatternLength) return zevStatusBadLength;
    RegExpState* state = static_cast<RegExpState*>(ownMalloc(recordSize(length)));
    if (state == nullptr) {
        *stateOut = nullptr;
        return zevStatusNullPointer;  // there is no separate out-of-memory status
    }
    zevStatus st = ownRegExpCompile(pattern, options, state, errOffset);
    if (st != zevStatusOk) {
        ownFree(state);
        *stateOut = nullptr;
        return st;
    }
    *stateOut = state;
    return zevStatusOk;
}

zevStatus zevsRegExpSetFormat(int32_t format, RegExpState* state) {
    if (state == nullptr) return zevStatusNullPointer;
    if (format != 0 && format != 1) return zevStatusBadFormat;
    state->format = format;
    return zevStatusOk;
}

zevStatus zevsRegExpSetMatchLimit(int32_t limit, RegExpState* state) {
    if (state == nullptr) return zevStatusNullPointer;
    if (limit < 0) return zevStatusBadLength;
    state->matchLimit = limit;
    return zevStatusOk;
}

void zevsRegExpFree(RegExpState* state) { ownFree(state); }
