// Prints the runs as usual and keeps each one's rate (items per second), so that a bench
// can end with the ratio of the library's rate to its peer's: above 1 is faster.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace kxbench {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  // How the two rates are shown beside the ratio.
  enum class Unit { kPerSecond, kMillionsPerSecond, kMicrosecondsEach };

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      const auto found = run.counters.find("items_per_second");
      if (found != run.counters.end() && !run.error_occurred)
        m_rates[run.benchmark_name()] = found->second;
    }
  }

  // Nothing when either run is missing (filtered out, or failed).
  void PrintRatio(const char* what, const std::string& ours, const std::string& theirs,
                  Unit unit = Unit::kPerSecond) const {
    const auto a = m_rates.find(ours), b = m_rates.find(theirs);
    if (a == m_rates.end() || b == m_rates.end()) return;
    const double x = a->second, y = b->second;
    switch (unit) {
      case Unit::kPerSecond:
        std::printf("%-46s %10.4g/s against %10.4g/s: %.2fx\n", what, x, y, x / y);
        break;
      case Unit::kMillionsPerSecond:
        std::printf("%-46s %8.2f M/s against %8.2f M/s: %.2fx\n", what, x / 1e6, y / 1e6, x / y);
        break;
      case Unit::kMicrosecondsEach:
        std::printf("%-46s %10.3f us against %10.3f us: %.2fx\n", what, 1e6 / x, 1e6 / y, x / y);
        break;
    }
  }

 private:
  std::map<std::string, double> m_rates;
};

}  // namespace kxbench
