// The splitter: sentences out of a byte stream, checksums, noise and the ring.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/Ref.h"
#include "gps/SentenceSplitter.h"

namespace kx {
namespace {

// All sentences the splitter finds in the bytes, each as its text.
std::vector<std::string> Split(SentenceSplitter& splitter, const std::string& bytes) {
  splitter.WriteBytes(reinterpret_cast<const uint8_t*>(bytes.data()), int32_t(bytes.size()));
  std::vector<std::string> found;
  while (splitter.FindSentence()) {
    Ref<NmeaSentence> sentence(splitter.GetSentence());
    Ref<String> text(sentence->GetSentence());
    found.push_back(text ? std::string(text->GetText(), size_t(text->GetLength())) : "");
  }
  return found;
}

const std::string kRmc = "$GPRMC,,V,,,,,,,,,,N*53";
const std::string kGll = "$GPGLL,4916.45,N,12311.12,W,225444,A*31";

TEST(SentenceSplitter, FindsSentencesAmongNoise) {
  SentenceSplitter splitter;
  EXPECT_EQ(Split(splitter, "noise\r\n" + kRmc + "\r\n\xff\x00junk" + kGll + "\r\n"),
            (std::vector<std::string>{kRmc, kGll}));
  Ref<NmeaSentence> last(splitter.GetSentence());
  EXPECT_EQ(last->GetType(), NmeaSentence::kGLL);
}

TEST(SentenceSplitter, AnEmptyRmcHasTwelveFields) {
  SentenceSplitter splitter;
  ASSERT_EQ(Split(splitter, kRmc + "\r\n").size(), 1u);
  Ref<NmeaSentence> sentence(splitter.GetSentence());
  EXPECT_EQ(sentence->GetFieldCount(), 12);
  EXPECT_EQ(sentence->GetType(), NmeaSentence::kRMC);
}

TEST(SentenceSplitter, ChecksumsMustBeRightAndInCapitals) {
  SentenceSplitter splitter;
  EXPECT_TRUE(Split(splitter, "$GPRMC,,V,,,,,,,,,,N*52\r\n").empty());
  EXPECT_TRUE(Split(splitter, "$GPGLL,4916.45,N,12311.12,W,225444,A*3a\r\n").empty());
  EXPECT_EQ(Split(splitter, "$GPXXX,1*52\r\n"), (std::vector<std::string>{"$GPXXX,1*52"}));
  Ref<NmeaSentence> unknown(splitter.GetSentence());
  EXPECT_EQ(unknown->GetType(), NmeaSentence::kNone);
}

TEST(SentenceSplitter, AMissingChecksumPassesOnlyWhenNotMandatory) {
  SentenceSplitter splitter;
  EXPECT_TRUE(Split(splitter, "$GPGLL,1,2\r\n").empty());
  splitter.SetChecksumMandatory(false);
  EXPECT_EQ(Split(splitter, "$GPGLL,1,2\r\n"), (std::vector<std::string>{"$GPGLL,1,2"}));
}

TEST(SentenceSplitter, ABrokenSentenceGivesWayToTheNext) {
  SentenceSplitter splitter;
  EXPECT_EQ(Split(splitter, "$GPGG" + kGll + "\r\n"), (std::vector<std::string>{kGll}));
  EXPECT_TRUE(Split(splitter, "$GPGLL,1\n$GPGLL,2\n").empty());  // LF alone ends nothing
}

TEST(SentenceSplitter, ASentenceAcrossWritesIsFoundWhenComplete) {
  SentenceSplitter splitter;
  EXPECT_TRUE(Split(splitter, kGll.substr(0, 10)).empty());
  EXPECT_TRUE(Split(splitter, kGll.substr(10) + "\r").empty());
  EXPECT_FALSE(splitter.WriteString("x"));
  EXPECT_EQ(Split(splitter, "\n" + kRmc + "\r\n"), (std::vector<std::string>{kRmc}));
  SentenceSplitter second;
  Split(second, kGll + "\r");
  EXPECT_TRUE(second.WriteString("\n"));
  EXPECT_TRUE(second.FindSentence());
}

TEST(SentenceSplitter, TheRingWrapsAndResynchronises) {
  SentenceSplitter splitter;
  std::vector<std::string> found;
  for (int i = 0; i < 300; ++i) {  // far more than the ring holds, a sentence at a time
    const auto some = Split(splitter, kGll + "\r\n");
    found.insert(found.end(), some.begin(), some.end());
  }
  EXPECT_EQ(found.size(), 300u);
  EXPECT_TRUE(Split(splitter, "$" + std::string(700, 'A')).empty());  // overwrites it all
  EXPECT_EQ(Split(splitter, "\r\n" + kRmc + "\r\n"), (std::vector<std::string>{kRmc}));
}

}  // namespace
}  // namespace kx
