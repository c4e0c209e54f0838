// What the walks over a part read: its nodes side by side, whether it is closed, and
// its segment tree.
#pragma once

#include <cstdint>
#include <vector>

#include "shapes/SegmentCross.h"
#include "shapes/SegmentTree.h"

namespace kx {

struct PartGeometry {
  std::vector<XY> nodes;
  int32_t count = 0;  // the part's own nodes
  // Nodes the inside test sees: count + 1 where Shape_IsInside closes the part with a
  // node like the first, which nodes[count] then holds.
  int32_t insideCount = 0;
  bool closed = false;  // first and last node exactly equal
  SegmentTree tree;     // over the insideCount nodes

  const XY& Node(int32_t k) const { return nodes[k]; }
};

// The common end of the inside test's rays: one unit below and left of the shape's
// bounds, so outside every part.
struct RayOrigin {
  XY R;
  // Whether the segment trees filter by direction (see SegmentTree::Build).
  bool directed = true;
  // The direction measure of SegmentTree, of a query point.
  double DirectionOf(XY Q) const {
    return directed ? (Q.y - R.y) / ((Q.x - R.x) + (Q.y - R.y)) : 0;
  }
};

// Whether a segment of `one` crosses a segment of `two`. `same`: the two are one part
// of one shape, whose neighbouring segments don't count.
bool PartsIntersect(const PartGeometry& one, const PartGeometry& two, bool same);

// Whether Q lies inside the ring of the part, by the crossings of the ray from Q to R.
bool IsInsidePart(const PartGeometry& part, XY Q, const RayOrigin& origin);

}  // namespace kx
