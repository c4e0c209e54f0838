// WGS 84 -> UTM through Position (set latitude and longitude, read easting and
// northing), without a datum shift (grid 1) and with one (grid 28, ED50), beside the
// same work through PROJ's proj_trans and through the bare projection class.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "KestrixCE.h"
#include "RatioReporter.h"
#include "coords/DatumTable.h"
#include "coords/GridCatalogue.h"
#include "coords/TransverseMercator.h"

namespace {

// Points spread over zone 33 (12 to 18 east), 40 to 70 north.
struct Point {
  double lat, lon;
};

const std::vector<Point>& Points() {
  static const std::vector<Point> points = [] {
    std::vector<Point> p;
    for (int i = 0; i < 1024; ++i)
      p.push_back({40 + (i % 32) * 30.0 / 32, 12.1 + (i / 32) * 5.8 / 32});
    return p;
  }();
  return points;
}

void ThroughPosition(benchmark::State& state, short grid) {
  KxPosition position = Position_New();
  Position_SetGrid(position, grid);
  const auto& points = Points();
  size_t i = 0;
  double e = 0, n = 0;
  for (auto _ : state) {
    const Point& p = points[i++ & 1023];
    Position_SetLatitudeDecDeg(position, &p.lat);
    Position_SetLongitudeDecDeg(position, &p.lon);
    Position_GetEasting(position, &e);
    Position_GetNorthing(position, &n);
    benchmark::DoNotOptimize(e);
    benchmark::DoNotOptimize(n);
  }
  state.SetItemsProcessed(state.iterations());
  Position_Delete(position);
}

// PROJ told the library's own numbers: the same ellipsoids and seven parameters.
const char* const kUtm33 =
    "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
    "+step +proj=utm +zone=33 +a=6378137 +es=0.006694379990197";
const char* const kEd50Utm33 =
    "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
    "+step +proj=cart +a=6378137 +es=0.006694379990197 "
    "+step +inv +proj=helmert +x=-89.5 +y=-93.8 +z=-123.1 +rz=-0.156 +s=1.2 "
    "+convention=position_vector "
    "+step +inv +proj=cart +a=6378388 +es=0.006722670022 "
    "+step +proj=utm +zone=33 +a=6378388 +es=0.006722670022";

void ThroughProj(benchmark::State& state, const char* pipeline) {
  PJ_CONTEXT* context = proj_context_create();
  PJ* transform = proj_create(context, pipeline);
  if (!transform) {
    state.SkipWithError("PROJ refused the pipeline");
    return;
  }
  const auto& points = Points();
  size_t i = 0;
  for (auto _ : state) {
    const Point& p = points[i++ & 1023];
    PJ_COORD c = proj_trans(transform, PJ_FWD, proj_coord(p.lon, p.lat, 0, 0));
    benchmark::DoNotOptimize(c);
  }
  state.SetItemsProcessed(state.iterations());
  proj_destroy(transform);
  proj_context_destroy(context);
}

// The series alone, with no Position around it: the floor for the plain formulas.
void BareSeries(benchmark::State& state) {
  const kx::TransverseMercator tm;
  kx::GridRecord row = kx::GridCatalogue::Row(1);
  row.longitudeOfOrigin = 15.0 / 180 * 3.141592653589793;
  const kx::EllipsoidRecord& wgs84 = kx::DatumTable::EllipsoidOf(*kx::DatumTable::Row(1));
  const auto& points = Points();
  size_t i = 0;
  double e = 0, n = 0;
  for (auto _ : state) {
    const Point& p = points[i++ & 1023];
    tm.Forward({row, wgs84, 33}, p.lat / 180 * 3.141592653589793, p.lon / 180 * 3.141592653589793,
               e, n);
    benchmark::DoNotOptimize(e);
    benchmark::DoNotOptimize(n);
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(ThroughPosition, Utm_NoShift, 1);
BENCHMARK_CAPTURE(ThroughProj, Utm_NoShift, kUtm33);
BENCHMARK_CAPTURE(ThroughPosition, Ed50Utm_Shift, 28);
BENCHMARK_CAPTURE(ThroughProj, Ed50Utm_Shift, kEd50Utm33);
BENCHMARK(BareSeries);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  kxbench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatio("UTM, Position / PROJ", "ThroughPosition/Utm_NoShift",
                      "ThroughProj/Utm_NoShift", kxbench::RatioReporter::Unit::kMillionsPerSecond);
  reporter.PrintRatio("ED50 UTM, Position / PROJ", "ThroughPosition/Ed50Utm_Shift",
                      "ThroughProj/Ed50Utm_Shift",
                      kxbench::RatioReporter::Unit::kMillionsPerSecond);
  reporter.PrintRatio("UTM, Position / bare series", "ThroughPosition/Utm_NoShift", "BareSeries",
                      kxbench::RatioReporter::Unit::kMillionsPerSecond);
  return 0;
}
