#include <gtest/gtest.h>

#include <string>

#include "frame/Ref.h"
#include "frame/String.h"

using kx::Ref;
using kx::String;

namespace {

std::string TextOf(const String& s) {
  return s.GetText() ? std::string(s.GetText(), s.GetLength()) : "";
}

std::string Angle(int d, int m, double s, char h, int format) {
  String text(d, m, s, h, format);
  return TextOf(text);
}

std::u16string Wide(String& s) {
  BSTR b = s.GetBSTR();
  return std::u16string(b, SysStringLen(b));
}

}  // namespace

TEST(String, ConcatenationOfTextsAlwaysAllocates) {
  String none(static_cast<const char*>(nullptr));
  ASSERT_NE(none.GetText(), nullptr);
  EXPECT_EQ(none.GetLength(), 0);
  String abc("a", nullptr, "bc");
  EXPECT_EQ(TextOf(abc), "abc");
}

TEST(String, ConcatenationOfStringsAllocatesOnlyWhenNotEmpty) {
  String empty, ab("ab"), c("c");
  String nothing(&empty, static_cast<const String*>(nullptr), &empty);
  EXPECT_EQ(nothing.GetText(), nullptr);
  String joined(&ab, static_cast<const String*>(nullptr), &c);
  EXPECT_EQ(TextOf(joined), "abc");
}

TEST(String, BytesKeepEmbeddedNulsAndRefuseBadLengths) {
  String bytes("a\0b", 3);
  EXPECT_EQ(bytes.GetLength(), 3);
  EXPECT_EQ(bytes.GetChar(1), 0);
  EXPECT_EQ(bytes.GetChar(2), 'b');
  EXPECT_EQ(bytes.GetChar(3), 0);
  EXPECT_EQ(bytes.GetChar(-1), 0);
  EXPECT_EQ(String("abc", 0).GetText(), nullptr);
  EXPECT_EQ(String(static_cast<const char*>(nullptr), 5).GetText(), nullptr);
}

TEST(String, WideTextIsCutToItsLowByte) {
  const char16_t wide[] = {u'G', 0x0150, u'A', 0, u'X'};
  EXPECT_EQ(TextOf(String(wide)), "GPA");
  String counted(wide, 5);
  EXPECT_EQ(counted.GetLength(), 5);
  EXPECT_EQ(counted.GetChar(3), 0);
  EXPECT_EQ(String(static_cast<const char16_t*>(nullptr)).GetText(), nullptr);
}

TEST(String, NumberForms) {
  EXPECT_EQ(TextOf(String(int32_t(-42))), "-42");
  EXPECT_EQ(TextOf(String(3.14159265, 5)), "3.14159");
  EXPECT_EQ(TextOf(String(2.5, -1)), "2.500000");
  EXPECT_EQ(TextOf(String(-0.000001, 2)), "-0.00");
  // The double buffer is 128 bytes: longer forms are cut, never overrun.
  EXPECT_EQ(String(1e300, 10).GetLength(), 127);
}

TEST(String, ParsingFollowsAtofAndAtoi) {
  EXPECT_DOUBLE_EQ(String("  -12.5xyz").ToDouble(), -12.5);
  EXPECT_DOUBLE_EQ(String("+4e2").ToDouble(), 400.0);
  EXPECT_DOUBLE_EQ(String("x1").ToDouble(), 0.0);
  EXPECT_DOUBLE_EQ(String().ToDouble(), 0.0);
  EXPECT_EQ(String(" 0049,5").ToInt(), 49);
  EXPECT_EQ(String("-7").ToInt(), -7);
  EXPECT_EQ(String("70000").ToShort(), int16_t(70000 - 65536));
  EXPECT_EQ(String("").ToShort(), 0);
}

TEST(String, AngleTextRoundsAndCarries) {
  EXPECT_EQ(Angle(59, 59, 59.9996, 'N', 1), "6000.00000");
  EXPECT_EQ(Angle(7, 5, 30, 'E', 2), "00705.50001");
  EXPECT_EQ(Angle(59, 18, 7.25, 'N', 0), "59 18'7.25 N");
  EXPECT_EQ(Angle(59, 18, 7.25, 'N', 1), "5918.12084");
  // 59.999 + 0.0005 stays below 60, but "%.2f" would show 60.00: the display form
  // carries by its own rounding, and so do the minutes of the NMEA forms.
  EXPECT_EQ(Angle(10, 20, 59.999, 'S', 0), "10 21'0.00 S");
  EXPECT_EQ(Angle(10, 59, 59.999, 'S', 0), "11 0'0.00 S");
  EXPECT_EQ(Angle(10, 20, 59.994, 'S', 0), "10 20'59.99 S");
  EXPECT_EQ(Angle(59, 59, 59.9994, 'S', 1), "6000.00000");
  EXPECT_EQ(Angle(9, 9, 59.9994, 'E', 2), "00910.00000");
  EXPECT_EQ(Angle(9, 9, 59.999, 'E', 2), "00909.99999");
  EXPECT_EQ(Angle(18, 1, 0, 'E', 2), "01801.00001");  // the 0.0005 s shows
  // Carried minutes always take two digits.
  EXPECT_EQ(Angle(5, 8, 59.9999, 'N', 1), "0509.00000");
  // The angle buffer is 15 bytes.
  EXPECT_EQ(Angle(123456, 59, 59.0, 'W', 0).size(), 14u);
  EXPECT_EQ(Angle(1, 2, 3.0, 'N', 7), "");
}

