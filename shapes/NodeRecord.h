// One node of a Shape as storage holds it: 40 bytes in dynamic and fixed parts alike.
#pragma once

#include <cstdint>
#include <cstring>

namespace kx {

struct NodeRecord {
  int32_t nodeId;
  int32_t reserved;  // keeps the doubles on 8-byte boundaries
  double x, y, z, m;
};
static_assert(sizeof(NodeRecord) == 40, "every store of a Shape is built for 40-byte records");

// Records lie in blocks of bytes; they are read by copy, which the compiler turns into
// plain loads.
inline NodeRecord RecordAt(const uint8_t* records, int32_t index) {
  NodeRecord record;
  std::memcpy(&record, records + static_cast<size_t>(index) * sizeof(NodeRecord), sizeof record);
  return record;
}

}  // namespace kx
