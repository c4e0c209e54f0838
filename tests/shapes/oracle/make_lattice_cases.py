#!/usr/bin/python3
"""Asks GEOS, through python3-shapely, about polygons with integer nodes and every point
of the integer lattice inside their bounds, and writes lattice_cases.txt for
ShapeOracleTest.

On a lattice the ray of the library's inside test, from the point to one unit below
and left of the bounds (a lattice point too), runs exactly through nodes again and
again, and edges lie exactly along it: where a rule that rounds goes wrong. The
polygons are stars of random radii, stars with a small hole, and unions of lattice
cells (with their holes), with repeated nodes and nodes in the middle of edges added,
and started at a random node. Each is valid for GEOS, its rings run clockwise around
the area and counter-clockwise around holes, and no two of its rings meet: the
library must find every one a clean polygon. Lines:

    polygon N KIND
    part x y x y ...          one line per ring
    area A                    GEOS's area: Shape_Area must give it
    points X0 Y0 W RUNS       the lattice points from (X0, Y0), W a row, rows upwards,
                              in runs of a count (left out for 1) and a letter: i inside
                              for GEOS, o outside, b on a boundary (where GEOS has no
                              answer; not asked)

Run from this folder: /usr/bin/python3 make_lattice_cases.py > lattice_cases.txt
"""
import itertools
import math
import random

import shapely
import shapely.geos
from shapely.geometry import Point, Polygon, box
from shapely.geometry.polygon import orient
from shapely.ops import unary_union

POLYGONS = 1000
SEED = 11


def star(r):
    cx, cy = r.randint(-20, 20), r.randint(-20, 20)
    angles = sorted(r.uniform(0, 2 * math.pi) for _ in range(r.randint(4, 18)))
    ring = []
    for a in angles:
        radius = r.randint(2, 12)
        ring.append((cx + round(radius * math.cos(a)), cy + round(radius * math.sin(a))))
    return [ring]


def star_with_hole(r):
    rings = star(r)
    xs, ys = [x for x, _ in rings[0]], [y for _, y in rings[0]]
    cx, cy = round(sum(xs) / len(xs)), round(sum(ys) / len(ys))
    return rings + [[(cx - 1, cy - 1), (cx + 1, cy), (cx, cy + 1)]]


def cells(r):
    n, p = r.randint(4, 10), r.uniform(0.4, 0.7)
    ox, oy = r.randint(-20, 20), r.randint(-20, 20)
    union = unary_union([box(ox + i, oy + j, ox + i + 1, oy + j + 1)
                         for i in range(n) for j in range(n) if r.random() < p])
    polygons = list(getattr(union, "geoms", [union]))
    if not polygons or union.is_empty:
        return None
    largest = max(polygons, key=lambda q: q.area)
    return [list(largest.exterior.coords)[:-1]] + [list(h.coords)[:-1] for h in largest.interiors]


def with_extra_nodes(r, ring):
    """Some nodes repeated, some added in the middle of an edge."""
    out = []
    for k, p in enumerate(ring):
        out.append(p)
        if r.random() < 0.1:
            out.append(p)
        q = ring[(k + 1) % len(ring)]
        if (p[0] + q[0]) % 2 == 0 and (p[1] + q[1]) % 2 == 0 and r.random() < 0.3:
            out.append(((p[0] + q[0]) // 2, (p[1] + q[1]) // 2))
    return out


def closed(ring, start):
    ring = [(int(x), int(y)) for x, y in ring]
    ring = ring[start:] + ring[:start]
    return ring + [ring[0]]


def polygons():
    r = random.Random(SEED)
    made = 0
    while made < POLYGONS:
        kind = r.choice(["star", "star", "cells", "star_with_hole"])
        rings = {"star": star, "cells": cells, "star_with_hole": star_with_hole}[kind](r)
        if rings is None:
            continue
        rings = [with_extra_nodes(r, ring) for ring in rings]
        polygon = Polygon(rings[0], rings[1:])
        if not polygon.is_valid:
            continue
        if any(a.intersects(b) for n, a in enumerate(polygon.interiors)
               for b in [polygon.exterior] + list(polygon.interiors)[:n]):
            continue
        if polygon.bounds[2] - polygon.bounds[0] < 2 or polygon.bounds[3] - polygon.bounds[1] < 2:
            continue  # no lattice point strictly inside the bounds
        polygon = orient(polygon, sign=-1.0)  # clockwise around the area
        rings = [list(polygon.exterior.coords)[:-1]] + [list(h.coords)[:-1]
                                                         for h in polygon.interiors]
        yield kind, [closed(ring, r.randrange(len(ring))) for ring in rings], polygon
        made += 1


def points_line(parts, polygon):
    xs, ys = [x for p in parts for x, _ in p], [y for p in parts for _, y in p]
    letters = []
    for y in range(min(ys) + 1, max(ys)):
        for x in range(min(xs) + 1, max(xs)):
            q = Point(x, y)
            letters.append("b" if polygon.boundary.intersects(q) else
                           "i" if polygon.contains(q) else "o")
    runs = [(len(list(group)), letter) for letter, group in itertools.groupby(letters)]
    text = "".join(f"{n if n > 1 else ''}{letter}" for n, letter in runs)
    return f"points {min(xs) + 1} {min(ys) + 1} {max(xs) - min(xs) - 1} {text}"


def main():
    print(f"# made by make_lattice_cases.py with shapely {shapely.__version__}, "
          f"GEOS {shapely.geos.geos_version_string}")
    for n, (kind, parts, polygon) in enumerate(polygons()):
        print(f"polygon {n} {kind}")
        for part in parts:
            print("part " + " ".join(f"{x} {y}" for x, y in part))
        print(f"area {polygon.area!r}")
        print(points_line(parts, polygon))


if __name__ == "__main__":
    main()
