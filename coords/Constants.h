// The constants of the coordinate code, written as the formulas state them.
#pragma once

namespace kx {

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kQuarterPi = 0.7853981633974483;

constexpr double DegreesToRadians(double degrees) { return degrees / 180 * kPi; }

}  // namespace kx
