// The COM ports as the library sees them, with the device behind each, for what the
// tools tell a user: which ports a search goes through, and why a device refuses them.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrix {

struct ComPort {
  int number;          // n of "COMn:"
  std::string device;  // its DevicePath, "/dev/ttyUSB0"
};

class ComPorts {
 public:
  // The active ports in ascending order, one entry for each number: those of the serial
  // devices present, and those that kestrix simulate registered. The public registry
  // calls open keys by name and can't list them, so an entry that another program
  // wrote under a name of its own isn't among them.
  static std::vector<ComPort> Known();
  static std::optional<ComPort> Find(int number);

  // Empty when this user may read and write the device (or when it isn't there at all);
  // otherwise what stops them and what they can do about it.
  static std::string Refusal(const std::string& device);
};

}  // namespace kestrix
