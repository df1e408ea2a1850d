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
runs=${KRLDV_BENCH_RUNS:-3}

# The same optimisation as the product (make's RelWithDebInfo): -O3 makes the hex decoder slower.
[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target krlfileio_convert >/dev/null
cmake --build "$build" -j2 --target krldv >/dev/null 2>&1 || true
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

printf '%s MiB image, best of %s runs (srec_cat and objcopy: 1 run)\n\n' "$size_mib" "$runs"
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

row "Intel HEX/16 -> bin" intel bin img16.hex bin -intel -binary ihex binary ""
row "Intel HEX/32 -> bin" intel bin img32.hex bin -intel -binary ihex binary ""
row "S-record S3 -> bin" motorola bin img.s37 bin -motorola -binary srec binary ""
row "TI-TXT -> bin" ti bin img.ti.txt bin -ti-txt -binary - - ""
# srec_cat writes 32 data bytes per record unless told; give it krldv's 16.
row "bin -> Intel HEX" bin intel img.bin hex -binary "-intel -Output_Block_Size 16" binary ihex ""
row "bin -> S-record" bin motorola img.bin srec -binary "-motorola -Output_Block_Size 16" binary srec ""
