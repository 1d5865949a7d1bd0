// regexp/match/classes.cpp - bracket classes: the class check and the greedy
// and lazy class repeats (a class without a quantifier is the greedy repeat
// with a minimum and maximum of 1).
//
// A class is a NodeClass head (word1 0 or -1 for negated, word2 the number of
// items) followed by its items. The character at the place gives three
// things, worked out once: its first byte, its size by ownUtf8Length, and its
// code (0 for a malformed sequence). Each item gives a signed result, negative
// for no; the first four kinds are XORed with their invert mark in word3.
// The results are ANDed until one is not negative, and the head's word1
// inverts the whole.
//
// The greedy repeat is a loop over the items taken, not a recursion per
// item: it tries the same lengths in the same order (longest first) and runs
// the same continuations. Unlike the other repeats, a class goes on taking
// characters while remaining is not 0, also where a multi-byte character has
// overrun the search area.
//
// Tested by tests/match/class_test.cpp.

#include "regexp/match/char_predicates.h"
#include "regexp/match/repeat_loops.h"
#include "regexp/unicode/utf8_inline.h"

using namespace zevch_match;

namespace {

inline bool isAsciiLetter(uint32_t c) {
    return (c >= 0x41 && c <= 0x5A) || (c >= 0x61 && c <= 0x7A);
}

inline int32_t yesNo(bool yes) {
    return yes ? 0 : -1;
}

int32_t rangeResult(const RegExpNode& item, uint32_t first, int32_t size, int32_t code, bool ignoreCase) {
    int32_t low = item.word1;
    int32_t high = item.word2;
    if (low < 256 && high <= 255 && size == 1) {
        // Byte form: the first byte, and under case folding the other case
        // of an ASCII letter.
        int32_t c = static_cast<int32_t>(first);
        bool inside = c >= low && c <= high;
        if (!inside && ignoreCase && isAsciiLetter(first)) {
            int32_t other = c ^ 0x20;
            inside = other >= low && other <= high;
        }
        return yesNo(inside);
    }
    if (ignoreCase) {
        low = ownFoldCaseInline(low);
        high = ownFoldCaseInline(high);
        code = ownFoldCaseInline(code);
    }
    return yesNo(code >= low && code <= high);
}

// +1 when the character belongs to the class at `head`, -1 when not. flags
// are read here, at each check.
int32_t classAnswer(const MatchContext* ctx, int32_t head, uint32_t first, int32_t size, int32_t code) {
    const RegExpNode* nodes = ctx->nodes;
    const int32_t items = nodes[head].word2;
    const uint32_t flags = ctx->flags;
    const bool ignoreCase = (flags & OptionIgnoreCase) != 0;
    int32_t acc = -1;
    for (int32_t i = 1; i <= items && acc < 0; ++i) {
        const RegExpNode& item = nodes[head + i];
        int32_t result;
        switch (item.kind) {
            case NodeChar: {
                uint8_t literal = static_cast<uint8_t>(item.word1);
                result = ignoreCase ? yesNo(ownEqualIgnoreAsciiCase(static_cast<uint8_t>(first), literal))
                                    : -static_cast<int32_t>(first ^ literal);
                result ^= item.word3;
                break;
            }
            case NodeCharType:
                result = testByteOf(selectPredicate(static_cast<uint32_t>(item.word1) & 0xFF, flags & OptionDotAll),
                                    first) ^ item.word3;
                break;
            case NodeRange:
                result = rangeResult(item, first, size, code, ignoreCase) ^ item.word3;
                break;
            case NodeWideChar:
                result = ignoreCase ? yesNo(ownFoldCaseInline(code) == ownFoldCaseInline(item.word1))
                                    : yesNo(code == item.word1);
                result ^= item.word3;
                break;
            default:
                result = checkCodeItem(item, code);   // property, block, script; -1 for any other
                break;
        }
        acc &= result;
    }
    return (acc ^ nodes[head].word1) < 0 ? -1 : 1;
}

// The ASCII members of a class, as 128 bits. For a single-byte character
// every item but the property kinds, NodeRange in code form and a folded
// NodeWideChar reduces to such a set, and the class to their union: a class
// of those items is then checked per ASCII byte by one bit test.
struct AsciiSet {
    uint64_t bits[2];

