#!/usr/bin/env bash
# krldv devices, device and --device: the database as scripts see it, and images loaded
# through a device's size, ranges and address offset.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }

count=$("$KRLDV" devices --json | python3 -c 'import json,sys; print(len(json.load(sys.stdin)))')
[ "$count" -ge 60 ] || { echo "FAIL only $count devices"; fail=1; }
check "a pattern finds names and vendors" "$("$KRLDV" devices macronix | tail -n +2 | cut -d' ' -f1 | tr '\n' ' ')" \
  "MX25L6436E MX25L12835F "
"$KRLDV" devices nothing-like-this >/dev/null; check "no match" "$?" 1
check "one device as JSON" "$("$KRLDV" device w25q128fv --json | python3 -c \
  'import json,sys; d=json.load(sys.stdin); print(d["name"], d["size"], d["engine"], d["engineChip"], d["layout"])')" \
  "W25Q128FV 16777216 flashrom W25Q128.V BYTEVIEW"
check "a PLD's fuses" "$("$KRLDV" device GAL22V10 | grep -E '^(fuses|layout):' | tr -s ' ' | tr '\n' ' ')" \
  "layout: JEDVIEW fuses: 5892 "
"$KRLDV" device NOPE123 >/dev/null 2>"$T/err"; check "unknown device" "$?" 2
grep -q "no device is called NOPE123" "$T/err" || { echo "FAIL unknown device message: $(cat "$T/err")"; fail=1; }

# Flash far up: Intel HEX at 0x08000010 becomes a bin of exactly the device's size, and
# goes back to its own addresses.
printf ':020000040800F2\n:040010001122334442\n:00000001FF\n' > "$T/app.hex"
"$KRLDV" convert "$T/app.hex" "$T/app.bin" --device STM32F103C8; check "convert" "$?" 0
check "device-sized bin" "$(wc -c < "$T/app.bin")" 65536
check "bytes at the device's address 0x10" "$(od -An -tx1 -j16 -N4 "$T/app.bin" | tr -d ' ')" 11223344
"$KRLDV" convert "$T/app.bin" "$T/back.hex" --device STM32F103C8
grep -q '^:020000040800F2' "$T/back.hex" || { echo "FAIL the hex lost its address"; fail=1; }
check "round trip" "$("$KRLDV" checksum "$T/back.hex" --device STM32F103C8)" \
  "$("$KRLDV" checksum "$T/app.hex" --device STM32F103C8)"
check "info sums the loaded bytes" "$("$KRLDV" info "$T/app.hex" --device STM32F103C8 | grep '^sum of')" \
  "sum of loaded bytes: 0x000000AA"
"$KRLDV" fill "$T/app.hex" --device STM32F103C8 --range 0:3 --value 0 -o "$T/filled.hex"
grep -q '^:0400000000000000FC' "$T/filled.hex" || { echo "FAIL fill through a device"; fail=1; }
"$KRLDV" convert "$T/app.hex" "$T/x.bin" --device NOPE >/dev/null 2>&1; check "convert with an unknown device" "$?" 2
[ -e "$T/x.bin" ] && { echo "FAIL a refused convert wrote its output"; fail=1; }

# A small EEPROM fixes the size: data beyond it is left out, not grown into.
printf ':02000000AABB99\n:02010000CCDD54\n:00000001FF\n' > "$T/e.hex"
"$KRLDV" convert "$T/e.hex" "$T/e.bin" --device AT24C02 2>/dev/null
check "an AT24C02 image is 256 bytes" "$(wc -c < "$T/e.bin")" 256
exit $fail
