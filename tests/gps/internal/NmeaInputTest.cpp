// The engine's source on pseudo-terminals registered as COM ports: a fixed port, and the
// search over several ports and both speeds. A simulated receiver speaks only while the
// line runs at its own speed, as a real one is heard only at the right speed.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "frame/Ref.h"
#include "gps/NmeaInput.h"
#include "tests/support/TempDirectory.h"
#include "tools/rig/SimulatedComPort.h"
#include "tools/rig/SimulatedReceiver.h"

namespace {

using kx::NmeaInput;
using kx::NmeaSentence;
using kx::Ref;

// "$GPGGA,hhmmss,..." with its checksum; the time tells the sentences apart.
std::string Gga(int second) {
  char body[96];
  std::snprintf(body, sizeof body,
                "GPGGA,1200%02d,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", second);
  uint8_t sum = 0;
  for (const char* c = body; *c; ++c) sum ^= uint8_t(*c);
  char sentence[128];
  std::snprintf(sentence, sizeof sentence, "$%s*%02X\r\n", body, sum);
  return sentence;
}

// A device on one simulated port that says `say(n)` at the pace of its speed, heard only
// while the line runs at that speed, until destroyed.
class Receiver {
 public:
  using Say = std::string (*)(int);
  Receiver(int port, int baud, Say say) : m_com(port), m_device(m_com.Line(), baud, say) {}
  void SetMuted(bool muted) { m_device.SetMuted(muted); }

