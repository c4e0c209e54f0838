// One projection algorithm of the grid catalogue, forward and inverse. The frame
// around it (row, datum, zone, restoring the engine) is DatumGridEngine's.
#pragma once

#include <cstdint>

#include "coords/DatumTable.h"
#include "coords/GridCatalogue.h"

namespace kx {

// What an algorithm works with for the length of one call.
struct ProjectionFrame {
  const GridRecord& row;
  const EllipsoidRecord& ellipsoid;
  int16_t zone;  // the Danish systems pick their zone by it
};

class Projection {
 public:
  virtual ~Projection() = default;
  // Latitude and longitude in radians on the grid's datum to easting and northing.
  // False when the point lies outside the grid.
  virtual bool Forward(const ProjectionFrame& frame, double latitude, double longitude,
                       double& easting, double& northing) const = 0;
  virtual bool Inverse(const ProjectionFrame& frame, double easting, double northing,
                       double& latitude, double& longitude) const = 0;

  // The algorithm behind a row's number; null for a number that has none.
  static const Projection* ForAlgorithm(int16_t algorithm);
};

}  // namespace kx
