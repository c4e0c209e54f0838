#include "platform/posix/SerialSettings.h"

namespace platform {

namespace {

struct Rate {
  DWORD baudRate;
  speed_t speed;
};

constexpr Rate kRates[] = {
    {50, B50},           {75, B75},           {110, B110},         {134, B134},
    {150, B150},         {200, B200},         {300, B300},         {600, B600},
    {1200, B1200},       {1800, B1800},       {2400, B2400},       {4800, B4800},
    {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},
    {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000},
    {1500000, B1500000}, {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000},
    {3500000, B3500000}, {4000000, B4000000},
};

// The characters the device starts with: XON and XOFF.
constexpr char kXon = 17;
constexpr char kXoff = 19;
// Bytes in the input buffer at which the driver sends XON, and room left at XOFF.
constexpr WORD kXonLimit = 2048;
constexpr WORD kXoffLimit = 512;

tcflag_t ByteSizeFlag(BYTE byteSize) {
  switch (byteSize) {
    case 5:
      return CS5;
    case 6:
      return CS6;
    case 7:
      return CS7;
    case 8:
      return CS8;
    default:
      return tcflag_t(-1);
  }
}

BYTE ByteSizeOf(tcflag_t flags) {
  switch (flags & CSIZE) {
    case CS5:
      return 5;
    case CS6:
      return 6;
    case CS7:
      return 7;
    default:
      return 8;
  }
}

BYTE ParityOf(tcflag_t flags) {
  if (!(flags & PARENB)) return NOPARITY;
  if (flags & CMSPAR) return flags & PARODD ? MARKPARITY : SPACEPARITY;
  return flags & PARODD ? ODDPARITY : EVENPARITY;
}

bool PutParity(BYTE parity, tcflag_t& flags) {
  flags &= ~(PARENB | PARODD | CMSPAR);
  switch (parity) {
    case NOPARITY:
      return true;
    case ODDPARITY:
      flags |= PARENB | PARODD;
      return true;
    case EVENPARITY:
      flags |= PARENB;
      return true;
    case MARKPARITY:
      flags |= PARENB | PARODD | CMSPAR;
      return true;
    case SPACEPARITY:
      flags |= PARENB | CMSPAR;
      return true;
    default:
      return false;
  }
}

}  // namespace

speed_t SerialSettings::SpeedOf(DWORD baudRate) {
  for (const Rate& rate : kRates)
    if (rate.baudRate == baudRate) return rate.speed;
  return B0;
}

DWORD SerialSettings::BaudRateOf(speed_t speed) {
  for (const Rate& rate : kRates)
    if (rate.speed == speed) return rate.baudRate;
  return 0;
}

DCB SerialSettings::FromTermios(const termios& line) {
  DCB dcb{};
  dcb.DCBlength = sizeof dcb;
  dcb.BaudRate = BaudRateOf(cfgetospeed(&line));
  dcb.fBinary = 1;
  dcb.fParity = (line.c_iflag & INPCK) ? 1 : 0;
  const bool rtsCts = line.c_cflag & CRTSCTS;
  dcb.fOutxCtsFlow = rtsCts;
  dcb.fRtsControl = rtsCts ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
  dcb.fDtrControl = DTR_CONTROL_ENABLE;
  dcb.fOutX = (line.c_iflag & IXON) ? 1 : 0;
  dcb.fInX = (line.c_iflag & IXOFF) ? 1 : 0;
  dcb.XonLim = kXonLimit;
  dcb.XoffLim = kXoffLimit;
  dcb.ByteSize = ByteSizeOf(line.c_cflag);
  dcb.Parity = ParityOf(line.c_cflag);
  dcb.StopBits = (line.c_cflag & CSTOPB) ? TWOSTOPBITS : ONESTOPBIT;
  dcb.XonChar = kXon;
  dcb.XoffChar = kXoff;
  return dcb;
}

bool SerialSettings::ToTermios(const DCB& dcb, termios& line) {
  const speed_t speed = SpeedOf(dcb.BaudRate);
  const tcflag_t byteSize = ByteSizeFlag(dcb.ByteSize);
  if (speed == B0 || byteSize == tcflag_t(-1) || dcb.StopBits > TWOSTOPBITS) return false;
  // One and a half stop bits go with five data bits only, as on the device.
  if (dcb.StopBits == ONE5STOPBITS && dcb.ByteSize != 5) return false;
  cfmakeraw(&line);
  line.c_cflag |= CLOCAL | CREAD;
  line.c_cflag = (line.c_cflag & ~CSIZE) | byteSize;
  if (!PutParity(dcb.Parity, line.c_cflag)) return false;
  if (dcb.StopBits == ONESTOPBIT)
    line.c_cflag &= ~CSTOPB;
  else
    line.c_cflag |= CSTOPB;
  // cfmakeraw leaves these as they were.
  line.c_iflag &= ~(INPCK | IXON | IXOFF);
  if (dcb.fParity && dcb.Parity != NOPARITY) line.c_iflag |= INPCK;
  // termios has one switch for both directions of RTS/CTS.
  if (dcb.fOutxCtsFlow || dcb.fRtsControl == RTS_CONTROL_HANDSHAKE)
    line.c_cflag |= CRTSCTS;
  else
    line.c_cflag &= ~CRTSCTS;
  if (dcb.fOutX) line.c_iflag |= IXON;
  if (dcb.fInX) line.c_iflag |= IXOFF;
  line.c_cc[VSTART] = cc_t(dcb.XonChar);
  line.c_cc[VSTOP] = cc_t(dcb.XoffChar);
  // The port waits in poll, beside its closing signal, and reads without blocking. With
  // one byte as the minimum such a read says "nothing yet" as EAGAIN, and 0 only when the
  // line has hung up.
  line.c_cc[VMIN] = 1;
  line.c_cc[VTIME] = 0;
  return cfsetispeed(&line, speed) == 0 && cfsetospeed(&line, speed) == 0;
}

}  // namespace platform
