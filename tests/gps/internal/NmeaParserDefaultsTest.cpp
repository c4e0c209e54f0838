// A new engine's settings.
#include <gtest/gtest.h>

#include "frame/Ref.h"
#include "gps/NmeaParser.h"

namespace kx {
namespace {

TEST(NmeaParser, StartsOnAutomaticPortAt4800OnWgs84WithoutIntervals) {
  Ref<NmeaParser> parser(new NmeaParser());
  EXPECT_EQ(parser->GetComPort(), 0);
  EXPECT_EQ(parser->GetBaudRate(), 4800);
  EXPECT_EQ(parser->GetGpsDatum(), 1);
  for (int32_t type = NmeaParser::kFix; type <= NmeaParser::kQuality; ++type)
    EXPECT_EQ(parser->GetEventInterval(type), 0);
  parser->EventInterval(-20, NmeaParser::kQuality);
  EXPECT_EQ(parser->GetEventInterval(NmeaParser::kQuality), -1);
}

}  // namespace
}  // namespace kx
