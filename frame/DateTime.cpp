#include "frame/DateTime.h"

#include <cmath>
#include <string>

#include "frame/NumberText.h"
#include "platform/win32ce.h"

namespace kx {

DateTime::DateTime(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute,
                   int32_t second, int32_t millisecond)
    : m_year(year),
      m_month(month),
      m_day(day),
      m_hour(hour),
      m_minute(minute),
      m_second(second),
      m_millisecond(millisecond) {}

DateTime::DateTime(const String* time) : DateTime(String::ViewOf(time)) {}

DateTime::DateTime(const String* date, const String* time)
    : DateTime(String::ViewOf(date), String::ViewOf(time)) {}

DateTime::DateTime(TextView time) { ParseTime(time); }

DateTime::DateTime(TextView date, TextView time) {
  ParseDate(date);
  ParseTime(time);
}

void DateTime::ParseTime(TextView time) {
  const double x = time.ToDouble();
  m_hour = static_cast<int32_t>(x / 10000);
  m_minute = static_cast<int32_t>(x / 100) % 100;
  m_second = static_cast<int32_t>(x - m_hour * 10000.0 - m_minute * 100.0);
  // The small addend keeps a fraction such as .123 from being cut one short.
  const double rest = x - m_hour * 10000.0 - m_minute * 100.0 - m_second;
  m_millisecond = static_cast<int32_t>(rest * 1000 + 0.000005);
}

// A sentence too short to have the field leaves the date at 0; an empty field is
// day 0, month 0 of 2000.
void DateTime::ParseDate(TextView date) {
  if (!date.IsPresent()) return;
  const int32_t d = date.ToInt();
  m_day = d / 10000;
  m_month = (d / 100) % 100;
  const int32_t year = d % 100;
  m_year = year >= 80 ? year + 1900 : year + 2000;
}

DateTime* DateTime::NowUtc() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  return new DateTime(now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond,
                      now.wMilliseconds);
}

String* DateTime::ToText(int32_t format) const {
  int32_t a = m_hour, b = m_minute, c = m_second;
  if (format == 1) {
    a = m_day;
    b = m_month;
    c = m_year % 100;
  }
  std::string text;
  NumberText::AppendIntPadded(text, a, 2);
  if (format == 2) text += ':';
  NumberText::AppendIntPadded(text, b, 2);
  if (format == 2) text += '.';
  NumberText::AppendIntPadded(text, c, 2);
  return new String(text.c_str());
}

// Through the system's file time, so the members are first made legal: a year before
// 1970 counts as 1970, month and day 0 as 1. A member beyond its range makes the
// conversion fail, and the time then counts as 0.
int64_t DateTime::ToMilliseconds() const {
  SYSTEMTIME t{};
  t.wYear = WORD(m_year < 1970 ? 1970 : m_year);
  t.wMonth = WORD(m_month == 0 ? 1 : m_month);
  t.wDay = WORD(m_day == 0 ? 1 : m_day);
  t.wHour = WORD(m_hour);
  t.wMinute = WORD(m_minute);
  t.wSecond = WORD(m_second);
  t.wMilliseconds = WORD(m_millisecond);
  FILETIME file{};
  if (!SystemTimeToFileTime(&t, &file)) return 0;
  return int64_t((uint64_t(file.dwHighDateTime) << 32 | file.dwLowDateTime) / 10000);
}

int64_t DateTime::SecondsBetween(const DateTime* first, const DateTime* second) {
  if (!first || !second) return 0;
  return (second->ToMilliseconds() - first->ToMilliseconds()) / 1000;
}

}  // namespace kx
