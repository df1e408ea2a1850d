#!/usr/bin/env bash
# krldv serial next: default file, consuming, representations, parallel stations, exit statuses.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }

D="$T/krdefser.ser"
check "preview creates the default file" "$("$KRLDV" serial next "$D" --repr hex-bin)" "00 00 00 00"
check "preview does not consume" "$("$KRLDV" serial next "$D" --advance --repr dec-asc | tail -1)" "0000000000"
check "consumed" "$("$KRLDV" serial next "$D" --advance --repr hex-asc --little-endian | tail -1)" "10000000"
check "default text advanced" "$(tr '\r\n' '|#' < "$D")" "Calc1|#{|#TYPE=CALC|#LENGTH=4|#NEXT=0x2|#STEP=0x1|#}"

# four stations at once, 25 numbers each: every number once
for s in 1 2 3 4; do
  ( for i in $(seq 25); do "$KRLDV" serial next "$D" --advance --repr hex-bin; done > "$T/station$s" ) &
done
wait
check "parallel stations" "$(cat "$T"/station* | sort | uniq | wc -l)" 100
check "next after them" "$("$KRLDV" serial next "$D" --repr hex-bin)" "00 00 00 66"

printf 'Tags\r\n{\r\nTYPE=LIST\r\nLIST_NUMBER="AB"\r\nLIST_NUMBER=0xABC\r\nNEXTINDEX=1\r\n}\r\n' > "$T/list.ser"
check "list element" "$("$KRLDV" serial next "$T/list.ser" --advance --little-endian)" "BC 0A"
check "list wraps" "$("$KRLDV" serial next "$T/list.ser" | tr '\n' '|')" "41 42|AB|"

"$KRLDV" serial next >/dev/null 2>&1; check "no file" "$?" 2
"$KRLDV" serial next "$D" --repr oct >/dev/null 2>&1; check "bad representation" "$?" 2
"$KRLDV" serial next "$D" --block x >/dev/null 2>&1; check "bad block" "$?" 2
msg=$("$KRLDV" serial next "$T/list.ser" --block 3 2>&1); check "missing block" "$?" 1
case "$msg" in *list.ser*) ;; *) echo "FAIL message does not name the file: $msg"; fail=1 ;; esac
msg=$("$KRLDV" serial next "$T/other.ser" 2>&1); check "missing file" "$?" 1
case "$msg" in *other.ser*) ;; *) echo "FAIL message does not name the file: $msg"; fail=1 ;; esac
"$KRLDV" serial --help | grep -q "usage: krldv serial" || { echo "FAIL --help"; fail=1; }

# Stamping consumes one number into a copy of the image, which keeps its shape.
printf ':0400000001020304F2\r\n:00000001FF\r\n' > "$T/img.hex"
printf 'S\r\n{\r\nTYPE=CALC\r\nLENGTH=2\r\nNEXT=0x1234\r\nSTEP=0x2\r\n}\r\n' > "$T/stamp.ser"
check "stamp prints the number" "$("$KRLDV" serial stamp "$T/img.hex" "$T/stamp.ser" --address 2 --repr hex-bin -o "$T/s1.bin")" "12 34"
check "stamped image" "$(od -An -tx1 "$T/s1.bin" | tr -d ' \n')" "01021234"
check "file advanced" "$("$KRLDV" serial next "$T/stamp.ser" --repr hex-bin)" "12 36"
# Gaps stay gaps: only the data and the stamped bytes are records.
printf ':020000000102FB\r\n:024000000304B7\r\n:00000001FF\r\n' > "$T/sparse.hex"
"$KRLDV" serial stamp "$T/sparse.hex" "$T/stamp.ser" --address 0x20 --repr hex-bin -o "$T/s2.hex" >/dev/null
check "stamped sparse image" "$(tr -d '\r' < "$T/s2.hex" | tr '\n' ' ')" ":020000000102FB :02002000123696 :024000000304B7 :00000001FF "

