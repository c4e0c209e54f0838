// A String as the wide text of the system's file and registry names.
#pragma once

#include <string>

#include "frame/String.h"

namespace kx {

// A name that came from the caller's wide text is UTF-8 (String::FromWideName) and goes
// back to the system as the caller wrote it. Other 8-bit text, which isn't UTF-8, goes
// byte for character, each byte taken as unsigned: a Latin-1 name keeps its letters. A
// null String is the empty name.
inline std::u16string WideName(const String* text) {
  std::u16string wide;
  if (!text || text->GetLength() == 0) return wide;
  const char* bytes = text->GetText();
  const int length = int(text->GetLength());
  const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes, length, nullptr, 0);
  if (size > 0) {
    wide.resize(size_t(size));
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes, length, &wide[0], size);
    return wide;
  }
  wide.reserve(size_t(length));
  for (int i = 0; i < length; ++i) wide += char16_t(static_cast<unsigned char>(bytes[i]));
  return wide;
}

}  // namespace kx
