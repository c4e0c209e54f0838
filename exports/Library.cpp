// Loading and unloading the library: the process attach and detach of the device.
#include "exports/ErrorSlot.h"
#include "frame/LibraryLock.h"

namespace {

__attribute__((constructor)) void LibraryAttach() {
  // The lock exists before any object does; taking it once makes it.
  kx::LibraryLock::Enter();
  kx::LibraryLock::Leave();
}

__attribute__((destructor)) void LibraryDetach() { kx::exports::ReleaseErrorSlot(); }

}  // namespace
