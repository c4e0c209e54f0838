// kestrix replay: a receiver log through the parser, every delivered event as a line.
#pragma once

#include <cstdio>
#include <string>

namespace kestrix {

struct ReplayOptions {
  std::string log;
  short grid = 0;               // fixes also in this grid (EventText::ReadGrid)
  std::string mode = "window";  // window, queue or poll
  bool json = false;
  bool all = false;  // every event as delivered, not one fix and movement per epoch
};

class Replay {
 public:
  // 0 when the log was read; 2 when it couldn't be, or an option was refused.
  static int Run(const ReplayOptions& options, std::FILE* out);
};

}  // namespace kestrix
