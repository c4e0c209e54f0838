// Hidden windows and their thread's message queue: order, sending across threads,
// timers and quitting. No sleeps: every wait is for a message.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/win32ce.h"

namespace {

std::vector<WPARAM>* received = nullptr;

LRESULT Record(HWND, unsigned int message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_USER + 1 && received) received->push_back(wParam);
  if (message == WM_USER + 2) return LRESULT(wParam) * 2 + lParam;
  return 0;
}

HWND MakeWindow() {
  static const bool registered = [] {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = Record;
    windowClass.lpszClassName = u"KxTestWindow";
    return RegisterClassW(&windowClass) != 0;
  }();
  EXPECT_TRUE(registered);
  return CreateWindowExW(0, u"KxTestWindow", u"", 0, 0, 0, 0, 0, nullptr, nullptr,
                         GetModuleHandleW(nullptr), nullptr);
}

TEST(Messages, PostedMessagesArriveInOrderOnTheWindowsThread) {
  std::vector<WPARAM> seen;
  received = &seen;
  HWND window = MakeWindow();
  ASSERT_NE(window, nullptr);
  std::thread poster([window] {
    for (WPARAM i = 0; i < 500; ++i) PostMessageW(window, WM_USER + 1, i, 0);
    PostMessageW(window, WM_USER + 3, 0, 0);
  });
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0 && message.message != WM_USER + 3)
    DispatchMessageW(&message);
  poster.join();
  ASSERT_EQ(seen.size(), 500u);
  for (WPARAM i = 0; i < 500; ++i) EXPECT_EQ(seen[i], i);
  received = nullptr;
  EXPECT_TRUE(DestroyWindow(window));
  EXPECT_FALSE(PostMessageW(window, WM_USER + 1, 0, 0));
  EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST(Messages, ASentMessageIsHandledByTheOwnerWhileTheSenderWaits) {
  HWND window = MakeWindow();
  EXPECT_EQ(SendMessageW(window, WM_USER + 2, 20, 2), 42);  // same thread: called directly
  std::atomic<LRESULT> answer{0};
  std::thread sender([&] {
    answer = SendMessageW(window, WM_USER + 2, 5, 1);
    PostMessageW(window, WM_USER + 3, 0, 0);
  });
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0 && message.message != WM_USER + 3)
    DispatchMessageW(&message);
  sender.join();
  EXPECT_EQ(answer, 11);
  DestroyWindow(window);
}

TEST(Messages, TimersTickUntilKilledAndQuitEndsTheLoop) {
  HWND window = MakeWindow();
  EXPECT_EQ(SetTimer(window, 7, 1, nullptr), 7u);
  MSG message;
  int ticks = 0;
  while (ticks < 3 && GetMessageW(&message, nullptr, 0, 0) > 0)
    if (message.message == WM_TIMER && message.wParam == 7) ++ticks;
  EXPECT_TRUE(KillTimer(window, 7));
  EXPECT_FALSE(KillTimer(window, 7));
  PostQuitMessage(3);
  EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
  EXPECT_EQ(message.wParam, 3u);
  DestroyWindow(window);
}

TEST(Messages, RefusesWhatDoesNotExist) {
  EXPECT_EQ(
      CreateWindowExW(0, u"NoSuchClass", u"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr),
      nullptr);
  WNDCLASSW again{};
  again.lpfnWndProc = Record;
  again.lpszClassName = u"KxTestWindow";
  HWND window = MakeWindow();  // registers the class if no test did
  EXPECT_EQ(RegisterClassW(&again), 0);
  EXPECT_EQ(SendMessageW(nullptr, WM_USER, 0, 0), 0);
  DestroyWindow(window);
}

}  // namespace
