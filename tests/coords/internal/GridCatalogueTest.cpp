// The grid catalogue and the State Plane tables against the values they are published
// with.
#include <gtest/gtest.h>

#include "coords/Constants.h"
#include "coords/GridCatalogue.h"

namespace kx {
namespace {

struct TellingRow {
  int16_t key, datum, algorithm;
  double falseEasting, falseNorthing, lon0, lat0, scale, sp1, sp2;  // degrees
};

void ExpectRow(const GridRecord& row, const TellingRow& t) {
  SCOPED_TRACE(t.key);
  EXPECT_EQ(row.zoneKey, t.key);
  EXPECT_EQ(row.datum, t.datum);
  EXPECT_EQ(row.algorithm, t.algorithm);
  EXPECT_NEAR(row.falseEasting, t.falseEasting, 5e-6);
  EXPECT_NEAR(row.falseNorthing, t.falseNorthing, 5e-6);
  EXPECT_NEAR(row.longitudeOfOrigin, DegreesToRadians(t.lon0), 1e-11);
  EXPECT_NEAR(row.latitudeOfOrigin, DegreesToRadians(t.lat0), 1e-11);
  EXPECT_EQ(row.scaleFactor, t.scale);
  EXPECT_NEAR(row.latitudeSP1, DegreesToRadians(t.sp1), 1e-11);
  EXPECT_NEAR(row.latitudeSP2, DegreesToRadians(t.sp2), 1e-11);
}

TEST(StatePlane, The1927TableHoldsItsTellingRows) {
  const TellingRow rows[] = {
      {101, 21, 3, 152400.30480061, 0, -85.8333333333, 30.5, 0.99996, 0, 0},
      {5001, 20, 2, 0, 0, -133.6666666667, 57, 0.9999, 0, 0},  // 0 and 0, as catalogued
      {5010, 20, 5, 914401.828803657, 0, -176, 51, 1, 51.8333333333, 53.8333333333},
      {407, 23, 5, 1276106.4505969, 1268253.00685801, -118.3333333333, 34.1333333333, 1,
       33.8666666667, 34.4166666667},
      {3104, 21, 5, 609601.219202438, 30480.0609601219, -74, 40.5, 1, 40.6666666667, 41.0333333333},
  };
  for (const TellingRow& t : rows) {
    const int index = GridCatalogue::FindZone27(t.key);
    ASSERT_GE(index, 0) << t.key;
    ExpectRow(GridCatalogue::Zone27(index), t);
  }
}

TEST(StatePlane, The1983TableHoldsItsTellingRows) {
  const TellingRow rows[] = {
      {101, 19, 3, 200000, 0, -85.8333333333, 30.5, 0.99996, 0, 0},
      {5001, 19, 2, 5000000, -5000000, -133.6666666667, 57, 0.9999, 0, 0},
      {2111, 19, 5, 8000000, 0, -87, 44.7833333333, 1, 45.4833333333, 47.0833333333},
      {3200, 19, 5, 609601.22, 0, -79, 33.75, 1, 34.3333333333, 36.1666666667},
      {5200, 19, 5, 200000, 200000, -66.4333333333, 17.8333333333, 1, 18.0333333333, 18.4333333333},
  };
  for (const TellingRow& t : rows) {
    const int index = GridCatalogue::FindZone83(t.key);
    ASSERT_GE(index, 0) << t.key;
    ExpectRow(GridCatalogue::Zone83(index), t);
  }
}

TEST(StatePlane, KeysBelongToTheirOwnTableOnly) {
  EXPECT_GE(GridCatalogue::FindZone27(2101), 0);
  EXPECT_LT(GridCatalogue::FindZone83(2101), 0);
  EXPECT_GE(GridCatalogue::FindZone83(1600), 0);
  EXPECT_LT(GridCatalogue::FindZone27(1600), 0);
  EXPECT_EQ(GridCatalogue::FindZone83(101), 0);  // the 1983 table keeps its order
  EXPECT_EQ(GridCatalogue::FindZone83(5200), 124);
  EXPECT_LT(GridCatalogue::FindZone27(0), 0);
}

TEST(GridCatalogue, RowsHoldRadiansOfTheirDegrees) {
  const GridRecord& belgian = GridCatalogue::Row(22);
  EXPECT_EQ(belgian.datum, 16);
  EXPECT_EQ(belgian.algorithm, 6);
  EXPECT_EQ(belgian.latitudeOfOrigin, 90.0 / 180 * kPi);
  EXPECT_EQ(GridCatalogue::Row(0).algorithm, 0);
  EXPECT_EQ(GridCatalogue::Row(52).algorithm, 0);
  EXPECT_EQ(GridCatalogue::FamilyOf(47), ZoneFamily::kUtm);
  EXPECT_EQ(GridCatalogue::FamilyOf(48), ZoneFamily::kDanish34);
  EXPECT_EQ(GridCatalogue::FamilyOf(49), ZoneFamily::kNone);
  EXPECT_EQ(GridCatalogue::FamilyOf(52), ZoneFamily::kNone);
}

}  // namespace
}  // namespace kx
