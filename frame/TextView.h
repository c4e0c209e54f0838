// A look at text that someone else owns: a field of a sentence read in place, where a
// String would cost an object for every number read. Absent is not the same as empty:
// a field beyond a sentence's end is absent, an empty field between commas is present.
#pragma once

#include <cstdint>

#include "frame/NumberText.h"

namespace kx {

struct TextView {
  const char* text = nullptr;  // null when absent
  int32_t length = 0;

  bool IsPresent() const { return text != nullptr; }
  bool StartsWith(char letter) const { return length > 0 && text[0] == letter; }
  // As String's ToDouble and ToInt read the same characters; 0 when absent or empty.
  double ToDouble() const { return length ? NumberText::ParseDouble(text, length) : 0.0; }
  int32_t ToInt() const { return length ? NumberText::ParseInt(text, length) : 0; }
};

}  // namespace kx
