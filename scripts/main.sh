#!/usr/bin/env bash
# Builds zevch in release mode and runs its command-line tool on the sample
# text compiled into it: searches, replacements and a multi-pattern count.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DZEVCH_BUILD_TESTS=OFF \
      -DZEVCH_BUILD_BENCH=OFF >/dev/null
cmake --build build-release -j"$(nproc 2>/dev/null || echo 2)" --target zevch_tool >/dev/null
exec build-release/zevch demo "$@"
