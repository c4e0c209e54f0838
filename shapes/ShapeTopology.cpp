// Shape: point in shape, intersection of shapes, clean polygons, and the Position forms
// of the queries.
#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "shapes/Shape.h"
#include "shapes/ShapeTexts.h"

namespace kx {

using namespace shape_text;

// ---- point in shape -----------------------------------------------------------------

// Even-odd over the parts: a point in a hole isn't inside.
bool Shape::Inside(double x, double y) {
  const ShapeIndex& index = Index();
  bool inside = false;
  for (int32_t part = 0; part < index.PartCount(); ++part)
    if (IsInsidePart(index.Part(part), {x, y}, index.Origin())) inside = !inside;
  return inside;
}

// The test sees each open part of 3 nodes or more closed by a node like its first. A
// dynamic shape really gets that node, and gives it up again, as the application would
// see it: ModifiedCount goes up and a NodeID is used. Nothing else changes, so the
// index stays good. A fixed-size shape is closed for the test alone: its arrays have
// no room, and it can't give a node up.
bool Shape::CloseInPassing() {
  if (m_fixedSize) return false;
  const bool indexed = m_index.IsCurrent(m_modifiedCount);
  bool moved = false;
  for (int32_t part = 0; part < m_index.PartCount(); ++part) {
    const PartGeometry& geometry = m_index.Part(part);
    if (geometry.insideCount == geometry.count) continue;
    const XY first = geometry.Node(0);
    MoveToPart(part);
    NewNode(-1);
    SetNode(first.x, first.y, 0, 0);
    DeleteNode();
    moved = true;
  }
  if (indexed) m_index.Restamp(m_modifiedCount);
  return moved;
}

// A point on the bounding box is outside before any ring is asked.
bool Shape::IsInside(double x, double y) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (!(m_bounds[kMinX] < x && x < m_bounds[kMaxX] && m_bounds[kMinY] < y && y < m_bounds[kMaxY]))
    return false;
  const Cursor cursor = MarkCursor();
  const bool inside = Inside(x, y);
  if (CloseInPassing()) RestoreCursor(cursor);
  return inside;
}

// x and y of a query position, brought to the template.
bool Shape::PositionToXY(Position* position, double& x, double& y) {
  if (!m_template) {
    SetError(kErrInvalidState, kTemplateNotSet);
    return false;
  }
  if (!position) {
    SetError(kErrInvalidArgument, kPositionNull);
    return false;
  }
  return BringToTemplate(position, x, y);
}

bool Shape::IsInside2(Position* position) {
  LockScope lock;
  ClearError();
  double x, y;
  return PositionToXY(position, x, y) && IsInside(x, y);
}

double Shape::FindClosestNode2(Position* position) {
  LockScope lock;
  ClearError();
  double x, y;
  return PositionToXY(position, x, y) ? FindClosestNode(x, y) : 0;
}

double Shape::FindClosestVector2(Position* position) {
  LockScope lock;
  ClearError();
  double x, y;
  return PositionToXY(position, x, y) ? FindClosestVector(x, y) : 0;
}

// ---- intersection -------------------------------------------------------------------

// Neither has a template; or both have, with a grid each and the same grid and zone, or
// without grids and in the same datum.
bool Shape::InSameFrame(Shape* other) {
  Position *mine = m_template, *theirs = other->m_template;
  if (!mine || !theirs) return !mine && !theirs;
  const bool gridMine = HasGrid(mine), gridTheirs = HasGrid(theirs);
  if (gridMine && gridTheirs) return mine->IsSameGrid(theirs);
  return !gridMine && !gridTheirs && mine->IsSameDatum(theirs);
}

bool Shape::IsIntersecting(Shape* other) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (!other) {
    SetError(kErrInvalidArgument, kShapeNull);
    return false;
  }
  other->EnsureStorage();
  if (!InSameFrame(other)) {
    SetError(kErrInvalidArgument, kDifferentFrames);
    return false;
  }
  const ShapeIndex& mine = Index();
  const ShapeIndex& theirs = other->Index();
  for (int32_t a = 0; a < mine.PartCount(); ++a)
    for (int32_t b = 0; b < theirs.PartCount(); ++b)
      if (PartsIntersect(mine.Part(a), theirs.Part(b), other == this && a == b)) return true;
  return false;
}

// ---- clean polygons -----------------------------------------------------------------

// Every part a closed ring of 4 nodes or more that crosses neither itself nor another.
bool Shape::PartsAreRings() {
  const int32_t parts = m_index.PartCount();
  for (int32_t p = 0; p < parts; ++p) {
    const PartGeometry& ring = m_index.Part(p);
    if (!ring.closed || ring.count < 4) return false;
    for (int32_t q = 0; q < parts; ++q) {
      const bool crosses = p == q ? m_index.CrossesItself(p)
                                  : PartsIntersect(ring, m_index.Part(q), false);
      if (crosses) return false;
    }
  }
  return true;
}

// A ring inside an odd number of others is a hole and runs counter-clockwise; the
// others run clockwise (or enclose nothing).
bool Shape::RingsAreNested() {
  const int32_t parts = m_index.PartCount();
  for (int32_t i = 0; i < parts; ++i) {
    const PartGeometry& ring = m_index.Part(i);
    int32_t around = 0;
    for (int32_t j = 0; j < parts; ++j)
      if (j != i && IsInsidePart(m_index.Part(j), ring.Node(0), m_index.Origin())) ++around;
    const double area = SignedArea(ring);
    if (around % 2 == 1 ? !(area < 0) : !(area >= 0)) return false;
  }
  return true;
}

bool Shape::IsCleanPolygon() {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (m_cleanStamp == m_modifiedCount) return m_cleanResult;
  Index();
  m_cleanResult = PartsAreRings() && RingsAreNested();
  m_cleanStamp = m_modifiedCount;
  return m_cleanResult;
}

}  // namespace kx
