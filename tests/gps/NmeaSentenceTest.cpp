// NmeaSentence through its exported functions: reading, composing and the commands.
#include <gtest/gtest.h>

#include <string>

#include "KestrixCE.h"
#include "support/ApiText.h"

using kxtest::Failure;
using kxtest::Take;

namespace {

class NmeaSentenceTest : public ::testing::Test {
 protected:
  void TearDown() override { NmeaSentence_Delete(s); }
  void Set(const char16_t* text) { NmeaSentence_SetSentence(s, text); }
  std::string Text() {
    BSTR out = nullptr;
    NmeaSentence_GetSentence(s, &out);
    return Take(out);
  }
  std::string Field(short index) {
    BSTR out = nullptr;
    NmeaSentence_Fields(s, index, &out);
    return Take(out);
  }
  std::string Command(bool full = false) {
    BSTR out = nullptr;
    (full ? NmeaSentence_GetFullCommand : NmeaSentence_GetCommand)(s, &out);
    return Take(out);
  }
  KxNmeaSentence s = NmeaSentence_New();
};

TEST_F(NmeaSentenceTest, FieldsAreNumberedFromOneAndEmptyOnesKept) {
  Set(u"$GPGLL,1,,3*4A");
  EXPECT_EQ(NmeaSentence_GetFieldCount(s), 3);
  EXPECT_EQ(Field(1), "1");
  EXPECT_EQ(Field(2), "");
  EXPECT_EQ(Field(3), "3");
  EXPECT_EQ(Field(4), "");  // beyond the count: an empty text all the same
  EXPECT_EQ(Command(), "GLL");
  EXPECT_EQ(Command(true), "GPGLL");
  EXPECT_EQ(Text(), "$GPGLL,1,,3*4A");  // not dirty: the text as it was set
}

TEST_F(NmeaSentenceTest, ACommandAloneHasNoFields) {
  Set(u"$GPGGA");
  EXPECT_EQ(Command(), "GGA");
  EXPECT_EQ(NmeaSentence_GetFieldCount(s), 0);
  Set(u"$GPGG");  // too short: empty, without an error
  EXPECT_EQ(Command(), "");
  EXPECT_EQ(Text(), "");
  EXPECT_EQ(Failure(NmeaSentence_GetErrHandle(s)), "0");
}

TEST_F(NmeaSentenceTest, SettingAFieldRebuildsTextAndChecksum) {
  Set(u"$GPGLL,1,2*00");
  NmeaSentence_SetField(s, 5, u"X");
  EXPECT_EQ(NmeaSentence_GetFieldCount(s), 5);
  EXPECT_EQ(Text(), "$GPGLL,1,2,,,X*27");
  NmeaSentence_SetField(s, 1, u"abc");
  EXPECT_EQ(Text(), "$GPGLL,abc,2,,,X*76");
}

TEST_F(NmeaSentenceTest, TheCommandChangesAndTheFieldsStay) {
  Set(u"$GPGGA,7,8*00");
  NmeaSentence_SetCommand(s, u"GLL");
  EXPECT_EQ(Command(true), "GPGLL");
  EXPECT_EQ(Field(2), "8");
  NmeaSentence_SetFullCommand(s, u"GNRMC");
  EXPECT_EQ(Command(), "RMC");
  EXPECT_EQ(Text(), "$GNRMC,7,8*5A");
  NmeaSentence_SetCommand(s, u"GPGG");
  EXPECT_EQ(Failure(NmeaSentence_GetErrHandle(s)), "10003 Command must be 3 or 5 characters long");
  NmeaSentence_SetCommand(s, nullptr);  // a String of length 0 reaches the length test
  EXPECT_EQ(Failure(NmeaSentence_GetErrHandle(s)), "10003 Command must be 3 or 5 characters long");
  EXPECT_EQ(Command(true), "GNRMC");
}

// A command comes only from a text that was set or from SetCommand, never from the text
// that the sentence built for itself.
TEST_F(NmeaSentenceTest, ASentenceMadeWithoutACommandHasNone) {
  NmeaSentence_SetField(s, 1, u"x");
  EXPECT_EQ(Text(), "$,x*54");
  EXPECT_EQ(Command(), "");
  EXPECT_EQ(Command(true), "");
  NmeaSentence_SetField(s, 2, u"y");
  EXPECT_EQ(Text(), "$,x,y*01");
  NmeaSentence_SetCommand(s, u"gll");
  EXPECT_EQ(Text(), "$GPgll,x,y*71");
  EXPECT_EQ(Command(), "gll");
  Set(u"$GPGLL,1,2*00");
  NmeaSentence_SetField(s, 3, u"3");
  EXPECT_EQ(Text(), "$GPGLL,1,2,3*4C");  // a text that was set keeps its command
  EXPECT_EQ(Command(), "GLL");
  EXPECT_EQ(Command(true), "GPGLL");
}

TEST_F(NmeaSentenceTest, AFullBufferGoesWithoutChecksum) {
  std::u16string longField(300, u'9');
  Set(u"$GPXXX,1*00");
  NmeaSentence_SetField(s, 1, longField.c_str());
  const std::string text = Text();
  EXPECT_EQ(text.size(), 255u);
  EXPECT_EQ(text.find('*'), std::string::npos);
}

}  // namespace
