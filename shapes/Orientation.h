// A point of the plane, and on which side of a line another point lies, decided
// exactly: the geometry tells a touch from a crossing by this sign alone, so that no
// rounding can turn one into the other.
#pragma once

#include <cmath>

namespace kx {

struct XY {
  double x, y;
};

// The sign of (b - a) x (c - a) without any rounding, for Orientation.
int ExactOrientation(XY a, XY b, XY c);

// The sign of (b - a) x (c - a): +1 when c lies to the left of the line from a to b
// (a, b, c turn counter-clockwise), -1 to the right, 0 on the line. Computed in
// doubles first and, only where their rounding could reach the sign, again without
// any rounding. Exact for finite coordinates whose products stay in the normal range
// of doubles (magnitudes from about 1e-150 to 1e150, and 0); a coordinate that isn't
// finite gives 0.
inline int Orientation(XY a, XY b, XY c) {
  // How far the determinant in doubles can lie from the true one, relative to the sum
  // of the magnitudes of its two products (Shewchuk's bound for the same expression,
  // which also covers the rounding of the sum and of the bound itself): (3 + 16 u) u
  // with u = 2^-53.
  constexpr double kUnit = 1.0 / 9007199254740992.0;
  constexpr double kBound = (3.0 + 16.0 * kUnit) * kUnit;
  const double left = (b.x - a.x) * (c.y - a.y), right = (b.y - a.y) * (c.x - a.x);
  const double det = left - right;
  const double bound = kBound * (std::fabs(left) + std::fabs(right));
  const int sign = (det > bound) - (det < -bound);  // no branch on which side
  return sign != 0 ? sign : ExactOrientation(a, b, c);
}

}  // namespace kx
