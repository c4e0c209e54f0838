// Oblique Stereographic after EPSG Guidance Note 7-2, method 9809 (the double projection
// of the Dutch RD grid): conformal sphere of radius R, centre x0.
#include "coords/ObliqueStereographic.h"

#include <cmath>

#include "coords/Constants.h"

namespace kx {

namespace {
// The inverse latitude ends on exact equality, or here.
constexpr int kLatitudePasses = 10;
}  // namespace

struct ObliqueStereographic::Sphere {
  double e, n, c, x0, R;
};

ObliqueStereographic::Sphere ObliqueStereographic::SphereOf(const ProjectionFrame& frame) {
  const double a = frame.ellipsoid.a, e2 = frame.ellipsoid.e2, e = std::sqrt(e2);
  const double lat0 = frame.row.latitudeOfOrigin;
  const double s0 = std::sin(lat0);
  const double cos2 = std::cos(lat0) * std::cos(lat0);
  const double n = std::sqrt(1 + e2 * cos2 * cos2 / (1 - e2));
  const double w1 = std::pow(((1 + s0) / (1 - s0)) * std::pow((1 - e * s0) / (1 + e * s0), e), n);
  const double q = (w1 - 1) / (w1 + 1);
  const double c = ((n + s0) * (1 - q)) / (n - s0) / (1 + q);
  const double x0 = std::asin((c * w1 - 1) / (c * w1 + 1));
  const double R =
      std::sqrt(a * (1 - e2) / std::pow(1 - e2 * s0 * s0, 1.5) * a / std::sqrt(1 - e2 * s0 * s0));
  return {e, n, c, x0, R};
}

bool ObliqueStereographic::Forward(const ProjectionFrame& frame, double p, double l, double& E,
                                   double& N) const {
  const Sphere s = SphereOf(frame);
  const GridRecord& row = frame.row;
  const double k0 = row.scaleFactor;
  const double sp = std::sin(p);
  const double w =
      s.c * std::pow(((1 + sp) / (1 - sp)) * std::pow((1 - s.e * sp) / (1 + s.e * sp), s.e), s.n);
  const double x = std::asin((w - 1) / (w + 1));
  const double d = s.n * (l - row.longitudeOfOrigin);
  const double B = 1 + std::sin(x) * std::sin(s.x0) + std::cos(x) * std::cos(s.x0) * std::cos(d);
  N = row.falseNorthing +
      2 * s.R * k0 * (std::sin(x) * std::cos(s.x0) - std::cos(x) * std::sin(s.x0) * std::cos(d)) /
          B;
  E = row.falseEasting + 2 * s.R * k0 * std::cos(x) * std::sin(d) / B;
  return true;
}

bool ObliqueStereographic::Inverse(const ProjectionFrame& frame, double E, double N, double& p,
                                   double& l) const {
  const Sphere s = SphereOf(frame);
  const GridRecord& row = frame.row;
  const double k0 = row.scaleFactor, e2 = frame.ellipsoid.e2;
  const double dE = E - row.falseEasting, dN = N - row.falseNorthing;
  const double g = 2 * s.R * k0 * std::tan(kQuarterPi - s.x0 / 2);
  const double h = 4 * s.R * k0 * std::tan(s.x0) + g;
  const double i = std::atan2(dE, h + dN);
  const double j = std::atan2(dE, g - dN) - i;
  const double x = s.x0 + 2 * std::atan2(dN - dE * std::tan(j / 2), 2 * s.R * k0);
  l = row.longitudeOfOrigin + (j + 2 * i) / s.n;
  const double psi = 0.5 * std::log((1 + std::sin(x)) / s.c / (1 - std::sin(x))) / s.n;
  p = 2 * std::atan(std::exp(psi)) - kHalfPi;
  for (int pass = 0; pass < kLatitudePasses; ++pass) {
    const double sp = std::sin(p);
    const double next = p - (std::log(std::tan(p / 2 + kQuarterPi) *
                                      std::pow((1 - s.e * sp) / (1 + s.e * sp), s.e / 2)) -
                             psi) *
                                std::cos(p) * (1 - e2 * sp * sp) / (1 - e2);
    if (next == p) break;
    p = next;
  }
  return true;
}

}  // namespace kx
