// regexp/unicode/property_parser.cpp - the parser of \p and \P escapes.
//
// The compiler calls ownRegExpParseProperty with its cursor on the `p` or
// `P`, inside a bracket class or outside one. One node comes out:
//   NodeProperty  word1 category mask, word2 negate
//   NodeBlock     word1 low, word2 high, word3 negate   (a block, or Any)
//   NodeScript    word1 1, word2 negate, word3 number of range pairs,
//                 word4 index of the first pair in ScriptRangeTable
// Words not listed are left as they were.
//
// Names are matched in a fixed order that decides what a name means: a
// category by its first bytes (so "Nonsense" fails at the "n" behind "No"),
// then for a name starting with "I" the first block whose name starts with it
// (so "InLatin" is InLatin1Supplement), and last a script by its full name.
//
// Tested by tests/unicode/property_parser_test.cpp.

#include "regexp/regexp_record.h"
#include "regexp/unicode/unicode_tables.h"

#include <cstring>

namespace {

struct CategoryName {
    char     first;
    char     second;   // '}' for the one-letter name
    uint32_t mask;
};

// Every category name, two-letter names and the one-letter group names
// (written with the closing brace as their second byte).
constexpr CategoryName CategoryNames[] = {
    {'C', 'c', 0x2001}, {'C', 'f', 0x2002}, {'C', 'n', 0x2010}, {'C', 's', 0x2008},
    {'C', 'o', 0x2004}, {'C', '}', 0x2000},
    {'L', 'l', 0x81}, {'L', 'u', 0x82}, {'L', 't', 0x84}, {'L', 'm', 0x88},
    {'L', 'o', 0x90}, {'L', '&', 0x87}, {'L', '}', 0x80},
    {'M', 'n', 0x101}, {'M', 'c', 0x102}, {'M', 'e', 0x104}, {'M', '}', 0x100},
    {'N', 'd', 0x801}, {'N', 'l', 0x802}, {'N', 'o', 0x804}, {'N', '}', 0x800},
    {'P', 'd', 0x1001}, {'P', 's', 0x1002}, {'P', 'e', 0x1004}, {'P', 'i', 0x1008},
    {'P', 'f', 0x1010}, {'P', 'c', 0x1020}, {'P', 'o', 0x1040}, {'P', '}', 0x1000},
    {'S', 'm', 0x401}, {'S', 'c', 0x402}, {'S', 'k', 0x404}, {'S', 'o', 0x408},
    {'S', '}', 0x400},
    {'Z', 's', 0x201}, {'Z', 'l', 0x202}, {'Z', 'p', 0x204}, {'Z', '}', 0x200},
};

// Mask of the one-letter group form (\pL), or 0 for any other byte.
uint32_t groupMask(char letter) {
    switch (letter) {
    case 'C': return 0x2000;
    case 'L': return 0x80;
    case 'M': return 0x100;
    case 'N': return 0x800;
    case 'P': return 0x1000;
    case 'S': return 0x400;
    case 'Z': return 0x200;
    default:  return 0;
    }
}

void appendProperty(RegExpNode* nodes, int32_t* nodeCount, uint32_t mask, int32_t negate) {
    RegExpNode& node = nodes[(*nodeCount)++];
    node.kind = NodeProperty;
    node.word1 = static_cast<int32_t>(mask);
    node.word2 = negate;
}

void appendBlock(RegExpNode* nodes, int32_t* nodeCount, int32_t low, int32_t high,
                 int32_t negate) {
    RegExpNode& node = nodes[(*nodeCount)++];
    node.kind = NodeBlock;
    node.word1 = low;
    node.word2 = high;
    node.word3 = negate;
}

// The first `}` at or behind `name`, or null when the pattern ends first.
const char* findClosingBrace(const char* name) {
    for (const char* p = name;; ++p) {
        if (*p == '}') {
            return p;
        }
        if (*p == '\0') {
            return nullptr;
        }
    }
}

// A category name at `name`: its mask, and in *end the byte behind a
// two-letter name or the brace of a one-letter name. "Co" counts only with
// the brace behind it, so that Common and Coptic reach the scripts.
uint32_t matchCategory(const char* name, const char** end) {
    for (const CategoryName& entry : CategoryNames) {
        if (name[0] != entry.first || name[1] != entry.second) {
            continue;
        }
        if (entry.second == '}') {
            *end = name + 1;
            return entry.mask;
        }
        if (entry.mask == 0x2004 && name[2] != '}') {
            return 0;
        }
        *end = name + 2;
        return entry.mask;
    }
    return 0;
}

// Block search: the first row whose name starts with the whole of the given
// name. Result: the row, or null (also when the name is not closed).
const BlockRow* matchBlock(const char* name, const char** brace) {
    const char* close = findClosingBrace(name);
    if (close == nullptr) {
        return nullptr;
    }
    size_t length = static_cast<size_t>(close - name);
    for (const BlockRow& row : BlockTable) {
        if (std::strncmp(row.name, name, length) == 0) {
            *brace = close;
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

int32_t ownRegExpParseScript(const char** cursor, RegExpNode* nodes, int32_t* nodeCount,
                             int32_t negate) {
    const char* name = *cursor;
    const char* close = findClosingBrace(name);
    if (close == nullptr) {
        return -1;
    }
    size_t length = static_cast<size_t>(close - name);
    for (const ScriptRow& row : ScriptTable) {
        if (std::strncmp(row.name, name, length) == 0 && row.name[length] == '\0') {
            RegExpNode& node = nodes[(*nodeCount)++];
            node.kind = NodeScript;
            node.word1 = 1;
            node.word2 = negate;
            node.word3 = row.count;
            node.word4 = row.firstPair;
            *cursor = close;
            return 0;
        }
    }
    return -1;
}

int32_t ownRegExpParseProperty(const char** cursor, RegExpNode* nodes, int32_t* nodeCount,
                               int32_t negate) {
    const char* p = *cursor + 1;   // the byte behind the `p`

    // \pL: a one-letter group with no braces. Nothing longer is read, so
    // \pLu is the letters followed by a literal "u".
    if (uint32_t mask = groupMask(*p)) {
        appendProperty(nodes, nodeCount, mask, negate);
        *cursor = p + 1;
        return 0;
    }
    if (*p != '{') {
        *cursor = p;
        return -1;
    }
    ++p;
    if (*p == '^') {
        // \p{^X} is \P{X}; \P{^X} is refused rather than read as \p{X}.
        if (negate != 0) {
            *cursor = p;
            return -1;
        }
        ++p;
        negate = -1;
    }

    const char* name = p;
    const char* end = nullptr;   // where the closing brace must stand
    if (name[0] == 'A' && name[1] == 'n' && name[2] == 'y') {
        appendBlock(nodes, nodeCount, 0, 0x10FFFF, negate);
        end = name + 3;
    } else if (uint32_t mask = matchCategory(name, &end)) {
        appendProperty(nodes, nodeCount, mask, negate);
    } else if (name[0] == 'I') {
        if (const BlockRow* row = matchBlock(name, &end)) {
            appendBlock(nodes, nodeCount, row->low, row->high, negate);
        }
    }
    if (end == nullptr) {
        const char* script = name;
        if (ownRegExpParseScript(&script, nodes, nodeCount, negate) != 0) {
            *cursor = name;
            return -1;
        }
        end = script;
    }

    if (*end != '}') {
        *cursor = end;
        return -1;
    }
    *cursor = end + 1;
    return 0;
}
