"""The library's exact rules for crossing segments, crossing parts and the ray of the
point-in-ring test, written out in Python from their description. make_real_cases.py
asks GEOS first; it asks these only to say where the rules part ways with GEOS, and why.

Every decision is the sign of an orientation, the side of a line on which a point
lies, taken exactly: in doubles where their rounding can't reach the sign, otherwise in
exact fractions (the library sums the products exactly in doubles instead; both are
the true sign). Two segments whose lines meet in one point touch when that point is an
end point, that is when the end lies on the other line; no point of intersection is
ever computed. Python's floats are IEEE doubles, as the library's are.
"""
import math
from fractions import Fraction

# Why a crossing was found: a proper crossing of two segments, or a touch whose pending
# side was settled as a crossing by the next segment.
PROPER, SETTLED = "proper", "settled"

UNIT = 2.0 ** -53
BOUND = (3.0 + 16.0 * UNIT) * UNIT


def orientation(a, b, c):
    """The sign of (b - a) x (c - a): 1 when c lies left of the line from a to b."""
    left = (b[0] - a[0]) * (c[1] - a[1])
    right = (b[1] - a[1]) * (c[0] - a[0])
    det = left - right
    bound = BOUND * (abs(left) + abs(right))
    if det > bound:
        return 1
    if det < -bound:
        return -1
    f = Fraction
    det = ((f(b[0]) - f(a[0])) * (f(c[1]) - f(a[1]))
           - (f(b[1]) - f(a[1])) * (f(c[0]) - f(a[0])))
    return (det > 0) - (det < 0)


def side_of(o):
    return 1 if o > 0 else 2


def other(s):
    return 2 if s == 1 else 1


def between(v, a, b):
    return min(a, b) < v < max(a, b)


def on_one_line(a1, a2, b1, b2, sa, sb):
    """New sides of two segments on one line."""
    new_a, new_b = 0, 0
    if between(a2[0], b1[0], b2[0]) or between(b2[0], a1[0], a2[0]):
        new_a, new_b = sa, sb
    if a2[0] == b2[0]:
        if sa:
            new_a, new_b = sa, other(sa)
        elif sb:
            new_a, new_b = other(sb), sb
    return new_a, new_b


def crossing_point(a1, a2, b1, b2):
    """Where two segments cross properly, to the nearest double: for the reasons only."""
    f = Fraction
    ax, ay, bx, by = f(a1[0]), f(a1[1]), f(b1[0]), f(b1[1])
    ux, uy = f(a2[0]) - ax, f(a2[1]) - ay
    vx, vy = f(b2[0]) - bx, f(b2[1]) - by
    t = ((bx - ax) * vy - (by - ay) * vx) / (ux * vy - uy * vx)
    return float(ax + t * ux), float(ay + t * uy)


def segment_cross(a1, a2, b1, b2, sa, sb):
    """(why or None, the point where the segments meet or None, new side A, new side B)
    for segment A from a1 to a2 and B from b1 to b2 with the sides that came in."""
    if a1 == a2 or b1 == b2:
        return None, None, sa, sb
    ob1, ob2 = orientation(a1, a2, b1), orientation(a1, a2, b2)
    if ob1 == 0 and ob2 == 0:
        return (None, None) + on_one_line(a1, a2, b1, b2, sa, sb)
    if ob1 * ob2 > 0:
        return None, None, 0, 0
    oa1, oa2 = orientation(b1, b2, a1), orientation(b1, b2, a2)
    if oa1 * oa2 > 0:
        return None, None, 0, 0
    at_a1, at_a2, at_b1, at_b2 = oa1 == 0, oa2 == 0, ob1 == 0, ob2 == 0
    why = None
    if at_a1 and at_b1:
        c = side_of(ob2)
        if sa and sb and sa != other(c) and sb != c:
            why = SETTLED
    elif at_a1:
        if sa and side_of(oa2) != sa:
            why = SETTLED
    elif at_b1:
        if sb and side_of(ob2) != sb:
            why = SETTLED
    new_a, new_b = 0, 0
    if at_a2 and at_b2:
        c = side_of(ob1)
        new_a, new_b = other(c), c
    elif at_a2:
        new_a = side_of(oa1)
    elif at_b2:
        new_b = side_of(ob1)
    point = a1 if at_a1 else a2 if at_a2 else b1 if at_b1 else b2 if at_b2 else None
    if point is None:
        why, point = PROPER, crossing_point(a1, a2, b1, b2)
    return why, point, new_a, new_b


