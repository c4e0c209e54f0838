// kestrix gps: a live receiver through the parser's queue, every event as it arrives.
#pragma once

#include <string>

namespace kestrix {

struct LiveGpsOptions {
  std::string port = "auto";  // a COM port number, or auto
  std::string baud = "auto";  // a baud rate, or auto
  short grid = 0;             // fixes also in this grid (EventText::ReadGrid)
  bool json = false;
  bool all = false;  // every event as delivered, not one fix and movement per epoch
  bool sentences = false;
  double seconds = 0;  // 0: until interrupted
};

class LiveGps {
 public:
  // Exit codes: 0 ended by time or interrupt, 2 bad options or a port that won't open
  // (said on stderr in one line: the library's error number and text).
  static int Run(const LiveGpsOptions& options);
};

}  // namespace kestrix
