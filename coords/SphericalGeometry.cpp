#include "coords/SphericalGeometry.h"

#include <cmath>

namespace kx {

namespace {
constexpr double kTwoPi = 6.283185307179586;
constexpr double kDegreesPerRadian = 57.29577951308232;
// Below this a sine or cosine counts as zero: coincident points, or a pole.
constexpr double kTiny = 1e-16;

double Square(double x) { return x * x; }
}  // namespace

double SphericalGeometry::Arc(double p1, double l1, double p2, double l2) {
  return 2 * std::asin(std::sqrt(Square(std::sin((p1 - p2) / 2)) +
                                 std::cos(p1) * std::cos(p2) * Square(std::sin((l1 - l2) / 2))));
}

double SphericalGeometry::Bearing(double p1, double l1, double p2, double l2, double d) {
  if (std::cos(p1) < kTiny) return p1 > 0 ? 180.0 : 0.0;  // from a pole
  double b = 0;
  if (!(std::sin(d) < kTiny)) {
    double c = (std::sin(p2) - std::sin(p1) * std::cos(d)) / (std::sin(d) * std::cos(p1));
    if (c <= -1) c = -1;
    if (c >= 1) c = 1;
    b = std::acos(c);
  }
  if (std::sin(l1 - l2) >= 0) b = kTwoPi - b;
  return b * kDegreesPerRadian;
}

void SphericalGeometry::Destination(double p1, double l1, double r, double b, double& p2,
                                    double& l2) {
  p2 = std::asin(std::sin(p1) * std::cos(r) + std::cos(p1) * std::sin(r) * std::cos(b));
  const double dl = std::atan2(std::sin(b) * std::sin(r) * std::cos(p1),
                               std::cos(r) - std::sin(p1) * std::sin(p2));
  l2 = l1 + dl;
}

}  // namespace kx
