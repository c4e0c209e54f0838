#include "frame/String.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/NumberText.h"

namespace kx {

namespace {
// Text buffers of the number forms: the results are cut to fit, as on the device.
constexpr int32_t kAngleBuffer = 15;
constexpr int32_t kIntegerBuffer = 15;
constexpr int32_t kDoubleBuffer = 128;

int32_t LengthOf(const char* text) { return text ? int32_t(std::strlen(text)) : 0; }

char Lower(char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; }

// The angle text after the seconds have been rounded up to the next carry. Each form
// carries once more where its own rounding reaches a whole minute or degree: seconds
// that "%.2f" would show as "60.00" are the next minute.
std::string AngleText(int32_t degrees, int32_t minutes, double seconds, char hemisphere,
                      int32_t format) {
  seconds += 0.0005;
  if (seconds >= 60.0) {
    seconds = 0.0;
    minutes += 1;
  }
  if (minutes == 60) {
    minutes = 0;
    degrees += 1;
  }
  std::string text;
  if (format == 0) {
    std::string secondsText;
    NumberText::AppendFixed(secondsText, seconds, 2);
    if (secondsText == "60.00") {
      secondsText = "0.00";
      if (++minutes == 60) {
        minutes = 0;
        degrees += 1;
      }
    }
    NumberText::AppendInt(text, degrees);
    text += ' ';
    NumberText::AppendInt(text, minutes);
    text += '\'';
    text += secondsText;
    text += ' ';
    if (hemisphere) text += hemisphere;  // "%c" of NUL ends the C text there
  } else if (format == 1 || format == 2) {
    std::string minutesText;
    NumberText::AppendFixed(minutesText, minutes + seconds / 60.0, 5);
    if (minutes == 59 && minutesText == "60.00000") {
      minutesText = "0.00000";
      minutes = 0;
      degrees += 1;
    }
    NumberText::AppendIntPadded(text, degrees, format == 1 ? 2 : 3);
    // The minutes always take two digits, also where 9.999996 shows as "10.00000".
    if (minutes < 10 && minutesText != "10.00000") text += '0';
    text += minutesText;
  }
  return text;
}
}  // namespace

String::String() = default;

String::String(const char* a, const char* b, const char* c) {
  const int32_t la = LengthOf(a), lb = LengthOf(b), lc = LengthOf(c);
  m_text = static_cast<char*>(std::malloc(size_t(la) + lb + lc + 1));
  if (!m_text) return;
  if (la) std::memcpy(m_text, a, size_t(la));
  if (lb) std::memcpy(m_text + la, b, size_t(lb));
  if (lc) std::memcpy(m_text + la + lb, c, size_t(lc));
  m_length = la + lb + lc;
  m_text[m_length] = '\0';
}

String::String(const String* a, const String* b, const String* c) {
  const String* parts[] = {a, b, c};
  int32_t total = 0;
  for (const String* part : parts)
    if (part) total += part->m_length;
  if (total == 0) return;
  m_text = static_cast<char*>(std::malloc(size_t(total) + 1));
  if (!m_text) return;
  for (const String* part : parts) {
    if (!part || !part->m_length) continue;
    std::memcpy(m_text + m_length, part->m_text, size_t(part->m_length));
    m_length += part->m_length;
  }
  m_text[m_length] = '\0';
}

String::String(const char* bytes, int32_t length) { Assign(bytes, length); }

String::String(const WCHAR* wide) {
  if (!wide) return;
  int32_t length = 0;
  while (wide[length]) ++length;
  AssignWide(wide, length);
}

String::String(const WCHAR* wide, int32_t length) { AssignWide(wide, length); }

String* String::FromWideName(const WCHAR* wide) {
  if (!wide) return nullptr;
  int32_t length = 0;
  while (wide[length]) ++length;
  if (length == 0) return new String(wide);
  const int size = WideCharToMultiByte(CP_UTF8, 0, wide, length, nullptr, 0, nullptr, nullptr);
  std::string utf8(size_t(size), '\0');
  if (size > 0) WideCharToMultiByte(CP_UTF8, 0, wide, length, &utf8[0], size, nullptr, nullptr);
  return new String(utf8.data(), int32_t(utf8.size()));
}

void String::AssignWide(const WCHAR* wide, int32_t length) {
  if (!wide || length < 1) return;
  m_text = static_cast<char*>(std::malloc(size_t(length) + 1));
  if (!m_text) return;
  for (int32_t i = 0; i < length; ++i) m_text[i] = char(wide[i] & 0xFF);
  m_text[length] = '\0';
  m_length = length;
}

String::String(int32_t value) {
  std::string text;
  NumberText::AppendInt(text, value);
  AssignText(text.c_str(), kIntegerBuffer);
}

String::String(double value, int32_t precision) {
  std::string text;
  NumberText::AppendFixed(text, value, precision);
  AssignText(text.c_str(), kDoubleBuffer);
}

String::String(int32_t degrees, int32_t minutes, double seconds, char hemisphere, int32_t format) {
  AssignText(AngleText(degrees, minutes, seconds, hemisphere, format).c_str(), kAngleBuffer);
}

String::~String() {
  std::free(m_text);
  SysFreeString(m_wide);
}

void String::Assign(const char* bytes, int32_t length) {
  if (!bytes || length < 1) return;
  m_text = static_cast<char*>(std::malloc(size_t(length) + 1));
  if (!m_text) return;
  std::memcpy(m_text, bytes, size_t(length));
  m_text[length] = '\0';
  m_length = length;
}

void String::AssignText(const char* text, int32_t bufferSize) {
  const int32_t length = LengthOf(text);
  m_text = static_cast<char*>(std::malloc(size_t(bufferSize)));
  if (!m_text) return;
  m_length = length < bufferSize ? length : bufferSize - 1;
  std::memcpy(m_text, text, size_t(m_length));
  m_text[m_length] = '\0';
}

int8_t String::GetChar(int32_t index) const {
  if (index < 0 || index >= m_length) return 0;
  return int8_t(m_text[index]);
}

double String::ToDouble() const { return m_length ? NumberText::ParseDouble(m_text) : 0.0; }

int16_t String::ToShort() const { return int16_t(ToInt()); }

int32_t String::ToInt() const { return m_length ? NumberText::ParseInt(m_text) : 0; }

String* String::Mid(int32_t start, int32_t count) const {
  if (count == 0) count = m_length - start;
  if (start < 0 || count < 0 || int64_t(start) + count > m_length) return new String();
  return new String(m_text + start, count);
}

bool String::EqualsBytes(const char* text, int32_t textLength, int32_t count, int32_t start) const {
  if (m_length == 0) return count == 0 || (text && textLength == 0);
  if (!text || start < 0 || start >= m_length) return false;
  const char* here = m_text + start;
  const int32_t rest = m_length - start;
  if (count == 0) {
    if (rest != textLength) return false;
    count = rest;
  }
  // Like strncasecmp: both texts ending at the same place is equality.
  for (int32_t i = 0; i < count; ++i) {
    const bool hereEnded = i >= rest, textEnded = i >= textLength;
    if (hereEnded || textEnded) return hereEnded && textEnded;
    if (Lower(here[i]) != Lower(text[i])) return false;
  }
  return true;
}

bool String::EqualsAt(const char* text, int32_t count, int32_t start) const {
  return EqualsBytes(text, LengthOf(text), count, start);
}

bool String::EqualsAt(const String* text, int32_t count, int32_t start) const {
  if (m_length == 0 || !text || text->m_length == 0) return false;
  return EqualsBytes(text->m_text, text->m_length, count, start);
}

int32_t String::ReverseFind(const char* text, int32_t start) const {
  if (!text) return -1;
  const int32_t textLength = LengthOf(text);
  const int32_t last = m_length - textLength;
  if (start == -1) start = last;
  if (start < -1 || start > m_length) return -1;
  if (start > last) start = last;
  for (int32_t position = start; position >= 0; --position)
    if (EqualsBytes(text, textLength, textLength, position)) return position;
  return -1;
}

void String::CopyTo(char* buffer, int32_t size) const {
  if (!buffer || size < 1) return;
  const int32_t count = m_length < size - 1 ? m_length : size - 1;
  if (count > 0) std::memcpy(buffer, m_text, size_t(count));
  buffer[count] = '\0';
}

BSTR String::GetBSTR() {
  if (m_wide) return m_wide;
  m_wide = SysAllocStringLen(nullptr, UINT(m_length));
  if (!m_wide) return nullptr;
  // Sign extension: bytes above 127 come out with 0xFF in the high byte.
  for (int32_t i = 0; i < m_length; ++i) m_wide[i] = WCHAR(int16_t(int8_t(m_text[i])));
  return m_wide;
}

}  // namespace kx
