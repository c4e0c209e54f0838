#!/usr/bin/env python3
"""The fixes of real receiver logs against gpsd's gpsdecode.

Runs `kestrix replay LOG --mode queue --json --all` for every log in tests/data/nmea and
compares with the checked-in gpsdecode output (NAME.gpsdecode.jsonl):

- every gpsd TPV with a position (mode 2 or 3) has a fix of the library at the same
  time of day, with latitude and longitude within 1e-7 degrees and, where both give
  one, the altitude above sea level within 1 mm;
- speed and course of the library's movement that follows such a fix agree with the
  TPV's within 1 mm/s and 1e-6 degrees, where the TPV carries them;
- every satellites event (one cycle of "GSV") matches, in order, a gpsd SKY that holds
  each of its satellites with the same number, elevation, azimuth and SNR;
- a satellite that the library flags as used is used in that SKY, and where one cycle of
  "GSV" covers the whole sky (one talker, no signal IDs) the other way round too.

Where the library's rules differ from gpsd on purpose, the comparison says which rule:
- one fix per sentence, no merging: gpsd merges a reporting cycle into one TPV, so a
  TPV is matched against any of the library's fixes of that time of day;
- the date rules: gpsdecode adds 1024 weeks to NMEA dates before 2017 and dates a GGA
  without an RMC by the clock; the library takes the RMC date as it stands and gives a
  GGA the date of the fix before it. Dates are therefore not compared, times of day are;
- a TPV of mode 1 (no fix) has no position to compare; the library doesn't deliver a
  fix of type 0 at all;
- satellites: the library delivers every cycle of "GSV" as it comes, one per talker and
  per signal, and flags as used the satellites of the "GSA" before the cycle's first
  "GSV"; gpsd merges the talkers and signals into one sky. So with signal IDs the SNR
  (which is per signal) isn't compared; with several talkers a cycle that doesn't follow
  its "GSA" has no used flags, so only used-in-the-library is checked;
- satellite numbers: the library keeps the sentence's numbers, gpsd renumbers Galileo
  and BeiDou (301..., 401...), so their cycles find no SKY: exactly those may go unmatched;
- gpsd drops the used flag of a satellite without SNR; used isn't compared there.
"""
import json
import re
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
    out = subprocess.run([kestrix, "replay", str(log), "--mode", "queue", "--json", "--all"],
                         capture_output=True, text=True, check=True).stdout
    fixes, movements, skies, last = {}, {}, [], None
    for line in out.splitlines():
        event = json.loads(line)
        if event["event"] == "satellites":
            skies.append([tuple(map(int, m.split(":"))) for m in event["list"].split(";") if m])
        elif event["event"] == "fix" and "lat" in event:
            last = event["time"].split("T")[1]
            fixes.setdefault(last, []).append(event)
        elif event["event"] == "movement" and last:
            movements.setdefault(last, []).append(event)
    return fixes, movements, skies


def gpsdecode_output(log, kind):
    objects = (json.loads(line) for line in (DATA / (log.stem + ".gpsdecode.jsonl")).read_text().splitlines())
    return [o for o in objects if o.get("class") == kind]


class SkyShape:
    """What a log's "GSV" and "GSA" look like, which decides what can be compared."""

    def __init__(self, log):
        text = log.read_text(errors="replace")
        self.talkers = set(re.findall(r"\$(..)GSV", text))
        # Four fields a satellite behind total, number and count; one more is a signal ID.
        self.signal_ids = any((len(m.group(1).split(",")) - 3) % 4 == 1
                              for m in re.finditer(r"\$..GSV,([^*$\r\n]*)\*", text))
        self.renumbered_cycles = len(re.findall(r"\$(GA|GB|BD)GSV,\d+,1,", text))
        self.whole_sky = len(self.talkers) == 1 and not self.signal_ids


def compare_satellites(skies, log):
    shape = SkyShape(log)
    gpsd = [{(s["PRN"], s["el"], s["az"]): (s.get("ss", 0), s["used"]) for s in sky["satellites"]}
            for sky in gpsdecode_output(log, "SKY") if sky.get("satellites")]
    failures, unmatched, at = [], 0, 0

    def holds(sky, members):
        return all((n, el, az) in sky and (shape.signal_ids or sky[(n, el, az)][0] == snr)
                   for n, el, az, snr, _ in members)

    for cycle in skies:
        seen = [m for m in cycle if m[1:4] != (0, 0, 0)]  # named by "GSA" alone: nothing to compare
        found = next((i for i in range(at, len(gpsd)) if holds(gpsd[i], seen)), None)
        if found is None:
            unmatched += 1
            continue
        at = found
        for n, el, az, _, used in seen:
            snr, gpsd_used = gpsd[at][(n, el, az)]
            if snr and (used and not gpsd_used or gpsd_used and not used and shape.whole_sky):
                failures.append(f"satellite {n}: used {bool(used)} vs gpsd {gpsd_used}")
    if unmatched != shape.renumbered_cycles:
        failures.append(f"{unmatched} satellites events without their SKY, "
                        f"{shape.renumbered_cycles} Galileo/BeiDou cycles")
    return len(skies) - unmatched, failures


def compare(kestrix, log):
    fixes, movements, skies = library_events(kestrix, log)
    skies_compared, failures = compare_satellites(skies, log)
    if log.name in RULES:
        print(f"{log.name}: {RULES[log.name]}")
        return 0, 0, [f"the library has {len(fixes)} fixes"] if fixes else []
    compared = 0
    for tpv in gpsdecode_output(log, "TPV"):
        if tpv.get("mode", 0) < 2 or "lat" not in tpv or "time" not in tpv:
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
    return compared, skies_compared, failures


def main():
    kestrix = sys.argv[1]
    total, total_skies, bad = 0, 0, 0
    for log in sorted(DATA.glob("*.log")):
        compared, skies_compared, failures = compare(kestrix, log)
        total += compared
        total_skies += skies_compared
        print(f"{log.name}: {compared} fixes, {skies_compared} satellites events compared, "
              f"{len(failures)} differ")
        for failure in failures[:5]:
            print("   ", failure)
        bad += len(failures)
    print(f"{total} fixes and {total_skies} satellites events compared, {bad} differ")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
