#include "shapes/SegmentCross.h"

#include <algorithm>
#include <cmath>

namespace kx {

namespace {

Side SideOf(int orientation) { return orientation > 0 ? 1 : 2; }

Side Other(Side side) { return side == 1 ? 2 : 1; }

bool Same(XY a, XY b) { return a.x == b.x && a.y == b.y; }

bool Finite(XY p) { return std::isfinite(p.x) && std::isfinite(p.y); }

bool Between(double v, double a, double b) { return std::min(a, b) < v && v < std::max(a, b); }

// Segments on one line never cross; they pass a pending side on.
void OnOneLine(XY A1, XY A2, XY B1, XY B2, Side sA, Side sB, Side& sideA, Side& sideB) {
  if (Between(A2.x, B1.x, B2.x) || Between(B2.x, A1.x, A2.x)) {
    sideA = sA;
    sideB = sB;
  }
  if (A2.x == B2.x) {
    if (sA != 0) {
      sideA = sA;
      sideB = Other(sA);
    } else if (sB != 0) {
      sideB = sB;
      sideA = Other(sB);
    }
  }
}

}  // namespace

// The lines of A and B meet in one point P, which lies on both segments, exactly when
// neither segment lies wholly on one side of the other's line; P is an end point
// exactly when that end lies on the other line. Four orientations decide it all. (A
// coordinate that isn't finite gives orientations of 0, so it is looked for only
// where one is 0.)
bool SegmentCross(const XY& A1, const XY& A2, const XY& B1, const XY& B2, Side& sideA,
                  Side& sideB) {
  if (Same(A1, A2) || Same(B1, B2)) return false;
  const Side sA = sideA, sB = sideB;
  sideA = sideB = 0;
  const int a1 = Orientation(B1, B2, A1), a2 = Orientation(B1, B2, A2);
  if (a1 * a2 > 0) return false;  // A wholly on one side of B's line
  const int b1 = Orientation(A1, A2, B1), b2 = Orientation(A1, A2, B2);
  if (b1 * b2 > 0) return false;
  if (a1 != 0 && a2 != 0 && b1 != 0 && b2 != 0) return true;  // a proper crossing
  if (!Finite(A1) || !Finite(A2) || !Finite(B1) || !Finite(B2)) return false;
  if (a1 == 0 && a2 == 0) {
    OnOneLine(A1, A2, B1, B2, sA, sB, sideA, sideB);
    return false;
  }
  const bool atA1 = a1 == 0, atA2 = a2 == 0, atB1 = b1 == 0, atB2 = b2 == 0;

  // A segment that starts on the other one settles the touch its predecessor left.
  bool crossed = false;
  if (atA1 && atB1) {
    const Side c = SideOf(b2);
    crossed = sA != 0 && sB != 0 && sA != Other(c) && sB != c;
  } else if (atA1) {
    crossed = sA != 0 && SideOf(a2) != sA;
  } else if (atB1) {
    crossed = sB != 0 && SideOf(b2) != sB;
  }

  // A segment that ends on the other one notes the side it came from.
  if (atA2 && atB2) {
    const Side c = SideOf(b1);
    sideB = c;
    sideA = Other(c);
  } else if (atA2) {
    sideA = SideOf(a1);
  } else if (atB2) {
    sideB = SideOf(b1);
  }
  return crossed;
}

double PointToSegment(XY P, XY A, XY B) {
  const double dA2 = (P.x - A.x) * (P.x - A.x) + (P.y - A.y) * (P.y - A.y);
  const double dB2 = (P.x - B.x) * (P.x - B.x) + (P.y - B.y) * (P.y - B.y);
  const double dA = std::sqrt(dA2), dB = std::sqrt(dB2);
  const double dx = B.x - A.x, dy = B.y - A.y;
  if (dx == 0 && dy == 0) return dA;
  double m, e;
  if (std::fabs(dx) > std::fabs(dy)) {
    m = dy / dx;
    e = m * P.x - P.y + (A.y - m * A.x);
  } else {
    m = dx / dy;
    e = m * P.y - P.x + (A.x - m * A.y);
  }
  // The foot of the perpendicular falls outside the segment.
  if (std::fabs(dA2 - dB2) > dx * dx + dy * dy) return std::min(dA, dB);
  return std::fabs(e) / std::sqrt(m * m + 1);
}

}  // namespace kx
