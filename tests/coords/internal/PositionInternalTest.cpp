// What an application can't reach: the constructor from sentence fields, the revision
// counter, and the exactness of the datum shift's early return.
#include <gtest/gtest.h>

#include <cmath>

#include "coords/Constants.h"
#include "coords/Position.h"
#include "frame/Ref.h"

namespace kx {
namespace {

Ref<String> Text(const char* text) { return Ref<String>(new String(text)); }

TEST(PositionFromSentence, FieldsBecomeRadiansAndKeepTheirSexagesimalParts) {
  Ref<Position> p(new Position(Text("5918.1208").get(), Text("01804.2583").get(), Text("S").get(),
                               Text("West").get(), Text("12.5").get(), Text("24.1").get(), 3));
  EXPECT_EQ(p->GetDatum(), 3);  // taken as it comes, nothing shifted
  const double lat = (59 + 18 / 60.0 + 0.1208 * 60 / 3600) / 180 * kPi;
  EXPECT_NEAR(p->GetLatitudeRads(), -lat, 1e-15);
  EXPECT_NEAR(p->GetLongitudeDecDeg(), -(18 + 4.2583 / 60), 1e-12);
  int16_t d, m;
  double s;
  String* hemisphere = nullptr;
  p->GetLatitudeDMS(d, m, s, hemisphere);
  EXPECT_EQ(d, 59);
  EXPECT_EQ(m, 18);
  EXPECT_NEAR(s, 7.248, 1e-9);  // all digits kept: not rounded to a thousandth
  EXPECT_STREQ(hemisphere->GetText(), "S");
  ReleaseObject(hemisphere);
  EXPECT_EQ(p->GetAltitude(0), 12.5);
  EXPECT_EQ(p->GetAltitude(1), 12.5 + 24.1);
}

TEST(PositionFromSentence, MissingFieldsGiveZeros) {
  Ref<Position> p(new Position(nullptr, nullptr, nullptr, nullptr, Text("7").get(), nullptr, 1));
  EXPECT_EQ(p->GetLatitudeRads(), 0.0);
  EXPECT_EQ(p->GetLongitudeRads(), 0.0);
  EXPECT_EQ(p->GetAltitude(0), 7.0);
  EXPECT_EQ(p->GetAltitude(1), 0.0);  // no separation: no ellipsoid height
}

TEST(PositionRevision, EveryChangeRaisesItAndNoReadDoes) {
  Ref<Position> p(new Position());
  uint32_t revision = p->GetRevision();
  auto raised = [&] {
    const uint32_t now = p->GetRevision();
    const bool changed = now != revision;
    revision = now;
    return changed;
  };
  p->GetLatitudeRads();
  p->GetDatum();
  EXPECT_FALSE(raised());
  p->SetLatitudeDecDeg(10);
  EXPECT_TRUE(raised());
  p->SetLatitudeDecDeg(100);  // refused
  EXPECT_FALSE(raised());
  p->SetAltitude(5, 9);  // refused, yet counted
  EXPECT_TRUE(raised());
  p->SetDatum(1);  // the datum it has
  EXPECT_FALSE(raised());
  p->SetDatum(2);
  EXPECT_TRUE(raised());
  p->SetGrid(3);
  EXPECT_TRUE(raised());
  p->SetZone(Text("5").get());  // ignored by a grid without zones
  EXPECT_FALSE(raised());
  Ref<Position> copy(p->Copy());
  EXPECT_EQ(copy->GetRevision(), 0u);
}

TEST(PositionRevision, AnEqualCustomGridChangesNothing) {
  Ref<Position> p(new Position());
  Ref<CustomGrid> first(new CustomGrid()), second(new CustomGrid());
  p->SetCustomGrid(first.get());
  const uint32_t revision = p->GetRevision();
  p->SetCustomGrid(second.get());
  EXPECT_EQ(p->GetRevision(), revision);
  second->SetFalseEasting(100);
  p->SetCustomGrid(second.get());
  EXPECT_EQ(p->GetRevision(), revision + 1);
}

TEST(DatumShift, BetweenIdenticalDatumsReturnsAtOnceToTheLastBit) {
  DatumGridEngine engine;
  engine.datum = 11;
  engine.latitude = 0.7123456789012345;
  engine.longitude = -2.123456789012345;
  engine.altitudeEllipsoid = 123.456;
  for (int16_t id : {14, 19, 2}) {
    engine.ChangeDatum(id);
    EXPECT_EQ(engine.datum, id);
    EXPECT_EQ(engine.latitude, 0.7123456789012345);
    EXPECT_EQ(engine.longitude, -2.123456789012345);
    EXPECT_EQ(engine.altitudeEllipsoid, 123.456);
  }
  engine.ChangeDatum(28);
  EXPECT_EQ(engine.Error().GetNumber(), 10003);
  EXPECT_STREQ(engine.Error().GetText(), "Unknown datum!");
  EXPECT_EQ(engine.datum, 2);
}

// The geocentric round trip with the inverse of a translation-only shift: an
// independent check of the ellipsoid formulas, which must come back to the nanometre.
TEST(DatumShift, ATranslationOnlyShiftThereAndBackIsExactToTheNanometre) {
  DatumGridEngine engine;
  engine.latitude = 0.9;
  engine.longitude = 0.1;
  engine.altitudeEllipsoid = 50;
  for (int16_t id : {3, 15, 21, 4}) {
    engine.ChangeDatum(id);
    engine.ChangeDatum(1);
    EXPECT_NEAR(engine.latitude, 0.9, 1e-15);
    EXPECT_NEAR(engine.longitude, 0.1, 1e-15);
    EXPECT_NEAR(engine.altitudeEllipsoid, 50, 1e-8);
  }
}

}  // namespace
}  // namespace kx

namespace kx {
namespace {

TEST(PositionRevision, MoveRaisesItEvenForAnUnknownMethod) {
  Ref<Position> p(new Position());
  const uint32_t before = p->GetRevision();
  p->Move(1, 0, 7);
  EXPECT_EQ(p->GetRevision(), before + 1);
  p->Move(1000, 0, 1);  // two setters and the move itself
  EXPECT_EQ(p->GetRevision(), before + 4);
}

}  // namespace
}  // namespace kx
