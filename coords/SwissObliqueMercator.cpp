// The Swiss national survey's oblique Mercator (swisstopo, "Formulas and constants for
// the calculation of the Swiss conformal cylindrical projection"): the ellipsoid onto a
// sphere of radius R, then a Mercator projection oblique about the origin. The row's
// scale factor plays no part; no azimuth is read.
#include "coords/SwissObliqueMercator.h"

#include <cmath>

#include "coords/Constants.h"

namespace kx {

namespace {
// The inverse latitude ends on exact equality, or here.
constexpr int kLatitudePasses = 10;
}  // namespace

struct SwissObliqueMercator::Sphere {
  double e, R, al, b0, K;
};

SwissObliqueMercator::Sphere SwissObliqueMercator::SphereOf(const ProjectionFrame& frame) {
  const double a = frame.ellipsoid.a, e2 = frame.ellipsoid.e2, e = std::sqrt(e2);
  const double lat0 = frame.row.latitudeOfOrigin;
  const double s0 = std::sin(lat0);
  const double cos2 = std::cos(lat0) * std::cos(lat0);
  const double R = a * std::sqrt(1 - e2) / (1 - e2 * s0 * s0);
  const double al = std::sqrt(1 + (e2 / (1 - e2)) * cos2 * cos2);
  const double b0 = std::asin(s0 / al);
  const double K = std::log(std::tan(kQuarterPi + b0 / 2)) -
                   al * std::log(std::tan(kQuarterPi + lat0 / 2)) +
                   (al * e / 2) * std::log((1 + e * s0) / (1 - e * s0));
  return {e, R, al, b0, K};
}

bool SwissObliqueMercator::Forward(const ProjectionFrame& frame, double p, double l, double& E,
                                   double& N) const {
  const Sphere s = SphereOf(frame);
  const double sp = std::sin(p);
  const double S = -s.al * std::log(std::tan(kQuarterPi - p / 2)) -
                   (s.al * s.e / 2) * std::log((1 + s.e * sp) / (1 - s.e * sp)) + s.K;
  const double b = 2 * (std::atan(std::exp(S)) - kQuarterPi);
  const double v = s.al * (l - frame.row.longitudeOfOrigin);
  const double bb =
      std::asin(std::cos(s.b0) * std::sin(b) - std::sin(s.b0) * std::cos(b) * std::cos(v));
  const double vv =
      std::atan(std::sin(v) / (std::sin(s.b0) * std::tan(b) + std::cos(s.b0) * std::cos(v)));
  E = s.R * vv + frame.row.falseEasting;
  N = (s.R / 2) * std::log((1 + std::sin(bb)) / (1 - std::sin(bb))) + frame.row.falseNorthing;
  return true;
}

bool SwissObliqueMercator::Inverse(const ProjectionFrame& frame, double E, double N, double& p,
                                   double& l) const {
  const Sphere s = SphereOf(frame);
  const double vv = (E - frame.row.falseEasting) / s.R;
  const double bb = 2 * (std::atan(std::exp((N - frame.row.falseNorthing) / s.R)) - kQuarterPi);
  const double b =
      std::asin(std::cos(s.b0) * std::sin(bb) + std::sin(s.b0) * std::cos(bb) * std::cos(vv));
  const double v =
      std::atan(std::sin(vv) / (std::cos(s.b0) * std::cos(vv) - std::sin(s.b0) * std::tan(bb)));
  l = frame.row.longitudeOfOrigin + v / s.al;
  p = b;
  for (int pass = 0; pass < kLatitudePasses; ++pass) {
    const double next =
        2 * std::atan(
                std::exp((1 / s.al) * (std::log(std::tan(kQuarterPi + b / 2)) - s.K) +
                         s.e * std::log(std::tan(kQuarterPi + std::asin(s.e * std::sin(p)) / 2)))) -
        kHalfPi;
    if (next == p) break;
    p = next;
  }
  return true;
}

}  // namespace kx
