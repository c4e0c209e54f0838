#!/usr/bin/python3
"""Asks GEOS, through python3-shapely, what the shape geometry should answer for a set
of declarative cases, and writes cases.txt for ShapeOracleTest.

Each case is a list of polygons (a shell and its holes) or of lines, given in the
library's convention: shells clockwise, holes counter-clockwise, rings closed. Lines:

    case NAME
    part x y x y ...          one line per part, in part order
    area A | area invalid     Shape_Area: GEOS's area where GEOS finds the polygons
                              valid and the shells clockwise and holes counter-clockwise
                              (the library's clean-polygon rule), else refused
    length L                  Shape_Distance of part 0 in a grid: the plane length
    inside x y 0|1 on|off     Shape_IsInside; "on" marks a point on a boundary
    crosses NAME 0|1          Shape_IsIntersecting with the shape of another case

Where GEOS and the library's rule part ways the expectation says which rule applies:

- A point on a boundary is neither inside nor outside for GEOS. The library counts the
  crossings of a ray towards (min X - 1, min Y - 1), in which the edge under the point
  takes no part: the point is as inside as the points just past it along that ray,
  and a point on the bounding box is outside. The expectation here is GEOS's answer
  for a point moved a hair along the ray.
- Lines that meet at an inner point cross for GEOS even where they only touch there;
  the library's rule counts a meeting at a node as a crossing only when the line
  arrives on one side of the other and leaves on the other side. Boundaries that run
  together along an edge overlap for GEOS ("crosses" is false) but cross for the
  library's rule when the shared run is left on opposite sides. Those cases carry the
  library's answer with the reason.

Run from this folder: /usr/bin/python3 make_cases.py > cases.txt (needs python3-shapely).
"""
import math

import shapely
import shapely.geos
from shapely.geometry import LineString, LinearRing, MultiPolygon, Point, Polygon

# name: (kind, parts, polygons as lists of part indices, inside points, crossing checks)
SQUARE = [(0, 0), (0, 10), (10, 10), (10, 0), (0, 0)]
HOLE = [(3, 3), (7, 3), (7, 7), (3, 7), (3, 3)]
CASES = {
    "square": ("polygon", [SQUARE], [[0]],
               [(5, 5), (15, 5), (10, 5), (5, 10), (0, 0), (9.999, 0.001)], []),
    "square_reversed": ("polygon", [SQUARE[::-1]], [[0]], [(5, 5)], []),
    "square_with_hole": ("polygon", [SQUARE, HOLE], [[0, 1]],
                         [(5, 5), (2, 2), (3, 5), (7, 5), (5, 3), (5, 7), (3, 3), (7, 7),
                          (7, 3), (3, 7)], []),
    "hole_clockwise": ("polygon", [SQUARE, HOLE[::-1]], [[0, 1]], [(5, 5), (2, 2)], []),
    "two_squares": ("polygon",
                    [[(0, 0), (0, 4), (4, 4), (4, 0), (0, 0)],
                     [(6, 0), (6, 4), (10, 4), (10, 0), (6, 0)]], [[0], [1]],
                    [(2, 2), (5, 2), (8, 2), (4, 2), (6, 2)], []),
    "island_in_hole": ("polygon",
                       [SQUARE, [(2, 2), (8, 2), (8, 8), (2, 8), (2, 2)],
                        [(4, 4), (4, 6), (6, 6), (6, 4), (4, 4)]], [[0, 1], [2]],
                       [(5, 5), (3, 3), (1, 1), (9, 5)], []),
    "bowtie": ("polygon", [[(0, 0), (10, 10), (10, 0), (0, 10), (0, 0)]], [[0]], [], []),
    "repeated_and_collinear_nodes": ("polygon",
                                     [[(0, 0), (0, 5), (0, 5), (0, 10), (5, 10), (10, 10),
                                       (10, 0), (5, 0), (0, 0)]], [[0]],
                                     [(5, 5), (0, 7), (5, 0.5)], []),
    # The ray from (6, 6) runs along y = x through the node (2, 2), where the ring
    # passes from one side to the other: one crossing.
    "ray_through_a_corner": ("polygon",
                             [[(0, 3), (0, 10), (10, 10), (10, 0), (3, 0), (2, 2), (0, 3)]],
                             [[0]], [(6, 6), (1, 1), (2.5, 2.5), (2, 2.5)], []),
    # The ray from (7, 7) grazes the tip (3, 3) of a notch: no crossing there.
    "ray_grazing_a_notch": ("polygon",
                            [[(0, 1), (0, 10), (10, 10), (10, 0), (6, 0), (3, 3), (2, 0),
                              (1, 0), (0, 1)]], [[0]],
                            [(7, 7), (2.5, 2.5), (3, 2), (4, 1), (3, 3.5)], []),
    "deep_notch": ("polygon",
                           [[(0, 0), (0, 10), (10, 10), (10, 0), (5, 0), (5, 5), (3, 0),
                             (0, 0)]], [[0]], [], []),
    "line_a": ("line", [[(0, 0), (10, 10)]], [], [],
               [("line_b", None), ("line_far", None)]),
    "line_b": ("line", [[(0, 10), (10, 0)]], [], [], []),
    "line_far": ("line", [[(20, 20), (30, 25)]], [], [], []),
    "end_to_end_a": ("line", [[(0, 0), (5, 5)]], [], [], [("end_to_end_b", None)]),
    "end_to_end_b": ("line", [[(5, 5), (10, 0)]], [], [], []),
    "vee": ("line", [[(0, 0), (5, 5), (10, 0)]], [], [], [("wedge", None), ("line_b", None)]),
    "wedge": ("line", [[(0, 10), (5, 5), (10, 10)]], [], [], []),
    "through_a_node": ("line", [[(0, 0), (5, 5), (10, 10)]], [], [], [("line_b", None)]),
    "overlap_a": ("line", [[(0, 0), (10, 0)]], [], [], [("overlap_b", None)]),
    "overlap_b": ("line", [[(5, 0), (15, 0)]], [], [], []),
    "overlapping_squares": ("polygon", [[(5, 5), (5, 15), (15, 15), (15, 5), (5, 5)]], [[0]],
                            [], []),
    "square_inside": ("polygon", [[(2, 2), (2, 4), (4, 4), (4, 2), (2, 2)]], [[0]], [], []),
}
# Square against square: their boundaries cross twice; a square inside another never
# meets its boundary.
CASES["square"][4].extend([("overlapping_squares", None), ("square_inside", None)])
# Two rings side by side along an edge: GEOS finds them overlapping along it, which is
# no crossing; the library follows the shared edge and the two rings leave it on
# opposite sides, which its rule counts as a crossing.
CASES["side_by_side_a"] = ("polygon", [[(0, 0), (0, 4), (4, 4), (4, 0), (0, 0)]], [[0]], [],
                           [("side_by_side_b", (1, "a shared edge left on opposite sides"))])
