#!/usr/bin/env bash
# krldv crc16 against its check value and an independent bitwise CRC, and its exit statuses.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }

printf '123456789' > "$T/check.txt"
check "check value" "$("$KRLDV" crc16 "$T/check.txt")" "0xA69D"
: > "$T/empty"
check "empty file" "$("$KRLDV" crc16 "$T/empty")" "0x0000"
check "missing file" "$("$KRLDV" crc16 "$T/missing" 2>/dev/null)" "0x0000"

# Several read blocks of random data against a bit-by-bit CRC in awk.
head -c 70000 /dev/urandom > "$T/rand.bin"
expected=$(od -An -v -tu1 "$T/rand.bin" | awk '
  BEGIN { r = 65535 }
  { for (i = 1; i <= NF; i++) { b = $i
      for (k = 7; k >= 0; k--) { top = int(r / 32768); bit = int(b / 2 ^ k) % 2
        r = (r * 2) % 65536 + bit
        if (top) { x = 0; p = 4129; for (m = 0; m < 16; m++) { if ((int(r / 2 ^ m) % 2) != (int(p / 2 ^ m) % 2)) x += 2 ^ m }; r = x } } } }
  END { printf "0x%04X", r }')
check "random data" "$("$KRLDV" crc16 "$T/rand.bin")" "$expected"

"$KRLDV" crc16 "$T/check.txt" --expect 11a69d >/dev/null; check "expect, low 16 bits" "$?" "0"
"$KRLDV" crc16 "$T/check.txt" --expect 0xA69C >/dev/null 2>&1; check "expect mismatch" "$?" "1"
"$KRLDV" crc16 >/dev/null 2>&1; check "no file" "$?" "2"
exit $fail
