// regexp/match/repeat_loops.h - the greedy and the lazy loop that every
// single-item repeat runs, and the continuation they run from inside.
//
// A repeat does not report how much it took: it runs the rest of the pattern
// (the continuation) once per length it is willing to try and returns 0 as
// soon as one run matched, 1 when none did. The loops are templates over an
// item policy, which knows how to take one item and how to step back over the
// last one:
//
//   int32_t take(p, offset, remaining)  bytes of the item at p + offset, or -1
//                                       when none can be taken there
//   void scan(p, remaining, offset, count, limit)
//                                       take items while count < limit
//   int32_t lastSize(p, offset)         bytes of the last item taken that ends
//                                       at p + offset
//   bool unitSteps()                    every item taken so far is one byte
//   static constexpr bool MayBeEmpty    an item can have zero bytes
//
// Neither loop allocates or recurses per item: one frame stays on the stack
// while the continuation runs, whatever the number of items. Budget is spent
// only by the interpreter, except by the shortcuts below, which charge
// exactly what the runs they skip would have cost.
//
// Tested by tests/match/repeat_*_test.cpp and tests/match/class_test.cpp.
#pragma once

#include <algorithm>
#include <cstring>

#include "regexp/match/char_predicates.h"
#include "regexp/match/match_internal.h"
#include "regexp/match/stack_guard.h"

namespace zevch_match {

inline bool isRepeatKind(uint32_t kind) {
    return kind == NodeRepeat || kind == NodeRepeatLazy;
}

// The byte other than b that ownEqualIgnoreAsciiCase pairs with b, or b
// itself: subject bytes equal to a pattern byte under ASCII case folding are
// b and, for a letter, b ^ 0x20.
inline uint8_t otherCaseByte(uint8_t b) {
    uint8_t other = b ^ 0x20;
    return ownEqualIgnoreAsciiCase(other, b) ? other : b;
}

// Byte length of the last item of a forward walk from p (items sized by
// ownUtf8Length) that ends at p + offset. A well-formed multi-byte sequence
// that ends there is necessarily such an item: no item of the walk can cross
// its lead byte, which is no continuation byte. Its lead is the nearest byte
// that is no continuation byte, at most 5 bytes back; when there is none, or
// the sequence there is not exactly that long, the last item was one byte.
inline int32_t lastUtf8ItemSize(const uint8_t* p, int32_t offset, const MatchContext* ctx) {
    const uint8_t* q = p + offset;
    if ((q[-1] & 0xC0) != 0x80) {
        return 1;
    }
    int32_t span = 1;
    int32_t reach = std::min(offset, 6);
    while (span < reach && (q[-span] & 0xC0) == 0x80) {
        ++span;
    }
    const uint8_t* lead = q - span;
    if (span >= 2 && ownUtf8Length(lead, ownBytesToEnd(ctx, lead)) == span) {
        return span;
    }
    return 1;
}

// The repeat node behind the repeated node at currentNode, and the
// continuation behind both.
struct RepeatBounds {
    int32_t min;
    int32_t max;
    int32_t next;
};

inline RepeatBounds repeatBoundsOf(const MatchContext* ctx) {
    const RegExpNode& repeat = ctx->nodes[ctx->currentNode + 1];
    return {repeat.word1, repeat.word2, ctx->currentNode + 2};
}

// Remembers the answers for ASCII codes within one call: property, script
// and class checks search tables or item lists, and runs of ASCII text
// repeat few distinct codes.
struct AsciiMemo {
    uint64_t known[2] = {0, 0};
    uint64_t yes[2] = {0, 0};

