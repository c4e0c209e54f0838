#include "frame/EventQueue.h"

namespace kx {

BaseObject* EventQueue::Pop() {
  BaseObject* first = m_objects.GetFirst();
  if (first) m_objects.Remove(first);  // the caller's reference keeps it alive
  return first;
}

}  // namespace kx
