// A point of the plane, and on which side of a line another point lies, decided
// exactly: the geometry tells a touch from a crossing by this sign alone, so that no
// rounding can turn one into the other.
#pragma once

namespace kx {

struct XY {
  double x, y;
};

// The sign of (b - a) x (c - a): +1 when c lies to the left of the line from a to b
// (a, b, c turn counter-clockwise), -1 to the right, 0 on the line. Computed in
// doubles first and, only where their rounding could reach the sign, again without
// any rounding. Exact for finite coordinates whose products stay in the normal range
// of doubles (magnitudes from about 1e-150 to 1e150, and 0); a coordinate that isn't
// finite gives 0.
int Orientation(XY a, XY b, XY c);

}  // namespace kx
