// The opening of every operation, written once (one entry, one exit): the error record
// is cleared so that it speaks of this call only, and where the object's operations are
// guarded, the library lock is held for the whole of the call.
#pragma once

#include "frame/BaseObject.h"
#include "frame/LibraryLock.h"

namespace kx {

// An operation of an object that keeps no shared state: only the record clears.
class Operation {
 public:
  explicit Operation(BaseObject& object) { object.ClearError(); }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;
};

// An operation under the library lock, as every Position and Shape operation and every
// touch of a queue or shared field is: the lock is taken before the record clears and
// given back when the scope ends.
class LockedOperation {
 public:
  explicit LockedOperation(BaseObject& object) : m_clear(object) {}

 private:
  LockScope m_lock;  // first: taken before the record clears
  Operation m_clear;
};

}  // namespace kx
