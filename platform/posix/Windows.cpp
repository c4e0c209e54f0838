// Hidden windows within one process: a window belongs to the thread that made it, and
// its messages go through that thread's queue.
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/posix/MessageQueue.h"

using platform::MessageQueue;

namespace {

struct Window {
  WNDPROC procedure;
  std::shared_ptr<MessageQueue> queue;
};

// Classes by name and the living windows; a handle is valid while it is listed here.
struct Registry {
  std::mutex mutex;
  std::map<std::u16string, WNDPROC> classes;
  std::map<HWND, std::shared_ptr<Window>> windows;
};

Registry& TheRegistry() {
  static auto* registry = new Registry();  // never destroyed: windows may outlive main
  return *registry;
}

std::shared_ptr<Window> Find(HWND handle) {
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  const auto found = registry.windows.find(handle);
  return found == registry.windows.end() ? nullptr : found->second;
}

std::u16string Name(const WCHAR* text) { return text ? std::u16string(text) : std::u16string(); }

}  // namespace

unsigned short RegisterClassW(const WNDCLASSW* windowClass) {
  if (!windowClass || !windowClass->lpfnWndProc || !windowClass->lpszClassName) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  const std::u16string name = Name(windowClass->lpszClassName);
  if (registry.classes.count(name)) {
    SetLastError(ERROR_CLASS_ALREADY_EXISTS);
    return 0;
  }
  registry.classes[name] = windowClass->lpfnWndProc;
  return static_cast<unsigned short>(0xC000 + registry.classes.size());
}

HWND CreateWindowExW(uint32_t, const WCHAR* className, const WCHAR*, uint32_t, int, int, int, int,
                     HWND, HMENU, HINSTANCE, void*) {
  Registry& registry = TheRegistry();
  std::lock_guard<std::mutex> lock(registry.mutex);
  const auto found = registry.classes.find(Name(className));
  if (found == registry.classes.end()) {
    SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
    return nullptr;
  }
  auto window = std::make_shared<Window>(Window{found->second, MessageQueue::OfThisThread()});
  HWND handle = reinterpret_cast<HWND>(window.get());
  registry.windows[handle] = window;
  return handle;
}

BOOL DestroyWindow(HWND handle) {
  std::shared_ptr<Window> window;
  {
    Registry& registry = TheRegistry();
    std::lock_guard<std::mutex> lock(registry.mutex);
    const auto found = registry.windows.find(handle);
    if (found == registry.windows.end()) {
      SetLastError(ERROR_INVALID_WINDOW_HANDLE);
      return FALSE;
    }
    window = found->second;
    registry.windows.erase(found);
  }
  window->queue->Forget(handle);
  return TRUE;
}

BOOL PostMessageW(HWND handle, unsigned int message, WPARAM wParam, LPARAM lParam) {
  const std::shared_ptr<Window> window = Find(handle);
  if (!window) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  window->queue->Post(MSG{handle, message, wParam, lParam, GetTickCount(), {0, 0}});
  return TRUE;
}

LRESULT SendMessageW(HWND handle, unsigned int message, WPARAM wParam, LPARAM lParam) {
  const std::shared_ptr<Window> window = Find(handle);
  if (!window) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  if (window->queue == MessageQueue::OfThisThread())
    return window->procedure(handle, message, wParam, lParam);
  return window->queue->SendAcross(window->procedure,
                                   MSG{handle, message, wParam, lParam, GetTickCount(), {0, 0}});
}

BOOL GetMessageW(MSG* message, HWND window, unsigned int first, unsigned int last) {
  if (!message) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return -1;
  }
  MessageQueue::OfThisThread()->Next(message, window, first, last, true, true);
  return message->message == WM_QUIT ? 0 : 1;
}

BOOL PeekMessageW(MSG* message, HWND window, unsigned int first, unsigned int last,
                  unsigned int remove) {
  if (!message) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  return MessageQueue::OfThisThread()->Next(message, window, first, last, (remove & PM_REMOVE) != 0,
                                            false);
}

LRESULT DispatchMessageW(const MSG* message) {
  if (!message || !message->hwnd) return 0;
  const std::shared_ptr<Window> window = Find(message->hwnd);
  if (!window) return 0;
  return window->procedure(message->hwnd, message->message, message->wParam, message->lParam);
}

LRESULT DefWindowProcW(HWND, unsigned int, WPARAM, LPARAM) { return 0; }

void PostQuitMessage(int exitCode) { MessageQueue::OfThisThread()->Quit(exitCode); }

UINT_PTR SetTimer(HWND handle, UINT_PTR id, unsigned int elapse, TIMERPROC) {
  const std::shared_ptr<Window> window = Find(handle);
  if (!window || id == 0) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  window->queue->SetTimer(handle, id, elapse ? elapse : 1);
  return id;
}

BOOL KillTimer(HWND handle, UINT_PTR id) {
  const std::shared_ptr<Window> window = Find(handle);
  return window && window->queue->KillTimer(handle, id) ? TRUE : FALSE;
}

HMODULE GetModuleHandleW(const WCHAR*) {
  static char module;
  return reinterpret_cast<HMODULE>(&module);
}
