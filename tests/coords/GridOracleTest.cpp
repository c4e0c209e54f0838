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

}  // namespace
