// Position through its exported functions: forms of an angle, states, datum and grid.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <string>
#include <thread>

#include "KestrixCE.h"
#include "support/ApiText.h"

using kxtest::Failure;
using kxtest::Take;

namespace {

constexpr double kPi = 3.141592653589793;

class PositionTest : public ::testing::Test {
 protected:
  void TearDown() override { Position_Delete(p); }

  std::string Error() { return Failure(Position_GetErrHandle(p)); }
  double Lat() {
    double v = -999;
    Position_GetLatitudeDecDeg(p, &v);
    return v;
  }
  double Lon() {
    double v = -999;
    Position_GetLongitudeDecDeg(p, &v);
    return v;
  }
  void SetLat(double degrees) { Position_SetLatitudeDecDeg(p, &degrees); }
  void SetLon(double degrees) { Position_SetLongitudeDecDeg(p, &degrees); }
  void SetLatDMS(double d, double m, double s, const char16_t* hemisphere) {
    Position_SetLatitudeDMS(p, &d, &m, &s, hemisphere);
  }
  std::string LatText(short format) {
    BSTR text = nullptr;
    Position_GetLatitudeString(p, &text, format);
    return Take(text);
  }
  std::string LonText(short format) {
    BSTR text = nullptr;
    Position_GetLongitudeString(p, &text, format);
    return Take(text);
  }
  std::string Zone() {
    BSTR text = nullptr;
    Position_GetZone(p, &text);
    return Take(text);
  }
  // "d m s H" of the longitude
  std::string LonDMS() {
    short d = -1, m = -1;
    double s = -1;
    BSTR h = nullptr;
    Position_GetLongitudeDMS(p, &d, &m, &s, &h);
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%d %d %.3f ", d, m, s);
    return buffer + Take(h);
  }

