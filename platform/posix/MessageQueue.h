// The message queue of one thread: posted messages in order, messages sent from other
// threads (handled inside the owner's next GetMessageW or PeekMessageW, while the sender
// waits), the timers of the thread's windows, and the quit request.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <list>
#include <memory>
#include <mutex>

#include "platform/win32ce.h"

namespace platform {

class MessageQueue {
 public:
  // The calling thread's queue, made on first use.
  static std::shared_ptr<MessageQueue> OfThisThread();

  void Post(const MSG& message);
  // From another thread: waits until the owner has handled it.
  LRESULT SendAcross(WNDPROC procedure, const MSG& message);
  void Quit(int exitCode);
  void SetTimer(HWND window, UINT_PTR id, unsigned elapse);
  bool KillTimer(HWND window, UINT_PTR id);
  // Forgets a destroyed window's messages and timers.
  void Forget(HWND window);

  // The next message that passes the filter; false when `wait` is false and there is
  // none. Sent messages are handled on the way.
  bool Next(MSG* message, HWND window, unsigned first, unsigned last, bool remove, bool wait);

 private:
  using Clock = std::chrono::steady_clock;
  struct Sent {
    WNDPROC procedure;
    MSG message;
    LRESULT result = 0;
    bool done = false;
  };
  struct Timer {
    HWND window;
    UINT_PTR id;
    std::chrono::milliseconds interval;
    Clock::time_point due;
  };

  static bool Passes(const MSG& message, HWND window, unsigned first, unsigned last);
  void HandleSent(std::unique_lock<std::mutex>& lock);
  bool TakePosted(MSG* message, HWND window, unsigned first, unsigned last, bool remove);
  bool TakeTimer(MSG* message, HWND window);
  Clock::time_point NextDue() const;

  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<MSG> m_posted;
  std::deque<Sent*> m_sent;
  std::list<Timer> m_timers;
  bool m_quit = false;
  int m_exitCode = 0;
};

}  // namespace platform
