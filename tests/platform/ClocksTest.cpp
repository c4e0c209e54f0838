// The platform's clocks: the wrapping millisecond tick, UTC calendar time, file times.
#include <gtest/gtest.h>
#include <time.h>

#include "platform/win32ce.h"

namespace {

uint64_t ToTicks(const FILETIME& file) {
  return uint64_t(file.dwHighDateTime) << 32 | file.dwLowDateTime;
}

TEST(Clocks, FileTimesCountHundredsOfNanosecondsFrom1601) {
  struct Case {
    SYSTEMTIME time;
    uint64_t ticks;
  };
  const Case cases[] = {
      {{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
      {{1970, 1, 4, 1, 0, 0, 0, 0}, 116444736000000000ull},
      {{2000, 1, 6, 1, 0, 0, 0, 0}, 125911584000000000ull},
      {{2000, 2, 2, 29, 0, 0, 0, 1}, 125911584000000000ull + 59 * 864000000000ull + 10000},
      {{2024, 2, 4, 29, 23, 59, 59, 999}, 133537247999990000ull},
  };
  for (const Case& c : cases) {
    FILETIME file{};
    ASSERT_TRUE(SystemTimeToFileTime(&c.time, &file)) << c.time.wYear;
    EXPECT_EQ(ToTicks(file), c.ticks) << c.time.wYear;
  }
}

TEST(Clocks, ImpossibleDatesAreRefused) {
  const SYSTEMTIME bad[] = {
      {2023, 2, 0, 29, 0, 0, 0, 0},   {1900, 2, 0, 29, 0, 0, 0, 0},  {2023, 4, 0, 31, 0, 0, 0, 0},
      {2023, 13, 0, 1, 0, 0, 0, 0},   {2023, 0, 0, 1, 0, 0, 0, 0},   {2023, 1, 0, 0, 0, 0, 0, 0},
      {2023, 1, 0, 1, 24, 0, 0, 0},   {2023, 1, 0, 1, 0, 60, 0, 0},  {2023, 1, 0, 1, 0, 0, 60, 0},
      {2023, 1, 0, 1, 0, 0, 0, 1000}, {1600, 12, 0, 31, 0, 0, 0, 0},
  };
  for (const SYSTEMTIME& t : bad) {
    FILETIME file{};
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(SystemTimeToFileTime(&t, &file))
        << t.wYear << '-' << t.wMonth << '-' << t.wDay << ' ' << t.wHour << ':' << t.wMinute;
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  }
  FILETIME file{};
  EXPECT_FALSE(SystemTimeToFileTime(nullptr, &file));
}

TEST(Clocks, SystemTimeIsTheUtcCalendarOfTheRealTimeClock) {
  const time_t before = time(nullptr);
  SYSTEMTIME now;
  GetSystemTime(&now);
  const time_t after = time(nullptr);
  FILETIME file{};
  ASSERT_TRUE(SystemTimeToFileTime(&now, &file));
  const int64_t seconds = int64_t(ToTicks(file) / 10000000) - 11644473600;
  EXPECT_GE(seconds, int64_t(before));
  EXPECT_LE(seconds, int64_t(after));
  EXPECT_EQ(now.wDayOfWeek, (seconds / 86400 + 4) % 7);  // 1 January 1970 was a Thursday
}

uint64_t MonotonicMilliseconds() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return uint64_t(now.tv_sec) * 1000 + uint64_t(now.tv_nsec) / 1000000;
}

// The tick is the monotonic clock cut to 32 bits, so differences taken modulo 2^32 stay
// right across the wrap every 49.7 days.
TEST(Clocks, TheTickIsTheMonotonicClockWrappedAt2To32) {
  const uint64_t before = MonotonicMilliseconds();
  const DWORD tick = GetTickCount();
  const uint64_t after = MonotonicMilliseconds();
  EXPECT_LE(DWORD(tick - DWORD(before)), DWORD(after - before));
}

}  // namespace
