// regexp/match/groups.cpp - the groups that stay transparent to what follows
// them: NodeCapture, NodeGroup, NodeOptionGroup and NodeConditional, with or
// without a quantifier behind their NodeClose.
//
// The body of such a group is not a closed range: the rest of the pattern is
// reached from inside, through the NodeClose, so that backtracking can come
// back into the body. Iteration counts therefore live in the group's frame
// (one per group id, in the record), and two matchers share the work:
//   - ownRegExpGroupOpen starts at the head (first entry, or re-entry from
//     close for a further iteration) and runs the branches in turn;
//   - ownRegExpGroupClose runs when a branch reaches the NodeClose, takes the
//     capture, and either leaves the group or starts another iteration.
// A failed path that had passed the NodeClose sets closeFailed; the branch
// loop that started the iteration then gives the counted iteration back.
// Nested groups share one frame per id, not one per iteration of the outer
// group: a later outer iteration overwrites the inner frame, and
// backtracking into the earlier one sees the later values. That is the
// engine's defined behaviour (`((a+)){2}` finds no match on "aa").
//
// Tested by tests/match/group_test.cpp.
#include "regexp/match/match_internal.h"
#include "regexp/match/repeat_loops.h"

namespace {

// Which repeat, if any, stands behind the NodeClose at `close`.
struct GroupRepeat {
    int32_t lazy;
    int32_t greedy;
};

inline GroupRepeat repeatAfter(const MatchContext* ctx, int32_t close) {
    GroupRepeat r = {0, 0};
    if (close + 1 < ctx->endNode) {
        const uint32_t kind = ctx->nodes[close + 1].kind;
        r.lazy = kind == NodeRepeatLazy;
        r.greedy = kind == NodeRepeat;
    }
    return r;
}

// Index of the next NodeAlternate of group `id` at or behind `from`, or
// `close` when the branch starting at `from` is the last one. With the
// shortcuts on, a nested construct with a body (lookaround, group, atomic
// group: kinds NodeLookbehind to NodeAtomic, closing at head + word2 + 1) is
// stepped over whole: the bars inside it belong to it, not to `id`.
inline int32_t nextAlternate(const MatchContext* ctx, int32_t from, int32_t close, int32_t id) {
    const bool overBodies = ctx->fastPaths != 0;
    int32_t i = from;
    while (i < close) {
        const RegExpNode& node = ctx->nodes[i];
        if (node.kind == NodeAlternate && node.word1 == id) {
            return i;
        }
        const bool body = node.kind >= NodeLookbehind && node.kind <= NodeAtomic && node.word2 >= 0;
        i += overBodies && body ? node.word2 + 2 : 1;
    }
    return close;
}

// First node of the branch a conditional takes. The condition is either a
// back-reference number (true when that capture took part; its text is not
// compared) or a lookaround, run as a range of its own.
int32_t conditionalBranch(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t head,
                          int32_t close, int32_t id) {
    const int32_t c = head + 1;
    const RegExpNode& cond = ctx->nodes[c];
    bool holds;
    int32_t last;
    if (cond.kind == NodeBackRef) {
        holds = cond.word1 < ctx->captureCount && ctx->captures[cond.word1].length != -1;
        last = c;
    } else {
        const int32_t keptEnd = ctx->endNode;
        ctx->endNode = c + cond.word2 + 2;   // one past the lookaround's NodeClose
        ctx->currentNode = c;
        holds = ownRegExpMatch(p, remaining, ctx) == 0;
        ctx->endNode = keptEnd;
        last = c + cond.word2 + 1;
    }
    if (holds) {
        return last + 1;
    }
    const int32_t alt = nextAlternate(ctx, last + 1, close, id);
    if (alt < close) {
        ctx->flags = static_cast<uint32_t>(ctx->nodes[alt].word2);
    }
    // With no second branch this is close + 1: execution goes on behind the
    // group without running its NodeClose.
    return alt + 1;
}

}  // namespace

