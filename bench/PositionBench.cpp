// Position through the flat functions, as an application drives it: set degrees,
// minutes and seconds, read decimal degrees, read the display text.
#include <benchmark/benchmark.h>

#include "KestrixCE.h"

namespace {

const WCHAR kNorth[] = {u'N', 0};

void SetDmsReadDegreesAndText(benchmark::State& state) {
  KxPosition position = Position_New();
  const double degrees = 59, minutes = 18;
  double seconds = 7.25, value = 0;
  for (auto _ : state) {
    seconds = seconds < 59 ? seconds + 0.001 : 0;  // a new value each round
    Position_SetLatitudeDMS(position, &degrees, &minutes, &seconds, kNorth);
    Position_GetLatitudeDecDeg(position, &value);
    BSTR text = nullptr;
    Position_GetLatitudeString(position, &text, 0);
    benchmark::DoNotOptimize(value);
    benchmark::DoNotOptimize(text);
    SysFreeString(text);
  }
  state.SetItemsProcessed(state.iterations());
  Position_Delete(position);
}
BENCHMARK(SetDmsReadDegreesAndText);

void SetDmsReadDegrees(benchmark::State& state) {
  KxPosition position = Position_New();
  const double degrees = 59, minutes = 18;
  double seconds = 7.25, value = 0;
  for (auto _ : state) {
    seconds = seconds < 59 ? seconds + 0.001 : 0;
    Position_SetLatitudeDMS(position, &degrees, &minutes, &seconds, kNorth);
    Position_GetLatitudeDecDeg(position, &value);
    benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(state.iterations());
  Position_Delete(position);
}
BENCHMARK(SetDmsReadDegrees);

void NewAndDelete(benchmark::State& state) {
  for (auto _ : state) {
    KxPosition position = Position_New();
    benchmark::DoNotOptimize(position);
    Position_Delete(position);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(NewAndDelete);

}  // namespace

BENCHMARK_MAIN();
