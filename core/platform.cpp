// core/platform.cpp - the platform layer: allocator and thread count.
//
// The library needs exactly three things from its platform: a block
// allocator, its release, and the number of threads the parallel multi-
// pattern search may use. This is our own implementation of that contract.
#include <cstdlib>

#include <atomic>

#ifdef _OPENMP
#include <omp.h>
#endif
#include <thread>

#include "core/core.h"

void* zevMalloc(int32_t size) {
    if (size < 1) return nullptr;
    return std::malloc(static_cast<size_t>(size));
}

void zevFree(void* block) { std::free(block); }

namespace {
// Only the tests write this (through ownSetNumThreadsOverride); the library
// itself never changes it, so it is configuration, not shared state.
std::atomic<int32_t> numThreadsOverride{0};
}  // namespace

void ownSetNumThreadsOverride(int32_t threads) {
    numThreadsOverride.store(threads > 0 ? threads : 0, std::memory_order_relaxed);
}

int32_t ownGetNumThreads(void) {
    int32_t forced = numThreadsOverride.load(std::memory_order_relaxed);
    if (forced > 0) return forced;
#ifdef _OPENMP
    int n = omp_get_max_threads();
#else
    int n = static_cast<int>(std::thread::hardware_concurrency());
#endif
    return n > 0 ? n : 1;
}
