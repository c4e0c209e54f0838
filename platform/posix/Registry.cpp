// The registry calls over the file-backed tree. A key's handle holds the key's path, not
// the key: another process may have replaced the whole tree since the key was opened.
// A handle whose key has gone since answers ERROR_KEY_DELETED.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <mutex>
#include <new>
#include <set>
#include <vector>

#include "platform/posix/RegistryStore.h"

using platform::RegistryNode;
using platform::RegistryStore;
using platform::RegistryValue;

namespace {

// Windows' limit for the name of one key, without its terminator.
constexpr size_t kLongestKeyName = 255;

typedef std::vector<std::u16string> KeyPath;

struct OpenKey {
  KeyPath path;  // from the root's name down
};

// One store and the open keys of the process, behind one lock.
struct Registry {
  std::mutex mutex;
  RegistryStore store;
  std::set<const OpenKey*> openKeys;
};

Registry& TheRegistry() {
  static auto* registry = new Registry();  // never destroyed: keys may be closed after main
  return *registry;
}

std::u16string NameOf(LPCWSTR name) { return name ? std::u16string(name) : std::u16string(); }

// The parts of a path below a key; empty parts (a leading backslash, a doubled one) are
// passed over.
KeyPath PartsOf(LPCWSTR subKey) {
  KeyPath parts;
  const std::u16string path = NameOf(subKey);
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find(u'\\', start), path.size());
    if (end > start) parts.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

bool IsValidKeyName(const std::u16string& name) {
  if (name.size() > kLongestKeyName) return false;
  for (const char16_t c : name)
    if (c < 0x20) return false;  // the file keeps one key per line
  return true;
}

// Under the registry's lock: the path of a root or an open key.
LONG PathOf(Registry& registry, HKEY key, KeyPath& path) {
  const uintptr_t value = reinterpret_cast<uintptr_t>(key);
  const uintptr_t first = reinterpret_cast<uintptr_t>(HKEY_CLASSES_ROOT);
  if (value >= first && value - first < std::size(RegistryStore::kRootNames)) {
    path = {RegistryStore::kRootNames[value - first]};
    return ERROR_SUCCESS;
  }
  const auto* open = reinterpret_cast<const OpenKey*>(key);
  if (!registry.openKeys.count(open)) return LONG(ERROR_INVALID_HANDLE);
  path = open->path;
  return ERROR_SUCCESS;
}

RegistryNode* Find(RegistryNode& top, const KeyPath& path) {
  RegistryNode* node = &top;
  for (const std::u16string& name : path)
    if (!(node = node->Child(name))) return nullptr;
  return node;
}

KeyPath Joined(KeyPath path, const KeyPath& below) {
  path.insert(path.end(), below.begin(), below.end());
  return path;
}

LONG HandOut(Registry& registry, KeyPath path, HKEY* result) {
  auto* open = new (std::nothrow) OpenKey{std::move(path)};
  if (!open) return LONG(ERROR_NOT_ENOUGH_MEMORY);
  registry.openKeys.insert(open);
  *result = reinterpret_cast<HKEY>(open);
  return ERROR_SUCCESS;
}

// Runs a look at the key of a handle, with the tree up to date.
template <class Look>
LONG WithKey(HKEY key, Look look) {
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  KeyPath path;
  LONG result = PathOf(registry, key, path);
  if (result == ERROR_SUCCESS) result = registry.store.Refresh();
  if (result != ERROR_SUCCESS) return result;
  const RegistryNode* node = Find(registry.store.Top(), path);
  return node ? look(*node) : LONG(ERROR_KEY_DELETED);
}

// Runs a change of the key of a handle and writes the registry when it succeeds.
template <class Change>
LONG ChangeKey(HKEY key, Change change) {
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  KeyPath path;
  const LONG result = PathOf(registry, key, path);
  if (result != ERROR_SUCCESS) return result;
  return registry.store.Modify([&](RegistryNode& top) {
    RegistryNode* node = Find(top, path);
    return node ? change(*node) : LONG(ERROR_KEY_DELETED);
  });
}

// A name into a caller's buffer of `*length` characters; on success `*length` is the
// name's length without the terminator.
LONG CopyName(const std::u16string& name, WCHAR* buffer, DWORD* length) {
  if (!buffer || !length) return LONG(ERROR_INVALID_PARAMETER);
  if (name.size() + 1 > *length) return LONG(ERROR_MORE_DATA);
  std::memcpy(buffer, name.c_str(), (name.size() + 1) * sizeof(WCHAR));
  *length = DWORD(name.size());
  return ERROR_SUCCESS;
}

// A value's type and data as RegQueryValueExW and RegEnumValueW hand them out: the size
// alone when there is no buffer, ERROR_MORE_DATA with the size needed when it is short.
LONG CopyData(const RegistryValue& value, DWORD* type, BYTE* data, DWORD* length) {
  if (type) *type = value.type;
  if (data && !length) return LONG(ERROR_INVALID_PARAMETER);
  const DWORD size = DWORD(value.data.size());
  if (data && size > *length) {
    *length = size;
    return LONG(ERROR_MORE_DATA);
  }
  if (data && size) std::memcpy(data, value.data.data(), size);
  if (length) *length = size;
  return ERROR_SUCCESS;
}

}  // namespace

LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD, WCHAR*, DWORD, REGSAM, SECURITY_ATTRIBUTES*,
                     HKEY* result, DWORD* disposition) {
  if (!subKey || !result) return LONG(ERROR_INVALID_PARAMETER);
  const KeyPath parts = PartsOf(subKey);
  for (const std::u16string& name : parts)
    if (!IsValidKeyName(name)) return LONG(ERROR_INVALID_PARAMETER);
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  KeyPath path;
  LONG outcome = PathOf(registry, key, path);
  if (outcome == ERROR_SUCCESS) outcome = registry.store.Refresh();
  if (outcome != ERROR_SUCCESS) return outcome;
  path = Joined(path, parts);
  // A key that is there is only opened: the file is written when something is made.
  DWORD made = REG_OPENED_EXISTING_KEY;
  if (!Find(registry.store.Top(), path)) {
    outcome = registry.store.Modify([&](RegistryNode& top) {
      RegistryNode* node = Find(top, KeyPath(path.begin(), path.end() - parts.size()));
      if (!node) return LONG(ERROR_KEY_DELETED);
      for (const std::u16string& name : parts) node = node->AddChild(name);
      return LONG(ERROR_SUCCESS);
    });
    made = REG_CREATED_NEW_KEY;
  }
  if (outcome == ERROR_SUCCESS) outcome = HandOut(registry, path, result);
  if (outcome == ERROR_SUCCESS && disposition) *disposition = made;
  return outcome;
}

LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD, REGSAM, HKEY* result) {
  if (!result) return LONG(ERROR_INVALID_PARAMETER);
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  KeyPath path;
  LONG outcome = PathOf(registry, key, path);
  if (outcome == ERROR_SUCCESS) outcome = registry.store.Refresh();
  if (outcome != ERROR_SUCCESS) return outcome;
  path = Joined(path, PartsOf(subKey));
  if (!Find(registry.store.Top(), path)) return LONG(ERROR_FILE_NOT_FOUND);
  return HandOut(registry, path, result);
}

LONG RegCloseKey(HKEY key) {
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  KeyPath path;
  const LONG outcome = PathOf(registry, key, path);
  const auto* open = reinterpret_cast<const OpenKey*>(key);
  if (outcome == ERROR_SUCCESS && registry.openKeys.erase(open)) delete open;
  return outcome;  // a root is never really open, and closes without a word
}

LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey) {
  const KeyPath parts = PartsOf(subKey);
  if (parts.empty()) return LONG(ERROR_INVALID_PARAMETER);
  return ChangeKey(key, [&](RegistryNode& node) {
    RegistryNode* parent = Find(node, KeyPath(parts.begin(), parts.end() - 1));
    return parent && parent->RemoveChild(parts.back()) ? LONG(ERROR_SUCCESS)
                                                       : LONG(ERROR_FILE_NOT_FOUND);
  });
}

LONG RegDeleteValueW(HKEY key, LPCWSTR name) {
  return ChangeKey(key, [&](RegistryNode& node) {
    return node.RemoveValue(NameOf(name)) ? LONG(ERROR_SUCCESS) : LONG(ERROR_FILE_NOT_FOUND);
  });
}

LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD dataLength) {
  if (!data && dataLength) return LONG(ERROR_INVALID_PARAMETER);
  std::vector<BYTE> bytes(data, data + (data ? dataLength : 0));
  return ChangeKey(key, [&](RegistryNode& node) {
    node.SetValue(NameOf(name), type, std::move(bytes));
    return LONG(ERROR_SUCCESS);
  });
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD*, WCHAR* keyClass,
                   DWORD* classLength, FILETIME* lastWriteTime) {
  return WithKey(key, [&](const RegistryNode& node) {
    if (index >= node.Children().size()) return LONG(ERROR_NO_MORE_ITEMS);
    const LONG result = CopyName(node.Children()[index]->Name(), name, nameLength);
    if (result != ERROR_SUCCESS) return result;
    if (keyClass && classLength && *classLength) keyClass[0] = 0;
    if (classLength) *classLength = 0;
    if (lastWriteTime) *lastWriteTime = FILETIME{0, 0};
    return LONG(ERROR_SUCCESS);
  });
}

LONG RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameLength, DWORD*, DWORD* type,
                   BYTE* data, DWORD* dataLength) {
  return WithKey(key, [&](const RegistryNode& node) {
    if (index >= node.Values().size()) return LONG(ERROR_NO_MORE_ITEMS);
    const RegistryValue& value = node.Values()[index];
    const LONG result = CopyName(value.name, name, nameLength);
    return result == ERROR_SUCCESS ? CopyData(value, type, data, dataLength) : result;
  });
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, DWORD*, DWORD* type, BYTE* data, DWORD* dataLength) {
  return WithKey(key, [&](const RegistryNode& node) {
    const RegistryValue* value = node.Value(NameOf(name));
    return value ? CopyData(*value, type, data, dataLength) : LONG(ERROR_FILE_NOT_FOUND);
  });
}

LONG RegQueryInfoKeyW(HKEY key, WCHAR* keyClass, DWORD* classLength, DWORD*, DWORD* subKeys,
                      DWORD* maxSubKeyLength, DWORD* maxClassLength, DWORD* values,
                      DWORD* maxValueNameLength, DWORD* maxValueLength,
                      DWORD* securityDescriptorLength, FILETIME* lastWriteTime) {
  return WithKey(key, [&](const RegistryNode& node) {
    DWORD longestKey = 0, longestName = 0, largestValue = 0;
    for (const auto& child : node.Children())
      longestKey = std::max(longestKey, DWORD(child->Name().size()));
    for (const RegistryValue& value : node.Values()) {
      longestName = std::max(longestName, DWORD(value.name.size()));
      largestValue = std::max(largestValue, DWORD(value.data.size()));
    }
    if (keyClass && classLength && *classLength) keyClass[0] = 0;
    for (DWORD* none : {classLength, maxClassLength, securityDescriptorLength})
      if (none) *none = 0;
    if (subKeys) *subKeys = DWORD(node.Children().size());
    if (maxSubKeyLength) *maxSubKeyLength = longestKey;
    if (values) *values = DWORD(node.Values().size());
    if (maxValueNameLength) *maxValueNameLength = longestName;
    if (maxValueLength) *maxValueLength = largestValue;
    if (lastWriteTime) *lastWriteTime = FILETIME{0, 0};
    return LONG(ERROR_SUCCESS);
  });
}
