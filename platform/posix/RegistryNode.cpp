#include "platform/posix/RegistryNode.h"

#include <algorithm>

namespace platform {

namespace {

char16_t Folded(char16_t c) { return c >= u'a' && c <= u'z' ? char16_t(c - 32) : c; }

bool FoldedLess(const std::u16string& a, const std::u16string& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char16_t x, char16_t y) { return Folded(x) < Folded(y); });
}

}  // namespace

bool RegistryNode::SameName(const std::u16string& a, const std::u16string& b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(),
                    [](char16_t x, char16_t y) { return Folded(x) == Folded(y); });
}

std::vector<std::unique_ptr<RegistryNode>>::const_iterator RegistryNode::LowerBound(
    const std::u16string& name) const {
  return std::lower_bound(m_children.begin(), m_children.end(), name,
                          [](const std::unique_ptr<RegistryNode>& child,
                             const std::u16string& key) { return FoldedLess(child->m_name, key); });
}

RegistryNode* RegistryNode::Child(const std::u16string& name) const {
  const auto at = LowerBound(name);
  return at != m_children.end() && SameName((*at)->m_name, name) ? at->get() : nullptr;
}

RegistryNode* RegistryNode::AddChild(const std::u16string& name) {
  const auto at = LowerBound(name);
  if (at != m_children.end() && SameName((*at)->m_name, name)) return at->get();
  return m_children.insert(at, std::make_unique<RegistryNode>(name))->get();
}

bool RegistryNode::RemoveChild(const std::u16string& name) {
  const auto at = LowerBound(name);
  if (at == m_children.end() || !SameName((*at)->m_name, name)) return false;
  m_children.erase(at);
  return true;
}

const RegistryValue* RegistryNode::Value(const std::u16string& name) const {
  for (const RegistryValue& value : m_values)
    if (SameName(value.name, name)) return &value;
  return nullptr;
}

void RegistryNode::SetValue(const std::u16string& name, DWORD type, std::vector<BYTE> data) {
  for (RegistryValue& value : m_values) {
    if (!SameName(value.name, name)) continue;
    value.type = type;
    value.data = std::move(data);
    return;
  }
  m_values.push_back(RegistryValue{name, type, std::move(data)});
}

bool RegistryNode::RemoveValue(const std::u16string& name) {
  const auto at = std::find_if(m_values.begin(), m_values.end(), [&](const RegistryValue& value) {
    return SameName(value.name, name);
  });
  if (at == m_values.end()) return false;
  m_values.erase(at);
  return true;
}

}  // namespace platform
