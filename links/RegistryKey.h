// A registry key as a counted object, its values as Value objects: text (REG_SZ), integer
// (REG_DWORD) and bytes (REG_BINARY).
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "frame/ByteBuffer.h"
#include "frame/ObjectList.h"
#include "frame/String.h"
#include "frame/Value.h"

namespace kx {

class RegistryKey : public BaseObject {
 public:
  static RegistryKey* ClassesRoot() { return new RegistryKey(HKEY_CLASSES_ROOT); }
  static RegistryKey* CurrentUser() { return new RegistryKey(HKEY_CURRENT_USER); }
  static RegistryKey* LocalMachine() { return new RegistryKey(HKEY_LOCAL_MACHINE); }
  static RegistryKey* Users() { return new RegistryKey(HKEY_USERS); }

  // Takes the handle over; null makes a key that holds none.
  explicit RegistryKey(HKEY key = nullptr) : m_key(key) {}
  ~RegistryKey() override;

  // Null on failure; a name may be a path of keys below this one.
  RegistryKey* CreateSubKey(const String* name);
  RegistryKey* CreateSubKey(const char* name);
  RegistryKey* OpenSubKey(const String* name);
  RegistryKey* OpenSubKey(const char* name);
  // With everything below it.
  bool DeleteSubKey(const String* name);
  bool DeleteSubKey(const char* name);
  bool DeleteValue(const String* name);
  bool DeleteValue(const char* name);
  // Lists of Strings; null on failure.
  ObjectList* GetSubKeyNames();
  ObjectList* GetValueNames();

  // Null when the value is missing or holds nothing; an empty Value for a type other than
  // text, integer or bytes.
  Value* GetValue(const String* name);
  Value* GetValue(const char* name);
  // An empty Value is refused.
  bool SetValue(const String* name, const Value* value);
  bool SetValue(const String* name, int32_t value);
  bool SetValue(const char* name, int32_t value);
  bool SetValue(const String* name, const String* text);
  bool SetValue(const String* name, const ByteBuffer* bytes);

  // Every value of the source and, when recursive, every sub-key the same way. Values of
  // other types than the three are passed over.
  bool CopyFrom(RegistryKey* source, bool recursive);

  // Gives the handle up without closing it.
  HKEY Detach();
  // Closes the present key and takes the handle over.
  void Attach(HKEY key);
  bool QueryCounts();
  int32_t GetSubKeyCount() const { return m_subKeyCount; }
  int32_t GetValueCount() const { return m_valueCount; }
  void Close() override;

 private:
  // Clears the record; a null argument is a failure.
  bool IsGiven(const void* argument);
  ObjectList* ListNames(bool subKeys, const char* failure);
  bool Store(const String* name, DWORD type, const void* data, size_t size);
  bool CopyValuesFrom(RegistryKey* source);
  bool CopySubKeysFrom(RegistryKey* source);

  HKEY m_key;
  int32_t m_subKeyCount = 0;
  int32_t m_valueCount = 0;
};

}  // namespace kx
