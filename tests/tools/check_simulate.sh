#!/usr/bin/env bash
# kestrix simulate with nobody reading its port: the pseudo-terminal's buffer fills, and
# the receiver drops what nobody hears. It still stops on SIGTERM and on --seconds, and
# takes its COM port out of the registry. 38400 baud is the speed a new pseudo-terminal
# has, so the receiver speaks at once, without a reader that sets the speed.
set -uo pipefail
kestrix=$1 log=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export KESTRIX_REGISTRY=$work/registry KESTRIX_DEVICES=$work/dev
mkdir "$work/dev"
failures=0
fail() {
  echo "FAILED: $1"
  failures=$((failures + 1))
}
# Whether process $1 ends within $2 tenths of a second.
ends_within() {
  for _ in $(seq "$2"); do
    kill -0 "$1" 2>/dev/null || return 0
    sleep 0.1
  done
  return 1
}

"$kestrix" simulate "$log" --baud 38400 --speedup 100 --port 6 2>"$work/err" &
simulator=$!
sleep 1  # at 384 kB/s the buffer is full long before this
grep -q "kestrix-simulate" "$KESTRIX_REGISTRY" 2>/dev/null || fail "COM6 not registered"
kill -TERM "$simulator"
if ends_within "$simulator" 30; then
  wait "$simulator" || fail "exit status $? after SIGTERM"
  grep -q "kestrix-simulate" "$KESTRIX_REGISTRY" && fail "COM6 stayed in the registry"
else
  fail "no end within 3 s of SIGTERM"
  kill -KILL "$simulator"
fi

"$kestrix" simulate "$log" --baud 38400 --speedup 100 --port 6 --seconds 1 2>/dev/null &
simulator=$!
ends_within "$simulator" 30 || { fail "--seconds 1 not honoured within 3 s"; kill -KILL "$simulator"; }
wait "$simulator"
grep -q "kestrix-simulate" "$KESTRIX_REGISTRY" && fail "COM6 stayed in the registry after --seconds"

# --realtime (the demo's pace): epochs a second apart, here twenty times faster; the log's
# 73 epochs take more than three seconds, where at the pace of the wire they fit in one.
"$kestrix" simulate "$log" --baud 38400 --speedup 20 --port 6 --once --seconds 1 --realtime \
  2>"$work/err"
sent=$(sed -n 's/.*: \([0-9]*\) lines sent/\1/p' "$work/err")
[ "${sent:-0}" -gt 10 ] && [ "$sent" -lt 200 ] || fail "--realtime sent ${sent:-no} lines in 1 s"

[ "$failures" -eq 0 ] && echo "the simulator stops with nobody reading"
[ "$failures" -eq 0 ]
