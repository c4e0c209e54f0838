#include "frame/NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace kx {

namespace {
bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

const char* SkipSpace(const char* text, const char* end) {
  while (text < end && IsSpace(*text)) ++text;
  return text;
}

// Decimal digits that printf would use beyond which nothing of a double is left.
constexpr int kMaxPrecision = 1100;
}  // namespace

double NumberText::ParseDouble(const char* text) {
  return text ? ParseDouble(text, int32_t(std::strlen(text))) : 0.0;
}

double NumberText::ParseDouble(const char* text, int32_t length) {
  if (!text) return 0.0;
  const char* const end = text + length;
  const char* p = SkipSpace(text, end);
  bool negative = false;
  if (p < end && (*p == '+' || *p == '-')) negative = *p++ == '-';
  if (p < end && (*p == '+' || *p == '-')) return 0.0;  // a second sign is no number
  double value = 0.0;
  const auto result = std::from_chars(p, end, value, std::chars_format::general);
  if (result.ec == std::errc::result_out_of_range)
    value = std::strtod(std::string(p, end).c_str(), nullptr);  // as atof over- and underflows
  else if (result.ec != std::errc())
    return 0.0;
  return negative ? -value : value;
}

int32_t NumberText::ParseInt(const char* text) {
  return text ? ParseInt(text, int32_t(std::strlen(text))) : 0;
}

int32_t NumberText::ParseInt(const char* text, int32_t length) {
  if (!text) return 0;
  const char* const end = text + length;
  const char* p = SkipSpace(text, end);
  bool negative = false;
  if (p < end && (*p == '+' || *p == '-')) negative = *p++ == '-';
  uint32_t value = 0;
  for (; p < end && IsDigit(*p); ++p) value = value * 10u + uint32_t(*p - '0');
  return int32_t(negative ? 0u - value : value);
}

void NumberText::AppendInt(std::string& out, int64_t value) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, size_t(result.ptr - buffer));
}

void NumberText::AppendIntPadded(std::string& out, int64_t value, int width) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  const int length = int(result.ptr - buffer);  // the width counts the sign, as in printf
  const char* digits = buffer;
  if (value < 0) out.push_back(*digits++);
  if (length < width) out.append(size_t(width - length), '0');
  out.append(digits, size_t(result.ptr - digits));
}

void NumberText::AppendFixed(std::string& out, double value, int precision) {
  if (precision < 0) precision = 6;
  if (precision > kMaxPrecision) precision = kMaxPrecision;
  if (std::isnan(value)) {
    out += std::signbit(value) ? "-nan" : "nan";
    return;
  }
  if (std::isinf(value)) {
    out += value < 0 ? "-inf" : "inf";
    return;
  }
  // 309 integer digits at most, a sign, a point and the decimals.
  std::string buffer(size_t(precision) + 320, '\0');
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, precision);
  out.append(buffer.data(), size_t(result.ptr - buffer.data()));
}

}  // namespace kx
