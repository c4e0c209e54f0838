// Datum shifts against PROJ, told the same ellipsoids and seven parameters in a cct
// pipeline through geocentric coordinates, heights included (oracle/make_vectors.py
// --datums made oracle/datum_vectors.txt). Tolerance 0.01 mm.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "KestrixCE.h"

namespace {

// A degree of latitude is about this many metres; enough for a tolerance.
constexpr double kMetresPerDegree = 111320;

TEST(DatumOracle, ShiftsFromWgs84AgreeWithProj) {
  std::ifstream file(KX_TEST_SOURCE_DIR "/coords/oracle/datum_vectors.txt");
  std::map<int, double> worst;  // by datum, millimetres
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    short datum = 0;
    double lat = 0, lon = 0, h = 0, lat2 = 0, lon2 = 0, h2 = 0;
    in >> datum >> lat >> lon >> h >> lat2 >> lon2 >> h2;
    KxPosition p = Position_New();
    Position_SetLatitudeDecDeg(p, &lat);
    Position_SetLongitudeDecDeg(p, &lon);
    Position_SetAltitude(p, &h, 1);
    Position_SetDatum(p, datum);
    double gotLat = 0, gotLon = 0, gotH = 0;
    Position_GetLatitudeDecDeg(p, &gotLat);
    Position_GetLongitudeDecDeg(p, &gotLon);
    Position_GetAltitude(p, 1, &gotH);
    Position_Delete(p);
    const double north = (gotLat - lat2) * kMetresPerDegree;
    const double east = (gotLon - lon2) * kMetresPerDegree * std::cos(lat2 / 180 * M_PI);
    const double mm = std::max(std::hypot(north, east), std::fabs(gotH - h2)) * 1000;
    // PROJ skips the geocentric round trip between WGS 84 and the zero-shift GRS 80
    // datums; the library makes it, about 0.1 mm apart.
    const bool zeroShiftGrs80 = datum == 2 || datum == 11 || datum == 14 || datum == 19;
    EXPECT_LE(mm, zeroShiftGrs80 ? 0.15 : 0.01)
        << "datum " << datum << " at " << lat << "," << lon << "," << h;
    worst[datum] = std::max(worst[datum], mm);
  }
  ASSERT_EQ(worst.size(), 26u);
  for (const auto& [datum, mm] : worst)
    std::printf("datum %2d: largest difference %.5f mm\n", datum, mm);
}

}  // namespace
