#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer on) and runs each for SECONDS seconds.
#
#   tests/fuzz/run.sh [SECONDS] [TARGET...]
#
# Environment: ZEVCH_FUZZ_BUILD_DIR (default build-fuzz), ZEVCH_FUZZ_JOBS
# (parallel build jobs, default 2), ZEVCH_FUZZ_WORK (default
# build-fuzz/work: per-target working corpus and crash files).
# New corpus entries stay in the working directory; crash inputs are copied
# to tests/fuzz/regressions/<target>/ so that the replay tests pick them up.
# Exits non-zero if any target found a crash.
set -euo pipefail
cd "$(dirname "$0")/../.."

seconds=${1:-30}
shift || true
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(find differential replace utf strings multi)
build=${ZEVCH_FUZZ_BUILD_DIR:-build-fuzz}
work=${ZEVCH_FUZZ_WORK:-$build/work}

# strings/case.cpp builds its case table at compile time, beyond clang's
# default budget of constant-evaluation steps.
cmake -S . -B "$build" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
      -DCMAKE_CXX_FLAGS=-fconstexpr-steps=100000000 \
      -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZEVCH_FUZZ=ON -DZEVCH_SANITIZE=address,undefined \
      -DZEVCH_BUILD_BENCH=OFF -DZEVCH_BUILD_TOOLS=OFF >/dev/null
cmake --build "$build" -j"${ZEVCH_FUZZ_JOBS:-2}" --target $(printf 'fuzz_%s ' "${targets[@]}")

export LSAN_OPTIONS="suppressions=$PWD/tests/fuzz/lsan.supp ${LSAN_OPTIONS:-}"
status=0
for t in "${targets[@]}"; do
  rm -rf "$work/$t/crashes"   # only what this run finds is saved
  mkdir -p "$work/$t/corpus" "$work/$t/crashes"
  echo "== fuzz_$t for ${seconds}s"
  log="$work/$t/log.txt"
  dict=()
  case $t in find|differential|replace|multi) dict=(-dict=tests/fuzz/patterns.dict) ;; esac
  # A stack overflow in the matcher is a finding too, so the stack is the
  # usual 8 MB; the RSS limit catches runaway allocation.
  if ! "$build/tests/fuzz/fuzz_$t" "$work/$t/corpus" "tests/fuzz/corpus/$t" \
        "${dict[@]}" -max_total_time="$seconds" -max_len=4096 \
        -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$work/$t/crashes/" >"$log" 2>&1; then
    status=1
    echo "fuzz_$t: crash, see $log"
    tail -n 40 "$log"
  fi
  grep -E '^stat::number_of_executed_units|^stat::peak_rss_mb' "$log" | sed "s/^/fuzz_$t /" || true
  for f in "$work/$t/crashes"/*; do
    [ -f "$f" ] || continue
    mkdir -p "tests/fuzz/regressions/$t"
    cp "$f" "tests/fuzz/regressions/$t/"
    echo "fuzz_$t: saved $(basename "$f") under tests/fuzz/regressions/$t/"
  done
done
exit $status
