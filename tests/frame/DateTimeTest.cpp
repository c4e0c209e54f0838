// DateTime from sentence fields, its texts and differences; Guid texts.
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "frame/DateTime.h"
#include "frame/Guid.h"
#include "frame/Ref.h"

namespace kx {
namespace {

Ref<String> Text(const char* text) { return Ref<String>(new String(text)); }

TEST(DateTime, FromSentenceFields) {
  struct Case {
    const char* date;
    const char* time;
    int32_t year, month, day, hour, minute, second, millisecond;
  };
  const Case cases[] = {
      {"230394", "123519", 1994, 3, 23, 12, 35, 19, 0},
      {"230305", "123519.500", 2005, 3, 23, 12, 35, 19, 500},
      {"010180", "000000.123", 1980, 1, 1, 0, 0, 0, 123},
      {"", "235959.999", 2000, 0, 0, 23, 59, 59, 999},
  };
  for (const Case& c : cases) {
    DateTime t(Text(c.date).get(), Text(c.time).get());
    EXPECT_EQ(t.GetYear(), c.year) << c.date;
    EXPECT_EQ(t.GetMonth(), c.month) << c.date;
    EXPECT_EQ(t.GetDay(), c.day) << c.date;
    EXPECT_EQ(t.GetHour(), c.hour) << c.time;
    EXPECT_EQ(t.GetMinute(), c.minute) << c.time;
    EXPECT_EQ(t.GetSecond(), c.second) << c.time;
    EXPECT_EQ(t.GetMilliSecond(), c.millisecond) << c.time;
  }
  DateTime timeOnly(Text("101010").get());
  EXPECT_EQ(timeOnly.GetYear(), 0);
  EXPECT_EQ(timeOnly.GetHour(), 10);
}

TEST(DateTime, TextForms) {
  DateTime t(2007, 4, 5, 6, 7, 8, 9);
  EXPECT_STREQ(Ref<String>(t.ToText(0))->GetText(), "060708");
  EXPECT_STREQ(Ref<String>(t.ToText(1))->GetText(), "050407");
  EXPECT_STREQ(Ref<String>(t.ToText(2))->GetText(), "06:07.08");
}

TEST(DateTime, SecondsBetweenTakesMissingDatesAsTheFirstOf1970) {
  DateTime late(0, 0, 0, 23, 59, 59, 0), early(0, 0, 0, 0, 0, 1, 0);
  EXPECT_EQ(DateTime::SecondsBetween(&late, &early), -86398);
  DateTime a(2024, 2, 28, 23, 0, 0, 0), b(2024, 3, 1, 1, 0, 0, 999);
  EXPECT_EQ(DateTime::SecondsBetween(&a, &b), 26 * 3600);  // leap day, ms cut
  EXPECT_EQ(DateTime::SecondsBetween(&b, &a), -26 * 3600);
  EXPECT_EQ(DateTime::SecondsBetween(nullptr, &a), 0);
  Ref<DateTime> now(DateTime::NowUtc());
  EXPECT_GE(now->GetYear(), 2024);
}

TEST(Guid, TextIsEightFourFourSixteenHexDigits) {
  Guid guid;
  EXPECT_FALSE(Ref<String>(guid.GetText()));
  guid.Create();
  const std::string first = Ref<String>(guid.GetText())->GetText();
  ASSERT_EQ(first.size(), 35u);
  for (size_t i = 0; i < first.size(); ++i) {
    if (i == 8 || i == 13 || i == 18)
      EXPECT_EQ(first[i], '-');
    else
      EXPECT_TRUE(std::isxdigit(static_cast<unsigned char>(first[i]))) << first;
  }
  EXPECT_EQ(first[14], '1');  // the version nibble
  guid.Create();
  EXPECT_NE(first, Ref<String>(guid.GetText())->GetText());
}

}  // namespace
}  // namespace kx
