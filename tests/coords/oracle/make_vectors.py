#!/usr/bin/env python3
"""Asks PROJ's cs2cs for WGS 84 -> grid conversions of points spread over each grid.

PROJ is told exactly the library's numbers: the ellipsoid by +a and +es as the tables
give them (never PROJ's named ellipsoids), the seven parameters by +towgs84 (position
vector, rotations in arc-seconds, scale in ppm), and each grid's projection parameters.
The Belgian Lambert 72 is plain LCC in PROJ; the script turns its output by the grid's
rotation. Output: vectors.txt, one line per point:

    grid zone datum latitude longitude easting northing tolerance_mm

datum is the grid's own (the State Plane row's for grids 30 and 31).

The tolerance is 1 mm for Transverse Mercator (PROJ's TM is not the same series; all
points lie within 4.3 degrees of the central meridian, most within 3) and 0.01 mm for
the others, plus
0.15 mm on the zero-shift GRS 80 datums 2, 11, 14 and 19, where PROJ skips the
geocentric round trip that the library makes.

Run from this folder: ./make_vectors.py > vectors.txt (needs proj-bin),
./make_vectors.py --datums > datum_vectors.txt for the datum shifts alone, and
./make_vectors.py --custom > custom_vectors.txt for the CustomGrid cases, one line per
point with the grid's parameters first (degrees and metres):

    algorithm FE FN lon0 lat0 k0 sp1 sp2 datum latitude longitude easting northing tolerance_mm

with latitude and longitude in that datum.
"""
import math
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
DATA = ROOT / "coords" / "data"
SECONDS_PER_RADIAN = 648000 / math.pi
BELGIAN_ROTATION = 0.0001420431363598774


def read_rows(name, macro):
    rows = []
    for line in (DATA / name).read_text().splitlines():
        m = re.match(macro + r"\((.*)\)\s*$", line)
        if m:
            rows.append([field.strip() for field in re.split(r',(?=(?:[^"]*"[^"]*")*[^"]*$)', m.group(1))])
    return rows


ELLIPSOIDS = {int(r[0]): (r[2], r[3]) for r in read_rows("Ellipsoids.inc", "ELLIPSOID")}
DATUMS = {int(r[0]): r for r in read_rows("Datums.inc", "DATUM")}
GRIDS = {int(r[0]): r for r in read_rows("Grids.inc", "GRID")}
SP27 = {int(r[0]): r for r in read_rows("StatePlane27.inc", "STATE_PLANE")}
SP83 = {int(r[0]): r for r in read_rows("StatePlane83.inc", "STATE_PLANE")}

UTM_LIKE = {1, 2, 13, 15, 16, 28, 32, 33, 47}


def datum_terms(datum_id):
    row = DATUMS[datum_id]
    a, es = ELLIPSOIDS[int(row[2])]
    dx, dy, dz, rx, ry, rz, scale = (float(v) for v in row[3:10])
    towgs84 = ",".join(repr(v) for v in (dx, dy, dz, rx * SECONDS_PER_RADIAN, ry * SECONDS_PER_RADIAN,
                                         rz * SECONDS_PER_RADIAN, scale * 1e6))
    return f"+a={a} +es={es} +towgs84={towgs84}"


SOURCE = f"+proj=longlat {datum_terms(1)} +no_defs"


def projection_terms(alg, fe, fn, lon0, lat0, k0, sp1, sp2):
    if alg in (1, 3):
        return f"+proj=tmerc +lat_0={lat0} +lon_0={lon0} +k_0={k0} +x_0={fe} +y_0={fn}"
    if alg == 2:
        return f"+proj=somerc +lat_0={lat0} +lon_0={lon0} +k_0=1 +x_0={fe} +y_0={fn}"
    if alg in (5, 6):
        lat0 = 90 if alg == 6 else lat0
        return f"+proj=lcc +lat_0={lat0} +lon_0={lon0} +lat_1={sp1} +lat_2={sp2} +x_0={fe} +y_0={fn}"
    if alg == 4:
        return "+proj=nzmg +lat_0=-41 +lon_0=173 +x_0=2510000 +y_0=6023150"
    if alg == 8:
        return f"+proj=sterea +lat_0={lat0} +lon_0={lon0} +k={k0} +x_0={fe} +y_0={fn}"
    raise ValueError(alg)


def cs2cs(target, points, source=SOURCE):
    text = "".join(f"{lon!r} {lat!r}\n" for lat, lon in points)
    out = subprocess.run(["cs2cs", "-f", "%.6f", source, "+to", target + " +no_defs"],
                         input=text, capture_output=True, text=True, check=True).stdout
    return [tuple(float(v) for v in line.split()[:2]) for line in out.splitlines()]