int32_t ownRegExpGroupOpen(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    const int32_t head = ctx->currentNode;
    const RegExpNode& node = ctx->nodes[head];
    const int32_t close = head + node.word2 + 1;
    const int32_t id = node.word1;
    const GroupRepeat rep = repeatAfter(ctx, close);
    const bool isCapture = node.kind == NodeCapture;
    GroupFrame* frame = &ctx->groups[id];

    if (node.kind == NodeOptionGroup) {
        ctx->flags = static_cast<uint32_t>(node.word3);
    }
    uint32_t bodyFlags = ctx->flags;

    // Saves: the capture record as it was when this open began (before the
    // group on a first entry, the previous iteration's on a re-entry).
    CaptureRecord saved = {0, -1};
    int32_t min;
    int32_t max;
    const bool firstEntry = ctx->reentry == 0;
    if (!firstEntry) {
        ctx->reentry -= 1;
        min = frame->minLeft;
        max = frame->maxLeft;
        if (isCapture) {
            saved = ctx->captures[node.word3];
        }
    } else {
        if (rep.lazy || rep.greedy) {
            min = ctx->nodes[close + 1].word1;
            max = ctx->nodes[close + 1].word2;
        } else {
            min = 1;
            max = 1;
        }
        if (min == 0 && max == 0) {
            // {0}: the group is left out, its options do not reach beyond it.
            ctx->flags = static_cast<uint32_t>(ctx->nodes[close].word2);
            ctx->currentNode = close + rep.lazy + rep.greedy + 1;
            return ownRegExpMatch(p, remaining, ctx);
        }
        frame->minLeft = min;
        frame->maxLeft = max;
        frame->head = head;
        frame->remaining = remaining;
        frame->length = 0;
        if (isCapture) {
            frame->captureIndex = node.word3;
            saved = ctx->captures[node.word3];
            ctx->captures[node.word3].start = static_cast<int32_t>(p - ctx->subject);
            ctx->captures[node.word3].length = 0;
        }
    }

    if (min < 1 && rep.lazy) {
        // Lazy and allowed to stop: try what follows without the group first.
        if (firstEntry && isCapture) {
            ctx->captures[node.word3] = saved;
        }
        ctx->currentNode = close + 2;
        if (ownRegExpMatch(p, remaining, ctx) == 0) {
            return 0;
        }
        ctx->currentNode = head;
        ctx->flags = bodyFlags;   // the failed run may have changed them
    }
    if (max < 1) {
        if (rep.lazy) {
            return 1;
        }
        ctx->flags = static_cast<uint32_t>(ctx->nodes[close].word2);
        ctx->currentNode = close + rep.greedy + 1;
        return ownRegExpMatch(p, remaining, ctx);
    }

    int32_t k = node.kind == NodeConditional ? conditionalBranch(p, remaining, ctx, head, close, id)
                                             : head + 1;
    ctx->currentNode = k;
    for (;;) {
        frame->iterationOpen = 1;
        frame->closeFailed = 0;
        // A branch is run as a continuation: with the shortcuts on, one whose
        // first node turns down the byte here is charged its one unit and
        // not entered (see runContinuation).
        if (zevch_match::runContinuation(zevch_match::makeContinuation(ctx, k), p, remaining, ctx) == 0) {
            return 0;
        }
        frame->iterationOpen = 0;
        if (node.kind == NodeConditional) {
            k = close;   // a conditional runs one branch only
        } else {
            k = nextAlternate(ctx, k, close, id);
            if (k < close) {
                bodyFlags = static_cast<uint32_t>(ctx->nodes[k].word2);
            }
        }
        k += 1;
        if (frame->closeFailed != 0) {
            // The failed path had passed the NodeClose and counted an
            // iteration that did not stand.
            frame->closeFailed -= 1;
            frame->maxLeft += 1;
            frame->minLeft += 1;
        }
        ctx->captures[0].length = static_cast<int32_t>(p - ctx->subject) - ctx->captures[0].start;
        frame->remaining = remaining;
        ctx->currentNode = k;
        ctx->flags = bodyFlags;
        if (k > close) {
            break;
        }
    }

    if (isCapture) {
        ctx->captures[node.word3] = saved;
    }
    if (min >= 1 || rep.lazy) {
        return 1;
    }
    // Greedy and allowed to stop here: settle for the iterations so far.
    if (ctx->nodes[close].word3 == -1) {
        frame->maxLeft = 1;
    }
    ctx->flags = static_cast<uint32_t>(ctx->nodes[close].word2);
    ctx->currentNode = close + rep.greedy + 1;
    return ownRegExpMatch(p, remaining, ctx);
}

int32_t ownRegExpGroupClose(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    const int32_t c = ctx->currentNode;
    const RegExpNode& node = ctx->nodes[c];
    const int32_t id = node.word1;
    if (id < 1 || id > MaxGroupId) {
        return 1;   // the close of a lookaround or atomic group is never run
    }
    const GroupRepeat rep = repeatAfter(ctx, c);
    GroupFrame* frame = &ctx->groups[id];

    // frame->remaining is that of the previous pass, so the sum below is the
    // distance from the iteration's start to here, whichever way it came.
    const int32_t delta = frame->remaining - remaining;
    frame->remaining = remaining;
    frame->length += delta;
    if (frame->iterationOpen != 0) {
        // First pass of this iteration; a later pass counts nothing.
        frame->iterationOpen -= 1;
        frame->maxLeft -= 1;
        frame->minLeft -= 1;
        frame->length = delta;
    }
    if (ctx->nodes[frame->head].kind == NodeCapture) {
        CaptureRecord& cap = ctx->captures[frame->captureIndex];
        cap.length = frame->length;
        cap.start = static_cast<int32_t>(p - ctx->subject) - frame->length;
    }

    const int32_t length = frame->length;
    const uint32_t savedFlags = ctx->flags;
    if (length == 0 || (frame->maxLeft < 1 && !rep.lazy)) {
        // An empty iteration ends the repeat at once, whatever minLeft says.
        ctx->flags = static_cast<uint32_t>(node.word2);
        ctx->currentNode = c + rep.lazy + rep.greedy + 1;
        if (ownRegExpMatch(p, remaining, ctx) == 0) {
            return 0;
        }
    } else {
        ctx->reentry = 1;
        ctx->currentNode = frame->head;
        if (ownRegExpGroupOpen(p, remaining, ctx) == 0) {
            return 0;
        }
    }
    frame->length = length;
    frame->closeFailed = 1;
    ctx->flags = savedFlags;
    return 1;
}
