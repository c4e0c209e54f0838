// The engine reading a receiver at the other end of a simulated COM port, through the
// exported functions: the status as the receiver is found, loses its fix, falls silent and
// comes back; what the application writes reaches the receiver; disabling while a read
// waits.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
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

// A line as a terminal program leaves it: 9600 baud, lines edited, CR LF on output.
void MakeCooked(const std::string& path) {
  const int line = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  termios settings{};
  ASSERT_EQ(tcgetattr(line, &settings), 0);
  settings.c_lflag |= ICANON | ISIG;
  settings.c_iflag |= ICRNL;
  settings.c_oflag |= OPOST | ONLCR;
  cfsetspeed(&settings, B9600);
  EXPECT_EQ(tcsetattr(line, TCSANOW, &settings), 0);
  ::close(line);
}

bool SameSettings(const termios& a, const termios& b) {
  return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_cflag == b.c_cflag &&
         a.c_lflag == b.c_lflag && std::equal(a.c_cc, a.c_cc + NCCS, b.c_cc) &&
         cfgetispeed(&a) == cfgetispeed(&b) && cfgetospeed(&a) == cfgetospeed(&b);
}

// A process whose controlling terminal is the line, as a getty's or a shell's is, until
// the object goes.
class TerminalOwner {
 public:
  explicit TerminalOwner(const std::string& path) {
    int ready[2], hold[2];
    if (::pipe2(ready, O_CLOEXEC) != 0) return;
    if (::pipe2(hold, O_CLOEXEC) != 0) return;
    m_child = ::fork();
    if (m_child == 0) {  // only calls that are safe after a fork of a threaded process
      ::close(ready[0]);
      ::close(hold[1]);
      const int line = ::setsid() < 0 ? -1 : ::open(path.c_str(), O_RDWR);
      const char owns = line >= 0 && ::ioctl(line, TIOCSCTTY, 0) == 0;
      char byte;
      if (::write(ready[1], &owns, 1) == 1) (void)!::read(hold[0], &byte, 1);
      ::_exit(0);
    }
    ::close(ready[1]);
    ::close(hold[0]);
    m_hold = hold[1];
    char owns = 0;
    m_owns = m_child > 0 && ::read(ready[0], &owns, 1) == 1 && owns;
    ::close(ready[0]);
  }
  ~TerminalOwner() {
    if (m_hold >= 0) ::close(m_hold);  // the child's read ends, and so does the child
    if (m_child > 0) ::waitpid(m_child, nullptr, 0);
  }
  bool Owns() const { return m_owns; }

 private:
  pid_t m_child = -1;
  int m_hold = -1;
  bool m_owns = false;
};

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

// The port had a line that a terminal program left; after the port it has it again.
TEST_F(LiveParser, APortGivesTheLineBackAsItFoundIt) {
  MakeCooked(m_com.Line().PortPath());
  const termios before = m_com.Line().Settings();
  Enable();
  ASSERT_TRUE(AwaitStatus(true, false, 3000));
  EXPECT_FALSE(SameSettings(m_com.Line().Settings(), before));
  NmeaParser_SetPortEnabled(parser, 0);
  EXPECT_TRUE(SameSettings(m_com.Line().Settings(), before));
}

// The search opens every free port at both speeds and gives each line back as it was;
// the terminal of another program it never opens, and by hand that port is in use.
TEST(TheSearch, LeavesOtherProgramsTerminalsAloneAndGivesLinesBack) {
  kxtest::PrivateRegistry registry;
  kxrig::SimulatedComPort owned(4), free(6);
  ASSERT_TRUE(owned.IsReady() && free.IsReady());
  MakeCooked(owned.Line().PortPath());
  MakeCooked(free.Line().PortPath());
  TerminalOwner shell(owned.Line().PortPath());
  ASSERT_TRUE(shell.Owns());
  const termios ownedBefore = owned.Line().Settings(), freeBefore = free.Line().Settings();

  KxNmeaParser parser = NmeaParser_New();
  NmeaParser_SetPortEnabled(parser, 1);
  bool free4800 = false, free57600 = false, ownedTouched = false;
  for (const auto end = Clock::now() + std::chrono::milliseconds(3000); Clock::now() < end;) {
    const speed_t speed = free.Line().Speed();
    free4800 |= speed == B4800;
    free57600 |= speed == B57600;
    ownedTouched |= !SameSettings(owned.Line().Settings(), ownedBefore);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_TRUE(free4800 && free57600);
  EXPECT_FALSE(ownedTouched);
  NmeaParser_SetPortEnabled(parser, 0);
  EXPECT_TRUE(SameSettings(free.Line().Settings(), freeBefore));

  NmeaParser_SetComPort(parser, 4);
  NmeaParser_SetPortEnabled(parser, 1);
  EXPECT_EQ(kxtest::Failure(NmeaParser_GetErrHandle(parser)), "10007 Comm port in use!");
  NmeaParser_Delete(parser);
}

}  // namespace
