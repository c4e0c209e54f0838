#include "tools/kestrix/Simulator.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
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

// The time of day that a GGA, RMC or ZDA gives in its first field, in seconds; -1 for
// any other line.
double TimeOf(const std::string& line) {
  if (line.size() < 14 || line[0] != '$' || line[6] != ',') return -1;
  const std::string type = line.substr(3, 3);
  if (type != "GGA" && type != "RMC" && type != "ZDA") return -1;
  for (size_t i = 7; i < 13; ++i)
    if (!std::isdigit(static_cast<unsigned char>(line[i]))) return -1;
  auto two = [&](size_t at) { return (line[at] - '0') * 10 + (line[at + 1] - '0'); };
  return two(7) * 3600.0 + two(9) * 60.0 + std::strtod(line.c_str() + 11, nullptr);
}

// The silence before each line that gives the epochs the pace of the recording: before
// the first sentence with a new time, the time since the epoch before, less what that
// epoch's lines took on the wire. A step back in time, or one of more than ten seconds,
// counts as one second.
std::vector<double> RecordedPauses(const std::vector<std::string>& lines, int baud) {
  std::vector<double> pauses(lines.size(), 0);
  double epoch = -1, wire = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    const double time = TimeOf(lines[i]);
    if (time >= 0 && time != epoch) {
      if (epoch >= 0) {
        const double step = time > epoch && time - epoch <= 10 ? time - epoch : 1;
        pauses[i] = std::max(0.0, step - wire);
        wire = 0;
      }
      epoch = time;
    }
    wire += double(lines[i].size()) * 10 / baud;
  }
  return pauses;
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
    std::fprintf(stderr,
                 "kestrix simulate: --baud takes 4800 to 115200, --speedup a positive factor\n");
    return 2;
  }
  const std::vector<std::string> lines = ReadLog(options.log);
  if (lines.empty()) {
    std::fprintf(stderr, "kestrix simulate: no lines in %s\n", options.log.c_str());
    return 2;
  }
  // Before the port is registered: a signal from here on ends the program through the
  // destructors, which take the port out of the registry again.
  std::signal(SIGINT, OnSignal);
  std::signal(SIGTERM, OnSignal);
  kxrig::SimulatedComPort com(options.port, "kestrix-simulate-");
  if (!com.IsReady()) {
    std::fprintf(
        stderr, "kestrix simulate: no pseudo-terminal, or cannot register COM%d: in the registry\n",
        options.port);
    return 2;
  }
  std::fprintf(stderr, "kestrix simulate: COM%d: is %s, a receiver at %d baud playing %s\n",
               options.port, com.Line().PortPath().c_str(), options.baud, options.log.c_str());
  const bool once = options.once;
  const std::vector<double> pauses = RecordedPauses(lines, options.baud);
  kxrig::SimulatedReceiver::Pause pause;
  if (options.realtime)  // a second between the end of the log and its start again
    pause = [&pauses](int64_t n) {
      const size_t at = size_t(n) % pauses.size();
      return at == 0 && n > 0 ? 1.0 : pauses[at];
    };
  kxrig::SimulatedReceiver receiver(
      com.Line(), options.baud,
      [&lines, once](int64_t n) {
        return once && n >= int64_t(lines.size()) ? std::string() : lines[size_t(n) % lines.size()];
      },
      options.speedup, pause);
  WaitForTheEnd(receiver, options.seconds);
  receiver.Stop();
  std::fprintf(stderr, "kestrix simulate: %lld lines sent\n",
               static_cast<long long>(receiver.Sent()));
  return 0;
}

}  // namespace kestrix
