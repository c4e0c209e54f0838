// The engine reading a receiver at the other end of a simulated COM port, through the
// exported functions: the status as the receiver is found, loses its fix, falls silent and
// comes back; what the application writes reaches the receiver; disabling while a read
// waits.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "KestrixCE.h"
#include "support/ApiText.h"
#include "support/EventWindow.h"
#include "support/TempDirectory.h"
#include "tools/rig/SimulatedComPort.h"
#include "tools/rig/SimulatedReceiver.h"

namespace {

using Clock = std::chrono::steady_clock;

// A sentence with its checksum and CR LF.
std::string Sentence(const std::string& body) {
  unsigned sum = 0;
  for (char c : body) sum ^= static_cast<unsigned char>(c);
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", sum);
  return "$" + body + tail;
}

// A fix each second of GPS time while `fixing`, else satellites in view only: sentences
// go on, fixes stop.
std::string Say(int64_t n, const std::atomic<bool>& fixing) {
  char body[96];
  const int second = int(n % 60);
  if (fixing)
    std::snprintf(body, sizeof body,
                  "GPGGA,1200%02d,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", second);
  else
    std::snprintf(body, sizeof body, "GPGSV,1,1,01,07,45,120,%02d", second);
  return Sentence(body);
}

struct Status {
  bool nmea = false, fix = false;
  int port = 0, baud = 0;
};

class LiveParser : public testing::Test {
 protected:
  LiveParser() : m_receiver(m_com.Line(), 4800, [this](int64_t n) { return Say(n, fixing); }) {}
  ~LiveParser() override { NmeaParser_Delete(parser); }

  void Enable() {
    NmeaParser_SetCallbackHWND(parser, window.Handle());
    NmeaParser_SetComPort(parser, 5);
    NmeaParser_SetBaudRate(parser, 4800);
    NmeaParser_SetPortEnabled(parser, 1);
    ASSERT_EQ(kxtest::Failure(NmeaParser_GetErrHandle(parser)), "0");
  }
  // The status events that reach the window within the time, until one has valid NMEA
  // and valid fix as asked; false when none does.
  bool AwaitStatus(bool nmea, bool fix, int milliseconds) {
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (Clock::now() < end) {
      MSG message;
      while (PeekMessageW(&message, window.Handle(), 0, 0, PM_REMOVE)) {
        const int type = int(message.wParam);
        void* object = reinterpret_cast<void*>(message.lParam);
        if (type == KX_EVENT_STATUS) last = Read(static_cast<KxComStatus>(object));
        kxtest::EventWindow::Release(type, object);
        if (type == KX_EVENT_STATUS && last.nmea == nmea && last.fix == fix) return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }
  static Status Read(KxComStatus status) {
    return {ComStatus_GetValidNmea(status) != 0, ComStatus_GetValidFix(status) != 0,
            ComStatus_GetComPort(status), ComStatus_GetBaudRate(status)};
  }

  kxtest::PrivateRegistry registry;
  kxrig::SimulatedComPort m_com{5};
  std::atomic<bool> fixing{true};
  kxrig::SimulatedReceiver m_receiver;
  kxtest::EventWindow window;
  KxNmeaParser parser = NmeaParser_New();
  Status last;
};

TEST_F(LiveParser, TheStatusFollowsTheReceiver) {
  Enable();
  ASSERT_TRUE(AwaitStatus(true, false, 3000));
  EXPECT_EQ(last.port, 5);
  EXPECT_EQ(last.baud, 4800);
  ASSERT_TRUE(AwaitStatus(true, true, 2000));
  // Sentences without a fix: the fix counts as gone after five seconds, NMEA stays.
  fixing = false;
  const auto noFix = Clock::now();
  ASSERT_TRUE(AwaitStatus(true, false, 7000));
  EXPECT_GE(Clock::now() - noFix, std::chrono::milliseconds(4500));
  // Silence: after four seconds the source is lost and everything is cleared.
  m_receiver.SetMuted(true);
  ASSERT_TRUE(AwaitStatus(false, false, 6000));
  EXPECT_EQ(last.port, 5);
  fixing = true;
  m_receiver.SetMuted(false);
  EXPECT_TRUE(AwaitStatus(true, false, 3000));
  EXPECT_TRUE(AwaitStatus(true, true, 2000));
}

TEST_F(LiveParser, WrittenDataReachesTheReceiver) {
  Enable();
  ASSERT_TRUE(AwaitStatus(true, false, 3000));
  const std::u16string command = u"$PSRF103,00,01,00,01*25\r\n";
  NmeaParser_WriteData(parser, command.c_str(), short(command.size()));
  EXPECT_EQ(m_com.Line().Receive(command.size(), 2000), "$PSRF103,00,01,00,01*25\r\n");
}

// The reader is blocked on a silent line when the application disables the port.
TEST_F(LiveParser, DisablingWhileAReadWaitsReturnsAtOnce) {
  Enable();
  ASSERT_TRUE(AwaitStatus(true, false, 3000));
  m_receiver.SetMuted(true);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const auto start = Clock::now();
  NmeaParser_SetPortEnabled(parser, 0);
  EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(500));
  NmeaParser_SetPortEnabled(parser, 1);  // the port is free again
  EXPECT_EQ(kxtest::Failure(NmeaParser_GetErrHandle(parser)), "0");
}

}  // namespace
