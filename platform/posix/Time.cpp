// Clocks: a wrapping millisecond tick, the UTC calendar time, and file times.
#include <time.h>

#include "platform/win32ce.h"

namespace {

constexpr int64_t kTicksPerMillisecond = 10000;  // file times count 100 ns
constexpr int64_t kMillisecondsPerDay = 86400000;
// Days from 1 January 1601 to 1 January 1970.
constexpr int64_t kDaysFrom1601To1970 = 134774;

bool IsLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(int year, int month) {
  static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : days[month - 1];
}

// Days since 1 January 1970 of a date in the proleptic Gregorian calendar.
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

bool IsValid(const SYSTEMTIME& t) {
  return t.wYear >= 1601 && t.wYear <= 30827 && t.wMonth >= 1 && t.wMonth <= 12 && t.wDay >= 1 &&
         t.wDay <= DaysInMonth(t.wYear, t.wMonth) && t.wHour < 24 && t.wMinute < 60 &&
         t.wSecond < 60 && t.wMilliseconds < 1000;
}

}  // namespace

DWORD GetTickCount() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  const uint64_t milliseconds = uint64_t(now.tv_sec) * 1000 + uint64_t(now.tv_nsec) / 1000000;
  return static_cast<DWORD>(milliseconds);  // wraps at 2^32, as on the device
}

void GetSystemTime(SYSTEMTIME* time) {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  tm utc;
  gmtime_r(&now.tv_sec, &utc);
  time->wYear = WORD(utc.tm_year + 1900);
  time->wMonth = WORD(utc.tm_mon + 1);
  time->wDayOfWeek = WORD(utc.tm_wday);
  time->wDay = WORD(utc.tm_mday);
  time->wHour = WORD(utc.tm_hour);
  time->wMinute = WORD(utc.tm_min);
  time->wSecond = WORD(utc.tm_sec);
  time->wMilliseconds = WORD(now.tv_nsec / 1000000);
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime) {
  if (!time || !fileTime || !IsValid(*time)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const int64_t days = DaysFromCivil(time->wYear, time->wMonth, time->wDay) + kDaysFrom1601To1970;
  const int64_t milliseconds = days * kMillisecondsPerDay + time->wHour * 3600000LL +
                               time->wMinute * 60000LL + time->wSecond * 1000LL +
                               time->wMilliseconds;
  const uint64_t ticks = uint64_t(milliseconds * kTicksPerMillisecond);
  fileTime->dwLowDateTime = DWORD(ticks);
  fileTime->dwHighDateTime = DWORD(ticks >> 32);
  return TRUE;
}
