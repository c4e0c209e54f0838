// The orientation under every touch and crossing against exact integer arithmetic, on
// points next to a line by a few units in the last place, where the determinant in
// doubles gets the sign wrong (the classic 0.5 + k 2^-53 neighbourhood).
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "shapes/Orientation.h"

namespace kx {
namespace {

// Coordinates that are multiples of 2^-53 below 2^9 in magnitude, as integers.
__int128 Units(double v) { return __int128(std::ldexp(v, 53)); }

int Reference(XY a, XY b, XY c) {
  const __int128 det = (Units(b.x) - Units(a.x)) * (Units(c.y) - Units(a.y)) -
                       (Units(b.y) - Units(a.y)) * (Units(c.x) - Units(a.x));
  return det > 0 ? 1 : det < 0 ? -1 : 0;
}

int Naive(XY a, XY b, XY c) {
  const double det = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
  return det > 0 ? 1 : det < 0 ? -1 : 0;
}

TEST(Orientation, PointsNextToALineGetTheExactSign) {
  const double unit = std::ldexp(1.0, -53);
  int wrongInDoubles = 0, onTheLine = 0;
  for (const XY& q : {XY{12, 12}, XY{18, 18.5}, XY{-7.25, 3}})
    for (const XY& r : {XY{24, 24}, XY{24, 24.75}, XY{11.5, -3.125}})
      for (int i = 0; i < 64; ++i)
        for (int j = 0; j < 64; ++j) {
          const XY p{0.5 + i * unit, 0.5 + j * unit};
          for (const auto& [a, b, c] :
               {std::tuple{p, q, r}, std::tuple{q, r, p}, std::tuple{r, q, p}}) {
            const int exact = Reference(a, b, c);
            ASSERT_EQ(Orientation(a, b, c), exact) << i << " " << j;
            wrongInDoubles += Naive(a, b, c) != exact;
            onTheLine += exact == 0;
          }
        }
  EXPECT_GT(wrongInDoubles, 1000);  // the fast path alone would have failed
  EXPECT_GT(onTheLine, 100);
}

TEST(Orientation, FarFromTheOriginAndNotFinite) {
  // Grid coordinates where a node lies a unit in the last place off the line.
  const XY a{512345.678, 6543210.123}, b{512349.001, 6543297.77};
  const XY mid{(a.x + b.x) / 2, (a.y + b.y) / 2};
  const int side = Orientation(a, b, mid);
  EXPECT_EQ(Orientation(b, a, mid), -side);
  EXPECT_EQ(Orientation(a, mid, b), -side);
  EXPECT_EQ(Orientation(a, b, a), 0);
  EXPECT_EQ(Orientation(a, b, {std::nextafter(b.x, 1e9), b.y}), -1);
  EXPECT_EQ(Orientation(a, b, {NAN, 0}), 0);
  EXPECT_EQ(Orientation(a, {INFINITY, 0}, b), 0);
}

}  // namespace
}  // namespace kx
