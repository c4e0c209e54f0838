// The engine on simulated receivers, measured in wall time and CPU time rather than by
// repetition: from enable to the first fix with one receiver among four ports at 57600
// baud; the CPU an enabled parser spends on a silent port and while searching; how long
// disabling takes while a read waits; and a minute of continuous sentences at 57600 baud,
// counted where the receiver sends them and where the application receives them.
// KX_LIVE_SECONDS shortens the minute for a quick look.
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "KestrixCE.h"
#include "tools/rig/EventObject.h"
#include "tools/rig/SimulatedComPort.h"
#include "tools/rig/SimulatedReceiver.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

double CpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return double(t.tv_sec) + t.tv_nsec / 1e9;
}

// A registry of its own, and no real serial devices among the ports.
class PrivateRegistry {
 public:
  PrivateRegistry() {
    char pattern[] = "/tmp/kx-live-XXXXXX";
    m_directory = mkdtemp(pattern);
    setenv("KESTRIX_REGISTRY", (m_directory + "/registry").c_str(), 1);
    setenv("KESTRIX_DEVICES", (m_directory + "/dev").c_str(), 1);
  }
  ~PrivateRegistry() { std::filesystem::remove_all(m_directory); }

 private:
  std::string m_directory;
};

// "$GPGGA,..." with a fix; n goes into the time, hundredths of a second.
std::string Gga(int64_t n) {
  char body[96];
  std::snprintf(body, sizeof body,
                "GPGGA,%02d%02d%02d.%02d,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",
                int(n / 360000 % 24), int(n / 6000 % 60), int(n / 100 % 60), int(n % 100));
  unsigned sum = 0;
  for (const char* c = body; *c; ++c) sum ^= static_cast<unsigned char>(*c);
  char sentence[128];
  std::snprintf(sentence, sizeof sentence, "$%s*%02X\r\n", body, sum);
  return sentence;
}
std::string Noise(int64_t) { return "\x13\xfe$GP\x80 noise\r\n"; }

// A parser that hands its events to a reader thread through the queue, counting them.
class CountingParser {
 public:
  CountingParser(short port, int baud) {
    NmeaParser_SetCallbackHWND(m_parser, nullptr);
    NmeaParser_SetComPort(m_parser, port);
    NmeaParser_SetBaudRate(m_parser, baud);
  }
  ~CountingParser() {
    NmeaParser_Close(m_parser);
    if (m_reader.joinable()) m_reader.join();
    NmeaParser_Delete(m_parser);
  }
  void Enable() {
    NmeaParser_SetPortEnabled(m_parser, 1);
    m_reader = std::thread([this] { Read(); });
  }
  void Disable() { NmeaParser_SetPortEnabled(m_parser, 0); }
  bool Failed() { return Error_ErrNum(NmeaParser_GetErrHandle(m_parser)) != 0; }
  int64_t Sentences() const { return m_sentences; }
  bool HasFix() const { return m_fixes > 0; }

 private:
  void Read() {
    int type = 0;
    while (void* object = NmeaParser_GetEventData(m_parser, &type)) {
      if (type == KX_EVENT_SENTENCE) ++m_sentences;
      if (type == KX_EVENT_FIX) ++m_fixes;
      kxrig::ReleaseEventObject(type, object);
    }
  }

  KxNmeaParser m_parser = NmeaParser_New();
  std::atomic<int64_t> m_sentences{0}, m_fixes{0};
  std::thread m_reader;
};

void FirstFix() {
  std::vector<double> times;
  for (int round = 0; round < 3; ++round) {
    PrivateRegistry registry;
    kxrig::SimulatedComPort silent(4), noisy(5), corrupt(6), good(7);
    kxrig::SimulatedReceiver noise(noisy.Line(), 4800, Noise);
    kxrig::SimulatedReceiver garbled(corrupt.Line(), 9600, Gga);  // never at a searched speed
    kxrig::SimulatedReceiver receiver(good.Line(), 57600, Gga);
    CountingParser parser(0, 0);
    const auto start = Clock::now();
    parser.Enable();
    while (!parser.HasFix() && Clock::now() - start < std::chrono::seconds(30))
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    times.push_back(parser.HasFix() ? Seconds(Clock::now() - start) : -1);
  }
  std::printf(
      "enable to first fix, one receiver at 57600 among four ports: %.2f s, %.2f s, %.2f s"
      " (aim: under 5 s)\n",
      times[0], times[1], times[2]);
}

void IdleCpu(const char* what, short port, int baud, double seconds) {
  PrivateRegistry registry;
  kxrig::SimulatedComPort a(4), b(5), c(6), d(7);
  CountingParser parser(port, baud);
  parser.Enable();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const double cpu = CpuSeconds();
  const auto start = Clock::now();
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  const double share = (CpuSeconds() - cpu) / Seconds(Clock::now() - start);
  std::printf("%s: %.3f %% of a core over %.0f s (aim: well under 1 %%)\n", what, share * 100,
              seconds);
}

void CloseWhileReading() {
  PrivateRegistry registry;
  kxrig::SimulatedComPort com(5);
  double worst = 0, sum = 0;
  const int rounds = 10;
  for (int round = 0; round < rounds; ++round) {
    CountingParser parser(5, 57600);
    parser.Enable();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // the read is waiting
    const auto start = Clock::now();
    parser.Disable();
    const double took = Seconds(Clock::now() - start) * 1e3;
    worst = std::max(worst, took);
    sum += took;
  }
  std::printf("disable while a read waits: mean %.2f ms, worst %.2f ms of %d (aim: under 500 ms)\n",
              sum / rounds, worst, rounds);
}

void Throughput(double seconds) {
  PrivateRegistry registry;
  kxrig::SimulatedComPort com(5);
  kxrig::SimulatedReceiver receiver(com.Line(), 57600, Gga);
  CountingParser parser(5, 57600);
  parser.Enable();
  if (parser.Failed()) {
    std::printf("continuous sentences: the port did not open\n");
    return;
  }
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  receiver.Stop();
  const int64_t sent = receiver.Sent();
  const auto end = Clock::now() + std::chrono::seconds(2);
  while (parser.Sentences() < sent && Clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  std::printf("%.0f s of continuous sentences at 57600 baud: %lld sent, %lld delivered%s\n",
              seconds, static_cast<long long>(sent), static_cast<long long>(parser.Sentences()),
              parser.Sentences() == sent ? ", every one" : ": SENTENCES LOST");
}

}  // namespace

int main() {
  const char* override = std::getenv("KX_LIVE_SECONDS");
  const double minute = override ? std::atof(override) : 60;
  FirstFix();
  IdleCpu("enabled on a silent fixed port", 5, 57600, minute / 6);
  IdleCpu("searching four silent ports", 0, 0, minute / 6);
  CloseWhileReading();
  Throughput(minute);
  return 0;
}
