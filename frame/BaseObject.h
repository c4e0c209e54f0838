// Base of every class of the library: reference count, identity and error record.
#pragma once

#include <cstdint>

#include "frame/ErrorRecord.h"
#include "platform/win32ce.h"

namespace kx {

class Thread;

class BaseObject {
 public:
  BaseObject();
  virtual ~BaseObject();
  BaseObject(const BaseObject&) = delete;
  BaseObject& operator=(const BaseObject&) = delete;

  // Returns the object to its empty, closed state. Release calls it at count 0.
  virtual void Close();
  // Runs on a Thread started by this object.
  virtual void ThreadMain(Thread* thread, BaseObject* argument);

  LONG AddRef();
  // Calls Close when the count reaches 0; the holder whose Release returned 0 destroys.
  LONG Release();

  static void Lock();
  static void Unlock();

  int32_t GetID() const { return m_id; }
  void SetID(int32_t id) { m_id = id; }
  bool IsSameObject(const BaseObject* other) const;

  ErrorRecord& Error() { return m_error; }
  const ErrorRecord& Error() const { return m_error; }

 protected:
  friend class Operation;
  // The opening of nearly every operation: the record speaks of the last call only.
  void ClearError() {
    if (m_error.Failed()) m_error.ClearError();
  }
  void SetError(int32_t number, const char* text) { m_error.SetError(number, text); }
  // A plain accessor: the record clears, and the field is read or written.
  template <class T>
  T ReadField(const T& field) {
    ClearError();
    return field;
  }
  template <class T>
  void WriteField(T& field, const T& value) {
    ClearError();
    field = value;
  }
  // Takes over the failure of a member object; a null member is itself a failure. Two
  // clean records, the common case on every node of a shape, need no copy.
  int16_t CopyError(const BaseObject* member) {
    if (member && !member->m_error.Failed() && !m_error.Failed()) return 0;
    return m_error.m_copy_err(member ? &member->m_error : nullptr);
  }

 private:
  ErrorRecord m_error;
  volatile LONG m_refCount = 1;
  int32_t m_id = 0;
};

// Gives up one reference: destroys the object when that was the last one, and
// forgets the pointer either way.
template <class T>
void ReleaseObject(T*& object) {
  if (object && object->Release() == 0) delete object;
  object = nullptr;
}

}  // namespace kx
