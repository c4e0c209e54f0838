// The New Zealand Map Grid (algorithm 4): a conformal map told by complex polynomials,
// with all its constants fixed. The row gives only the datum.
#pragma once

#include "coords/Projection.h"

namespace kx {

class NzMapGrid : public Projection {
 public:
  bool Forward(const ProjectionFrame& frame, double latitude, double longitude, double& easting,
               double& northing) const override;
  bool Inverse(const ProjectionFrame& frame, double easting, double northing, double& latitude,
               double& longitude) const override;

  static void NzmgForward(double latitude, double longitude, double& northing, double& easting);
  static void NzmgInverse(double northing, double easting, double& latitude, double& longitude);
};

}  // namespace kx
