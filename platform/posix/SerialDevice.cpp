#include "platform/posix/SerialDevice.h"

namespace platform {

bool IsSerialDeviceName(LPCWSTR name) {
  if (!name) return false;
  for (int i = 0; i < 3; ++i)
    if ((name[i] & ~0x20) != u"COM"[i]) return false;
  int digits = 3;
  while (name[digits] >= u'0' && name[digits] <= u'9') ++digits;
  return digits > 3 && name[digits] == u':' && name[digits + 1] == 0;
}

// No serial devices are known yet: every port is missing.
HANDLE OpenSerialDevice(LPCWSTR, DWORD, DWORD, DWORD) {
  SetLastError(ERROR_FILE_NOT_FOUND);
  return INVALID_HANDLE_VALUE;
}

}  // namespace platform
