// Shape geometry through the flat functions beside the same work in GEOS's C API, on a
// synthetic ring of 24,830 nodes (a wavy star in UTM metres): area, point in polygon
// with and without the shape's cached index against GEOS prepared and unprepared, and
// length. The ratios at the end are rates, the library's over GEOS's: above 1 is
// faster.
#include <benchmark/benchmark.h>
#include <geos_c.h>

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "KestrixCE.h"
#include "RatioReporter.h"

namespace {

constexpr int kRingNodes = 24830;
constexpr double kPi = 3.141592653589793;

struct XY {
  double x, y;
};

// Clockwise, closed: the library's outer ring.
const std::vector<XY>& Ring() {
  static const std::vector<XY> ring = [] {
    std::vector<XY> r;
    const int n = kRingNodes - 1;
    for (int k = 0; k < n; ++k) {
      const double t = -2 * kPi * k / n;
      const double radius = 10000 + 1500 * std::sin(37 * t) + 400 * std::sin(211 * t);
      r.push_back({500000 + radius * std::cos(t), 6500000 + radius * std::sin(t)});
    }
    r.push_back(r.front());
    return r;
  }();
  return ring;
}

// Points spread over the ring's box.
const std::vector<XY>& Queries() {
  static const std::vector<XY> points = [] {
    std::vector<XY> p;
    uint32_t seed = 7;
    auto next = [&] {
      seed = seed * 1664525u + 1013904223u;
      return (seed >> 8) / double(1 << 24);
    };
    for (int k = 0; k < 1024; ++k)
      p.push_back({500000 + (next() * 2 - 1) * 12000, 6500000 + (next() * 2 - 1) * 12000});
    return p;
  }();
  return points;
}

KxShape LibraryRing() {
  KxShape shape = Shape_New();
  for (const XY& p : Ring()) {
    const double z = 0;
    Shape_NewNode(shape, -1);
    Shape_SetNode(shape, &p.x, &p.y, &z, &z);
  }
  KxPosition utm = Position_New();
  Position_SetGrid(utm, 1);
  Position_SetZone(utm, 33);
  Shape_SetDatumGridTemplate(shape, utm);
  Position_Delete(utm);
  return shape;
}

void Notice(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vfprintf(stderr, format, args);
  va_end(args);
}

struct Geos {
  GEOSContextHandle_t context = GEOS_init_r();
  GEOSGeometry* ring = nullptr;
  GEOSGeometry* polygon = nullptr;
  Geos() {
    GEOSContext_setNoticeHandler_r(context, Notice);
    GEOSCoordSequence* sequence = GEOSCoordSeq_create_r(context, kRingNodes, 2);
    for (int k = 0; k < kRingNodes; ++k)
      GEOSCoordSeq_setXY_r(context, sequence, k, Ring()[k].x, Ring()[k].y);
    polygon = GEOSGeom_createPolygon_r(context, GEOSGeom_createLinearRing_r(context, sequence),
                                       nullptr, 0);
    ring = GEOSGeom_clone_r(context, GEOSGetExteriorRing_r(context, polygon));
  }
  ~Geos() {
    GEOSGeom_destroy_r(context, ring);
    GEOSGeom_destroy_r(context, polygon);
    GEOS_finish_r(context);
  }
};

Geos& TheGeos() {
  static Geos geos;
  return geos;
}

// ---- area -------------------------------------------------------------------------

// The area of the part: the signed sum over its nodes each time; whether the ring
// crosses itself is worked out once for the ModifiedCount.
void PartArea_Library(benchmark::State& state) {
  KxShape shape = LibraryRing();
  double area = 0;
  for (auto _ : state) benchmark::DoNotOptimize(*Shape_PartArea(shape, &area));
  state.SetItemsProcessed(state.iterations());
  Shape_Delete(shape);
}
BENCHMARK(PartArea_Library);

void Area_Geos(benchmark::State& state) {
  Geos& geos = TheGeos();
  double area = 0;
  for (auto _ : state) {
    GEOSArea_r(geos.context, geos.polygon, &area);
    benchmark::DoNotOptimize(area);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Area_Geos);

// Shape_Area right after a change: the index again, the clean-polygon test (the ring
// against itself, orientation) and the sum; beside GEOS's validity test and area.
void AreaAfterAChange_Library(benchmark::State& state) {
  KxShape shape = LibraryRing();
  double area = 0;
  int id = 0;
  for (auto _ : state) {
    Shape_SetShapeID(shape, ++id);  // any change makes the caches stale
    benchmark::DoNotOptimize(*Shape_Area(shape, &area));
  }
  state.SetItemsProcessed(state.iterations());
  Shape_Delete(shape);
}
BENCHMARK(AreaAfterAChange_Library)->Unit(benchmark::kMillisecond);

void ValidityAndArea_Geos(benchmark::State& state) {
  Geos& geos = TheGeos();
  double area = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(GEOSisValid_r(geos.context, geos.polygon));
    GEOSArea_r(geos.context, geos.polygon, &area);
    benchmark::DoNotOptimize(area);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(ValidityAndArea_Geos)->Unit(benchmark::kMillisecond);

// ---- point in polygon -------------------------------------------------------------

void Inside_Library(benchmark::State& state) {
  KxShape shape = LibraryRing();
  size_t i = 0;
  for (auto _ : state) {
    const XY& q = Queries()[i++ & 1023];
    benchmark::DoNotOptimize(Shape_IsInside(shape, &q.x, &q.y));
  }
  state.SetItemsProcessed(state.iterations());
  Shape_Delete(shape);
}
BENCHMARK(Inside_Library);

// Every query after a change: the index is built again each time.
void InsideWithoutCache_Library(benchmark::State& state) {
  KxShape shape = LibraryRing();
  size_t i = 0;
  int id = 0;
  for (auto _ : state) {
    Shape_SetShapeID(shape, ++id);
    const XY& q = Queries()[i++ & 1023];
    benchmark::DoNotOptimize(Shape_IsInside(shape, &q.x, &q.y));
  }
  state.SetItemsProcessed(state.iterations());
  Shape_Delete(shape);
}
BENCHMARK(InsideWithoutCache_Library);

std::vector<GEOSGeometry*> GeosPoints(Geos& geos) {
  std::vector<GEOSGeometry*> points;
  for (const XY& q : Queries())
    points.push_back(GEOSGeom_createPointFromXY_r(geos.context, q.x, q.y));
  return points;
}

void Inside_GeosPrepared(benchmark::State& state) {
  Geos& geos = TheGeos();
  const GEOSPreparedGeometry* prepared = GEOSPrepare_r(geos.context, geos.polygon);
  std::vector<GEOSGeometry*> points = GeosPoints(geos);
  size_t i = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(GEOSPreparedContains_r(geos.context, prepared, points[i++ & 1023]));
  state.SetItemsProcessed(state.iterations());
  for (GEOSGeometry* p : points) GEOSGeom_destroy_r(geos.context, p);
  GEOSPreparedGeom_destroy_r(geos.context, prepared);
}
BENCHMARK(Inside_GeosPrepared);

void Inside_GeosUnprepared(benchmark::State& state) {
  Geos& geos = TheGeos();
  std::vector<GEOSGeometry*> points = GeosPoints(geos);
  size_t i = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(GEOSContains_r(geos.context, geos.polygon, points[i++ & 1023]));
  state.SetItemsProcessed(state.iterations());
  for (GEOSGeometry* p : points) GEOSGeom_destroy_r(geos.context, p);
}
BENCHMARK(Inside_GeosUnprepared);

// ---- length -----------------------------------------------------------------------

// Through Position in the grid plane, after a change so that the cached length is stale.
void Length_Library(benchmark::State& state) {
  KxShape shape = LibraryRing();
  double length = 0;
  int id = 0;
  for (auto _ : state) {
    Shape_SetShapeID(shape, ++id);
    benchmark::DoNotOptimize(*Shape_Distance(shape, 0, -1, &length));
  }
  state.SetItemsProcessed(state.iterations());
  Shape_Delete(shape);
}
BENCHMARK(Length_Library)->Unit(benchmark::kMicrosecond);

void Length_Geos(benchmark::State& state) {
  Geos& geos = TheGeos();
  double length = 0;
  for (auto _ : state) {
    GEOSLength_r(geos.context, geos.ring, &length);
    benchmark::DoNotOptimize(length);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Length_Geos)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  kxbench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatio("area of the ring / GEOSArea", "PartArea_Library", "Area_Geos",
                      kxbench::RatioReporter::Unit::kMicrosecondsEach);
  reporter.PrintRatio("area after a change / GEOSisValid + GEOSArea", "AreaAfterAChange_Library",
                      "ValidityAndArea_Geos", kxbench::RatioReporter::Unit::kMicrosecondsEach);
  reporter.PrintRatio("inside, cached index / GEOS prepared", "Inside_Library",
                      "Inside_GeosPrepared", kxbench::RatioReporter::Unit::kMicrosecondsEach);
  reporter.PrintRatio("inside, index rebuilt / GEOS unprepared", "InsideWithoutCache_Library",
                      "Inside_GeosUnprepared", kxbench::RatioReporter::Unit::kMicrosecondsEach);
  reporter.PrintRatio("length / GEOSLength", "Length_Library", "Length_Geos",
                      kxbench::RatioReporter::Unit::kMicrosecondsEach);
  return 0;
}
