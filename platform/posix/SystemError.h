// The Windows error code that stands for a POSIX errno value.
#pragma once

#include "platform/win32ce.h"

namespace platform {

DWORD ErrorFromErrno(int error);

// Sets the last error from errno; for the many calls that fail with FALSE right after.
BOOL FailFromErrno();

}  // namespace platform
