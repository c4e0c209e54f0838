// The two primitives under all of a Shape's geometry: whether two segments cross, with
// the memory of touches that a walk along a ring carries from one segment to the next,
// and the distance from a point to a segment. No tolerance: a crossing or a touch is
// decided from exact orientations, never from a rounded point of intersection.
#pragma once

#include <cstdint>

#include "shapes/Orientation.h"

namespace kx {

// The side from which a segment arrived when it ended exactly on the other one:
// 0 nothing pending, 1 or 2 (left or right of the other segment).
using Side = uint8_t;

// True for a proper crossing of A1-A2 and B1-B2. A touch is false but leaves a side in
// sideA or sideB; when the next segment of the walk leaves on the other side, the touch
// turns out to have been a crossing. Collinear runs keep a pending side alive. Segments
// that share an end point, or that lie on one line, never cross by themselves.
bool SegmentCross(const XY& A1, const XY& A2, const XY& B1, const XY& B2, Side& sideA, Side& sideB);

// Distance from P to the segment A-B: perpendicular where its foot falls on the
// segment, else to the nearer end.
double PointToSegment(XY P, XY A, XY B);

}  // namespace kx