CASES["side_by_side_b"] = ("polygon", [[(4, 0), (4, 4), (8, 4), (8, 0), (4, 0)]], [[0]], [], [])
# GEOS counts any meeting of two line interiors in a point as a crossing; the library's
# rule asks from which side each line came and to which it goes: the vee and the wedge
# meet at their tips and each stays on its side.
CASES["vee"][4][0] = ("wedge", (0, "the tips touch and each line stays on its side"))


def bounds_of(parts):
    xs = [x for p in parts for x, _ in p]
    ys = [y for p in parts for _, y in p]
    return min(xs), max(xs), min(ys), max(ys)


def geometry_of(parts, polygons):
    return MultiPolygon([Polygon(parts[i[0]], [parts[h] for h in i[1:]]) for i in polygons])


def clean_area(parts, polygons):
    shape = geometry_of(parts, polygons)
    if not shape.is_valid:
        return None
    for members in polygons:
        if LinearRing(parts[members[0]]).is_ccw:
            return None  # shells run clockwise
        if any(not LinearRing(parts[h]).is_ccw for h in members[1:]):
            return None  # holes counter-clockwise
    return shape.area


def inside(parts, polygons, x, y):
    min_x, max_x, min_y, max_y = bounds_of(parts)
    if not (min_x < x < max_x and min_y < y < max_y):
        return 0, "on" if shapely_boundary(parts, polygons).intersects(Point(x, y)) else "off"
    shape = geometry_of(parts, polygons)
    if not shape.boundary.intersects(Point(x, y)):
        return int(shape.contains(Point(x, y))), "off"
    rx, ry = min_x - 1.0, min_y - 1.0
    d = math.hypot(x - rx, y - ry)
    step = 1e-7
    moved = Point(x + (rx - x) / d * step, y + (ry - y) / d * step)
    return int(shape.contains(moved)), "on"


def shapely_boundary(parts, polygons):
    return geometry_of(parts, polygons).boundary


def lines_of(name):
    kind, parts, _, _, _ = CASES[name]
    return [LineString(p) for p in parts]


def crosses(a, b):
    return int(any(x.crosses(y) for x in lines_of(a) for y in lines_of(b)))


def main():
    print(f"# made by make_cases.py with shapely {shapely.__version__}, "
          f"GEOS {shapely.geos.geos_version_string}")
    for name, (kind, parts, polygons, points, checks) in CASES.items():
        print(f"case {name}")
        for p in parts:
            print("part " + " ".join(f"{x!r} {y!r}" for x, y in p))
        if kind == "polygon":
            area = clean_area(parts, polygons)
            print("area invalid" if area is None else f"area {area!r}")
            for x, y in points:
                answer, where = inside(parts, polygons, x, y)
                print(f"inside {x!r} {y!r} {answer} {where}")
        print(f"length {LineString(parts[0]).length!r}")
        for other, rule in checks:
            if rule is None:
                print(f"crosses {other} {crosses(name, other)}")
            else:
                answer, why = rule
                print(f"crosses {other} {answer}  # GEOS {crosses(name, other)}: {why}")


if __name__ == "__main__":
    main()
