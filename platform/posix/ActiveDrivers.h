// HKEY_LOCAL_MACHINE\Drivers\Active, where the device lists its serial ports.
#pragma once

#include "platform/posix/RegistryNode.h"

namespace platform {

// Runs on every look at the registry, once the file has been read: the one place where
// the active-driver entries of the serial devices present join those that applications
// and tests wrote. Entries made here describe the machine, not the file: the writer must
// leave them out.
void MergeActiveDrivers(RegistryNode& localMachine);

}  // namespace platform
