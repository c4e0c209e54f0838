// The Swiss oblique Mercator, a double projection through a sphere (algorithm 2).
#pragma once

#include "coords/Projection.h"

namespace kx {

class SwissObliqueMercator : public Projection {
 public:
  bool Forward(const ProjectionFrame& frame, double latitude, double longitude, double& easting,
               double& northing) const override;
  bool Inverse(const ProjectionFrame& frame, double easting, double northing, double& latitude,
               double& longitude) const override;

 private:
  struct Sphere;
  static Sphere SphereOf(const ProjectionFrame& frame);
};

}  // namespace kx
