#!/bin/sh
# kestrix shp copy of every good shape file must give the same .shp and .shx, byte for
# byte, wherever the input follows the format's rules. The exceptions below say why
# they can't; each must still copy without a failure.
set -u
kestrix=$1
data=$(cd "$(dirname "$0")/../data/shp/good" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Files whose copy differs by the format's rules, not by a fault. "header": the input's
# header gives Z or M ranges or bounds that aren't those of its records (garbage, 0 for
# a range that the records fill, -1 for an empty file); the writer puts the records' own
# there, and everything from byte 100 on must still be the same. "rewritten": the
# records themselves take the form the writer gives them.
exception() {
  case $1 in
    # MultiPatch is no supported type: nothing to copy.
    shapelib/multipatch | shapefile-rs/multipatch) echo refused ;;
    go-shp/multipointm | go-shp/pointm | go-shp/polygonm | go-shp/polylinem | \
    mbostock/multipointm | mbostock/pointm | mbostock/polygonm | mbostock/polylinem | \
    nts/with_M | nts/tnp_pol | nts/__emptyShapefile | mapshaper/max_callstack_error | \
    shapelib/mexico_drainage | shapelib/mexico_lakes | shapelib/mexico_rivers | \
    shapelib/mexico_states) echo header ;;
    # PointZ records of 28 bytes, and Z records without M arrays: written whole, with M.
    shapelib/masspntz | shapelib/brklinz | debian/storms_xyz | pyshp/releaseArea20090407) \
      echo rewritten ;;
    # Z files with M arrays under a header M range of 0 to 0: M reads, and writes, as 0.
    go-shp/polylinez | go-shp/polygonz | go-shp/multipointz | shapefile-js/export_polylinez | \
    mapshaper/data_corruption_error) echo rewritten ;;
    # M "no data" (below -1e38) left out of the records' M ranges; the writer's ranges
    # take in every node.
    go-shp/pointz | nts/shape_PointZM | nts/shape_pointM | shapefile-rs/linem | \
    shapefile-rs/linez | shapefile-rs/pointz | shapefile-rs/polygonz) echo rewritten ;;
    *) echo same ;;
  esac
}

# The same bytes, from `from` on.
same_from() { cmp -s -i "$3:$3" "$1" "$2"; }

status=0
same=0
past_header=0
for shp in "$data"/*/*.shp; do
  base=${shp%.shp}
  name=${base#"$data"/}
  kind=$(exception "$name")
  out=$work/copy
  rm -f "$out.shp" "$out.shx"
  if ! "$kestrix" shp copy "$shp" "$out.shp" 2> "$work/err"; then
    if [ "$kind" != refused ]; then
      echo "FAIL $name: $(cat "$work/err")"
      status=1
    fi
    continue
  fi
  [ "$kind" = rewritten ] && continue
  from=0
  [ "$kind" = header ] && from=100
  if ! same_from "$shp" "$out.shp" $from || [ "$(wc -c < "$shp")" != "$(wc -c < "$out.shp")" ]; then
    echo "FAIL $name: .shp differs at $(cmp -i "$from:$from" "$shp" "$out.shp" | sed 's/.*byte //')"
    status=1
  elif [ -f "$base.shx" ] && ! same_from "$base.shx" "$out.shx" $from; then
    echo "FAIL $name: .shx differs"
    status=1
  else
    same=$((same + 1))
    [ "$kind" = header ] && past_header=$((past_header + 1))
  fi
done
echo "$same files copied byte for byte ($past_header of them from byte 100 on)"
exit $status
