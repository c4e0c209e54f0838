#include "platform/posix/TerminalsInUse.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace platform {

namespace {

// /dev/tty, which is whoever opens it's own terminal, and /dev/console.
constexpr unsigned kTtyMajor = 5;
constexpr unsigned kTtyMinor = 0;
constexpr unsigned kConsoleMinor = 1;

// The device number in a "major:minor" line of sysfs, or 0.
dev_t SysfsDevice(const std::string& name) {
  std::ifstream line("/sys/class/tty/" + name + "/dev");
  unsigned major = 0, minor = 0;
  char colon = 0;
  return line >> major >> colon >> minor && colon == ':' ? makedev(major, minor) : 0;
}

// The console itself and the terminals that the kernel writes its console to.
bool IsConsole(dev_t device) {
  if (device == makedev(kTtyMajor, kTtyMinor) || device == makedev(kTtyMajor, kConsoleMinor))
    return true;
  std::ifstream active("/sys/class/tty/console/active");
  std::string name;
  while (active >> name)
    if (SysfsDevice(name) == device) return true;
  return false;
}

// The kernel's encoding of a device number in /proc/<pid>/stat: the minor's low byte,
// the major above it, the rest of the minor above that.
dev_t DecodeTtyNr(unsigned number) {
  return makedev((number >> 8) & 0xfff, (number & 0xff) | ((number >> 12) & 0xfff00));
}

// The controlling terminal of the process whose /proc directory is `pid`, or 0. The
// command in parentheses may hold anything, so the fields are counted from the last ")":
// state, parent, group, session, terminal. They all lie within the first bytes.
dev_t ControllingTerminal(int proc, const char* pid) {
  char path[32];
  std::snprintf(path, sizeof path, "%s/stat", pid);
  const int file = ::openat(proc, path, O_RDONLY | O_CLOEXEC);
  if (file < 0) return 0;  // the process has ended
  char text[256];
  const ssize_t got = ::read(file, text, sizeof text - 1);
  ::close(file);
  if (got <= 0) return 0;
  text[got] = 0;
  const char* commandEnd = std::strrchr(text, ')');
  int number = 0;
  if (!commandEnd || std::sscanf(commandEnd + 1, " %*c %*d %*d %*d %d", &number) != 1) return 0;
  return number ? DecodeTtyNr(unsigned(number)) : 0;
}

}  // namespace

// One look at every process: a few system calls each, and only when a port opens.
bool IsTerminalInUse(dev_t device) {
  if (IsConsole(device)) return true;
  DIR* processes = ::opendir("/proc");
  if (!processes) return false;
  bool inUse = false;
  while (const dirent* entry = ::readdir(processes)) {
    if (!std::isdigit(static_cast<unsigned char>(entry->d_name[0]))) continue;
    if (ControllingTerminal(::dirfd(processes), entry->d_name) == device) {
      inUse = true;
      break;
    }
  }
  ::closedir(processes);
  return inUse;
}

}  // namespace platform
