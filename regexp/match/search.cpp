// regexp/match/search.cpp - the search driver: zevsRegExpFind_8u and
// ownRegExpSearch.
//
// Between the exported call and the interpreter: argument checks, the cut of
// the subject behind the last occurrence of the pattern's trailing literal,
// the anchor analysis of node 0, and the walk over start positions, one call
// of ownRegExpMatch per place and top-level branch. The global mode goes on
// behind each match and handles empty matches with a one-byte retry. Nothing
// is allocated: the context lives on this stack, the scratch tables inside
// the record.
//
// Shortcuts (fastPaths 1) skip start places that every top-level branch turns
// down at its first node, charging exactly the units those attempts would
// have spent (see SkipPlan). Budget, results and captures are those of the
// plain walk; tests/match/fast_path_test.cpp compares the two.
//
// Tested by tests/match/search_test.cpp and fast_path_test.cpp.
#include <algorithm>
#include <atomic>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "regexp/match/match_internal.h"
#include "regexp/match/repeat_loops.h"
#include "regexp/match/stack_guard.h"
#include "regexp/unicode/utf8_inline.h"

namespace {

enum AnchorMode : int32_t {
    AnchorNone = 0,    // every place is tried
    AnchorLine = 1,    // the scan's start, then only behind newlines
    AnchorStart = 2,   // one attempt, where the scan starts
};

constexpr uint8_t Newline = 10;

// Below this many bytes a search does not build a skip plan: the plain walk
// is as quick as working the plan out.
constexpr int32_t SkipPlanMinLength = 256;

// A cost of 0 in SkipPlan::cost means "not known to fail: make the attempt".
constexpr uint8_t CostUnknown = 0;
constexpr int32_t CostCap = 250;   // larger costs are left to the real attempt

// Start places whose attempt is known to fail at the first node of every
// top-level branch, and the units such an attempt spends. An attempt that
// fails this way reads only the byte at the place, so its cost depends on
// that byte alone: cost[b] for a place whose byte is b (with at least one
// byte left in the search area).
struct SkipPlan {
    bool byByte;           // cost[] holds at least one known cost
    bool lineStart;        // the pattern is one branch led by the line-start anchor
    int32_t candidate;     // the only byte of unknown cost, or -1
    int32_t uniform;       // the cost of every byte of known cost
    uint8_t cost[256];
    uint8_t known[256];    // 1 where cost is known
    // 1..MaxUnknownRanges when every byte of unknown cost is ASCII and they
    // form that many runs rangeLow[k]..rangeHigh[k]; 0 otherwise. The skip
    // then looks for the first such byte sixteen bytes at a time.
    int32_t rangeCount;
    uint8_t rangeLow[8];
    uint8_t rangeHigh[8];
};
constexpr int32_t MaxUnknownRanges = 8;

// A pattern led by a greedy, unbounded repeat of one item (byte, character
// type or class) whose continuation turns down, at its first node, every
// character the item takes. An attempt at a place p then takes the run of
// items from p to its end E, runs the continuation at E (cost u(E), the same
// from every p of the run, as the record's flags never change and nothing
// that run reads depends on where the attempt began), and then at each
// earlier item boundary down to the minimum, where the continuation fails at
// once at a known cost. After one real attempt at the head of a run, the
// attempts at the later places of the run are charged without being made.
struct RunPlan {
    bool usable;
    int32_t min;           // the repeat's minimum
    int32_t next;          // first node of the continuation
    int8_t takes[256];     // itemTakes for the byte, -1 undecided
    uint8_t contCost[256]; // failCost of the continuation for the byte
};

// The top-level branches: node 0 and the node behind each NodeAlternate of
// id 0, with the options each starts under.
constexpr int32_t MaxTopBranches = 64;


// What a short search knows of the cost of an attempt at a place, by the
// place's byte (placeCost), filled in as places show the bytes.
struct ByteCosts {
    uint64_t known[4];   // bit b: cost[b] is set
    uint8_t cost[256];
};

struct Search {
    MatchContext ctx;
    const RegExpState* state;
    int32_t anchorMode;
    bool branches;         // the pattern has a top-level bar
    bool lazyCosts;        // a short search: skips by the costs below
    int32_t branchCount;   // 0 until collectBranches has run
    int32_t branchStart[MaxTopBranches];
    uint32_t branchFlags[MaxTopBranches];
    ByteCosts* costs;      // the thread's (threadCosts) or ownCosts; null until needed
    int32_t costBalance;   // bytes of known cost found by this search less those of unknown
    ByteCosts ownCosts;
    SkipPlan plan;
    RunPlan* run;          // ownRun, or the thread's (CostCache) for a short search
    RunPlan ownRun;
};

// The byte costs of short searches, kept per thread for the next search of
// the same pattern: a tool that searches a file line by line meets the same
// bytes on every line. Costs follow from the nodes, the first byte of each
// literal string and the options alone, so the cache keeps copies of those
// and serves a record only while it holds exactly them.
constexpr int32_t CachedNodesMax = 128;
constexpr int32_t CachedStringsMax = 16;

struct CostCache {
    // Set while a search holds the cache, so that a search made from a
    // signal handler that interrupts it leaves the cache alone.
    volatile bool busy;
    const RegExpState* state;
    uint32_t options;
    int32_t nodeCount;     // 0: empty
    int32_t stringCount;
    int32_t stringAt[CachedStringsMax];
    uint8_t stringFirst[CachedStringsMax];
    RegExpNode nodes[CachedNodesMax];
    ByteCosts costs;
    int32_t runFormat;     // the format `run` was made for; -1: not made
    RunPlan run;
};

thread_local CostCache costCache;

// The thread's costs for `state`, emptied first when they were made for
// another pattern; null when the pattern is too large to keep.
ByteCosts* threadCosts(const RegExpState* state) {
    CostCache& c = costCache;
    const int32_t n = state->nodeCount;
    if (c.nodeCount == n && c.state == state && c.options == state->options &&
        std::memcmp(c.nodes, state->nodes, static_cast<size_t>(n) * sizeof(RegExpNode)) == 0) {
        bool same = true;
        for (int32_t k = 0; k < c.stringCount; ++k) {
            same = same && ownNodeStringBytes(state, state->nodes[c.stringAt[k]])[0] == c.stringFirst[k];
        }
        if (same) {
            return &c.costs;
        }
    }
    c.nodeCount = 0;
    if (n < 1 || n > CachedNodesMax) {
        return nullptr;
    }
    int32_t strings = 0;
    for (int32_t i = 0; i < n; ++i) {
        if (state->nodes[i].kind == NodeString) {
            if (strings == CachedStringsMax) {
                return nullptr;
            }
            c.stringAt[strings] = i;
            c.stringFirst[strings] = ownNodeStringBytes(state, state->nodes[i])[0];
            ++strings;
        }
    }
    c.stringCount = strings;
    std::memcpy(c.nodes, state->nodes, static_cast<size_t>(n) * sizeof(RegExpNode));
    std::memset(c.costs.known, 0, sizeof c.costs.known);
    c.runFormat = -1;
    c.state = state;
    c.options = state->options;
    c.nodeCount = n;
    return &c.costs;
}

inline uint8_t upperAscii(uint8_t c) {
    return (c >= 'a' && c <= 'z') ? static_cast<uint8_t>(c - 32) : c;
}

// ---------------------------------------------------------------------------
// Trailing-literal cut: no match can end behind the last occurrence of the
// literal every match ends with. Only ASCII letters fold here.

int32_t lastLiteralEnd(const uint8_t* src, int32_t srcLen, const RegExpState* state) {
    const RegExpNode& t = state->nodes[state->trailingLiteral];
    const bool ignoreCase = (static_cast<uint32_t>(t.word3) & OptionIgnoreCase) != 0;
    int32_t pos = -1;
    int32_t length;
    if (t.kind == NodeChar) {
        const uint8_t c = static_cast<uint8_t>(t.word1);
        length = 1;
        if (!ignoreCase) {
            zevsFindRevC_8u(src, srcLen, c, &pos);
        } else {
            const uint8_t up = upperAscii(c);
            for (int32_t i = srcLen - 1; i >= 0; --i) {
                if (upperAscii(src[i]) == up) {
                    pos = i;
                    break;
                }
            }
        }
    } else {
        const uint8_t* bytes = ownNodeStringBytes(state, t);
        length = t.word2;
        if (!ignoreCase) {
            zevsFindRev_8u(src, srcLen, bytes, length, &pos);
        } else {
            for (int32_t i = srcLen - length; i >= 0 && pos < 0; --i) {
                int32_t j = 0;
                while (j < length && upperAscii(src[i + j]) == upperAscii(bytes[j])) {
                    ++j;
                }
                if (j == length) {
                    pos = i;
                }
            }
        }
    }
    return pos < 0 ? 0 : pos + length;
}

// ---------------------------------------------------------------------------
// Anchor analysis: only node 0 and the record's own options count.

int32_t anchorModeOf(const RegExpState* state) {
    if (state->nodeCount < 1 || state->nodes[0].kind != NodeAssert) {
        return AnchorNone;
    }
    for (int32_t i = 0; i < state->nodeCount; ++i) {
        if (state->nodes[i].kind == NodeAlternate && state->nodes[i].word1 == 0) {
            return AnchorNone;
        }
    }
    int32_t mode;
    switch (state->nodes[0].word1) {
    case 'A':
    case 'G':
        mode = AnchorStart;
        break;
    case '^':
        mode = (state->options & OptionMultiLine) ? AnchorLine : AnchorStart;
        break;
    default:
        mode = AnchorNone;
        break;
    }
    if (mode == AnchorStart && state->nodeCount > 1) {
        const RegExpNode& next = state->nodes[1];
        if ((next.kind == NodeRepeat || next.kind == NodeRepeatLazy) && next.word1 == 0) {
            mode = AnchorNone;   // an optional anchor binds nothing
        }
    }
    return mode;
}

// ---------------------------------------------------------------------------
// The skip plan. failCost gives the units an attempt spends when the node at
// `at` (run with `flags`) turns down a place whose byte is b, provided that it
// does so without reading further and without running any continuation; 0
// when that is not certain.

int32_t failCost(Search* s, int32_t at, uint32_t flags, uint8_t b, int32_t depth);

// The repeat standing at index `t`, if any.
inline const RegExpNode* repeatAt(const RegExpState* state, int32_t t) {
    if (t >= state->nodeCount) {
        return nullptr;
    }
    const RegExpNode* n = &state->nodes[t];
    return (n->kind == NodeRepeat || n->kind == NodeRepeatLazy) ? n : nullptr;
}

// Whether a class answers alike for every character whose first byte is b,
// for b from 0x80 up, so that a lone byte b can stand for all of them. Items
// that look at the first byte only (literal bytes, character types) do; so
// do ranges and code points below 0x80 without case folding, which turn down
// every such character (folding could map one onto ASCII, as the Kelvin sign
// onto k). Properties, blocks, scripts and higher codes do not.
bool classDecidesByFirstByte(const RegExpState* state, int32_t head, uint32_t flags) {
    const bool ignoreCase = (flags & OptionIgnoreCase) != 0;
    const int32_t items = state->nodes[head].word2;
    for (int32_t i = head + 1; i <= head + items; ++i) {
        const RegExpNode& item = state->nodes[i];
        switch (item.kind) {
        case NodeChar:
        case NodeCharType:
            break;
        case NodeRange:
            if (ignoreCase || item.word2 >= 0x80) {
                return false;
            }
            break;
        case NodeWideChar:
            if (ignoreCase || item.word1 < 1 || item.word1 >= 0x80) {
                return false;
            }
            break;
        default:
            return false;
        }
    }
    return true;
}

// Units of a group (NodeGroup, NodeCapture, NodeOptionGroup, NodeAtomic) that
// must take an iteration and whose every branch turns b down: the head, then
// the first node of each branch.
int32_t groupFailCost(Search* s, int32_t head, uint32_t flags, uint8_t b, int32_t depth) {
    const RegExpState* state = s->state;
    const RegExpNode& node = state->nodes[head];
    const int32_t close = head + node.word2 + 1;
    if (node.word2 == 0 || close >= state->nodeCount) {
        return 0;
    }
    const RegExpNode* rep = repeatAt(state, close + 1);
    if (rep != nullptr && rep->word1 < 1) {
        return 0;   // may do without the group: the continuation runs
    }
    if (node.kind == NodeOptionGroup) {
        flags = static_cast<uint32_t>(node.word3);
    }
    int32_t total = 1;
    int32_t k = head + 1;
    for (;;) {
        if (k >= close) {
            return 0;   // an empty branch runs into the NodeClose
        }
        const int32_t c = failCost(s, k, flags, b, depth + 1);
        if (c == 0) {
            return 0;
        }
        total += c;
        int32_t i = k;
        while (i < close && !(state->nodes[i].kind == NodeAlternate && state->nodes[i].word1 == node.word1)) {
            ++i;
        }
        if (i >= close) {
            break;
        }
        flags = static_cast<uint32_t>(state->nodes[i].word2);
        k = i + 1;
    }
    return total > CostCap ? 0 : total;
}

// Whether the single item at `at` (NodeChar, NodeCharType or NodeClass) takes
// a character whose first byte is b: 1 yes, 0 no, -1 not decided by b alone
// (a class with code-point items, for a byte from 0x80 up).
int32_t itemTakes(Search* s, int32_t at, uint32_t flags, uint8_t b) {
    const RegExpState* state = s->state;
    const RegExpNode& node = state->nodes[at];
    switch (node.kind) {
    case NodeChar: {
        const uint8_t c = static_cast<uint8_t>(node.word1);
        return ((flags & OptionIgnoreCase) ? ownEqualIgnoreAsciiCase(b, c) : b == c) ? 1 : 0;
    }
    case NodeCharType: {
        // The predicates judge the first byte of the character alone.
        const uint32_t letter = static_cast<uint32_t>(node.word1) & 0xFF;
        return ownGetCharPredicateByValue(letter, flags & OptionDotAll)(b) < 0 ? 0 : 1;
    }
    case NodeClass: {
        if (b >= 0x80 && !classDecidesByFirstByte(state, at, flags)) {
            return -1;
        }
        // One byte on its own is a whole character for such a class. The
        // check reads the flags and the nodes only; the sets it remembers
        // serve the search's own attempts as well.
        const uint8_t one[1] = {b};
        const uint32_t keptFlags = s->ctx.flags;
        s->ctx.flags = flags;
        const int32_t answer = ownCheckClass(one, 1, &s->ctx, at);
        s->ctx.flags = keptFlags;
        return answer < 0 ? 0 : 1;
    }
    default:
        return -1;
    }
}

int32_t failCost(Search* s, int32_t at, uint32_t flags, uint8_t b, int32_t depth) {
    const RegExpState* state = s->state;
    if (at >= state->nodeCount || depth > 32) {
        return 0;
    }
    const RegExpNode& node = state->nodes[at];
    switch (node.kind) {
    case NodeString: {
        const uint8_t c = ownNodeStringBytes(state, node)[0];
        const bool same = (flags & OptionIgnoreCase) ? ownEqualIgnoreAsciiCase(b, c) : b == c;
        return same ? 0 : 1;
    }
    case NodeChar:
    case NodeCharType:
    case NodeClass: {
        if (itemTakes(s, at, flags, b) != 0) {
            return 0;
        }
        const int32_t behind = node.kind == NodeClass ? at + node.word2 + 1 : at + 1;
        const RegExpNode* rep = repeatAt(state, behind);
        if (rep == nullptr || rep->word1 >= 1) {
            return 1;   // must take a character, and cannot
        }
        if (rep->kind != NodeRepeat) {
            return 0;   // lazy loops may look ahead before running what follows
        }
        // A greedy optional item that takes nothing runs what follows at once.
        const int32_t rest = failCost(s, behind + 1, flags, b, depth + 1);
        return rest == 0 ? 0 : 1 + rest;
    }
    case NodeGroup:
    case NodeCapture:
    case NodeOptionGroup:
        return groupFailCost(s, at, flags, b, depth);
    case NodeAtomic: {
        const RegExpNode* rep = repeatAt(state, at + node.word2 + 2);
        if (rep != nullptr && rep->word1 < 1) {
            return 0;
        }
        return groupFailCost(s, at, flags, b, depth);
    }
    default:
        return 0;
    }
}

// Sets plan.rangeCount and the ranges: the runs of ASCII bytes of unknown
// cost, when there are at most MaxUnknownRanges of them and no byte from 0x80
// up is unknown. An ASCII byte is never inside a multi-byte sequence, so the
// first such byte from a place on is itself a place.
void findUnknownRanges(SkipPlan& plan) {
    plan.rangeCount = 0;
    for (int32_t b = 0x80; b < 256; ++b) {
        if (plan.known[b] == 0) {
            return;
        }
    }
    int32_t count = 0;
    for (int32_t b = 0; b < 0x80; ++b) {
        if (plan.known[b] != 0 || (b > 0 && plan.known[b - 1] == 0)) {
            continue;   // not the first byte of a run
        }
        if (count == MaxUnknownRanges) {
            return;
        }
        int32_t e = b;
        while (e + 1 < 0x80 && plan.known[e + 1] == 0) {
            ++e;
        }
        plan.rangeLow[count] = static_cast<uint8_t>(b);
        plan.rangeHigh[count] = static_cast<uint8_t>(e);
        ++count;
    }
    plan.rangeCount = count;
}

// Fills branchStart and branchFlags. false when there are more branches than
// they hold.
bool collectBranches(Search* s) {
    const RegExpState* state = s->state;
    int32_t branches = 0;
    s->branchStart[branches] = 0;
    s->branchFlags[branches++] = state->options;
    for (int32_t i = 0; i < state->nodeCount; ++i) {
        if (state->nodes[i].kind == NodeAlternate && state->nodes[i].word1 == 0) {
            if (branches == MaxTopBranches) {
                return false;
            }
            s->branchStart[branches] = i + 1;
            s->branchFlags[branches++] = static_cast<uint32_t>(state->nodes[i].word2);
        }
    }
    s->branchCount = branches;
    return true;
}

// The units of an attempt at a place whose byte is b (with a byte left in
// the search area) when every top-level branch turns b down at its first
// node; CostUnknown when one might not.
int32_t placeCost(Search* s, uint8_t b) {
    int32_t total = 0;
    for (int32_t i = 0; i < s->branchCount && (i == 0 || total > 0); ++i) {
        const int32_t c = failCost(s, s->branchStart[i], s->branchFlags[i], b, 0);
        total = c == 0 ? 0 : total + c;
    }
    return total > CostCap ? CostUnknown : total;
}

void buildSkipPlan(Search* s) {
    const RegExpState* state = s->state;
    SkipPlan& plan = s->plan;
    plan.byByte = false;
    plan.lineStart = false;
    plan.candidate = -1;
    plan.rangeCount = 0;
    std::memset(plan.cost, CostUnknown, sizeof plan.cost);
    if (s->ctx.fastPaths == 0 || s->anchorMode != AnchorNone || state->nodeCount < 1) {
        return;
    }
    if (!collectBranches(s)) {
        return;
    }
    const RegExpNode& first = state->nodes[0];
    if (s->branchCount == 1 && first.kind == NodeAssert && first.word1 == AssertLineStartAnchor) {
        const RegExpNode* rep = repeatAt(state, 1);
        plan.lineStart = rep == nullptr || rep->word1 >= 1;
        return;
    }
    int32_t unknown = 0;
    for (int32_t b = 0; b < 256; ++b) {
        const int32_t total = placeCost(s, static_cast<uint8_t>(b));
        plan.cost[b] = static_cast<uint8_t>(total);
        if (total == 0) {
            ++unknown;
            plan.candidate = b;
        } else {
            plan.byByte = true;
        }
    }
    if (unknown != 1) {
        plan.candidate = -1;
    }
    // A byte of known cost is one that every node on the way turns down, so
    // all known costs are the cost of that one way; the skip relies on it.
    plan.uniform = 0;
    for (int32_t b = 0; b < 256; ++b) {
        plan.known[b] = plan.cost[b] != CostUnknown ? 1 : 0;
        if (plan.cost[b] != CostUnknown) {
            if (plan.uniform != 0 && plan.uniform != plan.cost[b]) {
                plan.byByte = false;
                return;
            }
            plan.uniform = plan.cost[b];
        }
    }
    findUnknownRanges(plan);
}

void buildRunPlan(Search* s) {
    const RegExpState* state = s->state;
    RunPlan& run = *s->run;
    run.usable = false;
    if (s->anchorMode != AnchorNone || state->nodeCount < 3) {
        return;
    }
    for (int32_t i = 0; i < state->nodeCount; ++i) {
        const uint32_t kind = state->nodes[i].kind;
        if ((kind == NodeAlternate && state->nodes[i].word1 == 0) || kind == NodeSetOptions ||
            kind == NodeOptionGroup) {
            return;   // several top-level branches, or flags that can change
        }
    }
    const RegExpNode& first = state->nodes[0];
    if (first.kind != NodeChar && first.kind != NodeCharType && first.kind != NodeClass) {
        return;
    }
    const int32_t behind = first.kind == NodeClass ? first.word2 + 1 : 1;
    const RegExpNode* rep = repeatAt(state, behind);
    if (rep == nullptr || rep->kind != NodeRepeat || rep->word2 != RepeatUnbounded ||
        behind + 1 >= state->nodeCount) {
        return;
    }
    if (first.kind == NodeChar && static_cast<uint8_t>(first.word1) >= 0x80 && s->ctx.format == 1) {
        return;   // a byte item would not step as the places do
    }
    run.min = rep->word1;
    run.next = behind + 1;
    for (int32_t b = 0; b < 256; ++b) {
        run.takes[b] = static_cast<int8_t>(itemTakes(s, 0, state->options, static_cast<uint8_t>(b)));
        const int32_t cost = failCost(s, run.next, state->options, static_cast<uint8_t>(b), 0);
        run.contCost[b] = static_cast<uint8_t>(cost > CostCap ? 0 : cost);
    }
    run.usable = true;
}

// ---------------------------------------------------------------------------
// One attempt at a place: the top-level branches in turn, capture records
// cleared once per place. 0: matched, capture record 0 holds the match.

int32_t attempt(const uint8_t* p, int32_t remaining, Search* s) {
    MatchContext* ctx = &s->ctx;
    const RegExpState* state = s->state;
    ctx->currentNode = 0;
    ctx->reentry = 0;
    ctx->flags = state->options;
    for (int32_t i = 1; i < ctx->captureCount; ++i) {
        ctx->captures[i].start = 0;
        ctx->captures[i].length = -1;
    }
    for (;;) {
        ctx->captures[0].start = static_cast<int32_t>(p - ctx->subject);
        ctx->captures[0].length = 0;
        if (ownRegExpMatch(p, remaining, ctx) == 0) {
            return 0;
        }
        if (!s->branches) {
            return 1;
        }
        int32_t i = ctx->currentNode;
        while (i < state->nodeCount && !(state->nodes[i].kind == NodeAlternate && state->nodes[i].word1 == 0)) {
            ++i;
        }
        if (i >= state->nodeCount) {
            return 1;
        }
        ctx->flags = static_cast<uint32_t>(state->nodes[i].word2);
        ctx->currentNode = i + 1;   // may be nodeCount: an empty last branch
    }
}

inline bool isContinuation(uint8_t b) {
    return (b & 0xC0) == 0x80;
}

// The step from one place to the next. The two- and three-byte sequences
// that prose is made of are measured here (C2..DF and E1..EF with their
// continuation bytes are never overlong); everything else goes to
// ownUtf8Length, whose answer these agree with.
inline int32_t placeStep(const Search* s, const uint8_t* p) {
    if (s->ctx.format != 1) {
        return 1;
    }
    const int32_t left = ownBytesToEnd(&s->ctx, p);
    const uint8_t b = left > 0 ? p[0] : 0;
    if (b < 0x80) {
        return 1;
    }
    if (b >= 0xC2 && b <= 0xDF && left >= 2 && isContinuation(p[1])) {
        return 2;
    }
    if (b >= 0xE1 && b <= 0xEF && left >= 3 && isContinuation(p[1]) && isContinuation(p[2])) {
        return 3;
    }
    return ownUtf8Length(p, left);
}

// Walks the places from `from` as the scan steps over them, up to the first
// at or behind `to`, which it returns; *count gets the number passed.
const uint8_t* walkPlaces(const Search* s, const uint8_t* from, const uint8_t* to, int64_t* count) {
    if (s->ctx.format != 1) {
        *count = to - from;
        return to;
    }
    int64_t n = 0;
    while (from < to) {
        from += *from < 0x80 ? 1 : placeStep(s, from);
        ++n;
    }
    *count = n;
    return from;
}

// Charges `units` for attempts skipped. false: the budget ran out on the way,
// where the plain walk would have gone on without work and found nothing.
inline bool charge(MatchContext* ctx, int64_t units) {
    if (units > static_cast<int64_t>(ctx->budget)) {
        ctx->budget = -1;
        return false;
    }
    ctx->budget -= static_cast<int32_t>(units);
    return true;
}

#if defined(__SSE2__)
// Set bits of a 16-bit mask, without the library call that a build for
// processors without a population count instruction makes of the builtin.
inline int32_t bitCount16(uint32_t x) {
    x = x - ((x >> 1) & 0x5555u);
    x = (x & 0x3333u) + ((x >> 2) & 0x3333u);
    x = (x + (x >> 4)) & 0x0F0Fu;
    return static_cast<int32_t>((x + (x >> 8)) & 0x1Fu);
}

// The bytes of v from low to low + width, as a bit mask.
inline uint32_t bytesWithin(__m128i v, uint8_t low, uint8_t width) {
    const __m128i d = _mm_sub_epi8(v, _mm_set1_epi8(static_cast<char>(low)));
    return static_cast<uint32_t>(
        _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(d, _mm_set1_epi8(static_cast<char>(width))), d)));
}

