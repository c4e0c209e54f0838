// Reading texts that the library hands out, in tests of the exported functions.
#pragma once

#include <string>

#include "KestrixCE.h"

namespace kxtest {

// The BSTR as 8-bit text (the library's texts are ASCII); "<null>" for no text. Frees it.
inline std::string Take(BSTR text) {
  if (!text) return "<null>";
  std::string out;
  for (unsigned i = 0; i < SysStringLen(text); ++i) out += static_cast<char>(text[i]);
  SysFreeString(text);
  return out;
}

// The number and text of an object's last failure, as "10003 Unknown datum!"; "0" when
// there is none.
inline std::string Failure(KxError error) {
  const short number = Error_ErrNum(error);
  if (number == 0) return "0";
  BSTR text = Error_ErrDesc(error, nullptr);  // the library's: not freed
  std::string out = std::to_string(number) + " ";
  for (unsigned i = 0; i < SysStringLen(text); ++i) out += static_cast<char>(text[i]);
  return out;
}

}  // namespace kxtest