TEST(String, MidGivesEmptyRatherThanShort) {
  String five("abcde");
  EXPECT_EQ(Ref<String>(five.Mid(3, 3))->GetLength(), 0);
  EXPECT_EQ(TextOf(*Ref<String>(five.Mid(1, 0))), "bcde");
  EXPECT_EQ(TextOf(*Ref<String>(five.Mid(1, 2))), "bc");
  EXPECT_EQ(Ref<String>(five.Mid(-1, 2))->GetLength(), 0);
  EXPECT_EQ(Ref<String>(five.Mid(5, 0))->GetLength(), 0);
}

TEST(String, EqualsAtIsCaseInsensitiveAndBounded) {
  String gga("gga"), ggax("GGAX"), empty;
  EXPECT_TRUE(gga.EqualsAt("GGA", 0, 0));
  EXPECT_FALSE(ggax.EqualsAt("GGA", 0, 0));
  EXPECT_TRUE(ggax.EqualsAt("GGA", 3, 0));
  EXPECT_TRUE(ggax.EqualsAt("ax", 0, 2));
  EXPECT_FALSE(ggax.EqualsAt("X", 0, 4));
  EXPECT_FALSE(ggax.EqualsAt(static_cast<const char*>(nullptr), 0, 0));
  EXPECT_TRUE(empty.EqualsAt("", 3, 0));
  EXPECT_TRUE(empty.EqualsAt("abc", 0, 0));
  EXPECT_FALSE(empty.EqualsAt("abc", 2, 0));
  // A count beyond both texts compares like strncasecmp.
  EXPECT_TRUE(gga.EqualsAt("GgA", 10, 0));
  EXPECT_FALSE(gga.EqualsAt("GG", 10, 0));
  // The String form is false whenever either side is empty.
  String upper("GGA");
  EXPECT_TRUE(gga.EqualsAt(&upper, 0, 0));
  EXPECT_FALSE(empty.EqualsAt(&empty, 0, 0));
  EXPECT_FALSE(gga.EqualsAt(&empty, 0, 0));
}

TEST(String, ReverseFindScansBackward) {
  String path("a\\b\\c.shp");
  EXPECT_EQ(path.ReverseFind("\\", -1), 3);
  EXPECT_EQ(path.ReverseFind("\\", 2), 1);
  EXPECT_EQ(path.ReverseFind(".SHP", -1), 5);
  EXPECT_EQ(path.ReverseFind(".shp", 100), -1);
  EXPECT_EQ(path.ReverseFind(".shp", 9), 5);  // pulled back to the last possible place
  EXPECT_EQ(path.ReverseFind("x", -1), -1);
  EXPECT_EQ(path.ReverseFind("\\", -2), -1);
}

TEST(String, CopyToTerminatesWithinTheBuffer) {
  char buffer[4] = {'x', 'x', 'x', 'x'};
  String("abcdef").CopyTo(buffer, 4);
  EXPECT_STREQ(buffer, "abc");
  String().CopyTo(buffer, 4);
  EXPECT_STREQ(buffer, "");
}

TEST(String, WideFormSignExtendsAndIsNeverNull) {
  String nothing;
  BSTR b = nothing.GetBSTR();
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(SysStringLen(b), 0u);
  EXPECT_EQ(b[0], 0);
  String high("\x41\xE9");
  EXPECT_EQ(Wide(high), (std::u16string{u'A', char16_t(0xFFE9)}));
  EXPECT_EQ(high.GetBSTR(), high.GetBSTR());  // made once
}

TEST(String, DetachedWideFormOutlivesTheString) {
  BSTR taken;
  {
    String text("kept");
    taken = text.GetBSTR();
    text.DetachBSTR();
  }
  EXPECT_EQ(std::u16string(taken, SysStringLen(taken)), u"kept");
  SysFreeString(taken);
}