// Counts the places among the bytes of v under `mask` (a run of low bits,
// starting at a place) when its bytes from 0x80 up (`high`) are all leads
// C2..DF and E1..EF, each followed by exactly the continuation bytes that
// placeStep takes with it, and no other continuation bytes: every byte but
// those continuation bytes is then one place. A sequence whose lead is among
// the last bytes of a full block may end behind it, before `end`; its
// continuation bytes there are checked too. Returns the bytes that sequence
// reaches behind the block (0 to 2), or -1 when the block is not of that
// shape and the caller must walk it.
inline int32_t wellFormedPlaces(__m128i v, uint32_t mask, uint32_t high, const uint8_t* stop, const uint8_t* end,
                                int64_t* places) {
    const uint32_t cont = bytesWithin(v, 0x80, 0x3F) & mask;
    const uint32_t lead2 = bytesWithin(v, 0xC2, 0xDF - 0xC2) & mask;
    const uint32_t lead3 = bytesWithin(v, 0xE1, 0xEF - 0xE1) & mask;
    const uint32_t expected = (lead2 << 1) | (lead3 << 1) | (lead3 << 2);
    if ((expected & mask) != cont || (cont | lead2 | lead3) != high) {
        return -1;
    }
    const uint32_t behind = expected & ~mask;   // bits 16 and 17 only for a full block
    const int32_t reach = (behind & (1u << 17)) != 0 ? 2 : (behind != 0 ? 1 : 0);
    if (reach > end - stop) {
        return -1;
    }
    for (int32_t i = 0; i < reach; ++i) {
        if ((stop[i] & 0xC0) != 0x80) {
            return -1;
        }
    }
    *places += bitCount16(mask) - bitCount16(cont);
    return reach;
}
#endif

