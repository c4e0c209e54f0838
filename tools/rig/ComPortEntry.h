// An entry under HKEY_LOCAL_MACHINE\Drivers\Active that makes a device path the port
// COMn:, removed again at the end of the scope: what a driver does for a device that
// isn't found by itself. It goes into the registry in use (KESTRIX_REGISTRY).
#pragma once

#include <string>

#include "exports/KestrixCE.h"

namespace kxrig {

class ComPortEntry {
 public:
  // The key is Drivers\Active\<keyName>.
  ComPortEntry(int port, const std::string& devicePath, const std::string& keyName)
      : m_key(Wide("Drivers\\Active\\" + keyName)) {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, m_key.c_str(), 0, nullptr, 0, 0, nullptr, &key,
                        nullptr) != 0)
      return;
    m_made = SetText(key, u"Name", "COM" + std::to_string(port) + ":") &&
             SetText(key, u"DevicePath", devicePath);
    RegCloseKey(key);
  }
  ~ComPortEntry() { RegDeleteKeyW(HKEY_LOCAL_MACHINE, m_key.c_str()); }
  ComPortEntry(const ComPortEntry&) = delete;
  ComPortEntry& operator=(const ComPortEntry&) = delete;

  bool IsMade() const { return m_made; }

  static std::u16string Wide(const std::string& text) {
    return std::u16string(text.begin(), text.end());
  }

 private:
  static constexpr uint32_t kText = 1;  // REG_SZ

  static bool SetText(HKEY key, const char16_t* name, const std::string& text) {
    const std::u16string wide = Wide(text);
    return RegSetValueExW(key, name, 0, kText, reinterpret_cast<const unsigned char*>(wide.c_str()),
                          uint32_t((wide.size() + 1) * sizeof(char16_t))) == 0;
  }

  std::u16string m_key;
  bool m_made = false;
};

}  // namespace kxrig
