// The 100-byte header that opens both the main file and the index file.
#pragma once

#include <cstdint>

#include "shapes/ShapeFileLayout.h"

namespace kx {

struct ShapeFileHeader {
  int32_t fileCode = 0;
  int32_t lengthBytes = 0;  // stored in 16-bit words
  int32_t version = 0;
  int32_t type = 0;
  // min X, max X, min Y, max Y, min Z, max Z, min M, max M: the order of Shape's bounds.
  double bounds[8] = {};

  // The first `bytes` bytes only (at least 36, as far as the type); the rest stay 0.
  static ShapeFileHeader Decode(const uint8_t* bytes, int32_t count);
  void Encode(uint8_t out[shp::kHeaderBytes]) const;
  bool IsKnownFormat() const { return fileCode == shp::kFileCode && version == shp::kVersion; }
};

}  // namespace kx