    template <class Check>
    bool answer(int32_t code, const Check& check) {
        if (code >= 0x80) {
            return check(code);
        }
        uint64_t bit = 1ull << (code & 63);
        int32_t half = code >> 6;
        if ((known[half] & bit) == 0) {
            known[half] |= bit;
            if (check(code)) {
                yes[half] |= bit;
            }
        }
        return (yes[half] & bit) != 0;
    }
};

// Default scan: take items one by one.
template <class Items>
inline void scanByTaking(Items& items, const uint8_t* p, int32_t remaining, int32_t& offset,
                         int32_t& count, int32_t limit) {
    while (count < limit) {
        int32_t size = items.take(p, offset, remaining);
        if (size < 0) {
            return;
        }
        offset += size;
        ++count;
    }
}

// ---------------------------------------------------------------------------
// The continuation, and the shortcuts that may stand in for a run of it.
//
// With fastPaths on, a continuation whose first node can be judged by the
// byte at the place is decided here where that node would fail at once:
//   - a NodeChar, alone or repeated with a minimum of at least 1;
//   - a NodeString (its length and first byte);
//   - a NodeCharType, alone or repeated with a minimum of at least 1;
//   - a NodeClass that must take a character.
// The interpreter would return 1 at once for a negative budget or remaining;
// otherwise it would spend one unit on that node, and its matcher would fail
// without running anything further. The same is done here, and the
// interpreter is entered only where the first node may match.

enum ContinuationShortcut : int32_t {
    ShortcutNone,
    ShortcutLiteral,   // first byte compared, `need` bytes required
    ShortcutType,      // predicate of `letter` on the first byte, `need` bytes required
    ShortcutClass,     // one character of the class required
};

struct Continuation {
    int32_t node;
    int32_t shortcut;
    int32_t need;
    uint8_t byte;     // ShortcutLiteral: the first byte
    const PredicateByteSet* types[2];   // ShortcutType: the predicate without and with dot-all
};

inline Continuation makeContinuation(const MatchContext* ctx, int32_t node) {
    Continuation c{node, ShortcutNone, 0, 0, {nullptr, nullptr}};
    if (ctx->fastPaths == 0 || node >= ctx->endNode) {
        return c;
    }
    const RegExpNode& first = ctx->nodes[node];
    const RegExpNode* repeat =
        ctx->endNode - node >= 2 && isRepeatKind(ctx->nodes[node + 1].kind) ? &ctx->nodes[node + 1] : nullptr;
    // A repeat with a minimum of 0 can match without the byte.
    const int32_t need = repeat == nullptr ? 1 : repeat->word1;
    if (first.kind == NodeChar && need >= 1) {
        c.shortcut = ShortcutLiteral;
        c.need = need;
        c.byte = static_cast<uint8_t>(first.word1);
    } else if (first.kind == NodeCharType && need >= 1) {
        uint32_t letter = static_cast<uint32_t>(first.word1) & 0xFF;
        c.shortcut = ShortcutType;
        c.need = need;
        c.types[0] = &PredicateByteSets[selectPredicate(letter, 0)];
        c.types[1] = &PredicateByteSets[selectPredicate(letter, 1)];
    } else if (first.kind == NodeString && first.word2 >= 1) {
        c.shortcut = ShortcutLiteral;
        c.need = first.word2;
        c.byte = ownNodeStringBytes(ctx->state, first)[0];
    } else if (first.kind == NodeClass) {
        int32_t behind = node + first.word2 + 1;
        bool repeated = behind < ctx->endNode && isRepeatKind(ctx->nodes[behind].kind);
        if (!repeated || ctx->nodes[behind].word1 >= 1) {
            c.shortcut = ShortcutClass;
        }
    }
    return c;
}

// Within this much of the stack limit the shortcuts step aside: the
// interpreter, whose frame lies below this one, could find itself beyond the
// limit there and end the search, and it must be the one to decide that.
constexpr uintptr_t ShortcutStackRoom = 16 * 1024;

inline bool roomForShortcut(const MatchContext* ctx) {
    return reinterpret_cast<uintptr_t>(OWN_STACK_HERE()) >=
           reinterpret_cast<uintptr_t>(ctx->stackLimit) + ShortcutStackRoom;
}

inline bool literalByteMatches(const Continuation& c, uint8_t subjectByte, uint32_t flags) {
    return (flags & OptionIgnoreCase) != 0 ? ownEqualIgnoreAsciiCase(subjectByte, c.byte)
                                           : subjectByte == c.byte;
}

// Runs the continuation at q. flags are read at each run: a failed run may
// have left them changed, and the interpreter would see them so.
inline int32_t runContinuation(const Continuation& c, const uint8_t* q, int32_t rem, MatchContext* ctx) {
    if (c.shortcut != ShortcutNone && roomForShortcut(ctx)) {
        if (ctx->budget < 0 || rem < 0) {
            return 1;
        }
        bool fails;
        if (c.shortcut == ShortcutLiteral) {
            fails = rem < c.need || !literalByteMatches(c, q[0], ctx->flags);
        } else if (c.shortcut == ShortcutType) {
            fails = rem < c.need || !c.types[(ctx->flags & OptionDotAll) != 0 ? 1 : 0]->has(q[0]);
        } else {
            fails = rem == 0 || ownCheckClass(q, ownBytesToEnd(ctx, q), ctx, c.node) < 0;
        }
        if (fails) {
            ctx->budget -= 1;
            return 1;
        }
    }
    ctx->currentNode = c.node;
    return ownRegExpMatch(q, rem, ctx);
}

// Greedy step-back over one-byte items in front of a literal: the places
// p + low .. p + high are tried from high down. Returns the highest offset
// where the first byte can match (the interpreter must run there), or -1 when
// none is left; either way the places passed over are charged one unit each
// while budget lasts, as their runs would have been.
inline int32_t skipToLiteral(const Continuation& c, const uint8_t* p, int32_t remaining, int32_t high,
                             int32_t low, MatchContext* ctx) {
    int32_t budget = ctx->budget;
    if (budget < 0) {
        return -1;
    }
    if (!roomForShortcut(ctx)) {
        return high;
    }
    int32_t top = std::min(high, remaining - c.need);   // places above top are too short
    int32_t found = low - 1;
    if (top >= low) {
        uint8_t b1 = c.byte;
        uint8_t b2 = (ctx->flags & OptionIgnoreCase) != 0 ? otherCaseByte(b1) : b1;
        if (b1 == b2) {
            const void* hit = memrchr(p + low, b1, static_cast<size_t>(top - low + 1));
            if (hit != nullptr) {
                found = static_cast<int32_t>(static_cast<const uint8_t*>(hit) - p);
            }
        } else {
            for (int32_t o = top; o >= low; --o) {
                if (p[o] == b1 || p[o] == b2) {
                    found = o;
                    break;
                }
            }
        }
    }
    int32_t passed = high - found;
    if (passed > budget) {
        ctx->budget = -1;
        return -1;
    }
    ctx->budget = budget - passed;
    return found >= low ? found : -1;
}

// ---------------------------------------------------------------------------
// The greedy loop: take at least min and at most limit items, then run the
// continuation at each item boundary from the longest run down to min items.
// captures[0].length includes the run's bytes whenever the continuation runs
// and is back at its entry value when 1 is returned.
template <class Items>
int32_t greedyRepeat(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t limit,
                     int32_t next, Items& items) {
    int32_t offset = 0;
    int32_t count = 0;
    items.scan(p, remaining, offset, count, min);
    if (count < min) {
        return 1;
    }
    items.scan(p, remaining, offset, count, limit);
    ctx->captures[0].length += offset;
    const Continuation c = makeContinuation(ctx, next);
    const bool skipping = c.shortcut == ShortcutLiteral && items.unitSteps() && remaining >= 0;
    for (;;) {
        if (skipping) {
            // One byte per item: count - min places lie below this one.
            int32_t at = skipToLiteral(c, p, remaining, offset, offset - (count - min), ctx);
            if (at < 0) {
                break;
            }
            int32_t back = offset - at;
            ctx->captures[0].length -= back;
            offset = at;
            count -= back;
        }
        int32_t budgetBefore = ctx->budget;
        if (runContinuation(c, p + offset, remaining - offset, ctx) == 0) {
            return 0;
        }
        if (count <= min) {
            break;
        }
        if (ctx->fastPaths != 0) {
            // Once the budget is gone every run fails at once; and a run that
            // failed without spending will fail the same way at this place.
            if (ctx->budget < 0) {
                break;
            }
            if (Items::MayBeEmpty && items.lastSize(p, offset) == 0 && ctx->budget == budgetBefore) {
                break;
            }
        }
        int32_t size = items.lastSize(p, offset);
        offset -= size;
        ctx->captures[0].length -= size;
        --count;
    }
    ctx->captures[0].length -= offset;
    return 1;
}

// The lazy loop: take min items, then run the continuation before each
// further item, up to max items. With `look` (0..255) the continuation runs
// only where the byte at the place equals it, and not at the subject's end.
template <class Items>
int32_t lazyRepeat(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max,
                   int32_t next, int32_t look, Items& items) {
    int32_t offset = 0;
    int32_t count = 0;
    items.scan(p, remaining, offset, count, min);
    if (count < min) {
        return 1;
    }
    ctx->captures[0].length += offset;
    const Continuation c = makeContinuation(ctx, next);
    for (;;) {
        bool run = look < 0 || (offset < remaining && p[offset] == look);
        if (run) {
            int32_t budgetBefore = ctx->budget;
            if (runContinuation(c, p + offset, remaining - offset, ctx) == 0) {
                return 0;
            }
            // Items of zero bytes leave the place where it is, so every later
            // pass repeats this run: it fails again, spending the same. Stop
            // once it spends nothing or the budget is gone.
            if (Items::MayBeEmpty && items.emptyItems() &&
                (ctx->budget < 0 || ctx->budget == budgetBefore)) {
                break;
            }
        } else if (Items::MayBeEmpty && items.emptyItems()) {
            break;   // the look will rule out every pass at this place
        }
        if (count >= max) {
            break;
        }
        if (ctx->fastPaths != 0 && ctx->budget < 0) {
            break;
        }
        int32_t size = items.take(p, offset, remaining);
        if (size < 0) {
            break;
        }
        offset += size;
        ctx->captures[0].length += size;
        ++count;
    }
    ctx->captures[0].length -= offset;
    return 1;
}

// The look of the lazy matchers that have one: the next node lies in the
// range, is a NodeChar, and case is not ignored. -1: no look.
inline int32_t lookByte(const MatchContext* ctx, int32_t next) {
    if (next < ctx->endNode && ctx->nodes[next].kind == NodeChar && (ctx->flags & OptionIgnoreCase) == 0) {
        return ctx->nodes[next].word1 & 0xFF;
    }
    return -1;
}

// Shared tail of the UTF-8 item policies: step back by one byte while every
// item was one byte, else find the last item's length at once.
struct Utf8Steps {
    const MatchContext* ctx;
    bool unit = true;

    bool unitSteps() const { return unit; }
    int32_t lastSize(const uint8_t* p, int32_t offset) const {
        return unit ? 1 : lastUtf8ItemSize(p, offset, ctx);
    }
    static constexpr bool MayBeEmpty = false;
    bool emptyItems() const { return false; }
};

}  // namespace zevch_match
