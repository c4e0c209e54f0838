// Grid conversions against PROJ's cs2cs, given the same ellipsoids, datum parameters and
// projection parameters. oracle/make_vectors.py made oracle/vectors.txt, with each
// point's tolerance and the reason for it. A second oracle, independent of PROJ: the
// worked examples of EPSG Guidance Note 7-2.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "KestrixCE.h"
#include "support/Positions.h"

namespace {

struct Vector {
  short grid, zone, datum;
  double latitude, longitude, easting, northing, toleranceMm;
};

std::vector<Vector> ReadVectors() {
  std::ifstream file(KX_TEST_SOURCE_DIR "/coords/oracle/vectors.txt");
  std::vector<Vector> vectors;
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    Vector v{};
    in >> v.grid >> v.zone >> v.datum >> v.latitude >> v.longitude >> v.easting >> v.northing >>
        v.toleranceMm;
    vectors.push_back(v);
  }
  return vectors;
}

TEST(GridOracle, ForwardAgreesWithCs2cs) {
  const std::vector<Vector> vectors = ReadVectors();
  ASSERT_GT(vectors.size(), 3000u);
  std::map<int, double> worst;  // by grid, millimetres
  for (const Vector& v : vectors) {
    KxPosition p = kxtest::Make({v.latitude, v.longitude, 1, v.grid, v.zone});
    const kxtest::GridValues g = kxtest::ReadGrid(p);
    ASSERT_EQ(kxtest::Failure(Position_GetErrHandle(p)), "0") << v.grid << "/" << v.zone;
    const double mm = std::hypot(g.easting - v.easting, g.northing - v.northing) * 1000;
    EXPECT_LE(mm, v.toleranceMm) << "grid " << v.grid << " zone " << v.zone << " at " << v.latitude
                                 << "," << v.longitude;
    worst[v.grid] = std::max(worst[v.grid], mm);
    Position_Delete(p);
  }
  for (const auto& [grid, mm] : worst)
    std::printf("grid %2d: largest difference %.4f mm\n", grid, mm);
}

// Geographic -> grid -> geographic in the grid's own datum, where no datum shift can
// blur the figure. The Transverse Mercator series is not inverted exactly: within 3
// degrees of its central meridian it comes back within 1e-8 degrees (a millimetre), at
// the 4.3 degrees of the British and Swedish grids' edges within 1e-7; every other
// algorithm within 1e-9 degrees (a tenth of a millimetre; 5e-14 in practice).
TEST(GridOracle, RoundTripInTheGridsDatum) {
  std::map<int, double> worst;  // by grid, degrees
  for (const Vector& v : ReadVectors()) {
    KxPosition there = kxtest::Make({v.latitude, v.longitude, v.datum, v.grid, v.zone});
    const kxtest::Back back = kxtest::FromGrid(there, kxtest::ReadGrid(there));
    Position_Delete(there);
    ASSERT_EQ(back.failure, "0") << v.grid << "/" << v.zone;
    const double degrees =
        std::max(std::fabs(back.latitude - v.latitude), std::fabs(back.longitude - v.longitude));
    EXPECT_LE(degrees, v.toleranceMm >= 1 ? 1e-7 : 1e-9)
        << "grid " << v.grid << " zone " << v.zone << " at " << v.latitude << "," << v.longitude;
    worst[v.grid] = std::max(worst[v.grid], degrees);
  }
  for (const auto& [grid, degrees] : worst)
    std::printf("grid %2d: round trip within %.1e degrees\n", grid, degrees);
}

// Each example in its grid's own datum, to the half unit of its last published digit
// (a centimetre for the Transverse Mercator, whose published figures come from another
// series).
TEST(GridOracle, WorkedExamplesOfTheEpsgGuidance) {
  constexpr double kUsFoot = 1200.0 / 3937;
  struct Example {
    const char* method;
    kxtest::Place place;
    double easting, northing, tolerance;
  };
  const Example examples[] = {
      {"Transverse Mercator, British National Grid", {50.5, 0.5, 3, 3}, 577274.99, 69740.50, 0.01},
      {"Lambert Conic Conformal (2SP), Texas South Central 1927",
       {28.5, -96, 22, 30, 4204},
       2963503.91 * kUsFoot,
       254759.80 * kUsFoot,
       0.005 * kUsFoot},
      {"Lambert Conic Conformal (2SP Belgium), Belge Lambert 72",
       {50 + 40 / 60.0 + 46.461 / 3600, 5 + 48 / 60.0 + 26.533 / 3600, 16, 22},
       251763.20,
       153034.13,
       0.005},
      {"Oblique Stereographic, RD New", {53, 6, 24, 34}, 196105.283, 557057.739, 0.0005},
  };
  for (const Example& x : examples) {
    KxPosition p = kxtest::Make(x.place);
    const kxtest::GridValues g = kxtest::ReadGrid(p);
    EXPECT_NEAR(g.easting, x.easting, x.tolerance) << x.method;
    EXPECT_NEAR(g.northing, x.northing, x.tolerance) << x.method;
    Position_Delete(p);
  }
}

