// A manual-reset event that also tells its waiter where it came from: the owner's id
// and a kind of happening. It stays set until someone resets it.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class Event : public BaseObject {
 public:
  Event() : Event(0, 0) {}
  Event(int32_t ownerId, int32_t kind);
  ~Event() override;

  void Set();
  void Reset();
  void Wait();
  // True if the event is set, or becomes set within the time. It isn't reset by this.
  bool WaitFor(DWORD milliseconds);

  int32_t GetOwnerID() const { return m_ownerId; }
  int32_t GetKind() const { return m_kind; }
  HANDLE GetHandle() const { return m_handle; }

 private:
  HANDLE m_handle;
  int32_t m_ownerId;
  int32_t m_kind;
};

}  // namespace kx
