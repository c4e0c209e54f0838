// Events and the waits for them, on the kernel objects' shared lock and condition.
#include <chrono>
#include <vector>

#include "platform/posix/KernelObject.h"

using platform::KernelObject;

namespace {

// Holds a reference on each handle for the length of a wait, so that a CloseHandle on
// another thread can't pull an object away from under the waiter.
class WaitList {
 public:
  WaitList(DWORD count, const HANDLE* handles) {
    m_objects.reserve(count);
    for (DWORD i = 0; i < count; ++i) {
      KernelObject* object = KernelObject::FromHandle(handles[i]);
      object->AddRef();
      m_objects.push_back(object);
    }
  }
  ~WaitList() {
    for (KernelObject* object : m_objects) object->Release();
  }
  // Under the hub's lock: the index of the earliest signalled object, or -1.
  int FirstSignalled() {
    for (size_t i = 0; i < m_objects.size(); ++i)
      if (m_objects[i]->TryAcquireLocked()) return static_cast<int>(i);
    return -1;
  }

 private:
  std::vector<KernelObject*> m_objects;
};

DWORD WaitAny(DWORD count, const HANDLE* handles, DWORD milliseconds) {
  WaitList list(count, handles);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  std::unique_lock<std::mutex> lock(KernelObject::HubMutex());
  for (;;) {
    const int index = list.FirstSignalled();
    if (index >= 0) return WAIT_OBJECT_0 + DWORD(index);
    if (milliseconds == INFINITE) {
      KernelObject::HubCondition().wait(lock);
    } else if (KernelObject::HubCondition().wait_until(lock, deadline) == std::cv_status::timeout) {
      const int last = list.FirstSignalled();
      return last >= 0 ? WAIT_OBJECT_0 + DWORD(last) : WAIT_TIMEOUT;
    }
  }
}

}  // namespace

HANDLE CreateEventW(SECURITY_ATTRIBUTES*, BOOL manualReset, BOOL initialState, LPCWSTR name) {
  if (name) {  // named events are never used by the library
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  auto* event = new (std::nothrow) KernelObject(KernelObject::Kind::kEvent, manualReset != 0);
  if (!event) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
  if (initialState) event->Signal();
  return event->AsHandle();
}

BOOL EventModify(HANDLE handle, DWORD func) {
  KernelObject* event = KernelObject::FromHandle(handle);
  if (!event || event->GetKind() != KernelObject::Kind::kEvent) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  if (func != EVENT_SET && func != EVENT_RESET) {  // the library never pulses
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (func == EVENT_SET)
    event->Signal();
  else
    event->Unsignal();
  return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  return WaitForMultipleObjects(1, &handle, FALSE, milliseconds);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds) {
  if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || !handles || waitAll) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return WAIT_FAILED;
  }
  for (DWORD i = 0; i < count; ++i) {
    if (!KernelObject::FromHandle(handles[i])) {
      SetLastError(ERROR_INVALID_HANDLE);
      return WAIT_FAILED;
    }
  }
  return WaitAny(count, handles, milliseconds);
}