def grid(grid_id, zone, params, points, datum):
    alg, fe, fn, lon0, lat0, k0, sp1, sp2 = params
    target = projection_terms(alg, fe, fn, lon0, lat0, k0, sp1, sp2) + " " + datum_terms(datum)
    for (lat, lon), (e, n) in zip(points, cs2cs(target, points)):
        if alg == 6:
            x, y = e - fe, n - fn
            w = BELGIAN_ROTATION
            e, n = fe + x * math.cos(w) + y * math.sin(w), fn + y * math.cos(w) - x * math.sin(w)
        print(f"{grid_id} {zone} {datum} {lat!r} {lon!r} {e:.6f} {n:.6f} {tolerance(alg, datum)}")


def tolerance(alg, datum):
    return (1.0 if alg in (1, 3) else 0.01) + (0.15 if datum in (2, 11, 14, 19) else 0)


def catalogue_params(row):
    return (int(row[3]),) + tuple(float(v) for v in row[4:11])


def beyond(lat0, lat1, lon0, lon1):
    """Points well outside an area, for the closed forms that have no series to leave."""
    return [(lat0 - 10, lon0 - 15), (lat0 - 10, lon1 + 15), (lat1 + 10, lon0 - 15),
            (lat1 + 10, lon1 + 15), (lat0 - 35, (lon0 + lon1) / 2)]


def spread(lat0, lat1, lon0, lon1, steps=4):
    return [(lat0 + (lat1 - lat0) * i / steps, lon0 + (lon1 - lon0) * j / steps)
            for i in range(steps + 1) for j in range(steps + 1)]


# Area of each fixed grid: latitudes and longitudes in degrees.
AREAS = {
    3: (50, 58.5, -6, 1.5), 4: (51.5, 55.3, -10.3, -6), 5: (51.5, 55.3, -10.3, -6),
    6: (55.5, 68, 11.5, 20), 7: (45.8, 47.8, 6, 10.5), 8: (45.8, 47.8, 6, 10.5),
    9: (60, 68, 19.5, 22.5), 10: (60, 69, 22.5, 25.5), 11: (60, 70, 25.5, 28.5),
    12: (61, 70, 28.5, 31.5), 14: (49.45, 50.18, 5.73, 6.53), 17: (46.5, 48.5, 9.5, 11.5),
    18: (46.5, 48.9, 11.5, 14.5), 19: (46.5, 49, 14.5, 17.2), 20: (-47, -34, 170.1, 175.9), 21: (-47, -34, 166.5, 178.5),
    22: (49.5, 51.5, 2.5, 6.4), 23: (48.2, 51.1, -4.8, 8.2), 24: (45.5, 48.2, -4.8, 8.2),
    25: (42.8, 45.5, -1.8, 8.2), 26: (41.3, 43.1, 8.5, 9.6), 27: (41.3, 51.1, -5, 9.6),
    34: (50.75, 53.6, 3.3, 7.3), 35: (36.5, 47.1, 6.6, 12), 36: (36.5, 47.1, 12, 18.5),
    37: (58, 62, 4.6, 7.5), 38: (58, 64, 7.5, 9.5), 39: (58, 65, 9.5, 12), 40: (63, 66, 12, 14.5),
    41: (65, 69, 14.5, 19), 42: (68, 70.5, 19, 23), 43: (69, 71, 23, 27), 44: (69.5, 71, 27, 31),
    45: (41.3, 51.1, -5, 9.6), 46: (41.3, 51.1, -5, 9.6), 50: (55.3, 69.1, 12.9, 18.7),
    51: (55.3, 69.1, 10.9, 16.2),
}

# UTM-like grids: (zone, latitudes) within 3 degrees of the central meridian.
UTM_AREAS = {1: (33, 40, 70), 2: (33, -40, 60), 13: (32, 40, 70), 15: (55, -40, -12),
             16: (56, -44, -12), 28: (31, 36, 62), 32: (14, 25, 60), 33: (17, 25, 60),
             47: (32, 54.5, 57.8)}


