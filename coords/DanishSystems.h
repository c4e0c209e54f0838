// The Danish legacy systems (algorithms 9, 10, 11): System 34 Jylland and Sjaelland and
// System 45 Bornholm, led to and from tc32 (grid 47 in zone 32, on datum 27) by
// polynomials, guarded by a box, a polygon and a round trip.
#pragma once

#include "coords/Projection.h"

namespace kx {

class DanishSystems : public Projection {
 public:
  static constexpr int kConverted = 0;
  static constexpr int kOutsidePolygon = -1;
  static constexpr int kRoundTripMissed = -2;
  static constexpr int kOutsideBox = -3;

  bool Forward(const ProjectionFrame& frame, double latitude, double longitude, double& easting,
               double& northing) const override;
  bool Inverse(const ProjectionFrame& frame, double easting, double northing, double& latitude,
               double& longitude) const override;

  // The system's letter: 'j', 's' or 'b'.
  static char LetterOf(int16_t algorithm, int16_t zone);
  // Direction +1 from tc32 to the local system, -1 back. Returns a status above; the
  // outputs are written unless the input lies outside the box.
  // The polygon of the tc32 side of a system.
  static const double* Tc32Polygon(char letter);
  static int tcts_u(double north, double east, double* northOut, double* eastOut, char letter,
                    int direction);
};

}  // namespace kx
