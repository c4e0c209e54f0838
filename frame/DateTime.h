// A calendar time as plain members, as a receiver reports it.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "frame/String.h"

namespace kx {

class DateTime : public BaseObject {
 public:
  DateTime() = default;
  DateTime(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t second,
           int32_t millisecond);
  // "hhmmss.sss" of a sentence: the time of day, date members 0.
  explicit DateTime(const String* time);
  // "ddmmyy" and "hhmmss.sss": years 80 to 99 are 1980 to 1999, the others 2000 on. A
  // null date leaves the date members 0.
  DateTime(const String* date, const String* time);
  // The same, read in place; an absent view stands for a null text.
  explicit DateTime(TextView time);
  DateTime(TextView date, TextView time);

  static DateTime* NowUtc();

  int32_t GetYear() const { return m_year; }
  int32_t GetMonth() const { return m_month; }
  int32_t GetDay() const { return m_day; }
  int32_t GetHour() const { return m_hour; }
  int32_t GetMinute() const { return m_minute; }
  int32_t GetSecond() const { return m_second; }
  int32_t GetMilliSecond() const { return m_millisecond; }

  // 0: "hhmmss"; 1: "ddmmyy"; 2: "hh:mm.ss".
  String* ToText(int32_t format) const;
  // Second minus first in whole seconds toward 0; 0 if either is null.
  static int64_t SecondsBetween(const DateTime* first, const DateTime* second);

 private:
  void ParseTime(TextView time);
  void ParseDate(TextView date);
  int64_t ToMilliseconds() const;

  int32_t m_year = 0;
  int32_t m_month = 0;
  int32_t m_day = 0;
  int32_t m_hour = 0;
  int32_t m_minute = 0;
  int32_t m_second = 0;
  int32_t m_millisecond = 0;
};

}  // namespace kx