// Walks the places from `to` whose bytes are of known cost, sixteen bytes at
// a time, while sixteen bytes are left before `end`; adds the places passed
// to *places. Stops at the first byte of an unknown range (a place), or where
// fewer than sixteen bytes are left, or where a step overran `end`: the
// byte-wise walk of skipPlaces goes on from there.
const uint8_t* skipToUnknownRange(const Search* s, const uint8_t* to, const uint8_t* end, int64_t* places) {
#if defined(__SSE2__)
    const SkipPlan& plan = s->plan;
    const bool utf8 = s->ctx.format == 1;
    __m128i low[MaxUnknownRanges];
    __m128i width[MaxUnknownRanges];
    for (int32_t k = 0; k < plan.rangeCount; ++k) {
        low[k] = _mm_set1_epi8(static_cast<char>(plan.rangeLow[k]));
        width[k] = _mm_set1_epi8(static_cast<char>(plan.rangeHigh[k] - plan.rangeLow[k]));
    }
    int64_t n = 0;
    while (end - to >= 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(to));
        __m128i in = _mm_setzero_si128();
        for (int32_t k = 0; k < plan.rangeCount; ++k) {
            // b - low, unsigned, is at most high - low inside the range.
            const __m128i d = _mm_sub_epi8(v, low[k]);
            in = _mm_or_si128(in, _mm_cmpeq_epi8(_mm_min_epu8(d, width[k]), d));
        }
        const uint32_t hits = static_cast<uint32_t>(_mm_movemask_epi8(in));
        const int32_t span = hits != 0 ? __builtin_ctz(hits) : 16;
        const uint32_t mask = span == 16 ? 0xFFFFu : (1u << span) - 1;
        const uint32_t below = static_cast<uint32_t>(_mm_movemask_epi8(v)) & mask;
        const uint8_t* stop = to + span;
        if (!utf8 || below == 0) {
            n += span;
            to = stop;
        } else if (const int32_t reach = wellFormedPlaces(v, mask, below, stop, end, &n); reach >= 0) {
            to = stop + reach;
        } else {
            // A byte from 0x80 up is a place of its sequence's length.
            while (to < stop) {
                to += *to < 0x80 ? 1 : placeStep(s, to);
                ++n;
            }
        }
        if (hits != 0 || to >= end) {
            break;
        }
    }
    *places += n;
