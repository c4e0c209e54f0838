#!/usr/bin/env bash
# What the tools print by default: a receiver tells each epoch in several sentences, and
# the GGA and RMC of one second each deliver a fix (RMC and VTG each a movement). One
# line each per epoch, the same epochs as --all shows; and --grid utm gives the UTM
# form of the fix's hemisphere.
set -uo pipefail
kestrix=$1 logs=$2
failures=0
fail() {
  echo "FAILED $1"
  failures=$((failures + 1))
}
times() { grep '^fix ' | awk '{ print $3 }'; }
for log in "$logs"/haicom-305N.log "$logs"/bt451.log "$logs"/ublox-zed-f9p-nmea.log; do
  name=$(basename "$log")
  shown=$("$kestrix" replay "$log" --mode queue)
  all=$("$kestrix" replay "$log" --mode queue --all)
  [ -n "$(times <<<"$shown" | sort | uniq -d)" ] && fail "$name: a fix time printed twice"
  [ "$(times <<<"$shown" | sort -u)" == "$(times <<<"$all" | sort -u)" ] ||
    fail "$name: the epochs differ from --all"
  # A movement line at most once between two fixes.
  awk '/^fix /{ n = 0 } /^movement /{ if (++n > 1 && seen) bad = 1 } /^fix /{ seen = 1 }
       END { exit bad }' <<<"$shown" || fail "$name: two movements in one epoch"
done
[ "$(times <<<"$all" | wc -l)" -gt "$(times <<<"$shown" | wc -l)" ] ||
  fail "the logs give no epoch in two sentences: nothing tested"

south=$logs/haicom-305N.log north=$logs/bt451.log
[ "$("$kestrix" replay "$south" --grid utm)" == "$("$kestrix" replay "$south" --grid 2)" ] ||
  fail "a southern fix isn't given in the southern UTM grid"
[ "$("$kestrix" replay "$north" --grid utm)" == "$("$kestrix" replay "$north" --grid 1)" ] ||
  fail "a northern fix isn't given in the northern UTM grid"
"$kestrix" replay "$north" --grid north >/dev/null 2>&1 && fail "--grid north accepted"

[ "$failures" -eq 0 ] && echo "one fix and one movement line per epoch"
[ "$failures" -eq 0 ]
