#include "coords/BoundaryPolygon.h"

#include <cmath>

namespace kx {

namespace {

constexpr int kNone = -1;
// Relative tolerance of the collinearity test of a crossing edge.
const double kCollinear = std::ldexp(1.0, -34);

struct Vertex {
  double n, e;
};

// 0 above the point's northing, 1 on it, 2 below.
int SideOf(const Vertex& v, double north) { return v.n > north ? 0 : v.n == north ? 1 : 2; }

class Walk {
 public:
  Walk(double north, double east) : m_north(north), m_east(east) {}

  // One edge from A to B; false when the point lies on it.
  bool Edge(const Vertex& A, const Vertex& B, bool toFirst) {
    const int s = 3 * SideOf(A, m_north) + SideOf(B, m_north);
    switch (s) {
      case 0:
      case 8:
        return true;
      case 1:
      case 7:
        return ArrivesOnLine(A, B, s, toFirst);
      case 2:
      case 6:
        m_previous = 2;
        return Crosses(A, B);
      case 3:
      case 5:
        return LeavesLine(A, s);
      default:  // 4: along the line
        return !(std::fmin(A.e, B.e) <= m_east && m_east <= std::fmax(A.e, B.e));
    }
  }

  int Result() const { return m_crossings % 2 == 1 ? 1 : -1; }

 private:
  bool ArrivesOnLine(const Vertex& A, const Vertex& B, int s, bool toFirst) {
    if (B.e == m_east) return false;
    if (A.e < m_east && toFirst && ((m_first == 3 && s == 1) || (m_first == 5 && s == 7)))
      ++m_crossings;
    m_previous = s;
    return true;
  }

  bool LeavesLine(const Vertex& A, int s) {
    if (A.e == m_east) return false;
    if (A.e < m_east && ((s == 3 && m_previous != 1) || (s == 5 && m_previous != 7))) ++m_crossings;
    if (m_previous == kNone) m_first = s;
    m_previous = 3;
    return true;
  }

  bool Crosses(const Vertex& A, const Vertex& B) {
    const bool between = A.e < m_east ? m_east <= B.e : B.e <= m_east;
    if (!between) {
      if (A.e < m_east) ++m_crossings;
      return true;
    }
    const double dE = B.e - A.e;
    const double dN = std::fabs(B.n - A.n);
    const double f = dE * std::fabs(m_north - A.n);
    const double g = dN * (m_east - A.e);
    if (std::fabs(f - g) < (f + g) * kCollinear) return false;
    if (f < g) ++m_crossings;
    return true;
  }

  const double m_north, m_east;
  int m_first = kNone;
  int m_previous = kNone;
  int m_crossings = 0;
};

}  // namespace

int BoundaryPolygon::PointInPolygon(const double* polygon, double north, double east) {
  const int count = static_cast<int>(polygon[0]);
  const double* vertices = polygon + 1;
  Walk walk(north, east);
  for (int k = 0; k < count; ++k) {
    const int next = (k + 1) % count;
    const Vertex A{vertices[2 * k], vertices[2 * k + 1]};
    const Vertex B{vertices[2 * next], vertices[2 * next + 1]};
    if (!walk.Edge(A, B, next == 0)) return kOnBoundary;
  }
  return walk.Result();
}

}  // namespace kx
