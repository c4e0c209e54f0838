#include "shapes/ShapeFileHeader.h"

#include <cstring>

namespace kx {

namespace {

// Where each bound lies in the header: the file keeps X and Y as min, min, max, max.
constexpr int32_t kBoundOffset[8] = {36, 52, 44, 60, 68, 76, 84, 92};

}  // namespace

ShapeFileHeader ShapeFileHeader::Decode(const uint8_t* bytes, int32_t count) {
  ShapeFileHeader header;
  header.fileCode = shp::BigInt32(bytes);
  header.lengthBytes = int32_t(uint32_t(shp::BigInt32(bytes + 24)) * 2u);
  header.version = shp::LittleInt32(bytes + 28);
  header.type = shp::LittleInt32(bytes + 32);
  for (int b = 0; b < 8; ++b)
    if (kBoundOffset[b] + 8 <= count) header.bounds[b] = shp::LittleDouble(bytes + kBoundOffset[b]);
  return header;
}

void ShapeFileHeader::Encode(uint8_t out[shp::kHeaderBytes]) const {
  std::memset(out, 0, shp::kHeaderBytes);
  shp::PutBigInt32(out, fileCode);
  shp::PutBigInt32(out + 24, int32_t(uint32_t(lengthBytes) / 2u));
  shp::PutLittleInt32(out + 28, version);
  shp::PutLittleInt32(out + 32, type);
  for (int b = 0; b < 8; ++b) shp::PutLittleDouble(out + kBoundOffset[b], bounds[b]);
}

}  // namespace kx
