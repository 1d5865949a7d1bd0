// regexp/match/match_internal.h - the matcher's working record and the
// contract that every matcher of regexp/match keeps.
//
// Contract of every matcher (interpreter, group, repeat, class, atomic):
//   int32_t matcher(const uint8_t* p, int32_t remaining, MatchContext* ctx)
//   - the node to run is ctx->currentNode, set by the caller;
//   - 0: everything from currentNode to ctx->endNode matched (the search can
//     unwind with success); 1: no match at this choice. No other value.
//   - a matcher that returns 1 leaves captures[0].length as it found it;
//   - budget is spent only by ownRegExpMatch, one unit per node dispatched,
//     and never given back.
// Shortcuts (ctx->fastPaths != 0) must give the same results, captures,
// statuses and budget as the plain path for every input; tests run both.
#pragma once

#include <cstdint>

#include "regexp/regexp_record.h"

// One remembered class set: the 128 ASCII answers of the class at head
// index `head1 - 1` under `flags`, or reducible 0 when an item needs the
// per-character check. head1 0 marks an empty slot.
struct ClassSetEntry {
    int32_t  head1;
    uint32_t flags;
    int32_t  reducible;
    uint64_t bits[2];
};
constexpr int32_t ClassSetSlots = 16;   // a power of two: slot = head % ClassSetSlots

struct MatchContext {
    int32_t  currentNode;   // node to run next
    int32_t  endNode;       // exclusive end of the node range in progress
    uint32_t reentry;       // close re-entering open for another iteration
    uint32_t flags;         // option bits in force (s, m, i)
    int32_t  rejectEmpty;   // 1 only during the one-byte retry of a global search
    int32_t  captureCount;  // copy of the record's field
    int32_t  budget;        // what is left of the match limit
    int32_t  format;        // copy of the record's field; only the driver reads it
    const uint8_t* subject; // first byte of the caller's subject
    RegExpNode*    nodes;
    CaptureRecord* captures;
    GroupFrame*    groups;
    const RegExpState* state;  // for NodeString literal bytes

    // Not in the classic record: what this build needs to stay inside the
    // caller's buffers and the thread's stack.
    int32_t  subjectLength;      // true end of the subject: subject + subjectLength
    int32_t  fastPaths;          // 0: plain reference interpreter; 1: exact shortcuts on
    const char* stackLimit;      // lowest address the recursion may reach

    // With fastPaths: where the last lookbehind's two walks from the
    // subject's start stopped (byte offset, characters passed), so that the
    // next one goes on from there instead of from the start. All 0 at the
    // start of a search.
    int32_t walkEnd;
    int32_t walkEndCount;
    int32_t walkStart;
    int32_t walkStartCount;

    // The ASCII members of the classes met in this search, one slot per head
    // index modulo the slot count and keyed by head and flags, so that a
    // class's set is built once per search and not at every attempt. All
    // slots are empty (head1 0) at the start of a search.
    ClassSetEntry classSets[ClassSetSlots];
};

// Bytes from p to the true end of the caller's subject (>= remaining).
inline int32_t ownBytesToEnd(const MatchContext* ctx, const uint8_t* p) {
    return static_cast<int32_t>(ctx->subject + ctx->subjectLength - p);
}

// The answer (+1 yes, -1 no) of a NodeProperty, NodeBlock or NodeScript for
// a code, with the node's fields as the checks take them.
inline int32_t checkCodeItem(const RegExpNode& item, int32_t code) {
    switch (item.kind) {
        case NodeProperty: return ownCheckProperty(code, item.word1, item.word2);
        case NodeBlock:    return ownCheckBlock(code, item.word1, item.word2, item.word3);
        case NodeScript:   return ownCheckScript(code, ownScriptRanges(item.word4), item.word3, item.word2);
        default:           return -1;
    }
}

// The node interpreter (regexp/match/interpreter.cpp).
int32_t ownRegExpMatch(const uint8_t* p, int32_t remaining, MatchContext* ctx);

// The search with the shortcuts switched on or off; ownRegExpSearch is this
// with fastPaths = 1. The tests compare both.
zevStatus ownRegExpSearchEx(const uint8_t* src, int32_t srcLen, RegExpState* state,
                            RegExpFindEntry* find, int32_t* findCount, int32_t replaceMode,
                            int32_t fastPaths);

// ownRegExpSearchEx that also reports the budget left at the end (a test hook:
// the plain and the fast path must spend the same). budgetLeft may be null.
zevStatus ownRegExpSearchProbe(const uint8_t* src, int32_t srcLen, RegExpState* state,
                               RegExpFindEntry* find, int32_t* findCount, int32_t replaceMode,
                               int32_t fastPaths, int32_t* budgetLeft);

// Groups and their repetition (groups.cpp).
int32_t ownRegExpGroupOpen(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRegExpGroupClose(const uint8_t* p, int32_t remaining, MatchContext* ctx);

// Assertions (assertions.cpp): 0 passed (currentNode moved on), 1 failed.
int32_t ownRegExpAssert(const uint8_t* p, int32_t remaining, MatchContext* ctx);

// Lookaround heads (assertions.cpp), run inside the interpreter's loop: 0
// passed (currentNode is behind the NodeClose), 1 failed.
int32_t ownRegExpLookaround(const uint8_t* p, int32_t remaining, MatchContext* ctx);
// Runs the branches of the body of the head at `head` (closing at `close`) as
// a closed range, the first branch that matches wins; restores endNode, leaves
// flags at the kept value. 0: a branch matched. Shared by lookaround and
// atomic groups.
int32_t ownRegExpRunClosed(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t head,
                           int32_t close);

// Atomic groups (atomic.cpp).
int32_t ownRegExpAtomic(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max);
int32_t ownRegExpAtomicLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max);

// Character predicates (predicates.cpp): a negative result means no.
typedef int32_t (*CharPredicateRef)(const uint8_t* byte);
typedef int32_t (*CharPredicateValue)(uint32_t byte);
CharPredicateRef   ownGetCharPredicate(uint32_t letter, uint32_t dotAll);
CharPredicateValue ownGetCharPredicateByValue(uint32_t letter, uint32_t dotAll);

// Repeat matchers (repeat_*.cpp), entered with currentNode on the repeated
// node; the repeat node stands at currentNode + 1.
int32_t ownRepeatChar(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatCharLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatAnyByte(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatAnyByteLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatBackRef(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatBackRefLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatCharType(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatCharTypeLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatItem(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatItemLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatWideCharLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatGrapheme(const uint8_t* p, int32_t remaining, MatchContext* ctx);
int32_t ownRepeatGraphemeLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx);

// Classes (classes.cpp). currentNode holds the NodeClass head.
// ownCheckClass: +1 when the character at p (left bytes to the subject's true
// end) belongs to the class at index `head`, -1 when not or when left is 0.
int32_t ownCheckClass(const uint8_t* p, int32_t left, MatchContext* ctx, int32_t head);
int32_t ownRepeatClass(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max);
int32_t ownRepeatClassLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max);
