// Point in a ring: the crossings of the ray from the point to the common origin R,
// counted with the touch memory of SegmentCross, so that a ray through a node counts
// once where the ring passes through it and not at all where the ring only touches it.
#include <algorithm>
#include <vector>

#include "shapes/PartGeometry.h"

namespace kx {

namespace {

// Each segment is visited at most three times: in order, once more after the walk went
// round the closing node with a touch pending, and once on the way back from it. The
// bound leaves room for one more.
constexpr int32_t kVisitsPerSegment = 4;

}  // namespace

bool IsInsidePart(const PartGeometry& part, XY Q, const RayOrigin& origin) {
  const int32_t n = part.insideCount;
  if (n < 4) return false;
  // The segments the ray may meet, in order; the walk skips to the next of them
  // whenever nothing is pending. Kept per thread so that a query allocates nothing.
  thread_local std::vector<int32_t> candidates;
  part.tree.Collect(RayFilter{Q.x, Q.y, origin.DirectionOf(Q)}, candidates);
  if (candidates.empty()) return false;
  bool inside = false, wrapped = false;
  int32_t i = 1, resume = 0;
  Side sideA = 0, sideB = 0;
  for (int32_t visits = 0; i < n && visits < kVisitsPerSegment * n; ++visits) {
    if (sideA == 0 && sideB == 0 && resume == 0) {
      // Nothing pending: a segment the ray can't meet changes nothing.
      // A return to a resume point may have gone back past candidates already seen.
      const auto next = std::lower_bound(candidates.begin(), candidates.end(), i);
      if (next == candidates.end()) break;
      i = *next;
    }
    if (SegmentCross(part.Node(i - 1), part.Node(i), Q, origin.R, sideA, sideB)) {
      inside = !inside;
      if (resume) {
        i = resume;
        resume = 0;
      }
    }
    if (sideA != 0) {
      if (resume == 0) resume = i;
    } else if (resume) {
      i = resume;
      resume = 0;
      wrapped = false;
    }
    ++i;
    if (i >= n && resume && !wrapped) {
      i = 1;
      wrapped = true;
    }
  }
  return inside;
}

}  // namespace kx
