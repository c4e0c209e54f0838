// The Danish grids through Position: System 34 in its two zones, System 45, refusals.
#include <gtest/gtest.h>

#include <cmath>

#include "KestrixCE.h"
#include "support/Positions.h"

using kxtest::Failure;

namespace {

KxPosition At(short grid, short zone, double latitude, double longitude) {
  return kxtest::Make({latitude, longitude, 27, grid, zone});
}

TEST(DanishGrids, EachSystemConvertsAndComesBack) {
  // Bornholm lies 6 degrees east of tc32's central meridian, where the TM series comes
  // back only within some centimetres.
  const struct {
    short grid, zone;
    double latitude, longitude, tolerance;
  } places[] = {{48, 1, 56.2, 9.5, 1e-8}, {48, 2, 55.5, 11.8, 1e-8}, {49, 0, 55.12, 14.9, 1e-6}};
  for (const auto& place : places) {
    KxPosition p = At(place.grid, place.zone, place.latitude, place.longitude);
    const kxtest::GridValues g = kxtest::ReadGrid(p);
    ASSERT_EQ(Failure(Position_GetErrHandle(p)), "0") << place.grid << "/" << place.zone;
    const kxtest::Back back = kxtest::FromGrid(p, g);
    ASSERT_EQ(back.failure, "0");
    EXPECT_NEAR(back.latitude, place.latitude, place.tolerance);
    EXPECT_NEAR(back.longitude, place.longitude, place.tolerance);
    Position_Delete(p);
  }
}

TEST(DanishGrids, BornholmIsOutsideSystem34) {
  KxPosition p = At(48, 0, 55.12, 14.9);
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
  KxPosition p = At(49, 0, 55.12, 14.9);
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
