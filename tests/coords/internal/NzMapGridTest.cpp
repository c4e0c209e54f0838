// The New Zealand Map Grid's series on their own, on datum 13.
#include <gtest/gtest.h>

#include <cmath>

#include "coords/NzMapGrid.h"

namespace kx {
namespace {

constexpr double D = 57.29577951308232;

TEST(NzMapGrid, TheOriginGivesTheFalseOriginExactly) {
  double n = 0, e = 0;
  NzMapGrid::NzmgForward(-41.0 / D, 173.0 / D, n, e);
  EXPECT_EQ(n, 6023150.0);
  EXPECT_EQ(e, 2510000.0);
}

TEST(NzMapGrid, ThePublishedTestPointAndBack) {
  double n = 0, e = 0, lat = 0, lon = 0;
  NzMapGrid::NzmgForward(-34.444066 / D, 172.739194 / D, n, e);
  EXPECT_NEAR(n, 6751049.75, 0.01);
  EXPECT_NEAR(e, 2487100.66, 0.01);
  NzMapGrid::NzmgInverse(n, e, lat, lon);
  EXPECT_NEAR(lat * D, -34.444066, 1e-10);
  EXPECT_NEAR(lon * D, 172.739194, 1e-9);
}

TEST(NzMapGrid, FarFromNewZealandStillGivesNumbers) {
  double n = 0, e = 0;
  NzMapGrid::NzmgForward(10.0 / D, -20.0 / D, n, e);
  EXPECT_TRUE(std::isfinite(n) && std::isfinite(e));
}

}  // namespace
}  // namespace kx
