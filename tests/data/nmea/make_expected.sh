#!/usr/bin/env bash
# Decodes every log of this folder with gpsd's gpsdecode (Debian gpsd-clients), the
# independent decoder the tests compare against: NAME.log -> NAME.gpsdecode.jsonl.
# Run from this folder after adding a log; a commit that changes an output says why.
set -euo pipefail
command -v gpsdecode >/dev/null || { echo "needs gpsdecode (apt-get install gpsd-clients)"; exit 1; }
for log in *.log; do
  gpsdecode < "$log" > "${log%.log}.gpsdecode.jsonl"
done
gpsdecode --version 2>&1 | head -1 > gpsdecode-version.txt
