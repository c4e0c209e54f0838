// The walks of the inside and intersection tests skip, by their segment trees, every
// segment that can't touch the other side. Here they run against the plain rule, which
// visits every segment and every pair, on rings full of the cases where skipping could
// go wrong: shared nodes, repeated nodes, collinear runs, points on edges and nodes,
// coordinates of grid size, and near-parallel rays.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>
#include <vector>

#include "shapes/PartGeometry.h"

namespace kx {
namespace {

// ---- the plain rule ---------------------------------------------------------------

bool PlainInside(const std::vector<XY>& nodes, XY Q, XY R) {
  const int32_t n = int32_t(nodes.size());
  if (n < 4) return false;
  bool inside = false, wrapped = false;
  int32_t i = 1, resume = 0;
  Side sideA = 0, sideB = 0;
  while (i < n) {
    if (SegmentCross(nodes[i - 1], nodes[i], Q, R, sideA, sideB)) {
      inside = !inside;
      if (resume) {
        i = resume;
        resume = 0;
      }
    }
    if (sideA != 0) {
      if (resume == 0) resume = i;
    } else if (resume) {
      i = resume;
      resume = 0;
      wrapped = false;
    }
    ++i;
    if (i >= n && resume && !wrapped) {
      i = 1;
      wrapped = true;
    }
  }
  return inside;
}

bool Closed(const std::vector<XY>& p) {
  return !p.empty() && p.front().x == p.back().x && p.front().y == p.back().y;
}

// Every pair in order, with the same way out of a loop of resume points as the library.
bool PlainIntersect(const std::vector<XY>& one, const std::vector<XY>& two, bool same) {
  const int32_t n1 = int32_t(one.size()), n2 = int32_t(two.size());
  if (n1 < 2 || n2 < 2 || (same && n1 < 4)) return false;
  const bool closed1 = Closed(one), closed2 = Closed(two);
  int32_t i = 1, j = same ? 3 : 1, rI = 0, rJ = 0, breakI = 0, breakJ = 0;
  Side sA = 0, sB = 0;
  bool w1 = false, w2 = false, restored = false;
  std::set<std::tuple<int32_t, int32_t, int32_t, int32_t, int, int, bool, bool>> seen;
  auto firstJ = [&] {
    if (!same) return 1;
    int32_t k = i + 2;
    while (k < n2 && two[k - 1].x == one[i].x && two[k - 1].y == one[i].y) ++k;
    return k;
  };
  for (;;) {
    if (j < n2) {
      const bool settled = sA == 0 && sB == 0 && rI == 0 && rJ == 0;
      if ((restored || !settled) && !seen.insert({i, j, rI, rJ, sA, sB, w1, w2}).second) {
        int32_t bi = rI ? rI : i, bj = rJ ? rJ : j;
        if (bi < breakI || (bi == breakI && bj < breakJ)) bi = breakI, bj = breakJ;
        i = bi, j = bj + 1, rI = rJ = 0, sA = sB = 0, w1 = w2 = restored = false;
        if (j >= n2) {
          ++i;
          j = firstJ();
          if (j >= n2) return false;
        }
        breakI = i, breakJ = j;
        if (i >= n1) return false;
        continue;
      }
      restored = false;
      if (SegmentCross(one[i - 1], one[i], two[j - 1], two[j], sA, sB)) return true;
      if (sA == 0 && sB == 0) {
        restored = rI || rJ;
        if (rJ) j = rJ, rJ = 0;
        if (rI) i = rI, rI = 0;
        ++j;
      } else {
        if (sA) {
          if (!rI) rI = i;
          ++i;
        }
        if (sB) {
          if (!rJ) rJ = j;
          ++j;
        }
      }
    }
    if (j >= n2) {
      if (rJ && closed2 && !w2) {
        w2 = true;
        j = firstJ();
      } else {
        if (rJ) j = rJ, rJ = 0, sB = 0, w2 = false, restored = true;
        ++j;
        if (j >= n2) {
          ++i;
          j = firstJ();
          if (j >= n2) return false;
        }
      }
    }
    if (i >= n1) {
      if (rI && closed1 && !w1) {
        w1 = true;
        i = 1;
      } else {
        if (rI) i = rI, rI = 0, sA = 0, w1 = false, restored = true;
        if (i >= n1) return false;
      }
    }
  }
}

// ---- inputs -----------------------------------------------------------------------

struct Random {
  uint64_t state;
  uint32_t Next() {
    state = state * 6364136223846793005ull + 1442695040888963407ull;
    return uint32_t(state >> 33);
  }
  int32_t Below(int32_t n) { return int32_t(Next() % uint32_t(n)); }
};

// A ring on a small integer lattice: repeated nodes, collinear steps, spikes.
std::vector<XY> LatticeRing(Random& r, int32_t nodes, double scale, XY offset) {
  std::vector<XY> ring;
  for (int32_t k = 0; k < nodes; ++k)
    ring.push_back({offset.x + scale * r.Below(7), offset.y + scale * r.Below(7)});
  ring.push_back(ring.front());
  return ring;
}

PartGeometry Geometry(const std::vector<XY>& nodes, XY R, double margin) {
  PartGeometry g;
  g.nodes = nodes;
  g.count = g.insideCount = int32_t(nodes.size());
  g.closed = Closed(nodes);
  g.tree.Build(g.nodes.data(), g.count, R, margin);
  return g;
}

XY Origin(const std::vector<std::vector<XY>>& parts) {
  double minX = parts[0][0].x, minY = parts[0][0].y;
  for (const auto& p : parts)
    for (const XY& q : p) minX = std::min(minX, q.x), minY = std::min(minY, q.y);
  return {minX - 1.0, minY - 1.0};
}

double Margin(const std::vector<std::vector<XY>>& parts) {
  double largest = 1;
  for (const auto& p : parts)
    for (const XY& q : p) largest = std::max({largest, std::fabs(q.x), std::fabs(q.y)});
  return 4096 * 2.220446049250313e-16 * (largest + 1);
}

void CheckInside(Random& r, double scale, XY offset, int32_t rings, int32_t queries) {
  for (int32_t t = 0; t < rings; ++t) {
    const std::vector<XY> ring = LatticeRing(r, 3 + r.Below(12), scale, offset);
    const XY R = Origin({ring});
    const PartGeometry g = Geometry(ring, R, Margin({ring}));
    const RayOrigin origin{R, true};
    for (int32_t q = 0; q < queries; ++q) {
      // On the lattice, half way between, and a hair off.
      const double fx = r.Below(13) / 2.0, fy = r.Below(13) / 2.0;
      const double hair = r.Below(3) == 0 ? scale * 1e-12 * (r.Below(3) - 1) : 0;
      const XY Q{offset.x + scale * fx + hair, offset.y + scale * fy - hair};
      ASSERT_EQ(IsInsidePart(g, Q, origin), PlainInside(ring, Q, R))
          << "ring " << t << " point " << Q.x << "," << Q.y;
    }
  }
}

TEST(PartWalks, InsideAgreesWithThePlainRuleOnALattice) {
  Random r{1};
  CheckInside(r, 1.0, {0, 0}, 3000, 60);
}

TEST(PartWalks, InsideAgreesWithThePlainRuleAtGridMagnitudes) {
  Random r{2};
  CheckInside(r, 0.37, {512345.678, 6543210.123}, 1500, 60);
  CheckInside(r, 1e-7, {18.0123456, 59.3456789}, 1500, 60);  // degrees, tiny rings
}

TEST(PartWalks, InsideAgreesOnRaysThatGrazeLongEdges) {
  // Long thin rings whose edges nearly point at R: the rays and the edges are almost
  // parallel, where the orientations come closest to 0.
  Random r{3};
  for (int32_t t = 0; t < 400; ++t) {
    std::vector<XY> ring;
    const double base = 1e6 * (1 + r.Below(5));
    for (int32_t k = 0; k < 6; ++k) {
      const double along = base * (1 + r.Below(1000) * 1e-3);
      const double across = (r.Below(5) - 2) * 1e-3;
      ring.push_back({along, along * (1 + across * 1e-6)});
    }
    ring.push_back(ring.front());
    const XY R = Origin({ring});
    const PartGeometry g = Geometry(ring, R, Margin({ring}));
    for (int32_t q = 0; q < 50; ++q) {
      const XY a = ring[r.Below(6)], b = ring[r.Below(6)];
      const double f = r.Below(101) / 100.0;
      const XY Q{a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f};
      ASSERT_EQ(IsInsidePart(g, Q, {R, true}), PlainInside(ring, Q, R)) << t << "/" << q;
    }
  }
}

TEST(PartWalks, IntersectionAgreesWithThePlainRule) {
  Random r{4};
  int32_t crossings = 0;
  for (int32_t t = 0; t < 3000; ++t) {
    const std::vector<XY> a = LatticeRing(r, 3 + r.Below(10), 1.0, {0, 0});
    std::vector<XY> b = LatticeRing(r, 3 + r.Below(10), 1.0, {0, 0});
    if (r.Below(2)) b.pop_back();  // an open line
    const XY R = Origin({a, b});
    const double margin = Margin({a, b});
    const PartGeometry ga = Geometry(a, R, margin), gb = Geometry(b, R, margin);
    const bool plain = PlainIntersect(a, b, false);
    crossings += plain;
    ASSERT_EQ(PartsIntersect(ga, gb, false), plain) << t;
    ASSERT_EQ(PartsIntersect(gb, ga, false), PlainIntersect(b, a, false)) << t;
    ASSERT_EQ(PartsIntersect(ga, ga, true), PlainIntersect(a, a, true)) << t;
  }
  EXPECT_GT(crossings, 100);  // both answers were well represented
  EXPECT_LT(crossings, 2950);
}

TEST(PartWalks, TouchingRingsEndWithTheAnswerOfTheRule) {
  // Squares side by side share an edge: the pending sides carried along it leave on
  // opposite sides, which the rule counts as a crossing. Nested squares touching at a
  // corner, and a figure eight touching itself at a node, only graze. Every walk ends.
  const std::vector<XY> left = {{0, 0}, {0, 2}, {2, 2}, {2, 0}, {0, 0}};
  const std::vector<XY> right = {{2, 0}, {2, 2}, {4, 2}, {4, 0}, {2, 0}};
  const std::vector<XY> inner = {{0, 0}, {0, 1}, {1, 1}, {1, 0}, {0, 0}};
  const std::vector<XY> figureEight = {{0, 0}, {0, 2}, {2, 2}, {2, 4}, {4, 4},
                                       {4, 2}, {2, 2}, {2, 0}, {0, 0}};
  const XY R{-1, -1};
  const PartGeometry gl = Geometry(left, R, 1e-9), gr = Geometry(right, R, 1e-9),
                     gi = Geometry(inner, R, 1e-9), g8 = Geometry(figureEight, R, 1e-9);
  EXPECT_TRUE(PartsIntersect(gl, gr, false));
  EXPECT_TRUE(PartsIntersect(gr, gl, false));
  EXPECT_FALSE(PartsIntersect(gl, gi, false));
  EXPECT_FALSE(PartsIntersect(gi, gl, false));
  EXPECT_FALSE(PartsIntersect(g8, g8, true));
}

}  // namespace
}  // namespace kx
