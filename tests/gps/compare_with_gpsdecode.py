#!/usr/bin/env python3
"""The fixes of real receiver logs against gpsd's gpsdecode.

Runs `kestrix replay LOG --mode queue --json` for every log in tests/data/nmea and
compares with the checked-in gpsdecode output (NAME.gpsdecode.jsonl):

- every gpsd TPV with a position (mode 2 or 3) has a fix of the library at the same
  time of day, with latitude and longitude within 1e-7 degrees and, where both give
  one, the altitude above sea level within 1 mm;
- speed and course of the library's movement that follows such a fix agree with the
  TPV's within 1 mm/s and 1e-6 degrees, where the TPV carries them.

Where the library's rules differ from gpsd on purpose, the comparison says which rule:
- one fix per sentence, no merging: gpsd merges a reporting cycle into one TPV, so a
  TPV is matched against any of the library's fixes of that time of day;
- the date rules: gpsdecode adds 1024 weeks to NMEA dates before 2017 and dates a GGA
  without an RMC by the clock; the library takes the RMC date as it stands and gives a
  GGA the date of the fix before it. Dates are therefore not compared, times of day are;
- a TPV of mode 1 (no fix) has no position to compare; the library doesn't deliver a
  fix of type 0 at all.
"""
import json
import subprocess
import sys
from pathlib import Path

DATA = Path(__file__).resolve().parents[1] / "data" / "nmea"
KNOTS = 0.51444341959472  # metres per second in a knot, as the library converts


# Logs where a rule of the library decides otherwise than gpsd, with the rule.
RULES = {
    "hp58534a.log": "no sentence carries a checksum, and the library's checksum is "
                    "mandatory by default: it delivers no fix at all, where gpsd accepts them",
}


def time_of_day(iso):
    return iso.split("T")[1].rstrip("Z")[:12]


def library_events(kestrix, log):
    out = subprocess.run([kestrix, "replay", str(log), "--mode", "queue", "--json"],
                         capture_output=True, text=True, check=True).stdout
    fixes, movements, last = {}, {}, None
    for line in out.splitlines():
        event = json.loads(line)
        if event["event"] == "fix" and "lat" in event:
            last = event["time"].split("T")[1]
            fixes.setdefault(last, []).append(event)
        elif event["event"] == "movement" and last:
            movements.setdefault(last, []).append(event)
    return fixes, movements


def compare(kestrix, log):
    fixes, movements = library_events(kestrix, log)
    if log.name in RULES:
        print(f"{log.name}: {RULES[log.name]}")
        return 0, [f"the library has {len(fixes)} fixes"] if fixes else []
    failures, compared = [], 0
    for line in (DATA / (log.stem + ".gpsdecode.jsonl")).read_text().splitlines():
        tpv = json.loads(line)
        if tpv.get("class") != "TPV" or tpv.get("mode", 0) < 2 or "lat" not in tpv or "time" not in tpv:
            continue
        when = time_of_day(tpv["time"])
        ours = fixes.get(when, [])
        if not ours:
            failures.append(f"{when}: gpsd has a fix, the library none")
            continue
        compared += 1
        best = min(ours, key=lambda f: abs(f["lat"] - tpv["lat"]) + abs(f["lon"] - tpv["lon"]))
        if abs(best["lat"] - tpv["lat"]) > 1e-7 or abs(best["lon"] - tpv["lon"]) > 1e-7:
            failures.append(f"{when}: position {best['lat']},{best['lon']} vs {tpv['lat']},{tpv['lon']}")
        if "altMSL" in tpv and not any(abs(f["alt"] - tpv["altMSL"]) <= 1e-3 for f in ours):
            failures.append(f"{when}: altitude {[f['alt'] for f in ours]} vs {tpv['altMSL']}")
        moving = movements.get(when, [])
        # A TPV without a course carries gpsd's own speed from the change of position.
        if moving and "speed" in tpv and "track" in tpv:
            if not any(abs(m["speed"] * KNOTS - tpv["speed"]) <= 1e-3 for m in moving):
                failures.append(f"{when}: speed {[m['speed'] for m in moving]} kn vs {tpv['speed']} m/s")
        if moving and "track" in tpv:
            if not any(abs(m["heading"] - tpv["track"]) <= 1e-6 for m in moving):
                failures.append(f"{when}: course {[m['heading'] for m in moving]} vs {tpv['track']}")
    return compared, failures


def main():
    kestrix = sys.argv[1]
    total, bad = 0, 0
    for log in sorted(DATA.glob("*.log")):
        compared, failures = compare(kestrix, log)
        total += compared
        print(f"{log.name}: {compared} fixes compared, {len(failures)} differ")
        for failure in failures[:5]:
            print("   ", failure)
        bad += len(failures)
    print(f"{total} fixes compared, {bad} differ")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
