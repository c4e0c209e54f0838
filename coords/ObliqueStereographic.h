// Oblique Stereographic, the double projection through the conformal sphere
// (algorithm 8).
#pragma once

#include "coords/Projection.h"

namespace kx {

class ObliqueStereographic : public Projection {
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
