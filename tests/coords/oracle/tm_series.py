#!/usr/bin/env python3
"""Transverse Mercator as the library specifies it, written again from the formulas
(U.S. Geological Survey Professional Paper 1395, the series to A^6 with the meridian
arc to e^6), for points far from the central meridian, where PROJ's own TM is another
function: a forced UTM zone 6 and 9 degrees away. Output: tm_far.txt,

    zone latitude longitude easting northing

on grid 1 (WGS 84, no datum shift). Run: ./tm_series.py > tm_far.txt
"""
import math

A, E2 = 6378137.0, 0.006694379990197
K0, FE, FN = 0.9996, 500000.0, 0.0


def meridian_arc(p):
    e2, e4, e6 = E2, E2 * E2, E2 ** 3
    return A * ((1 - e2 / 4 - 3 * e4 / 64 - 5 * e6 / 256) * p
                - (3 * e2 / 8 + 3 * e4 / 32 + 45 * e6 / 1024) * math.sin(2 * p)
                + (15 * e4 / 256 + 45 * e6 / 1024) * math.sin(4 * p)
                - (35 * e6 / 3072) * math.sin(6 * p))


def forward(lat, lon, central):
    p, dl = math.radians(lat), math.radians(lon - central)
    ep2 = E2 / (1 - E2)
    a_ = dl * math.cos(p)
    t = math.tan(p) ** 2
    c = ep2 * math.cos(p) ** 2
    r = A / math.sqrt(1 - E2 * math.sin(p) ** 2)
    n = FN + K0 * (meridian_arc(p) - meridian_arc(0) + r * math.tan(p) * (
        a_ ** 2 / 2 + (5 - t + 9 * c + 4 * c * c) * a_ ** 4 / 24
        + (61 - 58 * t + t * t + 600 * c - 330 * ep2) * a_ ** 6 / 720))
    e = FE + K0 * r * (a_ + (1 - t + c) * a_ ** 3 / 6
                       + (5 - 18 * t + t * t + 72 * c - 58 * ep2) * a_ ** 5 / 120)
    return e, n


print("# made by tm_series.py from the formulas")
for zone, lons in ((32, (14.0, 15.0, 17.9)), (31, (12.0, 14.0, 15.0))):
    central = (zone - 31) * 6 + 3
    for lat in (0.0, 30.0, 48.0, 60.0, 70.0):
        for lon in lons:
            e, n = forward(lat, lon, central)
            print(f"{zone} {lat!r} {lon!r} {e:.6f} {n:.6f}")
