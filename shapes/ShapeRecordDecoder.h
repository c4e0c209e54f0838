// The content of one record of a shape file, turned into the nodes of a Shape. Every
// count and start index that the record gives is checked against the record's own
// length before anything is allocated or read, so that a damaged record fails instead
// of reaching beyond its buffer.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/ErrorRecord.h"
#include "shapes/NodeRecord.h"
#include "shapes/Shape.h"
#include "shapes/ShapeFileLayout.h"

namespace kx {

class ShapeRecordDecoder {
 public:
  struct Settings {
    int32_t type;         // of the file; a record of type 0 is a null record in any file
    ShapeFileKind kind;   // of that type
    bool fixedSize;       // the shape is made fixed-size and sized from the counts
    bool mArraysPresent;  // false: a Z file's M arrays are not read
  };

  // `scratch` carries the nodes of one part on their way into the shape; it is the
  // caller's so that its memory serves record after record.
  ShapeRecordDecoder(const uint8_t* content, int32_t length, const Settings& settings,
                     std::vector<NodeRecord>& scratch)
      : m_content(content), m_length(length), m_settings(settings), m_scratch(scratch) {}

  // The record's content after its type into `shape`; false with the failure in `error`.
  bool DecodeInto(Shape& shape, ErrorRecord& error);

 private:
  // Where a node's values lie: X and Y side by side, Z and M in arrays of their own
  // (null where the record has none).
  struct Arrays {
    const uint8_t* xy = nullptr;
    const uint8_t* z = nullptr;
    const uint8_t* m = nullptr;
  };

  bool DecodePoint(Shape& shape, ErrorRecord& error);
  bool DecodePoly(Shape& shape, ErrorRecord& error);
  bool DecodeMultiPoint(Shape& shape, ErrorRecord& error);
  // The arrays behind the points of `nodes` nodes that start at `xyOffset`.
  bool LocateArrays(int64_t xyOffset, int32_t nodes, Arrays& arrays, ErrorRecord& error) const;
  bool CheckStarts(int32_t parts, int32_t nodes, ErrorRecord& error) const;
  // The index of the part's first node, from the record.
  int32_t StartOf(int32_t part) const {
    return shp::LittleInt32(m_content + shp::kPolyHead + 4 * part);
  }
  // Nodes first to end into the active part of the shape.
  bool AppendRun(Shape& shape, const Arrays& arrays, int32_t first, int32_t end,
                 ErrorRecord& error);
  bool Holds(int64_t end) const { return end <= m_length; }

  const uint8_t* m_content;
  int32_t m_length;
  Settings m_settings;
  std::vector<NodeRecord>& m_scratch;
};

}  // namespace kx
