// regexp/match/interpreter.cpp - ownRegExpMatch, the node interpreter.
//
// A recursive backtracking matcher whose only stack is the call stack. Every
// node that consumes text calls the interpreter again for the rest of the
// range, so a result of 0 means "everything from currentNode to endNode
// matched" and 1 means "no match at this choice". Zero-width nodes (asserts,
// lookaround, inline options) run in the loop without a new call.
//
// Budget: one unit per node dispatched, spent at one place below. Once it is
// negative every entry fails at once and the search unwinds; the driver turns
// that into zevStatusRegExpMatchLimit. The same happens when a frame would go
// below ctx->stackLimit, so no subject and no limit can exhaust the stack.
//
// Frames are kept small on purpose: the plain single steps that need more
// than a few locals (string and back-reference compares, UTF-8 decoding) live
// in helpers that return the byte count to consume, so that the frame that
// stays on the stack during the recursion is only this function's own.
//
// Tested by tests/match/*.
#include "regexp/match/match_internal.h"
#include "regexp/match/stack_guard.h"

namespace {

constexpr int32_t NoStep = -1;   // a single step that does not match

inline bool isRepeatKind(uint32_t kind) {
    return kind == NodeRepeat || kind == NodeRepeatLazy;
}

// The repeat node behind the operand at `cur`, or null when the operand is
// not repeated (fewer than two nodes left in the range, or no repeat there).
inline const RegExpNode* repeatBehind(const MatchContext* ctx, int32_t cur) {
    if (ctx->endNode - cur < 2) {
        return nullptr;
    }
    const RegExpNode* next = &ctx->nodes[cur + 1];
    return isRepeatKind(next->kind) ? next : nullptr;
}

// The repeat that NodeClass and NodeAtomic look for at index t, behind their
// items or body: a greedy 1 to 1 when there is none.
struct Bounds {
    bool lazy;
    int32_t min;
    int32_t max;
};

inline Bounds boundsAt(const MatchContext* ctx, int32_t t) {
    if (t < ctx->endNode) {
        const RegExpNode& rep = ctx->nodes[t];
        if (isRepeatKind(rep.kind)) {
            return {rep.kind == NodeRepeatLazy, rep.word1, rep.word2};
        }
    }
    return {false, 1, 1};
}

// Compares `count` subject bytes at p with `pattern`, ASCII case-blind when
// asked. The subject's byte goes first, as ownEqualIgnoreAsciiCase expects.
bool equalBytes(const uint8_t* p, const uint8_t* pattern, int32_t count, bool ignoreCase) {
    if (!ignoreCase) {
        for (int32_t i = 0; i < count; ++i) {
            if (p[i] != pattern[i]) {
                return false;
            }
        }
        return true;
    }
    for (int32_t i = 0; i < count; ++i) {
        if (!ownEqualIgnoreAsciiCase(p[i], pattern[i])) {
            return false;
        }
    }
    return true;
}

// Bytes of the UTF-8 encoding of `code` (five and six byte forms included).
int32_t encodedLength(uint32_t code) {
    if (code <= 0x7F) return 1;
    if (code <= 0x7FF) return 2;
    if (code <= 0xFFFF) return 3;
    if (code <= 0x1FFFFF) return 4;
    if (code <= 0x3FFFFFF) return 5;
    return 6;
}

// The single steps without a repeat. Each gives the bytes to consume or
// NoStep; none recurses. remaining is at least 1 on entry.

__attribute__((noinline)) int32_t stepString(const uint8_t* p, int32_t remaining,
                                             const MatchContext* ctx, const RegExpNode& node) {
    if (remaining < node.word2) {
        return NoStep;
    }
    const uint8_t* bytes = ownNodeStringBytes(ctx->state, node);
    return equalBytes(p, bytes, node.word2, (ctx->flags & OptionIgnoreCase) != 0) ? node.word2 : NoStep;
}

__attribute__((noinline)) int32_t stepBackRef(const uint8_t* p, int32_t remaining,
                                              const MatchContext* ctx, const RegExpNode& node) {
    const CaptureRecord& cap = ctx->captures[node.word1];
    const int32_t length = cap.length;
    if (length < 0 || length > remaining) {
        return NoStep;
    }
    const uint8_t* captured = ctx->subject + cap.start;
    return equalBytes(p, captured, length, (ctx->flags & OptionIgnoreCase) != 0) ? length : NoStep;
}

__attribute__((noinline)) int32_t stepCharType(const uint8_t* p, const MatchContext* ctx,
                                               const RegExpNode& node) {
    const uint32_t letter = static_cast<uint32_t>(node.word1) & 0xFF;
    const uint32_t dotAll = ctx->flags & OptionDotAll;
    int32_t code;
    const int32_t length = ownDecodeUtf8(p, ownBytesToEnd(ctx, p), &code);
    if (length >= 2) {
        return ownGetCharPredicate(letter, dotAll)(p) < 0 ? NoStep : length;
    }
    return ownGetCharPredicateByValue(letter, dotAll)(*p) < 0 ? NoStep : 1;
}

__attribute__((noinline)) int32_t stepWideChar(const uint8_t* p, const MatchContext* ctx,
                                               const RegExpNode& node) {
    int32_t code = 0;
    if (ownDecodeUtf8(p, ownBytesToEnd(ctx, p), &code) <= 0) {
        code = 0;
    }
    int32_t wanted = node.word1;
    if (ctx->flags & OptionIgnoreCase) {
        code = ownFoldCase(code);
        wanted = ownFoldCase(wanted);
    }
    if (code != wanted) {
        return NoStep;
    }
    // The length of the pattern's character, not of the subject's.
    return encodedLength(static_cast<uint32_t>(node.word1));
}

__attribute__((noinline)) int32_t stepItem(const uint8_t* p, const MatchContext* ctx,
                                           const RegExpNode& node) {
    int32_t code = 0;
    int32_t length = ownDecodeUtf8(p, ownBytesToEnd(ctx, p), &code);
    if (length <= 0) {
        code = *p;
        length = 1;
    }
    return checkCodeItem(node, code) > 0 ? length : NoStep;
}

// One single step of the items that have a repeat check, NodeChar apart
// (it is compared inline). Gives the bytes to consume or NoStep.
__attribute__((noinline)) int32_t stepSingle(const uint8_t* p, int32_t remaining, const MatchContext* ctx,
                                             const RegExpNode& node) {
    switch (node.kind) {
    case NodeBackRef:
        return stepBackRef(p, remaining, ctx, node);
    case NodeCharType:
        return stepCharType(p, ctx, node);
    case NodeAnyByte:
        return 1;
    case NodeWideChar:
        return stepWideChar(p, ctx, node);
    case NodeGrapheme: {
        // A cluster is read within the search area, as the repeats of \X
        // read it, so that \X and \X{1} agree.
        const int32_t n = ownReadCluster(p, remaining);
        return n > 0 ? n : NoStep;
    }
    default:   // NodeProperty, NodeBlock, NodeScript
        return stepItem(p, ctx, node);
    }
}

// The repeat matchers of the single items, by kind: lazy and greedy. Kinds
// without a repeat check have none.
using RepeatFn = int32_t (*)(const uint8_t*, int32_t, MatchContext*);
struct RepeatPair {
    RepeatFn lazy;
    RepeatFn greedy;
};
constexpr RepeatPair NoRepeat = {nullptr, nullptr};
constexpr RepeatPair RepeatMatchers[] = {
    {ownRepeatCharLazy, ownRepeatChar},             // NodeChar
    NoRepeat,                                       // NodeString
    {ownRepeatBackRefLazy, ownRepeatBackRef},       // NodeBackRef
    NoRepeat,                                       // NodeClass (its own)
    {ownRepeatCharTypeLazy, ownRepeatCharType},     // NodeCharType
    NoRepeat, NoRepeat, NoRepeat, NoRepeat, NoRepeat,   // NodeAssert .. NodeRepeat
    NoRepeat, NoRepeat, NoRepeat, NoRepeat,             // the lookaround heads
    NoRepeat, NoRepeat, NoRepeat, NoRepeat, NoRepeat,   // group heads, NodeAtomic (its own)
    NoRepeat, NoRepeat,                                 // NodeClose, NodeSetOptions
    {ownRepeatAnyByteLazy, ownRepeatAnyByte},       // NodeAnyByte
    {ownRepeatWideCharLazy, ownRepeatItem},         // NodeWideChar
    {ownRepeatItemLazy, ownRepeatItem},             // NodeProperty
    {ownRepeatItemLazy, ownRepeatItem},             // NodeBlock
    {ownRepeatItemLazy, ownRepeatItem},             // NodeScript
    {ownRepeatGraphemeLazy, ownRepeatGrapheme},     // NodeGrapheme
};
static_assert(sizeof RepeatMatchers / sizeof RepeatMatchers[0] == NodeKindCount,
              "one pair of repeat matchers per node kind");

}  // namespace

