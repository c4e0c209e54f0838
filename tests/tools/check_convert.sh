#!/usr/bin/env bash
# kestrix convert on declarative cases: arguments, input lines, expected output and exit
# code. Reports every case that differs.
set -uo pipefail
kestrix=$1
failures=0

# case NAME EXPECTED_EXIT EXPECTED_OUTPUT INPUT -- ARGUMENTS...
case_() {
  local name=$1 want_exit=$2 want=$3 input=$4
  shift 5
  local got exit_code
  got=$(printf '%s' "$input" | "$kestrix" convert "$@" 2>&1)
  exit_code=$?
  if [ "$got" != "$want" ] || [ "$exit_code" != "$want_exit" ]; then
    echo "FAILED $name: exit $exit_code (want $want_exit)"
    echo "  got:  $got"
    echo "  want: $want"
    failures=$((failures + 1))
  fi
}

case_ "degrees to UTM" 0 "500000.000 6651411.191 33V" "" -- --from "WGS 84" --to grid:1 60 15
case_ "DMS text to a forced zone" 0 "1015538.116 6608885.192 32V" "" -- \
  --from wgs84 --to grid:1 --zone 32 "59 18'7.25 N 18 4'15.5 E"
case_ "degree signs and quotes" 0 "1015538.116 6608885.192 32V" "" -- \
  --from datum:1 --to grid:1 --zone 32 "59°18'7.25\"N 18°4'15.5\"E"
case_ "lines on stdin, grid to datum" 0 "$(printf '59.999999995 15.000000000 0.000\n59.999999995 15.000000000 0.000')" \
  "$(printf '500000 6651411.190\n\n500000 6651411.190\n')" -- --from grid:1 --from-zone 33 --to datum:1
case_ "datum to datum with height" 0 "51.499542495 -0.118412699 54.880" "" -- \
  --from datum:1 --to "OSGB 36" 51.5 -0.12 100
case_ "grid to grid" 0 "1015538.116 6608885.193 32V" "" -- \
  --from grid:1 --from-zone 34 --to grid:1 --zone 32 333231.347 6577348.815
case_ "unknown grid id" 2 "Unknown grid!" "" -- --from datum:1 --to grid:99 1 2
case_ "unknown datum name" 2 "Unknown datum!" "" -- --from nowhere --to grid:1 1 2
case_ "refused zone" 2 "Invalid Zone for this grid!" "" -- --from datum:1 --to grid:1 --zone 61 1 2
case_ "State Plane without zone" 1 '"40 -75": error 10003: Zone must be specified for this grid' "" -- \
  --from datum:1 --to grid:31 40 -75
case_ "outside the Danish grid" 1 '"55.12 14.9": error 10003: Position outside grid' "" -- \
  --from datum:1 --to grid:48 55.12 14.9
# Every line gets its answer or a message that names it with the library's error, and
# the exit status says whether any failed: a refused value is never read as 0, and a
# line without coordinates isn't passed over.
case_ "a refused latitude" 1 \
  '"95 10": error 10003: Invalid latitude. Must be between -PI/2 and PI/2' "" -- \
  --from datum:1 --to grid:1 95 10
no_coordinates='no coordinates: a datum side reads "lat lon [h]" in degrees, or "59 18'"'"'7.25 N 18 4'"'"'15.5 E [h]"'
case_ "a line that isn't coordinates" 1 "\"abc def\": $no_coordinates" "" -- \
  --from datum:1 --to grid:1 abc def
case_ "every line of stdin answered" 1 "$(printf '%s\n' \
  "line 1 \"abc def\": $no_coordinates" \
  "500000.000 6651411.191 33V" \
  'line 4 "95 10": error 10003: Invalid latitude. Must be between -PI/2 and PI/2' \
  "500000.000 6651411.191 33V")" \
  "$(printf 'abc def\n\n60 15\n95 10\n60 15\n')" -- --from datum:1 --to grid:1
case_ "a grid line without coordinates" 1 \
  'line 1 "6651411": no coordinates: a grid side reads "easting northing"' "6651411" -- \
  --from grid:1 --from-zone 33 --to datum:1

if "$kestrix" convert --list | grep -q "^grid:29	German Gauss-Krueger, 3 degree zones$"; then :; else
  echo "FAILED --list"
  failures=$((failures + 1))
fi
[ "$failures" -eq 0 ] && echo "all cases passed"
[ "$failures" -eq 0 ]
