#include "frame/WaitGroup.h"

#include "frame/Ref.h"

namespace kx {

void WaitGroup::Add(Event* event) {
  if (m_events.GetCount() >= kMaxEvents) return;
  m_events.Add(event);
}

Event* WaitGroup::WaitAny(DWORD milliseconds) {
  const int32_t count = m_events.GetCount();
  if (count == 0) return nullptr;
  HANDLE handles[kMaxEvents];
  for (int32_t i = 0; i < count; ++i) {
    Ref<Event> event(static_cast<Event*>(m_events.GetItem(i + 1)));
    handles[i] = event->GetHandle();
  }
  const DWORD result = WaitForMultipleObjects(DWORD(count), handles, FALSE, milliseconds);
  if (result >= WAIT_OBJECT_0 + DWORD(count)) return nullptr;  // time-out or failure
  return static_cast<Event*>(m_events.GetItem(int32_t(result - WAIT_OBJECT_0) + 1));
}

}  // namespace kx
