// One key of the registry in memory: its name, its values and its sub-keys. The whole
// registry is one such node whose sub-keys are the roots ("HKEY_LOCAL_MACHINE", ...).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/win32ce.h"

namespace platform {

struct RegistryValue {
  std::u16string name;  // empty for the key's default value
  DWORD type;
  std::vector<BYTE> data;
};

class RegistryNode {
 public:
  explicit RegistryNode(std::u16string name) : m_name(std::move(name)) {}

  // Registry names match without regard to the case of ASCII letters.
  static bool SameName(const std::u16string& a, const std::u16string& b);

  const std::u16string& Name() const { return m_name; }

  // Sub-keys in the order of their names, without regard to case.
  const std::vector<std::unique_ptr<RegistryNode>>& Children() const { return m_children; }
  RegistryNode* Child(const std::u16string& name) const;
  // The sub-key of that name, made when it is missing.
  RegistryNode* AddChild(const std::u16string& name);
  // With everything below it; false when there is no such sub-key.
  bool RemoveChild(const std::u16string& name);

  // Values in the order they were first set.
  const std::vector<RegistryValue>& Values() const { return m_values; }
  const RegistryValue* Value(const std::u16string& name) const;
  void SetValue(const std::u16string& name, DWORD type, std::vector<BYTE> data);
  bool RemoveValue(const std::u16string& name);

  // A key that describes the machine rather than what was written, as the active drivers
  // of the serial devices present: the file leaves it out, but not its sub-keys that
  // aren't such keys themselves.
  void MarkMachineMade() { m_machineMade = true; }
  bool IsMachineMade() const { return m_machineMade; }

 private:
  std::vector<std::unique_ptr<RegistryNode>>::const_iterator LowerBound(
      const std::u16string& name) const;

  std::u16string m_name;
  std::vector<std::unique_ptr<RegistryNode>> m_children;
  std::vector<RegistryValue> m_values;
  bool m_machineMade = false;
};

}  // namespace platform
