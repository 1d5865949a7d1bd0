// regexp/compile/dump.cpp - a printable form of a compiled record.
//
// Tested by tests/compile/golden_test.cpp, which pins the compiler with
// {pattern, options, expected dump} cases in golden.txt.
#include "regexp/compile/dump.h"

#include <cstdarg>
#include <cstdio>

namespace {

// NOTE: indexed by kind - NodeKindFirst; keep in step with the NodeKind enum.
constexpr const char* KindNames[] = {
    "NodeChar",       "NodeString",      "NodeBackRef",      "NodeClass",       "NodeCharType",
    "NodeAssert",     "NodeAlternate",   "NodeRange",        "NodeRepeatLazy",  "NodeRepeat",
    "NodeLookbehind", "NodeNegLookbehind", "NodeLookahead",  "NodeNegLookahead", "NodeOptionGroup",
    "NodeConditional", "NodeCapture",    "NodeGroup",        "NodeAtomic",      "NodeClose",
    "NodeSetOptions", "NodeAnyByte",     "NodeWideChar",     "NodeProperty",    "NodeBlock",
    "NodeScript",     "NodeGrapheme",
};
static_assert(sizeof(KindNames) / sizeof(KindNames[0]) == NodeKindCount, "one name per node kind");

// Appends to a caller's buffer like snprintf, counting what did not fit.
struct Writer {
    char*   out;
    int32_t capacity;
    int32_t length;

    void put(const char* format, ...) __attribute__((format(printf, 2, 3))) {
        char piece[160];
        va_list args;
        va_start(args, format);
        int n = std::vsnprintf(piece, sizeof piece, format, args);
        va_end(args);
        if (n < 0) return;
        if (n >= static_cast<int>(sizeof piece)) n = sizeof piece - 1;
        for (int i = 0; i < n; ++i) {
            if (out != nullptr && length < capacity - 1) out[length] = piece[i];
            ++length;
        }
    }

    void options(uint32_t bits) {
        static constexpr struct { uint32_t bit; char letter; } letters[] = {
            {OptionDotAll, 's'}, {OptionMultiLine, 'm'}, {OptionIgnoreCase, 'i'},
            {OptionExtended, 'x'}, {OptionGlobal, 'g'}};
        bool any = false;
        for (const auto& l : letters) {
            if (bits & l.bit) {
                put("%c", l.letter);
                any = true;
            }
        }
        uint32_t known = OptionDotAll | OptionMultiLine | OptionIgnoreCase | OptionExtended | OptionGlobal;
        if (bits & ~known) {
            put("+0x%X", bits & ~known);
            any = true;
        }
        if (!any) put("-");
    }

    void character(int32_t value) {
        if (value > 0x20 && value < 0x7F) put("'%c'", static_cast<char>(value));
        else if (value >= 0) put("0x%02X", static_cast<unsigned>(value));
        else put("%d", value);
    }

    void count(int32_t value) {
        if (value == RepeatUnbounded) put("inf");
        else put("%d", value);
    }

