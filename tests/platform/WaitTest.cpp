// The platform's waits, thread handles and clocks.
#include <gtest/gtest.h>

#include "platform/win32ce.h"

namespace {

TEST(Waits, RefuseWhatTheDeviceRefuses) {
  HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  HANDLE many[65];
  for (HANDLE& h : many) h = event;
  EXPECT_EQ(WaitForMultipleObjects(65, many, FALSE, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(WaitForMultipleObjects(0, many, FALSE, 0), WAIT_FAILED);
  EXPECT_EQ(WaitForMultipleObjects(2, many, TRUE, 0), WAIT_FAILED);
  EXPECT_EQ(WaitForMultipleObjects(64, many, FALSE, 0), WAIT_TIMEOUT);
  EXPECT_FALSE(EventModify(event, 1));
  EXPECT_TRUE(CloseHandle(event));
  EXPECT_FALSE(CloseHandle(nullptr));
}

TEST(Waits, AnAutoResetEventReleasesOneWait) {
  HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  CloseHandle(event);
}

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
  EXPECT_TRUE(CloseHandle(thread));
  CloseHandle(started);
  EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
}

TEST(Clocks, FileTimesCountFrom1601AndRefuseImpossibleDates) {
  SYSTEMTIME epoch{1970, 1, 4, 1, 0, 0, 0, 0};
  FILETIME file{};
  ASSERT_TRUE(SystemTimeToFileTime(&epoch, &file));
  EXPECT_EQ(uint64_t(file.dwHighDateTime) << 32 | file.dwLowDateTime, 116444736000000000ull);
  SYSTEMTIME leap{2024, 2, 4, 29, 23, 59, 59, 999};
  EXPECT_TRUE(SystemTimeToFileTime(&leap, &file));
  for (SYSTEMTIME bad :
       {SYSTEMTIME{2023, 2, 0, 29, 0, 0, 0, 0}, SYSTEMTIME{2023, 13, 0, 1, 0, 0, 0, 0},
        SYSTEMTIME{2023, 1, 0, 1, 24, 0, 0, 0}, SYSTEMTIME{1600, 1, 0, 1, 0, 0, 0, 0}})
    EXPECT_FALSE(SystemTimeToFileTime(&bad, &file));
  SYSTEMTIME now;
  GetSystemTime(&now);
  EXPECT_TRUE(SystemTimeToFileTime(&now, &file));
  const DWORD before = GetTickCount();
  EXPECT_LE(DWORD(GetTickCount() - before), 1000u);  // modular: right across the wrap too
}

}  // namespace
