// Grid conversions against PROJ's cs2cs, given the same ellipsoids, datum parameters and
// projection parameters. oracle/make_vectors.py made oracle/vectors.txt, with each
// point's tolerance and the reason for it.
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
// blur the figure. The Transverse Mercator series is not inverted exactly: near its
// central meridian it comes back within 1e-8 degrees (a millimetre), every other
// algorithm within 1e-9 degrees (a tenth of a millimetre and far better in practice).
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
