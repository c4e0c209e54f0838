// "COMn:" is whatever device HKEY_LOCAL_MACHINE\Drivers\Active names so: each entry there
// has a "Name" such as "COM3:" and, on this system, a "DevicePath" such as
// "/dev/ttyUSB0". The serial devices present are entries of their own (ActiveDrivers), and
// an application or a test adds others, a pseudo-terminal for instance.
#include "platform/posix/SerialDevice.h"

#include <string>

#include "platform/posix/SerialObject.h"
#include "platform/posix/WideText.h"

namespace platform {

namespace {

constexpr DWORD kLongestKeyName = 256;

// The n of "COMn:", or -1 for another name.
long PortNumber(const std::u16string& name) {
  if (!IsSerialDeviceName(name.c_str())) return -1;
  long number = 0;
  for (size_t i = 3; name[i] != u':' && number < 100000; ++i)
    number = number * 10 + (name[i] - u'0');
  return number;
}

// A text value, without its terminator; empty when it is missing or not text.
std::u16string TextValue(HKEY key, const char16_t* name) {
  DWORD type = 0, size = 0;
  if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
      type != REG_SZ)
    return {};
  std::u16string text(size / 2, u'\0');
  if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size) !=
      ERROR_SUCCESS)
    return {};
  text.resize(text.find(u'\0') == std::u16string::npos ? text.size() : text.find(u'\0'));
  return text;
}

// The device path of the first active driver of that port; empty when there is none.
std::u16string DevicePathOf(long port) {
  HKEY active = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Drivers\\Active", 0, 0, &active) != ERROR_SUCCESS)
    return {};
  std::u16string path;
  WCHAR name[kLongestKeyName];
  DWORD length = kLongestKeyName;
  for (DWORD i = 0; path.empty() && RegEnumKeyExW(active, i, name, &length, nullptr, nullptr,
                                                  nullptr, nullptr) == ERROR_SUCCESS;
       ++i, length = kLongestKeyName) {
    HKEY driver = nullptr;
    if (RegOpenKeyExW(active, name, 0, 0, &driver) != ERROR_SUCCESS) continue;
    if (PortNumber(TextValue(driver, u"Name")) == port) path = TextValue(driver, u"DevicePath");
    RegCloseKey(driver);
  }
  RegCloseKey(active);
  return path;
}

}  // namespace

bool IsSerialDeviceName(LPCWSTR name) {
  if (!name) return false;
  for (int i = 0; i < 3; ++i)
    if ((name[i] & ~0x20) != u"COM"[i]) return false;
  int digits = 3;
  while (name[digits] >= u'0' && name[digits] <= u'9') ++digits;
  return digits > 3 && name[digits] == u':' && name[digits + 1] == 0;
}

// Ports are always opened for reading and writing, and never shared, whatever is asked.
HANDLE OpenSerialDevice(LPCWSTR name, DWORD, DWORD, DWORD disposition) {
  if (disposition != OPEN_EXISTING) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  const std::u16string path = DevicePathOf(PortNumber(name));
  if (path.empty()) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  SerialObject* port = SerialObject::Open(ToUtf8(path));
  return port ? port->AsHandle() : INVALID_HANDLE_VALUE;
}

}  // namespace platform
