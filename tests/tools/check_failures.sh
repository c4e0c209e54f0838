#!/usr/bin/env bash
# The tools say what failed, in one line with the library's error number and text, and
# exit non-zero: kestrix gps on a port that isn't there or that the device refuses (with
# what the user can do), kestrix shp on a file that isn't there. An automatic search says
# which ports it goes through, and that none has answered yet.
set -uo pipefail
kestrix=$1 log=$2
work=$(mktemp -d)
chmod 755 "$work"  # another user reads the registry below
trap 'rm -rf "$work"' EXIT
export KESTRIX_REGISTRY=$work/registry KESTRIX_DEVICES=$work/dev
mkdir "$work/dev"
failures=0
fail() {
  echo "FAILED: $1"
  [ -f "$work/err" ] && sed 's/^/  stderr: /' "$work/err"
  failures=$((failures + 1))
}

start=$(date +%s)
"$kestrix" gps --port 9 --seconds 10 >"$work/out" 2>"$work/err"
status=$?
[ "$status" -ne 0 ] || fail "gps --port 9 without COM9 exits 0"
[ $(($(date +%s) - start)) -le 3 ] || fail "gps --port 9 waits for its time before failing"
[ "$(cat "$work/err")" == "kestrix gps: COM9: error 10007: Comm port does not exist" ] ||
  fail "gps --port 9 doesn't say in one line that COM9 does not exist"

"$kestrix" shp "$work/missing.shp" >"$work/out" 2>"$work/err"
status=$?
[ "$status" -ne 0 ] || fail "shp of a missing file exits 0"
[ -s "$work/out" ] && fail "shp of a missing file prints a header"
[ "$(wc -l <"$work/err")" -eq 1 ] && grep -q "missing.shp: error 2: " "$work/err" ||
  fail "shp of a missing file doesn't say so in one line"

# A receiver at 9600 baud, a speed the search never tries: COM6 stays silent for it.
"$kestrix" simulate "$log" --baud 9600 --port 6 2>"$work/simulate" &
simulator=$!
sleep 0.3
device=$(sed -n 's|^kestrix simulate: COM6: is \(/dev/pts/[0-9]*\),.*|\1|p' "$work/simulate")
[ -n "$device" ] || fail "no simulated COM6"
"$kestrix" gps --seconds 6 >"$work/out" 2>"$work/err"
grep -q "searching COM6 ($device) at 4800 and 57600 baud" "$work/err" ||
  fail "the search doesn't say which ports it goes through"
grep -q "no receiver has answered yet on COM6 ($device)" "$work/err" ||
  fail "the search doesn't say that no receiver answered"

# The same port refused to this user: as root the device is given to the group dialout
# and the tool runs as nobody; otherwise the device is closed to its owner.
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null; then
  chgrp dialout "$device" && chmod 660 "$device"
  as_other=(setpriv --reuid=65534 --regid=65534 --clear-groups)
  advice="it is open to the group dialout, which you are not in"
else
  chmod 000 "$device"
  as_other=()
  advice="you may not open $device"
fi
"${as_other[@]}" "$kestrix" gps --port 6 --seconds 5 >"$work/out" 2>"$work/err"
status=$?
[ "$status" -ne 0 ] || fail "gps on a refused port exits 0"
grep -qx "kestrix gps: COM6: error 10007: Comm port in use!" "$work/err" ||
  fail "the library's code and text for a refused port aren't kept"
grep -q "$advice" "$work/err" || fail "gps doesn't say what the user can do about a refused port"
kill "$simulator"
wait "$simulator"

[ "$failures" -eq 0 ] && echo "the tools say what failed"
[ "$failures" -eq 0 ]
