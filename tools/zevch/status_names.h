// tools/zevch/status_names.h - every zevStatus with its name and meaning, the
// one table the tool prints from.
#pragma once

#include "zevch.h"

struct StatusName {
    zevStatus   value;
    const char* name;
    const char* meaning;
};

constexpr int StatusNameCount = 18;
extern const StatusName StatusNames[StatusNameCount];

// The entry for `status`, or null for a value the library never returns.
const StatusName* findStatusName(zevStatus status);
// "zevStatusRegExpBadRepeat", or "status -42" for an unknown value.
const char* statusName(zevStatus status);