def datum_vectors():
    """WGS 84 -> each catalogued datum, geographic with ellipsoidal heights, by a cct
    pipeline through geocentric coordinates (cs2cs would treat the heights as 2D and
    leave them). datum_vectors.txt: datum latitude longitude height, then the same in
    the datum (degrees, metres)."""
    lines = [f"# made by make_vectors.py --datums with {proj_version()}"]
    points = [(lat, lon, h) for lat in (-60.0, -35.5, 0.0, 37.25, 52.1, 68.9)
              for lon in (-170.0, -75.3, 0.0, 12.7, 151.2) for h in (0.0, 350.0)]
    wgs84_a, wgs84_es = ELLIPSOIDS[34]
    for datum in range(2, 28):
        row = DATUMS[datum]
        a, es = ELLIPSOIDS[int(row[2])]
        dx, dy, dz, rx, ry, rz, scale = (float(v) for v in row[3:10])
        pipeline = ("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                    f"+step +proj=cart +a={wgs84_a} +es={wgs84_es} "
                    f"+step +inv +proj=helmert +x={dx!r} +y={dy!r} +z={dz!r} "
                    f"+rx={rx * SECONDS_PER_RADIAN!r} +ry={ry * SECONDS_PER_RADIAN!r} "
                    f"+rz={rz * SECONDS_PER_RADIAN!r} +s={scale * 1e6!r} +convention=position_vector "
                    f"+step +inv +proj=cart +a={a} +es={es} "
                    "+step +proj=unitconvert +xy_in=rad +xy_out=deg")
        text = "".join(f"{lon!r} {lat!r} {h!r} 0\n" for lat, lon, h in points)
        out = subprocess.run(["cct", "-d", "12"] + pipeline.split(), input=text,
                             capture_output=True, text=True, check=True).stdout
        for (lat, lon, h), line in zip(points, out.splitlines()):
            lon2, lat2, h2 = line.split()[:3]
            lines.append(f"{datum} {lat!r} {lon!r} {h!r} {lat2} {lon2} {h2}")
    print("\n".join(lines))


# Grids that no catalogue row has, given as CustomGrid parameters: the Lambert cones
# whose standard parallels lie south of the equator (n < 0), on GDA94 and on AGD. The
# points are in the grid's own datum, so that both directions test the projection alone.
CUSTOM_GRIDS = [
    # Geoscience Australia Lambert (EPSG 3112)
    ((5, 0.0, 0.0, 134.0, 0.0, 1.0, -18.0, -36.0), 11, (-44, -10, 112, 154)),
    # Vicgrid66 (EPSG 3110), with its false origin south of the equator
    ((5, 2500000.0, 4500000.0, 145.0, -37.0, 1.0, -36.0, -38.0), 10, (-39.2, -34, 140.9, 150)),
]


def custom_vectors():
    print(f"# made by make_vectors.py --custom with {proj_version()}")
    for params, datum, (lat0, lat1, lon0, lon1) in CUSTOM_GRIDS:
        points = spread(lat0, lat1, lon0, lon1) + beyond(lat0, lat1, lon0, lon1)
        terms = datum_terms(datum)
        target = projection_terms(*params) + " " + terms
        source = f"+proj=longlat {terms} +no_defs"
        head = " ".join(repr(v) for v in params)
        for (lat, lon), (e, n) in zip(points, cs2cs(target, points, source)):
            print(f"{head} {datum} {lat!r} {lon!r} {e:.6f} {n:.6f} 0.01")


def proj_version():
    return subprocess.run(["cs2cs"], capture_output=True, text=True).stderr.splitlines()[0]


def main():
    if sys.argv[1:] == ["--datums"]:
        return datum_vectors()
    if sys.argv[1:] == ["--custom"]:
        return custom_vectors()
    print(f"# made by make_vectors.py with {proj_version()}")
    for grid_id, (lat0, lat1, lon0, lon1) in AREAS.items():
        row = GRIDS[grid_id]
        points = spread(lat0, lat1, lon0, lon1)
        if int(row[3]) in (2, 5, 6, 8):
            points += beyond(lat0, lat1, lon0, lon1)
        grid(grid_id, 0, catalogue_params(row), points, int(row[2]))
    for grid_id, (zone, lat0, lat1) in UTM_AREAS.items():
        row = GRIDS[grid_id]
        alg, fe, fn, lon0, lat0_, k0, sp1, sp2 = catalogue_params(row)
        cm = (zone - 31) * 6 + 3
        points = spread(lat0, lat1, cm - 2.9, cm + 2.9)
        grid(grid_id, 0, (alg, fe, fn, cm, lat0_, k0, sp1, sp2), points, int(row[2]))
    gk = GRIDS[29]
    for zone in (2, 3, 4, 5):
        alg, fe, fn, lon0, lat0, k0, sp1, sp2 = catalogue_params(gk)
        points = spread(47.5, 55, 3 * zone + 0.05, 3 * zone + 2.95)
        grid(29, zone, (alg, fe, fn, 3 * zone, lat0, k0, sp1, sp2), points, int(gk[2]))
    for grid_id, table in ((30, SP27), (31, SP83)):
        for key, r in table.items():
            alg = int(r[2])
            if alg == 2:
                continue  # the Swiss algorithm: no twin in PROJ
            fe, fn, lon0, lat0, k0, sp1, sp2 = (float(v) for v in r[3:10])
            if alg == 3:
                points = spread(lat0 + 0.5, lat0 + 3, lon0 - 1.5, lon0 + 1.5, 2)
            else:
                points = spread(sp1, sp2, lon0 - 2, lon0 + 2, 2)
            grid(grid_id, key, (alg, fe, fn, lon0, lat0, k0, sp1, sp2), points, int(r[1]))


if __name__ == "__main__":
    sys.exit(main())
