// Shape files through the flat functions beside shapelib in the same program: reading
// the largest polygon file of tests/data/shp/good (fixed-size shapes and dynamic ones),
// the largest point file there and a file of a million points that shapelib writes
// first; writing a million points and 10,000 polylines of 100 nodes, each record with
// its own object on both sides, and the polylines again from objects made beforehand. The library
// rewrites both headers after every record, shapelib once at the close. Files go to a temporary
// directory that is removed at the end. The ratios are rates, the library's over shapelib's: above
// 1 is faster.
#include <benchmark/benchmark.h>
#include <shapefil.h>
#include <stdlib.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "KestrixCE.h"
#include "RatioReporter.h"

namespace {

namespace fs = std::filesystem;

constexpr int kMillion = 1000000;
constexpr int kPolylines = 10000;
constexpr int kPolylineNodes = 100;
static_assert(kPolylines * kPolylineNodes <= kMillion,
              "the polylines take their nodes from the table");

// ---- the files ----------------------------------------------------------------------

struct TempDir {
  fs::path path;
  TempDir() {
    std::string pattern = (fs::temp_directory_path() / "kx_shapefile_bench_XXXXXX").string();
    if (mkdtemp(pattern.data())) path = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    if (!path.empty()) fs::remove_all(path, ignored);
  }
};

TempDir& Temp() {
  static TempDir dir;
  return dir;
}

std::string TempFile(const char* name) { return (Temp().path / name).string(); }

int32_t TypeOf(const fs::path& shp) {
  unsigned char head[36] = {};
  std::ifstream(shp, std::ios::binary).read(reinterpret_cast<char*>(head), sizeof head);
  return int32_t(head[32] | head[33] << 8 | head[34] << 16 | uint32_t(head[35]) << 24);
}

// The largest main file of the type that has its index beside it.
std::string LargestOfType(int32_t type) {
  fs::path best;
  uintmax_t bestSize = 0;
  for (const auto& entry : fs::recursive_directory_iterator(KX_SHAPE_FILES)) {
    const fs::path& p = entry.path();
    if (p.extension() != ".shp" || !fs::exists(fs::path(p).replace_extension(".shx"))) continue;
    if (TypeOf(p) == type && entry.file_size() > bestSize) {
      best = p;
      bestSize = entry.file_size();
    }
  }
  return best.string();
}

struct Sample {
  std::string name;  // with ".shp": a name may hold other dots
  int shapes = 0;
  int64_t vertices = 0;
};

// Counted by shapelib, so that both sides are measured on the same work.
Sample Measure(const std::string& name) {
  Sample sample{name};
  SHPHandle shp = SHPOpen(name.c_str(), "rb");
  if (!shp) return sample;
  SHPGetInfo(shp, &sample.shapes, nullptr, nullptr, nullptr);
  for (int i = 0; i < sample.shapes; ++i) {
    SHPObject* object = SHPReadObject(shp, i);
    if (object) sample.vertices += object->nVertices;
    SHPDestroyObject(object);
  }
  SHPClose(shp);
  return sample;
}

const Sample& Polygons() {
  static const Sample sample = Measure(LargestOfType(SHPT_POLYGON));
  return sample;
}

const Sample& Points() {
  static const Sample sample = Measure(LargestOfType(SHPT_POINT));
  return sample;
}

// A million coordinates, made once so that the writers are measured without them:
// point k, or node n of polyline k at k * 100 + n.
struct Coordinates {
  std::vector<double> x, y;
};

const Coordinates& Table() {
  static const Coordinates table = [] {
    Coordinates c;
    for (int k = 0; k < kMillion; ++k) {
      c.x.push_back(400000 + 1000 * std::sin(0.001 * k) + k);
      c.y.push_back(400000 + 1000 * std::sin(0.001 * k + 1) + k);
    }
    return c;
  }();
  return table;
}

const Sample& MillionPoints() {
  static const Sample sample = [] {
    const std::string name = TempFile("million_points.shp");
    SHPHandle shp = SHPCreate(name.c_str(), SHPT_POINT);
    for (int k = 0; k < kMillion && shp; ++k) {
      SHPObject* point =
          SHPCreateSimpleObject(SHPT_POINT, 1, &Table().x[k], &Table().y[k], nullptr);
      SHPWriteObject(shp, -1, point);
      SHPDestroyObject(point);
    }
    if (shp) SHPClose(shp);
    return Measure(name);
  }();
  return sample;
}

std::u16string Wide(const std::string& text) { return std::u16string(text.begin(), text.end()); }

// ---- reading ------------------------------------------------------------------------

// Every record of the file as a Shape; the count of nodes read must be shapelib's.
void ReadWithLibrary(benchmark::State& state, const Sample& sample, bool fixedSize) {
  if (sample.shapes == 0) return state.SkipWithError("no such file");
  const std::u16string name = Wide(sample.name);
  KxShapeFile file = ShapeFile_New();
  ShapeFile_SetReadOnly(file, fixedSize);
  for (auto _ : state) {
    ShapeFile_Open(file, name.c_str(), KX_SHAPEFILE_READ);
    int64_t vertices = 0;
    while (KxShape shape = ShapeFile_Read(file)) {
      vertices += Shape_GetTotalNodeCount(shape);
      Shape_Delete(shape);
    }
    ShapeFile_Close(file);
    if (vertices != sample.vertices) state.SkipWithError("another count of nodes than shapelib's");
  }
  ShapeFile_Delete(file);
}

void ReadWithShapelib(benchmark::State& state, const Sample& sample) {
  if (sample.shapes == 0) return state.SkipWithError("no such file");
  for (auto _ : state) {
    SHPHandle shp = SHPOpen(sample.name.c_str(), "rb");
    int64_t vertices = 0;
    for (int i = 0; i < sample.shapes; ++i) {
      SHPObject* object = SHPReadObject(shp, i);
      vertices += object->nVertices;
      SHPDestroyObject(object);
    }
    SHPClose(shp);
    benchmark::DoNotOptimize(vertices);
  }
}

void ReadPolygons_Library(benchmark::State& state) {
  ReadWithLibrary(state, Polygons(), true);
  state.SetItemsProcessed(state.iterations() * Polygons().vertices);
}
BENCHMARK(ReadPolygons_Library)->Unit(benchmark::kMicrosecond);

void ReadPolygonsDynamic_Library(benchmark::State& state) {
  ReadWithLibrary(state, Polygons(), false);
  state.SetItemsProcessed(state.iterations() * Polygons().vertices);
}
BENCHMARK(ReadPolygonsDynamic_Library)->Unit(benchmark::kMicrosecond);

void ReadPolygons_Shapelib(benchmark::State& state) {
  ReadWithShapelib(state, Polygons());
  state.SetItemsProcessed(state.iterations() * Polygons().vertices);
}
BENCHMARK(ReadPolygons_Shapelib)->Unit(benchmark::kMicrosecond);

void ReadPoints_Library(benchmark::State& state) {
  ReadWithLibrary(state, Points(), true);
  state.SetItemsProcessed(state.iterations() * Points().shapes);
}
BENCHMARK(ReadPoints_Library)->Unit(benchmark::kMicrosecond);

void ReadPoints_Shapelib(benchmark::State& state) {
  ReadWithShapelib(state, Points());
  state.SetItemsProcessed(state.iterations() * Points().shapes);
}
BENCHMARK(ReadPoints_Shapelib)->Unit(benchmark::kMicrosecond);

void ReadMillionPoints_Library(benchmark::State& state) {
  ReadWithLibrary(state, MillionPoints(), true);
  state.SetItemsProcessed(state.iterations() * MillionPoints().shapes);
}
BENCHMARK(ReadMillionPoints_Library)->Unit(benchmark::kMillisecond);

void ReadMillionPoints_Shapelib(benchmark::State& state) {
  ReadWithShapelib(state, MillionPoints());
  state.SetItemsProcessed(state.iterations() * MillionPoints().shapes);
}
BENCHMARK(ReadMillionPoints_Shapelib)->Unit(benchmark::kMillisecond);

// ---- writing ------------------------------------------------------------------------

// Each record's object is made as it is written and given up after it, as an
// application does, or with `prepared` made before the clock starts, which measures the
// writer alone. Records are numbered from 1, as shapelib numbers them.
template <class MakeShape>
void WriteWithLibrary(benchmark::State& state, int type, int count, MakeShape make,
                      bool prepared = false) {
  Table();
  auto numbered = [&](int k) {
    KxShape shape = make(k);
    Shape_SetShapeID(shape, k + 1);
    return shape;
  };
  std::vector<KxShape> ready;
  for (int k = 0; prepared && k < count; ++k) ready.push_back(numbered(k));
  const std::u16string name = Wide(TempFile("library_written.shp"));
  KxShapeFile file = ShapeFile_New();
  ShapeFile_SetShapeFileType(file, type);
  for (auto _ : state) {
    ShapeFile_Open(file, name.c_str(), KX_SHAPEFILE_CREATE);
    for (int k = 0; k < count; ++k) {
      KxShape shape = prepared ? ready[size_t(k)] : numbered(k);
      ShapeFile_Write(file, shape);
      if (!prepared) Shape_Delete(shape);
    }
    ShapeFile_Close(file);
  }
  if (Error_ErrNum(ShapeFile_GetErrHandle(file)) != 0) state.SkipWithError("a write failed");
  ShapeFile_Delete(file);
  for (KxShape shape : ready) Shape_Delete(shape);
  state.SetItemsProcessed(state.iterations() * count);
}

template <class MakeObject>
void WriteWithShapelib(benchmark::State& state, int type, int count, MakeObject make,
                       bool prepared = false) {
  Table();
  std::vector<SHPObject*> ready;
  for (int k = 0; prepared && k < count; ++k) ready.push_back(make(k));
  const std::string name = TempFile("shapelib_written.shp");
  for (auto _ : state) {
    SHPHandle shp = SHPCreate(name.c_str(), type);
    for (int k = 0; k < count; ++k) {
      SHPObject* object = prepared ? ready[size_t(k)] : make(k);
      SHPWriteObject(shp, -1, object);
      if (!prepared) SHPDestroyObject(object);
    }
    SHPClose(shp);
  }
  for (SHPObject* object : ready) SHPDestroyObject(object);
  state.SetItemsProcessed(state.iterations() * count);
}

KxShape LibraryPoint(int k) {
  const double zero = 0;
  KxShape shape = Shape_New();
  Shape_NewNode(shape, -1);
  Shape_SetNode(shape, &Table().x[k], &Table().y[k], &zero, &zero);
  return shape;
}

SHPObject* ShapelibPoint(int k) {
  return SHPCreateSimpleObject(SHPT_POINT, 1, &Table().x[k], &Table().y[k], nullptr);
}

void WriteMillionPoints_Library(benchmark::State& state) {
  WriteWithLibrary(state, SHPT_POINT, kMillion, LibraryPoint);
}
BENCHMARK(WriteMillionPoints_Library)->Unit(benchmark::kMillisecond);

void WriteMillionPoints_Shapelib(benchmark::State& state) {
  WriteWithShapelib(state, SHPT_POINT, kMillion, ShapelibPoint);
}
BENCHMARK(WriteMillionPoints_Shapelib)->Unit(benchmark::kMillisecond);

KxShape LibraryPolyline(int k) {
  const double zero = 0;
  KxShape shape = Shape_New();
  for (int n = k * kPolylineNodes; n < (k + 1) * kPolylineNodes; ++n) {
    Shape_NewNode(shape, -1);
    Shape_SetNode(shape, &Table().x[n], &Table().y[n], &zero, &zero);
  }
  return shape;
}

SHPObject* ShapelibPolyline(int k) {
  const int first = k * kPolylineNodes;
  return SHPCreateSimpleObject(SHPT_ARC, kPolylineNodes, &Table().x[first], &Table().y[first],
                               nullptr);
}

void WritePolylines_Library(benchmark::State& state) {
  WriteWithLibrary(state, SHPT_ARC, kPolylines, LibraryPolyline);
}
BENCHMARK(WritePolylines_Library)->Unit(benchmark::kMillisecond);

void WritePolylines_Shapelib(benchmark::State& state) {
  WriteWithShapelib(state, SHPT_ARC, kPolylines, ShapelibPolyline);
}
BENCHMARK(WritePolylines_Shapelib)->Unit(benchmark::kMillisecond);

void WritePreparedPolylines_Library(benchmark::State& state) {
  WriteWithLibrary(state, SHPT_ARC, kPolylines, LibraryPolyline, true);
}
BENCHMARK(WritePreparedPolylines_Library)->Unit(benchmark::kMillisecond);

void WritePreparedPolylines_Shapelib(benchmark::State& state) {
  WriteWithShapelib(state, SHPT_ARC, kPolylines, ShapelibPolyline, true);
}
BENCHMARK(WritePreparedPolylines_Shapelib)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (Temp().path.empty()) {
    std::fprintf(stderr, "no temporary directory\n");
    return 1;
  }
  std::printf("polygons: %s, %d shapes, %lld nodes\npoints: %s, %d shapes\n",
              Polygons().name.c_str(), Polygons().shapes, (long long)Polygons().vertices,
              Points().name.c_str(), Points().shapes);
  kxbench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatio("read polygons, fixed-size / shapelib", "ReadPolygons_Library",
                      "ReadPolygons_Shapelib");
  reporter.PrintRatio("read polygons, dynamic / shapelib", "ReadPolygonsDynamic_Library",
                      "ReadPolygons_Shapelib");
  reporter.PrintRatio("read points / shapelib", "ReadPoints_Library", "ReadPoints_Shapelib");
  reporter.PrintRatio("read a million points / shapelib", "ReadMillionPoints_Library",
                      "ReadMillionPoints_Shapelib");
  reporter.PrintRatio("write a million points / shapelib", "WriteMillionPoints_Library",
                      "WriteMillionPoints_Shapelib");
  reporter.PrintRatio("write 10,000 polylines of 100 / shapelib", "WritePolylines_Library",
                      "WritePolylines_Shapelib");
  reporter.PrintRatio("  the same, objects made before / shapelib",
                      "WritePreparedPolylines_Library", "WritePreparedPolylines_Shapelib");
  return 0;
}
