#!/usr/bin/env bash
# krldv checksum against an independent byte sum, and its exit statuses.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }
# The figure itself; what it covers follows it on the line.
sum() { "$KRLDV" checksum "$@" | cut -d' ' -f1; }

head -c $((64 * 1024 * 1024)) /dev/urandom > "$T/big.bin"
expected=$(od -An -v -tu1 -w65536 "$T/big.bin" | awk '{for (i = 1; i <= NF; i++) s += $i} END {printf "0x%08X", s % 4294967296}')
check "64 MiB byte sum" "$(sum "$T/big.bin")" "$expected"

printf '\x01\x00\x01\x01\xff\x00\x00\x80\x01\x00\x01\x01' > "$T/fuse.bin"
# fuses at 0,2,3,4,7 -> 1+4+8+16+128; at 8,10,11 -> 1+4+8
check "fuse sum" "$(sum "$T/fuse.bin" --kind fuse)" "0x000000AA"
check "fuse sum of a range" "$(sum "$T/fuse.bin" --kind fuse --range 8:0xB)" "0x0000000D"
check "byte sum of a range" "$(sum "$T/fuse.bin" --range 4:7)" "0x0000017F"

# A JEDEC file holds fuse n at address n: the fuse sum over 0..QF-1 is its C field.
JED="$(dirname "$0")/../data/jedec/tiny-crlf.jed"
check "JEDEC C field" "$(sum "$JED" --kind fuse --range 0:23 2>/dev/null)" "0x0000019C"
check "coverage stated" "$("$KRLDV" checksum "$T/fuse.bin")" "0x00000185  byte sum 0x00000000-0x0000000B, gaps as 0xFF"

# Data at the very top of the 32-bit space: every address is a valid range end, and the
# cost follows the data (4 GiB of gap are counted, not allocated).
printf ':020000040000FA\r\n:01100000559A\r\n:02000004FFFFFC\r\n:01FFFF00AA57\r\n:00000001FF\r\n' > "$T/top.hex"
check "range ending at 0xFFFFFFFF" "$(sum "$T/top.hex" --range 0xFFFFFF00:0xFFFFFFFF)" "0x0000FEAB"
check "range ending just below" "$(sum "$T/top.hex" --range 0xFFFFFF00:0xFFFFFFFE)" "0x0000FE01"
# (2^32 - 2) gap bytes of 0xFF, plus 0x55 and 0xAA
check "whole 4 GiB extent" "$(sum "$T/top.hex")" "0xFFFFFF01"
"$KRLDV" info "$T/top.hex" | grep -q "buffer checksum 0x00000000-0xFFFFFFFF (gaps as 0xFF): 0xFFFFFF01" \
  || { echo "FAIL info names the extent and its checksum"; fail=1; }
if [ -x /usr/bin/time ]; then
  kb=$( { /usr/bin/time -f %M "$KRLDV" info "$T/top.hex" >/dev/null; } 2>&1 | tail -1)
  [ "$kb" -lt 65536 ] || { echo "FAIL info of a 45-byte file at the top took $kb KiB"; fail=1; }
  kb=$( { /usr/bin/time -f %M "$KRLDV" convert "$T/top.hex" "$T/top.s37" --to motorola >/dev/null; } 2>&1 | tail -1)
  [ "$kb" -lt 65536 ] || { echo "FAIL converting between record formats took $kb KiB"; fail=1; }
fi
"$KRLDV" convert "$T/top.hex" "$T/r.bin" --range 0x80000000:0x80000003 && [ "$(od -An -tx1 "$T/r.bin")" = " ff ff ff ff" ] \
  || { echo "FAIL convert --range above 2 GiB"; fail=1; }

"$KRLDV" info "$JED" | grep -q "fuse checksum: stated 0x019C, computed 0x019C" || { echo "FAIL info of a JEDEC file"; fail=1; }

"$KRLDV" checksum >/dev/null 2>&1; check "no file" "$?" 2
"$KRLDV" checksum "$T/fuse.bin" --kind bits >/dev/null 2>&1; check "bad kind" "$?" 2
"$KRLDV" checksum "$T/fuse.bin" --range 5:2 >/dev/null 2>&1; check "reversed range" "$?" 2
"$KRLDV" checksum "$T/fuse.bin" --bogus >/dev/null 2>&1; check "unknown option" "$?" 2
msg=$("$KRLDV" checksum "$T/missing.bin" 2>&1); check "missing file" "$?" 1
case "$msg" in *"$T/missing.bin"*) ;; *) echo "FAIL message does not name the file: $msg"; fail=1 ;; esac
msg=$("$KRLDV" checksum "$T/fuse.bin" --range 0:12 2>&1); check "range beyond the data" "$?" 1
case "$msg" in *fuse.bin*) ;; *) echo "FAIL message does not name the file: $msg"; fail=1 ;; esac
"$KRLDV" checksum --help | grep -q "usage: krldv checksum" || { echo "FAIL --help"; fail=1; }
exit $fail
