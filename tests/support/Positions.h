// Positions in tests of the exported functions: made at a place, read in grid form, and
// brought back from it.
#pragma once

#include <string>

#include "KestrixCE.h"
#include "support/ApiText.h"

namespace kxtest {

struct Place {
  double latitude, longitude;  // degrees
  short datum = 1, grid = 0, zone = 0;
};

// Datum, grid and zone first (a new position takes them as labels), then the point.
inline KxPosition Make(const Place& place) {
  KxPosition p = Position_New();
  Position_SetDatum(p, place.datum);
  if (place.grid) Position_SetGrid(p, place.grid);
  if (place.zone) Position_SetZone(p, place.zone);
  Position_SetLatitudeDecDeg(p, &place.latitude);
  Position_SetLongitudeDecDeg(p, &place.longitude);
  return p;
}

struct GridValues {
  double easting = 0, northing = 0;
  std::string zone;
};

inline GridValues ReadGrid(KxPosition p) {
  GridValues g;
  Position_GetEasting(p, &g.easting);
  Position_GetNorthing(p, &g.northing);
  BSTR text = nullptr;
  Position_GetZone(p, &text);
  g.zone = Take(text);
  return g;
}

struct Back {
  double latitude = 0, longitude = 0;
  std::string failure;  // "0" when the way back succeeded
};

// The inverse: a new position in `p`'s datum, grid and zone, given grid values.
inline Back FromGrid(KxPosition p, const GridValues& g) {
  KxPosition back = Position_New();
  Position_MakeSameDatum(back, p);
  Position_MakeSameGrid(back, p);
  Position_SetEasting(back, &g.easting);
  Position_SetNorthing(back, &g.northing);
  Back b;
  Position_GetLatitudeDecDeg(back, &b.latitude);
  Position_GetLongitudeDecDeg(back, &b.longitude);
  b.failure = Failure(Position_GetErrHandle(back));
  Position_Delete(back);
  return b;
}

}  // namespace kxtest
