#!/usr/bin/env bash
# kestrix simulate and kestrix gps together, in a private registry: the parser finds the
# simulated receiver by itself at 57600 baud, delivers its fixes, and the simulator takes
# its COM port out of the registry when it ends.
set -uo pipefail
kestrix=$1 log=$2
KESTRIX_REGISTRY=$(mktemp -d)/registry
export KESTRIX_REGISTRY
trap 'rm -rf "$(dirname "$KESTRIX_REGISTRY")"' EXIT
"$kestrix" simulate "$log" --baud 57600 --port 6 2>/dev/null &
simulator=$!
sleep 0.3
out=$("$kestrix" gps --seconds 5 --json)
kill "$simulator"
wait "$simulator"
failures=0
check() {
  if ! grep -q -- "$2" <<<"$out"; then
    echo "FAILED: $1"
    failures=$((failures + 1))
  fi
}
check "the port found at its speed" '"event":"status","nmea":1,"fix":0,"port":6,"baud":57600'
check "a fix delivered" '"event":"fix".*"type":3'
check "satellites delivered" '"event":"satellites"'
if grep -q "kestrix-simulate" "$KESTRIX_REGISTRY" 2>/dev/null; then
  echo "FAILED: the simulated port stayed in the registry"
  failures=$((failures + 1))
fi
[ "$failures" -eq 0 ] && echo "simulated receiver found and read"
[ "$failures" -eq 0 ]
