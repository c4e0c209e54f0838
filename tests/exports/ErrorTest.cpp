#include <gtest/gtest.h>

#include "KestrixCE.h"

TEST(Handles, NullHandlesAreHarmless) {
  Position_Delete(nullptr);
  EXPECT_EQ(Position_GetErrHandle(nullptr), nullptr);
}
