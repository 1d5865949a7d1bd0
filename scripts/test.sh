#!/usr/bin/env bash
# Builds zevch with its tests and runs them all through ctest.
#   scripts/test.sh                       release build in build/
#   ZEVCH_SANITIZE=address,undefined ZEVCH_BUILD_DIR=build-asan scripts/test.sh
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

build_dir=${ZEVCH_BUILD_DIR:-build}
sanitize=${ZEVCH_SANITIZE:-}
jobs=$(nproc 2>/dev/null || echo 2)
if [ -n "$sanitize" ]; then
  build_type=Debug; bench=OFF
else
  build_type=RelWithDebInfo; bench=ON
fi
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE="$build_type" -DZEVCH_SANITIZE="$sanitize" \
      -DZEVCH_BUILD_BENCH="$bench" >/dev/null
cmake --build "$build_dir" -j"$jobs"
cd "$build_dir"
ctest --output-on-failure -j"$jobs" ${ZEVCH_CTEST_ARGS:-}