#else
    (void)s;
    (void)end;
    (void)places;
#endif
    return to;
}

// Skips the places from *p on that the plan knows to fail. false: the scan is
// over without a match (budget gone, or the last step overran the area).
bool skipPlaces(Search* s, const uint8_t** p, int32_t* remaining) {
    MatchContext* ctx = &s->ctx;
    const SkipPlan& plan = s->plan;
    const uint8_t* q = *p;
    const uint8_t* end = q + *remaining;   // places with a byte left
    if (ctx->budget < 0) {
        return false;   // every further attempt fails without work
    }
    if (plan.lineStart) {
        if (q == end || q == ctx->subject || q[-1] == Newline) {
            return true;
        }
        // Each place up to and including the next newline fails at the anchor.
        const void* nl = std::memchr(q, Newline, static_cast<size_t>(end - q));
        int64_t places;
        const uint8_t* to = walkPlaces(s, q, nl ? static_cast<const uint8_t*>(nl) + 1 : end, &places);
        if (!charge(ctx, places)) {
            return false;
        }
        *remaining -= static_cast<int32_t>(to - q);
        *p = to;
        return *remaining >= 0;
    }
    if (!plan.byByte || (q < end && plan.known[*q] == 0)) {
        return true;   // nothing to skip: an attempt is due here
    }
    const uint8_t* to = q;
    int64_t places = 0;
    if (plan.candidate >= 0 && (ctx->format != 1 || plan.candidate < 0x80 || plan.candidate >= 0xC0)) {
        // A single byte of unknown cost: look for it. (An ASCII byte or a
        // lead byte is always a place: no sequence steps over it.)
        const void* hit = std::memchr(q, plan.candidate, static_cast<size_t>(end - q));
        to = walkPlaces(s, q, hit ? static_cast<const uint8_t*>(hit) : end, &places);
    } else {
        // Eight ASCII bytes of known cost at a time; where a block holds
        // something else, place by place through it (a byte from 0x80 up is
        // a place of its sequence's length in format 1). Past the first
        // eight bytes, where the gap is long, sixteen at a time if the plan
        // allows.
        bool wide = plan.rangeCount > 0;
        for (;;) {
            if (wide && to - q >= 8) {
                wide = false;
                to = skipToUnknownRange(s, to, end, &places);
            }
            if (end - to >= 8) {
                uint64_t word;
                std::memcpy(&word, to, sizeof word);
                if ((word & 0x8080808080808080ull) == 0 &&
                    (plan.known[to[0]] & plan.known[to[1]] & plan.known[to[2]] & plan.known[to[3]] &
                     plan.known[to[4]] & plan.known[to[5]] & plan.known[to[6]] & plan.known[to[7]]) != 0) {
                    to += 8;
                    places += 8;
                    continue;
                }
            }
            const uint8_t* stop = end - to > 8 ? to + 8 : end;
            while (to < stop && plan.known[*to] != 0) {
                to += (*to < 0x80 || ctx->format != 1) ? 1 : placeStep(s, to);
                ++places;
            }
            if (to < stop || to >= end) {
                break;
            }
        }
    }
    if (!charge(ctx, places * plan.uniform)) {
        return false;
    }
    *remaining -= static_cast<int32_t>(to - q);
    *p = to;
    return *remaining >= 0;
}

