// Which events a tool prints by default. A receiver tells one epoch in several
// sentences, and the parser delivers what each of them says: the GGA and the RMC of one
// second each give a fix, the RMC and the VTG each a movement. A reader wants one line
// of each per epoch; --all shows every event as delivered.
#pragma once

#include <string>

namespace kestrix {

class EpochFilter {
 public:
  explicit EpochFilter(bool all) : m_all(all) {}

  // Whether the event (type and object as delivered) is to be printed. A fix is printed
  // once per time of fix, the first one to come; a movement once per the epoch of the
  // newest fix, and before the first fix when it differs from the one printed last.
  // Satellites, quality and status are each their own news and always pass.
  bool Admits(int type, void* object);

 private:
  bool m_all;
  std::string m_epoch;          // time of day of the newest fix; empty before the first
  std::string m_fixEpoch;       // of the last fix printed
  std::string m_movementEpoch;  // of the last movement printed
  std::string m_movement;       // the values of the last movement printed
};

}  // namespace kestrix
