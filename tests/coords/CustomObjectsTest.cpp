// CustomDatum and CustomGrid through their exported functions.
#include <gtest/gtest.h>

#include "KestrixCE.h"
#include "support/ApiText.h"

using kxtest::Failure;

namespace {

double Get(void (*getter)(KxCustomGrid, double*), KxCustomGrid grid) {
  double value = -1;
  getter(grid, &value);
  return value;
}

TEST(CustomGrid, ANewGridIsTransverseMercatorOnItsOwnDatumWithUnitScale) {
  KxCustomGrid grid = CustomGrid_New();
  EXPECT_EQ(CustomGrid_GetDatum(grid), 28);
  EXPECT_EQ(CustomGrid_GetAlgorithm(grid), 3);
  EXPECT_EQ(Get(CustomGrid_GetScaleFactor, grid), 1.0);
  for (auto getter :
       {CustomGrid_GetFalseEasting, CustomGrid_GetFalseNorthing, CustomGrid_GetLongitudeOfOrigin,
        CustomGrid_GetLatitudeOfOrigin, CustomGrid_GetLatitudeSP1, CustomGrid_GetLatitudeSP2})
    EXPECT_EQ(Get(getter, grid), 0.0);
  KxCustomDatum datum = CustomGrid_GetCustomDatum(grid);
  ASSERT_NE(datum, nullptr);
  double a = -1;
  CustomDatum_GetSemiMajorAxis(datum, &a);
  EXPECT_EQ(a, 0.0);
  CustomDatum_Delete(datum);
  CustomGrid_Delete(grid);
}

TEST(CustomGrid, DatumIdsOneToTwentyEightAreAccepted) {
  KxCustomGrid grid = CustomGrid_New();
  CustomGrid_SetDatum(grid, 5);
  for (short refused : {0, 29, -1}) {
    CustomGrid_SetDatum(grid, refused);
    EXPECT_EQ(Failure(CustomGrid_GetErrHandle(grid)), "10003 Unknown datum!");
    EXPECT_EQ(CustomGrid_GetDatum(grid), 5);
  }
  CustomGrid_SetDatum(grid, 28);
  EXPECT_EQ(Failure(CustomGrid_GetErrHandle(grid)), "0");
  CustomGrid_SetAlgorithm(grid, 70000);  // kept unchecked
  EXPECT_EQ(CustomGrid_GetAlgorithm(grid), 70000);
  CustomGrid_Delete(grid);
}

TEST(CustomGrid, AnglesCrossInDegrees) {
  KxCustomGrid grid = CustomGrid_New();
  const double lon0 = 15.80827777777778, sp1 = -33.5;
  CustomGrid_SetLongitudeOfOrigin(grid, &lon0);
  CustomGrid_SetLatitudeSP1(grid, &sp1);
  EXPECT_NEAR(Get(CustomGrid_GetLongitudeOfOrigin, grid), lon0, 1e-13);
  EXPECT_NEAR(Get(CustomGrid_GetLatitudeSP1, grid), sp1, 1e-13);
  CustomGrid_Delete(grid);
}

TEST(CustomGrid, SettingADatumObjectSharesItAndSwitchesToDatum28) {
  KxCustomGrid grid = CustomGrid_New();
  KxCustomDatum datum = CustomDatum_New();
  CustomGrid_SetDatum(grid, 1);
  CustomGrid_SetCustomDatum(grid, datum);
  EXPECT_EQ(CustomGrid_GetDatum(grid), 28);
  const double a = 6377397.155;
  CustomDatum_SetSemiMajorAxis(datum, &a);
  CustomDatum_Delete(datum);  // the grid keeps its own reference
  KxCustomDatum shared = CustomGrid_GetCustomDatum(grid);
  double back = 0;
  CustomDatum_GetSemiMajorAxis(shared, &back);
  EXPECT_EQ(back, a);
  CustomDatum_Delete(shared);
  CustomGrid_SetCustomDatum(grid, nullptr);  // allowed; a new empty one comes on request
  shared = CustomGrid_GetCustomDatum(grid);
  CustomDatum_GetSemiMajorAxis(shared, &back);
  EXPECT_EQ(back, 0.0);
  CustomDatum_Delete(shared);
  CustomGrid_Delete(grid);
}

TEST(CustomDatum, E2IsStoredAbsoluteAndRotationsCrossInSecondsOfArc) {
  KxCustomDatum datum = CustomDatum_New();
  const double e2 = -0.0066, one = 1.0;
  CustomDatum_SetE2(datum, &e2);
  double value = 0;
  CustomDatum_GetE2(datum, &value);
  EXPECT_EQ(value, 0.0066);
  CustomDatum_SetRotX(datum, &one);
  CustomDatum_GetRotX(datum, &value);
  EXPECT_NEAR(value, 1.0, 1e-15);
  CustomDatum_SetRotZ(datum, nullptr);
  EXPECT_EQ(Failure(CustomDatum_GetErrHandle(datum)), "10003 Invalid parameter!");
  CustomDatum_Delete(datum);
}

// A rotation of one second of arc, as the datum shift sees it: a point on the equator at
// 90 degrees east, on a sphere without translation, swings by about a * 4.848e-6 rad.
TEST(CustomDatum, ARotationOfOneSecondMovesThePointByItsArc) {
  KxCustomDatum sphere = CustomDatum_New();
  const double a = 6378137.0, e2 = 0, rz = 1.0;
  CustomDatum_SetSemiMajorAxis(sphere, &a);
  CustomDatum_SetE2(sphere, &e2);
  KxCustomDatum rotated = CustomDatum_New();
  CustomDatum_SetSemiMajorAxis(rotated, &a);
  CustomDatum_SetE2(rotated, &e2);
  CustomDatum_SetRotZ(rotated, &rz);

  KxPosition position = Position_New();
  Position_SetCustomDatum(position, sphere);
  const double lon = 90, lat = 0;
  Position_SetLongitudeDecDeg(position, &lon);
  Position_SetLatitudeDecDeg(position, &lat);
  Position_SetCustomDatum(position, rotated);
  double moved = 0;
  Position_GetLongitudeRads(position, &moved);
  EXPECT_NEAR(moved - 3.141592653589793 / 2, -4.84813681109536e-06, 1e-15);
  Position_Delete(position);
  CustomDatum_Delete(sphere);
  CustomDatum_Delete(rotated);
}

TEST(CustomGrid, EqualGridsOnOneDatumAreTheSameGrid) {
  KxCustomGrid first = CustomGrid_New(), second = CustomGrid_New();
  const double k0 = 0.9996;
  for (KxCustomGrid grid : {first, second}) {
    CustomGrid_SetDatum(grid, 1);
    CustomGrid_SetScaleFactor(grid, &k0);
  }
  KxPosition a = Position_New(), b = Position_New();
  Position_SetCustomGrid(a, first);
  Position_SetCustomGrid(b, second);
  EXPECT_EQ(Position_IsSameGrid(a, b), 1);
  const double fe = 1;
  CustomGrid_SetFalseEasting(second, &fe);
  EXPECT_EQ(Position_IsSameGrid(a, b), 0);
  Position_Delete(a);
  Position_Delete(b);
  CustomGrid_Delete(first);
  CustomGrid_Delete(second);
}

}  // namespace