    bool has(uint32_t c) const { return ((bits[c >> 6] >> (c & 63)) & 1) != 0; }
    void add(uint32_t c) {
        if (c < 0x80) {
            bits[c >> 6] |= 1ull << (c & 63);
        }
    }
    void unite(const AsciiSet& o) {
        bits[0] |= o.bits[0];
        bits[1] |= o.bits[1];
    }
    void invertIf(bool invert) {
        if (invert) {
            bits[0] = ~bits[0];
            bits[1] = ~bits[1];
        }
    }
};

constexpr AsciiSet predicateSet(PredicateKind kind) {
    AsciiSet set{{0, 0}};
    for (uint32_t c = 0; c < 0x80; ++c) {
        if (testByteOf(kind, c) >= 0) {
            set.bits[c >> 6] |= 1ull << (c & 63);
        }
    }
    return set;
}

constexpr AsciiSet PredicateSets[] = {
    predicateSet(PredicateDigit),      predicateSet(PredicateNotDigit), predicateSet(PredicateWord),
    predicateSet(PredicateNotWord),    predicateSet(PredicateSpace),    predicateSet(PredicateNotSpace),
    predicateSet(PredicateNotNewline), predicateSet(PredicateAny),      predicateSet(PredicateNone),
};
static_assert(sizeof PredicateSets / sizeof *PredicateSets == PredicateNone + 1, "one set per predicate");

// Bytes low..high of 0..127.
AsciiSet rangeSet(int32_t low, int32_t high) {
    AsciiSet set{{0, 0}};
    for (int32_t half = 0; half < 2; ++half) {
        int32_t from = std::max(low, half * 64);
        int32_t to = std::min(high, half * 64 + 63);
        if (from <= to) {
            int32_t width = to - from + 1;
            uint64_t run = width == 64 ? ~0ull : ((1ull << width) - 1);
            set.bits[half] = run << (from - half * 64);
        }
    }
    return set;
}

// The set of the class at `head` under `flags`, or false when an item needs
// the per-character check.
bool buildAsciiSet(const MatchContext* ctx, int32_t head, uint32_t flags, AsciiSet& out) {
    const RegExpNode* nodes = ctx->nodes;
    const bool ignoreCase = (flags & OptionIgnoreCase) != 0;
    AsciiSet all{{0, 0}};
    for (int32_t i = 1; i <= nodes[head].word2; ++i) {
        const RegExpNode& item = nodes[head + i];
        AsciiSet set{{0, 0}};
        switch (item.kind) {
            case NodeChar: {
                uint8_t literal = static_cast<uint8_t>(item.word1);
                set.add(literal);
                if (ignoreCase) {
                    set.add(otherCaseByte(literal));
                }
                break;
            }
            case NodeCharType:
                set = PredicateSets[selectPredicate(static_cast<uint32_t>(item.word1) & 0xFF, flags & OptionDotAll)];
                break;
            case NodeRange: {
                if (item.word1 >= 256 || item.word2 > 255) {
                    return false;
                }
                set = rangeSet(item.word1, item.word2);
                if (ignoreCase) {
                    // A letter whose other case is in the range: bits 0x41..0x5A
                    // and 0x61..0x7A both lie in the upper word, 32 apart.
                    constexpr uint64_t upper = 0x07FFFFFEull;          // 0x41..0x5A
                    constexpr uint64_t lower = 0x07FFFFFEull << 32;    // 0x61..0x7A
                    uint64_t h = set.bits[1];
                    set.bits[1] = h | ((h & lower) >> 32) | ((h & upper) << 32);
                }
                break;
            }
            case NodeWideChar:
                if (ignoreCase) {
                    return false;
                }
                if (item.word1 >= 0) {
                    set.add(static_cast<uint32_t>(item.word1));
                }
                break;
            default:
                return false;
        }
        // The first four kinds carry an invert mark; its sign flips the item.
        set.invertIf(item.word3 < 0);
        all.unite(set);
    }
    all.invertIf(nodes[head].word1 < 0);
    out = all;
    return true;
}

struct CharAt {
    uint32_t first;
    int32_t size;
    int32_t code;
};

inline CharAt readChar(const uint8_t* q, int32_t left) {
    CharAt c{q[0], 1, static_cast<int32_t>(q[0])};
    if (c.first >= 0x80) {
        int32_t length = ownDecodeUtf8(q, left, &c.code);
        if (length > 0) {
            c.size = length;
        } else {
            c.code = 0;
        }
    }
    return c;
}

// The set of the class at `head` under `flags`, from the search's cache or
// built and remembered there. false when an item needs the per-character
// check. The set depends on the nodes and the flags alone, so one build
// serves every attempt of the search.
bool cachedAsciiSet(MatchContext* ctx, int32_t head, uint32_t flags, AsciiSet& out) {
    ClassSetEntry& e = ctx->classSets[static_cast<uint32_t>(head) % ClassSetSlots];
    if (e.head1 == head + 1 && e.flags == flags) {
        out = AsciiSet{{e.bits[0], e.bits[1]}};
        return e.reducible != 0;
    }
    const bool reducible = buildAsciiSet(ctx, head, flags, out);
    e = ClassSetEntry{head + 1, flags, reducible ? 1 : 0,
                      {reducible ? out.bits[0] : 0, reducible ? out.bits[1] : 0}};
    return reducible;
}

struct ClassItems : Utf8Steps {
    MatchContext* context;
    int32_t head;
    bool single;         // plain walk, at most one character: the per-item check is cheaper
    uint32_t setFlags;   // the flags the set or the memo was made for
    bool useSet;
    AsciiSet set;
    AsciiMemo memo;