  KxPosition p = Position_New();
};

TEST_F(PositionTest, ANewPositionIsZeroNorthEastOnWgs84WithoutGrid) {
  EXPECT_EQ(Lat(), 0.0);
  EXPECT_EQ(LonDMS(), "0 0 0.000 E");
  EXPECT_EQ(LatText(0), "0 0'0.00 N");
  EXPECT_EQ(Position_GetDatum(p), 1);
  EXPECT_EQ(Position_GetGrid(p), 0);
  EXPECT_EQ(Zone(), "");
  EXPECT_EQ(Error(), "0");
}

TEST_F(PositionTest, LatitudeAcceptsThePolesAndRefusesBeyond) {
  const double north = kPi / 2, south = -kPi / 2, beyond = 1.5707963267948968;
  Position_SetLatitudeRads(p, &north);
  EXPECT_EQ(Lat(), 90.0);
  Position_SetLatitudeRads(p, &south);
  EXPECT_EQ(Error(), "0");
  Position_SetLatitudeRads(p, &beyond);
  EXPECT_EQ(Error(), "10003 Invalid latitude. Must be between -PI/2 and PI/2");
  EXPECT_EQ(Lat(), -90.0);  // unchanged
  const double nan = std::nan("");
  Position_SetLatitudeRads(p, &nan);
  EXPECT_EQ(Error(), "10003 Invalid latitude. Must be between -PI/2 and PI/2");
}

TEST_F(PositionTest, DmsLatitudeChecksOnlyTheDegreesAndReadsOnlyCapitalSAsSouth) {
  SetLatDMS(90, 0, 0, u"N");
  EXPECT_EQ(Error(), "0");
  EXPECT_EQ(Lat(), 90.0);
  SetLatDMS(91, 0, 0, u"N");
  EXPECT_EQ(Error(), "10003 Invalid value of Degrees. Must be between 0 and 90!");
  SetLatDMS(-1, 0, 0, u"N");
  EXPECT_EQ(Error(), "10003 Invalid value of Degrees. Must be between 0 and 90!");
  SetLatDMS(89, 120, 0, u"S");  // a sum beyond 90 isn't refused
  EXPECT_EQ(Error(), "0");
  EXPECT_NEAR(Lat(), -91.0, 1e-12);
  SetLatDMS(10, 30, 0, u"s");
  EXPECT_NEAR(Lat(), 10.5, 1e-12);
  SetLatDMS(10, 30, 0, nullptr);
  EXPECT_NEAR(Lat(), 10.5, 1e-12);
}

TEST_F(PositionTest, LongitudeIsNormalisedAndKeepsBothEnds) {
  SetLon(190);
  EXPECT_NEAR(Lon(), -170, 1e-12);
  EXPECT_EQ(LonDMS(), "170 0 0.000 W");
  SetLon(370);
  EXPECT_NEAR(Lon(), 10, 1e-12);
  SetLon(-725);
  EXPECT_NEAR(Lon(), -5, 1e-12);
  for (double end : {kPi, -kPi}) {
    Position_SetLongitudeRads(p, &end);
    double back = 0;
    Position_GetLongitudeRads(p, &back);
    EXPECT_EQ(back, end);
  }
}

TEST_F(PositionTest, SecondsRoundToAThousandthAndCarryIntoMinutesAndDegrees) {
  SetLatDMS(59, 59, 59.9996, u"N");
  short d, m;
  double s;
  BSTR h = nullptr;
  Position_GetLatitudeDMS(p, &d, &m, &s, &h);
  EXPECT_EQ(Take(h), "N");
  EXPECT_EQ(d, 60);
  EXPECT_EQ(m, 0);
  EXPECT_EQ(s, 0.0);
  SetLatDMS(10, 0, 59.999, u"S");
  EXPECT_EQ(LatText(0), "10 1'0.00 S");  // "%.2f" reaches 60: the minute carries
}

// A latitude of 59 59.99999 S from a receiver keeps 59.9994 seconds, whose texts round
// to a whole degree: "6000.00000" and "60 0'0.00 S", never a 60 in minutes or seconds.
TEST(PositionText, ATextWhoseRoundingReachesSixtyCarries) {
  const std::string body = "GPGGA,123519,5959.99999,S,00909.99999,E,1,08,0.9,545.4,M,46.9,M,,";
  unsigned sum = 0;
  for (char c : body) sum ^= static_cast<unsigned char>(c);
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
  const std::string line = "$" + body + tail;
  KxNmeaParser parser = NmeaParser_New();
  NmeaParser_SetNoEvents(parser, 1);
  NmeaParser_Parse(parser, std::u16string(line.begin(), line.end()).c_str());
  KxGpsFix fix = NmeaParser_GetGpsFix(parser, 0, 0);
  ASSERT_NE(fix, nullptr);
  KxPosition p = GpsFix_GetPosition(fix);
  auto text = [p](bool latitude, short format) {
    BSTR t = nullptr;
    (latitude ? Position_GetLatitudeString : Position_GetLongitudeString)(p, &t, format);
    return Take(t);
  };
  EXPECT_EQ(text(true, 1), "6000.00000");
  EXPECT_EQ(text(true, 0), "60 0'0.00 S");
  EXPECT_EQ(text(false, 1), "00910.00000");  // and the minutes keep two digits
  EXPECT_EQ(text(false, 0), "9 10'0.00 E");
  Position_Delete(p);
  GpsFix_Delete(fix);
  NmeaParser_Delete(parser);
}

TEST_F(PositionTest, AngleTextsInDisplayAndNmeaForms) {
  SetLatDMS(59, 18, 7.25, u"N");
  const double d = 18, m = 1, s = 0;
  Position_SetLongitudeDMS(p, &d, &m, &s, u"W");
  EXPECT_EQ(LatText(0), "59 18'7.25 N");
  EXPECT_EQ(LatText(1), "5918.12084");
  EXPECT_EQ(LonText(0), "18 1'0.00 W");
  EXPECT_EQ(LonText(1), "01801.00001");  // the NMEA form rounds the minutes up
  EXPECT_EQ(LonText(2), "<null>");
  EXPECT_EQ(Error(), "10003 Invalid parameter!");
  EXPECT_EQ(LatText(-1), "<null>");
  EXPECT_EQ(Error(), "10003 Invalid parameter!");
}

TEST_F(PositionTest, AltitudeKinds) {
  const double sea = 12.5, ellipsoid = 48.25;
  Position_SetAltitude(p, &sea, 0);
  Position_SetAltitude(p, &ellipsoid, 1);
  Position_SetAltitude(p, &sea, 2);
  EXPECT_EQ(Error(), "10003 Invalid parameter!");
  double v = -1;
  Position_GetAltitude(p, 0, &v);
  EXPECT_EQ(v, sea);
  Position_GetAltitude(p, 1, &v);
  EXPECT_EQ(v, ellipsoid);
  Position_GetAltitude(p, 7, &v);
  EXPECT_EQ(v, 0.0);
  EXPECT_EQ(Error(), "10003 Invalid parameter!");
}

TEST_F(PositionTest, NullValuePointersAreRefusedAndNullOutPointersIgnored) {
  SetLat(45);
  Position_SetLatitudeRads(p, nullptr);
  EXPECT_EQ(Error(), "10003 Invalid parameter!");
  Position_GetLatitudeRads(p, nullptr);
  EXPECT_EQ(Error(), "0");
  Position_GetLatitudeDMS(p, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(Lat(), 45.0);
}

TEST_F(PositionTest, SetDatumOnANewPositionOnlyChangesTheLabel) {
  Position_SetDatum(p, 3);
  SetLat(51.5);
  EXPECT_EQ(Lat(), 51.5);
  EXPECT_EQ(Position_GetDatum(p), 3);
}

TEST_F(PositionTest, AfterAnyReadSetDatumShiftsTheStoredPoint) {
  Position_GetDatum(p);
  Position_SetDatum(p, 3);
  EXPECT_NE(Lat(), 0.0);
  EXPECT_NE(Lon(), 0.0);
}

TEST_F(PositionTest, DatumShiftThereAndBackReturnsThePoint) {
  SetLat(51.5);
  SetLon(-0.12);
  Position_SetDatum(p, 3);
  const double osgbLat = Lat(), osgbLon = Lon();
  EXPECT_GT(std::fabs(osgbLat - 51.5) * 111e3, 10);  // a shift of tens of metres
  EXPECT_LT(std::fabs(osgbLat - 51.5) * 111e3, 200);
  EXPECT_GT(std::fabs(osgbLon + 0.12), 1e-4);
  Position_SetDatum(p, 1);
  EXPECT_NEAR(Lat(), 51.5, 1e-9);
  EXPECT_NEAR(Lon(), -0.12, 1e-9);
}

TEST_F(PositionTest, DatumsWithTheSameEllipsoidAndNoShiftChangeNothingAtAll) {
  Position_SetDatum(p, 11);
  SetLat(-33.86);
  SetLon(151.21);
  const double alt = 25;
  Position_SetAltitude(p, &alt, 1);
  for (short datum : {14, 19, 11}) {
    Position_SetDatum(p, datum);
    EXPECT_EQ(Lat(), -33.86);
    EXPECT_EQ(Lon(), 151.21);
    double back = 0;
    Position_GetAltitude(p, 1, &back);
    EXPECT_EQ(back, alt);
  }
}

TEST_F(PositionTest, FromWgs84ToGrs80OnlyTheEllipsoidMovesThePoint) {
  SetLat(60);
  SetLon(25);
  Position_SetDatum(p, 2);
  double altitude = 0;
  Position_GetAltitude(p, 1, &altitude);
  EXPECT_NE(Lat(), 60.0);
  EXPECT_NEAR(Lat(), 60.0, 1e-9);
  EXPECT_NEAR(Lon(), 25.0, 1e-12);
  EXPECT_LT(std::fabs(altitude), 1e-3);
  EXPECT_NE(altitude, 0.0);
}

TEST_F(PositionTest, DatumAndGridIdsOutsideTheCatalogueAreRefused) {
  Position_SetDatum(p, 0);
  EXPECT_EQ(Error(), "10003 Unknown datum!");
  Position_SetDatum(p, 28);
  EXPECT_EQ(Error(), "10003 Set Position.CustomDatum instead!");
  Position_SetGrid(p, -1);
  EXPECT_EQ(Error(), "10003 Unknown grid!");
  Position_SetGrid(p, 53);
  EXPECT_EQ(Error(), "10003 Unknown grid!");
  Position_SetGrid(p, 52);
  EXPECT_EQ(Error(), "10003 Set Position.CustomGrid instead!");
  EXPECT_EQ(Position_GetDatum(p), 1);
  EXPECT_EQ(Position_GetGrid(p), 0);
}

TEST_F(PositionTest, GridValuesNeedAGridAndStatePlaneNeedsAZone) {
  double easting = -1;
  Position_GetEasting(p, &easting);
  EXPECT_EQ(Error(), "0");  // new: nothing is stale, nothing runs
  SetLat(40);
  Position_GetEasting(p, &easting);
  EXPECT_EQ(Error(), "10003 Grid not set!");
  Position_SetGrid(p, 31);
  Position_GetNorthing(p, &easting);
  EXPECT_EQ(Error(), "10003 Zone must be specified for this grid");
}

TEST_F(PositionTest, EachStatePlaneGridAcceptsOnlyTheKeysOfItsOwnTable) {
  struct Case {
    short grid, zone;
    const char* error;
  };
  const Case cases[] = {
      {30, 2101, "0"}, {31, 2101, "10003 Invalid Zone for this grid!"},
      {31, 1600, "0"}, {30, 1600, "10003 Invalid Zone for this grid!"},
      {31, 2300, "0"}, {30, 5010, "0"},
      {31, 0, "0"},  // the zone it has: nothing to do
  };
  for (const Case& c : cases) {
    Position_SetGrid(p, 0);
    Position_SetGrid(p, c.grid);
    Position_SetZone(p, c.zone);
    EXPECT_EQ(Error(), c.error) << c.grid << "/" << c.zone;
  }
}

TEST_F(PositionTest, ZoneRangesOfTheZonedGrids) {
  struct Case {
    short grid, zone;
    bool accepted;
  };
  const Case cases[] = {{1, 1, true},   {1, 60, true},   {1, 61, false}, {33, -1, false},
                        {29, 10, true}, {29, 11, false}, {48, 2, true},  {48, 3, false}};
  for (const Case& c : cases) {
    Position_SetGrid(p, 0);
    Position_SetGrid(p, c.grid);
    Position_SetZone(p, c.zone);
    EXPECT_EQ(Error(), c.accepted ? "0" : "10003 Invalid Zone for this grid!")
        << c.grid << "/" << c.zone;
  }
}

TEST_F(PositionTest, GridsWithoutZonesIgnoreSetZone) {
  Position_SetGrid(p, 3);
  Position_SetZone(p, 12);
  EXPECT_EQ(Error(), "0");
  EXPECT_EQ(Zone(), "");
}

TEST_F(PositionTest, ZoneTextOfTheZonedGrids) {
  // No value yet: zone 0, and latitude 0 lies in band N.
  for (short grid : {1, 29}) {
    KxPosition fresh = Position_New();
    Position_SetGrid(fresh, grid);
    BSTR text = nullptr;
    Position_GetZone(fresh, &text);
    EXPECT_EQ(Take(text), grid == 1 ? "0N" : "0");
    Position_Delete(fresh);
  }
  Position_SetGrid(p, 31);
  EXPECT_EQ(Zone(), "");
  Position_SetZone(p, 3104);
  EXPECT_EQ(Zone(), "3104");
  Position_SetGrid(p, 0);
  EXPECT_EQ(Zone(), "");
}

TEST_F(PositionTest, UtmBandLettersSkipIAndOAndHaveNoClamp) {
  struct Case {
    double latitude;
    const char* text;
  };
  const Case cases[] = {{-90, "5B"}, {-88.5, "5B"}, {-85, "5C"}, {-80, "5C"}, {-72, "5D"},
                        {-1, "5M"},  {0, "5N"},     {60, "5V"},  {72, "5X"},  {79.9, "5X"},
                        {80, "5Y"},  {88, "5Z"},    {90, "5Z"}};
  Position_SetGrid(p, 1);
  Position_SetZone(p, 5);
  for (const Case& c : cases) {
    SetLat(c.latitude);
    EXPECT_EQ(Zone(), c.text) << c.latitude;
  }
}

TEST_F(PositionTest, AnUnknownAlgorithmIsReportedInBothDirections) {
  KxCustomGrid grid = CustomGrid_New();
  CustomGrid_SetAlgorithm(grid, 7);
  CustomGrid_SetDatum(grid, 1);
  SetLat(10);
  Position_SetCustomGrid(p, grid);
  EXPECT_EQ(Position_GetGrid(p), 52);
  double value = 0;
  Position_GetEasting(p, &value);
  EXPECT_EQ(Error(), "10003 Unknown algorithm for grid projection");
  const double easting = 1000;
  Position_SetEasting(p, &easting);
  Position_GetEasting(p, &value);
  EXPECT_EQ(Error(), "0");  // the written side is never converted
  EXPECT_EQ(value, easting);
  Position_GetLatitudeRads(p, &value);
  EXPECT_EQ(Error(), "10003 Unknown algorithm for grid projection");
  EXPECT_EQ(value, 10 / 180.0 * kPi);   // the old value stands
  Position_GetLatitudeRads(p, &value);  // and the next read tries again
  EXPECT_EQ(Error(), "10003 Unknown algorithm for grid projection");
  CustomGrid_Delete(grid);
}

TEST_F(PositionTest, SameDatumAndSameGrid) {
  KxPosition other = Position_New();
  EXPECT_EQ(Position_IsSameDatum(p, other), 1);
  EXPECT_EQ(Position_IsSameGrid(p, other), 0);  // two positions without grid
  EXPECT_EQ(Position_IsSameDatum(p, nullptr), 0);
  Position_SetGrid(p, 29);
  Position_SetGrid(other, 29);
  Position_SetZone(other, 4);
  EXPECT_EQ(Position_IsSameGrid(p, other), 0);
  Position_MakeSameGrid(p, other);
  EXPECT_EQ(Position_IsSameGrid(p, other), 1);
  Position_SetDatum(other, 3);
  Position_MakeSameDatum(p, other);
  EXPECT_EQ(Position_GetDatum(p), 3);
  EXPECT_EQ(Position_IsSameDatum(p, other), 1);
  Position_Delete(other);
}

TEST_F(PositionTest, ACustomDatumIsNeverTheSameAsACataloguedOne) {
  KxCustomDatum wgs84 = CustomDatum_New();
  const double a = 6378137.0, e2 = 0.006694379990197;
  CustomDatum_SetSemiMajorAxis(wgs84, &a);
  CustomDatum_SetE2(wgs84, &e2);
  KxPosition catalogued = Position_New();
  Position_SetCustomDatum(p, wgs84);
  EXPECT_EQ(Position_IsSameDatum(p, catalogued), 0);
  Position_SetCustomDatum(p, nullptr);
  EXPECT_EQ(Error(), "10003 CustomDatum may not be null.");
  Position_SetCustomGrid(p, nullptr);
  EXPECT_EQ(Error(), "10003 CustomGrid may not be null.");
  Position_Delete(catalogued);
  CustomDatum_Delete(wgs84);
}

TEST_F(PositionTest, ACustomDatumWithHubValuesDoesNotMoveThePoint) {
  KxCustomDatum hub = CustomDatum_New();
  const double a = 6378137.0, e2 = 0.006694379990197;
  CustomDatum_SetSemiMajorAxis(hub, &a);
  CustomDatum_SetE2(hub, &e2);
  SetLat(47.25);
  SetLon(8.5);
  Position_SetCustomDatum(p, hub);
  EXPECT_EQ(Position_GetDatum(p), 28);
  EXPECT_EQ(Lat(), 47.25);
  EXPECT_EQ(Lon(), 8.5);
  CustomDatum_Delete(hub);
}

TEST_F(PositionTest, ACopyHasTheValuesAndItsOwnCustomObjects) {
  KxCustomDatum datum = CustomDatum_New();
  const double a = 6378388.0, e2 = 0.006722670022, dx = -87;
  CustomDatum_SetSemiMajorAxis(datum, &a);
  CustomDatum_SetE2(datum, &e2);
  SetLat(-12.25);
  SetLon(130.5);
  Position_SetCustomDatum(p, datum);
  const double lat = Lat(), lon = Lon();
  KxPosition copy = Position_Copy(p);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(Position_IsSameDatum(copy, p), 1);
  double value = 0;
  Position_GetLatitudeDecDeg(copy, &value);
  EXPECT_EQ(value, lat);
  Position_GetLongitudeDecDeg(copy, &value);
  EXPECT_EQ(value, lon);
  CustomDatum_SetDeltaX(datum, &dx);  // reaches the original only
  EXPECT_EQ(Position_IsSameDatum(copy, p), 0);
  Position_Delete(copy);
  CustomDatum_Delete(datum);
}

// One Position shared by two threads: every operation holds the library's lock.
TEST(PositionThreads, TwoThreadsWriteAndReadOnePosition) {
  KxPosition shared = Position_New();
  auto writer = [shared](double base) {
    for (int i = 0; i < 2000; ++i) {
      const double lat = base + i * 1e-4, lon = -base - i * 1e-4;
      Position_SetLatitudeDecDeg(shared, &lat);
      Position_SetLongitudeDecDeg(shared, &lon);
      BSTR text = nullptr;
      Position_GetLatitudeString(shared, &text, 0);
      SysFreeString(text);
    }
  };
  std::thread a(writer, 10.0), b(writer, 20.0);
  a.join();
  b.join();
  double lat = 0;
  Position_GetLatitudeDecDeg(shared, &lat);
  EXPECT_TRUE(std::fabs(lat - 10.1999) < 1e-9 || std::fabs(lat - 20.1999) < 1e-9) << lat;
  Position_Delete(shared);
}

// Zone texts handed out while another thread reads them: each caller gets a text of its
// own to free, never the one the position keeps.
TEST(PositionThreads, TwoThreadsReadingTheZoneTextEachFreeTheirOwn) {
  KxPosition shared = Position_New();
  const double lat = 60, lon = 15;
  Position_SetGrid(shared, 1);
  Position_SetLatitudeDecDeg(shared, &lat);
  Position_SetLongitudeDecDeg(shared, &lon);
  std::atomic<int> wrong{0};
  auto reader = [&] {
    for (int i = 0; i < 100000; ++i) {
      BSTR text = nullptr;
      Position_GetZone(shared, &text);
      if (Take(text) != "33V") ++wrong;
    }
  };
  std::thread a(reader), b(reader);
  a.join();
  b.join();
  EXPECT_EQ(wrong, 0);
  Position_Delete(shared);
}

}  // namespace
