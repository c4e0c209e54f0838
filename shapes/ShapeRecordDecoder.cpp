#include "shapes/ShapeRecordDecoder.h"

#include "frame/ErrorNumbers.h"
#include "shapes/ShapeFileTexts.h"

namespace kx {

namespace {

using namespace shapefile_text;

// A count or an array that lies beyond the record's declared length.
bool BeyondRecord(ErrorRecord& error) {
  error.SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
  return false;
}

bool Taken(Shape& shape, ErrorRecord& error) {
  if (!shape.Error().Failed()) return true;
  error.m_copy_err(&shape.Error());
  return false;
}

}  // namespace

bool ShapeRecordDecoder::DecodeInto(Shape& shape, ErrorRecord& error) {
  const ShapeFileKind::Family family = m_settings.kind.family;
  if (family == ShapeFileKind::kPoint || family == ShapeFileKind::kMultiPoint) {
    if (m_settings.fixedSize)
      shape.FixedPartCount(1);
    else
      shape.NewPart(-1);
    if (!Taken(shape, error)) return false;
  }
  if (!Holds(4)) return BeyondRecord(error);
  const int32_t type = shp::LittleInt32(m_content);
  if (type == kShpNull) return true;  // a null record, in a file of any type
  if (type != m_settings.type) {
    error.SetError(kErrInvalidArgument, kDifferentTypes);
    return false;
  }
  switch (family) {
    case ShapeFileKind::kPoint:
      return DecodePoint(shape, error);
    case ShapeFileKind::kPoly:
      return DecodePoly(shape, error);
    default:
      return DecodeMultiPoint(shape, error);
  }
}

// X, Y, then M for PointM, or Z and, in a record of exactly 36 bytes, M for PointZ.
bool ShapeRecordDecoder::DecodePoint(Shape& shape, ErrorRecord& error) {
  const bool extra = m_settings.kind.hasZ || m_settings.kind.hasM;
  if (!Holds(extra ? 28 : 20)) return BeyondRecord(error);
  Arrays arrays;
  arrays.xy = m_content + 4;
  if (m_settings.kind.hasM) arrays.m = m_content + 20;
  if (m_settings.kind.hasZ) {
    arrays.z = m_content + 20;
    if (m_length == 36) arrays.m = m_content + 28;
  }
  if (m_settings.fixedSize) shape.FixedNodeCount(0, 1);
  return Taken(shape, error) && AppendRun(shape, arrays, 0, 1, error);
}

bool ShapeRecordDecoder::DecodePoly(Shape& shape, ErrorRecord& error) {
  if (!Holds(shp::kPolyHead)) return BeyondRecord(error);
  const int32_t parts = shp::LittleInt32(m_content + 36);
  const int32_t nodes = shp::LittleInt32(m_content + 40);
  if (parts < 1) {
    error.SetError(kErrInvalidArgument, kNoParts);
    return false;
  }
  const int64_t xyOffset = shp::kPolyHead + 4 * int64_t(parts);
  if (nodes < 0 || !Holds(xyOffset)) return BeyondRecord(error);
  Arrays arrays;
  if (!LocateArrays(xyOffset, nodes, arrays, error) || !CheckStarts(parts, nodes, error))
    return false;
  if (m_settings.fixedSize) shape.FixedPartCount(parts);
  if (!Taken(shape, error)) return false;
  for (int32_t part = 0; part < parts; ++part) {
    const int32_t first = StartOf(part);
    const int32_t end = part + 1 < parts ? StartOf(part + 1) : nodes;
    // A fixed part can't be sized 0: an empty part keeps its empty slot.
    if (m_settings.fixedSize && end > first)
      shape.FixedNodeCount(part, end - first);
    else if (!m_settings.fixedSize)
      shape.NewPart(-1);
    if (!Taken(shape, error) || !AppendRun(shape, arrays, first, end, error)) return false;
  }
  return true;
}

bool ShapeRecordDecoder::DecodeMultiPoint(Shape& shape, ErrorRecord& error) {
  if (!Holds(shp::kMultiPointHead)) return BeyondRecord(error);
  const int32_t nodes = shp::LittleInt32(m_content + 36);
  if (nodes < 1) {
    error.SetError(kErrInvalidArgument, kEmptyMultiPoint);
    return false;
  }
  Arrays arrays;
  if (!LocateArrays(shp::kMultiPointHead, nodes, arrays, error)) return false;
  if (m_settings.fixedSize) shape.FixedNodeCount(0, nodes);
  return Taken(shape, error) && AppendRun(shape, arrays, 0, nodes, error);
}

// The points must lie in the record, and so must the Z array of a Z type. M arrays are
// optional in the format: they are read where the record holds them (and, in a Z file,
// where the header's M range says they mean something).
bool ShapeRecordDecoder::LocateArrays(int64_t xyOffset, int32_t nodes, Arrays& arrays,
                                      ErrorRecord& error) const {
  int64_t end = xyOffset + 16 * int64_t(nodes);
  if (!Holds(end)) return BeyondRecord(error);
  arrays.xy = m_content + xyOffset;
  if (m_settings.kind.hasZ) {
    if (!Holds(end + shp::kRangeBytes + 8 * int64_t(nodes))) return BeyondRecord(error);
    arrays.z = m_content + end + shp::kRangeBytes;
    end += shp::kRangeBytes + 8 * int64_t(nodes);
  }
  const bool wantM = m_settings.kind.hasM || (m_settings.kind.hasZ && m_settings.mArraysPresent);
  if (wantM && Holds(end + shp::kRangeBytes + 8 * int64_t(nodes)))
    arrays.m = m_content + end + shp::kRangeBytes;
  return true;
}

// Each part starts inside the nodes and no earlier than the part before it.
bool ShapeRecordDecoder::CheckStarts(int32_t parts, int32_t nodes, ErrorRecord& error) const {
  int32_t previous = 0;
  for (int32_t part = 0; part < parts; ++part) {
    const int32_t start = StartOf(part);
    if (start < previous || start > nodes) return BeyondRecord(error);
    previous = start;
  }
  return true;
}

bool ShapeRecordDecoder::AppendRun(Shape& shape, const Arrays& arrays, int32_t first, int32_t end,
                                   ErrorRecord& error) {
  if (end <= first) return true;
  // Grown, never shrunk: a smaller part reuses the front without clearing it again.
  if (m_scratch.size() < size_t(end - first)) m_scratch.resize(size_t(end - first));
  for (int32_t k = first; k < end; ++k) {
    NodeRecord& node = m_scratch[size_t(k - first)];
    node.x = shp::LittleDouble(arrays.xy + 16 * size_t(k));
    node.y = shp::LittleDouble(arrays.xy + 16 * size_t(k) + 8);
    node.z = arrays.z ? shp::LittleDouble(arrays.z + 8 * size_t(k)) : 0;
    node.m = arrays.m ? shp::LittleDouble(arrays.m + 8 * size_t(k)) : 0;
  }
  shape.AppendNodes(m_scratch.data(), end - first);
  return Taken(shape, error);
}

}  // namespace kx
