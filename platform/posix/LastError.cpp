// The per-thread last-error value of the platform calls.
#include "platform/win32ce.h"

namespace {
thread_local DWORD lastError = ERROR_SUCCESS;
}

DWORD GetLastError() { return lastError; }

void SetLastError(DWORD error) { lastError = error; }
