// The published layout of the shape files: the types, the byte orders of their fields,
// and what each type carries. Shared by the reader, the writer and the header.
#pragma once

#include <cstdint>
#include <cstring>

namespace kx {

enum ShapeFileType : int32_t {
  kShpNull = 0,
  kShpPoint = 1,
  kShpPolyLine = 3,
  kShpPolygon = 5,
  kShpMultiPoint = 8,
  kShpPointZ = 11,
  kShpPolyLineZ = 13,
  kShpPolygonZ = 15,
  kShpMultiPointZ = 18,
  kShpPointM = 21,
  kShpPolyLineM = 23,
  kShpPolygonM = 25,
  kShpMultiPointM = 28,
};

// What a record of a type looks like: its family, and whether Z and M arrays follow.
struct ShapeFileKind {
  enum Family { kNull, kPoint, kPoly, kMultiPoint, kUnknown };
  Family family;
  bool hasZ;
  bool hasM;

  static ShapeFileKind Of(int32_t type) {
    switch (type) {
      case kShpNull: return {kNull, false, false};
      case kShpPoint: return {kPoint, false, false};
      case kShpPointZ: return {kPoint, true, false};
      case kShpPointM: return {kPoint, false, true};
      case kShpPolyLine:
      case kShpPolygon: return {kPoly, false, false};
      case kShpPolyLineZ:
      case kShpPolygonZ: return {kPoly, true, false};
      case kShpPolyLineM:
      case kShpPolygonM: return {kPoly, false, true};
      case kShpMultiPoint: return {kMultiPoint, false, false};
      case kShpMultiPointZ: return {kMultiPoint, true, false};
      case kShpMultiPointM: return {kMultiPoint, false, true};
      default: return {kUnknown, false, false};
    }
  }
};

namespace shp {

constexpr int32_t kFileCode = 9994;
constexpr int32_t kVersion = 1000;
constexpr int32_t kHeaderBytes = 100;
constexpr int32_t kIndexHeaderBytes = 36;  // as far as the type: all the index reader needs
constexpr int32_t kRecordHeaderBytes = 8;
constexpr int32_t kIndexEntryBytes = 8;

// Fixed heads of the record contents, in bytes, type included.
constexpr int32_t kPolyHead = 44;        // type, box, part count, node count
constexpr int32_t kMultiPointHead = 40;  // type, box, node count
constexpr int32_t kRangeBytes = 16;      // min and max of Z or M before their array

inline int32_t BigInt32(const uint8_t* p) {
  return int32_t(uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3]);
}
inline int32_t LittleInt32(const uint8_t* p) {
  return int32_t(uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | p[0]);
}
inline double LittleDouble(const uint8_t* p) {
  static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "doubles are copied as they lie");
  double value;
  std::memcpy(&value, p, sizeof value);
  return value;
}
inline void PutBigInt32(uint8_t* p, int32_t value) {
  const uint32_t v = uint32_t(value);
  p[0] = uint8_t(v >> 24), p[1] = uint8_t(v >> 16), p[2] = uint8_t(v >> 8), p[3] = uint8_t(v);
}
inline void PutLittleInt32(uint8_t* p, int32_t value) {
  const uint32_t v = uint32_t(value);
  p[0] = uint8_t(v), p[1] = uint8_t(v >> 8), p[2] = uint8_t(v >> 16), p[3] = uint8_t(v >> 24);
}
inline void PutLittleDouble(uint8_t* p, double value) { std::memcpy(p, &value, sizeof value); }

}  // namespace shp
}  // namespace kx
