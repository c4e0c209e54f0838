// The Danish grids through Position: System 34 in its two zones, System 45, refusals.
#include <gtest/gtest.h>

#include <cmath>

#include "KestrixCE.h"
#include "support/ApiText.h"

using kxtest::Failure;

namespace {

struct Place {
  short grid, zone;
  double latitude, longitude;
  double tolerance = 1e-8;  // degrees
};

KxPosition At(const Place& place) {
  KxPosition p = Position_New();
  Position_SetDatum(p, 27);
  Position_SetGrid(p, place.grid);
  if (place.zone) Position_SetZone(p, place.zone);
  Position_SetLatitudeDecDeg(p, &place.latitude);
  Position_SetLongitudeDecDeg(p, &place.longitude);
  return p;
}

TEST(DanishGrids, EachSystemConvertsAndComesBack) {
  // Bornholm lies 6 degrees east of tc32's central meridian, where the TM series comes
  // back only within some centimetres.
  const Place places[] = {{48, 1, 56.2, 9.5}, {48, 2, 55.5, 11.8}, {49, 0, 55.12, 14.9, 1e-6}};
  for (const Place& place : places) {
    KxPosition p = At(place);
    double e = 0, n = 0;
    Position_GetEasting(p, &e);
    Position_GetNorthing(p, &n);
    ASSERT_EQ(Failure(Position_GetErrHandle(p)), "0") << place.grid << "/" << place.zone;
    KxPosition back = Position_New();
    Position_SetDatum(back, 27);
    Position_MakeSameGrid(back, p);
    Position_SetEasting(back, &e);
    Position_SetNorthing(back, &n);
    double lat = 0, lon = 0;
    Position_GetLatitudeDecDeg(back, &lat);
    Position_GetLongitudeDecDeg(back, &lon);
    ASSERT_EQ(Failure(Position_GetErrHandle(back)), "0");
    EXPECT_NEAR(lat, place.latitude, place.tolerance);
    EXPECT_NEAR(lon, place.longitude, place.tolerance);
    Position_Delete(p);
    Position_Delete(back);
  }
}

TEST(DanishGrids, BornholmIsOutsideSystem34) {
  KxPosition p = At({48, 0, 55.12, 14.9, 0});
  double e = 0;
  Position_GetEasting(p, &e);
  EXPECT_EQ(Failure(Position_GetErrHandle(p)), "10003 Position outside grid");
  Position_GetEasting(p, &e);  // still stale: tried again
  EXPECT_EQ(Failure(Position_GetErrHandle(p)), "10003 Position outside grid");
  const double far = 1e7;
  Position_SetNorthing(p, &far);
  double lat = 0;
  Position_GetLatitudeDecDeg(p, &lat);
  EXPECT_EQ(Failure(Position_GetErrHandle(p)), "10003 Position outside grid");
  EXPECT_DOUBLE_EQ(lat, 55.12);  // nothing changed
  Position_Delete(p);
}

TEST(DanishGrids, System45IgnoresZonesAndSystem34TakesOneOrTwo) {
  KxPosition p = At({49, 0, 55.12, 14.9, 0});
  Position_SetZone(p, 2);
  EXPECT_EQ(Failure(Position_GetErrHandle(p)), "0");
  BSTR zone = nullptr;
  Position_GetZone(p, &zone);
  EXPECT_EQ(kxtest::Take(zone), "");
  Position_SetGrid(p, 48);
  Position_SetZone(p, 3);
  EXPECT_EQ(Failure(Position_GetErrHandle(p)), "10003 Invalid Zone for this grid!");
  Position_Delete(p);
}

}  // namespace
