// regexp/match/atomic.cpp - NodeAtomic, the group (?>...), with or without a
// quantifier behind its NodeClose.
//
// The body runs as a closed range (ownRegExpRunClosed): the first way through
// it that matches is final, and what follows can never make it try another.
// What the body consumed stays consumed; its length is what
// captures[0].length gained while it ran. Of a repeated atomic group whole
// iterations can be given back, nothing inside one. There is no group frame:
// the id is negative and the iteration count travels in min and max.
//
// Tested by tests/match/atomic_test.cpp.
#include "regexp/match/match_internal.h"

namespace {

inline int32_t closeOf(const MatchContext* ctx, int32_t head) {
    return head + ctx->nodes[head].word2 + 1;
}

// Runs the body once at p. Returns the bytes it consumed, or -1 if no branch
// matched. On a match captures[0].length keeps what the body added.
int32_t runBody(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t head, int32_t close) {
    const int32_t before = ctx->captures[0].length;
    if (ownRegExpRunClosed(p, remaining, ctx, head, close) != 0) {
        ctx->captures[0].length = before;
        return -1;
    }
    return ctx->captures[0].length - before;
}

}  // namespace

// Greedy: one level of recursion per iteration; the deepest level runs what
// follows, and on the way back each optional level tries it again with one
// iteration fewer. Saves: nothing but its own iteration's length.
int32_t ownRegExpAtomic(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max) {
    const int32_t head = ctx->currentNode;
    const int32_t close = closeOf(ctx, head);
    if (max > 0) {
        const int32_t n = runBody(p, remaining, ctx, head, close);
        if (n < 0) {
            if (min >= 1) {
                return 1;
            }
        } else if (n > 0) {
            ctx->currentNode = head;
            if (ownRegExpAtomic(p + n, remaining - n, ctx, min - 1, max - 1) == 0) {
                return 0;
            }
            ctx->captures[0].length -= n;
            if (min >= 1) {
                return 1;   // this iteration was required
            }
        }
        // n == 0: an empty iteration, and no further one can help.
    }
    int32_t next = close + 1;
    if (next < ctx->endNode && ctx->nodes[next].kind == NodeRepeat) {
        next += 1;
    }
    ctx->currentNode = next;
    return ownRegExpMatch(p, remaining, ctx);
}

// Lazy: a loop, no recursion per iteration. What follows is tried before each
// further iteration; on giving up, the bytes of all iterations taken are
// given back to captures[0].length.
int32_t ownRegExpAtomicLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max) {
    const int32_t head = ctx->currentNode;
    const int32_t close = closeOf(ctx, head);
    int32_t taken = 0;
    for (;;) {
        if (min < 1) {
            const uint32_t keptFlags = ctx->flags;
            ctx->currentNode = close + 2;
            if (ownRegExpMatch(p, remaining, ctx) == 0) {
                return 0;
            }
            ctx->currentNode = head;
            ctx->flags = keptFlags;
        }
        if (max < 1) {
            ctx->captures[0].length -= taken;
            return 1;
        }
        const int32_t n = runBody(p, remaining, ctx, head, close);
        if (n < 0) {
            ctx->captures[0].length -= taken;
            return 1;
        }
        if (n == 0) {
            ctx->currentNode = close + 2;
            if (ownRegExpMatch(p, remaining, ctx) == 0) {
                return 0;
            }
            ctx->captures[0].length -= taken;
            return 1;
        }
        taken += n;
        min -= 1;
        max -= 1;
        p += n;
        remaining -= n;
        ctx->currentNode = head;
    }
}
