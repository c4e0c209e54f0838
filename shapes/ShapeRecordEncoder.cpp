#include "shapes/ShapeRecordEncoder.h"

namespace kx {

namespace {

uint8_t* PutInt(uint8_t* at, int32_t value) {
  shp::PutLittleInt32(at, value);
  return at + 4;
}

uint8_t* PutDouble(uint8_t* at, double value) {
  shp::PutLittleDouble(at, value);
  return at + 8;
}

}  // namespace

ShapeRecordEncoder::ShapeRecordEncoder(const Shape& shape, int32_t type, int32_t activePart)
    : m_shape(shape),
      m_type(type),
      m_kind(ShapeFileKind::Of(type)),
      m_activePart(activePart),
      m_storedParts(shape.StoredPartCount()) {
  // Parts without nodes are left out: a reader takes each part start as a node of the
  // record, and a part start at the node count, or two parts at one start, make other
  // readers refuse the record.
  for (int32_t part = 0; part < m_storedParts; ++part) {
    const int32_t nodes = shape.StoredNodeCount(part);
    m_nodes += nodes;
    if (nodes > 0) ++m_parts;
  }
  // A point takes the first node of the active part; without one it has no geometry.
  if (m_kind.family == ShapeFileKind::kPoint &&
      (activePart < 0 || activePart >= m_storedParts || shape.StoredNodeCount(activePart) == 0))
    m_nodes = 0;
}

// The Z and M blocks behind the points: a range and one value per node each.
int64_t ShapeRecordEncoder::ArraysLength() const {
  const int64_t block = shp::kRangeBytes + 8 * int64_t(m_nodes);
  return (m_kind.hasZ ? 2 * block : 0) + (m_kind.hasM ? block : 0);
}

int64_t ShapeRecordEncoder::ContentLength() const {
  if (IsNullRecord()) return 4;
  switch (m_kind.family) {
    case ShapeFileKind::kPoint: return m_kind.hasZ ? 36 : m_kind.hasM ? 28 : 20;
    case ShapeFileKind::kPoly:
      return shp::kPolyHead + 4 * int64_t(m_parts) + 16 * int64_t(m_nodes) + ArraysLength();
    default: return shp::kMultiPointHead + 16 * int64_t(m_nodes) + ArraysLength();
  }
}

void ShapeRecordEncoder::Write(int32_t number, uint8_t* out) const {
  shp::PutBigInt32(out, number);
  shp::PutBigInt32(out + 4, int32_t(ContentLength() / 2));
  uint8_t* at = out + shp::kRecordHeaderBytes;
  if (IsNullRecord()) {
    PutInt(at, kShpNull);
    return;
  }
  at = PutInt(at, m_type);
  switch (m_kind.family) {
    case ShapeFileKind::kPoint: WritePoint(at); break;
    case ShapeFileKind::kPoly: WritePoly(at); break;
    default: WriteMultiPoint(at); break;
  }
}

uint8_t* ShapeRecordEncoder::WritePoint(uint8_t* at) const {
  const NodeRecord node = m_shape.StoredNode(m_activePart, 0);
  at = PutDouble(PutDouble(at, node.x), node.y);
  if (m_kind.hasZ) at = PutDouble(at, node.z);
  if (m_kind.hasZ || m_kind.hasM) at = PutDouble(at, node.m);
  return at;
}

uint8_t* ShapeRecordEncoder::WritePoly(uint8_t* at) const {
  at = PutInt(PutInt(WriteBox(at), m_parts), m_nodes);
  int32_t start = 0;
  for (int32_t part = 0; part < m_storedParts; ++part) {
    const int32_t nodes = m_shape.StoredNodeCount(part);
    if (nodes == 0) continue;
    at = PutInt(at, start);
    start += nodes;
  }
  at = WriteXY(at);
  if (m_kind.hasZ) at = WriteDimension(at, 2);
  if (m_kind.hasZ || m_kind.hasM) at = WriteDimension(at, 3);
  return at;
}

// All nodes of all parts, in order: a MultiPoint has no parts of its own.
uint8_t* ShapeRecordEncoder::WriteMultiPoint(uint8_t* at) const {
  at = WriteXY(PutInt(WriteBox(at), m_nodes));
  if (m_kind.hasZ) at = WriteDimension(at, 2);
  if (m_kind.hasZ || m_kind.hasM) at = WriteDimension(at, 3);
  return at;
}

// The whole shape's bounds, in the file's order: min X, min Y, max X, max Y.
uint8_t* ShapeRecordEncoder::WriteBox(uint8_t* at) const {
  const double* b = m_shape.Bounds();
  at = PutDouble(PutDouble(at, b[Shape::kMinX]), b[Shape::kMinY]);
  return PutDouble(PutDouble(at, b[Shape::kMaxX]), b[Shape::kMaxY]);
}

uint8_t* ShapeRecordEncoder::WriteXY(uint8_t* at) const {
  for (int32_t part = 0; part < m_storedParts; ++part)
    m_shape.VisitRuns(part, [&](const uint8_t* records, int32_t count) {
      for (int32_t k = 0; k < count; ++k) {
        const NodeRecord node = RecordAt(records, k);
        at = PutDouble(PutDouble(at, node.x), node.y);
      }
    });
  return at;
}

uint8_t* ShapeRecordEncoder::WriteDimension(uint8_t* at, int dimension) const {
  const double* b = m_shape.Bounds();
  at = PutDouble(PutDouble(at, b[2 * dimension]), b[2 * dimension + 1]);
  for (int32_t part = 0; part < m_storedParts; ++part)
    m_shape.VisitRuns(part, [&](const uint8_t* records, int32_t count) {
      for (int32_t k = 0; k < count; ++k) {
        const NodeRecord node = RecordAt(records, k);
        at = PutDouble(at, dimension == 2 ? node.z : node.m);
      }
    });
  return at;
}

}  // namespace kx
