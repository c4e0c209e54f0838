// A part of a fixed-size Shape: an array sized by its owner before the nodes come.
#pragma once

#include <cstdint>

#include "shapes/NodeRecord.h"

namespace kx {

struct FixedPart {
  int32_t count = 0;
  int32_t capacity = 0;
  NodeRecord* nodes = nullptr;  // owned
};

}  // namespace kx
