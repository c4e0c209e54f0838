#!/usr/bin/env bash
# kestrix replay: the window and queue modes deliver the same events in the same order,
# polling sees a subset of them, and every JSON line is one object with its event.
set -uo pipefail
kestrix=$1 logs=$2
failures=0
for log in "$logs"/bt451.log "$logs"/neo-m8n.log "$logs"/isync.log; do
  window=$("$kestrix" replay "$log" --mode window --grid 1)
  queue=$("$kestrix" replay "$log" --mode queue --grid 1)
  poll=$("$kestrix" replay "$log" --mode poll --grid 1)
  if [ "$window" != "$queue" ]; then
    echo "FAILED $log: window and queue modes differ"
    failures=$((failures + 1))
  fi
  if [ -z "$(echo "$window" | grep '^fix ')" ]; then
    echo "FAILED $log: no fix delivered"
    failures=$((failures + 1))
  fi
  while IFS= read -r line; do
    if ! grep -qxF -- "$line" <<<"$window"; then
      echo "FAILED $log: polled event never delivered: $line"
      failures=$((failures + 1))
      break
    fi
  done <<<"$poll"
  if "$kestrix" replay "$log" --json | grep -qv '^{"event":"[a-z]*".*}$'; then
    echo "FAILED $log: a JSON line is not one event object"
    failures=$((failures + 1))
  fi
done
"$kestrix" replay /nonexistent.log 2>/dev/null
[ $? -eq 2 ] || { echo "FAILED a missing log isn't refused"; failures=$((failures + 1)); }
[ "$failures" -eq 0 ] && echo "replay modes agree"
[ "$failures" -eq 0 ]
