#!/bin/sh
# Times file conversions of a 64 MiB random image: krldv (the command-line tool when it
# can convert, and the format library alone through krlfileio_convert) beside srec_cat,
# objcopy and a minimal hand-written C decoder, all in the same run, then prints a table
# with the ratios. Outputs of the hex -> bin conversions are compared with srec_cat's.
# Usage: bench/formats.sh [BUILD_DIR]   (default: the build that `make` makes; configured if new)
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-${KRLDV_BUILD:-$root/build}}
work=$(mktemp -d "${TMPDIR:-/tmp}/krldv-formats.XXXXXX")
trap 'rm -rf "$work"' EXIT INT TERM
size_mib=${KRLDV_BENCH_MIB:-64}
runs=${KRLDV_BENCH_RUNS:-5}

# The same optimisation as the product (make's RelWithDebInfo): -O3 makes the hex decoder slower.
[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target krlfileio_convert >/dev/null
cmake --build "$build" -j2 --target krldv >/dev/null 2>&1 || true
# The timings run in a scratch folder: a relative build folder is taken from here.
build=$(cd "$build" && pwd)
cc -O2 -o "$work/ref_ihex2bin" "$root/bench/ref_ihex2bin.c"

lib=$build/bench/krlfileio_convert
cli=$build/src/cli/krldv
have() { command -v "$1" >/dev/null 2>&1; }

# Seconds taken by the command, best of $2 runs; "-" when it fails. The output file $3 is
# removed before each run (untimed), so no run pays for truncating the previous one.
best() {
    cmd=$1
    n=$2
    bestTime=
    i=0
    while [ "$i" -lt "$n" ]; do
        rm -f "$3"
        t0=$(date +%s%N)
        if ! sh -c "$cmd" >/dev/null 2>&1; then
            echo -
            return
        fi
        t1=$(date +%s%N)
        t=$(((t1 - t0) / 1000000))
        if [ -z "$bestTime" ] || [ "$t" -lt "$bestTime" ]; then bestTime=$t; fi
        i=$((i + 1))
    done
    awk -v ms="$bestTime" 'BEGIN { printf "%.3f", ms / 1000 }'
}

ratio() {
    if [ "$1" = - ] || [ "$2" = - ]; then echo -; else awk -v a="$1" -v b="$2" 'BEGIN { printf "%.1fx", a / b }'; fi
}

cd "$work"
head -c $((size_mib * 1024 * 1024)) /dev/urandom >img.bin
"$lib" img.bin img16.hex --to intel
"$lib" img.bin img32.hex --to intel --record-bytes 32
"$lib" img.bin img.s37 --to motorola
srec_cat img.bin -binary -o img.ti.txt -ti-txt 2>/dev/null

cliWorks=no
if [ -x "$cli" ] && "$cli" convert img16.hex cli-probe.bin --from intel --to bin >/dev/null 2>&1 &&
    cmp -s cli-probe.bin img.bin; then
    cliWorks=yes
fi
rm -f cli-probe.bin

printf '%s MiB image, best of %s runs (srec_cat: %s; objcopy: 1 when reading hex, every round when writing)\n' "$size_mib" "$runs" "${KRLDV_BENCH_PEER_RUNS:-1}"
printf 'writers: rounds interleaved; the ref.c column shows cat copying the produced file, the floor\n\n'
printf '%-22s %8s %8s %8s %8s %8s %10s %10s\n' conversion library cli ref.c srec_cat objcopy srec/lib objcopy/lib

row() {
    name=$1 from=$2 to=$3 input=$4 output=$5 srecIn=$6 srecOut=$7 objIn=$8 objOut=$9 extra=${10}
    tLib=$(best "'$lib' $input lib.$output --from $from --to $to $extra" "$runs" lib."$output")
    tCli=-
    [ "$cliWorks" = yes ] && tCli=$(best "'$cli' convert $input cli.$output --from $from --to $to $extra" "$runs" cli."$output")
    tRef=-
    [ "$from" = intel ] && tRef=$(best "'$work/ref_ihex2bin' $input ref.$output" "$runs" ref."$output")
    tSrec=$(best "srec_cat $input $srecIn -o srec.$output $srecOut" 1 srec."$output")
    tObj=-
    if [ "$objIn" != - ] && have objcopy; then tObj=$(best "objcopy -I $objIn -O $objOut $input obj.$output" 1 obj."$output"); fi
    note=
    if [ "$to" = bin ] && ! cmp -s lib."$output" srec."$output"; then note=" (output differs from srec_cat!)"; fi
    printf '%-22s %8s %8s %8s %8s %8s %10s %10s%s\n' "$name" "$tLib" "$tCli" "$tRef" "$tSrec" "$tObj" \
        "$(ratio "$tSrec" "$tLib")" "$(ratio "$tObj" "$tLib")" "$note"
    rm -f lib."$output" cli."$output" ref."$output" srec."$output" obj."$output"
}

# KRLDV_BENCH_ROWS=writers times only the writers.
if [ "${KRLDV_BENCH_ROWS:-all}" != writers ]; then
row "Intel HEX/16 -> bin" intel bin img16.hex bin -intel -binary ihex binary ""
row "Intel HEX/32 -> bin" intel bin img32.hex bin -intel -binary ihex binary ""
row "S-record S3 -> bin" motorola bin img.s37 bin -motorola -binary srec binary ""
row "TI-TXT -> bin" ti bin img.ti.txt bin -ti-txt -binary - - ""
fi
# The writers: every tool once per round, rounds interleaved so a noisy machine hits all
# of them alike; best of the rounds. `cat` copying the produced file is the floor.
msNow() { date +%s%N; }
timed() {
    rm -f "$2"
    t0=$(msNow)
    sh -c "$1" >/dev/null 2>&1 || { echo -; return; }
    t1=$(msNow)
    echo $(((t1 - t0) / 1000000))
}
minMs() {
    if [ "$1" = - ] || [ -z "$1" ]; then echo "$2"; elif [ "$2" = - ] || [ "$1" -le "$2" ]; then echo "$1"; else echo "$2"; fi
}
seconds() { if [ "$1" = - ]; then echo -; else awk -v ms="$1" 'BEGIN { printf "%.3f", ms / 1000 }'; fi; }

writerRow() {
    name=$1 to=$2 output=$3 srecOut=$4 objOut=$5 extra=$6
    bLib= bCli=- bSrec= bObj=- bCat=
    i=0
    while [ "$i" -lt "$runs" ]; do
        tRun=$(timed "'$lib' img.bin lib.$output --from bin --to $to $extra" lib."$output")
        [ -z "${KRLDV_BENCH_VERBOSE:-}" ] || echo "  round $i: library $tRun ms" >&2
        bLib=$(minMs "$bLib" "$tRun")
        [ "$cliWorks" = yes ] &&
            bCli=$(minMs "$bCli" "$(timed "'$cli' convert img.bin cli.$output --from bin --to $to $extra" cli."$output")")
        have objcopy && bObj=$(minMs "$bObj" "$(timed "objcopy -I binary -O $objOut img.bin obj.$output" obj."$output")")
        [ "$i" -lt "$peerRuns" ] &&
            bSrec=$(minMs "$bSrec" "$(timed "srec_cat img.bin -binary -o srec.$output $srecOut" srec."$output")")
        bCat=$(minMs "$bCat" "$(timed "cat lib.$output >cat.$output" cat."$output")")
        i=$((i + 1))
    done
    tLib=$(seconds "$bLib") tCli=$(seconds "$bCli") tSrec=$(seconds "$bSrec") tObj=$(seconds "$bObj") tCat=$(seconds "$bCat")
    note=
    [ "$tCli" = - ] || cmp -s lib."$output" cli."$output" || note=" (cli output differs!)"
    printf '%-22s %8s %8s %8s %8s %8s %10s %10s%s
' "$name" "$tLib" "$tCli" "cat $tCat" "$tSrec" "$tObj" \
        "$(ratio "$tSrec" "$tLib")" "$(ratio "$tObj" "$tLib")" "$note"
    rm -f lib."$output" cli."$output" srec."$output" obj."$output" cat."$output"
}

peerRuns=${KRLDV_BENCH_PEER_RUNS:-1}
# srec_cat writes 32 data bytes per record unless told; give it krldv's 16.
writerRow "bin -> Intel HEX" intel hex "-intel -Output_Block_Size 16" ihex ""
writerRow "bin -> S-record" motorola srec "-motorola -Output_Block_Size 16" srec ""
# Neither peer writes JEDEC fuse maps (one fuse per byte: 64 Mi fuses); cat is the floor.
writerRow "bin -> JEDEC" jedec jed "-no-such-format" "no-such-format" ""
