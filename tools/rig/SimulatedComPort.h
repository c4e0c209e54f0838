// A pseudo-terminal registered as COMn: for as long as the object lives.
#pragma once

#include <string>

#include "tools/rig/ComPortEntry.h"
#include "tools/rig/PseudoTerminal.h"

namespace kxrig {

class SimulatedComPort {
 public:
  explicit SimulatedComPort(int port, const std::string& keyPrefix = "simulated")
      : m_port(port), m_entry(port, m_line.PortPath(), keyPrefix + std::to_string(port)) {}

  bool IsReady() const { return m_line.IsReady() && m_entry.IsMade(); }
  int Port() const { return m_port; }
  std::u16string DeviceName() const {
    return ComPortEntry::Wide("COM" + std::to_string(m_port) + ":");
  }
  PseudoTerminal& Line() { return m_line; }

 private:
  int m_port;
  PseudoTerminal m_line;
  ComPortEntry m_entry;
};

}  // namespace kxrig
