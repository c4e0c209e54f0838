// A pair of bivariate polynomials around a centre, stored as one array of doubles:
// degree n; the c = (n+1)(n+2)/2 coefficients of the northing (constant term first);
// the centre's northing; the c coefficients of the easting; the centre's easting.
#pragma once

namespace kx {

class CoefficientTable {
 public:
  // The polynomials at (x, y), x a northing and y an easting: u the northing, v the
  // easting. The order of evaluation is part of the definition.
  static void Evaluate(const double* T, double x, double y, double& u, double& v);
};

}  // namespace kx
