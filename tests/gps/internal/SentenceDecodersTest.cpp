// The four sentence classes: fields to values, values to sentences.
#include <gtest/gtest.h>

#include <string>

#include "frame/Ref.h"
#include "gps/SentenceGGA.h"
#include "gps/SentenceGLL.h"
#include "gps/SentenceRMC.h"
#include "gps/SentenceVTG.h"
#include "gps/SpeedUnit.h"

namespace kx {
namespace {

Ref<NmeaSentence> Sentence(const char* text) {
  Ref<NmeaSentence> s(new NmeaSentence());
  s->SetSentence(Ref<String>(new String(text)).get());
  return s;
}

std::string TextOf(DecodedSentence& decoded) {
  Ref<NmeaSentence> s(decoded.ToSentence());
  Ref<String> text(s->GetSentence());
  return text->GetText();
}

TEST(SentenceGGA, ReadsTheClassicExample) {
  auto s = Sentence("$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47");
  SentenceGGA gga(s.get(), 1);
  EXPECT_TRUE(gga.GetValid());
  EXPECT_EQ(gga.GetSatellites(), 8);
  EXPECT_EQ(gga.GetHDOP(), 0.9);
  Ref<DateTime> time(gga.GetTime());
  EXPECT_EQ(time->GetHour() * 10000 + time->GetMinute() * 100 + time->GetSecond(), 123519);
  EXPECT_EQ(time->GetYear(), 0);
  Ref<Position> p(gga.GetPosition());
  EXPECT_NEAR(p->GetLatitudeDecDeg(), 48 + 7.038 / 60, 1e-12);
  EXPECT_NEAR(p->GetLongitudeDecDeg(), 11 + 31.0 / 60, 1e-12);
  EXPECT_EQ(p->GetAltitude(0), 545.4);
  EXPECT_NEAR(p->GetAltitude(1), 592.3, 1e-9);
  EXPECT_EQ(TextOf(gga), "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47");
}

TEST(SentenceGGA, QualityZeroIsInvalidAndAnEmptyQualityValid) {
  SentenceGGA zero(Sentence("$GPGGA,1,2,N,3,E,0,0,,,,,,,*00").get(), 1);
  EXPECT_FALSE(zero.GetValid());
  SentenceGGA empty(Sentence("$GPGGA,1,2,N,3,E,,0,,,,,,,*00").get(), 1);
  EXPECT_TRUE(empty.GetValid());
  SentenceGGA other(Sentence("$GPRMC,1,2,N,3,E,,0*00").get(), 1);  // another type: ignored
  EXPECT_FALSE(Ref<Position>(other.GetPosition()));
}

TEST(SentenceGGA, ComposesFromValues) {
  SentenceGGA gga;
  Ref<Position> p(new Position());
  p->SetLatitudeDecDeg(-33.5);
  p->SetLongitudeDecDeg(151.25);
  p->SetAltitude(20, 0);
  p->SetAltitude(42.5, 1);
  gga.SetPosition(p.get());
  gga.SetTime(Ref<DateTime>(new DateTime(0, 0, 0, 7, 8, 9, 0)).get());
  gga.SetValid(true);
  gga.SetSatellites(7);
  gga.SetHDOP(1.25);
  // The NMEA angle form rounds its last digit up.
  EXPECT_EQ(TextOf(gga), "$GPGGA,070809,3330.00001,S,15115.00001,E,1,7,1.2,20.0,M,22.5,M,,*58");
}

TEST(SentenceRMC, ReadsFieldsWhateverTheStatus) {
  auto s = Sentence("$GPRMC,123519.123,V,4807.038,N,01131.000,W,022.4,084.4,230394,003.1,W*6A");
  SentenceRMC rmc(s.get(), 1);
  EXPECT_FALSE(rmc.GetValid());
  EXPECT_EQ(rmc.GetSpeed(SpeedUnit::kKnots), 22.4);
  EXPECT_NEAR(rmc.GetSpeed(SpeedUnit::kKilometresPerHour), 22.4 * 1.85199631054099, 1e-12);
  EXPECT_EQ(rmc.GetCourse(), 84.4);
  EXPECT_EQ(rmc.GetMagneticVariation(), -3.1);
  Ref<DateTime> t(rmc.GetDateTime());
  EXPECT_EQ(t->GetYear(), 1994);
  EXPECT_EQ(t->GetMonth(), 3);
  EXPECT_EQ(t->GetDay(), 23);
  EXPECT_EQ(t->GetMilliSecond(), 123);
  Ref<Position> p(rmc.GetPosition());
  EXPECT_LT(p->GetLongitudeRads(), 0);
}

TEST(SentenceRMC, ACourseThatWouldRoundTo360IsWrittenAsZero) {
  SentenceRMC rmc;
  rmc.SetDateTime(Ref<DateTime>(new DateTime(2005, 3, 23, 1, 2, 3, 0)).get());
  rmc.SetCourse(359.96);
  rmc.SetSpeed(1, SpeedUnit::kMetresPerSecond);
  rmc.SetMagneticVariation(-3.1);
  rmc.SetValid(true);
  EXPECT_EQ(TextOf(rmc), "$GPRMC,010203,A,0000.00000,N,00000.00000,E,1.94,0.0,230305,3.1,W*5D");
  rmc.SetVelocity(-1, 0);  // due west
  EXPECT_EQ(rmc.GetCourse(), 270.0);
  rmc.SetVelocity(0, 0);
  EXPECT_EQ(rmc.GetCourse(), 0.0);
}

TEST(SentenceVTG, AMissingMagneticCourseLeavesTheVariationAtZero) {
  SentenceVTG vtg(Sentence("$GPVTG,054.7,T,,M,005.5,N,010.2,K*48").get());
  EXPECT_TRUE(vtg.GetValid());
  EXPECT_EQ(vtg.GetCourse(), 54.7);
  EXPECT_EQ(vtg.GetMagneticVariation(), 0.0);
  SentenceVTG magnetic(Sentence("$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*48").get());
  EXPECT_NEAR(magnetic.GetMagneticVariation(), 20.3, 1e-12);
  magnetic.SetSpeed(10, SpeedUnit::kKnots);
  EXPECT_EQ(TextOf(magnetic), "$GPVTG,54.7,T,34.4,M,10.00,N,18.52,K*44");
}

TEST(SentenceGLL, TheOldFormWithoutStatusIsInvalid) {
  SentenceGLL old(Sentence("$GPGLL,4916.45,N,12311.12,W,225444*1D").get(), 1);
  EXPECT_FALSE(old.GetValid());
  SentenceGLL current(Sentence("$GPGLL,4916.45,N,12311.12,W,225444,A*31").get(), 1);
  EXPECT_TRUE(current.GetValid());
  Ref<DateTime> t(current.GetTime());
  EXPECT_EQ(t->GetHour(), 22);
  Ref<Position> copy(current.GetPositionCopy());
  Ref<Position> own(current.GetPosition());
  EXPECT_NE(copy.get(), own.get());
  EXPECT_EQ(copy->GetLatitudeRads(), own->GetLatitudeRads());
}

}  // namespace
}  // namespace kx
