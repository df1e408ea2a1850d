#!/usr/bin/env bash
# krldv find against independent scans of the same files, and its exit statuses.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }

# Few distinct bytes make overlapping and partial matches common.
python3 - "$T/img.bin" <<'PY'
import random, sys
random.seed(5)
open(sys.argv[1], "wb").write(bytes(random.choice(b"\xaa\xbb\x00") for _ in range(200000)) + b"KOREL5 abc")
PY
# Every start of every match, overlapping ones too.
scan() { python3 - "$T/img.bin" "$1" "${2:-1}" <<'PY'
import sys
data = open(sys.argv[1], "rb").read(); pat = bytes.fromhex(sys.argv[2]); step = int(sys.argv[3])
for i in range(len(data) - len(pat) + 1):
    if data.startswith(pat, i) and i % step == 0:
        print("0x%08X" % i)
PY
}
"$KRLDV" find "$T/img.bin" --hex "AA AA BB" --all --limit 10000000 > "$T/got" 2>"$T/err"; check "status when found" "$?" 0
scan AAAABB > "$T/want"
cmp -s "$T/got" "$T/want" || { echo "FAIL find --all differs from a python scan"; fail=1; }
grep -q "$(wc -l < "$T/want") matches of 3 bytes" "$T/err" || { echo "FAIL summary: $(cat "$T/err")"; fail=1; }

# grep reports non-overlapping matches only; with a pattern that cannot overlap both agree.
grep -obUaP 'KOREL5' "$T/img.bin" | cut -d: -f1 | awk '{printf "0x%08X\n", $1}' > "$T/want"
check "text against grep" "$("$KRLDV" find "$T/img.bin" --text KOREL5 --all 2>/dev/null)" "$(cat "$T/want")"

check "first at or after --from" "$("$KRLDV" find "$T/img.bin" --hex AABB --from 100 2>/dev/null)" "$(scan AABB | awk '$1 >= "0x00000064"' | head -1)"
check "word, little-endian" "$("$KRLDV" find "$T/img.bin" --word 0xBBAA --all 2>/dev/null | md5sum)" "$(scan AABB | md5sum)"
check "word, big-endian, aligned" "$("$KRLDV" find "$T/img.bin" --word 0xAABB --big-endian --aligned --all 2>/dev/null | md5sum)" "$(scan AABB 2 | md5sum)"
check "limit" "$("$KRLDV" find "$T/img.bin" --hex AA --all --limit 3 2>/dev/null | wc -l)" 3

# FF FF in a buffer of FF: every address but the last.
head -c 1000 /dev/zero | tr '\0' '\377' > "$T/ff.bin"
"$KRLDV" find "$T/ff.bin" --hex "FF FF" --all > "$T/got" 2>/dev/null
check "FF FF count" "$(wc -l < "$T/got")" 999
check "FF FF last" "$(tail -1 "$T/got")" "0x000003E6"
check "range is inclusive" "$("$KRLDV" find "$T/ff.bin" --hex "FF FF" --all --range 10:12 2>/dev/null | tr '\n' ' ')" "0x0000000A 0x0000000B "

"$KRLDV" find "$T/img.bin" --text "absent!" >/dev/null 2>&1; check "nothing found" "$?" 1
"$KRLDV" find "$T/img.bin" >/dev/null 2>&1; check "no pattern" "$?" 2
"$KRLDV" find "$T/img.bin" --hex "AG" >/dev/null 2>&1; check "bad hex" "$?" 2
"$KRLDV" find "$T/img.bin" --hex AA --text A >/dev/null 2>&1; check "two patterns" "$?" 2
"$KRLDV" find "$T/img.bin" --word 0x10000 >/dev/null 2>&1; check "word too large" "$?" 2
"$KRLDV" find "$T/img.bin" --hex AA --aligned >/dev/null 2>&1; check "aligned without word" "$?" 2
msg=$("$KRLDV" find "$T/missing.bin" --hex AA 2>&1); check "unreadable input" "$?" 2
case "$msg" in *"$T/missing.bin"*) ;; *) echo "FAIL message does not name the file: $msg"; fail=1 ;; esac
"$KRLDV" find --help | grep -q "usage: krldv find" || { echo "FAIL --help"; fail=1; }
exit $fail
