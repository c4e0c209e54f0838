// The platform's serial ports on pseudo-terminals registered as COM ports: opening by
// name through Drivers\Active, the line settings, both read profiles of the library, and
// CloseHandle as the way to end a call that blocks on another thread.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "platform/posix/SerialSettings.h"
#include "platform/win32ce.h"
#include "tools/rig/SimulatedComPort.h"
#include "tests/support/TempDirectory.h"

namespace {

using Clock = std::chrono::steady_clock;

long MillisecondsSince(Clock::time_point start) {
  return long(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

HANDLE OpenPort(const std::u16string& name) {
  return CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

void SetReadTimeouts(HANDLE port, DWORD interval, DWORD multiplier, DWORD constant) {
  COMMTIMEOUTS timeouts{interval, multiplier, constant, 0, 0};
  ASSERT_TRUE(SetCommTimeouts(port, &timeouts));
}

std::string Read(HANDLE port, DWORD count) {
  char bytes[512];
  DWORD done = 0;
  EXPECT_TRUE(ReadFile(port, bytes, count, &done, nullptr));
  return std::string(bytes, done);
}

class SerialDevice : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_com.Line().IsReady());
    m_port = OpenPort(m_com.DeviceName());
    ASSERT_NE(m_port, INVALID_HANDLE_VALUE);
  }
  void TearDown() override {
    if (m_port) CloseHandle(m_port);
  }

  kxtest::PrivateRegistry m_registry;
  kxrig::SimulatedComPort m_com{5};
  HANDLE m_port = nullptr;
};

TEST_F(SerialDevice, PortsOpenByTheirActiveDriversOneHolderAtATime) {
  EXPECT_EQ(OpenPort(m_com.DeviceName()), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpenPort(u"com5:"), INVALID_HANDLE_VALUE);  // the same port in other letters
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpenPort(u"COM6:"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  {
    kxrig::ComPortEntry gone(7, m_registry.Directory() / "no-such-device", "gone");
    EXPECT_EQ(OpenPort(u"COM7:"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    kxrig::ComPortEntry notATerminal(9, m_registry.File(), "file");
    EXPECT_EQ(OpenPort(u"COM9:"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  }
  // Closing frees the port at once.
  EXPECT_TRUE(CloseHandle(m_port));
  m_port = OpenPort(m_com.DeviceName());
  EXPECT_NE(m_port, INVALID_HANDLE_VALUE);
}

TEST_F(SerialDevice, LineSettingsReachTheTerminalAndComeBack) {
  DCB dcb{};
  ASSERT_TRUE(GetCommState(m_port, &dcb));
  dcb.BaudRate = 4800;
  dcb.ByteSize = 7;
  dcb.Parity = EVENPARITY;
  dcb.fParity = 1;
  dcb.StopBits = TWOSTOPBITS;
  dcb.fOutxCtsFlow = 1;
  dcb.fRtsControl = RTS_CONTROL_HANDSHAKE;
  dcb.fOutX = dcb.fInX = 1;
  dcb.fDtrControl = DTR_CONTROL_HANDSHAKE;
  dcb.XonLim = 100;
  ASSERT_TRUE(SetCommState(m_port, &dcb));
  // A pseudo-terminal keeps eight bits without parity whatever it is told, so byte size
  // and parity show here only in the bits beside them.
  termios line = m_com.Line().Settings();
  EXPECT_EQ(cfgetospeed(&line), speed_t(B4800));
  EXPECT_EQ(cfgetispeed(&line), speed_t(B4800));
  EXPECT_EQ(line.c_cflag & (PARODD | CMSPAR), tcflag_t(0));
  EXPECT_TRUE(line.c_cflag & CSTOPB);
  EXPECT_TRUE(line.c_cflag & CRTSCTS);
  EXPECT_TRUE((line.c_iflag & IXON) && (line.c_iflag & IXOFF) && (line.c_iflag & INPCK));
  EXPECT_FALSE(line.c_lflag & (ICANON | ECHO));
  DCB back{};
  ASSERT_TRUE(GetCommState(m_port, &back));
  EXPECT_EQ(back.BaudRate, 4800u);
  EXPECT_EQ(back.fDtrControl, DTR_CONTROL_HANDSHAKE);  // kept, though termios has no place
  EXPECT_EQ(back.XonLim, 100);

  dcb = back;
  dcb.BaudRate = 57600;
  dcb.ByteSize = 8;
  dcb.Parity = MARKPARITY;
  dcb.StopBits = ONESTOPBIT;
  dcb.fOutxCtsFlow = 0;
  dcb.fRtsControl = RTS_CONTROL_ENABLE;
  dcb.fOutX = dcb.fInX = 0;
  ASSERT_TRUE(SetCommState(m_port, &dcb));
  line = m_com.Line().Settings();
  EXPECT_EQ(cfgetospeed(&line), speed_t(B57600));
  EXPECT_EQ(line.c_cflag & (PARODD | CMSPAR), tcflag_t(PARODD | CMSPAR));
  EXPECT_FALSE(line.c_cflag & (CSTOPB | CRTSCTS));
  EXPECT_FALSE(line.c_iflag & (IXON | IXOFF));

  // What the line can't do is refused, and the settings stay.
  for (auto change : {+[](DCB& d) { d.BaudRate = 14400; }, +[](DCB& d) { d.ByteSize = 9; },
                      +[](DCB& d) { d.Parity = 5; }, +[](DCB& d) { d.StopBits = ONE5STOPBITS; }}) {
    DCB refused = dcb;
    change(refused);
    EXPECT_FALSE(SetCommState(m_port, &refused));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  }
  ASSERT_TRUE(GetCommState(m_port, &back));
  EXPECT_EQ(back.BaudRate, 57600u);
  EXPECT_EQ(cfgetospeed(&(line = m_com.Line().Settings())), speed_t(B57600));
}

// The library's first profile: whatever has come, as soon as anything has.
TEST_F(SerialDevice, ReadReturnsOnTheFirstBytesOrAfterItsConstant) {
  SetReadTimeouts(m_port, MAXDWORD, MAXDWORD, 200);
  auto start = Clock::now();
  EXPECT_EQ(Read(m_port, 256), "");
  EXPECT_GE(MillisecondsSince(start), 190);
  EXPECT_LT(MillisecondsSince(start), 1000);

  ASSERT_TRUE(m_com.Line().Send("$GPGGA"));
  start = Clock::now();
  EXPECT_EQ(Read(m_port, 256), "$GPGGA");  // waiting, without a wait
  EXPECT_LT(MillisecondsSince(start), 100);

  std::thread device([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    m_com.Line().Send("late");
  });
  start = Clock::now();
  EXPECT_EQ(Read(m_port, 256), "late");
  EXPECT_LT(MillisecondsSince(start), 180);
  device.join();
}

// The second profile: all that comes in 200 ms, or a full buffer sooner.
TEST_F(SerialDevice, ReadCollectsForItsConstantUnlessTheBufferFills) {
  SetReadTimeouts(m_port, 0, 0, 200);
  std::thread device([&] {
    m_com.Line().Send("ab");
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    m_com.Line().Send("cd");
  });
  auto start = Clock::now();
  EXPECT_EQ(Read(m_port, 256), "abcd");
  EXPECT_GE(MillisecondsSince(start), 190);
  device.join();

  ASSERT_TRUE(m_com.Line().Send("0123456789"));
  start = Clock::now();
  EXPECT_EQ(Read(m_port, 4), "0123");
  EXPECT_LT(MillisecondsSince(start), 100);
}

TEST_F(SerialDevice, WritesReachTheDeviceAndPurgeDropsWhatWaits) {
  DWORD written = 0;
  ASSERT_TRUE(WriteFile(m_port, "$PSRF103*2A\r\n", 13, &written, nullptr));
  EXPECT_EQ(written, 13u);
  EXPECT_EQ(m_com.Line().Receive(13, 1000), "$PSRF103*2A\r\n");

  ASSERT_TRUE(m_com.Line().Send("stale"));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  ASSERT_TRUE(PurgeComm(m_port, PURGE_RXCLEAR | PURGE_TXCLEAR));
  SetReadTimeouts(m_port, MAXDWORD, 0, 0);  // what is there, without waiting
  EXPECT_EQ(Read(m_port, 256), "");
}

// A pseudo-terminal has no modem lines: they read as off and take any setting.
TEST_F(SerialDevice, ALineWithoutModemLinesServesAllTheSame) {
  DWORD status = 0xFF;
  EXPECT_TRUE(GetCommModemStatus(m_port, &status));
  EXPECT_EQ(status, 0u);
  for (DWORD function : {SETDTR, CLRDTR, SETRTS, CLRRTS, SETBREAK, CLRBREAK, CLRIR})
    EXPECT_TRUE(EscapeCommFunction(m_port, function)) << function;
  EXPECT_FALSE(EscapeCommFunction(m_port, SETIR));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
}

TEST_F(SerialDevice, WaitCommEventWakesForBytesAndForANewMask) {
  ASSERT_TRUE(SetCommMask(m_port, EV_RXCHAR | EV_CTS));
  std::thread device([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    m_com.Line().Send("x");
  });
  DWORD events = 0;
  auto start = Clock::now();
  EXPECT_TRUE(WaitCommEvent(m_port, &events, nullptr));
  EXPECT_EQ(events, EV_RXCHAR);
  EXPECT_GE(MillisecondsSince(start), 40);
  device.join();
  EXPECT_EQ(Read(m_port, 1), "x");

  // A new mask ends a wait under the old one, with no event.
  std::thread owner([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    SetCommMask(m_port, EV_DSR);
  });
  EXPECT_TRUE(WaitCommEvent(m_port, &events, nullptr));
  EXPECT_EQ(events, 0u);
  owner.join();
}

// What blocks on one thread ends when another closes the port, and the port is free then.
TEST_F(SerialDevice, CloseHandleEndsAWaitAndAReadThatBlock) {
  SetReadTimeouts(m_port, 0, 0, 0);  // a read waits for a full buffer
  ASSERT_TRUE(SetCommMask(m_port, EV_RING));
  BOOL read = TRUE, waited = TRUE;
  DWORD readError = 0, waitError = 0;
  std::thread reader([&] {
    char bytes[16];
    DWORD done = 0;
    read = ReadFile(m_port, bytes, sizeof bytes, &done, nullptr);
    readError = GetLastError();
  });
  std::thread watcher([&] {
    DWORD events = 0;
    waited = WaitCommEvent(m_port, &events, nullptr);
    waitError = GetLastError();
  });
  ASSERT_TRUE(m_com.Line().Send("part"));  // not enough to end the read
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  const auto start = Clock::now();
  EXPECT_TRUE(CloseHandle(m_port));
  reader.join();
  watcher.join();
  EXPECT_LT(MillisecondsSince(start), 200);
  EXPECT_FALSE(read);
  EXPECT_FALSE(waited);
  EXPECT_EQ(readError, ERROR_OPERATION_ABORTED);
  EXPECT_EQ(waitError, ERROR_OPERATION_ABORTED);
  m_port = OpenPort(m_com.DeviceName());
  EXPECT_NE(m_port, INVALID_HANDLE_VALUE);
}

TEST_F(SerialDevice, ADeviceThatGoesAwayFailsTheReadsAndTheWaits) {
  SetReadTimeouts(m_port, MAXDWORD, MAXDWORD, 200);
  m_com.Line().Disconnect();
  char bytes[16];
  DWORD done = 0;
  EXPECT_FALSE(ReadFile(m_port, bytes, sizeof bytes, &done, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);
  ASSERT_TRUE(SetCommMask(m_port, EV_RXCHAR));
  DWORD events = 0;
  EXPECT_FALSE(WaitCommEvent(m_port, &events, nullptr));
}

// A handle that another thread has just closed fails; it never reaches a freed port.
TEST_F(SerialDevice, CallsOnAClosedHandleFail) {
  HANDLE stale = m_port;
  ASSERT_TRUE(CloseHandle(m_port));
  m_port = nullptr;
  DCB dcb{};
  EXPECT_FALSE(GetCommState(stale, &dcb));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  char byte;
  DWORD done = 0;
  EXPECT_FALSE(ReadFile(stale, &byte, 1, &done, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

// Framing that a pseudo-terminal won't keep, on the termios the port would set.
TEST(SerialSettings, FramingGoesToTheControlFlags) {
  termios line{};
  DCB dcb = platform::SerialSettings::FromTermios(line);
  dcb.BaudRate = 4800;
  dcb.ByteSize = 7;
  dcb.Parity = ODDPARITY;
  dcb.fParity = 1;
  ASSERT_TRUE(platform::SerialSettings::ToTermios(dcb, line));
  EXPECT_EQ(line.c_cflag & CSIZE, tcflag_t(CS7));
  EXPECT_EQ(line.c_cflag & (PARENB | PARODD | CMSPAR), tcflag_t(PARENB | PARODD));
  EXPECT_TRUE(line.c_iflag & INPCK);
  dcb.ByteSize = 5;
  dcb.Parity = SPACEPARITY;
  dcb.StopBits = ONE5STOPBITS;
  ASSERT_TRUE(platform::SerialSettings::ToTermios(dcb, line));
  EXPECT_EQ(line.c_cflag & (CSIZE | PARENB | PARODD | CMSPAR | CSTOPB),
            tcflag_t(CS5 | PARENB | CMSPAR | CSTOPB));
  const DCB back = platform::SerialSettings::FromTermios(line);
  EXPECT_EQ(back.ByteSize, 5);
  EXPECT_EQ(back.Parity, SPACEPARITY);
  EXPECT_EQ(back.BaudRate, 4800u);
}

}  // namespace
