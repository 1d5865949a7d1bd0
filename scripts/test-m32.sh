#!/usr/bin/env bash
# Builds zevch for 32-bit x86 (-m32) with its tests and runs them all.
# GoogleTest is built from /usr/src/googletest, since the packaged library is
# 64-bit only; the PCRE2 peers and the benchmarks are left out.
#   scripts/test-m32.sh            build in build-m32/
#   ZEVCH_BUILD_DIR=... ZEVCH_CTEST_ARGS=... scripts/test-m32.sh
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh g++-multilib googletest

build_dir=${ZEVCH_BUILD_DIR:-build-m32}
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZEVCH_M32=ON \
      -DZEVCH_BUILD_BENCH=OFF >/dev/null
cmake --build "$build_dir" -j"$jobs"
file -L "$build_dir/libzevch.so" | grep -q 'ELF 32-bit' || { echo "not a 32-bit build" >&2; exit 1; }
cd "$build_dir"
ctest --output-on-failure -j"$jobs" ${ZEVCH_CTEST_ARGS:-}
