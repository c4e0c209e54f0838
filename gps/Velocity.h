// Speed and course from the east and north components of a velocity.
#pragma once

#include <cmath>

#include "gps/SpeedUnit.h"

namespace kx {

struct Velocity {
  double knots;
  double course;  // degrees clockwise from north; 0 when standing still

  // x east and y north, in metres per second.
  static Velocity FromComponents(double x, double y) {
    const double pi = 3.141592653589793;
    const double knots = SpeedUnit::ToKnots(std::sqrt(x * x + y * y), SpeedUnit::kMetresPerSecond);
    if (x == 0 && y == 0) return {knots, 0};
    double course = pi / 2 - std::atan2(y, x);
    if (course < 0) course += 2 * pi;
    return {knots, course * 180 / pi};
  }
};

}  // namespace kx
