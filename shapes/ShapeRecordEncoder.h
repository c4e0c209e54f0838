// One Shape as a record of a shape file of a given type: the record header and the
// content, laid out in one block. The shape's storage is read as it stands, so the
// caller commits the shape's working node and holds the LibraryLock.
#pragma once

#include <cstdint>

#include "shapes/Shape.h"
#include "shapes/ShapeFileLayout.h"

namespace kx {

class ShapeRecordEncoder {
 public:
  // `activePart` is the part whose first node a Point record takes. A shape without
  // nodes becomes a null record, whatever the type, and a part without nodes is no part
  // of the record.
  ShapeRecordEncoder(const Shape& shape, int32_t type, int32_t activePart);

  bool IsNullRecord() const { return m_nodes == 0 || m_kind.family == ShapeFileKind::kNull; }
  int32_t NodeCount() const { return m_nodes; }
  // Content bytes, type included; 64-bit so that a caller can refuse what a file of
  // 32-bit offsets can't hold before anything is allocated.
  int64_t ContentLength() const;
  // Record header (with `number`) and content into `out`, which holds 8 + ContentLength().
  void Write(int32_t number, uint8_t* out) const;

 private:
  uint8_t* WritePoint(uint8_t* at) const;
  uint8_t* WritePoly(uint8_t* at) const;
  uint8_t* WriteMultiPoint(uint8_t* at) const;
  uint8_t* WriteBox(uint8_t* at) const;
  uint8_t* WriteXY(uint8_t* at) const;
  // The range and the array of Z (offset 2) or M (offset 3) of all nodes.
  uint8_t* WriteDimension(uint8_t* at, int dimension) const;
  int64_t ArraysLength() const;

  const Shape& m_shape;
  int32_t m_type;
  ShapeFileKind m_kind;
  int32_t m_activePart;
  int32_t m_storedParts;
  int32_t m_parts = 0;  // those with nodes: the record's parts
  int32_t m_nodes = 0;
};

}  // namespace kx
