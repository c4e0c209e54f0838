// A String as the wide text of the system's file and registry names.
#pragma once

#include <string>

#include "frame/String.h"

namespace kx {

// Byte for character, each byte taken as unsigned: a name keeps its Latin-1 letters on
// their way to the system. A null String is the empty name.
inline std::u16string WideName(const String* text) {
  std::u16string wide;
  if (!text) return wide;
  wide.reserve(size_t(text->GetLength()));
  for (int32_t i = 0; i < text->GetLength(); ++i)
    wide += char16_t(static_cast<unsigned char>(text->GetText()[i]));
  return wide;
}

}  // namespace kx
