#!/bin/sh
# Files that the library writes, read by shapelib (shpdump) and by GDAL (ogrinfo): every
# good file of tests/data/shp with an index is copied with `kestrix shp copy`, and both
# readers must see the same records in the copy as in the original. Run by hand with
# shapelib and gdal-bin installed; its report is checked in as written_files.txt.
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
