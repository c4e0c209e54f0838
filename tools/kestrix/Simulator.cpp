#include "tools/kestrix/Simulator.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "KestrixCE.h"

namespace kestrix {

namespace {

std::atomic<bool> stopping{false};

void OnSignal(int) { stopping = true; }

std::u16string Wide(const std::string& text) { return std::u16string(text.begin(), text.end()); }

speed_t SpeedOf(int baud) {
  switch (baud) {
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 115200: return B115200;
    default: return B0;
  }
}

// The device's end of a pseudo-terminal, and the port's end held open in raw mode, so that
// bytes sent while no program has the port open don't fail, and the port's speed can be read.
class Line {
 public:
  Line() {
    m_device = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char name[128];
    if (m_device < 0 || grantpt(m_device) != 0 || unlockpt(m_device) != 0 ||
        ptsname_r(m_device, name, sizeof name) != 0)
      return;
    m_path = name;
    m_port = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    if (m_port >= 0 && tcgetattr(m_port, &raw) == 0) {
      cfmakeraw(&raw);
      tcsetattr(m_port, TCSANOW, &raw);
    }
  }
  ~Line() {
    if (m_port >= 0) ::close(m_port);
    if (m_device >= 0) ::close(m_device);
  }
  bool IsReady() const { return m_port >= 0; }
  const std::string& Path() const { return m_path; }
  speed_t PortSpeed() const {
    termios line{};
    return tcgetattr(m_port, &line) == 0 ? cfgetospeed(&line) : B0;
  }
  void Send(const std::string& bytes) {
    if (::write(m_device, bytes.data(), bytes.size()) < 0) {
      // the port's buffer is full while nobody reads: the bytes are lost, as on a cable
    }
  }

 private:
  int m_device = -1;
  int m_port = -1;
  std::string m_path;
};

// The key under Drivers\Active that makes the line COMn:, for the life of the object.
class PortEntry {
 public:
  PortEntry(int port, const std::string& devicePath)
      : m_key(u"Drivers\\Active\\kestrix-simulate-" + Wide(std::to_string(port))) {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, m_key.c_str(), 0, nullptr, 0, 0, nullptr, &key,
                        nullptr) != 0)
      return;
    m_made = Set(key, u"Name", "COM" + std::to_string(port) + ":") &&
             Set(key, u"DevicePath", devicePath);
    RegCloseKey(key);
  }
  ~PortEntry() { RegDeleteKeyW(HKEY_LOCAL_MACHINE, m_key.c_str()); }
  bool IsMade() const { return m_made; }

 private:
  static bool Set(HKEY key, const char16_t* name, const std::string& text) {
    const std::u16string wide = Wide(text);
    return RegSetValueExW(key, name, 0, 1, reinterpret_cast<const unsigned char*>(wide.c_str()),
                          uint32_t((wide.size() + 1) * sizeof(char16_t))) == 0;
  }
  std::u16string m_key;
  bool m_made = false;
};

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

// Each line takes the time its bytes need on the wire: ten bits a byte.
void Play(Line& line, const std::vector<std::string>& lines, const SimulatorOptions& options) {
  const speed_t speed = SpeedOf(options.baud);
  auto next = std::chrono::steady_clock::now();
  do {
    for (const std::string& text : lines) {
      if (stopping) return;
      if (line.PortSpeed() == speed) line.Send(text);
      next += std::chrono::duration_cast<std::chrono::steady_clock::duration>(
          std::chrono::duration<double>(text.size() * 10.0 / options.baud / options.speedup));
      std::this_thread::sleep_until(next);
    }
  } while (!options.once);
}

}  // namespace

int Simulator::Run(const SimulatorOptions& options) {
  if (SpeedOf(options.baud) == B0 || !(options.speedup > 0) || options.port < 1) {
    std::fprintf(stderr, "--baud takes 4800 to 115200, --speedup a positive factor\n");
    return 2;
  }
  const std::vector<std::string> lines = ReadLog(options.log);
  if (lines.empty()) {
    std::fprintf(stderr, "no lines in %s\n", options.log.c_str());
    return 2;
  }
  Line line;
  if (!line.IsReady()) {
    std::fprintf(stderr, "no pseudo-terminal\n");
    return 2;
  }
  PortEntry entry(options.port, line.Path());
  if (!entry.IsMade()) {
    std::fprintf(stderr, "cannot register COM%d: in the registry\n", options.port);
    return 2;
  }
  std::signal(SIGINT, OnSignal);
  std::signal(SIGTERM, OnSignal);
  std::fprintf(stderr, "COM%d: is %s, a receiver at %d baud playing %s\n", options.port,
               line.Path().c_str(), options.baud, options.log.c_str());
  Play(line, lines, options);
  return 0;
}

}  // namespace kestrix
