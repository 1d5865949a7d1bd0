// regexp/regexp_record.h - the compiled-pattern record, shared by the
// compiler (regexp/compile), the Unicode layer (regexp/unicode), the matcher
// (regexp/match) and the services (regexp/replace, psregexpmulti).
//
// The record is one block the caller may own: an 8-word header, the search's
// scratch tables `groups` and `captures`, then the node array and the literal
// bytes. Every word is 32 bits on every build, so the layout and the size rule
// 40052 + 20 * strlen(pattern) hold on 32-bit and 64-bit targets alike. Where
// the classic layout held a pointer, this one holds a 32-bit offset:
//   - word4 of NodeString: byte offset of the literal bytes from the start of
//     the record (during compilation: offset of the run's end in the pattern);
//   - word4 of NodeScript: index of the script's first range in ScriptRanges;
//   - `start` of a capture record: byte offset from the subject's first byte.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zevch.h"

// "rgEx" as a little-endian word.
constexpr uint32_t RegExpMagic = 0x78456772u;

// NOTE: the 27 node kinds are numbered densely from NodeChar. Tables indexed
// by kind (the dump's names, the interpreter's dispatch) static_assert against
// NodeKindCount; update them together.
enum NodeKind : uint32_t {
    NodeChar          = 0x10000000,
    NodeString        = 0x10000001,
    NodeBackRef       = 0x10000002,
    NodeClass         = 0x10000003,
    NodeCharType      = 0x10000004,
    NodeAssert        = 0x10000005,
    NodeAlternate     = 0x10000006,
    NodeRange         = 0x10000007,
    NodeRepeatLazy    = 0x10000008,
    NodeRepeat        = 0x10000009,
    NodeLookbehind    = 0x1000000A,
    NodeNegLookbehind = 0x1000000B,
    NodeLookahead     = 0x1000000C,
    NodeNegLookahead  = 0x1000000D,
    NodeOptionGroup   = 0x1000000E,
    NodeConditional   = 0x1000000F,
    NodeCapture       = 0x10000010,
    NodeGroup         = 0x10000011,
    NodeAtomic        = 0x10000012,
    NodeClose         = 0x10000013,
    NodeSetOptions    = 0x10000014,
    NodeAnyByte       = 0x10000015,
    NodeWideChar      = 0x10000016,
    NodeProperty      = 0x10000017,
    NodeBlock         = 0x10000018,
    NodeScript        = 0x10000019,
    NodeGrapheme      = 0x1000001A,
};
constexpr uint32_t NodeKindFirst = NodeChar;
constexpr uint32_t NodeKindCount = 27;

// word1 of the NodeAssert that the compiler puts in front of a pattern that
// starts with ".*" or ".+": true at the subject's start and behind a newline.
constexpr int32_t AssertLineStartAnchor = 128;

// Limits of the pattern language.
constexpr int32_t MaxGroupId      = 999;
constexpr int32_t MaxCaptureCount = 1000;   // capturing groups + 1
constexpr int32_t MaxRepeatCount  = 65535;
constexpr int32_t DefaultMatchLimit = 10000;

// Five words: kind, then word1..word4. Words the compiler does not name for a
// kind hold whatever the memory held and must not be read.
struct RegExpNode {
    uint32_t kind;
    int32_t  word1;
    int32_t  word2;
    int32_t  word3;
    uint32_t word4;
};

// One record of the `groups` table, per positive group id; scratch of the
// search (regexp/match/groups.cpp is its only user).
struct GroupFrame {
    int32_t minLeft;        // iterations still required
    int32_t maxLeft;        // iterations still allowed
    int32_t head;           // index of the group's head node
    int32_t remaining;      // `remaining` at the iteration start / last close
    int32_t captureIndex;   // capture record of a NodeCapture
    int32_t iterationOpen;  // 1 from branch entry to the first pass of close
    int32_t closeFailed;    // 1 after what followed a close has failed
    int32_t length;         // byte length of the iteration in progress
};

// One record of the `captures` table. `start` is an offset from the subject's
// first byte; a group that took no part has length -1 (and start 0, reported
// as a null pointer).
struct CaptureRecord {
    int32_t start;
    int32_t length;
};

constexpr int32_t GroupTableSize   = 1000;
constexpr int32_t CaptureTableSize = 1000;

