// Lambert Conformal Conic after U.S. Geological Survey Professional Paper 1395 (Snyder
// 1987), eq. 15-1 to 15-11 and 7-9; the Belgian Lambert 72 turns the grid by 29.2985".
// The row's scale factor plays no part.
#include "coords/LambertConformalConic.h"

#include <cmath>

#include "coords/ProjectionMath.h"

namespace kx {

namespace {
constexpr double kBelgianRotation = 0.0001420431363598774;  // radians
// The inverse latitude ends on exact equality, or here.
constexpr int kLatitudePasses = 10;
}  // namespace

struct LambertConformalConic::Cone {
  double n, F, r0, w;
};

LambertConformalConic::Cone LambertConformalConic::ConeOf(const ProjectionFrame& frame) const {
  const EllipsoidRecord& ellipsoid = frame.ellipsoid;
  const GridRecord& row = frame.row;
  const double t1 = ConformalTerm(ellipsoid, row.latitudeSP1);
  const double t2 = ConformalTerm(ellipsoid, row.latitudeSP2);
  const double m1 = ParallelRadius(ellipsoid, row.latitudeSP1);
  const double m2 = ParallelRadius(ellipsoid, row.latitudeSP2);
  const double t0 = m_belgian ? 0 : ConformalTerm(ellipsoid, row.latitudeOfOrigin);
  const double n = (std::log(m1) - std::log(m2)) / (std::log(t1) - std::log(t2));
  const double F = m1 / (n * std::pow(t1, n));
  const double r0 = ellipsoid.a * F * std::pow(t0, n);
  return {n, F, r0, m_belgian ? kBelgianRotation : 0};
}

bool LambertConformalConic::Forward(const ProjectionFrame& frame, double p, double l, double& E,
                                    double& N) const {
  const Cone c = ConeOf(frame);
  const double r = frame.ellipsoid.a * c.F * std::pow(ConformalTerm(frame.ellipsoid, p), c.n);
  const double th = c.n * (l - frame.row.longitudeOfOrigin);
  E = frame.row.falseEasting + r * std::sin(th - c.w);
  N = frame.row.falseNorthing + c.r0 - r * std::cos(th - c.w);
  return true;
}

bool LambertConformalConic::Inverse(const ProjectionFrame& frame, double E, double N, double& p,
                                    double& l) const {
  const Cone c = ConeOf(frame);
  const double e = std::sqrt(frame.ellipsoid.e2);
  double x = E - frame.row.falseEasting;
  double y = c.r0 - (N - frame.row.falseNorthing);
  double r = std::sqrt(x * x + y * y);
  // A cone whose apex lies south (n < 0): r, x and y all take the sign of n, as Snyder's
  // inverse says, or the angle comes out half a turn off.
  if (c.n < 0) {
    r = -r;
    x = -x;
    y = -y;
  }
  const double t = std::pow(r / (frame.ellipsoid.a * c.F), 1 / c.n);
  const double th = std::atan2(x, y);
  l = (th + c.w) / c.n + frame.row.longitudeOfOrigin;
  p = frame.row.latitudeSP1;
  for (int pass = 0; pass < kLatitudePasses; ++pass) {
    const double next =
        kHalfPi - 2 * std::atan(t * std::pow((1 - e * std::sin(p)) / (1 + e * std::sin(p)), e / 2));
    if (next == p) break;
    p = next;
  }
  return true;
}

}  // namespace kx
