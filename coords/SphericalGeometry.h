// Great-circle arithmetic on a sphere, from latitude and longitude in radians.
#pragma once

namespace kx {

class SphericalGeometry {
 public:
  // The radius of the sphere that every datum shares for distances in metres.
  static constexpr double kEarthRadius = 6366710.0;

  // Radians of arc between two points (haversine; the root's argument is not clamped).
  static double Arc(double p1, double l1, double p2, double l2);
  // Degrees clockwise from north, from point 1 to point 2 that lies `d` radians away.
  static double Bearing(double p1, double l1, double p2, double l2, double d);
  // The point `r` radians of arc from (p1, l1) along bearing `b` radians.
  static void Destination(double p1, double l1, double r, double b, double& p2, double& l2);
};

}  // namespace kx
