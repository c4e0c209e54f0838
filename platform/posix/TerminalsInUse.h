// Terminals that belong to someone else: the system console, and every terminal that a
// process has as its controlling terminal (the line of a getty, a login or a shell). A
// port opened there would take that program's input from under it and change its line.
#pragma once

#include <sys/types.h>

namespace platform {

// Whether the device, by its number (st_rdev), is the console or some process's
// controlling terminal.
bool IsTerminalInUse(dev_t device);

}  // namespace platform
