// Functions of latitude on the ellipsoid that several projections share
// (U.S. Geological Survey Professional Paper 1395, Snyder 1987: eq. 3-21, 15-9, 14-15).
#pragma once

#include <cmath>

#include "coords/Constants.h"
#include "coords/DatumTable.h"

namespace kx {

// Distance along the meridian from the equator to latitude p, to the e^6 terms.
inline double MeridianArc(const EllipsoidRecord& ellipsoid, double p) {
  const double e2 = ellipsoid.e2, e4 = e2 * e2, e6 = e4 * e2;
  return ellipsoid.a *
         ((1 - e2 / 4 - 3 * e4 / 64 - 5 * e6 / 256) * p -
          (3 * e2 / 8 + 3 * e4 / 32 + 45 * e6 / 1024) * std::sin(2 * p) +
          (15 * e4 / 256 + 45 * e6 / 1024) * std::sin(4 * p) - (35 * e6 / 3072) * std::sin(6 * p));
}

// t of the conformal projections.
inline double ConformalTerm(const EllipsoidRecord& ellipsoid, double p) {
  const double e = std::sqrt(ellipsoid.e2);
  return std::tan(kQuarterPi - p / 2) /
         std::pow((1 - e * std::sin(p)) / (1 + e * std::sin(p)), e / 2);
}

// m: the radius of the parallel at p, in units of a.
inline double ParallelRadius(const EllipsoidRecord& ellipsoid, double p) {
  return std::cos(p) / std::sqrt(1 - ellipsoid.e2 * std::sin(p) * std::sin(p));
}

}  // namespace kx
