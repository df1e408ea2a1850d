#!/usr/bin/env bash
# krldv split, shuffle and join: the same bytes as srec_cat's -split and -unsplit on random
# images for every width pair, the round trip, the refusals and the usage errors.
set -u
KRLDV="$1"
T="$(mktemp -d)"; trap 'rm -rf "$T"' EXIT
fail=0
# A new seed each run; KRLDV_TEST_SEED repeats one that failed.
SEED=${KRLDV_TEST_SEED:-$(date +%s)}
RANDOM=$SEED
check() { if [ "$2" != "$3" ]; then echo "FAIL $1 (seed $SEED): got '$2', expected '$3'"; fail=1; fi; }
same() { cmp -s "$2" "$3" || { echo "FAIL $1 (seed $SEED): $2 and $3 differ"; fail=1; }; }

LC_ALL=C awk -v seed="$SEED" 'BEGIN { srand(seed); for (i = 0; i < 20000; i++) printf "%c", int(rand() * 256) }' \
  > "$T/in.bin"
pairs="16:8 32:8 64:8 32:16 64:16 64:32"
for pair in $pairs; do
  wide=${pair%:*} narrow=${pair#*:}
  S=$((wide / 8)) D=$((narrow / 8)) n=$((wide / narrow))
  # A range off address 0, of whole wide units.
  first=$(( (RANDOM % 64 + 1) * 64 )) units=$((RANDOM % 1000 + 100))
  last=$((first + units * S - 1))
  out=$("$KRLDV" split "$T/in.bin" --widths "$pair" --range "$first:$last" -o "$T/k{lane}.bin")
  check "$pair split exit" "$?" 0
  check "$pair round trip" "$(echo "$out" | tail -1)" "round trip: identical"
  check "$pair lines" "$(echo "$out" | wc -l)" $((n + 1))
  destEnd=$(( (last / S + 1) * D ))
  unsplit=()
  for ((lane = 0; lane < n; lane++)); do
    srec_cat "$T/in.bin" -binary -crop "$first" $((last + 1)) -split "$S" $((lane * D)) "$D" \
      -fill 0xFF 0 "$destEnd" -o "$T/s$lane.bin" -binary
    same "$pair lane $lane against srec_cat" "$T/k$lane.bin" "$T/s$lane.bin"
    unsplit+=("$T/s$lane.bin" -binary -unsplit "$S" $((lane * D)) "$D")
  done
  "$KRLDV" join --widths "$narrow:$wide" $(for ((l = 0; l < n; l++)); do echo "$T/k$l.bin"; done) -o "$T/joined.bin"
  check "$pair join exit" "$?" 0
  srec_cat "${unsplit[@]}" -o "$T/unsplit.bin" -binary
  same "$pair join against srec_cat" "$T/joined.bin" "$T/unsplit.bin"
  cmp -s <(tail -c +$((first + 1)) "$T/joined.bin" | head -c $((last - first + 1))) \
         <(tail -c +$((first + 1)) "$T/in.bin" | head -c $((last - first + 1))) \
    || { echo "FAIL $pair joined range differs from the input"; fail=1; }
  # Shuffle one lane into a fresh image and into the joined one (the other lanes kept).
  lane=$((n - 1))
  "$KRLDV" shuffle "$T/k$lane.bin" --widths "$narrow:$wide" --lane "$lane" -o "$T/one.bin" >/dev/null
  srec_cat "$T/s$lane.bin" -binary -unsplit "$S" $((lane * D)) "$D" -fill 0xFF 0 $(stat -c %s "$T/one.bin") \
    -o "$T/oneref.bin" -binary
  same "$pair shuffle into a fresh image" "$T/one.bin" "$T/oneref.bin"
  "$KRLDV" shuffle "$T/k0.bin" --widths "$narrow:$wide" --lane 0 --into "$T/joined.bin" -o "$T/again.bin" >/dev/null
  same "$pair shuffle into a wide image" "$T/again.bin" "$T/joined.bin"
done

# Record formats keep their shape: the lanes of a sparse Intel image hold only the lanes' data,
# gaps staying gaps, and data at the top of the address space costs only what it is.
printf ':040100001122334451\r\n:0480000055667788C2\r\n:00000001FF\r\n' > "$T/sparse.hex"
"$KRLDV" split "$T/sparse.hex" --widths 16:8 -o "$T/h{lane}.hex" > "$T/out.txt"
check "sparse lane" "$(tr -d '\r' < "$T/h1.hex" | tr '\n' ' ')" ":02008000224418 :024000006688D0 :00000001FF "
check "sparse report" "$(head -1 "$T/out.txt")" "$T/h0.hex  lane 0 \"Even Byte\"  0x00000080-0x00004001  sum 0x003F3F92"
printf ':02000004FFFFFC\r\n:04FF0000AABBCCDDEF\r\n:00000001FF\r\n' > "$T/top.hex"
"$KRLDV" split "$T/top.hex" --widths 32:8 -o "$T/t{lane}.hex" > /dev/null
"$KRLDV" join --widths 8:32 "$T/t0.hex" "$T/t1.hex" "$T/t2.hex" "$T/t3.hex" -o "$T/top2.hex"
check "top of the address space and back" "$(tr -d '\r' < "$T/top2.hex" | tr '\n' ' ')" \
  ":02000004FFFFFC :04FF0000AABBCCDDEF :00000001FF "

# A range of no whole units is refused with its code, and nothing is written.
"$KRLDV" split "$T/in.bin" --widths 16:8 --range 0:2 -o "$T/r{lane}.bin" > /dev/null 2> "$T/err.txt"
check "refused split exit" "$?" 1
check "refused split message" "$(cat "$T/err.txt")" \
  "krldv: $T/in.bin: split refused (code 388): the range length is not a whole number of wide units"
[ -e "$T/r0.bin" ] && { echo "FAIL a refused split wrote a lane"; fail=1; }
# A range off the units splits, and the round trip says where the lanes went wrong.
out=$("$KRLDV" split "$T/in.bin" --widths 16:8 --range 1:4 -o "$T/m{lane}.bin" 2>/dev/null)
check "shifted round trip" "$(echo "$out" | tail -1)" "round trip: differs at 0x00000001"

"$KRLDV" split "$T/in.bin" --widths 8:16 -o "$T/x{lane}.bin" >/dev/null 2>&1; check "narrow first" "$?" 2
"$KRLDV" split "$T/in.bin" --widths 32:12 -o "$T/x{lane}.bin" >/dev/null 2>&1; check "odd width" "$?" 2
"$KRLDV" split "$T/in.bin" --widths 32:8 -o "$T/x.bin" >/dev/null 2>&1; check "pattern without {lane}" "$?" 2
"$KRLDV" shuffle "$T/k0.bin" --widths 16:32 --lane 2 -o "$T/x.bin" >/dev/null 2>&1; check "lane past the unit" "$?" 2
"$KRLDV" join --widths 8:32 "$T/k0.bin" -o "$T/x.bin" >/dev/null 2>&1; check "too few lanes" "$?" 2
exit $fail
