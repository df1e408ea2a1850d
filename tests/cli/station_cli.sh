#!/usr/bin/env bash
# Four stations run production against one definition file and one CSV file, with the "reuse"
# policy, while a fifth process kills them at random. Afterwards: no number or row was handed
# out twice, every number the file moved past is in the journal, and a clean station gets every
# unused number and row back, so in the end each passed once.
set -u
KRLDV="$1"
STORM_SECONDS="${KRLDV_STATION_SECONDS:-6}"
STATIONS=4
T="$(mktemp -d)"
fail=0
check() { if [ "$2" != "$3" ]; then echo "FAIL $1: got '$2', expected '$3'"; fail=1; fi; }

FIRST=$((0x100))
printf 'Line\r\n{\r\nTYPE=CALC\r\nLENGTH=4\r\nNEXT=0x100\r\nSTEP=0x1\r\n}\r\n' > "$T/line.ser"
head -c 65536 /dev/urandom > "$T/img.bin"
{ printf '#var,MAC,0x20,6,hex\r\nUSED,MAC\r\n'; for i in $(seq 3000); do printf ',0000%08X\r\n' "$i"; done; } > "$T/line.csv"
RUN=(--device AT24C512 --engine virtual --serial "$T/line.ser" --address 0x10 --policy reuse --csv "$T/line.csv")

station() {
  local s=$1
  while [ ! -e "$T/stop" ]; do
    "$KRLDV" program "$T/img.bin" "${RUN[@]}" --programmer "$T/chip$s.bin,fail=0.2,seed=$RANDOM" \
      --quantity 3 >/dev/null 2>&1 &
    echo $! > "$T/pid$s"
    wait $! 2>/dev/null
  done
}
pids=()
for s in $(seq $STATIONS); do station "$s" & pids+=($!); done

kills=0
end=$(( $(date +%s) + STORM_SECONDS ))
while [ "$(date +%s)" -lt "$end" ]; do
  sleep "0.$((RANDOM % 4 + 1))"
  pid=$(cat "$T/pid$((RANDOM % STATIONS + 1))" 2>/dev/null) || continue
  # Only a krldv this test started, never a process that took over its id.
  if { tr "\0" " " < "/proc/$pid/cmdline"; } 2>/dev/null | grep -q "$T/img.bin"; then
    kill -KILL "$pid" 2>/dev/null && kills=$((kills + 1))
  fi
done
touch "$T/stop"
wait "${pids[@]}"
[ "$kills" -gt 0 ] || { echo "FAIL no station was killed"; fail=1; }

next=$(( $(grep -a NEXT "$T/line.ser" | tr -d '\r' | cut -d= -f2) ))
J="$T/line.ser.journal"
keys() { for ((n = FIRST; n < $1; n++)); do printf '0:0x%08X\n' $n; done; }
awk '$3 == "take" {print $4}' "$J" | sort -u > "$T/taken"
taken=$(wc -l < "$T/taken")
check "every number the file moved past is journaled" "$(keys $next | sort | comm -23 - "$T/taken" | wc -l)" 0
check "no number passed twice" "$(awk '$3 == "pass" {print $4}' "$J" | sort | uniq -d | wc -l)" 0
"$KRLDV" serial journal "$T/line.ser" | grep -q "repeated 0$" || { echo "FAIL a number was handed out twice"; fail=1; }

# A clean station drains the numbers and rows given back or left by killed stations, then
# takes new ones only for the rest of its devices.
C="$T/line.csv.journal"
passedKeys() { awk '$3 == "pass" {print $4}' "$1" | sort -u | wc -l; }
markedRows() { grep -c '^[^,#U]' "$T/line.csv"; }
unused=$(( next - FIRST - $(passedKeys "$J") ))
marked=$(markedRows)
unusedRows=$(( marked - $(passedKeys "$C") ))
quantity=$(( (unused > unusedRows ? unused : unusedRows) + 1 ))
"$KRLDV" program "$T/img.bin" "${RUN[@]}" --programmer "$T/clean.bin" --quantity $quantity >/dev/null
check "clean station" "$?" 0
next2=$(( $(grep -a NEXT "$T/line.ser" | tr -d '\r' | cut -d= -f2) ))
check "new numbers only past the unused ones" $next2 $((next + quantity - unused))
out=$("$KRLDV" serial journal "$T/line.ser")
check "journal clean" "$?" 0
check "every number passed" "$(keys $next2 | sort | comm -23 - <(awk '$3 == "pass" {print $4}' "$J" | sort -u) | wc -l)" 0
# Rows: none twice, none lost. A row journaled by a station killed before marking it went to
# the next station; a failed device's row came back.
"$KRLDV" serial journal "$T/line.csv" | grep -q "repeated 0$" || { echo "FAIL a row was handed out twice"; fail=1; }
check "new rows only past the unused ones" "$(markedRows)" $((marked + quantity - unusedRows))
check "every marked row passed" "$(passedKeys "$C")" "$(markedRows)"
check "every row taken is marked" "$(awk '$3 == "take" {print $4}' "$C" | sort -u | wc -l)" "$(markedRows)"
check "no row passed twice" "$(awk '$3 == "pass" {print $4}' "$C" | sort | uniq -d | wc -l)" 0
[ $fail -eq 0 ] || { echo "$out" | tail -5; echo "kept in $T"; exit 1; }
echo "$kills kills, $taken numbers taken, $(grep -c " fail row:.* reuse$" "$C") rows given back"
rm -rf "$T"
exit 0
