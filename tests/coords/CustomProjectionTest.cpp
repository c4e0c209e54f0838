// Custom datums and grids in the projection frame: a CustomGrid and a CustomDatum that
// repeat a catalogued grid and datum give the catalogued numbers, in every combination
// of custom and catalogued on the position's side and on the grid's.
#include <gtest/gtest.h>

#include <cmath>

#include "KestrixCE.h"
#include "support/ApiText.h"

using kxtest::Failure;

namespace {

// OSGB 36 as a CustomDatum: Airy 1830 and the translation to WGS 84.
KxCustomDatum Osgb36() {
  KxCustomDatum d = CustomDatum_New();
  const double a = 6377563.396, e2 = 0.00667054, dx = 375.0, dy = -111.0, dz = 431.0;
  CustomDatum_SetSemiMajorAxis(d, &a);
  CustomDatum_SetE2(d, &e2);
  CustomDatum_SetDeltaX(d, &dx);
  CustomDatum_SetDeltaY(d, &dy);
  CustomDatum_SetDeltaZ(d, &dz);
  return d;
}

// WGS 84 as a CustomDatum.
KxCustomDatum Wgs84() {
  KxCustomDatum d = CustomDatum_New();
  const double a = 6378137.0, e2 = 0.006694379990197;
  CustomDatum_SetSemiMajorAxis(d, &a);
  CustomDatum_SetE2(d, &e2);
  return d;
}

// The British National Grid as a CustomGrid, on datum 3 or on its own OSGB 36 object.
KxCustomGrid NationalGrid(bool ownDatum) {
  KxCustomGrid g = CustomGrid_New();
  const double fe = 400000, fn = -100000, lon0 = -2, lat0 = 49, k0 = 0.9996012717;
  CustomGrid_SetFalseEasting(g, &fe);
  CustomGrid_SetFalseNorthing(g, &fn);
  CustomGrid_SetLongitudeOfOrigin(g, &lon0);
  CustomGrid_SetLatitudeOfOrigin(g, &lat0);
  CustomGrid_SetScaleFactor(g, &k0);
  if (ownDatum) {
    KxCustomDatum d = Osgb36();
    CustomGrid_SetCustomDatum(g, d);
    CustomDatum_Delete(d);
  } else {
    CustomGrid_SetDatum(g, 3);
  }
  return g;
}

struct Combination {
  bool customPosition, customGrid;
};

TEST(CustomProjection, EveryCombinationMatchesTheCatalogue) {
  const double lat = 52.2, lon = -1.4;
  KxPosition reference = Position_New();
  Position_SetGrid(reference, 3);
  Position_SetLatitudeDecDeg(reference, &lat);
  Position_SetLongitudeDecDeg(reference, &lon);
  double e0 = 0, n0 = 0;
  Position_GetEasting(reference, &e0);
  Position_GetNorthing(reference, &n0);
  Position_Delete(reference);

  for (const Combination c :
       {Combination{false, true}, Combination{true, false}, Combination{true, true}}) {
    KxPosition p = Position_New();
    KxCustomDatum hub = Wgs84();
    if (c.customPosition) Position_SetCustomDatum(p, hub);
    KxCustomGrid grid = NationalGrid(c.customGrid);
    Position_SetCustomGrid(p, grid);
    Position_SetLatitudeDecDeg(p, &lat);
    Position_SetLongitudeDecDeg(p, &lon);
    double e = 0, n = 0;
    Position_GetEasting(p, &e);
    Position_GetNorthing(p, &n);
    ASSERT_EQ(Failure(Position_GetErrHandle(p)), "0");
    EXPECT_NEAR(e, e0, 1e-6) << c.customPosition << c.customGrid;
    EXPECT_NEAR(n, n0, 1e-6) << c.customPosition << c.customGrid;

    // And back: the position's own datum, custom or not, receives the point.
    Position_SetEasting(p, &e);
    Position_SetNorthing(p, &n);
    double backLat = 0, backLon = 0;
    Position_GetLatitudeDecDeg(p, &backLat);
    Position_GetLongitudeDecDeg(p, &backLon);
    ASSERT_EQ(Failure(Position_GetErrHandle(p)), "0");
    EXPECT_NEAR(backLat, lat, 1e-7);  // the TM series' own round trip
    EXPECT_NEAR(backLon, lon, 1e-7);
    EXPECT_EQ(Position_GetDatum(p), c.customPosition ? 28 : 1);
    Position_Delete(p);
    CustomGrid_Delete(grid);
    CustomDatum_Delete(hub);
  }
}

// A shared CustomGrid changed after the fact reaches the next conversion, but nothing
// marks the grid values stale.
TEST(CustomProjection, AChangedGridIsReadOnlyByTheNextConversion) {
  KxCustomGrid grid = NationalGrid(false);
  KxPosition p = Position_New();
  Position_SetCustomGrid(p, grid);
  const double lat = 52.2, lon = -1.4;
  Position_SetLatitudeDecDeg(p, &lat);
  Position_SetLongitudeDecDeg(p, &lon);
  double before = 0, after = 0;
  Position_GetEasting(p, &before);
  const double fe = 500000;
  CustomGrid_SetFalseEasting(grid, &fe);
  Position_GetEasting(p, &after);
  EXPECT_EQ(after, before);  // not stale: the old value stands
  Position_SetLongitudeDecDeg(p, &lon);
  Position_GetEasting(p, &after);
  EXPECT_NEAR(after - before, 100000, 1e-6);
  Position_Delete(p);
  CustomGrid_Delete(grid);
}

}  // namespace
