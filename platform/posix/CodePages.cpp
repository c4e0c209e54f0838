// Conversions between wide text and the UTF-8 code page, with the device's rules for
// lengths and buffers.
#include <string>

#include "platform/posix/WideText.h"

namespace {

// The length of a text whose length is -1: up to and with its terminator.
template <class Char>
int TerminatedLength(const Char* text) {
  int length = 0;
  while (text[length]) ++length;
  return length + 1;
}

// Copies a converted text out, or gives its length when `size` is 0.
template <class Char, class Text>
int Deliver(const Text& converted, Char* out, int size) {
  const int length = int(converted.size());
  if (size == 0) return length;
  if (length > size) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  for (int i = 0; i < length; ++i) out[i] = Char(converted[size_t(i)]);
  return length;
}

bool ArgumentsValid(UINT codePage, const void* text, int length, const void* out, int size) {
  if (codePage == CP_UTF8 && text && length >= -1 && size >= 0 && (out || size == 0)) return true;
  SetLastError(ERROR_INVALID_PARAMETER);
  return false;
}

}  // namespace

int WideCharToMultiByte(UINT codePage, DWORD, LPCWSTR wide, int wideLength, char* bytes, int size,
                        const char*, BOOL* usedDefaultChar) {
  if (usedDefaultChar) *usedDefaultChar = FALSE;
  if (!ArgumentsValid(codePage, wide, wideLength, bytes, size)) return 0;
  if (wideLength == -1) wideLength = TerminatedLength(wide);
  return Deliver(platform::ToUtf8(std::u16string(wide, size_t(wideLength))), bytes, size);
}

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* bytes, int length, WCHAR* wide,
                        int size) {
  if (!ArgumentsValid(codePage, bytes, length, wide, size)) return 0;
  if (length == -1) length = TerminatedLength(bytes);
  const std::string utf8(bytes, size_t(length));
  std::u16string text;
  if (!(flags & MB_ERR_INVALID_CHARS)) {
    text = platform::FromUtf8(utf8);
  } else if (!platform::FromUtf8Exactly(utf8, text)) {
    SetLastError(ERROR_NO_UNICODE_TRANSLATION);
    return 0;
  }
  return Deliver(text, wide, size);
}
