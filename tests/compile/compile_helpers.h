// tests/compile/compile_helpers.h - compiling into an exact-size heap block,
// so that AddressSanitizer sees any write past the size the library gives.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "regexp/compile/dump.h"
#include "regexp/regexp_record.h"

struct Compiled {
    std::unique_ptr<uint8_t[]> block;
    int32_t   size = 0;
    zevStatus status = zevStatusOk;
    int32_t   errOffset = -12345;  // untouched unless the compiler writes it

    RegExpState* state() const { return reinterpret_cast<RegExpState*>(block.get()); }
    const RegExpNode& node(int32_t i) const {
        return reinterpret_cast<const RegExpNode*>(block.get() + offsetof(RegExpState, nodes))[i];
    }
    std::string dump() const {
        int32_t n = ownRegExpDump(state(), nullptr, 0);
        std::string text(static_cast<size_t>(n) + 1, '\0');
        ownRegExpDump(state(), text.data(), n + 1);
        text.resize(static_cast<size_t>(n));
        return text;
    }
    // The node lines alone, without the header line.
    std::string nodes() const {
        std::string text = dump();
        return text.substr(text.find('\n') + 1);
    }
};

// The block is filled with 0xA5 first: the compiler does not clear it, and
// nothing it leaves unwritten may matter.
inline Compiled compilePattern(const char* pattern, const char* options = nullptr) {
    Compiled c;
    zevsRegExpGetSize(pattern, &c.size);
    c.block.reset(new uint8_t[static_cast<size_t>(c.size)]);
    std::memset(c.block.get(), 0xA5, static_cast<size_t>(c.size));
    c.status = zevsRegExpInit(pattern, options, c.state(), &c.errOffset);
    return c;
}
