#include <gtest/gtest.h>

#include "platform/win32ce.h"

TEST(Bstr, CountedTerminatedAndFreed) {
  const WCHAR source[] = {u'a', 0, u'b'};
  BSTR text = SysAllocStringLen(source, 3);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringLen(text), 3u);
  EXPECT_EQ(text[1], 0);
  EXPECT_EQ(text[2], u'b');
  EXPECT_EQ(text[3], 0);
  SysFreeString(text);

  BSTR empty = SysAllocStringLen(nullptr, 0);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(SysStringLen(empty), 0u);
  EXPECT_EQ(empty[0], 0);
  SysFreeString(empty);

  EXPECT_EQ(SysStringLen(nullptr), 0u);
  SysFreeString(nullptr);
}

TEST(Bstr, AbsurdLengthFailsWithLastError) {
  SetLastError(0);
  EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFF0u), nullptr);
  EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
}
