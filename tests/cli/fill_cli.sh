#!/usr/bin/env bash
# krldv fill: one value into a range, the image keeping its shape, and its usage errors.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }

printf ':020000000102FB\r\n:024000000304B7\r\n:00000001FF\r\n' > "$T/sparse.hex"
"$KRLDV" fill "$T/sparse.hex" --range 0x20:0x21 --value 0xAA -o "$T/out.hex"
check "filled range joins the image, gaps stay" "$(tr -d '\r' < "$T/out.hex" | tr '\n' ' ')" \
  ":020000000102FB :02002000AAAA8A :024000000304B7 :00000001FF "
"$KRLDV" fill "$T/sparse.hex" --range 0:0 --value 7 -o "$T/one.bin"
check "one byte, binary keeps the extent" "$(od -An -tx1 -N2 "$T/one.bin" | tr -d ' ') $(wc -c < "$T/one.bin")" "0702 16386"
"$KRLDV" fill "$T/sparse.hex" --range 0x4002:0x4003 --value 0 -o "$T/long.bin"
check "a range past the end extends the image" "$(wc -c < "$T/long.bin")" 16388
before=$("$KRLDV" checksum "$T/sparse.hex" | cut -d' ' -f1)
check "checksum after a fill" "$("$KRLDV" checksum "$T/out.hex" | cut -d' ' -f1)" \
  "$(printf '0x%08X' $(( (before + 2 * 0xAA - 2 * 0xFF) & 0xFFFFFFFF )))"

"$KRLDV" fill "$T/sparse.hex" --range 5:2 --value 1 -o "$T/x.bin" >/dev/null 2>&1; check "reversed range" "$?" 2
"$KRLDV" fill "$T/sparse.hex" --range 0:1 --value 0x100 -o "$T/x.bin" >/dev/null 2>&1; check "value above a byte" "$?" 2
"$KRLDV" fill "$T/sparse.hex" --range 0:1 -o "$T/x.bin" >/dev/null 2>&1; check "no value" "$?" 2
"$KRLDV" fill "$T/missing.hex" --range 0:1 --value 1 -o "$T/x.bin" >/dev/null 2>&1; check "missing image" "$?" 1
[ -e "$T/x.bin" ] && { echo "FAIL a refused fill wrote its output"; fail=1; }
exit $fail
