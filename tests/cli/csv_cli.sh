#!/usr/bin/env bash
# krldv csv: the rule check lists every problem with its line, strict mode fails warnings,
# RFC 4180 quoting, rows handed out once each to stations working at the same time, rows
# stamped into images, and a failed device's row given back under "reuse".
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }
has() { echo "$2" | grep -qF -- "$3" || { echo "FAIL $1: no '$3' in: $2"; fail=1; }; }

printf '#var,SERIAL,0x100,8,asc\r\n#var,MAC,0x110,6,hex\r\nUSED,SERIAL,MAC\r\n,SN000001,0011223344AA\r\n,"SN,""02""",0011223344AB\r\n' > "$T/ok.csv"
out=$("$KRLDV" csv check "$T/ok.csv" --device AT24C512 2>&1); check "good file" "$?" 0
has "good file" "$out" "passed, 2 variables, 2 free rows"
out=$("$KRLDV" csv check "$T/ok.csv" --device AT24C02 2>&1); check "outside a small device" "$?" 1
has "outside" "$out" "ok.csv: line 1: SERIAL does not fit in the device"

# Every problem at once, each with its line.
printf '#var,A,0x0,4,asc\r\n#var,B,0x2,2,hex\r\n#var,C,0x10,2,bin\r\n#frob\r\nUSED,A,B,D\r\nx,AAAA,0011,1\r\n,BBBBB,00,1\r\nx,AAAA,001G,\r\n,CC,00,1,9\r\n,"open,00,1\r\n' > "$T/bad.csv"
out=$("$KRLDV" csv check "$T/bad.csv" 2>&1); check "bad file" "$?" 1
for part in "line 2: B overlaps A" "line 3: representation \"bin\" of C is neither asc nor hex" \
            "line 4: warning: unknown directive #frob" "line 5: column D has no #var line" \
            "line 7: \"BBBBB\" takes 5 bytes, A has 4" "line 8: a used row after a free one" \
            "line 8: \"001G\" is not hexadecimal bytes" "line 8: key A \"AAAA\" is not unique" \
            "line 9: the row has 5 fields, the header 4" "a quoted field is not closed" "failed"; do
  has "bad file" "$out" "$part"
done

# A short value is a warning, an error when strict.
printf '#var,S,0x0,8,asc\r\nUSED,S\r\n,SHORT\r\n' > "$T/short.csv"
out=$("$KRLDV" csv check "$T/short.csv" 2>&1); check "short value lenient" "$?" 0
has "short" "$out" "warning: S \"SHORT\" is shorter than its 8 bytes"
"$KRLDV" csv check "$T/short.csv" --strict >/dev/null 2>&1; check "short value strict" "$?" 1

# Rows in order, a quoted value whole, then none left and nothing more taken.
check "first row" "$("$KRLDV" csv next "$T/ok.csv" | tr '\n' '|')" "row 4|0x00000100 53 4E 30 30 30 30 30 31|0x00000110 00 11 22 33 44 AA|"
check "quoted row" "$("$KRLDV" csv next "$T/ok.csv" | sed -n 2p)" "0x00000100 53 4E 2C 22 30 32 22 00"
"$KRLDV" csv next "$T/ok.csv" >/dev/null 2>&1; check "no row left" "$?" 1
"$KRLDV" csv check "$T/ok.csv" >/dev/null 2>&1; check "used rows still pass" "$?" 0

# Four stations take 60 rows at once: each row once, each take journaled.
{ printf '#var,N,0x0,4,asc\r\nUSED,N\r\n'; for i in $(seq 60); do printf ',%04d\r\n' "$i"; done; } > "$T/line.csv"
for s in 1 2 3 4; do
  ( for i in $(seq 15); do "$KRLDV" csv next "$T/line.csv" | sed -n 2p; done > "$T/station$s" ) &
