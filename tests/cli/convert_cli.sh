#!/usr/bin/env bash
# krldv convert against srec_cat on generated images, and malformed inputs through the CLI.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
bad() { echo "FAIL $*"; fail=1; }

if ! command -v srec_cat >/dev/null; then
  echo "srec_cat missing: differential part skipped"
else
  head -c 200000 /dev/urandom > "$T/rand.bin"
  # name | srec_cat input generation | krldv --from
  while IFS='|' read -r name gen from; do
    [ -z "$name" ] && continue
    eval "srec_cat $gen" || { bad "$name: srec_cat could not generate"; continue; }
    "$KRLDV" convert "$T/$name.in" "$T/$name.bin" --from "$from" --to bin 2>"$T/$name.err" || { bad "$name: convert failed: $(cat "$T/$name.err")"; continue; }
    # srec_cat's view of the same input, filled with 0xFF from 0 to its end
    end=$(srec_cat "$T/$name.in" $(cat "$T/$name.fmt") -o - -binary 2>/dev/null | wc -c)
    srec_cat "$T/$name.in" $(cat "$T/$name.fmt") -fill 0xFF 0 "$end" -o "$T/$name.ref" -binary 2>/dev/null
    cmp -s "$T/$name.bin" "$T/$name.ref" || bad "$name: differs from srec_cat"
  done <<LIST
dense16|"$T/rand.bin" -binary -o "$T/dense16.in" -intel -obs=16; echo -intel > "$T/dense16.fmt"|intel
dense32|"$T/rand.bin" -binary -offset 0x12340 -o "$T/dense32.in" -intel -obs=32; echo -intel > "$T/dense32.fmt"|intel
above16m|"$T/rand.bin" -binary -offset 0x1000000 -crop 0x1000000 0x1000400 "$T/rand.bin" -binary -offset 0x20 -crop 0x20 0x80 -o "$T/above16m.in" -intel; echo -intel > "$T/above16m.fmt"|intel
segment|"$T/rand.bin" -binary -offset 0x18000 -crop 0x18000 0x1A000 -o "$T/segment.in" -intel -address-length=3; echo -intel > "$T/segment.fmt"|intel
sparse|-generate 0x10 0x20 -constant 0x11 -generate 0x30000 0x30010 -repeat-string abc -o "$T/sparse.in" -intel; echo -intel > "$T/sparse.fmt"|intel
s1|"$T/rand.bin" -binary -crop 0 0x8000 -o "$T/s1.in" -motorola -address-length=2; echo -motorola > "$T/s1.fmt"|motorola
s2|"$T/rand.bin" -binary -offset 0x20000 -o "$T/s2.in" -motorola -address-length=3; echo -motorola > "$T/s2.fmt"|motorola
s3|"$T/rand.bin" -binary -offset 0x1000000 -crop 0x1000000 0x1001000 -o "$T/s3.in" -motorola -address-length=4; echo -motorola > "$T/s3.fmt"|motorola
titxt|"$T/rand.bin" -binary -crop 0 0x3000 -o "$T/titxt.in" -ti-txt; echo -ti-txt > "$T/titxt.fmt"|ti
titagged|"$T/rand.bin" -binary -crop 0 0x3000 -o "$T/titagged.in" -ti-tagged; echo -ti-tagged > "$T/titagged.fmt"|ti
LIST

  # Our writers, read back by srec_cat, give the original image.
  for to in intel motorola; do
    "$KRLDV" convert "$T/rand.bin" "$T/out.$to" --to "$to" --record-bytes 32 || { bad "bin -> $to failed"; continue; }
    fmt=-$to
    srec_cat "$T/out.$to" $fmt -o "$T/back.$to.bin" -binary 2>"$T/err" || bad "srec_cat rejects our $to output: $(cat "$T/err")"
    cmp -s "$T/back.$to.bin" "$T/rand.bin" || bad "bin -> $to -> srec_cat differs"
  done
  # Hex to hex keeps the gaps: no records of fill bytes, the same image for srec_cat.
  for to in intel motorola; do
    "$KRLDV" convert "$T/sparse.in" "$T/sparse.$to" --from intel --to "$to" || { bad "sparse -> $to failed"; continue; }
    [ "$(wc -l < "$T/sparse.$to")" -lt 10 ] || bad "sparse -> $to wrote the gap: $(wc -l < "$T/sparse.$to") lines"
    srec_cat "$T/sparse.$to" -$to -o "$T/sparse.$to.srec" -motorola -address-length=4 2>/dev/null
    srec_cat "$T/sparse.in" -intel -o "$T/sparse.ref.srec" -motorola -address-length=4 2>/dev/null
    srec_cat "$T/sparse.$to.srec" -motorola -o "$T/a.bin" -binary 2>/dev/null
    srec_cat "$T/sparse.ref.srec" -motorola -o "$T/b.bin" -binary 2>/dev/null
    cmp -s "$T/a.bin" "$T/b.bin" || bad "sparse -> $to changes the image"
  done
  "$KRLDV" convert "$T/rand.bin" "$T/lf.hex" --line-ending lf || bad "lf output"
  grep -q $'\r' "$T/lf.hex" && bad "--line-ending lf wrote CR"
  "$KRLDV" convert "$T/rand.bin" "$T/part.bin" --range 0x10:0x1F && [ "$(wc -c < "$T/part.bin")" -eq 16 ] || bad "--range for bin output"