    ClassItems(MatchContext* matchContext, int32_t classHead, int32_t max)
        : Utf8Steps{matchContext}, context(matchContext), head(classHead),
          single(max <= 1 && matchContext->fastPaths == 0) {
        prepare(matchContext->flags);
    }

    void prepare(uint32_t flags) {
        setFlags = flags;
        if (single) {
            useSet = false;
        } else if (context->fastPaths != 0) {
            useSet = cachedAsciiSet(context, head, flags, set);
        } else {
            useSet = buildAsciiSet(context, head, flags, set);   // the reference: built per call
        }
        memo = AsciiMemo{};
    }

    bool asciiAnswer(uint32_t b) {
        if (single) {
            return classAnswer(ctx, head, b, 1, static_cast<int32_t>(b)) > 0;
        }
        if (ctx->flags != setFlags) {
            prepare(ctx->flags);   // a lazy repeat's continuation changed them
        }
        if (useSet) {
            return set.has(b);
        }
        auto check = [this](int32_t c) { return classAnswer(ctx, head, c, 1, c) > 0; };
        return memo.answer(static_cast<int32_t>(b), check);
    }

    int32_t take(const uint8_t* p, int32_t offset, int32_t remaining) {
        if (offset == remaining) {
            return -1;
        }
        const uint8_t* q = p + offset;
        int32_t left = ownBytesToEnd(ctx, q);
        if (left <= 0) {
            return -1;   // the subject's true end: nothing to read
        }
        if (q[0] < 0x80) {
            // An ASCII byte's answer depends on the byte and the flags only.
            return asciiAnswer(q[0]) ? 1 : -1;
        }
        CharAt c = readChar(q, left);
        if (classAnswer(ctx, head, c.first, c.size, c.code) < 0) {
            return -1;
        }
        unit = unit && c.size == 1;
        return c.size;
    }
    // take() item by item, with the runs of ASCII bytes judged by the set in
    // a tight loop: the same items in the same order. No continuation runs
    // during a scan, so the flags stay those the set was made for.
    void scan(const uint8_t* p, int32_t remaining, int32_t& offset, int32_t& count, int32_t limit) {
        if (context->fastPaths == 0 || single || !useSet || context->flags != setFlags) {
            scanByTaking(*this, p, remaining, offset, count, limit);
            return;
        }
        const int32_t toEnd = ownBytesToEnd(ctx, p);
        while (count < limit) {
            int32_t o = offset;
            int32_t n = count;
            while (n < limit && o != remaining && o < toEnd && p[o] < 0x80 && set.has(p[o])) {
                ++o;
                ++n;
            }
            offset = o;
            count = n;
            if (n >= limit || o == remaining || o >= toEnd || p[o] < 0x80) {
                return;
            }
            const int32_t size = take(p, offset, remaining);   // a byte from 0x80 up
            if (size < 0) {
                return;
            }
            offset += size;
            ++count;
        }
    }
};

}  // namespace

