#include "platform/posix/MessageQueue.h"

#include <algorithm>

namespace platform {

std::shared_ptr<MessageQueue> MessageQueue::OfThisThread() {
  thread_local std::shared_ptr<MessageQueue> queue = std::make_shared<MessageQueue>();
  return queue;
}

void MessageQueue::Post(const MSG& message) {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_posted.push_back(message);
  }
  m_changed.notify_all();
}

LRESULT MessageQueue::SendAcross(WNDPROC procedure, const MSG& message) {
  Sent sent{procedure, message};
  std::unique_lock<std::mutex> lock(m_mutex);
  m_sent.push_back(&sent);
  m_changed.notify_all();
  m_changed.wait(lock, [&] { return sent.done; });
  return sent.result;
}

void MessageQueue::Quit(int exitCode) {
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_quit = true;
    m_exitCode = exitCode;
  }
  m_changed.notify_all();
}

void MessageQueue::SetTimer(HWND window, UINT_PTR id, unsigned elapse) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_timers.remove_if([&](const Timer& t) { return t.window == window && t.id == id; });
  const std::chrono::milliseconds interval(elapse);
  m_timers.push_back({window, id, interval, Clock::now() + interval});
  m_changed.notify_all();
}

bool MessageQueue::KillTimer(HWND window, UINT_PTR id) {
  std::lock_guard<std::mutex> lock(m_mutex);
  const size_t before = m_timers.size();
  m_timers.remove_if([&](const Timer& t) { return t.window == window && t.id == id; });
  return m_timers.size() != before;
}

void MessageQueue::Forget(HWND window) {
  std::lock_guard<std::mutex> lock(m_mutex);
  m_posted.erase(std::remove_if(m_posted.begin(), m_posted.end(),
                                [&](const MSG& m) { return m.hwnd == window; }),
                 m_posted.end());
  m_timers.remove_if([&](const Timer& t) { return t.window == window; });
}

bool MessageQueue::Passes(const MSG& message, HWND window, unsigned first, unsigned last) {
  if (window && message.hwnd != window) return false;
  if (first == 0 && last == 0) return true;
  return message.message >= first && message.message <= last;
}

// The owner's window procedure runs without the queue's lock, so that it may post.
void MessageQueue::HandleSent(std::unique_lock<std::mutex>& lock) {
  while (!m_sent.empty()) {
    Sent* sent = m_sent.front();
    m_sent.pop_front();
    lock.unlock();
    const LRESULT result = sent->procedure(sent->message.hwnd, sent->message.message,
                                           sent->message.wParam, sent->message.lParam);
    lock.lock();
    sent->result = result;
    sent->done = true;
    m_changed.notify_all();
  }
}

bool MessageQueue::TakePosted(MSG* message, HWND window, unsigned first, unsigned last,
                              bool remove) {
  const auto found = std::find_if(m_posted.begin(), m_posted.end(),
                                  [&](const MSG& m) { return Passes(m, window, first, last); });
  if (found == m_posted.end()) return false;
  *message = *found;
  if (remove) m_posted.erase(found);
  return true;
}

bool MessageQueue::TakeTimer(MSG* message, HWND window) {
  const Clock::time_point now = Clock::now();
  for (Timer& timer : m_timers) {
    if (timer.due > now || (window && timer.window != window)) continue;
    timer.due = now + timer.interval;
    *message = MSG{timer.window, WM_TIMER, timer.id, 0, GetTickCount(), {0, 0}};
    return true;
  }
  return false;
}

MessageQueue::Clock::time_point MessageQueue::NextDue() const {
  Clock::time_point due = Clock::time_point::max();
  for (const Timer& timer : m_timers) due = std::min(due, timer.due);
  return due;
}

bool MessageQueue::Next(MSG* message, HWND window, unsigned first, unsigned last, bool remove,
                        bool wait) {
  std::unique_lock<std::mutex> lock(m_mutex);
  for (;;) {
    HandleSent(lock);
    if (TakePosted(message, window, first, last, remove)) return true;
    if (m_quit) {
      *message = MSG{nullptr, WM_QUIT, WPARAM(m_exitCode), 0, GetTickCount(), {0, 0}};
      if (remove) m_quit = false;
      return true;
    }
    if (Passes(MSG{nullptr, WM_TIMER, 0, 0, 0, {0, 0}}, nullptr, first, last) &&
        TakeTimer(message, window))
      return true;
    if (!wait) return false;
    const Clock::time_point due = NextDue();
    if (due == Clock::time_point::max())
      m_changed.wait(lock);
    else
      m_changed.wait_until(lock, due);
  }
}

}  // namespace platform
