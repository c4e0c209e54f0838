#!/usr/bin/python3
"""Asks GEOS, through python3-shapely, what the shape geometry should answer for the real
polygon and line files of tests/data/shp/good (every PolyLine and Polygon file, plain,
Z and M), and writes real_cases.txt for ShapeRealOracleTest.

The files are read here by a small reader of the main file alone, record by record, as
the library reads them; a record's parts are the library's parts. Lines:

    file PATH                 under tests/data/shp/good
    record K                  the K-th record read (from 0); null records have none
    area A | area refused     Shape_Area of a Polygon record: GEOS's area (for rings that
                              GEOS finds invalid, the sum of its areas of the rings,
                              signed), or refused as not a clean polygon
    length P L                Shape_Distance of part P in a grid: its plane length in the
                              file's own units (metres or degrees), GEOS's length; the
                              first LENGTHS parts of a record
    inside X Y 0|1            Shape_IsInside of a Polygon record
    crosses K1 K2 0|1         Shape_IsIntersecting(K1, K2) of two records whose bounding
                              boxes meet (at most PAIRS_PER_FILE a file, spread evenly)

Length: in a grid the library sums the plane distances of the nodes, which is what GEOS
measures, in metres for a projected file and in degrees for a file in longitude and
latitude. On the sphere (a template without a grid) it sums haversine distances, which
GEOS doesn't compute; the plane length is the comparison the two can share.

Points inside: representative points of the parts (inside each ring, so also in holes)
and a grid over the record's box, except points on a boundary, where GEOS has no answer.
However close a point lies to a boundary, and wherever the ray of the library's test
runs through a node, the two must agree. GEOS's answer for each ring, combined even-odd
as the library combines parts, is the expectation.

Where GEOS and the library's exact rules part ways, the expectation carries the rule's
answer, worked out by exact_rule.py, with the reason after a "#":

Rounding plays no part: the rule decides every touch and crossing exactly, as GEOS
does. The differences left come from the rule itself:

- Touches judged by the segments at hand: where one boundary comes onto the other, the
  rule notes on which side of the other's segment it came, and where it leaves, compares
  with the side of the other's segment there. Along a shared run, and at a node where
  both boundaries turn, those are different segments, and a boundary that only touches
  can arrive on one side of the one and leave on the other side of the other: the rule
  finds a crossing. Neighbouring records that share a border are found crossing where
  that happens, and rings of one record that touch each other at a node make it no
  clean polygon; GEOS finds them touching.
- A ring that touches itself at a node is invalid for GEOS (ring self-intersection); the
  rule sees a touch, no crossing, and gives the area (unless the sides above find a
  crossing there).
- A part that isn't a closed ring of 4 nodes or more makes a record no clean polygon.
- Holes and shells: the rule asks whether the first node of a ring lies inside each
  other ring, by the ray from that node; a first node on another ring's boundary counts
  as the ray says (as inside as the points just along the ray from it). An
  odd count makes a hole, which must run counter-clockwise; an even one a shell, which
  must run clockwise. GEOS takes the rings as they nest and doesn't mind the direction;
  here a counter-clockwise ring is a hole of the smallest shell around it.
- Polygons: GEOS's crossing of two rings is that their areas overlap (each has area
  inside and outside the other), which is the boundaries passing through each other.
  Lines: GEOS's "crosses" is that the lines' interiors meet in points, a touch included;
  the rule asks that one line pass from one side of the other to the other side.

Run from this folder: /usr/bin/python3 make_real_cases.py > real_cases.txt
"""
import math
import pathlib
import struct

import shapely
import shapely.geos
from shapely.geometry import (LinearRing, LineString, MultiLineString, MultiPolygon,
                              Point, Polygon)
from shapely.ops import linemerge
from shapely.validation import explain_validity

import exact_rule

HERE = pathlib.Path(__file__).resolve().parent
DATA = HERE.parent.parent / "data" / "shp" / "good"
LINE_TYPES, POLYGON_TYPES = {3, 13, 23}, {5, 15, 25}
PAIRS_PER_FILE = 60
GRID = 6  # points a side of the grid of inside candidates
# Points a record at most, by source and answer: in a ring (or a hole), beside it.
POINTS = {("ring", 1): 1, ("ring", 0): 1, ("grid", 1): 1, ("grid", 0): 2}
LENGTHS = 8  # parts a record at most


def read_records(path):
    """The file's type and its records: lists of parts of (x, y); a null record is []."""
    data = path.read_bytes()
    file_type = struct.unpack("<i", data[32:36])[0]
    records, offset = [], 100
    while offset + 8 <= len(data):
        words = struct.unpack(">i", data[offset + 4:offset + 8])[0]
        body = data[offset + 8:offset + 8 + 2 * words]
        offset += 8 + 2 * words
        if struct.unpack("<i", body[:4])[0] == 0:
            records.append([])
            continue
        parts, nodes = struct.unpack("<2i", body[36:44])
        starts = list(struct.unpack(f"<{parts}i", body[44:44 + 4 * parts])) + [nodes]
        xy = struct.unpack(f"<{2 * nodes}d", body[44 + 4 * parts:44 + 4 * parts + 16 * nodes])
        points = [(xy[2 * k], xy[2 * k + 1]) for k in range(nodes)]
        records.append([points[starts[p]:starts[p + 1]] for p in range(parts)])
    return file_type, records


