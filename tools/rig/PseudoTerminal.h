// A serial line made of a pseudo-terminal, for a port without hardware: the port's side
// (/dev/pts/N) is what CreateFileW("COMn:") opens once it is registered as a COM port, and
// the device's side is the master, which is read and written as the device at the other
// end of the cable would.
//
// The line keeps a descriptor of the port's side open all the time, in raw mode, so that
// the device can send before the port opens and after it closes (without one the master
// reads nothing but errors), and so that the line's settings can be looked at.
#pragma once

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>

namespace kxrig {

class PseudoTerminal {
 public:
  PseudoTerminal() {
    m_device = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_device < 0 || grantpt(m_device) != 0 || unlockpt(m_device) != 0) return;
    // The device never waits for the port: see Send.
    fcntl(m_device, F_SETFL, fcntl(m_device, F_GETFL) | O_NONBLOCK);
    char name[64];
    if (ptsname_r(m_device, name, sizeof name) != 0) return;
    m_portPath = name;
    m_portSide = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw;
    if (m_portSide >= 0 && tcgetattr(m_portSide, &raw) == 0) {
      cfmakeraw(&raw);
      tcsetattr(m_portSide, TCSANOW, &raw);
    }
  }
  ~PseudoTerminal() {
    Disconnect();
    if (m_portSide >= 0) ::close(m_portSide);
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  bool IsReady() const { return m_device >= 0 && m_portSide >= 0; }
  const std::string& PortPath() const { return m_portPath; }

  // Bytes from the device to the port; false unless all of them went. While nobody reads
  // the port its buffer fills; then what doesn't fit is lost, as on a cable, and the
  // device goes on without waiting (a blocking write would hold it, and whoever stops
  // it, for as long as nobody reads).
  bool Send(const std::string& bytes) {
    size_t sent = 0;
    while (m_device >= 0 && sent < bytes.size()) {
      const ssize_t wrote = ::write(m_device, bytes.data() + sent, bytes.size() - sent);
      if (wrote < 0 && errno == EINTR) continue;
      if (wrote <= 0) return false;
      sent += size_t(wrote);
    }
    return m_device >= 0;
  }
  // What the port sent, until `count` bytes have come or the time is over.
  std::string Receive(size_t count, int milliseconds) {
    std::string bytes;
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (m_device >= 0 && bytes.size() < count) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                            deadline - std::chrono::steady_clock::now())
                            .count();
      pollfd ready = {m_device, POLLIN, 0};
      if (left <= 0 || ::poll(&ready, 1, int(left)) <= 0) break;
      char block[512];
      const ssize_t got = ::read(m_device, block, std::min(sizeof block, count - bytes.size()));
      if (got <= 0) break;
      bytes.append(block, size_t(got));
    }
    return bytes;
  }
  // The device goes away: the port's side hangs up.
  void Disconnect() {
    if (m_device >= 0) ::close(m_device);
    m_device = -1;
  }
  // The line's settings, as the port last made them.
  termios Settings() const {
    termios line{};
    tcgetattr(m_portSide, &line);
    return line;
  }
  speed_t Speed() const {
    const termios line = Settings();
    return cfgetospeed(&line);
  }

 private:
  int m_device = -1;
  int m_portSide = -1;
  std::string m_portPath;
};

}  // namespace kxrig
