// Distance, bearing and move between positions, through the exported functions.
#include <gtest/gtest.h>

#include <cmath>

#include "KestrixCE.h"
#include "support/Positions.h"

using kxtest::Failure;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kRadius = 6366710.0;

KxPosition At(double latitude, double longitude, short datum = 1) {
  return kxtest::Make({latitude, longitude, datum});
}

KxPosition InGrid(double easting, double northing) {
  KxPosition p = Position_New();
  Position_SetGrid(p, 3);
  Position_SetEasting(p, &easting);
  Position_SetNorthing(p, &northing);
  return p;
}

double Distance(KxPosition from, KxPosition to, int method) {
  double value = -1;
  Position_Distance(from, to, method, &value);
  return value;
}

double Bearing(KxPosition from, KxPosition to, int method) {
  double value = -1;
  Position_Bearing(from, to, method, &value);
  return value;
}

struct BearingCase {
  double lat1, lon1, lat2, lon2, bearing;
};

TEST(Bearing, OnTheSphere) {
  const BearingCase cases[] = {
      {10, 20, 10, 20, 0},    // the same point
      {10, 20, 30, 20, 0},    // due north: 360 turns into 0
      {30, 20, 10, 20, 180},  // due south
      {90, 0, 10, 45, 180},   // from the north pole
      {-90, 0, 10, 45, 0},    // from the south pole
      {0, 0, 0, 180, 90},     // antipodes towards +pi
      {0, 0, 0, -180, 270},   // and towards -pi
      {0, 0, 0, 10, 90},      // along the equator
      {0, 10, 0, 0, 270},
  };
  for (const auto& c : cases) {
    KxPosition from = At(c.lat1, c.lon1), to = At(c.lat2, c.lon2);
    for (int method : {1, 2})
      EXPECT_NEAR(Bearing(from, to, method), c.bearing, 1e-9)
          << c.lat1 << "," << c.lon1 << " -> " << c.lat2 << "," << c.lon2;
    Position_Delete(from);
    Position_Delete(to);
  }
}

TEST(Distance, OnTheSphereInMetresAndRadians) {
  KxPosition a = At(0, 0), b = At(0, 180), c = At(0, 90);
  EXPECT_DOUBLE_EQ(Distance(a, b, 2), kPi);
  EXPECT_DOUBLE_EQ(Distance(a, b, 1), kRadius * kPi);
  EXPECT_DOUBLE_EQ(Distance(a, c, 2), kPi / 2);
  EXPECT_EQ(Distance(a, a, 1), 0.0);
  for (KxPosition p : {a, b, c}) Position_Delete(p);
}

TEST(Distance, AcrossDatumsTheOtherIsShiftedByACopy) {
  KxPosition wgs = At(51.5, -0.1), osgb = At(51.6, -0.2, 3);
  const double distance = Distance(wgs, osgb, 1);
  EXPECT_EQ(Position_GetDatum(osgb), 3);  // unchanged
  KxPosition shifted = Position_Copy(osgb);
  Position_SetDatum(shifted, 1);
  EXPECT_EQ(distance, Distance(wgs, shifted, 1));
  KxPosition unshifted = At(51.6, -0.2);
  EXPECT_GT(std::fabs(distance - Distance(wgs, unshifted, 1)), 1.0);
  for (KxPosition p : {wgs, osgb, shifted, unshifted}) Position_Delete(p);
}

TEST(Distance, InTheGridPlane) {
  KxPosition origin = InGrid(1000, 1000);
  const struct {
    double e, n, bearing;
  } cases[] = {{1100, 1000, 90}, {1000, 1100, 0}, {900, 1000, 270}, {1000, 900, 180}};
  for (const auto& c : cases) {
    KxPosition to = InGrid(c.e, c.n);
    EXPECT_DOUBLE_EQ(Distance(origin, to, 3), 100.0);
    EXPECT_DOUBLE_EQ(Bearing(origin, to, 3), c.bearing);
    Position_Delete(to);
  }
  Position_Delete(origin);
}