struct RegExpState {
    uint32_t magic;
    uint32_t options;
    int32_t  nodeCount;
    int32_t  captureCount;
    int32_t  trailingLiteral;
    int32_t  matchLimit;
    int32_t  format;
    uint32_t reserved;
    GroupFrame    groups[GroupTableSize];
    CaptureRecord captures[CaptureTableSize];
    RegExpNode    nodes[1];   // really strlen(pattern) + 1 nodes, then literal bytes
};

// The layout is observable (callers size the block, and tools read it), so it
// is pinned here for every build.
static_assert(sizeof(RegExpNode) == 20, "a node is five 32-bit words");
static_assert(sizeof(GroupFrame) == 32, "a group frame is eight 32-bit words");
static_assert(sizeof(CaptureRecord) == 8, "a capture record is two 32-bit words");
static_assert(offsetof(RegExpState, groups) == 32, "header of 8 words");
static_assert(offsetof(RegExpState, captures) == 32032, "groups: 1000 x 32 bytes");
static_assert(offsetof(RegExpState, nodes) == 40032, "captures: 1000 x 8 bytes");
static_assert(sizeof(RegExpState) == 40052, "base size of the record");

constexpr int32_t RegExpBaseSize = 40052;
constexpr int32_t RegExpBytesPerPatternByte = 20;

// Literal bytes of a finished NodeString.
inline const uint8_t* ownNodeStringBytes(const RegExpState* state, const RegExpNode& node) {
    return reinterpret_cast<const uint8_t*>(state) + node.word4;
}

// ---------------------------------------------------------------------------
// Interfaces between the parts of the engine.

// regexp/compile: the one routine behind zevsRegExpInit and
// zevsRegExpInitAlloc. errOffset is written only on failure.
zevStatus ownRegExpCompile(const char* pattern, const char* options, RegExpState* state,
                           int32_t* errOffset);

// regexp/unicode: property escapes. *cursor is on the `p` or `P`; appends one
// NodeProperty, NodeBlock or NodeScript at nodes[*nodeCount] and advances the
// count. 0: the cursor is behind the escape. -1: the cursor is at the fault.
int32_t ownRegExpParseProperty(const char** cursor, RegExpNode* nodes, int32_t* nodeCount,
                               int32_t negate);

// regexp/unicode: UTF-8 reading and the character checks.
//
// `left` is the number of bytes from `place` to the true end of the caller's
// text; bytes beyond it are never read. (For zero-terminated pattern text a
// caller may pass INT32_MAX: the terminator fails the continuation test, and
// the bytes are read one at a time, so nothing past it is read.)
//
// ownDecodeUtf8: returns the sequence length (1..6) and stores the code, or
// returns 0 for a malformed sequence and leaves *code unwritten.
int32_t ownDecodeUtf8(const uint8_t* place, int64_t left, int32_t* code);
// ownUtf8Length: the length of a well-formed sequence, 1 when malformed.
int32_t ownUtf8Length(const uint8_t* place, int64_t left);
bool    ownEqualIgnoreAsciiCase(uint8_t subjectByte, uint8_t patternByte);
int32_t ownFoldCase(int32_t code);
// +1 yes, -1 no. negate is 0 or -1, as the node holds it.
int32_t ownCheckProperty(int32_t code, int32_t mask, int32_t negate);
int32_t ownCheckBlock(int32_t code, int32_t low, int32_t high, int32_t negate);
int32_t ownCheckScript(int32_t code, const int32_t* ranges, int32_t count, int32_t negate);
// Byte length of the grapheme cluster at `place` (at most `left` bytes read),
// or 0 when no cluster starts there.
int32_t ownReadCluster(const uint8_t* place, int64_t left);
// The flat table of script ranges: pairs of low and high code. word4 of a
// NodeScript is the index of its first pair; word3 the number of pairs.
const int32_t* ownScriptRanges(uint32_t firstPair);

// regexp/match: the search behind zevsRegExpFind_8u (replaceMode 0) and the
// replacement (replaceMode 1 for a pattern with the g option).
zevStatus ownRegExpSearch(const uint8_t* src, int32_t srcLen, RegExpState* state,
                          RegExpFindEntry* find, int32_t* findCount, int32_t replaceMode);
