// regexp/compile/dump.h - a printable form of a compiled record.
//
// Used by the `zevch explain` command and by the compiler's golden tests.
#pragma once

#include <cstdint>

#include "regexp/regexp_record.h"

// Prints the header and one line per node of `state` into `out`, like
// snprintf: writes at most capacity - 1 characters and a terminator
// (nothing when capacity is below 1 or out is null) and returns the length
// of the whole text, so that a caller can size a second call.
//
// The first line holds the header fields; then each node as
//   <index> <kind name> <the words that matter for the kind>
// Characters print as 'a' when printable and as 0xHH otherwise; option bits
// as letters (s m i x g, "-" for none); RepeatUnbounded as "inf". Class items
// are indented under their NodeClass.
int32_t ownRegExpDump(const RegExpState* state, char* out, int32_t capacity);

// The name of a node kind ("NodeChar" ...), or "?" for a word that is none.
const char* ownRegExpKindName(uint32_t kind);
