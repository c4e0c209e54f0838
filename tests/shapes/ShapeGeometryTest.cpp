// Shape geometry through the flat functions: what the rules say at their edges, the
// cursor each query leaves, the caches, and the failures with their texts.
#include <gtest/gtest.h>

#include <cmath>

#include "KestrixCE.h"
#include "ShapeSupport.h"
#include "support/Positions.h"

using namespace kxtest;

namespace {

const Part kClockwise = {{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}};

double PartArea(KxShape s) {
  double v = -1;
  return *Shape_PartArea(s, &v);
}

double Area(KxShape s) {
  double v = -1;
  return *Shape_Area(s, &v);
}

bool Inside(KxShape s, double x, double y) { return Shape_IsInside(s, &x, &y) != 0; }

KxPosition Utm33() {
  KxPosition p = Position_New();
  Position_SetGrid(p, 1);
  Position_SetZone(p, 33);
  return p;
}

TEST(ShapeGeometry, PartAreaIsSignedAndInvertingFlipsIt) {
  KxShape s = MakeShape({kClockwise});
  EXPECT_EQ(PartArea(s), 100);
  Shape_InvertPart(s);
  EXPECT_EQ(PartArea(s), -100);
  EXPECT_FALSE(Shape_IsCleanPolygon(s));  // an outer ring counter-clockwise
  KxShape bowtie = MakeShape({{{0, 0}, {10, 10}, {10, 0}, {0, 10}, {0, 0}}});
  EXPECT_EQ(PartArea(bowtie), 0);
  EXPECT_EQ(ErrorOf(bowtie), "10006 Part is not a ploygon");
  KxShape open = MakeShape({{{0, 0}, {0, 10}, {10, 10}}});
  PartArea(open);
  EXPECT_EQ(ErrorOf(open), "10006 Part is not a ploygon");
  KxShape triangle = MakeShape({{{0, 0}, {0, 10}, {0, 0}}});  // two edges and the closing node
  EXPECT_FALSE(Shape_IsCleanPolygon(triangle));
  for (KxShape k : {s, bowtie, open, triangle}) Shape_Delete(k);
}

TEST(ShapeGeometry, AreaNeedsAGridOrNoTemplateAndFollowsChanges) {
  KxShape s = MakeShape({kClockwise});
  EXPECT_EQ(Area(s), 100);  // no template: the shape's own units
  KxPosition datum = Position_New();
  Shape_SetDatumGridTemplate(s, datum);
  EXPECT_EQ(Area(s), 0);
  EXPECT_EQ(ErrorOf(s), "10006 DatumGridTemplate cannot be a datum when calculating area!");
  PartArea(s);
  EXPECT_EQ(ErrorOf(s), "10006 DatumGridTemplate cannot be a datum when calculating area!");
  KxPosition grid = Utm33();
  Shape_SetDatumGridTemplate(s, grid);
  EXPECT_EQ(Area(s), 100);
  // Moving a node changes ModifiedCount, and the cached area goes with it.
  Shape_SetNodeIndex(s, 2);
  const double x = 20;
  Shape_SetX(s, &x);
  EXPECT_EQ(Area(s), 150);
  EXPECT_TRUE(Inside(s, 15, 9));
  Shape_SetX(s, &kClockwise[2].x);
  EXPECT_FALSE(Inside(s, 15, 9));
  Position_Delete(datum);
  Position_Delete(grid);
  Shape_Delete(s);
}

TEST(ShapeGeometry, InsideStopsAtTheBoundsAndClosesOpenPartsInPassing) {
  KxShape s = MakeShape({{{0, 0}, {0, 10}, {10, 10}, {10, 0}}});  // open
  EXPECT_FALSE(Inside(s, 0, 5));
  EXPECT_FALSE(Inside(s, 5, 10));
  const int before = Shape_GetModifiedCount(s);
  Shape_SetNodeIndex(s, 1);
  EXPECT_TRUE(Inside(s, 5, 5));
  EXPECT_GT(Shape_GetModifiedCount(s), before);  // the closing node came and went
  EXPECT_EQ(Shape_GetNodeCount(s), 4);
  EXPECT_EQ(Shape_GetNodeIndex(s), 1);
  EXPECT_EQ(BoundsOf(s).maxX, 10);
  KxShape line = MakeShape({{{0, 0}, {10, 10}}});
  EXPECT_FALSE(Inside(line, 5, 4));  // two nodes never hold a point
  // The same open ring in a fixed-size shape, which can't take a node: closed for the
  // test alone.
  KxShape fixed = Shape_New();
  Shape_SetFixedSize(fixed, 1);
  Shape_FixedPartCount(fixed, 1);
  Shape_FixedNodeCount(fixed, 0, 4);
  for (const Node& n : Part{{0, 0}, {0, 10}, {10, 10}, {10, 0}}) AddNode(fixed, n);
  EXPECT_TRUE(Inside(fixed, 5, 5));
  EXPECT_EQ(ErrorOf(fixed), "0");
  for (KxShape k : {s, line, fixed}) Shape_Delete(k);
}

TEST(ShapeGeometry, ClosestNodeAndEdgeLeaveTheCursorOnTheAnswer) {
  KxShape s = MakeShape({{{0, 0}, {10, 0}}, {{0, 2}, {10, 2}}});
  const double x = 5, y = 1;
  double d = -1;
  Shape_FindClosestNode(s, &x, &y, &d);  // four nodes equally near: the first wins
  EXPECT_DOUBLE_EQ(d, std::sqrt(26.0));
  EXPECT_EQ(Shape_GetPartIndex(s), 0);
  EXPECT_EQ(Shape_GetNodeIndex(s), 0);
  const double y2 = 1.5;
  Shape_FindClosestVector(s, &x, &y2, &d);
  EXPECT_DOUBLE_EQ(d, 0.5);
  EXPECT_EQ(Shape_GetPartIndex(s), 1);
  EXPECT_EQ(Shape_GetNodeIndex(s), 0);
  const double beyond = 13, level = 4;
  Shape_FindClosestVector(s, &beyond, &level, &d);  // past the end: to the end node
  EXPECT_DOUBLE_EQ(d, std::hypot(3.0, 2.0));
  KxShape empty = Shape_New();
  Shape_FindClosestNode(empty, &x, &y, &d);
  EXPECT_EQ(ErrorOf(empty), "10006 No nodes in this Shape");
  Shape_FindClosestNode2(empty, nullptr, &d);
  EXPECT_EQ(ErrorOf(empty), "10006 DatumGridTemplate not set.");
  Shape_Delete(s);
  Shape_Delete(empty);
}

TEST(ShapeGeometry, LinesCrossTouchOrShareEndsAndCursorsComeBack) {
  KxShape a = MakeShape({{{0, 0}, {5, 5}, {10, 10}}});
  KxShape b = MakeShape({{{0, 10}, {10, 0}}});
  KxShape c = MakeShape({{{10, 10}, {20, 0}}});
  Shape_SetNodeIndex(a, 1);
  EXPECT_TRUE(Shape_IsIntersecting(a, b));  // exactly at a node of a
  EXPECT_EQ(Shape_GetNodeIndex(a), 1);
  EXPECT_EQ(Shape_GetNodeIndex(b), 1);
  EXPECT_FALSE(Shape_IsIntersecting(a, c));  // one end point in common
  EXPECT_FALSE(Shape_IsIntersecting(a, a));
  Shape_IsIntersecting(a, nullptr);
  EXPECT_EQ(ErrorOf(a), "10003 Shape may not be NULL.");
  KxPosition utm = Utm33();
  Shape_SetDatumGridTemplate(a, utm);
  Shape_IsIntersecting(a, b);
  EXPECT_EQ(ErrorOf(a), "10003 Shapes must have same datum or grid/zone");
  Position_Delete(utm);
  for (KxShape k : {a, b, c}) Shape_Delete(k);
}

TEST(ShapeGeometry, DistanceGoesThroughPositionAndCachesOnlyTheWholePart) {
  KxShape s = MakeShape({{{0, 0}, {3, 4}, {3, 10}, {6, 14}}});
  double d = -1;
  Shape_Distance(s, 0, -1, &d);
  EXPECT_EQ(ErrorOf(s), "10006 DatumGridTemplate not set.");
  KxPosition utm = Utm33();
  Shape_SetDatumGridTemplate(s, utm);
  Shape_Distance(s, 1, 2, &d);
  EXPECT_EQ(d, 6);
  Shape_Distance(s, 0, -1, &d);
  EXPECT_EQ(d, 16);
  Shape_Distance(s, 2, 9, &d);  // past the end
  EXPECT_EQ(ErrorOf(s), "10004 Index out of bounds");
  // To the last bit what Position_Distance in the plane gives between copies of the
  // template, on coordinates whose differences round.
  KxShape wiggly = MakeShape({{{512345.678, 6543210.123}, {512349.001, 6543297.77},
                               {512301.3, 6543111.5}}});
  Shape_SetDatumGridTemplate(wiggly, utm);
  double expected = 0;
  for (int k = 1; k < 3; ++k) {
    KxPosition from = Position_Copy(utm), to = Position_Copy(utm);
    const std::vector<Part> parts = ReadShape(wiggly);
    Position_SetEasting(from, &parts[0][k - 1].x);
    Position_SetNorthing(from, &parts[0][k - 1].y);
    Position_SetEasting(to, &parts[0][k].x);
    Position_SetNorthing(to, &parts[0][k].y);
    double step = 0;
    Position_Distance(from, to, 3, &step);
    expected += step;
    Position_Delete(from);
    Position_Delete(to);
  }
  Shape_Distance(wiggly, 0, -1, &d);
  EXPECT_EQ(d, expected);
  Shape_Delete(wiggly);
  // In a datum: metres on the sphere, as Position_Distance gives them.
  KxShape geo = MakeShape({{{18, 59}, {18.5, 59.2}, {19, 59}}});
  KxPosition wgs = Position_New();
  Shape_SetDatumGridTemplate(geo, wgs);
  Shape_Distance(geo, 0, -1, &d);
  KxPosition p = Make({59, 18}), q = Make({59.2, 18.5}), r = Make({59, 19});
  double pq = 0, qr = 0;
  Position_Distance(p, q, 1, &pq);
  Position_Distance(q, r, 1, &qr);
  EXPECT_EQ(d, pq + qr);
  for (KxPosition k : {utm, wgs, p, q, r}) Position_Delete(k);
  Shape_Delete(s);
  Shape_Delete(geo);
}

TEST(ShapeGeometry, ConversionRewritesEveryNodeOrNothing) {
  KxPosition wgs = Position_New(), utm = Utm33();
  KxShape s = MakeShape({{{15, 59, 7, 8}, {15.5, 59.5}}, {{16, 60}}});
  Shape_SetDatumGridTemplate(s, wgs);
  const int before = Shape_GetModifiedCount(s);
  KxPosition other = Position_New();
  Shape_ConvertDatumGrid(s, other);  // the same frame
  EXPECT_EQ(Shape_GetModifiedCount(s), before);
  Shape_ConvertDatumGrid(s, utm);
  const std::vector<Part> parts = ReadShape(s);
  KxPosition first = Make({59, 15, 1, 1, 33});
  const GridValues g = ReadGrid(first);
  EXPECT_NEAR(parts[0][0].x, g.easting, 1e-6);
  EXPECT_NEAR(parts[0][0].y, g.northing, 1e-6);
  EXPECT_EQ(parts[0][0].z, 7);  // Z and M stay
  EXPECT_EQ(BoundsOf(s).maxY, parts[1][0].y);
  KxPosition now = Shape_GetDatumGridTemplate(s);
  EXPECT_EQ(Position_GetGrid(now), 1);
  Shape_ConvertDatumGrid(s, nullptr);
  EXPECT_EQ(ErrorOf(s), "10003 Position may not be null.");
  for (KxPosition k : {wgs, utm, other, first, now}) Position_Delete(k);
  Shape_Delete(s);
}

TEST(ShapeGeometry, APolygonWithManyHolesIsCleanAndItsAreaSubtractsThem) {
  // A 20 x 20 grid of square holes in one shell: many parts, many pairs of rings. On the
  // exact lattice the ray from one hole's first node runs through other holes' corners.
  std::vector<Part> parts = {{{0, 0}, {0, 100}, {100, 100}, {100, 0}, {0, 0}}};
  for (int i = 0; i < 20; ++i)
    for (int j = 0; j < 20; ++j) {
      const double x = 2 + 5 * i, y = 2 + 5 * j;
      parts.push_back({{x, y}, {x + 2, y}, {x + 2, y + 2}, {x, y + 2}, {x, y}});
    }
  KxShape s = MakeShape(parts);
  EXPECT_TRUE(Shape_IsCleanPolygon(s));
  EXPECT_EQ(Area(s), 10000 - 400 * 4);
  EXPECT_FALSE(Inside(s, 3, 3));
  EXPECT_TRUE(Inside(s, 1, 1));
  Shape_Delete(s);
}

// Touches and crossings come from exact orientations. The first and last segment of a
// ring share its closing node, and where the rounded intersection of their lines fell
// just off that node inside both, a simple ring was refused as crossing itself; a
// repeated node put a segment's neighbour out of the skipped pairs. A ray through a
// node was counted twice or not at all where the rounded point missed the node.
TEST(ShapeGeometry, TheClosingNodeIsNoCrossingAndARayThroughANodeCountsOnce) {
  KxShape quad = MakeShape({{{-77.0658861, 35.5012814},
                             {-77.1033204, 35.4827045},
                             {-77.1357967, 35.4979677},
                             {-77.1044595, 35.5389022},
                             {-77.0658861, 35.5012814}}});
  EXPECT_NEAR(PartArea(quad), 0.001966294780645205, 1e-15);
  EXPECT_EQ(ErrorOf(quad), "0");
  EXPECT_NEAR(Area(quad), 0.001966294780645205, 1e-15);
  KxShape repeated = MakeShape({{{1, 2}, {0, 2}, {0, 2}, {3, 6}, {3, 1}, {1, 2}}});
  EXPECT_EQ(Area(repeated), 7);
  EXPECT_EQ(ErrorOf(repeated), "0");
  // The rays from (4, 2) and (5, 3) towards R = (2, 0) run through the node (3, 1),
  // where the ring passes from one side to the other: one crossing.
  KxShape triangle = MakeShape({{{6, 6}, {5, 1}, {3, 1}, {6, 6}}});
  EXPECT_TRUE(Inside(triangle, 4, 2));
  EXPECT_TRUE(Inside(triangle, 5, 3));
  // The ray from (2, 3) towards (0, 1) only grazes the tip (1, 2): none.
  KxShape tip = MakeShape({{{4, 4}, {1, 2}, {4, 3}, {4, 4}}});
  EXPECT_FALSE(Inside(tip, 2, 3));
  for (KxShape k : {quad, repeated, triangle, tip}) Shape_Delete(k);
}

}  // namespace
