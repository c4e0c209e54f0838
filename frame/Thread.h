// A thread that calls back into its owner: ThreadMain(this, argument) runs on it, and
// the done event is set when that returns. To stop one, the owner sets an event the
// loop waits on, then calls Close, which blocks until ThreadMain has returned: never
// from the thread itself, nor while holding a lock the thread needs.
#pragma once

#include <atomic>
#include <cstdint>

#include "frame/BaseObject.h"
#include "frame/Event.h"

namespace kx {

class Thread : public BaseObject {
 public:
  Thread();
  ~Thread() override;

  // Does nothing when started already. The owner isn't counted; the argument is.
  void Start(BaseObject* owner, BaseObject* argument);
  bool IsRunning() const { return m_running.load(std::memory_order_acquire); }
  void Close() override;

 private:
  static DWORD Body(LPVOID self);

  HANDLE m_handle = nullptr;
  DWORD m_threadId = 0;
  BaseObject* m_owner = nullptr;
  BaseObject* m_argument = nullptr;
  Event* m_done;
  std::atomic<bool> m_running{false};
};

}  // namespace kx
