// BSTR: a 32-bit byte count, the characters, a wide NUL. The handed-out pointer
// points at the first character, as on the device.
#include <cstdlib>
#include <cstring>

#include "platform/win32ce.h"

namespace {
constexpr size_t kPrefix = sizeof(uint32_t);
constexpr UINT kMaxLength = (0x7FFFFFFFu - kPrefix) / sizeof(WCHAR) - 1;

uint32_t* PrefixOf(BSTR text) {
  return reinterpret_cast<uint32_t*>(reinterpret_cast<char*>(text) - kPrefix);
}
}  // namespace

BSTR SysAllocStringLen(const WCHAR* source, UINT length) {
  if (length > kMaxLength) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
  const size_t bytes = size_t(length) * sizeof(WCHAR);
  auto* block = static_cast<char*>(std::malloc(kPrefix + bytes + sizeof(WCHAR)));
  if (!block) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
  const uint32_t byteCount = uint32_t(bytes);
  std::memcpy(block, &byteCount, kPrefix);
  auto* text = reinterpret_cast<BSTR>(block + kPrefix);
  if (source) std::memcpy(text, source, bytes);
  text[length] = 0;
  return text;
}

void SysFreeString(BSTR text) {
  if (text) std::free(PrefixOf(text));
}

UINT SysStringLen(BSTR text) {
  if (!text) return 0;
  uint32_t byteCount;
  std::memcpy(&byteCount, PrefixOf(text), kPrefix);
  return byteCount / sizeof(WCHAR);
}