// The shared step "consume(n)": take n bytes, run the rest of the range, and
// give the bytes back to captures[0].length if the rest fails.
#define CONSUME(n)                                                  \
    do {                                                            \
        const int32_t taken_ = (n);                                 \
        ctx->captures[0].length += taken_;                          \
        ctx->currentNode += 1;                                      \
        if (ownRegExpMatch(p + taken_, remaining - taken_, ctx) == 0) { \
            return 0;                                               \
        }                                                           \
        ctx->captures[0].length -= taken_;                          \
        return 1;                                                   \
    } while (0)

int32_t ownRegExpMatch(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    if (OWN_STACK_HERE() < ctx->stackLimit) {
        ctx->budget = -1;   // ends the search as an exhausted limit would
        return 1;
    }
    for (;;) {
        if (ctx->budget < 0) {
            return 1;
        }
        const int32_t cur = ctx->currentNode;
        if (cur == ctx->endNode) {
            // The range is complete, also when a multi-byte character has
            // overrun the search area (remaining below 0).
            if (ctx->rejectEmpty == 0) {
                return 0;
            }
            return ctx->captures[0].length != 0 ? 0 : 1;
        }
        if (remaining < 0) {
            return 1;
        }
        ctx->budget -= 1;
        if (static_cast<uint32_t>(cur) >= static_cast<uint32_t>(ctx->state->nodeCount)) {
            return 1;   // outside the node array: nothing there can be run
        }
        const RegExpNode& node = ctx->nodes[cur];
        static_assert(NodeGrapheme - NodeKindFirst + 1 == NodeKindCount, "dispatch covers every kind");
        switch (node.kind) {
        case NodeChar:
        case NodeBackRef:
        case NodeCharType:
        case NodeAnyByte:
        case NodeWideChar:
        case NodeProperty:
        case NodeBlock:
        case NodeScript:
        case NodeGrapheme: {
            // A single item: a repeat behind it goes to the item's repeat
            // matcher; without one, one step and the rest of the range.
            if (const RegExpNode* rep = repeatBehind(ctx, cur)) {
                if (remaining == 0 && rep->word1 >= 1) {
                    return 1;
                }
                const RepeatPair& pair = RepeatMatchers[node.kind - NodeKindFirst];
                return (rep->kind == NodeRepeatLazy ? pair.lazy : pair.greedy)(p, remaining, ctx);
            }
            if (remaining == 0) {
                return 1;   // for a back-reference even when the capture is empty
            }
            int32_t n;
            if (node.kind == NodeChar) {
                const uint8_t want = static_cast<uint8_t>(node.word1);
                const bool same = (ctx->flags & OptionIgnoreCase) ? ownEqualIgnoreAsciiCase(*p, want) : *p == want;
                n = same ? 1 : NoStep;
            } else {
                n = stepSingle(p, remaining, ctx, node);
            }
            if (n == NoStep) {
                return 1;
            }
            CONSUME(n);
        }
        case NodeString: {
            if (remaining == 0) {
                return 1;
            }
            const int32_t n = stepString(p, remaining, ctx, node);
            if (n == NoStep) {
                return 1;
            }
            CONSUME(n);
        }
        case NodeClass: {
            const Bounds b = boundsAt(ctx, cur + node.word2 + 1);   // behind the items
            return b.lazy ? ownRepeatClassLazy(p, remaining, ctx, b.min, b.max)
                          : ownRepeatClass(p, remaining, ctx, b.min, b.max);
        }
        case NodeAssert:
            if (ownRegExpAssert(p, remaining, ctx) != 0) {
                return 1;
            }
            continue;
        case NodeAlternate: {
            if (node.word1 < 1) {
                return 0;   // end of a top-level, lookaround or atomic branch
            }
            const int32_t head = ctx->groups[node.word1].head;
            ctx->currentNode = head + ctx->nodes[head].word2 + 1;
            return ownRegExpGroupClose(p, remaining, ctx);
        }
        case NodeRange:
        case NodeRepeatLazy:
        case NodeRepeat:
            return 1;   // never run on their own
        case NodeLookbehind:
        case NodeNegLookbehind:
        case NodeLookahead:
        case NodeNegLookahead:
            if (ownRegExpLookaround(p, remaining, ctx) != 0) {
                return 1;
            }
            continue;
        case NodeOptionGroup:
        case NodeConditional:
        case NodeCapture:
        case NodeGroup:
            return ownRegExpGroupOpen(p, remaining, ctx);
        case NodeAtomic: {
            const Bounds b = boundsAt(ctx, cur + node.word2 + 2);   // behind the NodeClose
            return b.lazy ? ownRegExpAtomicLazy(p, remaining, ctx, b.min, b.max)
                          : ownRegExpAtomic(p, remaining, ctx, b.min, b.max);
        }
        case NodeClose:
            return ownRegExpGroupClose(p, remaining, ctx);
        case NodeSetOptions:
            ctx->flags = static_cast<uint32_t>(node.word1);
            ctx->currentNode = cur + 1;
            continue;
        default:
            return 1;   // not a node kind
        }
    }
}
