// The snapshot objects made from sentences: fixes, movements, qualities, satellites.
#include <gtest/gtest.h>

#include "frame/Ref.h"
#include "gps/GpsFix.h"
#include "gps/Movement.h"
#include "gps/Quality.h"
#include "gps/Satellites.h"
#include "gps/SpeedUnit.h"

namespace kx {
namespace {

Ref<NmeaSentence> Sentence(const char* text) {
  Ref<NmeaSentence> s(new NmeaSentence());
  s->SetSentence(Ref<String>(new String(text)).get());
  return s;
}

const char* kGga = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
const char* kRmc = "$GPRMC,123520,A,4807.040,N,01131.002,E,022.4,084.4,230394,003.1,W*6A";

TEST(GpsFix, AGgaBeforeAnyRmcHasNoDate) {
  GpsFix fix(Sentence(kGga).get(), 1, nullptr, nullptr);
  EXPECT_EQ(fix.GetFixType(), GpsFix::kFix3D);
  Ref<DateTime> when(fix.GetDateTime());
  EXPECT_EQ(when->GetYear(), 0);
  EXPECT_EQ(when->GetDay(), 0);
  EXPECT_EQ(when->GetHour(), 12);
  GpsFix invalid(Sentence("$GPGGA,123519,4807.038,N,01131.000,E,0,00,,,,,,,*00").get(), 1, nullptr,
                 nullptr);
  EXPECT_EQ(invalid.GetFixType(), GpsFix::kNoFix);
}

TEST(GpsFix, AnRmcTakesTheAltitudesOfTheLastGga) {
  GpsFix gga(Sentence(kGga).get(), 1, nullptr, nullptr);
  Ref<Position> last(gga.GetPosition());
  GpsFix withGga(Sentence(kRmc).get(), 1, last.get(), nullptr);
  EXPECT_EQ(withGga.GetFixType(), GpsFix::kFix3D);
  Ref<Position> p(withGga.GetPosition());
  EXPECT_EQ(p->GetAltitude(0), 545.4);
  EXPECT_NEAR(p->GetAltitude(1), 592.3, 1e-9);
  GpsFix alone(Sentence(kRmc).get(), 1, nullptr, nullptr);
  EXPECT_EQ(alone.GetFixType(), GpsFix::kFix2D);
  Ref<DateTime> when(alone.GetDateTime());
  EXPECT_EQ(when->GetYear(), 1994);
  GpsFix invalid(Sentence("$GPRMC,1,V,4807.040,N,01131.002,E,,,230394,,*00").get(), 1, last.get(),
                 nullptr);
  EXPECT_EQ(invalid.GetFixType(), GpsFix::kNoFix);
  Ref<Position> copy(withGga.GetPositionCopy());
  copy->SetLatitudeDecDeg(0);  // the application's copy: the fix keeps its own
  EXPECT_NE(Ref<Position>(withGga.GetPosition())->GetLatitudeRads(), 0.0);
}

TEST(GpsFix, AGllTakesTheDateOfTheFixBefore) {
  Ref<DateTime> last(new DateTime(2005, 3, 23, 1, 1, 1, 0));
  GpsFix gll(Sentence("$GPGLL,4916.45,N,12311.12,W,225444.5,A*00").get(), 1, nullptr, last.get());
  EXPECT_EQ(gll.GetFixType(), GpsFix::kFix2D);
  Ref<DateTime> when(gll.GetDateTime());
  EXPECT_EQ(when->GetYear(), 2005);
  EXPECT_EQ(when->GetDay(), 23);
  EXPECT_EQ(when->GetHour(), 22);
  EXPECT_EQ(when->GetMilliSecond(), 500);
  GpsFix other(Sentence("$GPVTG,1,T,,M,2,N,3,K*00").get(), 1, nullptr, nullptr);
  EXPECT_EQ(other.GetFixType(), GpsFix::kNoFix);
  EXPECT_FALSE(Ref<Position>(other.GetPosition()));
}

TEST(Movement, FromRmcOrVtgAndUnknownUnitsRefused) {
  Movement m(Sentence(kRmc).get());
  EXPECT_TRUE(m.GetValid());
  EXPECT_EQ(m.GetSpeed(SpeedUnit::kKnots), 22.4);
  EXPECT_EQ(m.GetHeading(), 84.4);
  EXPECT_EQ(m.GetMagneticVariation(), -3.1);
  EXPECT_EQ(m.GetSpeed(4), 0.0);
  EXPECT_EQ(m.Error().GetNumber(), 10003);
  EXPECT_STREQ(m.Error().GetText(), "Invalid parameter!");
  Movement vtg(Sentence("$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*48").get());
  EXPECT_EQ(vtg.GetSpeed(SpeedUnit::kKnots), 5.5);
  Movement none(Sentence(kGga).get());
  EXPECT_FALSE(none.GetValid());
}

TEST(Quality, ReadsTheDilutionsOfAGsa) {
  Quality q(Sentence("$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39").get());
  EXPECT_EQ(q.GetPDOP(), 2.5);
  EXPECT_EQ(q.GetHDOP(), 1.3);
  EXPECT_EQ(q.GetVDOP(), 2.1);
}

TEST(Satellites, ACompleteCycleWithItsUsedSatellites) {
  Satellites sats;
  EXPECT_FALSE(sats.Update(Sentence("$GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1*00").get()));
  EXPECT_FALSE(
      sats.Update(Sentence("$GPGSV,2,1,06,04,15,270,40,05,01,010,,06,06,292,33,07,,,*00").get()));
  EXPECT_TRUE(sats.Update(Sentence("$GPGSV,2,2,06,08,10,100,20,00,,,,,,,*00").get()));
  ASSERT_EQ(sats.GetCount(), 5);  // 04, 05, 06, 07, 08; padding and 0 passed over
  Ref<Satellite> first(sats.Item(1));
  EXPECT_EQ(first->GetID(), 4);
  EXPECT_TRUE(first->GetUsedForFix());
  EXPECT_EQ(first->GetSNR(), 40);
  Ref<Satellite> second(sats.Item(2));
  EXPECT_EQ(second->GetSNR(), 0);  // empty field
  Ref<Satellite> third(sats.Item(3));
  EXPECT_FALSE(third->GetUsedForFix());
  EXPECT_FALSE(Ref<Satellite>(sats.Item(0)));
  EXPECT_EQ(sats.Error().GetNumber(), 10004);
  EXPECT_STREQ(sats.Error().GetText(), "Index out of bounds");
  EXPECT_FALSE(Ref<Satellite>(sats.Item(6)));
}

TEST(Satellites, ABrokenCycleIsThrownAwayWhole) {
  Satellites sats;
  EXPECT_FALSE(sats.Update(Sentence("$GPGSV,3,2,09,10,1,2,3*00").get()));  // starts midway
  EXPECT_EQ(sats.GetCount(), 0);
  EXPECT_FALSE(sats.Update(Sentence("$GPGSV,3,1,09,10,1,2,3*00").get()));
  EXPECT_EQ(sats.GetCount(), 1);
  EXPECT_FALSE(sats.Update(Sentence("$GPGSV,3,3,09,11,1,2,3*00").get()));  // 2 was lost
  EXPECT_EQ(sats.GetCount(), 0);
  EXPECT_TRUE(sats.Update(Sentence("$GPGSV,1,1,01,12,1,2,3*00").get()));  // one message
  EXPECT_EQ(sats.GetCount(), 1);
}

}  // namespace
}  // namespace kx
