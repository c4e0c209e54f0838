// Shapes for the tests of the exported functions: built from lists of parts, read back
// as lists.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "KestrixCE.h"
#include "support/ApiText.h"

namespace kxtest {

struct Node {
  double x, y, z = 0, m = 0;
};
using Part = std::vector<Node>;

inline void AddNode(KxShape shape, const Node& n) {
  Shape_NewNode(shape, -1);
  Shape_SetNode(shape, &n.x, &n.y, &n.z, &n.m);
}

// A dynamic shape with the parts in order.
inline KxShape MakeShape(const std::vector<Part>& parts) {
  KxShape shape = Shape_New();
  for (const Part& part : parts) {
    Shape_NewPart(shape, -1);
    for (const Node& n : part) AddNode(shape, n);
  }
  return shape;
}

inline std::vector<Part> ReadShape(KxShape shape) {
  std::vector<Part> parts;
  const int before = Shape_GetPartIndex(shape);
  for (int p = 0; p < Shape_GetPartCount(shape); ++p) {
    Shape_SetPartIndex(shape, p);
    Part part;
    for (int k = 0; k < Shape_GetNodeCount(shape); ++k) {
      Shape_SetNodeIndex(shape, k);
      Node n{};
      Shape_GetNode(shape, &n.x, &n.y, &n.z, &n.m);
      part.push_back(n);
    }
    parts.push_back(part);
  }
  Shape_SetPartIndex(shape, before);
  return parts;
}

inline bool operator==(const Node& a, const Node& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z && a.m == b.m;
}

inline std::string ErrorOf(KxShape shape) { return Failure(Shape_GetErrHandle(shape)); }

struct Box {
  double minX, maxX, minY, maxY, minZ, maxZ, minM, maxM;
};

inline Box BoundsOf(KxShape shape) {
  Box b{};
  Shape_GetBoundingBox(shape, &b.minX, &b.maxX, &b.minY, &b.maxY, &b.minZ, &b.maxZ, &b.minM,
                       &b.maxM);
  return b;
}

}  // namespace kxtest
