// Zones, the projection frame around the algorithms, and their edges.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "KestrixCE.h"
#include "support/Positions.h"

using kxtest::Failure;
using kxtest::Take;

namespace {

constexpr double kPi = 3.141592653589793;

using kxtest::FromGrid;
using kxtest::Make;
using Grid = kxtest::GridValues;

Grid Read(KxPosition p) { return kxtest::ReadGrid(p); }

KxPosition At(double latitude, double longitude, short grid, short datum = 1) {
  return Make({latitude, longitude, datum, grid});
}

TEST(UtmZones, TheZoneFollowsTheLongitude) {
  KxPosition p = At(60, 15, 1);
  const Grid g = Read(p);
  EXPECT_EQ(g.zone, "33V");
  EXPECT_NEAR(g.easting, 500000, 1e-9);
  Position_Delete(p);

  for (double end : {kPi, -kPi}) {
    KxPosition q = Position_New();
    Position_SetGrid(q, 1);
    Position_SetLongitudeRads(q, &end);
    EXPECT_EQ(Read(q).zone, end > 0 ? "60N" : "1N");
    double back = 0;
    Position_GetLongitudeRads(q, &back);
    EXPECT_EQ(back, end);  // the working longitude never shows
    Position_Delete(q);
  }
}

TEST(UtmZones, AForcedZoneCountsFromItsOwnWesternEdge) {
  KxPosition p = At(60, 15, 1);
  Position_SetZone(p, 32);
  const Grid forced = Read(p);
  EXPECT_EQ(Failure(Position_GetErrHandle(p)), "0");
  EXPECT_EQ(forced.zone, "32V");
  EXPECT_GT(forced.easting, 800000);  // 6 degrees east of the central meridian
  Position_SetZone(p, 32);            // the zone it has: stays forced
  EXPECT_EQ(Read(p).zone, "32V");
  Position_SetZone(p, 61);  // refused, and the force is gone
  EXPECT_EQ(Failure(Position_GetErrHandle(p)), "10003 Invalid Zone for this grid!");
  const double lon = 15.0001;
  Position_SetLongitudeDecDeg(p, &lon);
  EXPECT_EQ(Read(p).zone, "33V");
  Position_Delete(p);
}

// A zone forced in one grid is another place in the next: a new grid starts without it
// (zone 32 forced in grid 1 once followed the point into grid 28, and it came back 186
// degrees off). The zone text speaks of the position as it stands: its band letter
// follows a northing just set.
TEST(UtmZones, ANewGridForgetsTheForcedZoneAndTheTextFollowsThePoint) {
  KxPosition p = At(60, 15, 1);
  Position_SetZone(p, 32);
  EXPECT_EQ(Read(p).zone, "32V");
  Position_SetGrid(p, 28);
  const Grid g = Read(p);
  EXPECT_EQ(g.zone, "33V");
  const kxtest::Back back = FromGrid(p, g);
  EXPECT_NEAR(back.latitude, 60, 1e-7);  // through ED50 and back
  EXPECT_NEAR(back.longitude, 15, 1e-7);

  KxPosition south = At(-30, 15, 1);
  const Grid there = Read(south);
  Position_SetNorthing(p, &there.northing);  // p is in zone 33 too, now at 30 degrees south
  EXPECT_EQ(Read(p).zone, "33J");
  double lat = 0;
  Position_GetLatitudeDecDeg(p, &lat);
  EXPECT_NEAR(lat, -30, 0.01);
  for (KxPosition x : {p, south}) Position_Delete(x);
}

TEST(GaussKrueger, ZoneKHasItsCentralMeridianAt3K) {
  KxPosition p = At(51, 10.5, 29, 18);
  const Grid g = Read(p);
  EXPECT_EQ(g.zone, "3");
  EXPECT_GT(g.easting, 500000);  // east of 9 degrees
  EXPECT_NEAR(FromGrid(p, g).longitude, 10.5, 1e-9);
  Position_Delete(p);
}

TEST(ProjectionFrame, TheDutchGridAtItsOriginGivesItsFalseOrigin) {
  KxPosition p = At(52.1561605556, 5.3876388889, 34, 24);
  const Grid g = Read(p);
  EXPECT_EQ(g.easting, 155000);  // x equals x0 and d is 0: both sines vanish exactly
  EXPECT_EQ(g.northing, 463000);
  const kxtest::Back back = FromGrid(p, g);
  EXPECT_NEAR(back.latitude, 52.1561605556, 1e-13);
  EXPECT_NEAR(back.longitude, 5.3876388889, 1e-13);
  Position_Delete(p);
}

TEST(ProjectionFrame, AForwardProjectionLeavesTheGeographicFieldsAsTheyWere) {
  KxPosition p = At(51.5, -0.12, 3);
  double altitude = 42;
  Position_SetAltitude(p, &altitude, 1);
  Read(p);
  double lat = 0, lon = 0;
  Position_GetLatitudeDecDeg(p, &lat);
  Position_GetLongitudeDecDeg(p, &lon);
  Position_GetAltitude(p, 1, &altitude);
  EXPECT_EQ(lat, 51.5);
  EXPECT_EQ(lon, -0.12);
  EXPECT_EQ(altitude, 42.0);
  EXPECT_EQ(Position_GetDatum(p), 1);
  Position_Delete(p);
}

TEST(ProjectionFrame, NoShiftWithinTheNad27Family) {
  // Key 101 of the 1927 table lies on datum 21; a point on datum 22 isn't shifted.
  KxPosition on22 = At(32, -85.8, 30, 22), on21 = At(32, -85.8, 30, 21);
  Position_SetZone(on22, 101);
  Position_SetZone(on21, 101);
  const Grid a = Read(on22), b = Read(on21);
  EXPECT_EQ(a.easting, b.easting);
  EXPECT_EQ(a.northing, b.northing);
  // ... and the way back leaves it on datum 22 unshifted too.
  const kxtest::Back back22 = FromGrid(on22, a), back21 = FromGrid(on21, b);
  EXPECT_EQ(back22.latitude, back21.latitude);
  EXPECT_EQ(back22.longitude, back21.longitude);
  EXPECT_NEAR(back22.latitude, 32, 1e-8);
  for (KxPosition x : {on22, on21}) Position_Delete(x);
}

TEST(ProjectionFrame, AlgorithmsOneAndThreeAreOneTransverseMercator) {
  Grid results[2];
  for (int i = 0; i < 2; ++i) {
    KxCustomGrid grid = CustomGrid_New();
    CustomGrid_SetDatum(grid, 1);
    CustomGrid_SetAlgorithm(grid, i == 0 ? 1 : 3);
    const double lon0 = 9, k0 = 0.9996, fe = 500000;
    CustomGrid_SetLongitudeOfOrigin(grid, &lon0);
    CustomGrid_SetScaleFactor(grid, &k0);
    CustomGrid_SetFalseEasting(grid, &fe);
    KxPosition p = At(48, 11, 0);
    Position_SetCustomGrid(p, grid);
    results[i] = Read(p);
    Position_Delete(p);
    CustomGrid_Delete(grid);
  }
  EXPECT_EQ(results[0].easting, results[1].easting);
  EXPECT_EQ(results[0].northing, results[1].northing);
  KxPosition utm = At(48, 11, 1);
  EXPECT_EQ(Read(utm).easting, results[0].easting);  // zone 32 is the same grid
  Position_Delete(utm);
}

// Easting and northing whose inverse is no point on the earth: a latitude beyond a pole
// (900 degrees once), a footpoint more than half a meridian up, or no number. An error
// in every grid, also where a datum shift would have folded the latitude into a
// plausible one (grid 3, 28); the edge of the earth itself still converts.
TEST(ProjectionFrame, AnInverseThatLeavesTheEarthIsAnError) {
  const struct {
    short grid, zone;
    double easting, northing;
  } beyond[] = {{1, 33, 500000, 99999999},  {1, 33, 500000, -99999999}, {1, 33, 500000, 10500000},
                {28, 33, 1400000, 9900000}, {3, 0, 400000, 1e8},        {21, 0, 2e9, 6e6}};
  for (const auto& c : beyond) {
    KxPosition p = Make({10, 20, 1, c.grid, c.zone});
    Position_SetEasting(p, &c.easting);
    Position_SetNorthing(p, &c.northing);
    double lat = 0, lon = 0;
    Position_GetLatitudeDecDeg(p, &lat);
    EXPECT_EQ(Failure(Position_GetErrHandle(p)), "10003 Position outside grid") << c.grid;
    Position_GetLongitudeDecDeg(p, &lon);
    EXPECT_EQ(Failure(Position_GetErrHandle(p)), "10003 Position outside grid") << c.grid;
    EXPECT_EQ(lat, 10.0);  // the values from before stand
    Position_Delete(p);
  }
  KxPosition pole = At(90, 15, 1);
  const kxtest::Back back = FromGrid(pole, Read(pole));
  EXPECT_EQ(back.failure, "0");
  EXPECT_NEAR(back.latitude, 90, 1e-9);
  Position_Delete(pole);
}

// Key 5001 runs the Swiss algorithm in both tables; PROJ has no twin, so the round trip
// stands for it.
TEST(StatePlane, AlaskaZoneOneRoundTrips) {
  for (short grid : {30, 31}) {
    KxPosition p = Make({57.5, -134.5, short(grid == 30 ? 20 : 19), grid, 5001});
    const Grid g = Read(p);
    ASSERT_EQ(Failure(Position_GetErrHandle(p)), "0");
    const kxtest::Back back = FromGrid(p, g);
    EXPECT_NEAR(back.latitude, 57.5, 1e-9);
    EXPECT_NEAR(back.longitude, -134.5, 1e-9);
    Position_Delete(p);
  }
}

}  // namespace