def at(p):
    return f"({p[0]!r}, {p[1]!r})"


def short(p):
    """A candidate point with 9 digits, which is how it goes into the file."""
    return float(f"{p[0]:.9g}"), float(f"{p[1]:.9g}")


def is_ring(part):
    return len(part) >= 4 and part[0] == part[-1]


def signed_area(ring):
    """GEOS's area of the ring, positive when it runs clockwise."""
    area = Polygon(ring).area
    return -area if LinearRing(ring).is_ccw else area


# ---- area -----------------------------------------------------------------------------

def geos_polygons(parts):
    """GEOS's verdict on the rings as polygons: each hole (a counter-clockwise ring) goes
    to the smallest shell that covers it."""
    shells = [p for p in parts if not LinearRing(p).is_ccw]
    holes = [p for p in parts if LinearRing(p).is_ccw]
    members = {i: [] for i in range(len(shells))}
    loose = []
    for hole in holes:
        around = [i for i, s in enumerate(shells) if Polygon(s).covers(LineString(hole))]
        if around:
            members[min(around, key=lambda i: Polygon(shells[i]).area)].append(hole)
        else:
            loose.append(hole)
    polygons = [Polygon(s, members[i]) for i, s in enumerate(shells)] + [Polygon(h) for h in loose]
    return explain_validity(MultiPolygon(polygons))


def rule_crossing(parts_a, parts_b, same_record):
    """The rule's first crossing between the parts of two records (or of one record with
    itself, parts against parts as the clean-polygon test takes them): (p, q, why, point,
    i, j) or None."""
    for p, one in enumerate(parts_a):
        for q, two in enumerate(parts_b):
            found = exact_rule.parts_cross(one, two, same_record and p == q)
            if found:
                return (p, q) + found
    return None


def crossing_reason(found, parts_a, parts_b):
    """The rule's crossing, and where a touch was settled as one, which kind of touch:
    a run the two boundaries share, or a node where they meet."""
    p, q, why, point, i, j = found
    seg = f"segment {i} of part {p} and segment {j} of part {q}"
    if why != exact_rule.SETTLED:
        return f"{seg} cross at {at(point)}"
    one, two = LineString(parts_a[p]), LineString(parts_b[q])
    shared = one.intersection(two)
    runs = [g for g in getattr(shared, "geoms", [shared]) if g.geom_type == "LineString"]
    if any(r.intersects(Point(point)) for r in runs):
        touch = "the boundaries share a run through"
    elif parts_a is parts_b and p == q:
        touch = "the ring touches itself at"
    else:
        touch = "the boundaries touch at"
    return (f"{seg}: {touch} {at(point)}, and by the sides of the segments at hand one came "
            f"onto the other on one side and leaves it on the other, a crossing for the rule")


def nesting_failure(parts):
    """The rule's holes and shells: the first part whose direction doesn't fit the count of
    other parts around its first node, with the reason."""
    r = exact_rule.ray_origin(parts)
    for i, ring in enumerate(parts):
        around, notes = 0, []
        for j, other in enumerate(parts):
            if j == i:
                continue
            inside, _ = exact_rule.inside_ring(other, ring[0], r)
            around += inside
            if inside and Polygon(other).exterior.intersects(Point(ring[0])):
                notes.append(f"part {i}'s first node {at(ring[0])} lies on part {j}'s boundary "
                             f"and the ray from it counts it inside")
        area = signed_area(ring)
        hole = around % 2 == 1
        if (hole and not area < 0) or (not hole and not area >= 0):
            what = "a hole, yet runs clockwise" if hole else "a shell, yet runs counter-clockwise"
            return "; ".join(notes + [f"part {i} is {what}"])
    return None


def area_line(parts):
    for k, part in enumerate(parts):
        if not is_ring(part):
            return f"area refused  # part {k} isn't a closed ring of 4 nodes or more"
    validity = geos_polygons(parts)
    geos = "GEOS valid" if validity == "Valid Geometry" else f"GEOS: {validity}"
    found = rule_crossing(parts, parts, True)
    if found:
        return f"area refused  # {geos}; the rule: {crossing_reason(found, parts, parts)}"
    failure = nesting_failure(parts)
    if failure:
        return f"area refused  # {geos}; the rule: {failure}"
    area = sum(signed_area(p) for p in parts)
    if validity != "Valid Geometry":
        return f"area {area!r}  # {geos}, the rule finds touches only"
    return f"area {area!r}"


# ---- points inside --------------------------------------------------------------------

