// The Shape model through the flat functions: storage that appears at first use, the
// cursor and its working copy, the bounds as values change, parts, copies, fixed-size
// shapes and positions.
#include <gtest/gtest.h>

#include <algorithm>

#include "KestrixCE.h"
#include "ShapeSupport.h"
#include "support/Positions.h"

using namespace kxtest;

namespace {

double X(KxShape s) {
  double v = -1;
  Shape_GetX(s, &v);
  return v;
}

void SetX(KxShape s, double v) { Shape_SetX(s, &v); }

TEST(ShapeModel, ANewShapeHasOneEmptyPartMadeAtTheFirstQuery) {
  KxShape s = Shape_New();
  EXPECT_EQ(Shape_GetModifiedCount(s), 1);
  EXPECT_EQ(Shape_GetPartCount(s), 1);
  EXPECT_EQ(Shape_GetModifiedCount(s), 2);  // the storage was made
  EXPECT_EQ(Shape_GetNodeCount(s), 0);
  Shape_NewPart(s, -1);  // no nodes: the empty part serves
  EXPECT_EQ(Shape_GetPartCount(s), 1);
  SetX(s, 5);
  EXPECT_EQ(ErrorOf(s), "10003 No memory is allocated to host nodes.");
  BoundsOf(s);
  EXPECT_EQ(ErrorOf(s), "10006 The shape is empty.");
  Shape_Delete(s);
}

TEST(ShapeModel, NodesTakeNewIDsAndTheValuesOfTheActiveNode) {
  KxShape s = MakeShape({{{1, 2, 3, 4}, {5, 6}}});
  EXPECT_EQ(Shape_GetNodeID(s), 2);
  Shape_SetNodeIndex(s, 0);
  Shape_NewNode(s, 0);  // first in the part, newest ID, values of node 0 until set
  EXPECT_EQ(Shape_GetNodeIndex(s), 0);
  EXPECT_EQ(Shape_GetNodeID(s), 3);
  EXPECT_EQ(X(s), 1);
  Shape_SetNodeIndex(s, 2);
  Shape_SetNodeIndex(s, 0);
  EXPECT_EQ(Shape_GetNodeID(s), 3);
  const std::vector<Part> expected = {{{1, 2, 3, 4}, {1, 2, 3, 4}, {5, 6}}};
  EXPECT_EQ(ReadShape(s), expected);
  Shape_SetNodeIndex(s, 1);
  Shape_SetNodeIndex(s, 3);
  EXPECT_EQ(ErrorOf(s), "10004 Index out of bounds");
  EXPECT_EQ(Shape_GetNodeIndex(s), 1);  // the cursor stays
  Shape_Delete(s);
}

TEST(ShapeModel, AChangeCostsNothingUntilTheCursorMoves) {
  KxShape s = MakeShape({{{1, 1}, {2, 2}}});
  const int before = Shape_GetModifiedCount(s);
  SetX(s, 2);  // the value it has
  EXPECT_EQ(Shape_GetModifiedCount(s), before);
  SetX(s, 7);
  EXPECT_EQ(Shape_GetModifiedCount(s), before + 1);
  KxShape copy = Shape_Copy(s);  // a copy commits first
  EXPECT_EQ(ReadShape(copy)[0][1].x, 7);
  Shape_Delete(copy);
  Shape_Delete(s);
}

TEST(ShapeModel, BoundsFollowEveryChange) {
  KxShape s = MakeShape({{{0, 0, 1, 1}, {10, 5, 2, 2}, {9, 4, 3, 3}}, {{-2, 1}}});
  Box b = BoundsOf(s);
  EXPECT_EQ(b.minX, -2);
  EXPECT_EQ(b.maxX, 10);
  EXPECT_EQ(b.minZ, 0);
  EXPECT_EQ(b.maxM, 3);
  // The node on max X moves inward: the next one behind it holds the bound at once.
  Shape_SetPartIndex(s, 0);
  Shape_SetNodeIndex(s, 1);
  SetX(s, 3);
  EXPECT_EQ(BoundsOf(s).maxX, 9);
  // Deleting the node on min X hands the bound to the nodes left.
  Shape_SetPartIndex(s, 1);
  Shape_DeleteNode(s);
  EXPECT_EQ(BoundsOf(s).minX, 0);
  // Clearing a part of a shape of two recomputes from the other.
  Shape_SetPartIndex(s, 0);
  Shape_ClearPart(s);
  EXPECT_EQ(Shape_GetTotalNodeCount(s), 0);
  b = BoundsOf(s);
  EXPECT_EQ(ErrorOf(s), "10006 The shape is empty.");
  EXPECT_EQ(b.maxX, 0);
  Shape_Delete(s);
}

TEST(ShapeModel, DeletingTheLastNodeStepsBackAndTheOnlyNodeZeroesTheBounds) {
  KxShape s = MakeShape({{{1, 1}, {2, 2}, {3, 3}}});
  Shape_DeleteNode(s);
  EXPECT_EQ(Shape_GetNodeIndex(s), 1);
  EXPECT_EQ(X(s), 2);
  Shape_DeleteNode(s);
  Shape_DeleteNode(s);
  EXPECT_EQ(Shape_GetTotalNodeCount(s), 0);
  const Box b = BoundsOf(s);
  EXPECT_EQ(ErrorOf(s), "10006 The shape is empty.");
  EXPECT_EQ(b.minX, 0);
  EXPECT_EQ(b.maxY, 0);
  Shape_Delete(s);
}

TEST(ShapeModel, PartsAreMadeMovedAndDeleted) {
  KxShape s = MakeShape({{{1, 1}}, {{2, 2}}, {{3, 3}}});
  EXPECT_EQ(Shape_GetPartCount(s), 3);
  Shape_SetPartIndex(s, 0);
  Shape_DeletePart(s);
  EXPECT_EQ(Shape_GetPartIndex(s), 0);
  EXPECT_EQ(X(s), 2);  // the former second part, on its first node
  Shape_SetPartIndex(s, -1);
  Shape_DeletePart(s);  // the last: the one before becomes active
  EXPECT_EQ(Shape_GetPartIndex(s), 0);
  EXPECT_EQ(Shape_GetPartCount(s), 1);
  EXPECT_EQ(BoundsOf(s).maxX, 2);
  Shape_SetPartIndex(s, 1);
  EXPECT_EQ(ErrorOf(s), "10022 Part by this index was not found");
  Shape_SetPartIndex(s, 5);
  EXPECT_EQ(ErrorOf(s), "10004 Index out of bounds");
  Shape_Delete(s);
}

TEST(ShapeModel, ClearShapeForgetsTheTemplateClearPartOfTwoDoesNot) {
  KxPosition t = Position_New();
  KxShape s = MakeShape({{{1, 1}}, {{2, 2}}});
  Shape_SetDatumGridTemplate(s, t);
  Shape_ClearPart(s);
  KxPosition kept = Shape_GetDatumGridTemplate(s);
  EXPECT_EQ(kept, t);
  Position_Delete(kept);
  Shape_SetShapeID(s, 9);
  Shape_ClearShape(s);
  EXPECT_EQ(Shape_GetDatumGridTemplate(s), nullptr);
  EXPECT_EQ(Shape_GetPartCount(s), 1);
  EXPECT_EQ(Shape_GetShapeID(s), 0);
  Shape_NewNode(s, -1);
  EXPECT_EQ(Shape_GetNodeID(s), 1);  // the counter starts over
  Shape_Delete(s);
  Position_Delete(t);
}

TEST(ShapeModel, CopiesAndPiecesOfAPart) {
  KxShape s = MakeShape({{{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}}, {{9, 9, 1, 2}}});
  Shape_SetShapeID(s, 7);
  KxShape copy = Shape_Copy(s);
  KxShape again = Shape_Copy(copy);
  EXPECT_EQ(ReadShape(again), ReadShape(s));
  EXPECT_EQ(Shape_GetShapeID(copy), 0);
  Shape_NewNode(copy, -1);
  EXPECT_EQ(Shape_GetNodeID(copy), 1);  // the copy's counter starts at 1
  Shape_SetPartIndex(s, 0);
  Shape_SetNodeIndex(s, 1);
  KxShape tail = Shape_Copy2(s, 2, -1), piece = Shape_Copy2(s, 2, 3);
  EXPECT_EQ(Shape_GetTotalNodeCount(tail), 3);
  EXPECT_EQ(Shape_GetTotalNodeCount(piece), 2);
  EXPECT_EQ(BoundsOf(tail).minX, 2);
  EXPECT_EQ(Shape_GetNodeIndex(tail), 0);
  EXPECT_EQ(Shape_GetNodeIndex(s), 1);  // the cursor here came back
  EXPECT_EQ(Shape_Copy2(s, 5, -1), nullptr);
  EXPECT_EQ(ErrorOf(s), "10003 Index values are invalid");
  for (KxShape k : {copy, again, tail, piece, s}) Shape_Delete(k);
}

TEST(ShapeModel, FixedSizeShapesAreAnnouncedThenFilled) {
  KxShape s = Shape_New();
  Shape_FixedPartCount(s, 2);
  EXPECT_EQ(ErrorOf(s), "10006 Shape.FixedSize must be set to true");
  Shape_SetFixedSize(s, 1);
  Shape_FixedNodeCount(s, 0, 2);
  EXPECT_EQ(ErrorOf(s), "10006 Invalid part/node index.");  // no parts yet
  Shape_FixedPartCount(s, 0);
  EXPECT_EQ(ErrorOf(s), "10006 Part count shold be bigger than zero");
  Shape_FixedPartCount(s, 2);
  Shape_FixedNodeCount(s, 1, 2);
  EXPECT_EQ(Shape_GetPartIndex(s), 1);
  AddNode(s, {1, 2});
  AddNode(s, {3, 4});
  Shape_NewNode(s, -1);  // full
  EXPECT_EQ(ErrorOf(s), "10006 No part was activated");
  Shape_DeleteNode(s);
  EXPECT_EQ(ErrorOf(s), "10037 This feature is not supported for fixedsize shape.");
  EXPECT_EQ(Shape_Copy(s), nullptr);
  Shape_SetFixedSize(s, 0);
  EXPECT_EQ(ErrorOf(s), "10006 Fixed shape cannot be converted to a dynamic shape.");
  EXPECT_EQ(Shape_GetPartCount(s), 2);
  EXPECT_EQ(Shape_GetTotalNodeCount(s), 2);
  Shape_SetPartIndex(s, 2);
  EXPECT_EQ(ErrorOf(s), "10003 invalid part index");
  EXPECT_EQ(BoundsOf(s).maxY, 4);
  Shape_Delete(s);

  KxShape dynamic = MakeShape({{{1, 1}}});
  Shape_FixedNodeCount(dynamic, 0, 5);  // nothing, no failure
  EXPECT_EQ(ErrorOf(dynamic), "0");
  Shape_SetFixedSize(dynamic, 1);
  EXPECT_EQ(ErrorOf(dynamic), "10006 Dynamic shape cannot be converted to a fixed shape.");
  Shape_Delete(dynamic);
}

TEST(ShapeModel, PositionsComeInThroughTheTemplateAndOutAsOneObject) {
  KxShape s = MakeShape({{{0, 0, 5, 6}}});
  KxPosition p = Make({59.5, 18.25});
  Shape_SetPosition(s, p);  // no template: a copy of p becomes it
  double x, y, z, m;
  Shape_GetNode(s, &x, &y, &z, &m);
  EXPECT_NEAR(x, 18.25, 1e-12);
  EXPECT_NEAR(y, 59.5, 1e-12);
  EXPECT_EQ(z, 0);  // setting a position zeroes Z and M
  EXPECT_EQ(m, 0);
  KxPosition a = Shape_GetPosition(s), b = Shape_GetPosition(s);
  EXPECT_EQ(a, b);
  double lat = 0;
  Position_GetLatitudeDecDeg(a, &lat);
  EXPECT_NEAR(lat, 59.5, 1e-12);
  // A shape in a grid takes the position's easting and northing in that grid.
  KxShape utm = MakeShape({{{0, 0}}});
  KxPosition grid = Make({59.5, 18.25, 1, 1, 34});
  Shape_SetDatumGridTemplate(utm, grid);
  Shape_SetNode2(utm, p);
  const GridValues g = ReadGrid(grid);
  Shape_GetNode(utm, &x, &y, &z, &m);
  EXPECT_NEAR(x, g.easting, 1e-6);
  EXPECT_NEAR(y, g.northing, 1e-6);
  Shape_SetPosition(utm, nullptr);
  EXPECT_EQ(ErrorOf(utm), "10003 Position may not be null.");
  KxShape none = Shape_New();
  EXPECT_EQ(Shape_GetPosition(none), nullptr);
  EXPECT_EQ(ErrorOf(none), "10006 DatumGridTemplate not set.");
  for (KxPosition q : {p, a, b, grid}) Position_Delete(q);
  for (KxShape k : {s, utm, none}) Shape_Delete(k);
}

// A part of 170 nodes, its first 70 deleted, leaves one full block of 100; a node
// inserted in its upper half must find a slot when the block splits.
TEST(ShapeModel, InsertingIntoALoneFullBlockOfNodesKeepsEveryNode) {
  KxShape s = Shape_New();
  for (int k = 0; k < 170; ++k) AddNode(s, {double(k), 0});
  Shape_SetNodeIndex(s, 0);
  for (int k = 0; k < 70; ++k) Shape_DeleteNode(s);
  Shape_NewNode(s, 60);
  EXPECT_EQ(ErrorOf(s), "0");
  SetX(s, -1);
  Part expected;
  for (int k = 70; k < 170; ++k) expected.push_back({double(k), 0});
  expected.insert(expected.begin() + 60, Node{-1, 0});
  EXPECT_EQ(ReadShape(s), std::vector<Part>{expected});
  Shape_Delete(s);
}

// min X, max X, min Y, max Y, ... of the nodes of plain arrays; all 0 without nodes.
std::vector<double> ExpectedBounds(const std::vector<Part>& parts) {
  std::vector<double> b;
  for (const Part& part : parts)
    for (const Node& n : part) {
      const double v[] = {n.x, n.y, n.z, n.m};
      if (b.empty()) b = {v[0], v[0], v[1], v[1], v[2], v[2], v[3], v[3]};
      for (int d = 0; d < 4; ++d) {
        b[2 * d] = std::min(b[2 * d], v[d]);
        b[2 * d + 1] = std::max(b[2 * d + 1], v[d]);
      }
    }
  return b.empty() ? std::vector<double>(8, 0.0) : b;
}

// One random edit of `s`, mirrored in `model`: the shape's cursor says where an edit
// lands. Values come from a few integers, so that nodes often share a bound and edits
// often leave one.
void RandomEdit(KxShape s, std::vector<Part>& model, bool fixed, uint32_t& seed) {
  auto next = [&](uint32_t bound) {
    seed = seed * 1103515245u + 12345u;
    return int((seed >> 8) % bound);
  };
  const int part = Shape_GetPartIndex(s), node = Shape_GetNodeIndex(s);
  const int parts = Shape_GetPartCount(s), nodes = Shape_GetNodeCount(s);
  const int what = next(100);
  if (what < 28) {
    Shape_NewNode(s, fixed || next(3) == 0 ? -1 : next(nodes + 1));
    if (ErrorOf(s) != "0") return;
    Node n;  // a new node holds the working values
    Shape_GetNode(s, &n.x, &n.y, &n.z, &n.m);
    Part& target = model[Shape_GetPartIndex(s)];
    target.insert(target.begin() + Shape_GetNodeIndex(s), n);
  } else if (what < 55) {
    if (nodes == 0) return;
    Node& n = model[part][node];
    double* values[] = {&n.x, &n.y, &n.z, &n.m};
    const int d = next(5);  // 4: all four at once
    for (int k = 0; k < 4; ++k)
      if (d == 4 || d == k) *values[k] = next(9) - 4;
    void (*setters[])(KxShape, const double*) = {Shape_SetX, Shape_SetY, Shape_SetZ, Shape_SetM};
    if (d == 4)
      Shape_SetNode(s, &n.x, &n.y, &n.z, &n.m);
    else
      setters[d](s, values[d]);
  } else if (what < 65) {
    if (nodes > 0) Shape_SetNodeIndex(s, next(nodes + 1) - 1);
  } else if (what < 72) {
    Shape_SetPartIndex(s, next(parts + 1) - 1);
  } else if (fixed && what < 76) {
    model.assign(size_t(1 + next(4)), {});
    Shape_FixedPartCount(s, int(model.size()));
  } else if (fixed && what < 85) {
    const int slot = next(parts);
    Shape_FixedNodeCount(s, slot, 1 + next(8));
    model[slot].clear();
  } else if (fixed) {
  } else if (what < 84) {
    Shape_DeleteNode(s);
    if (nodes > 0) model[part].erase(model[part].begin() + node);
  } else if (what < 90) {
    Shape_NewPart(s, next(parts + 2) - 1);
    if (Shape_GetPartCount(s) > parts) model.insert(model.begin() + Shape_GetPartIndex(s), Part());
  } else if (what < 94) {
    Shape_ClearPart(s);
    model[part].clear();
  } else if (what < 99) {
    Shape_DeletePart(s);
    if (parts == 1)
      model[0].clear();
    else
      model.erase(model.begin() + part);
  } else {
    Shape_ClearShape(s);
    model.assign(1, {});
  }
}

// Whatever sequence of edits an application makes, the bounds enclose exactly the nodes
// there are: a node moved and not yet stored when its part is cleared or deleted, and a
// node made after the shape or its part was emptied, which holds values of a node gone.
TEST(ShapeModel, BoundsEncloseExactlyTheNodesAfterAnyEdits) {
  for (bool fixed : {false, true}) {
    for (uint32_t seed : {1u, 77u, 4242u}) {
      const uint32_t start = seed;
      KxShape s = Shape_New();
      std::vector<Part> model(fixed ? 3 : 1);
      if (fixed) {
        Shape_SetFixedSize(s, 1);
        Shape_FixedPartCount(s, 3);
      }
      Shape_GetPartCount(s);  // a dynamic shape has its first part now
      for (int step = 0; step < 4000; ++step) {
        RandomEdit(s, model, fixed, seed);
        const Box b = BoundsOf(s);
        ASSERT_EQ(
            (std::vector<double>{b.minX, b.maxX, b.minY, b.maxY, b.minZ, b.maxZ, b.minM, b.maxM}),
            ExpectedBounds(model))
            << "seed " << start << " step " << step;
        if (step % 250 == 0) {
          const int part = Shape_GetPartIndex(s), node = Shape_GetNodeIndex(s);
          ASSERT_EQ(ReadShape(s), model) << "seed " << start << " step " << step;
          Shape_SetPartIndex(s, part);
          Shape_SetNodeIndex(s, node);
        }
      }
      Shape_Delete(s);
    }
  }
}

TEST(ShapeModel, PropertiesRaiseModifiedCountOnlyWhenTheyChange) {
  KxShape s = Shape_New();
  const int start = Shape_GetModifiedCount(s);
  Shape_SetShapeID(s, 0);
  Shape_SetPixelShape(s, 0);
  EXPECT_EQ(Shape_GetModifiedCount(s), start);
  Shape_SetShapeID(s, 4);
  Shape_SetPixelShape(s, 1);
  Shape_SetDatumGridTemplate(s, nullptr);
  EXPECT_EQ(Shape_GetModifiedCount(s), start + 3);
  EXPECT_EQ(Shape_GetPixelShape(s), 1);
  Shape_LockObject(s);
  Shape_LockObject(s);  // nests
  Shape_UnlockObject(s);
  Shape_UnlockObject(s);
  Shape_Delete(s);
}

}  // namespace
