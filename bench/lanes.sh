#!/bin/sh
# Splits a 256 MiB random image 32 -> 8 into its four byte lanes with `krldv split` beside
# srec_cat (one -split run per lane, as it takes them) in the same run, checks that both give
# the same lanes, then runs bench_lanes for the split in memory beside memcpy of 256 MiB.
# Usage: bench/lanes.sh [BUILD_DIR]   (KRLDV_BENCH_MIB sets the image size)
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-${KRLDV_BUILD:-$root/build}}
work=$(mktemp -d "${TMPDIR:-/tmp}/krldv-lanes.XXXXXX")
trap 'rm -rf "$work"' EXIT INT TERM
size_mib=${KRLDV_BENCH_MIB:-256}
runs=${KRLDV_BENCH_RUNS:-3}

[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target krldv bench_lanes >/dev/null
cli=$build/src/cli/krldv

# Milliseconds of the best of $2 runs of the command; the lane files are removed (untimed)
# before each run.
best() {
    bestTime=
    i=0
    while [ "$i" -lt "$2" ]; do
        rm -f lane-*.bin
        t0=$(date +%s%N)
        sh -c "$1" >/dev/null 2>&1 || { echo "failed: $1" >&2; exit 1; }
        t1=$(date +%s%N)
        t=$(((t1 - t0) / 1000000))
        if [ -z "$bestTime" ] || [ "$t" -lt "$bestTime" ]; then bestTime=$t; fi
        i=$((i + 1))
    done
    echo "$bestTime"
}

cd "$work"
head -c $((size_mib * 1024 * 1024)) /dev/urandom >img.bin
srec="for l in 0 1 2 3; do srec_cat img.bin -binary -split 4 \$l 1 -o srec-\$l.bin -binary || exit 1; done"
tSrec=$(best "$srec" 1)
tCli=$(best "'$cli' split img.bin --widths 32:8 -o 'lane-{lane}.bin'" "$runs")
for l in 0 1 2 3; do
    cmp -s "lane-$l.bin" "srec-$l.bin" || { echo "lane $l differs from srec_cat's" >&2; exit 1; }
done
printf '%s MiB image split 32 -> 8 into four lane files (krldv best of %s runs, srec_cat 1 run)\n' "$size_mib" "$runs"
printf '  krldv split   %6d ms (loads, splits, checks the round trip, writes four files)\n' "$tCli"
printf '  srec_cat      %6d ms (four -split runs)\n' "$tSrec"
awk -v a="$tSrec" -v b="$tCli" 'BEGIN { printf "  srec_cat / krldv: %.1fx\n\n", a / b }'
"$build/bench/bench_lanes"
