// The platform's events and the waits for them.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/win32ce.h"

namespace {

// Manual-reset events, unsignalled, closed with the test.
class Events {
 public:
  explicit Events(int count) {
    for (int i = 0; i < count; ++i)
      m_handles.push_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  }
  ~Events() {
    for (HANDLE h : m_handles) CloseHandle(h);
  }
  HANDLE operator[](int i) const { return m_handles[size_t(i)]; }
  const HANDLE* data() const { return m_handles.data(); }

 private:
  std::vector<HANDLE> m_handles;
};

TEST(Waits, RefuseWhatTheDeviceRefuses) {
  Events events(1);
  HANDLE many[65];
  for (HANDLE& h : many) h = events[0];
  EXPECT_EQ(WaitForMultipleObjects(65, many, FALSE, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(WaitForMultipleObjects(0, many, FALSE, 0), WAIT_FAILED);
  EXPECT_EQ(WaitForMultipleObjects(2, many, TRUE, 0), WAIT_FAILED);
  EXPECT_EQ(WaitForMultipleObjects(64, many, FALSE, 0), WAIT_TIMEOUT);
  many[5] = nullptr;
  EXPECT_EQ(WaitForMultipleObjects(6, many, FALSE, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);

  EXPECT_FALSE(EventModify(events[0], 1));  // pulse isn't offered
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_FALSE(EventModify(nullptr, EVENT_SET));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_FALSE(CloseHandle(nullptr));
  EXPECT_EQ(CreateEventW(nullptr, TRUE, FALSE, u"named"), nullptr);
}

TEST(Waits, TheEarliestSignalledHandleWinsAndManualResetStaysSet) {
  Events events(64);
  SetEvent(events[63]);
  SetEvent(events[40]);
  SetEvent(events[10]);
  for (int round = 0; round < 2; ++round)
    EXPECT_EQ(WaitForMultipleObjects(64, events.data(), FALSE, 0), WAIT_OBJECT_0 + 10);
  ResetEvent(events[10]);
  EXPECT_EQ(WaitForMultipleObjects(64, events.data(), FALSE, INFINITE), WAIT_OBJECT_0 + 40);
  ResetEvent(events[40]);
  EXPECT_EQ(WaitForMultipleObjects(64, events.data(), FALSE, 0), WAIT_OBJECT_0 + 63);
  ResetEvent(events[63]);
  EXPECT_EQ(WaitForMultipleObjects(64, events.data(), FALSE, 1), WAIT_TIMEOUT);

  HANDLE initiallySet = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  EXPECT_EQ(WaitForSingleObject(initiallySet, 0), WAIT_OBJECT_0);
  CloseHandle(initiallySet);
}

TEST(Waits, AnAutoResetEventReleasesOneWait) {
  HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  // Only the handle that ends the wait is consumed.
  HANDLE manual = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  SetEvent(event);
  HANDLE both[] = {manual, event};
  EXPECT_EQ(WaitForMultipleObjects(2, both, FALSE, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  CloseHandle(manual);
  CloseHandle(event);
}

// A waiter on another thread sleeps until one of its handles is set; it reports which
// through a second event, and every hand-over is an event.
TEST(Waits, AWaiterWakesForTheHandleSetOnAnotherThread) {
  Events events(3);  // two to wait on, one for the answer
  DWORD woke = WAIT_FAILED;
  std::thread waiter([&] {
    woke = WaitForMultipleObjects(2, events.data(), FALSE, INFINITE);
    SetEvent(events[2]);
  });
  SetEvent(events[1]);
  EXPECT_EQ(WaitForSingleObject(events[2], INFINITE), WAIT_OBJECT_0);
  waiter.join();
  EXPECT_EQ(woke, WAIT_OBJECT_0 + 1);
}

}  // namespace
