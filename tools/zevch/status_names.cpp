// tools/zevch/status_names.cpp - the table behind the tool's error messages.
#include "tools/zevch/status_names.h"

#include <cstdio>

const StatusName StatusNames[StatusNameCount] = {
    {zevStatusOk, "zevStatusOk", "success"},
    {zevStatusPieceTruncated, "zevStatusPieceTruncated", "a piece was cut to its output slot"},
    {zevStatusInputLeft, "zevStatusInputLeft", "the output slots ran out with source left"},
    {zevStatusEntryNotFound, "zevStatusEntryNotFound", "no slot of the set holds the id"},
    {zevStatusBadId, "zevStatusBadId", "the id is 0, which marks a free slot"},
    {zevStatusBadSize, "zevStatusBadSize", "a count or size that must be positive is not"},
    {zevStatusBadFormat, "zevStatusBadFormat", "the format selector is neither 0 nor 1"},
    {zevStatusNullPointer, "zevStatusNullPointer", "a required pointer is null, or memory ran out"},
    {zevStatusTableFull, "zevStatusTableFull", "no free slot is left in the set"},
    {zevStatusBadLength, "zevStatusBadLength", "a length is negative or a position lies outside the string"},
    {zevStatusRegExpBadProperty, "zevStatusRegExpBadProperty", "a property escape names nothing known, or \\x{ is not closed"},
    {zevStatusRegExpBadClass, "zevStatusRegExpBadClass", "a bracketed character class is malformed"},
    {zevStatusRegExpBadReference, "zevStatusRegExpBadReference", "a reference names a group that does not exist, or a $ is malformed"},
    {zevStatusRegExpBadSyntax, "zevStatusRegExpBadSyntax", "a syntax fault: unbalanced parentheses, an unknown (? form, too many groups"},
    {zevStatusRegExpBadRepeat, "zevStatusRegExpBadRepeat", "a quantifier has nothing to repeat, or its bounds are wrong"},
    {zevStatusRegExpMatchLimit, "zevStatusRegExpMatchLimit", "the match limit of the pattern was used up"},
    {zevStatusRegExpBadState, "zevStatusRegExpBadState", "the record is not a compiled pattern"},
    {zevStatusRegExpBadOptions, "zevStatusRegExpBadOptions", "the option string holds a letter other than g, i, m, s, x"},
};

const StatusName* findStatusName(zevStatus status) {
    for (const StatusName& s : StatusNames) {
        if (s.value == status) return &s;
    }
    return nullptr;
}

const char* statusName(zevStatus status) {
    if (const StatusName* s = findStatusName(status)) return s->name;
    // One thread, and the text is used at once by the caller.
    static char unknown[32];
    std::snprintf(unknown, sizeof unknown, "status %d", static_cast<int>(status));
    return unknown;
}
