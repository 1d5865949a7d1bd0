// core/version.cpp - the constant version record.
#include "core/core.h"

namespace {
// One constant record, shared by every caller and never written.
const LibVersion libVersion = {
    6, 1, 137, 742,
    {'p', 'x', '\0', '\0'},
    "zevchpx-6.1.dll",
    "6.1 build 137.20",
    "Jun 10 2009",
};
}  // namespace

extern "C" const LibVersion* zevchGetLibVersion(void) { return &libVersion; }