def boxes_meet(a1, a2, b1, b2):
    return (min(a1[0], a2[0]) <= max(b1[0], b2[0]) and min(b1[0], b2[0]) <= max(a1[0], a2[0])
            and min(a1[1], a2[1]) <= max(b1[1], b2[1])
            and min(b1[1], b2[1]) <= max(a1[1], a2[1]))


class SegmentGrid:
    """The segments of a part (segment k from node k - 1 to node k) by the cells of a
    grid that their boxes cover."""

    def __init__(self, part):
        self.part = part
        xs, ys = [x for x, _ in part], [y for _, y in part]
        self.x0, self.y0 = min(xs, default=0), min(ys, default=0)
        self.count = max(1, int(math.sqrt(len(part))))
        self.w = (max(xs, default=0) - self.x0) / self.count or 1.0
        self.h = (max(ys, default=0) - self.y0) / self.count or 1.0
        self.cells = {}
        for k in range(1, len(part)):
            for cell in self._cells(part[k - 1], part[k]):
                self.cells.setdefault(cell, []).append(k)

    def _span(self, lo, hi, origin, size):
        """The cells from lo to hi on one axis; what lies beyond the grid goes to the
        cells at its edges."""
        first = min(max(0, int((lo - origin) // size)), self.count - 1)
        last = min(max(0, int((hi - origin) // size)), self.count - 1)
        return range(first, last + 1)

    def _cells(self, a, b):
        xs = self._span(min(a[0], b[0]), max(a[0], b[0]), self.x0, self.w)
        ys = self._span(min(a[1], b[1]), max(a[1], b[1]), self.y0, self.h)
        return [(x, y) for x in xs for y in ys]

    def meeting(self, a, b):
        """The segments whose boxes meet the box of a to b, in order."""
        found = set()
        for cell in self._cells(a, b):
            found.update(self.cells.get(cell, ()))
        part = self.part
        return sorted(k for k in found if boxes_meet(a, b, part[k - 1], part[k]))


class PartsWalk:
    """Every pair of segments of two parts, with a resume point on each side so that a
    pending side follows the touching segment onwards, over the closing node of a ring
    too. A walk that comes back to a state it was in has met only touches on the way:
    it goes on at the pair after the place it held, and never before an earlier such
    exit."""

    def __init__(self, one, two, same):
        self.one, self.two, self.same = one, two, same
        self.n1, self.n2 = len(one), len(two)
        self.closed1 = self.n1 > 0 and one[0] == one[-1]
        self.closed2 = self.n2 > 0 and two[0] == two[-1]
        self.meets = self._candidates()

    def _candidates(self):
        """For each segment i of part one, the segments of part two whose boxes meet it:
        the only ones that can give a crossing or a touch. Found through a grid of
        cells over part two."""
        grid = SegmentGrid(self.two)
        return {i: grid.meeting(self.one[i - 1], self.one[i]) for i in range(1, self.n1)}

    def first_j(self, i):
        """A part against itself skips the neighbours of segment i: the next segment and
        the segments of length 0 after it."""
        if not self.same:
            return 1
        j = i + 2
        while j < self.n2 and self.two[j - 1] == self.one[i]:
            j += 1
        return j

    def run(self):
        """None, or (why, point, i, j) for the pair where the walk found a crossing."""
        if self.n1 < 2 or self.n2 < 2 or (self.same and self.n1 < 4):
            return None
        s = {"i": 1, "j": self.first_j(1), "ri": 0, "rj": 0, "sa": 0, "sb": 0,
             "w1": False, "w2": False}
        self.s, self.restored, self.floor, seen = s, False, (0, 0), set()
        for _ in range(50 * (self.n1 + self.n2) ** 2):
            if s["j"] >= self.n2:
                if not self._advance():
                    return None
                continue
            settled = not (s["sa"] or s["sb"] or s["ri"] or s["rj"])
            if self.restored or not settled:
                state = tuple(s.values())
                if state in seen:
                    if not self._move_on():
                        return None
                    continue
                seen.add(state)
            self.restored = False
            if settled:
                s["j"] = self._next_candidate(s["i"], s["j"])
                if s["j"] >= self.n2:
                    if not self._advance():
                        return None
                    continue
            i, j = s["i"], s["j"]
            why, p, s["sa"], s["sb"] = segment_cross(self.one[i - 1], self.one[i],
                                                     self.two[j - 1], self.two[j], s["sa"],
                                                     s["sb"])
            if why:
                return why, p, i, j
            self._follow()
            if not self._advance():
                return None
        raise RuntimeError("the walk didn't end")

    def _next_candidate(self, i, j):
        for k in self.meets.get(i, ()):
            if k >= j:
                return k
        return self.n2

    def _follow(self):
        """A pending side holds its segment's place and moves on along its part; once
        nothing is pending the walk returns to the places held."""
        s = self.s
        if not s["sa"] and not s["sb"]:
            self.restored = bool(s["ri"] or s["rj"])
            if s["rj"]:
                s["j"], s["rj"] = s["rj"], 0
            if s["ri"]:
                s["i"], s["ri"] = s["ri"], 0
            s["j"] += 1
            return
        if s["sa"]:
            s["ri"] = s["ri"] or s["i"]
            s["i"] += 1
        if s["sb"]:
            s["rj"] = s["rj"] or s["j"]
            s["j"] += 1

    def _advance(self):
        return self._next_j() and self._next_i()

    def _next_j(self):
        s = self.s
        if s["j"] < self.n2:
            return True
        if s["rj"] and self.closed2 and not s["w2"]:
            s["w2"], s["j"] = True, self.first_j(s["i"])
            return True
        if s["rj"]:
            s["j"], s["rj"], s["sb"], s["w2"] = s["rj"], 0, 0, False
            self.restored = True
        s["j"] += 1
        if s["j"] >= self.n2:
            s["i"] += 1
            s["j"] = self.first_j(s["i"])
            if s["j"] >= self.n2:
                return False
        return True

    def _next_i(self):
        s = self.s
        if s["i"] < self.n1:
            return True
        if s["ri"] and self.closed1 and not s["w1"]:
            s["w1"], s["i"] = True, 1
            return True
        if s["ri"]:
            s["i"], s["ri"], s["sa"], s["w1"] = s["ri"], 0, 0, False
            self.restored = True
        return s["i"] < self.n1

    def _move_on(self):
        """Back in a state seen before: on to the pair after the place held, and never
        to one before an earlier exit."""
        s = self.s
        held = (s["ri"] or s["i"], s["rj"] or s["j"])
        i, j = max(held, self.floor)
        j += 1
        if j >= self.n2:
            i += 1
            j = self.first_j(i)
            if j >= self.n2:
                return False
        s.update(i=i, j=j, ri=0, rj=0, sa=0, sb=0, w1=False, w2=False)
        self.restored = False
        self.floor = (i, j)
        return i < self.n1


def parts_cross(one, two, same=False):
    """None, or (why, point, i, j): the rule's answer for two parts (lists of (x, y))."""
    return PartsWalk(one, two, same).run()


def ray_origin(parts):
    """R of the point-in-ring test: one unit below and left of the whole shape."""
    return (min(x for p in parts for x, _ in p) - 1.0, min(y for p in parts for _, y in p) - 1.0)


def inside_ring(ring, q, r):
    """The rule's point-in-ring answer for q, with the ray from q to r, and the reasons
    of the crossings it counted."""
    n = len(ring)
    if n < 4:
        return False, []
    inside, whys = False, []
    i, resume, wrapped = 1, 0, False
    side_a = side_b = 0
    for _ in range(4 * n):
        if i >= n:
            break
        why, _, side_a, side_b = segment_cross(ring[i - 1], ring[i], q, r, side_a, side_b)
        if why:
            inside = not inside
            whys.append(why)
            if resume:
                i, resume = resume, 0
        if side_a:
            resume = resume or i
        elif resume:
            i, resume, wrapped = resume, 0, False
        i += 1
        if i >= n and resume and not wrapped:
            i, wrapped = 1, True
    return inside, whys
