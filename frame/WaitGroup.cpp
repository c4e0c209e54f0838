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
  int32_t i = 0;
  for (Ref<BaseObject> member(m_events.GetFirst()); member;
       member = Ref<BaseObject>(m_events.GetNext()))
    handles[i++] = static_cast<Event*>(member.get())->GetHandle();
  const DWORD result = WaitForMultipleObjects(DWORD(count), handles, FALSE, milliseconds);
  if (result >= WAIT_OBJECT_0 + DWORD(count)) return nullptr;  // time-out or failure
  return static_cast<Event*>(m_events.GetItem(int32_t(result - WAIT_OBJECT_0) + 1));
}

}  // namespace kx