    void invert(int32_t mark) {
        if (mark != 0) put(mark == -1 ? " inv" : " inv=%d", mark);
    }
};

void dumpNode(Writer& w, const RegExpState* state, const RegExpNode& n, int32_t index, bool inClass) {
    bool trailing = index == state->trailingLiteral;
    switch (n.kind) {
    case NodeChar:
        w.put(" ");
        w.character(n.word1);
        if (inClass) w.invert(n.word3);
        if (trailing) w.put(" opts="), w.options(static_cast<uint32_t>(n.word3));
        break;
    case NodeString: {
        w.put(" len=%d \"", n.word2);
        const uint8_t* bytes = ownNodeStringBytes(state, n);
        for (int32_t i = 0; i < n.word2; ++i) {
            uint8_t b = bytes[i];
            if (b == '"' || b == '\\') w.put("\\%c", b);
            else if (b >= 0x20 && b < 0x7F) w.put("%c", b);
            else w.put("\\x%02X", b);
        }
        w.put("\"");
        if (trailing) w.put(" opts="), w.options(static_cast<uint32_t>(n.word3));
        break;
    }
    case NodeBackRef:
        w.put(" ref=%d", n.word1);
        break;
    case NodeClass:
        w.put(" %s items=%d", n.word1 == 0 ? "pos" : "neg", n.word2);
        break;
    case NodeCharType:
        if (n.word1 == '.') w.put(" .");
        else w.put(" \\%c", static_cast<char>(n.word1));
        if (inClass) w.invert(n.word3);
        break;
    case NodeAssert:
        if (n.word1 == AssertLineStartAnchor) w.put(" line-start");
        else if (n.word1 == '^' || n.word1 == '$') w.put(" %c", static_cast<char>(n.word1));
        else w.put(" \\%c", static_cast<char>(n.word1));
        break;
    case NodeAlternate:
        w.put(" id=%d opts=", n.word1);
        w.options(static_cast<uint32_t>(n.word2));
        break;
    case NodeRange:
        w.put(" ");
        w.character(n.word1);
        w.put("-");
        w.character(n.word2);
        w.invert(n.word3);
        break;
    case NodeRepeatLazy:
    case NodeRepeat:
        w.put(" min=");
        w.count(n.word1);
        w.put(" max=");
        w.count(n.word2);
        break;
    case NodeLookbehind:
    case NodeNegLookbehind:
        w.put(" id=%d span=%d width=%d", n.word1, n.word2, n.word3);
        break;
    case NodeOptionGroup:
        w.put(" id=%d span=%d opts=", n.word1, n.word2);
        w.options(static_cast<uint32_t>(n.word3));
        break;
    case NodeCapture:
        w.put(" id=%d span=%d capture=%d", n.word1, n.word2, n.word3);
        break;
    case NodeLookahead:
    case NodeNegLookahead:
    case NodeConditional:
    case NodeGroup:
    case NodeAtomic:
        w.put(" id=%d span=%d", n.word1, n.word2);
        break;
    case NodeClose:
        w.put(" id=%d opts=", n.word1);
        w.options(static_cast<uint32_t>(n.word2));
        w.put(" mark=%d", n.word3);
        break;
    case NodeSetOptions:
        w.put(" opts=");
        w.options(static_cast<uint32_t>(n.word1));
        break;
    case NodeWideChar:
        w.put(" U+%04X", static_cast<uint32_t>(n.word1));
        break;
    case NodeProperty:
        w.put(" mask=0x%X", static_cast<uint32_t>(n.word1));
        w.invert(n.word2);
        break;
    case NodeBlock:
        w.put(" U+%04X-U+%04X", static_cast<uint32_t>(n.word1), static_cast<uint32_t>(n.word2));
        w.invert(n.word3);
        break;
    case NodeScript:
        w.put(" ranges=%d first=%u", n.word3, n.word4);
        w.invert(n.word2);
        break;
    case NodeAnyByte:
    case NodeGrapheme:
        break;
    default:
        w.put(" %d %d %d %u", n.word1, n.word2, n.word3, n.word4);
        break;
    }
}

}  // namespace

const char* ownRegExpKindName(uint32_t kind) {
    uint32_t index = kind - NodeKindFirst;
    return index < NodeKindCount ? KindNames[index] : "?";
}

int32_t ownRegExpDump(const RegExpState* state, char* out, int32_t capacity) {
    Writer w{out, capacity, 0};
    w.put("nodeCount=%d captureCount=%d trailingLiteral=%d options=", state->nodeCount,
          state->captureCount, state->trailingLiteral);
    w.options(state->options);
    w.put(" matchLimit=%d format=%d\n", state->matchLimit, state->format);

    const RegExpNode* nodes = reinterpret_cast<const RegExpNode*>(
        reinterpret_cast<const uint8_t*>(state) + offsetof(RegExpState, nodes));
    int32_t classEnd = -1;
    for (int32_t i = 0; i < state->nodeCount; ++i) {
        const RegExpNode& n = nodes[i];
        bool inClass = i <= classEnd;
        w.put(inClass ? "%d   %s" : "%d %s", i, ownRegExpKindName(n.kind));
        dumpNode(w, state, n, i, inClass);
        w.put("\n");
        if (n.kind == NodeClass) classEnd = i + n.word2;
    }
    if (out != nullptr && capacity > 0) out[w.length < capacity ? w.length : capacity - 1] = 0;
    return w.length;
}
