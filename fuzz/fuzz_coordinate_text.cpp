// Lines of the command-line converter's input: whatever bytes come, the reader answers
// with coordinates or with nothing, and never reads past the line.
#include <cstdint>
#include <string>

#include "tools/kestrix/CoordinateText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1024) return 0;
  const std::string line(reinterpret_cast<const char*>(data), size);
  (void)kestrix::CoordinateText::ReadGeographic(line);
  (void)kestrix::CoordinateText::ReadPlanar(line);
  return 0;
}
