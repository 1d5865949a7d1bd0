// regexp/match/repeat_items.cpp - repeats of the items judged by code point:
// NodeWideChar, NodeProperty, NodeBlock and NodeScript. The item is one UTF-8
// character; a malformed sequence is one byte whose code is the byte's value.
// OptionIgnoreCase folds NodeWideChar only.
//
// One greedy matcher serves all four kinds; on the lazy side NodeWideChar
// has the look at a following NodeChar, the other three do not.
//
// Tested by tests/match/repeat_items_test.cpp.

#include "regexp/match/repeat_loops.h"
#include "regexp/unicode/utf8_inline.h"

using namespace zevch_match;

namespace {

struct WideCharCheck {
    int32_t code;
    bool operator()(int32_t c) const { return c == code; }
};

struct FoldedWideCharCheck {
    int32_t folded;   // ownFoldCase of the node's code, worked out once
    bool operator()(int32_t c) const { return ownFoldCaseInline(c) == folded; }
};

// NodeProperty, NodeBlock, NodeScript: the node's own check.
struct NodeCheck {
    const RegExpNode* item;
    bool operator()(int32_t c) const { return checkCodeItem(*item, c) > 0; }
};

template <class Check, bool Memo>
struct CodeItems : Utf8Steps {
    Check check;
    AsciiMemo memo;

    int32_t take(const uint8_t* p, int32_t offset, int32_t remaining) {
        if (offset >= remaining) {
            return -1;
        }
        const uint8_t* q = p + offset;
        int32_t code = *q;
        int32_t size = 1;
        if (code >= 0x80) {
            int32_t length = ownDecodeUtf8(q, ownBytesToEnd(ctx, q), &code);
            if (length > 0) {
                size = length;
            } else {
                code = *q;
            }
        }
        bool accepted = Memo ? memo.answer(code, check) : check(code);
        if (!accepted) {
            return -1;
        }
        unit = unit && size == 1;
        return size;
    }
    void scan(const uint8_t* p, int32_t remaining, int32_t& offset, int32_t& count, int32_t limit) {
        scanByTaking(*this, p, remaining, offset, count, limit);
    }
};

template <class Check, bool Memo>
int32_t repeatWith(const uint8_t* p, int32_t remaining, MatchContext* ctx, const Check& check, int32_t look,
                   bool lazy) {
    RepeatBounds b = repeatBoundsOf(ctx);
    CodeItems<Check, Memo> items{{ctx}, check, {}};
    if (lazy) {
        return lazyRepeat(p, remaining, ctx, b.min, b.max, b.next, look, items);
    }
    return greedyRepeat(p, remaining, ctx, b.min, std::min(b.max, remaining), b.next, items);
}

// `lookAllowed`: the lazy NodeWideChar repeat looks at a following NodeChar.
int32_t repeatItem(const uint8_t* p, int32_t remaining, MatchContext* ctx, bool lazy, bool lookAllowed) {
    const RegExpNode& node = ctx->nodes[ctx->currentNode];
    int32_t look = lazy && lookAllowed ? lookByte(ctx, ctx->currentNode + 2) : -1;
    switch (node.kind) {
        case NodeWideChar:
            if ((ctx->flags & OptionIgnoreCase) != 0) {
                return repeatWith<FoldedWideCharCheck, false>(p, remaining, ctx,
                                                              FoldedWideCharCheck{ownFoldCase(node.word1)}, look, lazy);
            }
            return repeatWith<WideCharCheck, false>(p, remaining, ctx, WideCharCheck{node.word1}, look, lazy);
        case NodeProperty:
        case NodeBlock:
        case NodeScript:
            return repeatWith<NodeCheck, true>(p, remaining, ctx, NodeCheck{&node}, look, lazy);
        default:
            return 1;
    }
}

}  // namespace

int32_t ownRepeatItem(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    return repeatItem(p, remaining, ctx, false, false);
}

int32_t ownRepeatItemLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    return repeatItem(p, remaining, ctx, true, false);
}

int32_t ownRepeatWideCharLazy(const uint8_t* p, int32_t remaining, MatchContext* ctx) {
    return repeatItem(p, remaining, ctx, true, true);
}