// The skip of a short search, which has no plan: each place whose attempt
// its byte alone turns down is charged that byte's units (placeCost, worked
// out the first time a place shows the byte) and passed over, as skipPlaces
// does, one place at a time. false: the scan is over without a match (budget
// gone, or the last step overran the area).
bool skipByByteCost(Search* s, const uint8_t** p, int32_t* remaining) {
    MatchContext* ctx = &s->ctx;
    if (ctx->budget < 0) {
        return false;   // every further attempt fails without work
    }
    const uint8_t* q = *p;
    int32_t left = *remaining;
    if (left > 0 && s->costs == nullptr) {
        // The thread's costs are not to be had (see searchImpl).
        s->costs = &s->ownCosts;
        std::memset(s->ownCosts.known, 0, sizeof s->ownCosts.known);
        s->costBalance = 0;
    }
    ByteCosts* costs = s->costs;
    while (left > 0) {   // a byte left in the search area
        const uint8_t b = *q;
        const uint64_t bit = 1ull << (b & 63);
        if ((costs->known[b >> 6] & bit) == 0) {
            if (s->branchCount == 0 && !collectBranches(s)) {
                s->lazyCosts = false;
                break;
            }
            const int32_t cost = placeCost(s, b);
            costs->cost[b] = static_cast<uint8_t>(cost);
            costs->known[b >> 6] |= bit;
            // Working costs out pays only where places get skipped; a
            // pattern whose first node takes the subject's bytes (a leading
            // [\w.]+, say) stops asking.
            s->costBalance += cost == CostUnknown ? -1 : 1;
            if (s->costBalance < 0) {
                s->lazyCosts = false;
            }
        }
        const int32_t units = costs->cost[b];
        if (units == CostUnknown) {
            break;   // an attempt is due here
        }
        if (!charge(ctx, units)) {
            return false;
        }
        const int32_t step = placeStep(s, q);
        q += step;
        left -= step;
    }
    *p = q;
    *remaining = left;
    return left >= 0;
}

