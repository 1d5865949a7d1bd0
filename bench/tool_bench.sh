#!/usr/bin/env bash
# Times the zevch command against its peers on the regex benchmark text:
#   1. `zevch grep -c` against GNU `grep -P -c` and `pcre2grep -c` for the
#      Email, URI and IPv4 patterns (counts of matching lines, all three must
#      agree), plus `zevch grep --whole -c` (counts of matches);
#   2. `zevch multi` with the three patterns against three `zevch grep --whole`
#      runs one after the other;
#   3. `zevch multi` with 64 patterns on 1 thread and on 2 threads.
#
#   bench/tool_bench.sh [TEXT]     (default: shared bench-data text)
#   ZEVCH=path/to/zevch bench/tool_bench.sh   to time a given build
#
# Each figure is the best of $RUNS runs (default 3), wall-clock seconds.
set -euo pipefail
cd "$(dirname "$0")/.."

text=${1:-../shared/bench-data/mariomka-input-text.txt}
[ -f "$text" ] || text=/work/shared/bench-data/mariomka-input-text.txt
runs=${RUNS:-3}
if [ -z "${ZEVCH:-}" ]; then
  cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DZEVCH_BUILD_TESTS=OFF \
        -DZEVCH_BUILD_BENCH=OFF >/dev/null
  cmake --build build-release -j2 --target zevch_tool >/dev/null
  ZEVCH=build-release/zevch
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Best wall time of $runs runs of "$@", output to $work/out.
best() {
  local best_time="" t
  for _ in $(seq "$runs"); do
    local start end
    start=$(date +%s.%N)
    "$@" >"$work/out" 2>"$work/err" || true
    end=$(date +%s.%N)
    t=$(echo "$end - $start" | bc)
    if [ -z "$best_time" ] || [ "$(echo "$t < $best_time" | bc)" = 1 ]; then best_time=$t; fi
  done
  printf '%.3f' "$best_time"
}

echo "# zevch tool benchmark"
echo "host: $(uname -srm), $(nproc) cores; compiler: $(c++ --version | head -1)"
echo "revision: $(git rev-parse --short HEAD 2>/dev/null || echo unknown); text: $text ($(stat -c %s "$text") bytes)"
echo "tool: $ZEVCH; best of $runs runs, seconds"
echo

declare -A patterns=(
  [Email]='[\w\.+-]+@[\w\.-]+\.[\w\.-]+'
  [URI]='[\w]+://[^/\s?#]+[^\s?#]+(?:\?[^\s#]*)?(?:#[^\s]*)?'
  [IPv4]='(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9])'
)
printf '%-6s %14s %14s %14s %18s\n' pattern "zevch grep -c" "grep -P -c" "pcre2grep -c" "zevch --whole -c"
for name in Email URI IPv4; do
  p=${patterns[$name]}
  tz=$(best "$ZEVCH" grep -c "$p" "$text"); cz=$(cat "$work/out")
  if echo | grep -P '' >/dev/null 2>&1; then
    tg=$(best grep -P -c "$p" "$text"); cg=$(cat "$work/out")
  else tg=n/a; cg=n/a; fi
  if command -v pcre2grep >/dev/null; then
    tp=$(best pcre2grep -c "$p" "$text"); cp=$(cat "$work/out")
  else tp=n/a; cp=n/a; fi
  tw=$(best "$ZEVCH" grep --whole -c "$p" "$text"); cw=$(cat "$work/out")
  printf '%-6s %8s (%5s) %8s (%5s) %8s (%5s) %12s (%5s)\n' "$name" "$tz" "$cz" "$tg" "$cg" "$tp" "$cp" "$tw" "$cw"
  if [ "$cz" != "$cg" ] && [ "$cg" != n/a ]; then echo "  line counts differ: zevch $cz, grep -P $cg" >&2; fi
done
echo

printf '%s\n' "${patterns[Email]}" "${patterns[URI]}" "${patterns[IPv4]}" >"$work/three.txt"
one_by_one=0
for name in Email URI IPv4; do
  t=$(best "$ZEVCH" grep --whole -c "${patterns[$name]}" "$text")
  one_by_one=$(echo "$one_by_one + $t" | bc)
done
tm=$(best "$ZEVCH" multi -f "$work/three.txt" "$text")
echo "three patterns: zevch multi $tm s ($(tr '\t' ' ' <"$work/out" | cut -d' ' -f1,2 | tr '\n' ';')), one by one $(printf '%.3f' "$one_by_one") s"

# 64 patterns: the three above, then words, prefixes, suffixes and classes.
{
  printf '%s\n' "${patterns[Email]}" "${patterns[URI]}" "${patterns[IPv4]}"
  for w in function return class import public static void string number array object while; do
    echo "\\b$w\\b"
  done
  for c in a b c d e f g h i k l m n p r s t u w; do echo "\\b$c\\w*ing\\b"; done
  for c in a b c d e f g h i l m n p r s t; do echo "\\b[A-Z]$c\\w+"; done
  for d in 0 1 2 3 4 5 6 7 8 9; do echo "\\b$d\\d+\\b"; done
  echo '"[^"\n]*"'
  echo '\(\w+\)'
  echo '#+ \w+'
  echo '`[^`\n]+`'
} | head -64 >"$work/sixty-four.txt"
n=$(wc -l <"$work/sixty-four.txt")
t1=$(best env OMP_NUM_THREADS=1 "$ZEVCH" multi -f "$work/sixty-four.txt" "$text"); cp "$work/out" "$work/one-thread"
t2=$(best env OMP_NUM_THREADS=2 "$ZEVCH" multi -f "$work/sixty-four.txt" "$text")
same=yes; cmp -s "$work/out" "$work/one-thread" || same=no
echo "$n patterns: zevch multi on 1 thread $t1 s, on 2 threads $t2 s, speed-up $(echo "scale=2; $t1 / $t2" | bc), same counts: $same"
