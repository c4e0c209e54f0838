// Serial ports by their device names, "COM1:" and on, as CreateFileW receives them.
#pragma once

#include "platform/win32ce.h"

namespace platform {

// "COM", a number and a colon, without regard to case.
bool IsSerialDeviceName(LPCWSTR name);

// CreateFileW for a serial device name: a StreamObject's handle, or INVALID_HANDLE_VALUE
// with the last error set.
HANDLE OpenSerialDevice(LPCWSTR name, DWORD access, DWORD shareMode, DWORD disposition);

}  // namespace platform
