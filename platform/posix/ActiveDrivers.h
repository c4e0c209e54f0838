// HKEY_LOCAL_MACHINE\Drivers\Active, where the device lists its serial ports.
#pragma once

#include <string>
#include <vector>

#include "platform/posix/RegistryNode.h"

namespace platform {

// A serial device of the machine: "ttyUSB0", "/dev/ttyUSB0", and what the device says
// it is, when it says.
struct SerialDeviceFound {
  std::string name;
  std::string path;
  std::string product;
};

// The serial devices present in /dev (or $KESTRIX_DEVICES), in the order they take port
// numbers: ttyS (only those with a UART behind them), ttyUSB, ttyACM, rfcomm, each by
// number.
std::vector<SerialDeviceFound> FindSerialDevices();

// Runs on every look at the registry, once the file has been read: the one place where
// the active-driver entries of the serial devices present join those that applications
// and tests wrote. Entries made here describe the machine, not the file: they are marked
// so, and the writer leaves them out.
//
// Each device gets an entry of its name with "Name" "COMn:", the lowest port number that
// no written entry holds, never 3 (which the automatic search leaves out), "DevicePath",
// and "Key" naming the entry itself, which holds the "FriendlyName". A device that a
// written entry already names by its path is left to that entry.
void MergeActiveDrivers(RegistryNode& localMachine);
void MergeActiveDrivers(RegistryNode& localMachine, const std::vector<SerialDeviceFound>& devices);

}  // namespace platform
