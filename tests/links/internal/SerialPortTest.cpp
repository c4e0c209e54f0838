// SerialPort on a pseudo-terminal registered as a COM port: its threads deliver what the
// device sends, send what is queued, notice the device going away, and stop at once.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "frame/Ref.h"
#include "frame/WaitGroup.h"
#include "links/RegistryKey.h"
#include "links/SerialPort.h"
#include "tools/rig/SimulatedComPort.h"
#include "tests/support/TempDirectory.h"

namespace {

using kx::ByteBuffer;
using kx::Event;
using kx::Ref;
using kx::SerialPort;
using Clock = std::chrono::steady_clock;

long MillisecondsSince(Clock::time_point start) {
  return long(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

// All that the port has received until `count` bytes have come or a second has passed.
std::string Received(SerialPort& port, size_t count) {
  Ref<Event> received(port.GetReceivedEvent());
  std::string bytes;
  const auto start = Clock::now();
  while (bytes.size() < count && MillisecondsSince(start) < 1000) {
    if (!received->WaitFor(100)) continue;
    received->Reset();
    while (ByteBuffer* buffer = port.ReadBuffer()) {
      bytes.append(reinterpret_cast<const char*>(buffer->GetData()), size_t(buffer->GetLength()));
      buffer->Release();
      delete buffer;
    }
  }
  return bytes;
}

class SerialPortTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_com.Line().IsReady());
    m_port->SetPort(m_com.Port());
    m_port->SetBaudRate(4800);
  }

  kxtest::PrivateRegistry m_registry;
  kxrig::SimulatedComPort m_com{4};
  Ref<SerialPort> m_port{new SerialPort()};
};

TEST_F(SerialPortTest, OpenFailuresLeaveAClosedPortThatOpensLater) {
  m_port->Close();  // never opened: nothing to do
  EXPECT_FALSE(m_port->Error().Failed());

  m_port->SetPort(6);
  m_port->Open();
  EXPECT_EQ(m_port->Error().GetNumber(), 10007);
  EXPECT_STREQ(m_port->Error().GetText(), "Comm port does not exist");
  EXPECT_FALSE(m_port->IsOpen());

  m_port->SetPort(m_com.Port());
  Ref<SerialPort> holder(new SerialPort());
  holder->SetPort(m_com.Port());
  holder->Open();
  ASSERT_TRUE(holder->IsOpen());
  m_port->Open();
  EXPECT_STREQ(m_port->Error().GetText(), "Comm port in use!");
  EXPECT_FALSE(m_port->IsOpen());
  m_port->SetPort(5);
  holder->SetPort(5);  // refused while open
  EXPECT_STREQ(holder->Error().GetText(), "Cannot set port is opened.");
  EXPECT_EQ(holder->GetPort(), m_com.Port());
  holder->Close();

  m_port->SetPort(m_com.Port());
  m_port->Open();
  EXPECT_TRUE(m_port->IsOpen());
  EXPECT_FALSE(m_port->Error().Failed());
  m_port->Open();  // open already: nothing changes, nothing is reported
  EXPECT_FALSE(m_port->Error().Failed());
}

TEST_F(SerialPortTest, TheReaderDeliversWhatTheDeviceSendsInBothProfiles) {
  for (int32_t mode : {SerialPort::kReturnOnAny, SerialPort::kCollect}) {
    m_port->SetTimeoutMode(mode);
    m_port->Open();
    ASSERT_TRUE(m_port->IsOpen());
    Ref<Event> received(m_port->GetReceivedEvent());
    EXPECT_EQ(received->GetOwnerID(), m_port->GetID());
    EXPECT_EQ(received->GetKind(), SerialPort::kReceived);
    const std::string sentence =
        "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
    std::string stream;
    for (int i = 0; i < 8; ++i) stream += sentence;  // more than one read's 256 bytes
    ASSERT_TRUE(m_com.Line().Send(stream));
    EXPECT_EQ(Received(*m_port, stream.size()), stream) << "mode " << mode;
    EXPECT_EQ(m_port->ReadBuffer(), nullptr);
    m_port->Close();
  }
}

TEST_F(SerialPortTest, AClosedReceiveGateDropsWhatIsRead) {
  m_port->Open();
  m_port->SetReceiveEnabled(false);
  ASSERT_TRUE(m_com.Line().Send("dropped"));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  Ref<Event> received(m_port->GetReceivedEvent());
  EXPECT_FALSE(received->WaitFor(0));
  m_port->SetReceiveEnabled(true);
  ASSERT_TRUE(m_com.Line().Send("kept"));
  EXPECT_EQ(Received(*m_port, 4), "kept");  // the dropped bytes were read, not left waiting
}

TEST_F(SerialPortTest, QueuedBuffersReachTheDeviceWithANoticeEach) {
  m_port->Open();
  Ref<ByteBuffer> first(new ByteBuffer(reinterpret_cast<const uint8_t*>("$PSRF100,"), 9));
  Ref<ByteBuffer> second(new ByteBuffer(reinterpret_cast<const uint8_t*>("1*0C\r\n"), 6));
  m_port->WriteBuffer(first.get());
  EXPECT_EQ(m_com.Line().Receive(9, 1000), "$PSRF100,");
  m_port->WriteBuffer(second.get());
  EXPECT_EQ(m_com.Line().Receive(6, 1000), "1*0C\r\n");
  Ref<Event> sent(m_port->GetSentEvent());
  ASSERT_TRUE(sent->WaitFor(1000));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  Ref<kx::Value> notice(m_port->PopSentNotice());
  ASSERT_TRUE(notice);
  EXPECT_EQ(notice->GetInteger(), 9);
  notice = Ref<kx::Value>(m_port->PopSentNotice());
  ASSERT_TRUE(notice);
  EXPECT_EQ(notice->GetInteger(), 6);
}