fi

# Malformed inputs: exit 1 and a message naming the file and the line.
i=0
while IFS='|' read -r fmt line content; do
  [ -z "$fmt" ] && continue
  i=$((i + 1)); f="$T/bad$i.$fmt"
  printf "$content" > "$f"
  msg=$("$KRLDV" convert "$f" "$T/bad$i.bin" 2>&1); rc=$?
  [ "$rc" -eq 1 ] || bad "malformed $i ($fmt): exit $rc, expected 1"
  case "$msg" in *"bad$i.$fmt: line $line: "*) ;; *) bad "malformed $i ($fmt): message lacks file and line $line: $msg" ;; esac
  [ -e "$T/bad$i.bin" ] && bad "malformed $i ($fmt): output written"
done <<LIST
hex|2|:0400100001020304E2\r\n:0400200001020304E3\r\n:00000001FF\r\n
hex|1|:040010000102030E2\r\n:00000001FF\r\n
hex|1|:0500100001020304E2\r\n
hex|2|:0400100001020304E2\r\n:0400100009010203\r\n
hex|2|:0400100001020304E2\r\n:04001000010\x0003E2\r\n
hex|1|:02000006FFFFFA\r\n
hex|1|hello world\r\n
srec|1|S1130000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFD\r\n
srec|2|S00600004844521B\r\nS1ZZ\r\n
LIST

# A good file whose output cannot be written leaves the old output as it was.
printf 'old' > "$T/keep.hex"
"$KRLDV" convert "$T/bad1.hex" "$T/keep.hex" >/dev/null 2>&1
[ "$(cat "$T/keep.hex")" = old ] || bad "a failed convert damaged the output file"

# Conventions: usage errors exit 2 with the usage line and a pointer to the help.
msg=$("$KRLDV" convert "$T/rand.bin" "$T/x.bin" --from foo 2>&1); rc=$?
[ "$rc" -eq 2 ] || bad "unknown format name: exit $rc, expected 2"
case "$msg" in *"unknown format 'foo'"*"see krldv convert --help"*) ;; *) bad "unknown format message: $msg" ;; esac
[ "$(echo "$msg" | wc -l)" -le 4 ] || bad "a usage error printed the whole help"
"$KRLDV" --version | grep -Eq '^krldv [0-9]+\.[0-9]+\.[0-9]+$' || bad "--version"

# "-" is standard input and output; the format is then named.
printf ':0400100001020304E2\r\n:00000001FF\r\n' > "$T/small.hex"
"$KRLDV" convert "$T/small.hex" "$T/file.bin"
cat "$T/small.hex" | "$KRLDV" convert - "$T/stdin.bin" --from intel && cmp -s "$T/file.bin" "$T/stdin.bin" || bad "standard input"
"$KRLDV" convert - "$T/x.bin" < "$T/small.hex" >/dev/null 2>&1; [ $? -eq 2 ] || bad "standard input without a format name"
"$KRLDV" convert "$T/small.hex" "$T/file.hex" 2>/dev/null
"$KRLDV" convert "$T/small.hex" - --to intel > "$T/stdout.hex" && cmp -s "$T/file.hex" "$T/stdout.hex" || bad "standard output"
"$KRLDV" convert "$T/small.hex" - >/dev/null 2>&1; [ $? -eq 2 ] || bad "standard output without a format name"

