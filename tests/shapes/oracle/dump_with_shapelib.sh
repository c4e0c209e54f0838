#!/bin/sh
# Dumps every good shape file under tests/data/shp that has an index with shapelib's
# shpdump (Debian package shapelib), into tests/shapes/oracle/shapelib/. shapelib
# refuses a file without its .shx, so those files have no dump. Dumps are gzipped. Run it again after
# adding files; the tests read the dumps, never shapelib.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
data=$here/../../data/shp/good
out=$here/shapelib
rm -rf "$out"
mkdir -p "$out"
dpkg-query -W -f='shapelib ${Version}\n' shapelib > "$out/VERSION"
cd "$data"
for shp in */*.shp; do
  base=${shp%.shp}
  [ -f "$base.shx" ] || continue
  mkdir -p "$out/$(dirname "$base")"
  shpdump -precision 17 "$shp" | gzip -n -9 > "$out/$base.txt.gz"
done