// The device going away is told by the error event, as a waiting owner sees it; the port
// stays open, its threads parked, until Close. Without modem notices, as the GPS input
// opens its ports, the reader is the one that finds out.
TEST_F(SerialPortTest, ADeviceThatGoesAwaySetsTheErrorEvent) {
  m_port->SetModemNoticeEnabled(false);
  m_port->Open();
  kx::WaitGroup group;
  Ref<Event> received(m_port->GetReceivedEvent());
  Ref<Event> error(m_port->GetErrorEvent());
  group.Add(received.get());
  group.Add(error.get());
  m_com.Line().Disconnect();
  Ref<Event> woke(group.WaitAny(2000));
  ASSERT_TRUE(woke);
  EXPECT_EQ(woke->GetOwnerID(), m_port->GetID());
  EXPECT_EQ(woke->GetKind(), SerialPort::kError);
  EXPECT_STREQ(m_port->Error().GetText(), "Error reading data from serial port.");
  EXPECT_TRUE(m_port->IsOpen());
  m_port->Close();
  EXPECT_FALSE(error->WaitFor(0));
  EXPECT_FALSE(m_port->Error().Failed());
}

// Close doesn't wait out the reader's time-out, nor a modem watcher that never wakes.
TEST_F(SerialPortTest, CloseStopsAllThreadsAtOnce) {
  for (int32_t mode : {SerialPort::kReturnOnAny, SerialPort::kCollect}) {
    m_port->SetTimeoutMode(mode);
    m_port->Open();
    ASSERT_TRUE(m_port->IsOpen());
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto start = Clock::now();
    m_port->Close();
    EXPECT_LT(MillisecondsSince(start), 500) << "mode " << mode;
    EXPECT_FALSE(m_port->IsOpen());
    EXPECT_FALSE(m_port->Error().Failed());
  }
  // Open and close at once, before the threads have looked at the port.
  for (int i = 0; i < 20; ++i) {
    m_port->Open();
    m_port->Close();
  }
  m_port->Open();
  EXPECT_TRUE(m_port->IsOpen());
}

TEST_F(SerialPortTest, SettingsTheLineRefusesLeaveTheFieldAndTheRecord) {
  m_port->Open();
  m_port->SetBaudRate(14400);  // termios has no such rate
  EXPECT_EQ(m_port->Error().GetNumber(), 10007);
  EXPECT_STREQ(m_port->Error().GetText(), "Could not set DCB");
  EXPECT_EQ(m_port->GetBaudRate(), 14400u);
  EXPECT_TRUE(m_port->IsOpen());
  m_port->SetBaudRate(57600);
  EXPECT_FALSE(m_port->Error().Failed());
  termios line = m_com.Line().Settings();
  EXPECT_EQ(cfgetospeed(&line), speed_t(B57600));

  m_port->SetHandshake(SerialPort::kRtsCts | SerialPort::kXonXoff);
  line = m_com.Line().Settings();
  EXPECT_TRUE(line.c_cflag & CRTSCTS);
  EXPECT_TRUE(line.c_iflag & IXON);
  m_port->SetRts(false);
  EXPECT_STREQ(m_port->Error().GetText(), "Cannot set RTS when RTS handshake is selected");
  m_port->SetDtr(false);  // not driven by this handshake
  EXPECT_FALSE(m_port->Error().Failed());
  EXPECT_FALSE(m_port->GetDtr());
}

// The Widcomm browser switch of COM8: touched only when the owner asked, and on again
// once the open has ended.
TEST_F(SerialPortTest, TheBluetoothBrowserIsSwitchedOnlyForComEightWhenAsked) {
  Ref<kx::RegistryKey> machine(kx::RegistryKey::LocalMachine());
  Ref<kx::RegistryKey> key(machine->CreateSubKey("SOFTWARE\\Widcomm\\BtConfig\\Autoconnect\\0008"));
  ASSERT_TRUE(key);
  key->SetValue("BtBrowserEnabled", 7);
  auto browser = [&] {
    Ref<kx::Value> value(key->GetValue("BtBrowserEnabled"));
    return value ? value->GetInteger() : -1;
  };
  kxrig::SimulatedComPort bluetooth(8);
  Ref<SerialPort> port(new SerialPort());
  port->SetPort(8);
  port->Open();
  EXPECT_TRUE(port->IsOpen());
  EXPECT_EQ(browser(), 7);  // left alone by default
  port->Close();
  port->SetBtBrowserSuppressed(true);
  port->Open();
  EXPECT_EQ(browser(), 1);
  port->Close();

  machine->DeleteSubKey("SOFTWARE\\Widcomm");
  port->Open();  // the key is never made
  Ref<kx::RegistryKey> gone(machine->OpenSubKey("SOFTWARE\\Widcomm"));
  EXPECT_FALSE(gone);
}

}  // namespace