# Refused before anything is taken: a number longer than its bytes (it would be cut, and
# devices would share numbers), a place outside the image, an output that cannot be written.
msg=$("$KRLDV" serial stamp "$T/img.hex" "$T/stamp.ser" --address 0 --count 3 --repr dec-asc -o "$T/s3.hex" 2>&1)
check "number longer than its bytes" "$?" 1
echo "$msg" | grep -q "set the byte count to 5 or more" || { echo "FAIL cut number message: $msg"; fail=1; }
"$KRLDV" serial stamp "$T/img.hex" "$T/stamp.ser" --address 3 --repr hex-bin -o "$T/s3.bin" >/dev/null 2>&1
check "past the end of the image" "$?" 1
"$KRLDV" serial stamp "$T/img.hex" "$T/stamp.ser" --address 0xFFFFFFFE --repr hex-bin -o "$T/s3.bin" >/dev/null 2>&1
check "at the top of the address space" "$?" 1
"$KRLDV" serial stamp "$T/img.hex" "$T/stamp.ser" --address 0 --repr hex-bin -o "$T/no/such/dir/s.bin" >/dev/null 2>&1
check "output folder missing" "$?" 1
"$KRLDV" serial stamp "$T/img.hex" "$T/stamp.ser" -o "$T/s3.bin" >/dev/null 2>&1; check "stamp without address" "$?" 2
"$KRLDV" serial stamp "$T/img.hex" "$T/none.ser" --address 0 -o "$T/s3.bin" >/dev/null 2>&1; check "stamp with a missing file" "$?" 1
check "nothing consumed by failures" "$("$KRLDV" serial next "$T/stamp.ser" --repr hex-bin)" "12 38"
[ ! -e "$T/s3.bin" ] && [ ! -e "$T/s3.hex" ] || { echo "FAIL a refused stamp wrote an output"; fail=1; }

# Definition-file rules: only a lower-case 0x is hexadecimal, a blank before a trailing ";" is
# no blank in the value, and numbers above 32 bits are told with their line.
printf 'S\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=0X10 ;\r\nSTEP=1\r\n}\r\n' > "$T/rules.ser"
check "0X is decimal" "$("$KRLDV" serial next "$T/rules.ser" --repr hex-bin)" "00"
printf 'S\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=0x7 ;\r\nSTEP=1\r\n}\r\n' > "$T/rules.ser"
check "blank before a trailing semicolon" "$("$KRLDV" serial next "$T/rules.ser" --repr hex-bin)" "07"
printf 'S\r\n{\r\nTYPE=CALC\r\nLENGTH=4294967295\r\nNEXT=0x123456789\r\nSTEP=1\x01\x02\r\n}\r\n' > "$T/rules.ser"
msg=$("$KRLDV" serial next "$T/rules.ser" 2>&1)
for part in "rules.ser(5): NEXT=0x123456789 does not fit in 32 bits" "LENGTH 4294967295 is not 1 to 4" \
            "rules.ser(6): control character 0x01" "rules.ser(6): control character 0x02"; do
  echo "$msg" | grep -qF "$part" || { echo "FAIL definition message '$part' in: $msg"; fail=1; }
done
printf 'S\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=1\r\n' > "$T/open.ser"
msg=$("$KRLDV" serial next "$T/open.ser" 2>&1)
echo "$msg" | grep -qF 'open.ser(2): serial number block "S" has no closing "}"' || { echo "FAIL unclosed block: $msg"; fail=1; }

# A definition file is locked and rewritten in place: a FIFO is refused at once.
mkfifo "$T/fifo.ser"
msg=$(timeout 10 "$KRLDV" serial next "$T/fifo.ser" 2>&1); rc=$?
check "FIFO definition refused" "$rc" 1
echo "$msg" | grep -q "not a regular file" || { echo "FAIL FIFO message: $msg"; fail=1; }
head -c $((17 * 1024 * 1024)) /dev/zero | tr '\0' ' ' > "$T/big.ser"
"$KRLDV" serial next "$T/big.ser" 2>&1 | grep -q "larger than 16 MiB" || { echo "FAIL too large a definition"; fail=1; }

# A write-back that cannot grow the file (here a file-size limit; a full disk alike) tells
# the system's reason and hands out nothing.
{ printf 'S\r\n{\r\nTYPE=CALC\r\nLENGTH=1\r\nNEXT=0xf\r\nSTEP=1\r\n}\r\n'; head -c 985 /dev/zero | tr '\0' ' '; } > "$T/full.ser"
out=$(bash -c "trap '' XFSZ; ulimit -f 1; '$KRLDV' serial next '$T/full.ser' --advance --repr hex-bin" 2>"$T/err"); rc=$?
check "write-back failure" "$rc" 1
check "nothing printed on failure" "$out" ""
grep -q "cannot write it back; no serial number was taken: File too large" "$T/err" || { echo "FAIL write-back message: $(cat "$T/err")"; fail=1; }
check "file unchanged" "$(grep -c 'NEXT=0xf' "$T/full.ser")" 1
exit $fail
