// A window of the test's thread that receives the engine's events, as an application's
// would; every object that arrives is given up.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "KestrixCE.h"
#include "tools/rig/EventObject.h"

namespace kxtest {

class EventWindow {
 public:
  EventWindow() {
    static const bool registered = [] {
      WNDCLASSW windowClass{};
      windowClass.lpfnWndProc = DefWindowProcW;
      windowClass.lpszClassName = u"KxParserTestWindow";
      return RegisterClassW(&windowClass) != 0;
    }();
    EXPECT_TRUE(registered);
    m_window = CreateWindowExW(0, u"KxParserTestWindow", u"", 0, 0, 0, 0, 0, nullptr, nullptr,
                               nullptr, nullptr);
  }
  ~EventWindow() {
    Drain();
    DestroyWindow(m_window);
  }
  HWND Handle() const { return m_window; }
  std::vector<int> Drain() {
    std::vector<int> types;
    MSG message;
    while (PeekMessageW(&message, m_window, 0, 0, PM_REMOVE)) {
      EXPECT_EQ(message.message, unsigned(KX_NMEA_MESSAGE));
      types.push_back(int(message.wParam));
      Release(int(message.wParam), reinterpret_cast<void*>(message.lParam));
    }
    return types;
  }
  static void Release(int type, void* object) { kxrig::ReleaseEventObject(type, object); }

 private:
  HWND m_window;
};

}  // namespace kxtest
