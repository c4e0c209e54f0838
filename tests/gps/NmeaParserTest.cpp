// The GPS engine through its exported functions: text by hand, events by window message,
// by queue and by polling, the status, and the settings' refusals.
#include <gtest/gtest.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "KestrixCE.h"
#include "support/ApiText.h"
#include "support/EventWindow.h"
#include "support/TempDirectory.h"

using kxtest::EventWindow;
using kxtest::Failure;

namespace {

const char16_t* kGga = u"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";

// Builds a sentence with its checksum and CR LF.
std::u16string Line(const std::string& body) {
  unsigned sum = 0;
  for (char c : body) sum ^= static_cast<unsigned char>(c);
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
  const std::string text = "$" + body + tail;
  return std::u16string(text.begin(), text.end());
}

const std::u16string kRmc =
    Line("GPRMC,123520,A,4807.040,N,01131.002,E,022.4,084.4,230394,003.1,W");

class NmeaParserTest : public ::testing::Test {
 protected:
  void TearDown() override { NmeaParser_Delete(parser); }
  std::string Error() { return Failure(NmeaParser_GetErrHandle(parser)); }
  KxNmeaParser parser = NmeaParser_New();
};

TEST_F(NmeaParserTest, WindowEventsComeInTheirOrder) {
  EventWindow window;
  NmeaParser_SetCallbackHWND(parser, window.Handle());
  NmeaParser_Parse(parser, kGga);
  EXPECT_EQ(window.Drain(), (std::vector<int>{9, 5, 1}));  // valid fix changed first
  NmeaParser_Parse(parser, kRmc.c_str());
  EXPECT_EQ(window.Drain(), (std::vector<int>{5, 7, 1}));
  NmeaParser_Parse(parser, u"$GPGGA,123521,4807.038,N,01131.000,E,0,00,,,,,,,*");
  EXPECT_TRUE(window.Drain().empty());  // no LF yet: waits in the hand parser
  NmeaParser_Parse(parser, u"00\r\n");  // a bad checksum: dropped
  NmeaParser_Parse(parser, Line("GPGGA,123522,4807.038,N,01131.000,E,0,00,,,,,,,").c_str());
  EXPECT_EQ(window.Drain(), (std::vector<int>{9, 1}));  // the fix is lost
}

TEST_F(NmeaParserTest, AFixCarriesItsPositionAndTheLastGgaAltitude) {
  NmeaParser_SetNoEvents(parser, 1);
  NmeaParser_Parse(parser, kGga);
  NmeaParser_Parse(parser, kRmc.c_str());
  KxGpsFix fix = NmeaParser_GetGpsFix(parser, 0, 0);
  ASSERT_NE(fix, nullptr);
  EXPECT_EQ(GpsFix_GetFixType(fix), 3);
  EXPECT_EQ(GpsFix_GetYear(fix), 1994);
  EXPECT_EQ(GpsFix_GetSecond(fix), 20);
  KxPosition position = GpsFix_GetPosition(fix);
  double altitude = 0, latitude = 0;
  Position_GetAltitude(position, 0, &altitude);
  Position_GetLatitudeDecDeg(position, &latitude);
  EXPECT_EQ(altitude, 545.4);
  EXPECT_NEAR(latitude, 48 + 7.040 / 60, 1e-12);
  Position_Delete(position);
  GpsFix_Delete(fix);
  KxMovement movement = NmeaParser_GetMovement(parser, 0);
  double speed = 0;
  Movement_GetSpeed(movement, 0, &speed);
  EXPECT_EQ(speed, 22.4);
  Movement_GetSpeed(movement, 4, &speed);
  EXPECT_EQ(Failure(Movement_GetErrHandle(movement)), "10003 Invalid parameter!");
  Movement_Delete(movement);
  KxComStatus status = NmeaParser_GetComStatus(parser);
  EXPECT_EQ(ComStatus_GetValidFix(status), 1);
  EXPECT_EQ(ComStatus_GetValidNmea(status), 0);  // the engine loop's, not the hand parser's
  ComStatus_Delete(status);
}

TEST_F(NmeaParserTest, IntervalsCountSecondsOfGpsTime) {
  EventWindow window;
  NmeaParser_SetCallbackHWND(parser, window.Handle());
  NmeaParser_EventInterval(parser, 5000, 5);
  NmeaParser_EventInterval(parser, -1, 7);
  int fixes = 0;
  for (int second = 0; second < 10; ++second) {
    char body[96];
    std::snprintf(body, sizeof body, "GPRMC,1200%02d,A,4807.040,N,01131.002,E,022.4,084.4,230394,,",
                  second);
    NmeaParser_Parse(parser, Line(body).c_str());
    for (int type : window.Drain()) {
      fixes += type == 5;
      EXPECT_NE(type, 7);  // movements turned off
    }
  }
  EXPECT_EQ(fixes, 2);  // at 0 and at 5 seconds
}

TEST_F(NmeaParserTest, AFixTurnedOffChangesNothing) {
  EventWindow window;
  NmeaParser_SetCallbackHWND(parser, window.Handle());
  NmeaParser_EventInterval(parser, -1, 5);
  NmeaParser_Parse(parser, kGga);
  EXPECT_EQ(window.Drain(), (std::vector<int>{1}));
  KxComStatus status = NmeaParser_GetComStatus(parser);
  EXPECT_EQ(ComStatus_GetValidFix(status), 0);
  ComStatus_Delete(status);
}

TEST_F(NmeaParserTest, ASatelliteCycleIsOneEventAtItsEnd) {
  EventWindow window;
  NmeaParser_SetCallbackHWND(parser, window.Handle());
  NmeaParser_Parse(parser,
                   Line("GPGSV,3,1,09,01,10,100,30,02,20,200,31,03,30,300,32,04,,,").c_str());
  NmeaParser_Parse(parser,
                   Line("GPGSV,3,2,09,05,10,100,30,06,20,200,31,07,30,300,32,08,,,").c_str());
  EXPECT_EQ(window.Drain(), (std::vector<int>{1, 1}));
  NmeaParser_Parse(parser, Line("GPGSV,3,3,09,09,10,100,30").c_str());
  EXPECT_EQ(window.Drain(), (std::vector<int>{6, 1}));
}

TEST_F(NmeaParserTest, TheQueueDeliversInOrderAndObjectsOutliveClose) {
  NmeaParser_SetCallbackHWND(parser, nullptr);
  NmeaParser_Parse(parser, kRmc.c_str());
  std::vector<int> types;
  KxGpsFix fix = nullptr;
  for (int i = 0; i < 4; ++i) {
    int type = 0;
    void* object = NmeaParser_GetEventData(parser, &type);
    ASSERT_NE(object, nullptr);
    types.push_back(type);
    if (type == KX_EVENT_FIX)
      fix = static_cast<KxGpsFix>(object);
    else
      EventWindow::Release(type, object);
  }
  EXPECT_EQ(types, (std::vector<int>{9, 5, 7, 1}));
  NmeaParser_Close(parser);
  EXPECT_EQ(GpsFix_GetFixType(fix), 2);  // still the application's
  GpsFix_Delete(fix);
  int type = -1;
  EXPECT_EQ(NmeaParser_GetEventData(parser, &type), nullptr);  // closed: at once
  EXPECT_EQ(type, 0);
}

TEST_F(NmeaParserTest, AWaitingReaderIsReleasedByClose) {
  NmeaParser_SetCallbackHWND(parser, nullptr);
  void* got = reinterpret_cast<void*>(1);
  std::thread reader([&] {
    int type = 0;
    got = NmeaParser_GetEventData(parser, &type);
  });
  NmeaParser_Close(parser);
  reader.join();
  EXPECT_EQ(got, nullptr);
}

TEST_F(NmeaParserTest, PollingWaitsForNews) {
  KxGpsFix none = NmeaParser_GetGpsFix(parser, 0, 0);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(Error(), "10006 NoEvents must be set!");
  NmeaParser_SetNoEvents(parser, 1);
  // Only a fix parsed after the waiter exists wakes it: the feeder goes on until then,
  // however late this thread comes to wait.
  std::atomic<bool> woken{false};
  std::thread feeder([this, &woken] {
    for (int i = 0; i < 100000 && !woken; ++i) NmeaParser_Parse(parser, kGga);
  });
  KxGpsFix fix = NmeaParser_GetGpsFix(parser, 10000, 3);
  woken = true;
  feeder.join();
  ASSERT_NE(fix, nullptr);
  EXPECT_EQ(GpsFix_GetFixType(fix), 3);
  GpsFix_Delete(fix);
  EXPECT_EQ(NmeaParser_GetQuality(parser, 1), nullptr);  // no GSA: a time-out
}

// An engine with nothing to do sleeps in its waits: searching ports that stay silent, the
// process spends a small share of a core however slow the build (a loop that polls would
// spend the whole half second). kx_bench_live measures the share.
TEST_F(NmeaParserTest, AnIdleEngineSleeps) {
  kxtest::PrivateRegistry registry;  // no ports at all
  NmeaParser_SetCallbackHWND(parser, nullptr);
  NmeaParser_SetPortEnabled(parser, 1);
  auto cpu = [] {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;  // milliseconds
  };
  const double before = cpu();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_LT(cpu() - before, 100.0);
  NmeaParser_SetPortEnabled(parser, 0);
}

// Receivers and applications write the command in either case.
TEST_F(NmeaParserTest, ALowerCaseCommandGivesItsFix) {
  EventWindow window;
  NmeaParser_SetCallbackHWND(parser, window.Handle());
  NmeaParser_Parse(parser,
                   Line("gpgga,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,").c_str());
  EXPECT_EQ(window.Drain(), (std::vector<int>{9, 5, 1}));
  NmeaParser_Parse(parser,
                   Line("GPgga,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,").c_str());
  EXPECT_EQ(window.Drain(), (std::vector<int>{5, 1}));
  NmeaParser_Parse(parser,
                   Line("GPrMc,123521,A,4807.040,N,01131.002,E,022.4,084.4,230394,,").c_str());
  EXPECT_EQ(window.Drain(), (std::vector<int>{5, 7, 1}));
}

// A whole buffer handed over at once: every complete sentence comes out, also behind an
// unfinished sentence; one longer than the ring is dropped and the next ones are found.
TEST_F(NmeaParserTest, ATextLongerThanTheRingKeepsEverySentence) {
  EventWindow window;
  NmeaParser_SetCallbackHWND(parser, window.Handle());
  auto sentences = [](int count) {
    std::u16string text;
    for (int second = 0; second < count; ++second)
      text += Line("GPGGA,1200" + std::to_string(10 + second) +
                   ",4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
    return text;
  };
  auto sentencesOut = [&] {
    const std::vector<int> types = window.Drain();
    return std::count(types.begin(), types.end(), 1);
  };
  ASSERT_GT(sentences(14).size(), 900u);
  NmeaParser_Parse(parser, sentences(14).c_str());
  EXPECT_EQ(sentencesOut(), 14);
  NmeaParser_Parse(parser, (u"$GPGGA," + std::u16string(500, u'7') + sentences(14)).c_str());
  EXPECT_EQ(sentencesOut(), 14);
  NmeaParser_Parse(parser, (u"$GPGGA," + std::u16string(600, u'7') + u"*00\r\n").c_str());
  NmeaParser_Parse(parser, sentences(3).c_str());
  EXPECT_EQ(sentencesOut(), 3);
}

TEST_F(NmeaParserTest, SettingsAndTheirRefusals) {
  NmeaParser_SetGpsDatum(parser, 0);
  EXPECT_EQ(Error(), "10003 Unknown datum!");
  NmeaParser_SetGpsDatum(parser, 29);
  EXPECT_EQ(Error(), "10003 Unknown datum!");
  NmeaParser_SetGpsDatum(parser, 28);
  EXPECT_EQ(Error(), "0");
  NmeaParser_EventInterval(parser, 1000, 9);
  EXPECT_EQ(Error(), "10003 Unknown event type!");
  NmeaParser_WriteData(parser, u"$PX", 3);
  EXPECT_EQ(Error(), "10006 Port must be enabled!");

  NmeaParser_SetPortEnabled(parser, 1);  // port 0, 4800: automatic, no error
  EXPECT_EQ(Error(), "0");
  NmeaParser_SetComPort(parser, 3);
  EXPECT_EQ(Error(), "10006 Port must not be enabled!");
  NmeaParser_SetNoEvents(parser, 1);
  EXPECT_EQ(Error(), "10006 Port must not be enabled!");
  NmeaParser_SetBaudRate(parser, 9600);
  EXPECT_EQ(Error(), "10006 Autodetect mode not allowed");
  NmeaParser_Parse(parser, kGga);
  EXPECT_EQ(Error(), "10006 Port must not be enabled!");
  NmeaParser_WriteData(parser, u"$PX", 3);
  EXPECT_EQ(Error(), "10006 Autodetect mode not allowed");
  NmeaParser_SetPortEnabled(parser, 0);
  NmeaParser_SetComPort(parser, 3);
  EXPECT_EQ(Error(), "0");
  KxComStatus status = NmeaParser_GetComStatus(parser);
  EXPECT_EQ(ComStatus_GetComPort(status), 0);
  EXPECT_EQ(ComStatus_GetBaudRate(status), 0);
  ComStatus_Delete(status);
}

}  // namespace
