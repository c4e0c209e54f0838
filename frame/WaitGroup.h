// Waits for any of up to 64 events. The order of Add is a priority: when several are
// set, the earliest added wins. Belongs to one waiting thread.
#pragma once

#include "frame/Event.h"
#include "frame/ObjectList.h"

namespace kx {

class WaitGroup : public BaseObject {
 public:
  // The limit of the system's wait.
  static constexpr int32_t kMaxEvents = 64;

  // Takes a reference; a 65th event is refused without a word.
  void Add(Event* event);
  // The event that woke the wait, with a reference for the caller; null on time-out or
  // for an empty group. The event isn't reset.
  Event* WaitAny(DWORD milliseconds);
  Event* WaitAny() { return WaitAny(INFINITE); }
  void Close() override { m_events.RemoveAll(); }
  int32_t GetCount() const { return m_events.GetCount(); }

 private:
  ObjectList m_events;
};

}  // namespace kx
