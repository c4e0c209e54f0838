// A closed polygon of northing and easting pairs: the vertex count as a double, then the
// vertices; the closing vertex isn't repeated.
#pragma once

namespace kx {

class BoundaryPolygon {
 public:
  static constexpr int kInside = 1;
  static constexpr int kOnBoundary = 0;
  static constexpr int kOutside = -1;

  // By the crossings of a ray from the point towards smaller easting.
  static int PointInPolygon(const double* polygon, double north, double east);
};

}  // namespace kx
