// A first-in first-out queue of counted objects between threads. It isn't locked: a
// producer takes the LibraryLock, pushes, leaves the lock and then sets its event; a
// consumer waits, resets the event, and pops under the lock until it gets null.
#pragma once

#include "frame/ObjectList.h"

namespace kx {

class EventQueue : public BaseObject {
 public:
  // Takes a reference of the queue's own.
  void Push(BaseObject* object) { m_objects.Add(object); }
  // The oldest object with a reference for the caller, or null when empty.
  BaseObject* Pop();
  void Close() override { m_objects.RemoveAll(); }
  int32_t GetCount() const { return m_objects.GetCount(); }

 private:
  ObjectList m_objects;
};

}  // namespace kx
