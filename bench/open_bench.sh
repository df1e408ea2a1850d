#!/usr/bin/env bash
# Opening a 1 GiB binary in korel5 (started, file loaded, window painted to a PNG, exited)
# beside `cat FILE > /dev/null` reading the same file, both from the page cache.
# Goal: korel5 takes at most 1.3 times as long as cat.
set -euo pipefail
ROOT="$(cd "$(dirname "$0")/.." && pwd)"
BUILD="${KRLDV_BUILD:-${1:-build}}"
APP="$BUILD/src/korel5/korel5"
SIZE_MIB="${OPEN_BENCH_MIB:-1024}"
RUNS="${OPEN_BENCH_RUNS:-5}"
export KRLDV_DATA_DIR="$ROOT/data"
export QT_QPA_PLATFORM=offscreen

if [ ! -x "$APP" ]; then
  echo "open_bench: $APP is not built (needs -DKRLDV_BUILD_GUI=ON)" >&2
  exit 1
fi
WORK="$(mktemp -d "${TMPDIR:-/tmp}/open_bench.XXXXXX")"
trap 'rm -rf "$WORK"' EXIT
FILE="$WORK/image.bin"
# Mixed content (not a run of one value) so nothing can take a short cut.
head -c $((SIZE_MIB * 1024 * 1024)) /dev/urandom > "$FILE"
cat "$FILE" > /dev/null

now() { date +%s.%N; }
best() { sort -g | head -n 1; }

cat_times=()
app_times=()
empty_times=()
for _ in $(seq "$RUNS"); do
  # The same run without a file: what starting, painting and writing the PNG cost alone.
  t0=$(now); "$APP" --screenshot "$WORK/empty.png" 2>/dev/null; t1=$(now)
  empty_times+=("$(echo "$t1 - $t0" | bc -l)")
  t0=$(now); cat "$FILE" > /dev/null; t1=$(now)
  cat_times+=("$(echo "$t1 - $t0" | bc -l)")
  t0=$(now); "$APP" --screenshot "$WORK/shot.png" "$FILE" 2>/dev/null; t1=$(now)
  app_times+=("$(echo "$t1 - $t0" | bc -l)")
done
cat_best=$(printf '%s\n' "${cat_times[@]}" | best)
app_best=$(printf '%s\n' "${app_times[@]}" | best)
empty_best=$(printf '%s\n' "${empty_times[@]}" | best)
ratio=$(echo "$app_best / $cat_best" | bc -l)
printf 'open %d MiB: cat %.3f s, korel5 %.3f s (of which %.3f s without a file), ratio %.2f (goal <= 1.30), best of %d\n' \
  "$SIZE_MIB" "$cat_best" "$app_best" "$empty_best" "$ratio" "$RUNS"
echo "all runs: cat ${cat_times[*]}"
echo "          korel5 ${app_times[*]}"
if [ "$(echo "$ratio <= 1.3" | bc -l)" -ne 1 ]; then
  echo "open_bench: korel5 takes more than 1.3 times as long as cat" >&2
  exit 1
fi
