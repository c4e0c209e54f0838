// Transverse Mercator, the ellipsoidal series (algorithms 1 and 3).
#pragma once

#include "coords/Projection.h"

namespace kx {

class TransverseMercator : public Projection {
 public:
  bool Forward(const ProjectionFrame& frame, double latitude, double longitude, double& easting,
               double& northing) const override;
  bool Inverse(const ProjectionFrame& frame, double easting, double northing, double& latitude,
               double& longitude) const override;
};

}  // namespace kx
