// The platform's threads: a handle that is signalled when the routine has returned,
// and closing it early or late without losing the thread.
#include <gtest/gtest.h>

#include <vector>

#include "platform/win32ce.h"

namespace {

DWORD SetAndReturn(LPVOID event) {
  SetEvent(static_cast<HANDLE>(event));
  return 0;
}

TEST(Threads, AThreadHandleIsSignalledWhenTheRoutineHasReturned) {
  HANDLE started = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD id = 0;
  HANDLE thread = CreateThread(nullptr, 0, SetAndReturn, started, 0, &id);
  ASSERT_NE(thread, nullptr);
  EXPECT_NE(id, 0u);
  HANDLE both[] = {thread, started};
  const DWORD first = WaitForMultipleObjects(2, both, FALSE, INFINITE);
  EXPECT_TRUE(first == WAIT_OBJECT_0 || first == WAIT_OBJECT_0 + 1);
  EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);  // stays signalled
  EXPECT_FALSE(EventModify(thread, EVENT_RESET));            // not an event
  EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_TRUE(CloseHandle(thread));
  CloseHandle(started);
  EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
}

constexpr int kThreads = 16;

struct Shared {
  HANDLE go;
  HANDLE allDone;
  volatile LONG finished;
};

// Waits for the start signal; the last to finish says so. Once its count is in, a thread
// touches nothing shared but the event: the test may end right after.
DWORD WaitThenCount(LPVOID argument) {
  auto* shared = static_cast<Shared*>(argument);
  const HANDLE allDone = shared->allDone;
  WaitForSingleObject(shared->go, INFINITE);
  if (InterlockedIncrement(&shared->finished) == kThreads) SetEvent(allDone);
  return 0;
}

// Half the handles are closed while their threads still run, half after they ended; the
// sanitizers see to it that neither way leaks a thread or its handle.
TEST(Threads, AHandleClosedEarlyLetsTheThreadFinishAlone) {
  Shared shared{CreateEventW(nullptr, TRUE, FALSE, nullptr),
                CreateEventW(nullptr, TRUE, FALSE, nullptr), 0};
  std::vector<HANDLE> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.push_back(CreateThread(nullptr, 0, WaitThenCount, &shared, 0, nullptr));
    ASSERT_NE(threads.back(), nullptr);
  }
  for (int i = 0; i < kThreads / 2; ++i) EXPECT_TRUE(CloseHandle(threads[size_t(i)]));
  SetEvent(shared.go);
  for (int i = kThreads / 2; i < kThreads; ++i) {
    EXPECT_EQ(WaitForSingleObject(threads[size_t(i)], INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(threads[size_t(i)]));
  }
  EXPECT_EQ(WaitForSingleObject(shared.allDone, INFINITE), WAIT_OBJECT_0);
  CloseHandle(shared.go);
  CloseHandle(shared.allDone);
}

}  // namespace
