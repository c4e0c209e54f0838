// The catalogue of ellipsoids and datums. Every datum leads to WGS 84, the hub of all
// shifts, by seven parameters.
#pragma once

#include <cstdint>

namespace kx {

struct EllipsoidRecord {
  double a;   // semi-major axis, metres
  double e2;  // eccentricity squared
};

struct DatumRecord {
  int32_t ellipsoid;  // index into the ellipsoid table
  int32_t reserved;
  double dx, dy, dz;  // translation to the hub, metres
  double rx, ry, rz;  // rotation to the hub, radians
  double scale;       // difference of the scale factor from 1
};

class DatumTable {
 public:
  static constexpr int16_t kWgs84 = 1;
  static constexpr int16_t kLastCatalogued = 27;
  static constexpr int16_t kCustom = 28;

  // The row of a catalogued datum, 1 to 27; null for any other id.
  static const DatumRecord* Row(int16_t id);
  // The ellipsoid a row names.
  static const EllipsoidRecord& EllipsoidOf(const DatumRecord& row);
  // The NAD27 datums 20 to 23 count as one when deciding whether a shift is needed.
  static bool IsNad27(int16_t id) { return id >= 20 && id <= 23; }
};

}  // namespace kx