 private:
  kxrig::SimulatedComPort m_com;
  kxrig::SimulatedReceiver m_device;
};

std::string Silence(int) { return ""; }
std::string Garbage(int) { return "\x13\xfe$GP\x80 noise\r\n"; }
std::string BadChecksum(int n) {
  std::string s = Gga(n);
  s[s.size() - 3] = s[s.size() - 3] == '0' ? '1' : '0';
  return s;
}

// The time of day of the next queued sentence, or "" when none comes within the time.
std::string NextTime(NmeaInput& input, int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (std::chrono::steady_clock::now() < end) {
    if (Ref<NmeaSentence> sentence{input.PopSentence()})
      return Ref<kx::String>(sentence->GetField(1))->GetText();
    input.GetSentencesEvent()->WaitFor(50);
    input.GetSentencesEvent()->Reset();
  }
  return "";
}

TEST(NmeaInput, AFixedPortIsReadFromItsFirstSentenceLostInSilenceAndFoundAgain) {
  kxtest::PrivateRegistry registry;
  Receiver receiver(5, 4800, Gga);
  NmeaInput input;
  input.SetPort(5);
  input.SetBaudRate(4800);
  ASSERT_TRUE(input.Open()) << input.Error().GetText();
  EXPECT_TRUE(input.GetFoundEvent()->WaitFor(2000));
  EXPECT_EQ(NextTime(input, 2000), "120000");  // nothing used up with a fixed port
  EXPECT_EQ(input.GetPort(), 5);
  EXPECT_EQ(input.GetBaudRate(), 4800);
  input.GetFoundEvent()->Reset();
  receiver.SetMuted(true);  // four seconds of silence, and the port stays open
  EXPECT_FALSE(input.GetLostEvent()->WaitFor(3000));
  EXPECT_TRUE(input.GetLostEvent()->WaitFor(2500));
  EXPECT_EQ(input.GetPort(), 5);
  receiver.SetMuted(false);
  EXPECT_TRUE(input.GetFoundEvent()->WaitFor(2000));
  input.Close();
  EXPECT_FALSE(input.IsRunning());
}

TEST(NmeaInput, AMissingFixedPortFailsOpen) {
  kxtest::PrivateRegistry registry;
  NmeaInput input;
  input.SetPort(6);
  input.SetBaudRate(4800);
  EXPECT_FALSE(input.Open());
  EXPECT_EQ(input.Error().GetNumber(), 10007);
  EXPECT_STREQ(input.Error().GetText(), "Comm port does not exist");
  EXPECT_FALSE(input.IsRunning());
}

// Silent, noisy and corrupt ports beside the one receiver that speaks, at either speed;
// COM3 speaks at 4800 and would win the first round, but is never tried.
class TheSearch : public testing::TestWithParam<int> {};

TEST_P(TheSearch, FindsTheOnePortThatSpeaksGoodNmea) {
  const int baud = GetParam();
  kxtest::PrivateRegistry registry;
  Receiver silent(4, 4800, Silence), noisy(5, 4800, Garbage), corrupt(6, 4800, BadChecksum);
  Receiver skipped(3, 4800, Gga), good(7, baud, Gga);
  NmeaInput input;
  input.SetPort(0);
  input.SetBaudRate(4800);
  ASSERT_TRUE(input.Open());
  ASSERT_TRUE(input.GetFoundEvent()->WaitFor(6000));
  EXPECT_EQ(input.GetPort(), 7);
  EXPECT_EQ(input.GetBaudRate(), baud);
  // The sentence that decided the search isn't delivered; the ones after it are.
  const std::string first = NextTime(input, 1000);
  EXPECT_NE(first, "");
  EXPECT_NE(first, "120000");
  input.Close();
}

INSTANTIATE_TEST_SUITE_P(NmeaInput, TheSearch, testing::Values(4800, 57600));

// The receiver goes away once the input has found it, and the input notices at once.
void Unplug(NmeaInput& input, std::unique_ptr<Receiver>& receiver, int findWithin) {
  ASSERT_TRUE(input.GetFoundEvent()->WaitFor(findWithin));
  input.GetFoundEvent()->Reset();
  receiver.reset();
  ASSERT_TRUE(input.GetLostEvent()->WaitFor(1000));
}

// In automatic mode a receiver that goes away is searched for again, and found when it
// comes back, here on the same port at the other speed.
TEST(NmeaInput, AReceiverPluggedInAgainIsFoundAgain) {
  kxtest::PrivateRegistry registry;
  auto receiver = std::make_unique<Receiver>(5, 4800, Gga);
  NmeaInput input;
  ASSERT_TRUE(input.Open());
  Unplug(input, receiver, 6000);
  receiver = std::make_unique<Receiver>(5, 57600, Gga);
  ASSERT_TRUE(input.GetFoundEvent()->WaitFor(10000));
  EXPECT_EQ(input.GetPort(), 5);
  EXPECT_EQ(input.GetBaudRate(), 57600);
  EXPECT_NE(NextTime(input, 1000), "");
  input.Close();
}

// With port and speed fixed, a port that failed stays closed until the input is opened
// again.
TEST(NmeaInput, AFixedPortThatFailedStaysClosedUntilOpenedAgain) {
  kxtest::PrivateRegistry registry;
  auto receiver = std::make_unique<Receiver>(5, 4800, Gga);
  NmeaInput input;
  input.SetPort(5);
  input.SetBaudRate(4800);
  ASSERT_TRUE(input.Open());
  Unplug(input, receiver, 2000);
  receiver = std::make_unique<Receiver>(5, 4800, Gga);
  EXPECT_FALSE(input.GetFoundEvent()->WaitFor(1500));
  input.Close();
  ASSERT_TRUE(input.Open());
  EXPECT_TRUE(input.GetFoundEvent()->WaitFor(2000));
  input.Close();
}

TEST(NmeaInput, OneNumberedPortWithoutSpeedIsSearchedAtBothSpeeds) {
  kxtest::PrivateRegistry registry;
  Receiver other(4, 4800, Gga), wanted(7, 57600, Gga);
  NmeaInput input;
  input.SetPort(7);
  input.SetBaudRate(0);
  ASSERT_TRUE(input.Open());
  ASSERT_TRUE(input.GetFoundEvent()->WaitFor(6000));
  EXPECT_EQ(input.GetPort(), 7);
  EXPECT_EQ(input.GetBaudRate(), 57600);
  input.Close();
}

TEST(NmeaInput, CloseEndsTheSearchAtOnce) {
  kxtest::PrivateRegistry registry;
  Receiver silent(4, 4800, Silence);
  NmeaInput input;
  ASSERT_TRUE(input.Open());
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const auto start = std::chrono::steady_clock::now();
  input.Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
  EXPECT_FALSE(input.IsRunning());
}

TEST(NmeaInput, TheMultiplexerAloneFailsWithoutItsProgram) {
  kxtest::PrivateRegistry registry;
  NmeaInput input;
  input.SetPort(-1);
  EXPECT_FALSE(input.Open());
  EXPECT_EQ(input.Error().GetNumber(), 10029);
  EXPECT_STREQ(input.Error().GetText(), "Could not start Velomux. Key not found.");
}

}  // namespace
