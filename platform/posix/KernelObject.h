// What a HANDLE of an event, a thread or a byte stream points at: a counted waitable
// object. All signalling goes through one process-wide mutex and condition variable, so
// that a wait for any of several objects sees each of them change.
#pragma once

#include <pthread.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "platform/win32ce.h"

namespace platform {

class KernelObject {
 public:
  enum class Kind { kEvent, kThread, kStream, kProcess };

  KernelObject(Kind kind, bool manualReset) : m_kind(kind), m_manualReset(manualReset) {}
  virtual ~KernelObject() = default;

  // Null for the two handles that stand for none: null and INVALID_HANDLE_VALUE.
  static KernelObject* FromHandle(HANDLE handle) {
    return handle == INVALID_HANDLE_VALUE ? nullptr : static_cast<KernelObject*>(handle);
  }
  HANDLE AsHandle() { return this; }
  Kind GetKind() const { return m_kind; }

  void AddRef() { m_refs.fetch_add(1, std::memory_order_relaxed); }
  // A reference only while the object still has one: for a look-up that may meet an
  // object whose last Release is under way.
  bool TryAddRef() {
    int refs = m_refs.load(std::memory_order_relaxed);
    while (refs > 0)
      if (m_refs.compare_exchange_weak(refs, refs + 1, std::memory_order_acquire)) return true;
    return false;
  }
  void Release() {
    if (m_refs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  // What CloseHandle does besides giving up the handle's reference: a thread is joined or
  // let go, a stream lets go of its file or device.
  virtual BOOL Close() { return TRUE; }

  // Signal state; each takes the hub's lock itself.
  void Signal();
  void Unsignal();

  // The hub's lock, held by waiters while they look at signal states.
  static std::mutex& HubMutex();
  static std::condition_variable& HubCondition();
  // Under the hub's lock: whether the object is signalled, consuming the signal of an
  // auto-reset event.
  bool TryAcquireLocked();

 private:
  std::atomic<int> m_refs{1};
  const Kind m_kind;
  const bool m_manualReset;
  bool m_signalled = false;  // guarded by the hub's lock
};

// A thread's handle: signalled when the thread's routine has returned.
class ThreadObject : public KernelObject {
 public:
  ThreadObject() : KernelObject(Kind::kThread, true) {}
  BOOL Close() override;
  pthread_t thread{};
  LPTHREAD_START_ROUTINE start = nullptr;
  LPVOID parameter = nullptr;
  std::atomic<bool> finished{false};
};

}  // namespace platform
