// The one recursive lock of the whole library. It guards all queues and shared fields,
// and every Position and Shape operation. It is never held across a wait.
#pragma once

namespace kx {

class LibraryLock {
 public:
  static void Enter();
  static void Leave();
};

// Holds the LibraryLock for the life of a scope.
class LockScope {
 public:
  LockScope() { LibraryLock::Enter(); }
  ~LockScope() { LibraryLock::Leave(); }
  LockScope(const LockScope&) = delete;
  LockScope& operator=(const LockScope&) = delete;
};

}  // namespace kx
