// Number <-> text in the "C" conventions whatever the application's locale is:
// atof, atoi and the "%d" and "%.Nf" forms that the library's texts are made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kx {

class NumberText {
 public:
  // atof: leading white space, an optional sign, the longest number; 0 if none.
  static double ParseDouble(const char* text);
  // The same over the first `length` characters of a text that needn't end there.
  static double ParseDouble(const char* text, int32_t length);
  // atoi: leading white space, an optional sign, decimal digits; 0 if none. Values
  // beyond 32 bits wrap, as the device's C library does.
  static int32_t ParseInt(const char* text);
  static int32_t ParseInt(const char* text, int32_t length);

  // "%d"
  static void AppendInt(std::string& out, int64_t value);
  // "%0<width>d"
  static void AppendIntPadded(std::string& out, int64_t value, int width);
  // "%.<precision>f"; a negative precision is the "%f" form (6 decimals).
  static void AppendFixed(std::string& out, double value, int precision);
};

}  // namespace kx