# Data images and fuse maps do not turn into each other by accident.
"$KRLDV" convert "$T/small.hex" "$T/x.jed" >/dev/null 2>&1; [ $? -eq 2 ] || bad "data to JEDEC without --force"
[ -e "$T/x.jed" ] && bad "a refused conversion wrote its output"
"$KRLDV" convert "$T/small.hex" "$T/x.jed" --force 2>/dev/null && [ -s "$T/x.jed" ] || bad "data to JEDEC with --force"

# Targets that are not regular files are written into, not replaced.
mkfifo "$T/out.fifo"
cat "$T/out.fifo" > "$T/fifo.hex" & reader=$!
timeout 20 "$KRLDV" convert "$T/small.hex" "$T/out.fifo" --to intel 2>/dev/null || bad "writing a FIFO"
wait $reader
[ -p "$T/out.fifo" ] || bad "the FIFO was replaced"
cmp -s "$T/fifo.hex" "$T/file.hex" || bad "what came through the FIFO"
if [ "$(id -u)" -eq 0 ]; then
  mknod "$T/null" c 1 3
  "$KRLDV" convert "$T/small.hex" "$T/null" --to intel 2>/dev/null || bad "writing a character device"
  [ -c "$T/null" ] || bad "the device node was replaced by a $(stat -c %F "$T/null")"
fi
# A FIFO as input is read as a stream.
mkfifo "$T/in.fifo"
cat "$T/small.hex" > "$T/in.fifo" &
timeout 20 "$KRLDV" convert "$T/in.fifo" "$T/fifoin.bin" --from intel && cmp -s "$T/fifoin.bin" "$T/file.bin" || bad "reading a FIFO"

# A full disk (here a file-size limit) names the system's reason and keeps the old file.
printf 'old' > "$T/full.bin"
msg=$(bash -c "trap '' XFSZ; ulimit -f 64; '$KRLDV' convert '$T/rand.bin' '$T/full.bin' --from bin" 2>&1); rc=$?
[ "$rc" -eq 1 ] || bad "full disk: exit $rc"
case "$msg" in *"File too large"*) ;; *) bad "full disk message: $msg" ;; esac
[ "$(cat "$T/full.bin")" = old ] || bad "a failed save damaged the old file"

# A save killed at any moment leaves no temporary behind.
head -c $((32 * 1024 * 1024)) /dev/urandom > "$T/big.bin"
for delay in 0.02 0.1 0.2 0.4; do
  "$KRLDV" convert "$T/big.bin" "$T/killed.hex" --from bin --to intel & pid=$!
  sleep "$delay"; kill -9 "$pid" 2>/dev/null; wait "$pid" 2>/dev/null
done
leftovers=$(ls "$T" | grep -c 'krldv-')
[ "$leftovers" -eq 0 ] || bad "killed saves left $leftovers temporaries"

# A reader's error is told once, naming file and line, with no summary line after it.
msg=$("$KRLDV" convert "$T/bad1.hex" "$T/once.bin" 2>&1)
[ "$(echo "$msg" | wc -l)" -eq 1 ] || bad "an error told more than once: $msg"

# Huge inputs: a 5 GiB text file that is wrong at its first byte is rejected without being
# read whole, and a binary larger than the buffer is said to be cut before it is read.
truncate -s 5G "$T/huge.hex"
if [ -x /usr/bin/time ]; then
  /usr/bin/time -o "$T/rss" -f %M "$KRLDV" info "$T/huge.hex" >/dev/null 2>&1; kb=$(tail -1 "$T/rss")
  [ "$kb" -lt 1048576 ] || bad "a 5 GiB file wrong at byte 0 was read whole ($kb KiB)"
fi
msg=$("$KRLDV" info "$T/huge.hex" 2>&1); [ $? -eq 1 ] || bad "huge malformed file: exit status"
case "$msg" in *"huge.hex: line 1: "*) ;; *) bad "huge malformed file message: $msg" ;; esac
rm -f "$T/huge.hex"
exit $fail
