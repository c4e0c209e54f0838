// The rules every family follows at the border: handles, reference counts shared with
// the library, the error record read through Error_ErrNum and Error_ErrDesc.
#include <gtest/gtest.h>

#include <string>

#include "KestrixCE.h"

namespace {

std::u16string Text(BSTR text) { return text ? std::u16string(text, SysStringLen(text)) : u"<null>"; }

std::u16string Description(KxError error) {
  BSTR out = nullptr;
  BSTR returned = Error_ErrDesc(error, &out);
  EXPECT_EQ(returned, out);
  return Text(returned);  // the library's: not freed
}

}  // namespace

TEST(HandleRules, NullHandlesAreHarmless) {
  Position_Delete(nullptr);
  CustomDatum_Delete(nullptr);
  CustomGrid_Delete(nullptr);
  EXPECT_EQ(Position_GetErrHandle(nullptr), nullptr);
  EXPECT_EQ(CustomDatum_GetErrHandle(nullptr), nullptr);
  EXPECT_EQ(CustomGrid_GetErrHandle(nullptr), nullptr);
}

TEST(HandleRules, ANewObjectHasNoErrorAndAnEmptyText) {
  KxPosition position = Position_New();
  KxError error = Position_GetErrHandle(position);
  EXPECT_EQ(Error_ErrNum(error), 0);
  BSTR text = Error_ErrDesc(error, nullptr);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringLen(text), 0u);
  Position_Delete(position);
}

TEST(HandleRules, AFailureStaysUntilTheNextCallOnTheSameObject) {
  KxPosition position = Position_New();
  KxPosition other = Position_New();
  KxError error = Position_GetErrHandle(position);
  Position_SetDatum(position, 99);
  Position_GetDatum(other);  // another object's success doesn't touch this record
  EXPECT_EQ(Error_ErrNum(error), KX_ERR_INVALID_ARGUMENT);
  EXPECT_EQ(Description(error), u"Unknown datum!");
  EXPECT_EQ(Position_GetDatum(position), 1);
  EXPECT_EQ(Error_ErrNum(error), 0);
  EXPECT_EQ(Description(error), u"");
  Position_Delete(position);
  Position_Delete(other);
}

TEST(HandleRules, EachDescriptionReplacesThePreviousOne) {
  KxPosition position = Position_New();
  KxCustomGrid grid = CustomGrid_New();
  Position_SetGrid(position, 99);
  CustomGrid_SetDatum(grid, 29);
  const std::u16string first = Description(Position_GetErrHandle(position));
  const std::u16string second = Description(CustomGrid_GetErrHandle(grid));
  EXPECT_EQ(first, u"Unknown grid!");
  EXPECT_EQ(second, u"Unknown datum!");
  CustomGrid_Delete(grid);
  Position_Delete(position);
}

TEST(HandleRules, AnObjectHandedToALibraryHolderOutlivesTheApplicationsDelete) {
  KxCustomDatum datum = CustomDatum_New();
  const double a = 6378388.0, e2 = 0.006722670022;
  CustomDatum_SetSemiMajorAxis(datum, &a);
  CustomDatum_SetE2(datum, &e2);
  KxPosition holder = Position_New();
  Position_SetCustomDatum(holder, datum);
  CustomDatum_Delete(datum);  // the position keeps its own reference

  KxPosition follower = Position_New();
  Position_MakeSameDatum(follower, holder);
  EXPECT_EQ(Position_GetDatum(follower), 28);
  EXPECT_EQ(Position_IsSameDatum(follower, holder), 1);
  Position_Delete(holder);
  EXPECT_EQ(Position_GetDatum(follower), 28);
  Position_Delete(follower);
}
