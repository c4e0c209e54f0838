#!/usr/bin/env bash
# kestrix replay feeds a log's bytes: binary receivers mix NUL bytes into the text, and
# the sentences after one on a line are delivered all the same.
set -uo pipefail
kestrix=$1
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# Two epochs: NUL bytes before the first sentence of a line, and before one at its start.
first='$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47'
second='$GPGGA,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*4D'
printf 'ab\0\0%s\r\n\0%s\n' "$first" "$second" >"$log"
out=$("$kestrix" replay "$log" --mode queue --all)
fixes=$(grep -c '^fix .* lat 48.117300000 lon 11.516666667' <<<"$out")
if [ "$fixes" != 2 ]; then
  echo "FAILED: $fixes of the 2 fixes after NUL bytes delivered"
  echo "$out"
  exit 1
fi
echo "sentences after NUL bytes delivered"
