// kestrix simulate: a receiver without hardware. A pseudo-terminal is registered as a
// COM port for as long as the program runs, and a log is played on it, over and over,
// at the pace of the chosen baud rate, or with --realtime an epoch at a time at the pace
// of the recording (times a speed-up in both cases). Like a real receiver it is heard
// only at its own speed: while the port is set to another, what it says is lost, as
// garbled bytes would be. At the end it tells how many lines went out whole.
#pragma once

#include <string>

namespace kestrix {

struct SimulatorOptions {
  std::string log;
  int baud = 4800;
  double speedup = 1;
  int port = 5;
  bool once = false;
  bool realtime = false;  // epochs at the pace of the recording, not back to back
  double seconds = 0;     // 0: until the end of the log or Ctrl-C
};

class Simulator {
 public:
  // Exit codes: 0 ended, 2 bad options, no pseudo-terminal or an unreadable log.
  static int Run(const SimulatorOptions& options);
};

}  // namespace kestrix
