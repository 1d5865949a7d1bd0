// regexp/replace/replace.cpp - template replacement on top of the search.
//
// Call order: zevsRegExpReplaceGetSize, a block of that size from the caller,
// zevsRegExpReplaceInit (parses the template once), then any number of
// zevsRegExpReplace_8u calls. The parsed record points into the caller's
// template text, which must stay alive and unchanged while it is used; the
// record holds no magic and is not validated.
//
// zevsRegExpReplace_8u searches the whole source first (all matches with the
// pattern's g option, else the first), then writes the source with each match
// replaced by the expanded template. Running out of output is not an error:
// the call returns zevStatusOk with *srcLen and *dstLen telling how far it got.
// Every piece (gap, template, tail) goes in only if at least one output byte
// stays free, so an output of exactly the result's length stops one piece
// short; only the no-match copy may fill the output completely.
//
// Tested by tests/replace/.
#include <climits>
#include <cstring>

#include "core/core.h"
#include "regexp/regexp_record.h"
#include "regexp/replace/replace_record.h"

namespace {

void storeBase(RegExpReplaceState* state, const char* base) {
    std::memcpy(reinterpret_cast<uint8_t*>(state) + 4, &base, sizeof(base));
}

void storeSegment(RegExpReplaceState* state, uint32_t index, uint32_t kind, int32_t value,
                  uint32_t offset) {
    const ReplaceSegment s{kind, value, offset};
    std::memcpy(reinterpret_cast<uint8_t*>(state) + ReplaceHeaderSize + 12u * index, &s, sizeof(s));
}

// The output side of one call: where the next byte goes and how much is left.
struct Output {
    uint8_t* out;
    int32_t  room;
};

// Bytes of an entry that lie inside the source. Only a case-folded \x{...}
// can make a match end behind the subject (it steps over the length of its
// own code's UTF-8 form); such a match is cut at the source's end, so that
// nothing behind the caller's text is ever read.
int32_t lengthInside(const uint8_t* start, int32_t length, const uint8_t* srcEnd) {
    const int32_t inside = static_cast<int32_t>(srcEnd - start);
    return length > inside ? inside : length;
}

// Writes the expanded template at out->out without moving it. Group entries
// are find[base + num] for num below `bound`; a group that took no part adds
// nothing. Returns the bytes written, or -1 when the template does not fit
// (room must stay at least 1 behind it); the bytes it put down then do not
// count.
int32_t expandTemplate(const RegExpReplaceState* rs, const RegExpFindEntry* find, int32_t base,
                       int32_t bound, const uint8_t* srcEnd, const Output& o) {
    const char* text = ownReplaceBase(rs);
    const uint32_t count = ownReplaceSegmentCount(rs);
    int32_t written = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const ReplaceSegment s = ownReplaceSegment(rs, i);
        const uint8_t* from;
        int32_t n;
        if (s.kind == SegmentLiteral) {
            from = reinterpret_cast<const uint8_t*>(text) + s.offset;
            n = s.value;
        } else {
            if (s.value >= bound) continue;
            const RegExpFindEntry& e = find[base + s.value];
            if (e.start == nullptr || e.length < 0) continue;
            from = e.start;
            n = lengthInside(e.start, e.length, srcEnd);
        }
        // written < room always holds here, so room - written cannot overflow.
        if (o.room - written <= n) return -1;
        ownCopy_8u(from, o.out + written, n);
        written += n;
    }
    return written;
}

// Copies n source bytes to the output if at least one byte stays free.
bool putPiece(const uint8_t* from, int32_t n, Output& o) {
    if (n >= o.room) return false;
    ownCopy_8u(from, o.out, n);
    o.out += n;
    o.room -= n;
    return true;
}

bool putTemplate(const RegExpReplaceState* rs, const RegExpFindEntry* find, int32_t base,
                 int32_t bound, const uint8_t* srcEnd, Output& o) {
    const int32_t written = expandTemplate(rs, find, base, bound, srcEnd, o);
    if (written < 0) return false;
    o.out += written;
    o.room -= written;
    return true;
}

zevStatus stop(int32_t srcOffset, int32_t* srcLen, int32_t dstCapacity, const Output& o,
               int32_t* dstLen) {
    *srcLen = srcOffset;
    *dstLen = dstCapacity - o.room;
    return zevStatusOk;
}

int32_t offsetOf(const uint8_t* p, const uint8_t* src) { return static_cast<int32_t>(p - src); }

}  // namespace

extern "C" zevStatus zevsRegExpReplaceGetSize(const char* replaceTemplate, int32_t* size) {
    if (size == nullptr) return zevStatusNullPointer;
    const size_t len = replaceTemplate != nullptr ? std::strlen(replaceTemplate) : 0;
    // Computed in unsigned arithmetic: a template so long that the size passes
    // 32 bits cannot be placed anyway, and wrapping is defined.
    *size = static_cast<int32_t>(static_cast<uint32_t>(len) * ReplaceBytesPerTemplateByte +
                                 ReplaceHeaderSize);
    return zevStatusOk;
}

