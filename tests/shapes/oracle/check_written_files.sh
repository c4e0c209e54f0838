#!/bin/sh
# Files that the library writes, read by shapelib (shpdump) and by GDAL (ogrinfo): every
# good file of tests/data/shp with an index is copied with `kestrix shp copy`, and both
# readers must see the same records in the copy as in the original. Each copy, without
# its index, then takes its own records once more in update mode (`--append`), and both
# readers must see them twice. Last, records with empty parts, which the library reads,
# are written without them. Run by hand with shapelib and gdal-bin installed; its
# report is checked in as written_files.txt.
#   tests/shapes/oracle/check_written_files.sh build/kestrix > tests/shapes/oracle/written_files.txt
set -u
kestrix=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
here=$(cd "$(dirname "$0")" && pwd)
data=$here/../../data/shp/good
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Records only: the header's bounds may be rewritten (see tools/check_shp_copy.sh).
records() { shpdump -precision 17 "$1" | sed -n '/^Shape:/,$p'; }
# The same without M: a Z record of the original may have no M arrays, or M arrays under
# a header M range of 0 to 0, which the library reads as M 0; the copy holds them whole.
records_xyz() { records "$1" | sed -E 's/^( *(Bounds:| *to)? *\([^,]*,[^,]*,[^,]*), [^)]*\)/\1)/'; }
# The nodes alone: an original's record ranges may leave out nodes of its own.
nodes_xyz() { records_xyz "$1" | grep -vE '^ *(Bounds:|to \()'; }
# Geometries only, as WKT with Z and M.
geometries() { ogrinfo -ro -al -q -geom=ISO_WKT "$1" 2>/dev/null | grep -E '^  [A-Z]+ ' ; }

echo "$(dpkg-query -W -f='shapelib ${Version}' shapelib), $(ogrinfo --version)"
same=0
for shp in "$data"/*/*.shp; do
  base=${shp%.shp}
  name=${base#"$data"/}
  [ -f "$base.shx" ] || continue
  copy=$work/$(echo "$name" | tr / _)
  if ! "$kestrix" shp copy "$shp" "$copy.shp" 2>/dev/null; then
    echo "$name: not copied (refused by the library)"
    rm -f "$copy.shp" "$copy.shx"
    continue
  fi
  if [ "$(nodes_xyz "$shp")" != "$(nodes_xyz "$copy.shp")" ]; then
    echo "$name: shapelib reads other records in the copy"
  elif [ "$(records_xyz "$shp")" != "$(records_xyz "$copy.shp")" ]; then
    echo "$name: shapelib reads the same nodes in the copy; the record ranges are the nodes' own"
  elif [ "$(records "$shp")" != "$(records "$copy.shp")" ]; then
    echo "$name: shapelib reads the same X, Y and Z in the copy, and M as the library reads it"
  elif [ "$(geometries "$shp")" != "$(geometries "$copy.shp")" ]; then
    echo "$name: GDAL reads other geometries in the copy"
  else
    same=$((same + 1))
  fi
done
echo "$same files: shapelib and GDAL read the copy as the original"

# Update mode on a file without its index: the index is made from the records first.
# The records' listing without their numbers, which run on in the file appended to.
listing() { grep -vE '^(Shape:.*)?$'; }
twice=0
for copy in "$work"/*.shp; do
  copy=${copy%.shp}
  appended=$copy.appended
  cp "$copy.shp" "$appended.shp"
  if ! "$kestrix" shp copy --append "$copy.shp" "$appended.shp" 2>/dev/null; then
    echo "$(basename "$copy"): not appended"
  elif [ "$( (records "$copy.shp"; records "$copy.shp") | listing)" != \
         "$(records "$appended.shp" | listing)" ]; then
    echo "$(basename "$copy"): shapelib doesn't read the records twice after an append"
  elif [ "$( (geometries "$copy.shp"; geometries "$copy.shp") )" != "$(geometries "$appended.shp")" ]; then
    echo "$(basename "$copy"): GDAL doesn't read the geometries twice after an append"
  else
    twice=$((twice + 1))
  fi
  rm -f "$appended.shp" "$appended.shx"
done
echo "$twice files: appended to without an index, shapelib and GDAL read every record twice"

# Opening and closing in update mode alone leaves a whole pair: an empty file appended.
shpcreate "$work/empty" polygon
cp "$data/shapelib/mexico_states.shp" "$work/opened.shp"
"$kestrix" shp copy --append "$work/empty.shp" "$work/opened.shp"
echo "opened and closed without an index: shapelib reads" \
  "$(records "$work/opened.shp" | grep -c '^Shape:') of" \
  "$(records "$data/shapelib/mexico_states.shp" | grep -c '^Shape:') records, GDAL" \
  "$(geometries "$work/opened.shp" | wc -l)"

# PolyLine records with a part that has no nodes: in the middle, first, and last (a part
# start at the node count). shapelib and GDAL refuse these; the library reads them and
# leaves the empty parts out of what it writes.
python3 - "$work/parts.shp" <<'PYTHON'
import struct, sys
records = [([0, 2, 2], [(0, 0), (1, 1), (2, 2), (3, 3)]),
           ([0, 0], [(5, 5), (6, 6), (7, 7)]),
           ([0, 2], [(8, 8), (9, 9)])]
body, index, at = b"", b"", 100
for number, (starts, points) in enumerate(records, 1):
    xs, ys = [p[0] for p in points], [p[1] for p in points]
    content = struct.pack("<i4d2i", 3, min(xs), min(ys), max(xs), max(ys), len(starts), len(points))
    content += struct.pack("<%di" % len(starts), *starts)
    content += b"".join(struct.pack("<2d", *p) for p in points)
    body += struct.pack(">2i", number, len(content) // 2) + content
    index += struct.pack(">2i", at // 2, len(content) // 2)
    at += 8 + len(content)
def header(length):
    return struct.pack(">7i", 9994, 0, 0, 0, 0, 0, length // 2) + struct.pack("<2i8d", 1000, 3, 0, 0, 9, 9, 0, 0, 0, 0)
name = sys.argv[1]
open(name, "wb").write(header(100 + len(body)) + body)
open(name[:-1] + "x", "wb").write(header(100 + len(index)) + index)
PYTHON
"$kestrix" shp copy "$work/parts.shp" "$work/parts_copy.shp"
echo "records with empty parts, as shapelib reads the copy:"
shpdump "$work/parts_copy.shp" 2>&1 | grep -E '^Shape:|Corrupt|rror'
echo "and as GDAL reads it:"
ogrinfo -ro -al -q -geom=ISO_WKT "$work/parts_copy.shp" 2>&1 | grep -E '^  [A-Z]+ |ERROR'
