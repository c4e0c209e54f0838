#include "platform/posix/ActiveDrivers.h"

#include <dirent.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <set>

#include "platform/posix/WideText.h"

namespace platform {

namespace {

// The families of serial devices, in the order their ports are numbered.
constexpr const char* kFamilies[] = {"ttyS", "ttyUSB", "ttyACM", "rfcomm"};
constexpr int kFamilyCount = int(sizeof kFamilies / sizeof *kFamilies);
// The device numbers COM ports end at: the registry's names are "COM1:" to "COM255:".
constexpr long kLastPort = 255;
// The automatic search never tries this port, so no device found here is given it: it
// stays free for a receiver that a user places there by hand.
constexpr long kUnsearchedPort = 3;

// The family's index and the device's number, or -1 for a name of no family.
int FamilyOf(const std::string& name, long& number) {
  for (int family = 0; family < kFamilyCount; ++family) {
    const std::string prefix = kFamilies[family];
    if (name.size() <= prefix.size() || name.compare(0, prefix.size(), prefix) != 0) continue;
    char* end = nullptr;
    number = std::strtol(name.c_str() + prefix.size(), &end, 10);
    if (*end == 0 && std::isdigit(static_cast<unsigned char>(name[prefix.size()]))) return family;
  }
  return -1;
}

std::string FirstLine(const std::string& path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);
  return line;
}

// The kernel makes a ttyS device for every possible UART; only those whose type isn't
// 0 (unknown) have one.
bool HasUart(const std::string& name) {
  const std::string type = FirstLine("/sys/class/tty/" + name + "/type");
  return !type.empty() && std::strtol(type.c_str(), nullptr, 10) != 0;
}

// A USB device names its product a level or two above the tty's interface.
std::string ProductOf(const std::string& name) {
  std::string place = "/sys/class/tty/" + name + "/device";
  for (int up = 0; up < 3; ++up, place += "/..") {
    const std::string product = FirstLine(place + "/product");
    if (!product.empty()) return product;
  }
  return {};
}

std::vector<BYTE> TextData(const std::string& utf8) {
  const std::u16string text = FromUtf8(utf8);
  std::vector<BYTE> data;
  for (const char16_t c : text) {
    data.push_back(BYTE(c & 0xFF));
    data.push_back(BYTE(c >> 8));
  }
  data.push_back(0);
  data.push_back(0);
  return data;
}

std::string TextOf(const RegistryValue* value) {
  if (!value || value->type != REG_SZ) return {};
  std::u16string text;
  for (size_t i = 0; i + 1 < value->data.size(); i += 2) {
    const char16_t c = char16_t(value->data[i] | value->data[i + 1] << 8);
    if (!c) break;
    text += c;
  }
  return ToUtf8(text);
}

// The n of a "COMn:" name, or 0.
long PortOf(const std::string& name) {
  if (name.size() < 5 || (name[0] & ~0x20) != 'C' || (name[1] & ~0x20) != 'O' ||
      (name[2] & ~0x20) != 'M')
    return 0;
  return std::strtol(name.c_str() + 3, nullptr, 10);
}

RegistryNode* MachineChild(RegistryNode& parent, const std::u16string& name) {
  if (RegistryNode* present = parent.Child(name)) return present;
  RegistryNode* made = parent.AddChild(name);
  made->MarkMachineMade();
  return made;
}

// Takes out the entries of the last merge: devices come and go.
void ForgetMachineEntries(RegistryNode& active) {
  std::vector<std::u16string> made;
  for (const auto& entry : active.Children())
    if (entry->IsMachineMade()) made.push_back(entry->Name());
  for (const std::u16string& name : made) active.RemoveChild(name);
}

void AddEntry(RegistryNode& active, const SerialDeviceFound& device, long port) {
  const std::u16string name = FromUtf8(device.name);
  RegistryNode* entry = active.AddChild(name);
  entry->MarkMachineMade();
  const std::string friendly =
      device.product.empty() ? device.path : device.product + " (" + device.path + ")";
  entry->SetValue(u"Name", REG_SZ, TextData("COM" + std::to_string(port) + ":"));
  entry->SetValue(u"DevicePath", REG_SZ, TextData(device.path));
  entry->SetValue(u"Key", REG_SZ, TextData("Drivers\\Active\\" + device.name));
  entry->SetValue(u"FriendlyName", REG_SZ, TextData(friendly));
}

// The directory of the devices: $KESTRIX_DEVICES, else /dev. A test points it at an
// empty directory, so that only the ports it registers itself are there.
std::string DeviceDirectory() {
  const char* chosen = std::getenv("KESTRIX_DEVICES");
  return chosen && *chosen ? chosen : "/dev";
}

}  // namespace

std::vector<SerialDeviceFound> FindSerialDevices() {
  struct Candidate {
    int family;
    long number;
    std::string name;
  };
  std::vector<Candidate> candidates;
  const std::string directory = DeviceDirectory();
  if (DIR* dev = ::opendir(directory.c_str())) {
    while (const dirent* item = ::readdir(dev)) {
      long number = 0;
      const int family = FamilyOf(item->d_name, number);
      if (family < 0 || (family == 0 && !HasUart(item->d_name))) continue;
      candidates.push_back({family, number, item->d_name});
    }
    ::closedir(dev);
  }
  std::sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
    return a.family != b.family ? a.family < b.family : a.number < b.number;
  });
  std::vector<SerialDeviceFound> devices;
  for (const Candidate& candidate : candidates)
    devices.push_back(
        {candidate.name, directory + "/" + candidate.name, ProductOf(candidate.name)});
  return devices;
}

// Every registry call looks, and listing the ports makes dozens of calls: a look that is
// younger than this is used again.
constexpr auto kDeviceLookAge = std::chrono::milliseconds(500);

void MergeActiveDrivers(RegistryNode& localMachine) {
  struct Look {
    std::mutex mutex;
    std::string directory;
    std::chrono::steady_clock::time_point when;
    std::vector<SerialDeviceFound> devices;
  };
  static auto* last = new Look;  // never destroyed: the registry may be used after main
  std::lock_guard<std::mutex> lock(last->mutex);
  const auto now = std::chrono::steady_clock::now();
  const std::string directory = DeviceDirectory();
  if (directory != last->directory || last->when == decltype(now){} ||
      now - last->when >= kDeviceLookAge) {
    last->devices = FindSerialDevices();
    last->directory = directory;
    last->when = now;
  }
  MergeActiveDrivers(localMachine, last->devices);
}

void MergeActiveDrivers(RegistryNode& localMachine, const std::vector<SerialDeviceFound>& devices) {
  RegistryNode* drivers = localMachine.Child(u"Drivers");
  RegistryNode* active = drivers ? drivers->Child(u"Active") : nullptr;
  if (active) ForgetMachineEntries(*active);
  if (devices.empty()) return;
  if (!active) active = MachineChild(*MachineChild(localMachine, u"Drivers"), u"Active");

  std::set<long> takenPorts;
  std::set<std::string> takenPaths;
  for (const auto& entry : active->Children()) {
    takenPorts.insert(PortOf(TextOf(entry->Value(u"Name"))));
    takenPaths.insert(TextOf(entry->Value(u"DevicePath")));
  }
  long port = 1;
  for (const SerialDeviceFound& device : devices) {
    if (takenPaths.count(device.path) || active->Child(FromUtf8(device.name))) continue;
    while (takenPorts.count(port) || port == kUnsearchedPort) ++port;
    if (port > kLastPort) return;
    AddEntry(*active, device, port++);
  }
}

}  // namespace platform
