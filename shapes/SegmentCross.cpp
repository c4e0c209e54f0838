#include "shapes/SegmentCross.h"

#include <algorithm>
#include <cmath>

namespace kx {

namespace {

double Cross(XY S1, XY S2, XY R) {
  return (S2.x - S1.x) * (R.y - S1.y) - (S2.y - S1.y) * (R.x - S1.x);
}

Side SideOf(XY S1, XY S2, XY R) { return Cross(S1, S2, R) > 0 ? 1 : 2; }

Side Other(Side side) { return side == 1 ? 2 : 1; }

bool Same(XY a, XY b) { return a.x == b.x && a.y == b.y; }

bool Between(double v, double a, double b) { return std::min(a, b) < v && v < std::max(a, b); }

bool InBox(XY P, XY S1, XY S2) {
  return P.x >= std::min(S1.x, S2.x) && P.x <= std::max(S1.x, S2.x) &&
         P.y >= std::min(S1.y, S2.y) && P.y <= std::max(S1.y, S2.y);
}

// A segment's line: y = m x + c when it runs more across than up (flat), else
// x = m y + c (steep).
struct Line {
  bool flat;
  double m, c;
};

Line LineOf(XY S1, XY S2) {
  const double dx = S2.x - S1.x, dy = S2.y - S1.y;
  if (std::fabs(dx) > std::fabs(dy)) {
    const double m = dy / dx;
    return {true, m, S1.y - m * S1.x};
  }
  const double m = dx / dy;
  return {false, m, S1.x - m * S1.y};
}

XY Intersection(const Line& A, const Line& B) {
  if (A.flat && B.flat) {
    const double Px = (A.c - B.c) / (B.m - A.m);
    return {Px, A.c + A.m * Px};
  }
  if (!A.flat && !B.flat) {
    const double Py = (A.c - B.c) / (B.m - A.m);
    return {A.c + A.m * Py, Py};
  }
  if (!A.flat) {
    const double Py = (B.m * A.c + B.c) / (1 - A.m * B.m);
    return {A.c + A.m * Py, Py};
  }
  const double Py = (A.m * B.c + A.c) / (1 - B.m * A.m);
  return {B.c + B.m * Py, Py};
}

// Parallel segments never cross; on one line they pass a pending side on.
void Parallel(const Line& A, const Line& B, XY A1, XY A2, XY B1, XY B2, Side& sideA, Side& sideB) {
  const Side sA = sideA, sB = sideB;
  sideA = sideB = 0;
  if (A.c != B.c) return;
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

bool SegmentCross(XY A1, XY A2, XY B1, XY B2, Side& sideA, Side& sideB) {
  if (Same(A1, A2) || Same(B1, B2)) return false;
  const Line A = LineOf(A1, A2), B = LineOf(B1, B2);
  if (A.flat == B.flat && A.m == B.m) {
    Parallel(A, B, A1, A2, B1, B2, sideA, sideB);
    return false;
  }
  const XY P = Intersection(A, B);
  const bool atA1 = Same(P, A1), atA2 = Same(P, A2), atB1 = Same(P, B1), atB2 = Same(P, B2);
  const bool onA = InBox(P, A1, A2), onB = InBox(P, B1, B2);
  const Side sA = sideA, sB = sideB;

  // A segment that starts on the other one settles the touch its predecessor left.
  bool crossed = false;
  if (atA1 && atB1) {
    const Side c = SideOf(A1, A2, B2);
    crossed = sA != 0 && sB != 0 && sA != Other(c) && sB != c;
  } else if (atA1 && onB) {
    crossed = sA != 0 && SideOf(B1, B2, A2) != sA;
  } else if (atB1 && onA) {
    crossed = sB != 0 && SideOf(A1, A2, B2) != sB;
  }

  // A segment that ends on the other one notes the side it came from.
  sideA = sideB = 0;
  if (atA2 && atB2) {
    const Side c = SideOf(A1, A2, B1);
    sideB = c;
    sideA = Other(c);
  } else if (atA2 && onB) {
    sideA = SideOf(B1, B2, A1);
  } else if (atB2 && onA) {
    sideB = SideOf(A1, A2, B1);
  }

  if (onA && onB && !atA1 && !atA2 && !atB1 && !atB2) crossed = true;
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