done
wait
check "rows once each" "$(cat "$T"/station* | sort -u | wc -l)" 60
check "journal" "$(grep -c ' take row:' "$T/line.csv.journal")" 60
check "all used" "$("$KRLDV" csv check "$T/line.csv" 2>&1 | tail -1 | grep -o '[0-9]* free rows')" "0 free rows"
# serial stamp --csv: only the row's bytes change, the image keeps its records and gaps, the
# row is marked and journaled; beside a definition file both are stamped.
printf ':020000000102FB\r\n:024000000304B7\r\n:00000001FF\r\n' > "$T/sparse.hex"
printf '#var,MAC,0x20,2,hex\r\nUSED,MAC\r\n,A1B2\r\n,A1B3\r\n' > "$T/stamp.csv"
check "stamp prints the row" "$("$KRLDV" serial stamp "$T/sparse.hex" --csv "$T/stamp.csv" -o "$T/s1.hex" | tr '\n' '|')" \
  "row 3|0x00000020 A1 B2|"
check "stamped sparse image" "$(tr -d '\r' < "$T/s1.hex" | tr '\n' ' ')" ":020000000102FB :02002000A1B28B :024000000304B7 :00000001FF "
check "stamp journal" "$(awk '{print $3, $4, $5}' "$T/stamp.csv.journal" | tr '\n' '|')" "take row:3 41314232|pass row:3 |"
printf 'S\r\n{\r\nTYPE=CALC\r\nLENGTH=2\r\nNEXT=0x1234\r\nSTEP=0x1\r\n}\r\n' > "$T/stamp.ser"
out=$("$KRLDV" serial stamp "$T/sparse.hex" "$T/stamp.ser" --address 0x10 --repr hex-bin --csv "$T/stamp.csv" -o "$T/s2.bin")
check "number and row" "$(echo "$out" | tr '\n' '|')" "12 34|row 4|0x00000020 A1 B3|"
check "both in the image" "$(od -An -tx1 -j16 -N2 "$T/s2.bin")$(od -An -tx1 -j32 -N2 "$T/s2.bin")" " 12 34 a1 b3"
# No row left, or a row over the number: nothing is taken and nothing written.
"$KRLDV" serial stamp "$T/sparse.hex" "$T/stamp.ser" --address 0x10 --repr hex-bin --csv "$T/stamp.csv" -o "$T/s3.bin" 2>/dev/null
check "no row left" "$?" 1
printf '#var,MAC,0x11,2,hex\r\nUSED,MAC\r\n,A1B2\r\n' > "$T/over.csv"
out=$("$KRLDV" serial stamp "$T/sparse.hex" "$T/stamp.ser" --address 0x10 --repr hex-bin --csv "$T/over.csv" -o "$T/s3.bin" 2>&1)
has "row over the number" "$out" "MAC overlaps the serial number of the definition file"
check "no number taken" "$("$KRLDV" serial next "$T/stamp.ser" --repr hex-bin)" "12 35"
[ ! -e "$T/s3.bin" ] || { echo "FAIL a refused stamp wrote an output"; fail=1; }
check "no row taken" "$("$KRLDV" csv check "$T/over.csv" 2>&1 | grep -o '[0-9]* free rows')" "1 free rows"

# "reuse": both failing devices get the same row; the next good device gets it too.
head -c 256 /dev/zero > "$T/img.bin"
printf '#var,MAC,0x20,2,hex\r\nUSED,MAC\r\n,0001\r\n,0002\r\n' > "$T/reuse.csv"
PROG=(program "$T/img.bin" --device AT24C02 --engine virtual --csv "$T/reuse.csv")
"$KRLDV" "${PROG[@]}" --programmer "$T/chip.bin,fail=1" --policy reuse --quantity 2 >/dev/null 2>&1
check "failing devices" "$?" 1
check "row given back each time" "$(grep -c ' fail row:3 reuse$' "$T/reuse.csv.journal")" 2
"$KRLDV" "${PROG[@]}" --programmer "$T/chip.bin" --policy reuse >/dev/null; check "good device" "$?" 0
check "it got the row" "$(od -An -tx1 -j32 -N2 "$T/chip.bin")" " 00 01"
"$KRLDV" "${PROG[@]}" --programmer "$T/chip.bin,fail=1" >/dev/null 2>&1
"$KRLDV" "${PROG[@]}" --programmer "$T/chip.bin" >/dev/null 2>&1
check "discard uses the row up" "$?" 1
exit $fail
