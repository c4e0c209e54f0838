// New Zealand Map Grid after Land Information New Zealand's published algorithm (Reilly,
// "A conformal mapping projection with minimum scale error", 1973): a power series in
// the latitude difference, then a complex polynomial; the inverse refines its first
// estimate by two Newton-Raphson passes.
#include "coords/NzMapGrid.h"

#include "coords/ComplexNumber.h"

namespace kx {

namespace {

#include "coords/data/NzMapGrid.inc"

constexpr double a = 6378388.0;
constexpr double N0 = 6023150.0;
constexpr double E0 = 2510000.0;
constexpr double kLatitudeOfOrigin = -41.0;   // degrees
constexpr double kLongitudeOfOrigin = 173.0;  // degrees
constexpr double D = 57.29577951308232;       // degrees per radian
constexpr double U = 0.036;
// The refinement of the inverse: two passes, with no test of convergence.
constexpr int kRefinementPasses = 2;

ComplexNumber ComplexHorner(const ComplexNumber (&table)[6], ComplexNumber z) {
  ComplexNumber w = table[5];
  for (int i = 4; i >= 0; --i) w = ComplexNumber::Add(ComplexNumber::Multiply(w, z), table[i]);
  return ComplexNumber::Multiply(w, z);
}

}  // namespace

void NzMapGrid::NzmgForward(double latitude, double longitude, double& northing, double& easting) {
  const double x = (latitude * D - kLatitudeOfOrigin) * U;
  double s = kSeriesA[9];
  for (int i = 8; i >= 0; --i) s = s * x + kSeriesA[i];
  s = s * x;
  const ComplexNumber w = ComplexHorner(kSeriesC, {s, longitude - kLongitudeOfOrigin / D});
  northing = N0 + w.re * a;
  easting = E0 + w.im * a;
}

void NzMapGrid::NzmgInverse(double northing, double easting, double& latitude, double& longitude) {
  using C = ComplexNumber;
  const C z{(northing - N0) / a, (easting - E0) / a};
  C w = ComplexHorner(kSeriesG, z);
  for (int pass = 0; pass < kRefinementPasses; ++pass) {
    C num = C::Scale(kSeriesC[5], 5.0);
    C den = C::Scale(kSeriesC[5], 6.0);
    for (int i = 4; i >= 1; --i) {
      num = C::Add(C::Multiply(num, w), C::Scale(kSeriesC[i], i));
      den = C::Add(C::Multiply(den, w), C::Scale(kSeriesC[i], i + 1));
    }
    num = C::Add(z, C::Multiply(C::Multiply(num, w), w));
    den = C::Add(kSeriesC[0], C::Multiply(den, w));
    w = C::Divide(num, den);
  }
  longitude = kLongitudeOfOrigin / D + w.im;
  const double s = w.re;
  double q = kSeriesB[8];
  for (int i = 7; i >= 0; --i) q = q * s + kSeriesB[i];
  q = q * (s / U);
  latitude = (kLatitudeOfOrigin + q) / D;
}

bool NzMapGrid::Forward(const ProjectionFrame&, double latitude, double longitude, double& easting,
                        double& northing) const {
  NzmgForward(latitude, longitude, northing, easting);
  return true;
}

bool NzMapGrid::Inverse(const ProjectionFrame&, double easting, double northing, double& latitude,
                        double& longitude) const {
  NzmgInverse(northing, easting, latitude, longitude);
  return true;
}

}  // namespace kx
