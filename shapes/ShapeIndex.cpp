#include "shapes/ShapeIndex.h"

#include <cfloat>
#include <cmath>

#include "shapes/Shape.h"

namespace kx {

namespace {

// How far apart, as seen from R, a segment and a ray that meet may seem. SegmentCross
// decides exactly, so only the direction measure itself rounds: by a few units in the
// last place of a value of at most 1. The margin, which grows with the coordinates, is
// far wider than that.
double DirectionMargin(const double* bounds) {
  double largest = 1;
  for (int b = Shape::kMinX; b <= Shape::kMaxY; ++b) largest = std::fmax(largest, std::fabs(bounds[b]));
  return 4096 * DBL_EPSILON * (largest + 1);
}

}  // namespace

void ShapeIndex::Fill(const Shape& shape, int32_t part, PartGeometry& geometry) {
  const int32_t count = shape.StoredNodeCount(part);
  geometry.nodes.clear();
  geometry.nodes.reserve(count + 1);
  shape.VisitRuns(part, [&](const uint8_t* records, int32_t run) {
    for (int32_t k = 0; k < run; ++k) {
      const NodeRecord r = RecordAt(records, k);
      geometry.nodes.push_back({r.x, r.y});
    }
  });
  geometry.count = count;
  geometry.closed = count > 0 && geometry.nodes[0].x == geometry.nodes[count - 1].x &&
                    geometry.nodes[0].y == geometry.nodes[count - 1].y;
  geometry.insideCount = count;
  if (shape.ClosedForInside(part)) {
    geometry.nodes.push_back(geometry.nodes[0]);
    geometry.insideCount = count + 1;
  }
}

void ShapeIndex::Rebuild(const Shape& shape, int32_t modifiedCount) {
  const double* bounds = shape.Bounds();
  m_origin.R = {bounds[Shape::kMinX] - 1.0, bounds[Shape::kMinY] - 1.0};
  const double margin = DirectionMargin(bounds);
  m_origin.directed = margin < 0.25;
  const int32_t parts = shape.StoredPartCount();
  m_parts.resize(parts);
  for (int32_t part = 0; part < parts; ++part) {
    PartGeometry& geometry = m_parts[part];
    Fill(shape, part, geometry);
    geometry.tree.Build(geometry.nodes.data(), geometry.insideCount, m_origin.R, margin);
  }
  m_crossesItself.assign(parts, -1);
  m_stamp = modifiedCount;
  m_valid = true;
}

bool ShapeIndex::CrossesItself(int32_t part) {
  if (m_crossesItself[part] < 0)
    m_crossesItself[part] = PartsIntersect(m_parts[part], m_parts[part], true) ? 1 : 0;
  return m_crossesItself[part] == 1;
}

}  // namespace kx
