#include "frame/Event.h"

#include <new>

namespace kx {

Event::Event(int32_t ownerId, int32_t kind)
    : m_handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)), m_ownerId(ownerId), m_kind(kind) {
  if (!m_handle) throw std::bad_alloc();  // no event, no object: Family_New reports it
}

Event::~Event() { CloseHandle(m_handle); }

void Event::Set() { EventModify(m_handle, EVENT_SET); }

void Event::Reset() { EventModify(m_handle, EVENT_RESET); }

void Event::Wait() { WaitForSingleObject(m_handle, INFINITE); }

bool Event::WaitFor(DWORD milliseconds) {
  return WaitForSingleObject(m_handle, milliseconds) == WAIT_OBJECT_0;
}

}  // namespace kx