// The run of the leading repeat that the places of a scan are walking
// through (see RunPlan): the next place of the run, and what an attempt
// there costs.
struct RunState {
    const uint8_t* place;   // next place of the run; null when there is none
    const uint8_t* end;     // E, where the run of items ends
    const uint8_t* ahead;   // the boundary `min` items behind place; null: fewer items left
    int64_t endCost;        // u(E): units of the continuation at E
    int64_t sum;            // continuation costs at the boundaries from ahead up to E
};

// Bytes of the item the leading repeat takes at q, or -1 when it takes none.
int32_t runItemSizeSlow(Search* s, const uint8_t* q, const uint8_t* areaEnd) {
    if (q >= areaEnd || ownBytesToEnd(&s->ctx, q) <= 0) {
        return -1;
    }
    const uint8_t b = *q;
    int32_t takes = s->run->takes[b];
    if (takes < 0) {
        s->ctx.flags = s->state->options;
        takes = ownCheckClass(q, ownBytesToEnd(&s->ctx, q), &s->ctx, 0) < 0 ? 0 : 1;
    }
    if (takes == 0) {
        return -1;
    }
    if (b < 0x80 || s->state->nodes[0].kind == NodeChar) {
        return 1;
    }
    return ownUtf8LengthInline(q, ownBytesToEnd(&s->ctx, q));
}

// runItemSizeSlow with an ASCII byte whose answer the plan holds decided
// here: the walks of learnRun and replayRunPlace ask once per byte.
inline int32_t runItemSize(Search* s, const uint8_t* q, const uint8_t* areaEnd) {
    if (q < areaEnd && q < s->ctx.subject + s->ctx.subjectLength && *q < 0x80) {
        const int32_t takes = s->run->takes[*q];
        if (takes >= 0) {
            return takes != 0 ? 1 : -1;
        }
    }
    return runItemSizeSlow(s, q, areaEnd);
}

