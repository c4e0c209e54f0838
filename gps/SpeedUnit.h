// Speeds are kept in knots; these are the units they cross in.
#pragma once

#include <cstdint>

namespace kx {

class SpeedUnit {
 public:
  enum : int32_t { kKnots = 0, kMetresPerSecond = 1, kKilometresPerHour = 2, kMilesPerHour = 3 };

  static bool IsKnown(int32_t unit) { return unit >= kKnots && unit <= kMilesPerHour; }
  // An unknown unit gives 0.
  static double ToKnots(double value, int32_t unit) {
    return IsKnown(unit) ? value / Factor(unit) : 0;
  }
  // An unknown unit gives knots.
  static double FromKnots(double knots, int32_t unit) {
    return IsKnown(unit) ? knots * Factor(unit) : knots;
  }

 private:
  static double Factor(int32_t unit) {
    static const double kFactors[] = {1, 0.51444341959472, 1.85199631054099, 1.1507771555};
    return kFactors[unit];
  }
};

}  // namespace kx
