#!/bin/sh
# Builds the libFuzzer targets with clang in their own build directory, then runs each for
# SECONDS, one after the other, and prints executions and crashes per target.
# Usage: bench/fuzz.sh SECONDS [FORMAT...]   (default: every fuzz target)
# Seeds come from tests/data/<format>/; findings land in <build>/fuzz-artifacts/<format>/.
set -eu

seconds=${1:?usage: bench/fuzz.sh SECONDS [FORMAT...]}
shift
root=$(cd "$(dirname "$0")/.." && pwd)
build=${KRLDV_FUZZ_BUILD_DIR:-$root/build-fuzz}
# Every target of fuzz/CMakeLists.txt: one per format, and the definition-file parser.
all="$(sed -n 's/^set(KRLDV_FUZZ_FORMATS \(.*\))$/\1/p' "$root/fuzz/CMakeLists.txt") serialdef"
formats=${*:-$all}

CC=clang CXX=clang++ cmake -S "$root" -B "$build" -DKRLDV_FUZZ=ON -DKRLDV_BUILD_GUI=OFF \
    -DKRLDV_BUILD_TESTS=OFF -DKRLDV_BUILD_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
targets=
for f in $formats; do targets="$targets fuzz_$f"; done
# shellcheck disable=SC2086
cmake --build "$build" -j2 --target $targets >/dev/null

printf '%-10s %14s %8s\n' format executions crashes
for f in $formats; do
    corpus=$build/fuzz-corpus/$f
    artifacts=$build/fuzz-artifacts/$f
    mkdir -p "$corpus" "$artifacts"
    seeds=
    [ -d "$root/tests/data/$f" ] && seeds=$root/tests/data/$f
    log=$build/fuzz-$f.log
    found() { find "$artifacts" -type f \( -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' -o -name 'oom-*' \) | wc -l; }
    before=$(found)
    # shellcheck disable=SC2086
    "$build/fuzz/fuzz_$f" -max_total_time="$seconds" -print_final_stats=1 -rss_limit_mb=2048 \
        -artifact_prefix="$artifacts/" "$corpus" $seeds >"$log" 2>&1 || true
    execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    crashes=$(($(found) - before))
    printf '%-10s %14s %8s\n' "$f" "${execs:-?}" "$crashes"
done