// After a real attempt at p that failed having spent `spent` units: walks the
// run of items from p and sets rs up for the places behind p, or clears it.
void learnRun(Search* s, const uint8_t* p, const uint8_t* areaEnd, int64_t spent, RunState* rs) {
    const RunPlan& run = *s->run;
    rs->place = nullptr;
    const int32_t firstSize = runItemSize(s, p, areaEnd);
    if (firstSize < 0 || firstSize != placeStep(s, p)) {
        return;
    }
    const uint8_t* x = p;
    const uint8_t* atMin = nullptr;     // boundary `min` items behind p
    const uint8_t* behindMin = nullptr; // the one after it
    int64_t total = 0;
    int32_t j = 0;
    for (int32_t size = firstSize; size > 0; size = runItemSize(s, x, areaEnd), ++j) {
        if (j >= run.min) {
            const uint8_t f = run.contCost[*x];
            if (f == 0) {
                return;   // the continuation might get further here
            }
            total += f;
            if (j == run.min) {
                atMin = x;
            } else if (j == run.min + 1) {
                behindMin = x;
            }
        }
        x += size;
    }
    rs->end = x;
    if (j < run.min) {
        if (spent != 1) {
            return;
        }
        rs->ahead = nullptr;
        rs->endCost = 0;
        rs->sum = 0;
    } else {
        rs->endCost = spent - 1 - total;
        if (rs->endCost < 0) {
            return;
        }
        if (j == run.min) {
            rs->ahead = nullptr;   // from the next place on, fewer than min items
            rs->sum = 0;
        } else {
            rs->ahead = behindMin != nullptr ? behindMin : x;
            rs->sum = total - run.contCost[*atMin];
        }
    }
    rs->place = p + firstSize;
}

// Charges the attempt at rs->place without making it and moves rs to the
// next place. false: the budget is too small to be sure; make the attempt.
bool replayRunPlace(Search* s, RunState* rs, const uint8_t** p, int32_t* remaining, const uint8_t* areaEnd) {
    MatchContext* ctx = &s->ctx;
    const int64_t cost = 1 + (rs->ahead != nullptr ? rs->endCost + rs->sum : 0);
    if (cost > ctx->budget) {
        rs->place = nullptr;
        return false;
    }
    ctx->budget -= static_cast<int32_t>(cost);
    if (rs->ahead != nullptr) {
        if (rs->ahead < rs->end) {
            rs->sum -= s->run->contCost[*rs->ahead];
            rs->ahead += runItemSize(s, rs->ahead, areaEnd);
        } else {
            rs->ahead = nullptr;
        }
    }
    const int32_t size = runItemSize(s, *p, areaEnd);
    const int32_t step = placeStep(s, *p);
    *p += step;
    *remaining -= step;
    rs->place = step == size && *p < rs->end ? *p : nullptr;
    return true;
}

// The scan from p: attempts at successive places as the anchor mode allows.
// 0: matched (capture record 0 holds the match).
int32_t scan(const uint8_t* p, int32_t remaining, Search* s) {
    const bool runs = s->run->usable && s->ctx.rejectEmpty == 0 && s->anchorMode == AnchorNone;
    const uint8_t* areaEnd = p + remaining;
    RunState rs = {nullptr, nullptr, nullptr, 0, 0};
    for (;;) {
        if (s->plan.byByte || s->plan.lineStart) {
            if (!skipPlaces(s, &p, &remaining)) {
                return 1;
            }
        } else if (s->lazyCosts && !skipByByteCost(s, &p, &remaining)) {
            return 1;
        }
        if (runs && rs.place == p && replayRunPlace(s, &rs, &p, &remaining, areaEnd)) {
            if (remaining < 0) {
                return 1;   // stepped over the end of the area
            }
            continue;
        }
        const int32_t before = s->ctx.budget;
        if (attempt(p, remaining, s) == 0) {
            return 0;
        }
        if (runs && s->ctx.budget >= 0) {
            learnRun(s, p, areaEnd, static_cast<int64_t>(before) - s->ctx.budget, &rs);
        }
        const uint8_t* stepped = p;
        const int32_t areaLeft = remaining;
        const int32_t step = placeStep(s, p);
        p += step;
        remaining -= step;
        if (s->anchorMode == AnchorLine) {
            // Behind the first newline at or after the character stepped over.
            const void* nl = areaLeft > 0 ? std::memchr(stepped, Newline, static_cast<size_t>(areaLeft)) : nullptr;
            if (nl == nullptr) {
                return 1;
            }
            p = static_cast<const uint8_t*>(nl) + 1;
            remaining = areaLeft - static_cast<int32_t>(p - stepped);
        }
        if (remaining < 0 || s->anchorMode == AnchorStart) {
            return 1;
        }
    }
}

// Writes capture records [from, to) as find entries.
void storeEntries(const Search* s, int32_t from, int32_t to, RegExpFindEntry* out) {
    for (int32_t i = from; i < to; ++i) {
        const CaptureRecord& cap = s->ctx.captures[i];
        out->start = cap.length == -1 ? nullptr : const_cast<uint8_t*>(s->ctx.subject) + cap.start;
        out->length = cap.length;
        ++out;
    }
}

zevStatus singleSearch(Search* s, int32_t searchLen, RegExpFindEntry* find, int32_t* findCount) {
    if (*findCount > s->ctx.captureCount) {
        *findCount = s->ctx.captureCount;
    }
    if (scan(s->ctx.subject, searchLen, s) == 0) {
        storeEntries(s, 0, *findCount, find);
        return zevStatusOk;
    }
    if (s->ctx.budget < 0) {
        return zevStatusRegExpMatchLimit;
    }
    *findCount = 0;
    return zevStatusOk;
}

