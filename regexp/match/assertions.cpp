// regexp/match/assertions.cpp - zero-width tests: the single-node assertions
// of NodeAssert and the four lookaround heads, plus the closed-range runner
// that lookaround and atomic groups share.
//
// Both kinds run inside the interpreter's loop: when they pass, currentNode
// is moved on and the loop goes on without a new call, so they cost no stack
// level for the continuation. Neither changes p, remaining or
// captures[0].length as seen by what follows. They spend no budget: the
// dispatch of the head has paid.
//
// Tested by tests/match/assertion_test.cpp.
#include "regexp/match/match_internal.h"

namespace {

constexpr uint8_t Newline = 10;

// Word bytes for \b and \B: 0-9, A-Z, a-z and underscore, byte by byte in
// both formats; every byte from 0x80 up is a non-word byte.
inline bool isWordByte(uint32_t c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool assertionHolds(const uint8_t* p, int32_t remaining, const MatchContext* ctx, int32_t letter) {
    const bool atStart = p == ctx->subject;
    const bool multiLine = (ctx->flags & OptionMultiLine) != 0;
    switch (letter) {
    case '^':
        if (!multiLine) {
            return atStart;
        }
        // No line start behind a newline that ends the search area.
        return atStart || (remaining != 0 && p[-1] == Newline);
    case '$':
        if (!multiLine) {
            return remaining == 0 || (remaining == 1 && *p == Newline);
        }
        return remaining == 0 || *p == Newline;
    case 'A':
    case 'G':   // no memory of an earlier match: the subject's start too
        return atStart;
    case 'Z':
        return remaining == 0 || (remaining == 1 && *p == Newline);
    case 'z':
        return remaining == 0;
    case 'b':
    case 'B': {
        // Before the subject stands a space; at the true end of the subject
        // stands a non-word byte (no read past the caller's text). Inside the
        // subject the byte at p counts even behind the search area.
        const uint32_t before = atStart ? ' ' : p[-1];
        const uint32_t at = ownBytesToEnd(ctx, p) > 0 ? *p : 0;
        const bool boundary = isWordByte(before) != isWordByte(at);
        return letter == 'b' ? boundary : !boundary;
    }
    case AssertLineStartAnchor:
        return atStart || p[-1] == Newline;
    default:
        return false;
    }
}

// Where a lookbehind body of `width` characters starts when it has to end at
// p: the characters from the subject's start to p are counted, and the walk
// goes again over all but the last `width`. A sequence that straddles p (after
// \C or a one-byte step of the driver) counts as the last character, and the
// second walk never passes p.
//
// Both walks pass the same places whatever p is, so with the shortcuts on
// each goes on from where the last one stopped, when that lies at or before
// p: the walks of a scan cost the subject's length once, not once per place.
const uint8_t* lookbehindStart(const uint8_t* p, MatchContext* ctx, int32_t width) {
    const bool resume = ctx->fastPaths != 0;
    const uint8_t* walk = ctx->subject;
    int32_t count = 0;
    if (resume && ctx->subject + ctx->walkEnd <= p) {
        walk = ctx->subject + ctx->walkEnd;
        count = ctx->walkEndCount;
    }
    while (walk < p) {
        walk += ownUtf8Length(walk, ownBytesToEnd(ctx, walk));
        ++count;
    }
    if (resume) {
        ctx->walkEnd = static_cast<int32_t>(walk - ctx->subject);
        ctx->walkEndCount = count;
    }
    if (count < width) {
        return p - width;
    }
    const int32_t target = count - width;
    const uint8_t* q = ctx->subject;
    int32_t passed = 0;
    if (resume && ctx->walkStartCount <= target && ctx->subject + ctx->walkStart <= p) {
        q = ctx->subject + ctx->walkStart;
        passed = ctx->walkStartCount;
    }
    for (; passed < target; ++passed) {
        const int32_t step = ownUtf8Length(q, ownBytesToEnd(ctx, q));
        if (q + step > p) {
            break;
        }
        q += step;
    }
    if (resume) {
        ctx->walkStart = static_cast<int32_t>(q - ctx->subject);
        ctx->walkStartCount = passed;
    }
    return q;
}

}  // namespace

int32_t ownRegExpAssert(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    const int32_t a = ctx->currentNode;
    // An assertion under a repeat with minimum 0 is optional: a zero-width
    // test that may be left out is never evaluated.
    if (a + 1 < ctx->endNode) {
        const RegExpNode& next = ctx->nodes[a + 1];
        if ((next.kind == NodeRepeat || next.kind == NodeRepeatLazy) && next.word1 == 0) {
            ctx->currentNode = a + 2;
            return 0;
        }
    }
    if (!assertionHolds(p, remaining, ctx, ctx->nodes[a].word1)) {
        return 1;
    }
    ctx->currentNode = a + 1;
    return 0;
}

// Saves: endNode and flags; captures[0].length is the caller's business.
// Each branch runs from `p` with the flags in force at its start; the first
// that reaches its end (a NodeAlternate of negative id or endNode) wins, and
// later failures of the caller never come back into the body.
int32_t ownRegExpRunClosed(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t head,
                           int32_t close) {
    const int32_t id = ctx->nodes[head].word1;
    const int32_t keptEnd = ctx->endNode;
    uint32_t keptFlags = ctx->flags;
    ctx->endNode = close;
    int32_t k = head + 1;
    ctx->currentNode = k;
    int32_t result;
    for (;;) {
        result = ownRegExpMatch(p, remaining, ctx);
        ctx->flags = keptFlags;
        if (result == 0) {
            break;
        }
        int32_t i = k;
        while (i < close && !(ctx->nodes[i].kind == NodeAlternate && ctx->nodes[i].word1 == id)) {
            ++i;
        }
        if (i < close) {
            k = i;
            keptFlags = static_cast<uint32_t>(ctx->nodes[i].word2);
            ctx->flags = keptFlags;
        } else {
            k = close;
        }
        k += 1;
        ctx->currentNode = k;
        if (k > close) {
            break;
        }
    }
    ctx->endNode = keptEnd;
    return result;
}

int32_t ownRegExpLookaround(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    const int32_t h = ctx->currentNode;
    const RegExpNode& head = ctx->nodes[h];
    const int32_t close = h + head.word2 + 1;
    const bool behind = head.kind == NodeLookbehind || head.kind == NodeNegLookbehind;
    const bool positive = head.kind == NodeLookahead || head.kind == NodeLookbehind;

    const uint8_t* from = p;
    int32_t fromRemaining = remaining;
    if (behind) {
        const int32_t width = head.word3;
        if (p - ctx->subject < width) {
            // Not even `width` bytes stand behind p: no body can fit.
            if (positive) {
                return 1;
            }
            ctx->currentNode = close + 1;
            return 0;
        }
        from = lookbehindStart(p, ctx, width);
        fromRemaining = remaining + static_cast<int32_t>(p - from);
    }

    const int32_t keptLength = ctx->captures[0].length;
    const int32_t result = ownRegExpRunClosed(from, fromRemaining, ctx, h, close);
    ctx->captures[0].length = keptLength;
    if (positive ? result != 0 : result == 0) {
        return 1;
    }
    ctx->currentNode = close + 1;   // the NodeClose of a lookaround is never run
    return 0;
}
