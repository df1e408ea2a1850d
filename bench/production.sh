#!/bin/sh
# Devices per hour of a production run with serial numbers on flashrom's emulated W25Q128FV
# (a 1 MiB image), beside flashrom alone writing the same padded image to the same chip in
# the same run. The difference per device is the run's own overhead: the number taken and
# journaled under the file's lock, the buffer patched and handed to flashrom.
# Usage: bench/production.sh [BUILD_DIR]   (KRLDV_BENCH_DEVICES sets the devices per side)
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-${KRLDV_BUILD:-$root/build}}" && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/krldv-production.XXXXXX")
trap 'rm -rf "$work"' EXIT INT TERM
devices=${KRLDV_BENCH_DEVICES:-5}
chip_size=16777216
image_size=1048576
export KRLDV_DATA_DIR="${KRLDV_DATA_DIR:-$root/data}"

[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target krldv >/dev/null
cli=$build/src/cli/krldv
command -v flashrom >/dev/null || { echo "flashrom is not installed" >&2; exit 1; }

cd "$work"
head -c $image_size /dev/urandom > img.bin
cp img.bin padded.bin
head -c $((chip_size - image_size)) /dev/zero | tr '\0' '\377' >> padded.bin
# flashrom skips what the chip holds already: the peer too writes a new number per device.
cp padded.bin padded2.bin
printf 'SERIAL02' | dd of=padded2.bin bs=1 seek=4096 conv=notrunc 2>/dev/null
printf 'SERIAL01' | dd of=padded.bin bs=1 seek=4096 conv=notrunc 2>/dev/null
head -c $chip_size /dev/zero | tr '\0' '\377' > chip.bin
printf 'Line\r\n{\r\nTYPE=CALC\r\nLENGTH=4\r\nNEXT=0x1000\r\nSTEP=0x1\r\n}\r\n' > line.ser

now() { date +%s%N; }
# Three rounds of each side, one after the other, so both meet much the same machine load; the
# run programs its devices in one process, as a line does.
peer=0 ours=0 round=0
while [ "$round" -lt 3 ]; do
    t0=$(now)
    i=0
    while [ "$i" -lt "$devices" ]; do
        if [ $((i % 2)) -eq 0 ]; then image=padded.bin; else image=padded2.bin; fi
        flashrom -p dummy:emulate=W25Q128FV,image=chip.bin -c W25Q128.V -w $image >/dev/null 2>&1
        i=$((i + 1))
    done
    t1=$(now)
    "$cli" program img.bin --device W25Q128FV --engine flashrom --programmer emulator:chip.bin \
        --serial line.ser --address 0x1000 --quantity "$devices" >/dev/null
    t2=$(now)
    peer=$((peer + (t1 - t0) / 1000)) ours=$((ours + (t2 - t1) / 1000)) round=$((round + 1))
done
devices=$((devices * 3))
per_peer=$((peer / devices)) per_ours=$((ours / devices))
echo "production run, $devices devices of a 1 MiB image (16 MiB chip) on flashrom's emulator:"
echo "  flashrom alone:       $((per_peer / 1000)) ms/device, $((3600000000 / per_peer)) devices/hour"
echo "  krldv program+serial: $((per_ours / 1000)) ms/device, $((3600000000 / per_ours)) devices/hour"
awk -v p=$per_peer -v o=$per_ours 'BEGIN { printf "  overhead per device:  %+.0f ms (%+.1f%% of flashrom'"'"'s time; goal < 5%%)\n", (o - p) / 1000, (o - p) * 100 / p }'
# The run's own cost without flashrom's: the same run with a stand-in that exits at once.
mkdir stand-in && printf '#!/bin/sh\nexit 0\n' > stand-in/flashrom && chmod +x stand-in/flashrom
t0=$(now)
PATH="$work/stand-in:$PATH" "$cli" program img.bin --device W25Q128FV --engine flashrom --programmer emulator:chip.bin \
    --serial line.ser --address 0x1000 --quantity "$devices" >/dev/null
t1=$(now)
own=$(((t1 - t0) / 1000 / devices))
awk -v p=$per_peer -v o=$own 'BEGIN { printf "  the run alone:        %.1f ms/device (%.1f%% of flashrom'"'"'s time)\n", o / 1000, o * 100 / p }'