zevStatus globalSearch(Search* s, int32_t searchLen, RegExpFindEntry* find, int32_t* findCount,
                       int32_t replaceMode) {
    MatchContext* ctx = &s->ctx;
    const int32_t firstEntry = (replaceMode == 0 && ctx->captureCount > 1) ? 1 : 0;
    const int32_t perMatch = ctx->captureCount - firstEntry;
    const int32_t lastStart = *findCount - perMatch;
    int32_t count = 0;
    const uint8_t* p = ctx->subject;
    int32_t len = searchLen;
    for (;;) {
        if (count > lastStart) {
            break;
        }
        if (scan(p, len, s) != 0) {
            break;
        }
        storeEntries(s, firstEntry, ctx->captureCount, find + count);
        count += perMatch;
        if (ctx->budget < 0) {
            return zevStatusRegExpMatchLimit;   // *findCount keeps its input
        }
        const uint8_t* m = ctx->subject + ctx->captures[0].start;
        const int32_t l = ctx->captures[0].length;
        const int32_t rest = static_cast<int32_t>(p + len - m);
        if (l != 0) {
            p = m + l;
            len = rest - l;
        } else if (count >= lastStart || rest < 1) {
            p = m + 1;
            len = rest - 1;
        } else {
            // An empty match with room left: is there a non-empty one at the
            // same place? The retry sees an area that ends one byte behind m.
            ctx->rejectEmpty = 1;
            if (scan(m, 1, s) == 0) {
                storeEntries(s, firstEntry, ctx->captureCount, find + count);
                count += perMatch;
            }
            if (ctx->budget < 0) {
                return zevStatusRegExpMatchLimit;
            }
            ctx->rejectEmpty = 0;
            p = m + 1;   // one byte on, in UTF-8 too
            len = rest - 1;
        }
        if (len < 0) {
            break;
        }
    }
    *findCount = count;
    return zevStatusOk;
}

zevStatus searchImpl(const uint8_t* src, int32_t srcLen, RegExpState* state, RegExpFindEntry* find,
                     int32_t* findCount, int32_t replaceMode, int32_t fastPaths, int32_t* budgetLeft) {
    if (src == nullptr || state == nullptr || find == nullptr || findCount == nullptr) {
        return zevStatusNullPointer;
    }
    if (srcLen < 0) {
        return zevStatusBadLength;
    }
    if (*findCount < 1) {
        return zevStatusBadSize;
    }
    if (state->magic != RegExpMagic) {
        return zevStatusRegExpBadState;
    }

    int32_t searchLen = srcLen;
    if (state->trailingLiteral >= 0) {
        searchLen = lastLiteralEnd(src, srcLen, state);
    }

    Search s;
    MatchContext& ctx = s.ctx;
    ctx.currentNode = 0;
    ctx.endNode = state->nodeCount;
    ctx.reentry = 0;
    ctx.flags = state->options;
    ctx.rejectEmpty = 0;
    ctx.captureCount = state->captureCount;
    ctx.budget = state->matchLimit;
    ctx.format = state->format;
    ctx.subject = src;
    ctx.nodes = state->nodes;
    ctx.captures = state->captures;
    ctx.groups = state->groups;
    ctx.state = state;
    ctx.subjectLength = srcLen;
    ctx.fastPaths = fastPaths;
    ctx.stackLimit = ownStackGuardLimit();
    ctx.walkEnd = 0;
    ctx.walkEndCount = 0;
    ctx.walkStart = 0;
    ctx.walkStartCount = 0;
    // An empty slot is one whose head1 is 0; the rest of an entry is only
    // read behind a head1 that matches. (Clearing the whole table costs a
    // short search more than its attempts.)
    for (ClassSetEntry& e : ctx.classSets) {
        e.head1 = 0;
    }
    s.state = state;
    s.anchorMode = anchorModeOf(state);
    s.branches = false;
    for (int32_t i = 0; i < state->nodeCount && !s.branches; ++i) {
        s.branches = state->nodes[i].kind == NodeAlternate && state->nodes[i].word1 == 0;
    }
    s.plan.byByte = false;
    s.plan.lineStart = false;
    s.run = &s.ownRun;
    s.ownRun.usable = false;
    s.lazyCosts = false;
    s.branchCount = 0;   // collected when the short skip first needs them
    s.costs = nullptr;
    // Near the stack limit the first attempt ends the search; no skip may
    // pass over it.
    const bool skips = fastPaths != 0 && zevch_match::roomForShortcut(&ctx);
    bool holdsCache = false;
    if (skips && searchLen >= SkipPlanMinLength) {
        buildSkipPlan(&s);
        buildRunPlan(&s);
    } else if (skips) {
        s.lazyCosts = s.anchorMode == AnchorNone && state->nodeCount >= 1;
        if (s.lazyCosts && searchLen > 0 && !costCache.busy) {
            // The run plan too is worth making once per pattern and thread.
            costCache.busy = true;
            std::atomic_signal_fence(std::memory_order_seq_cst);   // no use of the cache before the mark
            holdsCache = true;
            s.costs = threadCosts(state);
            if (s.costs != nullptr) {
                s.costBalance = 0;
                CostCache& cache = costCache;
                s.run = &cache.run;
                if (cache.runFormat != ctx.format) {
                    buildRunPlan(&s);
                    cache.runFormat = ctx.format;
                }
            }
        }
    }

    const zevStatus status = (state->options & OptionGlobal)
                                 ? globalSearch(&s, searchLen, find, findCount, replaceMode)
                                 : singleSearch(&s, searchLen, find, findCount);
    if (holdsCache) {
        std::atomic_signal_fence(std::memory_order_seq_cst);   // nor after its release
        costCache.busy = false;
    }
    if (budgetLeft != nullptr) {
        *budgetLeft = ctx.budget;
    }
    return status;
}

}  // namespace

zevStatus ownRegExpSearchProbe(const uint8_t* src, int32_t srcLen, RegExpState* state,
                               RegExpFindEntry* find, int32_t* findCount, int32_t replaceMode,
                               int32_t fastPaths, int32_t* budgetLeft) {
    return searchImpl(src, srcLen, state, find, findCount, replaceMode, fastPaths, budgetLeft);
}

zevStatus ownRegExpSearchEx(const uint8_t* src, int32_t srcLen, RegExpState* state,
                            RegExpFindEntry* find, int32_t* findCount, int32_t replaceMode,
                            int32_t fastPaths) {
    return searchImpl(src, srcLen, state, find, findCount, replaceMode, fastPaths, nullptr);
}

zevStatus ownRegExpSearch(const uint8_t* src, int32_t srcLen, RegExpState* state, RegExpFindEntry* find,
                          int32_t* findCount, int32_t replaceMode) {
    return searchImpl(src, srcLen, state, find, findCount, replaceMode, 1, nullptr);
}

extern "C" zevStatus zevsRegExpFind_8u(const uint8_t* src, int32_t srcLen, RegExpState* state,
                                       RegExpFindEntry* find, int32_t* findCount) {
    return ownRegExpSearch(src, srcLen, state, find, findCount, 0);
}