int32_t ownCheckClass(const uint8_t* p, int32_t left, MatchContext* ctx, int32_t head) {
    if (left <= 0) {
        return -1;
    }
    AsciiSet set;
    if (ctx->fastPaths != 0 && p[0] < 0x80 && cachedAsciiSet(ctx, head, ctx->flags, set)) {
        return set.has(p[0]) ? 1 : -1;
    }
    CharAt c = readChar(p, left);
    return classAnswer(ctx, head, c.first, c.size, c.code);
}

namespace {

// A class that takes at most one character (no quantifier, ?, {1}, {0,1}):
// the greedy loop reduced to its one or two lengths. The character is taken
// as ClassItems::take would take it; the continuation runs behind it, and
// with a minimum of 0 then at the place itself, as greedyRepeat would run
// them, shortcut included (runContinuation charges what skipToLiteral
// charges for one place: a unit where the literal fails).
int32_t classOptionalOne(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t head, int32_t next,
                         int32_t min) {
    int32_t size = -1;
    const int32_t left = ownBytesToEnd(ctx, p);
    if (remaining != 0 && left > 0) {
        AsciiSet set;
        if (p[0] < 0x80 && cachedAsciiSet(ctx, head, ctx->flags, set)) {
            size = set.has(p[0]) ? 1 : -1;
        } else {
            const CharAt c = readChar(p, left);
            size = classAnswer(ctx, head, c.first, c.size, c.code) < 0 ? -1 : c.size;
        }
    }
    if (size < 0 && min >= 1) {
        return 1;
    }
    const Continuation c = makeContinuation(ctx, next);
    if (size > 0) {
        ctx->captures[0].length += size;
        if (runContinuation(c, p + size, remaining - size, ctx) == 0) {
            return 0;
        }
        ctx->captures[0].length -= size;
        if (min >= 1 || ctx->budget < 0) {
            return 1;
        }
    }
    return runContinuation(c, p, remaining, ctx);
}

}  // namespace

// Greedy: the continuation is the node behind the items, or behind the
// NodeRepeat that follows them.
int32_t ownRepeatClass(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max) {
    const int32_t head = ctx->currentNode;
    int32_t next = head + ctx->nodes[head].word2 + 1;
    if (next < ctx->endNode && ctx->nodes[next].kind == NodeRepeat) {
        ++next;
    }
    if (max == 1 && (min == 0 || min == 1) && ctx->fastPaths != 0) {
        return classOptionalOne(p, remaining, ctx, head, next, min);
    }
    ClassItems items(ctx, head, max);
    return greedyRepeat(p, remaining, ctx, min, max, next, items);
}

// Lazy: the NodeRepeatLazy always stands behind the items.
int32_t ownRepeatClassLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx, int32_t min, int32_t max) {
    const int32_t head = ctx->currentNode;
    const int32_t next = head + ctx->nodes[head].word2 + 2;
    ClassItems items(ctx, head, max);
    return lazyRepeat(p, remaining, ctx, min, max, next, -1, items);
}
