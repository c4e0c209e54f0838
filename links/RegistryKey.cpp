#include "links/RegistryKey.h"

#include <vector>

#include "frame/ErrorNumbers.h"
#include "frame/Ref.h"
#include "links/WideName.h"

namespace kx {

namespace {

constexpr const char* kCreateFailed = "Error creating or opening subkey";
constexpr const char* kOpenFailed = "Error opening subkey";
constexpr const char* kDeleteKeyFailed = "Error deleting register subkey";
constexpr const char* kDeleteValueFailed = "Error deleting register value";
constexpr const char* kSubKeyNamesFailed = "Error reading subkey names";
constexpr const char* kValueNamesFailed = "Error reading value names";
constexpr const char* kReadValueFailed = "Error reading registry value";
constexpr const char* kSetValueFailed = "Error setting value";
constexpr const char* kQueryFailed = "Error querying registry key";
// Names are read into buffers of this many characters, terminator included.
constexpr DWORD kNameBuffer = 256;

// The name in one String for the overloads that take plain text.
Ref<String> Named(const char* name) { return Ref<String>(name ? new String(name) : nullptr); }

Value* ValueOf(DWORD type, const std::vector<BYTE>& data) {
  switch (type) {
    case REG_SZ: {
      std::u16string text;
      for (size_t i = 0; i + 1 < data.size() && (data[i] || data[i + 1]); i += 2)
        text += char16_t(data[i] | data[i + 1] << 8);
      const Ref<String> string(new String(text.c_str(), int32_t(text.size())));
      return new Value(string.get());
    }
    case REG_BINARY: {
      const Ref<ByteBuffer> bytes(new ByteBuffer(data.data(), int32_t(data.size())));
      return new Value(bytes.get());
    }
    case REG_DWORD: {
      uint32_t integer = 0;
      for (size_t i = 0; i < 4 && i < data.size(); ++i) integer |= uint32_t(data[i]) << (8 * i);
      return new Value(int32_t(integer));
    }
    default:
      return new Value();
  }
}

}  // namespace

RegistryKey::~RegistryKey() { Close(); }

void RegistryKey::Close() {
  if (m_key) RegCloseKey(m_key);
  m_key = nullptr;
}

HKEY RegistryKey::Detach() {
  const HKEY key = m_key;
  m_key = nullptr;
  return key;
}

void RegistryKey::Attach(HKEY key) {
  Close();
  m_key = key;
}

bool RegistryKey::IsGiven(const void* argument) {
  ClearError();
  if (!argument) SetError(kErrInvalidArgument, text::kInvalidParameter);
  return argument != nullptr;
}

// ---- keys -------------------------------------------------------------------------------

RegistryKey* RegistryKey::CreateSubKey(const String* name) {
  if (!IsGiven(name)) return nullptr;
  HKEY key = nullptr;
  const LONG result =
      RegCreateKeyExW(m_key, WideName(name).c_str(), 0, nullptr, 0, 0, nullptr, &key, nullptr);
  if (result == ERROR_SUCCESS) return new RegistryKey(key);
  SetError(result, kCreateFailed);
  return nullptr;
}

RegistryKey* RegistryKey::CreateSubKey(const char* name) { return CreateSubKey(Named(name).get()); }

RegistryKey* RegistryKey::OpenSubKey(const String* name) {
  if (!IsGiven(name)) return nullptr;
  HKEY key = nullptr;
  const LONG result = RegOpenKeyExW(m_key, WideName(name).c_str(), 0, 0, &key);
  if (result == ERROR_SUCCESS) return new RegistryKey(key);
  SetError(result, kOpenFailed);
  return nullptr;
}

RegistryKey* RegistryKey::OpenSubKey(const char* name) { return OpenSubKey(Named(name).get()); }

bool RegistryKey::DeleteSubKey(const String* name) {
  if (!IsGiven(name)) return false;
  const LONG result = RegDeleteKeyW(m_key, WideName(name).c_str());
  if (result != ERROR_SUCCESS) SetError(result, kDeleteKeyFailed);
  return result == ERROR_SUCCESS;
}

bool RegistryKey::DeleteSubKey(const char* name) { return DeleteSubKey(Named(name).get()); }

bool RegistryKey::DeleteValue(const String* name) {
  if (!IsGiven(name)) return false;
  const LONG result = RegDeleteValueW(m_key, WideName(name).c_str());
  if (result != ERROR_SUCCESS) SetError(result, kDeleteValueFailed);
  return result == ERROR_SUCCESS;
}

bool RegistryKey::DeleteValue(const char* name) { return DeleteValue(Named(name).get()); }

ObjectList* RegistryKey::GetSubKeyNames() {
  ClearError();
  return ListNames(true, kSubKeyNamesFailed);
}

ObjectList* RegistryKey::GetValueNames() {
  ClearError();
  return ListNames(false, kValueNamesFailed);
}

ObjectList* RegistryKey::ListNames(bool subKeys, const char* failure) {
  Ref<ObjectList> names(new ObjectList());
  for (DWORD index = 0;; ++index) {
    WCHAR name[kNameBuffer];
    DWORD length = kNameBuffer;
    const LONG result =
        subKeys ? RegEnumKeyExW(m_key, index, name, &length, nullptr, nullptr, nullptr, nullptr)
                : RegEnumValueW(m_key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (result == LONG(ERROR_NO_MORE_ITEMS)) return names.Detach();
    // The device says ERROR_INVALID_DATA of a value that it lists all the same.
    if (result != ERROR_SUCCESS && (subKeys || result != LONG(ERROR_INVALID_DATA))) {
      SetError(result, failure);
      return nullptr;
    }
    const Ref<String> text(new String(name, int32_t(length)));
    names->Add(text.get());
  }
}

bool RegistryKey::QueryCounts() {
  ClearError();
  DWORD subKeys = 0, values = 0;
  const LONG result = RegQueryInfoKeyW(m_key, nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr,
                                       &values, nullptr, nullptr, nullptr, nullptr);
  if (result != ERROR_SUCCESS) {
    SetError(result, kQueryFailed);
    return false;
  }
  m_subKeyCount = int32_t(subKeys);
  m_valueCount = int32_t(values);
  return true;
}

// ---- values -----------------------------------------------------------------------------

Value* RegistryKey::GetValue(const String* name) {
  if (!IsGiven(name)) return nullptr;
  const std::u16string wide = WideName(name);
  DWORD type = REG_NONE, size = 0;
  LONG result = RegQueryValueExW(m_key, wide.c_str(), nullptr, &type, nullptr, &size);
  std::vector<BYTE> data(size);
  if (result == ERROR_SUCCESS && size)
    result = RegQueryValueExW(m_key, wide.c_str(), nullptr, &type, data.data(), &size);
  // A value without bytes is read as none, without a failure to report.
  if (result != ERROR_SUCCESS || size == 0) {
    SetError(result, kReadValueFailed);
    return nullptr;
  }
  data.resize(size);
  return ValueOf(type, data);
}

Value* RegistryKey::GetValue(const char* name) { return GetValue(Named(name).get()); }

bool RegistryKey::SetValue(const String* name, const Value* value) {
  switch (value ? value->GetType() : Value::kEmpty) {
    case Value::kText: {
      const Ref<String> text(value->GetString());
      return SetValue(name, text.get());
    }
    case Value::kInteger:
      return SetValue(name, value->GetInteger());
    case Value::kBinary: {
      const Ref<ByteBuffer> bytes(value->GetBinary());
      return SetValue(name, bytes.get());
    }
    default:
      return IsGiven(nullptr);
  }
}

bool RegistryKey::SetValue(const String* name, int32_t value) {
  const BYTE data[] = {BYTE(value), BYTE(value >> 8), BYTE(value >> 16), BYTE(value >> 24)};
  return Store(name, REG_DWORD, data, sizeof data);
}

bool RegistryKey::SetValue(const char* name, int32_t value) {
  return SetValue(Named(name).get(), value);
}

// As the device writes it: the characters and the terminator, two bytes each.
bool RegistryKey::SetValue(const String* name, const String* text) {
  if (!IsGiven(text)) return false;
  const std::u16string wide = WideName(text);
  std::vector<BYTE> data;
  for (const char16_t c : wide) data.insert(data.end(), {BYTE(c), BYTE(c >> 8)});
  data.insert(data.end(), {0, 0});
  return Store(name, REG_SZ, data.data(), data.size());
}

bool RegistryKey::SetValue(const String* name, const ByteBuffer* bytes) {
  if (!IsGiven(bytes)) return false;
  return Store(name, REG_BINARY, bytes->GetData(), size_t(bytes->GetLength()));
}

bool RegistryKey::Store(const String* name, DWORD type, const void* data, size_t size) {
  if (!IsGiven(name)) return false;
  const LONG result = RegSetValueExW(m_key, WideName(name).c_str(), 0, type,
                                     static_cast<const BYTE*>(data), DWORD(size));
  if (result != ERROR_SUCCESS) SetError(result, kSetValueFailed);
  return result == ERROR_SUCCESS;
}

// ---- copies -----------------------------------------------------------------------------

bool RegistryKey::CopyFrom(RegistryKey* source, bool recursive) {
  if (!IsGiven(source)) return false;
  return CopyValuesFrom(source) && (!recursive || CopySubKeysFrom(source));
}

bool RegistryKey::CopyValuesFrom(RegistryKey* source) {
  const Ref<ObjectList> names(source->GetValueNames());
  if (!names) {
    CopyError(source);
    return false;
  }
  for (Ref<BaseObject> item(names->GetFirst()); item; item = Ref<BaseObject>(names->GetNext())) {
    const auto* name = static_cast<const String*>(item.get());
    const Ref<Value> value(source->GetValue(name));
    if (value && value->GetType() != Value::kEmpty && !SetValue(name, value.get())) return false;
  }
  return true;
}

bool RegistryKey::CopySubKeysFrom(RegistryKey* source) {
  const Ref<ObjectList> names(source->GetSubKeyNames());
  if (!names) {
    CopyError(source);
    return false;
  }
  for (Ref<BaseObject> item(names->GetFirst()); item; item = Ref<BaseObject>(names->GetNext())) {
    const auto* name = static_cast<const String*>(item.get());
    const Ref<RegistryKey> from(source->OpenSubKey(name));
    if (!from) {
      CopyError(source);
      return false;
    }
    const Ref<RegistryKey> to(CreateSubKey(name));
    if (!to) return false;
    if (!to->CopyFrom(from.get(), true)) {
      CopyError(to.get());
      return false;
    }
  }
  return true;
}

}  // namespace kx
