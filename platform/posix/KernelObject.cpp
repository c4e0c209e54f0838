#include "platform/posix/KernelObject.h"

namespace platform {

// Never destroyed: a detached thread may still signal while the process exits.
std::mutex& KernelObject::HubMutex() {
  static auto* mutex = new std::mutex;
  return *mutex;
}

std::condition_variable& KernelObject::HubCondition() {
  static auto* condition = new std::condition_variable;
  return *condition;
}

// Waiters only need waking when an object turns signalled: one that already was has
// been seen by every waiter that looked, and an event set again and again by a busy
// producer then costs no wake-ups.
void KernelObject::Signal() {
  bool turned;
  {
    std::lock_guard<std::mutex> lock(HubMutex());
    turned = !m_signalled;
    m_signalled = true;
  }
  if (turned) HubCondition().notify_all();
}

void KernelObject::Unsignal() {
  std::lock_guard<std::mutex> lock(HubMutex());
  m_signalled = false;
}

bool KernelObject::TryAcquireLocked() {
  if (!m_signalled) return false;
  if (!m_manualReset) m_signalled = false;
  return true;
}

}  // namespace platform

BOOL CloseHandle(HANDLE handle) {
  platform::KernelObject* object = platform::KernelObject::FromHandle(handle);
  if (!object) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  const BOOL closed = object->Close();
  object->Release();
  return closed;
}
