// Lambert Conformal Conic with two standard parallels (algorithm 5), and the Belgian
// form with its rotation and no latitude of origin (algorithm 6).
#pragma once

#include "coords/Projection.h"

namespace kx {

class LambertConformalConic : public Projection {
 public:
  explicit LambertConformalConic(bool belgian) : m_belgian(belgian) {}
  bool Forward(const ProjectionFrame& frame, double latitude, double longitude, double& easting,
               double& northing) const override;
  bool Inverse(const ProjectionFrame& frame, double easting, double northing, double& latitude,
               double& longitude) const override;

 private:
  struct Cone;
  Cone ConeOf(const ProjectionFrame& frame) const;

  bool m_belgian;
};

}  // namespace kx
