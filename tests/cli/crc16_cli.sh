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

# Projects made and checked in scripts: image -> project -> image, and the CRC info shows.
DEV=$("$KRLDV" devices 2>/dev/null | sed -n 3p | awk '{print $1}')
printf ':0400100001020304E2\r\n:00000001FF\r\n' > "$T/a.hex"
"$KRLDV" convert "$T/a.hex" "$T/a.kpf2" --device "$DEV" 2>/dev/null; check "project written" "$?" "0"
"$KRLDV" convert "$T/a.kpf2" "$T/b.hex" 2>/dev/null; check "project read" "$?" "0"
check "image through a project" "$(cat "$T/b.hex")" "$(cat "$T/a.hex")"
check "info shows the file's CRC" "$("$KRLDV" info "$T/a.kpf2" 2>/dev/null | sed -n 's/^file CRC-16: *\(0x[0-9A-F]*\).*/\1/p')" \
      "$("$KRLDV" crc16 "$T/a.kpf2")"
"$KRLDV" convert "$T/a.hex" "$T/c.kpf2" >/dev/null 2>&1; check "project without a device" "$?" "1"
sed 's/"version": [0-9]*/"version": 99/' "$T/a.kpf2" > "$T/bad.kpf2"
line=$(grep -n '"version"' "$T/bad.kpf2" | cut -d: -f1)
msg=$("$KRLDV" info "$T/bad.kpf2" 2>&1 >/dev/null)
case "$msg" in *"bad.kpf2:$line: version 99 is not known"*) ;; *) echo "FAIL damaged project: $msg"; fail=1 ;; esac
exit $fail
