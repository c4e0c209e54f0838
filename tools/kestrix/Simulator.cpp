#include "tools/kestrix/Simulator.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tools/rig/SimulatedComPort.h"
#include "tools/rig/SimulatedReceiver.h"

namespace kestrix {

namespace {

std::atomic<bool> stopping{false};

void OnSignal(int) { stopping = true; }

std::vector<std::string> ReadLog(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream file(path, std::ios::binary);
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty() && line[0] != '#') lines.push_back(line + "\r\n");
  }
  return lines;
}

// Until Ctrl-C, the end of the log played once, or the time given.
void WaitForTheEnd(const kxrig::SimulatedReceiver& receiver, double seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!stopping && !receiver.Finished() &&
         (seconds <= 0 || std::chrono::steady_clock::now() < end))
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

}  // namespace

int Simulator::Run(const SimulatorOptions& options) {
  if (kxrig::SimulatedReceiver::SpeedOf(options.baud) == B0 || !(options.speedup > 0) ||
      options.port < 1) {
    std::fprintf(stderr, "--baud takes 4800 to 115200, --speedup a positive factor\n");
    return 2;
  }
  const std::vector<std::string> lines = ReadLog(options.log);
  if (lines.empty()) {
    std::fprintf(stderr, "no lines in %s\n", options.log.c_str());
    return 2;
  }
  // Before the port is registered: a signal from here on ends the program through the
  // destructors, which take the port out of the registry again.
  std::signal(SIGINT, OnSignal);
  std::signal(SIGTERM, OnSignal);
  kxrig::SimulatedComPort com(options.port, "kestrix-simulate-");
  if (!com.IsReady()) {
    std::fprintf(stderr, "no pseudo-terminal, or cannot register COM%d: in the registry\n",
                 options.port);
    return 2;
  }
  std::fprintf(stderr, "COM%d: is %s, a receiver at %d baud playing %s\n", options.port,
               com.Line().PortPath().c_str(), options.baud, options.log.c_str());
  const bool once = options.once;
  kxrig::SimulatedReceiver receiver(
      com.Line(), options.baud,
      [&lines, once](int64_t n) {
        return once && n >= int64_t(lines.size()) ? std::string() : lines[size_t(n) % lines.size()];
      },
      options.speedup);
  WaitForTheEnd(receiver, options.seconds);
  receiver.Stop();
  std::fprintf(stderr, "%lld lines sent\n", static_cast<long long>(receiver.Sent()));
  return 0;
}

}  // namespace kestrix
