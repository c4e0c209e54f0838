#include "tools/kestrix/ComPorts.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "KestrixCE.h"

namespace kestrix {

namespace {

constexpr uint32_t kText = 1;  // REG_SZ

std::string Value(HKEY key, const char16_t* name) {
  uint32_t type = 0, size = 0;
  if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != 0 || type != kText) return {};
  std::u16string text(size / 2, u'\0');
  if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<unsigned char*>(&text[0]),
                       &size) != 0)
    return {};
  std::string narrow;
  for (const char16_t c : text) {
    if (c == 0) break;
    narrow += char(c < 0x80 ? c : '?');
  }
  return narrow;
}

// The entry Drivers\Active\<key> as a port, when it names one.
std::optional<ComPort> Entry(const std::u16string& key) {
  HKEY entry = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, (u"Drivers\\Active\\" + key).c_str(), 0, 0, &entry) != 0)
    return std::nullopt;
  const std::string name = Value(entry, u"Name"), device = Value(entry, u"DevicePath");
  RegCloseKey(entry);
  if (name.size() < 5 || strncasecmp(name.c_str(), "COM", 3) != 0) return std::nullopt;
  const int number = std::atoi(name.c_str() + 3);
  if (number < 1) return std::nullopt;
  return ComPort{number, device};
}

bool InGroup(gid_t group) {
  if (getegid() == group) return true;
  std::vector<gid_t> groups(size_t(std::max(getgroups(0, nullptr), 0)));
  groups.resize(size_t(std::max(getgroups(int(groups.size()), groups.data()), 0)));
  return std::find(groups.begin(), groups.end(), group) != groups.end();
}

// Whether the group lists this user, though the process doesn't have it: a login that
// began before the user joined.
bool ListedIn(const group& entry) {
  const passwd* me = getpwuid(geteuid());
  if (!me) return false;
  for (char** member = entry.gr_mem; member && *member; ++member)
    if (std::strcmp(*member, me->pw_name) == 0) return true;
  return false;
}

}  // namespace

// Every entry of Drivers\Active that names a COM port, in the order of their numbers: the
// serial devices the library lists by itself and any a program has added.
std::vector<ComPort> ComPorts::Known() {
  std::vector<ComPort> ports;
  HKEY active = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Drivers\\Active", 0, 0, &active) != 0) return ports;
  WCHAR name[256];
  uint32_t length = 256;
  for (uint32_t i = 0;
       RegEnumKeyExW(active, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0;
       ++i, length = 256) {
    const auto port = Entry(std::u16string(name, length));
    if (!port) continue;
    auto at = std::find_if(ports.begin(), ports.end(),
                           [&](const ComPort& p) { return p.number >= port->number; });
    if (at == ports.end() || at->number != port->number) ports.insert(at, *port);
  }
  RegCloseKey(active);
  return ports;
}

std::optional<ComPort> ComPorts::Find(int number) {
  for (const ComPort& port : Known())
    if (port.number == number) return port;
  return std::nullopt;
}

std::string ComPorts::Refusal(const std::string& device) {
  if (device.empty() || ::access(device.c_str(), R_OK | W_OK) == 0) return "";
  if (errno != EACCES && errno != EPERM) return "";
  struct stat status {};
  if (::stat(device.c_str(), &status) != 0) return "";
  const group* owners = getgrgid(status.st_gid);
  const std::string group = owners ? owners->gr_name : std::to_string(status.st_gid);
  const bool groupMay = (status.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP);
  if (groupMay && status.st_gid != 0 && !InGroup(status.st_gid)) {
    if (owners && ListedIn(*owners))
      return "you may not open " + device + ": you joined the group " + group +
             " after this login began; log in again (or start a shell with: newgrp " + group + ")";
    return "you may not open " + device + ": it is open to the group " + group +
           ", which you are not in; join it (sudo usermod -aG " + group +
           " $USER) and log in again";
  }
  char mode[8];
  std::snprintf(mode, sizeof mode, "%04o", unsigned(status.st_mode & 07777));
  const passwd* owner = getpwuid(status.st_uid);
  return "you may not open " + device + " (owner " +
         (owner ? std::string(owner->pw_name) : std::to_string(status.st_uid)) + ", group " +
         group + ", mode " + mode +
         "): ask for read and write access to it, as serial devices usually give the group "
         "dialout";
}

}  // namespace kestrix
