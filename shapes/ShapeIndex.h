// What the geometry of a Shape keeps between calls: each part's nodes side by side with
// its segment tree, and whether each part crosses itself. It belongs to one
// ModifiedCount; any change of the shape makes it stale.
#pragma once

#include <cstdint>
#include <vector>

#include "shapes/PartGeometry.h"

namespace kx {

class Shape;

class ShapeIndex {
 public:
  bool IsCurrent(int32_t modifiedCount) const { return m_valid && m_stamp == modifiedCount; }
  // The shape changed and changed back (a node added and taken away again).
  void Restamp(int32_t modifiedCount) { m_stamp = modifiedCount; }
  void Rebuild(const Shape& shape, int32_t modifiedCount);

  int32_t PartCount() const { return int32_t(m_parts.size()); }
  const PartGeometry& Part(int32_t part) const { return m_parts[part]; }
  const RayOrigin& Origin() const { return m_origin; }
  // PartsIntersect of the part with itself, worked out once.
  bool CrossesItself(int32_t part);

 private:
  void Fill(const Shape& shape, int32_t part, PartGeometry& geometry);

  std::vector<PartGeometry> m_parts;
  std::vector<int8_t> m_crossesItself;  // -1 not known yet
  RayOrigin m_origin{};
  int32_t m_stamp = 0;
  bool m_valid = false;
};

}  // namespace kx
