// Transverse Mercator after U.S. Geological Survey Professional Paper 1395 (Snyder 1987),
// eq. 8-9 to 8-10 forward and 8-12 to 8-25 inverse: the series to A^6 and D^6, with the
// meridian arc to its e^6 terms. The difference l - lon0 is not wrapped.
#include "coords/TransverseMercator.h"

#include <cmath>

#include "coords/ProjectionMath.h"

namespace kx {

bool TransverseMercator::Forward(const ProjectionFrame& frame, double p, double l, double& E,
                                 double& N) const {
  const GridRecord& row = frame.row;
  const double a = frame.ellipsoid.a, e2 = frame.ellipsoid.e2;
  const double k0 = row.scaleFactor;
  const double ep2 = e2 / (1 - e2);
  const double A = (l - row.longitudeOfOrigin) * std::cos(p);
  const double T = std::tan(p) * std::tan(p);
  const double C = ep2 * std::cos(p) * std::cos(p);
  const double R = a / std::sqrt(1 - e2 * std::sin(p) * std::sin(p));
  const double A2 = A * A, A3 = A2 * A, A4 = A3 * A, A5 = A4 * A, A6 = A5 * A;
  N = row.falseNorthing +
      k0 * (MeridianArc(frame.ellipsoid, p) - MeridianArc(frame.ellipsoid, row.latitudeOfOrigin) +
            R * std::tan(p) *
                (A2 / 2 + (5 - T + 9 * C + 4 * C * C) * A4 / 24 +
                 (61 - 58 * T + T * T + 600 * C - 330 * ep2) * A6 / 720));
  E = row.falseEasting +
      k0 * R * (A + (1 - T + C) * A3 / 6 + (5 - 18 * T + T * T + 72 * C - 58 * ep2) * A5 / 120);
  return true;
}

bool TransverseMercator::Inverse(const ProjectionFrame& frame, double E, double N, double& p,
                                 double& l) const {
  const GridRecord& row = frame.row;
  const double a = frame.ellipsoid.a, e2 = frame.ellipsoid.e2;
  const double k0 = row.scaleFactor;
  const double e1 = (1 - std::sqrt(1 - e2)) / (1 + std::sqrt(1 - e2));
  const double u =
      (MeridianArc(frame.ellipsoid, row.latitudeOfOrigin) + (N - row.falseNorthing) / k0) /
      (a * (1 - e2 / 4 - 3 * e2 * e2 / 64 - 5 * e2 * e2 * e2 / 256));
  // A footpoint more than half a meridian from the equator: no point of the earth, not
  // even one beyond the pole, lies that far up the central meridian.
  if (!(std::fabs(u) <= kPi)) return false;
  const double e1_2 = e1 * e1, e1_3 = e1_2 * e1, e1_4 = e1_3 * e1;
  const double p1 = u + (3 * e1 / 2 - 27 * e1_3 / 32) * std::sin(2 * u) +
                    (21 * e1_2 / 16 - 55 * e1_4 / 32) * std::sin(4 * u) +
                    (151 * e1_3 / 96) * std::sin(6 * u) + (1097 * e1_4 / 512) * std::sin(8 * u);
  const double S = std::sin(p1) * std::sin(p1);
  const double R1 = a / std::sqrt(1 - e2 * S);
  const double Q = a * (1 - e2) / std::pow(1 - e2 * S, 1.5);
  const double D = ((E - row.falseEasting) / R1) / k0;
  const double ep2 = e2 / (1 - e2);
  const double C = ep2 * std::cos(p1) * std::cos(p1);
  const double T = std::tan(p1) * std::tan(p1);
  const double D2 = D * D, D3 = D2 * D, D4 = D3 * D, D5 = D4 * D, D6 = D5 * D;
  l = row.longitudeOfOrigin + (D - (1 + 2 * T + C) * D3 / 6 +
                               (5 - 2 * C + 28 * T - 3 * C * C + 8 * ep2 + 24 * T * T) * D5 / 120) /
                                  std::cos(p1);
  p = p1 - (R1 * std::tan(p1) / Q) *
               (D2 / 2 - (5 + 3 * T + 10 * C - 4 * C * C - 9 * ep2) * D4 / 24 +
                (61 + 90 * T + 298 * C + 45 * T * T - 252 * ep2 - 3 * C * C) * D6 / 720);
  return true;
}

}  // namespace kx
