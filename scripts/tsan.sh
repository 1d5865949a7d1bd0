#!/usr/bin/env bash
# The parallel multi-pattern find under ThreadSanitizer: clang with
# -fsanitize=thread and LLVM's OpenMP runtime. The runtime itself is not
# instrumented, so its barriers are made known to ThreadSanitizer through the
# OMPT tool libarcher, which the runtime loads when OMP_TOOL_LIBRARIES names it.
#   scripts/tsan.sh          build in build-tsan/, run the multi suite and
#                            1000 parallel runs of 64 patterns
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh clang libomp-dev

build_dir=${ZEVCH_BUILD_DIR:-build-tsan}
jobs=$(nproc 2>/dev/null || echo 2)
# strings/case.cpp builds its case table at compile time, beyond clang's
# default budget of constant-evaluation steps.
cmake -S . -B "$build_dir" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
      -DCMAKE_CXX_FLAGS=-fconstexpr-steps=100000000 -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DZEVCH_SANITIZE=thread -DZEVCH_BUILD_BENCH=OFF -DZEVCH_BUILD_TOOLS=OFF >/dev/null
cmake --build "$build_dir" -j"$jobs" --target test_multi test_hostile

archer=$(ls /usr/lib/llvm-*/lib/libarcher.so 2>/dev/null | sort -V | tail -n 1 || true)
if [ -n "$archer" ]; then
  export OMP_TOOL_LIBRARIES="$archer"
else
  echo "tsan.sh: libarcher.so not found; OpenMP barriers may show as false races" >&2
fi
# Races inside the uninstrumented runtime itself are its own business.
export TSAN_OPTIONS="halt_on_error=1 ignore_noninstrumented_modules=1 ${TSAN_OPTIONS:-}"
export ARCHER_OPTIONS="verbose=1"
export ZEVCH_STRESS_RUNS=${ZEVCH_STRESS_RUNS:-1000}
"$build_dir/tests/test_multi" --gtest_brief=1
"$build_dir/tests/test_hostile" --gtest_filter='ParallelFind.*'
