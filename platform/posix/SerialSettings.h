// A DCB in termios terms. termios keeps the line's speed, framing and flow control; what
// it has no place for (DTR/DSR handshake, limits, characters of the device's own) is kept
// beside it in the DCB that was set last, so GetCommState gives back what SetCommState
// took.
#pragma once

#include <termios.h>

#include "platform/win32ce.h"

namespace platform {

class SerialSettings {
 public:
  // The speed that stands for a baud rate, or B0 when termios has none for it.
  static speed_t SpeedOf(DWORD baudRate);
  static DWORD BaudRateOf(speed_t speed);

  // The DCB of a line as termios describes it, with the device's defaults for the rest.
  static DCB FromTermios(const termios& line);
  // Raw bytes in both directions and the DCB's speed, framing and software and RTS/CTS
  // flow control; false for a DCB that the line can't take.
  static bool ToTermios(const DCB& dcb, termios& line);
};

}  // namespace platform