// Grid 29 numbers the zone west of 3 degrees east 0, which SetZone doesn't offer: the
// other position still comes into this one's zone (the same plane as a CustomGrid on
// the zone's meridian), not measured in its own (31 m for 214 km once).
TEST(Distance, InTheGridPlaneTheOtherComesIntoAZoneSetZoneDoesNotOffer) {
  KxPosition west = kxtest::Make({50, 1, 1, 29}), east = kxtest::Make({50, 4, 1, 29});
  KxCustomGrid zone0 = CustomGrid_New();
  const double fe = 500000;
  CustomGrid_SetFalseEasting(zone0, &fe);
  CustomGrid_SetDatum(zone0, 18);
  KxPosition westPlane = Position_Copy(west), eastPlane = Position_Copy(east);
  Position_SetCustomGrid(westPlane, zone0);
  Position_SetCustomGrid(eastPlane, zone0);
  EXPECT_NEAR(Distance(west, east, 3), Distance(westPlane, eastPlane, 3), 1e-6);
  EXPECT_NEAR(Bearing(west, east, 3), Bearing(westPlane, eastPlane, 3), 1e-9);
  EXPECT_EQ(Failure(Position_GetErrHandle(west)), "0");
  EXPECT_GT(Distance(west, east, 3), 214000);

  // Grid 48: zone 0, where a new grid starts, is System 34 Jylland as zone 1 is.
  KxPosition jylland0 = kxtest::Make({56.2, 9.5, 27, 48}), jylland1 = Position_Copy(jylland0);
  Position_SetZone(jylland1, 1);
  KxPosition other = kxtest::Make({56.0, 10.2, 27, 48, 2});
  EXPECT_EQ(Distance(jylland0, other, 3), Distance(jylland1, other, 3));
  EXPECT_EQ(Failure(Position_GetErrHandle(jylland0)), "0");
  for (KxPosition p : {west, east, westPlane, eastPlane, jylland0, jylland1, other})
    Position_Delete(p);
  CustomGrid_Delete(zone0);
}

// A position that can't be converted passes its failure on, in every method; nothing is
// measured to the point (0, 0) it still holds.
TEST(Distance, AnOtherThatCannotConvertPassesItsErrorOn) {
  KxPosition here = kxtest::Make({40, -80, 1, 31, 3702});
  KxPosition lost = Position_New();  // grid 31 without a zone, and grid values
  Position_SetGrid(lost, 31);
  const double e = 400000, n = 100000;
  Position_SetEasting(lost, &e);
  Position_SetNorthing(lost, &n);
  for (int method : {1, 2, 3}) {
    EXPECT_EQ(Distance(here, lost, method), 0.0) << method;
    EXPECT_EQ(Failure(Position_GetErrHandle(here)), "10003 Zone must be specified for this grid")
        << method;
    EXPECT_EQ(Bearing(here, lost, method), 0.0) << method;
    EXPECT_EQ(Failure(Position_GetErrHandle(here)), "10003 Zone must be specified for this grid")
        << method;
  }
  Position_Delete(here);
  Position_Delete(lost);
}

TEST(Distance, RefusalsAndTheirTexts) {
  KxPosition p = At(1, 1), q = At(2, 2);
  KxError error = Position_GetErrHandle(p);
  EXPECT_EQ(Distance(p, nullptr, 1), 0.0);
  EXPECT_EQ(Failure(error), "10003 Position may not be null.");
  EXPECT_EQ(Distance(p, q, 4), 0.0);
  EXPECT_EQ(Failure(error), "10003 Unknown method to calculate distance.");
  EXPECT_EQ(Bearing(p, q, 0), 0.0);
  EXPECT_EQ(Failure(error), "10003 Unknown method to calculate bearing.");
  EXPECT_EQ(Bearing(p, nullptr, 1), 0.0);
  EXPECT_EQ(Failure(error), "10003 Position may not be null.");
  EXPECT_EQ(Distance(p, q, 3), 0.0);  // no grid
  EXPECT_EQ(Failure(error), "10003 Grid not set!");
  const double r = 1, b = 0;
  Position_Move(p, &r, &b, 9);
  EXPECT_EQ(Failure(error), "10003 Unknown method.");
  Position_Delete(p);
  Position_Delete(q);
}

TEST(Move, OnTheSphereAndBackAgain) {
  KxPosition p = At(45, 7), start = At(45, 7);
  const double metres = 12345.0, bearing = 30;
  Position_Move(p, &metres, &bearing, 1);
  EXPECT_NEAR(Distance(start, p, 1), metres, 1e-6);
  EXPECT_NEAR(Bearing(start, p, 1), bearing, 1e-9);
  const double arc = kPi / 2, east = 90;
  KxPosition q = At(0, 0);
  Position_Move(q, &arc, &east, 2);
  double lon = 0;
  Position_GetLongitudeDecDeg(q, &lon);
  EXPECT_NEAR(lon, 90, 1e-12);
  for (KxPosition x : {p, start, q}) Position_Delete(x);
}

TEST(Move, InTheGridPlaneWritesEastingAndNorthing) {
  KxPosition p = InGrid(5000, 6000);
  const double metres = 100, bearing = 90;
  Position_Move(p, &metres, &bearing, 3);
  double e = 0, n = 0;
  Position_GetEasting(p, &e);
  Position_GetNorthing(p, &n);
  EXPECT_DOUBLE_EQ(e, 5100);
  EXPECT_NEAR(n, 6000, 1e-9);
  Position_Delete(p);
}

}  // namespace
