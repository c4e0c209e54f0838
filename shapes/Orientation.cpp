#include "shapes/Orientation.h"

#include <cmath>

namespace kx {

namespace {

// a + b = s + e exactly, s the rounded sum.
inline void TwoSum(double a, double b, double& s, double& e) {
  s = a + b;
  const double bPart = s - a, aPart = s - bPart;
  e = (a - aPart) + (b - bPart);
}

// a * b = p + e exactly, p the rounded product; the fused multiply-add rounds only
// once, so it gives the error whatever the compiler contracts elsewhere.
inline void TwoProduct(double a, double b, double& p, double& e) {
  p = a * b;
  e = std::fma(a, b, -p);
}

// A sum of doubles without rounding: components that don't overlap, in increasing
// magnitude, none of them 0. The sign of the sum is the sign of the largest.
class Expansion {
 public:
  void Add(double b) {
    double carry = b;
    int kept = 0;
    for (int k = 0; k < m_count; ++k) {
      double sum, error;
      TwoSum(carry, m_terms[k], sum, error);
      if (error != 0) m_terms[kept++] = error;
      carry = sum;
    }
    if (carry != 0) m_terms[kept++] = carry;
    m_count = kept;
  }
  int Sign() const { return m_count == 0 ? 0 : m_terms[m_count - 1] > 0 ? 1 : -1; }

 private:
  double m_terms[16];  // one Add adds one component at most; the determinant makes 16
  int m_count = 0;
};

bool Finite(XY p) { return std::isfinite(p.x) && std::isfinite(p.y); }

}  // namespace

// Each difference as two doubles, each product of them as two more, all summed exactly.
int ExactOrientation(XY a, XY b, XY c) {
  if (!Finite(a) || !Finite(b) || !Finite(c)) return 0;
  double u[2][2], v[2][2];  // [x or y][rounded, error]
  TwoSum(b.x, -a.x, u[0][0], u[0][1]);
  TwoSum(b.y, -a.y, u[1][0], u[1][1]);
  TwoSum(c.x, -a.x, v[0][0], v[0][1]);
  TwoSum(c.y, -a.y, v[1][0], v[1][1]);
  Expansion det;
  for (double p : u[0])
    for (double q : v[1]) {
      double product, error;
      TwoProduct(p, q, product, error);
      det.Add(product);
      det.Add(error);
    }
  for (double p : u[1])
    for (double q : v[0]) {
      double product, error;
      TwoProduct(p, q, product, error);
      det.Add(-product);
      det.Add(-error);
    }
  return det.Sign();
}

}  // namespace kx