extern "C" zevStatus zevsRegExpReplaceInit(const char* replaceTemplate, RegExpReplaceState* state) {
    if (state == nullptr) return zevStatusNullPointer;
    storeBase(state, replaceTemplate);
    uint32_t count = 0;
    if (replaceTemplate != nullptr) {
        const char* cursor = replaceTemplate;
        const char* runStart = cursor;
        auto closeRun = [&] {
            if (cursor > runStart) {
                storeSegment(state, count++, SegmentLiteral, static_cast<int32_t>(cursor - runStart),
                             static_cast<uint32_t>(runStart - replaceTemplate));
            }
        };
        while (*cursor != '\0') {
            if (*cursor == '$') {
                closeRun();
                ++cursor;
                if (*cursor == '&') {
                    ++cursor;
                    storeSegment(state, count++, SegmentGroup, 0, 0);
                } else if (*cursor >= '0' && *cursor <= '9') {
                    // Any number of digits; a value past int32 saturates, which
                    // is above every group count and so adds nothing.
                    int32_t number = 0;
                    while (*cursor >= '0' && *cursor <= '9') {
                        const int32_t digit = *cursor - '0';
                        number = number > (INT32_MAX - digit) / 10 ? INT32_MAX : number * 10 + digit;
                        ++cursor;
                    }
                    if (number == 0) return zevStatusRegExpBadReference;
                    storeSegment(state, count++, SegmentGroup, number, 0);
                } else {
                    return zevStatusRegExpBadReference;
                }
                runStart = cursor;
            } else if (*cursor == '\\') {
                // The backslash is dropped and splits the run; the byte behind
                // it is then read like any other, so "\$1" is still a reference.
                closeRun();
                ++cursor;
                runStart = cursor;
            } else {
                ++cursor;
            }
        }
        closeRun();
    }
    std::memcpy(state, &count, sizeof(count));
    return zevStatusOk;
}

extern "C" zevStatus zevsRegExpReplace_8u(const uint8_t* src, int32_t* srcLen, uint8_t* dst,
                                          int32_t* dstLen, RegExpFindEntry* find,
                                          int32_t* findCount, RegExpState* pattern,
                                          const RegExpReplaceState* replaceState) {
    if (src == nullptr || srcLen == nullptr || pattern == nullptr || dst == nullptr ||
        replaceState == nullptr || dstLen == nullptr || findCount == nullptr || find == nullptr) {
        return zevStatusNullPointer;
    }
    if (*srcLen < 1 || *dstLen < 1) return zevStatusBadSize;

    const int32_t sourceLength = *srcLen;
    const int32_t dstCapacity = *dstLen;
    const bool global = (pattern->options & OptionGlobal) != 0;

    // Phase one: the whole search. A capacity below 1 makes the search refuse
    // with zevStatusBadSize and leave the count as it was, which the no-match
    // path below then handles. A search that ran out of budget or was handed
    // no compiled pattern leaves find without a result: nothing may act on it.
    const zevStatus searched =
        ownRegExpSearch(src, sourceLength, pattern, find, findCount, global ? 1 : 0);
    if (searched == zevStatusRegExpMatchLimit || searched == zevStatusRegExpBadState) {
        return searched;
    }

    const int32_t entries = *findCount;
    if (entries < 1) {
        const int32_t n = sourceLength < dstCapacity ? sourceLength : dstCapacity;
        ownCopy_8u(src, dst, n);
        *srcLen = n;
        *dstLen = n;
        return zevStatusOk;
    }

    Output o{dst, dstCapacity};
    const uint8_t* const end = src + sourceLength;
    if (global) {
        const int32_t stride = pattern->captureCount;
        const uint8_t* pos = src;
        for (int32_t k = 0; k < entries; k += stride) {
            // After an empty match the one-byte retry can match past the next
            // place, where the walk finds a further match: matches of one
            // search may overlap. What the previous match consumed is not
            // given back: the gap is never negative and pos never moves back.
            const uint8_t* matchStart = find[k].start;
            const uint8_t* from = matchStart > pos ? matchStart : pos;
            const int32_t gap = offsetOf(from, pos);
            if (gap != 0 && !putPiece(pos, gap, o)) return stop(offsetOf(pos, src), srcLen, dstCapacity, o, dstLen);
            if (!putTemplate(replaceState, find, k, stride, end, o)) {
                return stop(offsetOf(from, src), srcLen, dstCapacity, o, dstLen);
            }
            const uint8_t* matchEnd = matchStart + lengthInside(matchStart, find[k].length, end);
            pos = matchEnd > from ? matchEnd : from;
        }
        if (!putPiece(pos, offsetOf(end, pos), o)) return stop(offsetOf(pos, src), srcLen, dstCapacity, o, dstLen);
        *srcLen = offsetOf(end, pos);   // the tail's length
        *dstLen = dstCapacity - o.room;
        return zevStatusOk;
    }

    // Single: entry 0 is the match; group numbers are bounded by the entries
    // the search stored.
    const uint8_t* matchStart = find[0].start;
    const uint8_t* matchEnd = matchStart + lengthInside(matchStart, find[0].length, end);
    const int32_t gap = offsetOf(matchStart, src);
    if (gap != 0 && !putPiece(src, gap, o)) return stop(0, srcLen, dstCapacity, o, dstLen);
    if (!putTemplate(replaceState, find, 0, entries, end, o)) return stop(gap, srcLen, dstCapacity, o, dstLen);
    if (!putPiece(matchEnd, offsetOf(end, matchEnd), o)) {
        return stop(offsetOf(matchEnd, src), srcLen, dstCapacity, o, dstLen);
    }
    *dstLen = dstCapacity - o.room;
    return zevStatusOk;
}