// Far from the central meridian (a forced zone 6 to 12 degrees away) PROJ's TM is
// another function; oracle/tm_series.py evaluates the same series independently.
TEST(GridOracle, TransverseMercatorFarOffItsMeridianFollowsTheSeries) {
  std::ifstream file(KX_TEST_SOURCE_DIR "/coords/oracle/tm_far.txt");
  std::string line;
  int count = 0;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    short zone = 0;
    double lat = 0, lon = 0, easting = 0, northing = 0;
    in >> zone >> lat >> lon >> easting >> northing;
    KxPosition p = kxtest::Make({lat, lon, 1, 1, zone});
    const kxtest::GridValues g = kxtest::ReadGrid(p);
    EXPECT_NEAR(g.easting, easting, 1e-5) << zone << " " << lat << "," << lon;
    EXPECT_NEAR(g.northing, northing, 1e-5) << zone << " " << lat << "," << lon;
    Position_Delete(p);
    ++count;
  }
  EXPECT_EQ(count, 30);
}

struct CustomVector {
  int algorithm;
  double fe, fn, lon0, lat0, k0, sp1, sp2;
  short datum;
  double latitude, longitude, easting, northing, toleranceMm;
};

std::vector<CustomVector> ReadCustomVectors() {
  std::ifstream file(KX_TEST_SOURCE_DIR "/coords/oracle/custom_vectors.txt");
  std::vector<CustomVector> vectors;
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    CustomVector v{};
    in >> v.algorithm >> v.fe >> v.fn >> v.lon0 >> v.lat0 >> v.k0 >> v.sp1 >> v.sp2 >> v.datum >>
        v.latitude >> v.longitude >> v.easting >> v.northing >> v.toleranceMm;
    vectors.push_back(v);
  }
  return vectors;
}

KxCustomGrid GridOf(const CustomVector& v) {
  KxCustomGrid grid = CustomGrid_New();
  CustomGrid_SetAlgorithm(grid, v.algorithm);
  CustomGrid_SetDatum(grid, v.datum);
  CustomGrid_SetFalseEasting(grid, &v.fe);
  CustomGrid_SetFalseNorthing(grid, &v.fn);
  CustomGrid_SetLongitudeOfOrigin(grid, &v.lon0);
  CustomGrid_SetLatitudeOfOrigin(grid, &v.lat0);
  CustomGrid_SetScaleFactor(grid, &v.k0);
  CustomGrid_SetLatitudeSP1(grid, &v.sp1);
  CustomGrid_SetLatitudeSP2(grid, &v.sp2);
  return grid;
}

// Lambert cones whose standard parallels lie south of the equator (n < 0), as
// CustomGrids in their own datum: to the grid against cs2cs, and cs2cs's easting and
// northing back to the point, within the same hundredth of a millimetre. The inverse
// once came out half a turn of the cone off (Sydney at 116.40 degrees east).
TEST(GridOracle, LambertWithSouthernParallelsAgreesWithCs2csBothWays) {
  constexpr double kMetresPerDegree = 6378137.0 * 3.141592653589793 / 180;
  const std::vector<CustomVector> vectors = ReadCustomVectors();
  ASSERT_EQ(vectors.size(), 60u);
  double worstThere = 0, worstBack = 0;  // millimetres
  for (const CustomVector& v : vectors) {
    KxCustomGrid grid = GridOf(v);
    KxPosition p = Position_New();
    Position_SetDatum(p, v.datum);
    Position_SetCustomGrid(p, grid);
    Position_SetLatitudeDecDeg(p, &v.latitude);
    Position_SetLongitudeDecDeg(p, &v.longitude);
    double e = 0, n = 0;
    Position_GetEasting(p, &e);
    Position_GetNorthing(p, &n);
    ASSERT_EQ(kxtest::Failure(Position_GetErrHandle(p)), "0");
    const double there = std::hypot(e - v.easting, n - v.northing) * 1000;

    Position_SetEasting(p, &v.easting);
    Position_SetNorthing(p, &v.northing);
    double lat = 0, lon = 0;
    Position_GetLatitudeDecDeg(p, &lat);
    Position_GetLongitudeDecDeg(p, &lon);
    ASSERT_EQ(kxtest::Failure(Position_GetErrHandle(p)), "0");
    const double back =
        std::hypot(lat - v.latitude,
                   (lon - v.longitude) * std::cos(v.latitude / 180 * 3.141592653589793)) *
        kMetresPerDegree * 1000;
    EXPECT_LE(there, v.toleranceMm) << v.datum << " at " << v.latitude << "," << v.longitude;
    EXPECT_LE(back, v.toleranceMm) << v.datum << " at " << v.latitude << "," << v.longitude;
    worstThere = std::max(worstThere, there);
    worstBack = std::max(worstBack, back);
    Position_Delete(p);
    CustomGrid_Delete(grid);
  }
  std::printf("southern Lambert: largest difference %.4f mm there, %.4f mm back\n", worstThere,
              worstBack);
}

}  // namespace
