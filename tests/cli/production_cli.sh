#!/usr/bin/env bash
# krldv program/read/verify/erase/blank on flashrom's emulated W25Q128FV: each chip read back
# equals the image except its serial number, the counts and the journal are right, and a
# hanging engine is a failed device, not a hang.
set -u
KRLDV="$1"
DEVICES="${KRLDV_PRODUCTION_DEVICES:-20}" # a production run of 20 devices in a row
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }
command -v flashrom >/dev/null || { echo "flashrom is not installed"; exit 1; }

DEV=(--device W25Q128FV --engine flashrom)
SIZE=16777216
ADDR=4096
head -c 1048576 /dev/urandom > "$T/img.bin"
printf 'Line\r\n{\r\nTYPE=CALC\r\nLENGTH=4\r\nNEXT=0x1000\r\nSTEP=0x1\r\n}\r\n' > "$T/line.ser"

# The image as each device should hold it: padded with erased bytes to the chip's size.
cp "$T/img.bin" "$T/want.bin"
head -c $((SIZE - 1048576)) /dev/zero | tr '\0' '\377' >> "$T/want.bin"

for i in $(seq "$DEVICES"); do
  out=$("$KRLDV" program "$T/img.bin" "${DEV[@]}" --programmer "emulator:$T/chip$i.bin" \
        --serial "$T/line.ser" --address $ADDR --count 8 --repr hex-asc)
  check "device $i exit" "$?" 0
  check "device $i summary" "$(echo "$out" | tail -1)" "passed 1, failed 0"
  "$KRLDV" read "${DEV[@]}" --programmer "emulator:$T/chip$i.bin" -o "$T/back$i.bin" >/dev/null
  check "device $i read" "$?" 0
  number=$(printf '%08x' $((0x1000 + i - 1))) # hex text is lower case
  check "device $i serial window" "$(dd if="$T/back$i.bin" bs=1 skip=$ADDR count=8 2>/dev/null)" "$number"
  # Everything outside the window is the image.
  check "device $i elsewhere" "$(cmp -l "$T/back$i.bin" "$T/want.bin" | awk -v a=$ADDR '$1 <= a || $1 > a + 8' | wc -l)" 0
done
check "file advanced" "$(grep -a NEXT "$T/line.ser" | tr -d '\r')" "NEXT=0x$(printf '%x' $((0x1000 + DEVICES)))"
journal=$("$KRLDV" serial journal "$T/line.ser")
check "journal exit" "$?" 0
check "journal summary" "$(echo "$journal" | tail -1)" "passed $DEVICES, failed 0, without result 0, repeated 0"
check "journal takes" "$(grep -c ' take 0:0x0000' "$T/line.ser.journal")" "$DEVICES"

# Several devices in one run on one chip; verify tells the serial window apart from the image.
out=$("$KRLDV" program "$T/img.bin" "${DEV[@]}" --programmer "emulator:$T/chip1.bin" --quantity 2 \
      --serial "$T/line.ser" --address $ADDR --journal "$T/other.journal")
check "quantity run" "$(echo "$out" | tail -1)" "passed 2, failed 0"
check "own journal" "$(grep -c ' pass ' "$T/other.journal")" 2
"$KRLDV" verify "$T/img.bin" "${DEV[@]}" --programmer "emulator:$T/chip1.bin" >/dev/null
check "verify finds the serial number" "$?" 1
"$KRLDV" verify "$T/back1.bin" "${DEV[@]}" --programmer "emulator:$T/chip2.bin" >/dev/null
check "verify of another device's image" "$?" 1
"$KRLDV" verify "$T/back2.bin" "${DEV[@]}" --programmer "emulator:$T/chip2.bin" >/dev/null
check "verify of its own image" "$?" 0
"$KRLDV" blank "${DEV[@]}" --programmer "emulator:$T/chip2.bin" >/dev/null; check "not blank" "$?" 1
"$KRLDV" erase "${DEV[@]}" --programmer "emulator:$T/chip2.bin" >/dev/null; check "erase" "$?" 0
"$KRLDV" blank "${DEV[@]}" --programmer "emulator:$T/chip2.bin" >/dev/null; check "blank" "$?" 0

# A hanging engine is killed at the time limit and its device failed; the number is journaled.
mkdir "$T/fake"; printf '#!/bin/sh\nexec sleep 60\n' > "$T/fake/flashrom"; chmod +x "$T/fake/flashrom"
start=$(date +%s)
out=$(PATH="$T/fake:$PATH" "$KRLDV" program "$T/img.bin" "${DEV[@]}" --programmer ch341a_spi --time-limit 1 \
      --serial "$T/line.ser" --address $ADDR --quantity 2)
check "hanging engine exit" "$?" 1
check "hanging engine summary" "$(echo "$out" | tail -1)" "passed 0, failed 2"
[ $(( $(date +%s) - start )) -lt 20 ] || { echo "FAIL the hanging engine held the run"; fail=1; }
check "failures journaled" "$(grep -c ' fail 0:0x.* discard' "$T/line.ser.journal")" 2

# Usage errors and refusals before anything is taken.
"$KRLDV" program "$T/img.bin" --programmer x >/dev/null 2>&1; check "no device" "$?" 2
"$KRLDV" program "$T/img.bin" "${DEV[@]}" --programmer x --policy keep --serial "$T/line.ser" --address 0 >/dev/null 2>&1
check "bad policy" "$?" 2
"$KRLDV" program "$T/img.bin" --device W25Q128FV --engine virtual --programmer "$T/v.bin" \
  --serial "$T/line.ser" --address $((SIZE - 2)) >/dev/null 2>&1
check "number outside the device" "$?" 1
check "nothing taken by refusals" "$(grep -c ' take ' "$T/line.ser.journal")" $((DEVICES + 2))
exit $fail
