// Which COM ports the device has, from the registry of active drivers, with names an
// application can show, and the lists of settings a serial port dialogue offers. Every
// list is a new ObjectList of Strings whose ID is the value they stand for.
#pragma once

#include <cstdint>

#include "frame/ObjectList.h"
#include "frame/String.h"

namespace kx {

class PortEnumerator {
 public:
  // The active ports in ascending order, each once, named with their drivers' friendly
  // names.
  static ObjectList* ListActivePorts() { return ListPorts(true); }
  static ObjectList* ListPorts(bool withNames);
  // "COMn" for each port from 1 to the highest that isn't an active one.
  static ObjectList* ListAllPorts(int32_t highestPort = 32);
  // "COMn:" in the device form, else "COMn".
  static String* PortName(int32_t port, bool deviceForm);
  // The n of "COMn" or "\\.\COMn"; -1 for other names.
  static int32_t ParsePortNumber(const String* name);

  static bool IsValidBaudRate(uint32_t baudRate);
  static bool IsValidPortNumber(int32_t port) { return port >= 0 && port <= 9; }
  static ObjectList* ListBaudRates();
  static ObjectList* ListHandshakes();
  static ObjectList* ListParities();
  static ObjectList* ListStopBits();
  static ObjectList* ListByteSizes();
};

}  // namespace kx
