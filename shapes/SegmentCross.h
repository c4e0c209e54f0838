// The two primitives under all of a Shape's geometry: whether two segments cross, with
// the memory of touches that a walk along a ring carries from one segment to the next,
// and the distance from a point to a segment. Plain double arithmetic, no tolerance.
#pragma once

#include <cstdint>

namespace kx {

struct XY {
  double x, y;
};

// The side from which a segment arrived when it ended exactly on the other one:
// 0 nothing pending, 1 or 2 (left or right of the other segment).
using Side = uint8_t;

// True for a proper crossing of A1-A2 and B1-B2. A touch is false but leaves a side in
// sideA or sideB; when the next segment of the walk leaves on the other side, the touch
// turns out to have been a crossing. Collinear runs keep a pending side alive.
bool SegmentCross(XY A1, XY A2, XY B1, XY B2, Side& sideA, Side& sideB);

// Distance from P to the segment A-B: perpendicular where its foot falls on the
// segment, else to the nearer end.
double PointToSegment(XY P, XY A, XY B);

}  // namespace kx