def candidates(parts):
    """Representative points of the parts, then a grid over the box."""
    for part in parts:
        if len(part) >= 3:
            ring = Polygon(part)
            if ring.is_valid and ring.area > 0:
                yield "ring", short(ring.representative_point().coords[0])
    xs, ys = [x for p in parts for x, _ in p], [y for p in parts for _, y in p]
    for a in range(GRID):
        for b in range(GRID):
            yield "grid", short((min(xs) + (max(xs) - min(xs)) * (a + 0.5) / GRID,
                                 min(ys) + (max(ys) - min(ys)) * (b + 0.5) / GRID))


def inside_lines(parts):
    xs, ys = [x for p in parts for x, _ in p], [y for p in parts for _, y in p]
    boundary = MultiLineString([p for p in parts if len(p) >= 2])
    rings = [Polygon(p) for p in parts if len(p) >= 3]
    wanted, lines = dict(POINTS), []
    for source, q in candidates(parts):
        if not (min(xs) < q[0] < max(xs) and min(ys) < q[1] < max(ys)):
            continue
        if boundary.intersects(Point(q)):
            continue
        answer = sum(ring.contains(Point(q)) for ring in rings) % 2
        if wanted.get((source, answer), 0) == 0:
            continue
        wanted[(source, answer)] -= 1
        lines.append(f"inside {q[0]!r} {q[1]!r} {answer}")
    return lines


# ---- crossing of records ---------------------------------------------------------------

def geos_crosses(parts_a, parts_b, polygons):
    """Rings cross when their areas overlap; lines when GEOS says "crosses"."""
    for one in parts_a:
        for two in parts_b:
            if polygons and is_ring(one) and is_ring(two):
                if Polygon(one).relate_pattern(Polygon(two), "T*T***T**"):
                    return True
            elif len(one) >= 2 and len(two) >= 2 and LineString(one).crosses(LineString(two)):
                return True
    return False


def meeting(parts_a, parts_b):
    """Where GEOS finds the boundaries meeting: runs, and points apart from them."""
    shared = MultiLineString(parts_a).intersection(MultiLineString(parts_b))
    pieces = [s for s in getattr(shared, "geoms", [shared]) if not s.is_empty]
    runs = [s for s in pieces if s.geom_type == "LineString"]
    points = [s.coords[0] for s in pieces if s.geom_type == "Point"]
    merged = linemerge(runs) if runs else None
    count = len(getattr(merged, "geoms", [merged])) if runs else 0
    return count, points


def meeting_text(parts_a, parts_b):
    runs, points = meeting(parts_a, parts_b)
    return f"{runs} shared runs, {len(points)} points"


def crosses_line(a, b, parts_a, parts_b, polygons):
    geos = geos_crosses(parts_a, parts_b, polygons)
    found = rule_crossing(parts_a, parts_b, False)
    if bool(found) == geos:
        return f"crosses {a} {b} {int(geos)}"
    if found:
        why = f"GEOS 0, the boundaries meet ({meeting_text(parts_a, parts_b)}); the rule: "
        return f"crosses {a} {b} 1  # {why}{crossing_reason(found, parts_a, parts_b)}"
    return f"crosses {a} {b} 0  # GEOS 1; the rule: the lines only touch"


def boxes_meet(a, b):
    return a[0] <= b[2] and b[0] <= a[2] and a[1] <= b[3] and b[1] <= a[3]


def box(parts):
    xs, ys = [x for p in parts for x, _ in p], [y for p in parts for _, y in p]
    return min(xs), min(ys), max(xs), max(ys)


def neighbours(records):
    """Pairs of records whose boxes meet, at most PAIRS_PER_FILE, spread evenly."""
    boxes = {k: box(r) for k, r in enumerate(records) if r}
    keys = sorted(boxes)
    pairs = [(a, b) for n, a in enumerate(keys) for b in keys[n + 1:]
             if boxes_meet(boxes[a], boxes[b])]
    step = max(1, math.ceil(len(pairs) / PAIRS_PER_FILE))
    return pairs[::step]


# ---- the file -------------------------------------------------------------------------

def file_lines(path):
    file_type, records = read_records(path)
    polygons = file_type in POLYGON_TYPES
    yield f"file {path.relative_to(DATA)}"
    for k, parts in enumerate(records):
        if not parts:
            continue
        yield f"record {k}"
        if polygons:
            yield area_line(parts)
        for p, part in enumerate(parts[:LENGTHS]):
            yield f"length {p} {LineString(part).length!r}" if len(part) >= 2 else f"length {p} 0.0"
        if polygons:
            yield from inside_lines(parts)
    for a, b in neighbours(records):
        yield crosses_line(a, b, records[a], records[b], polygons)


def shape_files():
    for path in sorted(DATA.glob("*/*.shp")):
        with open(path, "rb") as f:
            file_type = struct.unpack("<i", f.read(36)[32:36])[0]
        if file_type in LINE_TYPES | POLYGON_TYPES:
            yield path


def main():
    print(f"# made by make_real_cases.py with shapely {shapely.__version__}, "
          f"GEOS {shapely.geos.geos_version_string}")
    for path in shape_files():
        for line in file_lines(path):
            print(line)


if __name__ == "__main__":
    main()
