#include "frame/LibraryLock.h"

#include "platform/win32ce.h"

namespace kx {

namespace {
// Made on first use (loading the library makes it at once) and never deleted, so that
// objects destroyed late in process exit can still take it.
CRITICAL_SECTION* TheLock() {
  static CRITICAL_SECTION* lock = [] {
    auto* cs = new CRITICAL_SECTION;
    InitializeCriticalSection(cs);
    return cs;
  }();
  return lock;
}
}  // namespace

void LibraryLock::Enter() { EnterCriticalSection(TheLock()); }

void LibraryLock::Leave() { LeaveCriticalSection(TheLock()); }

}  // namespace kx
