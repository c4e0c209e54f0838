// The catalogue of grids by id, the two US State Plane tables, and the zone family of
// each grid.
#pragma once

#include <cstdint>

namespace kx {

struct GridRecord {
  int16_t datum;
  int16_t algorithm;
  int32_t reserved;
  double falseEasting, falseNorthing;          // metres
  double longitudeOfOrigin, latitudeOfOrigin;  // radians
  double scaleFactor;
  double latitudeSP1, latitudeSP2;  // standard parallels, radians
  int16_t zoneKey;                  // FIPS code, State Plane rows only
};

// How a grid chooses its zone.
enum class ZoneFamily {
  kNone,           // one fixed row; zones are ignored
  kUtm,            // 6-degree zones 1 to 60 from the longitude
  kGaussKrueger3,  // 3-degree zones 1 to 10 from the longitude
  kStatePlane27,   // a row of the 1927 table by key
  kStatePlane83,   // a row of the 1983 table by key
  kDanish34,       // zone 1 Jylland, 2 Sjaelland
};

class GridCatalogue {
 public:
  static constexpr int16_t kNoGrid = 0;
  static constexpr int16_t kGaussKrueger = 29;
  static constexpr int16_t kStatePlane1927 = 30;
  static constexpr int16_t kStatePlane1983 = 31;
  static constexpr int16_t kDanishSystem34 = 48;
  static constexpr int16_t kCustom = 52;

  static bool IsKnown(int16_t grid) { return grid >= kNoGrid && grid <= kCustom; }
  // The catalogue row of a grid id, 0 to 52.
  static const GridRecord& Row(int16_t grid);
  static ZoneFamily FamilyOf(int16_t grid);

  // Index of the State Plane row with this key, or -1.
  static int FindZone27(int16_t key);
  static int FindZone83(int16_t key);
  static const GridRecord& Zone27(int index);
  static const GridRecord& Zone83(int index);
};

}  // namespace kx
