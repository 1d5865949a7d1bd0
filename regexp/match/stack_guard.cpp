// regexp/match/stack_guard.cpp - the stack bounds of the calling thread.
//
// pthread_getattr_np gives the bounds of any thread, the main thread included
// (there from the stack rlimit). For the main thread glibc reads
// /proc/self/maps to find them, which is slow and allocates, so the answer is
// kept per thread and asked again only when the current frame lies outside
// the kept bounds (a new thread reusing the slot cannot happen: the cache is
// thread_local; a fiber on a stack of its own lands outside and re-asks).
#include "regexp/match/stack_guard.h"

#include <pthread.h>

#include <cstdint>

namespace {

struct StackBounds {
    const char* low;
    const char* high;
};

thread_local StackBounds keptBounds = {nullptr, nullptr};

bool queryStackBounds(StackBounds* bounds) {
    pthread_attr_t attr;
    if (pthread_getattr_np(pthread_self(), &attr) != 0) {
        return false;
    }
    void* addr = nullptr;
    size_t size = 0;
    const int rc = pthread_attr_getstack(&attr, &addr, &size);
    pthread_attr_destroy(&attr);
    if (rc != 0 || addr == nullptr || size == 0) {
        return false;
    }
    bounds->low = static_cast<const char*>(addr);
    bounds->high = bounds->low + size;
    return true;
}

bool holds(const StackBounds& bounds, const char* here) {
    return bounds.low <= here && here < bounds.high;
}

}  // namespace

const char* ownStackGuardLimit(void) {
    const char* here = OWN_STACK_HERE();
    StackBounds bounds = keptBounds;
    if (!holds(bounds, here)) {
        if (!queryStackBounds(&bounds) || !holds(bounds, here)) {
            // Unknown stack: assume a modest one below this frame.
            const size_t room = StackGuardFallbackBytes - StackGuardMargin;
            return reinterpret_cast<uintptr_t>(here) > room ? here - room : nullptr;
        }
        keptBounds = bounds;
    }
    if (static_cast<size_t>(here - bounds.low) <= StackGuardMargin) {
        return here;   // already inside the margin: the first interpreter entry stops
    }
    return bounds.low + StackGuardMargin;
}
