#include "platform/posix/SerialObject.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <new>

#include "platform/posix/SerialSettings.h"
#include "platform/posix/SystemError.h"
#include "platform/posix/TerminalsInUse.h"

namespace platform {

namespace {

using Clock = std::chrono::steady_clock;

// How often a WaitCommEvent looks at the modem lines, which no descriptor signals.
constexpr int kModemLinePollMs = 20;
// How often Flush looks whether the output has left.
constexpr int kDrainPollMs = 5;

int MillisecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return int(std::clamp<long long>(left, 0, 1 << 30));
}

// When a read is over, by the port's time-outs and the bytes asked for.
class ReadDeadline {
 public:
  ReadDeadline(const COMMTIMEOUTS& timeouts, DWORD count) {
    const DWORD interval = timeouts.ReadIntervalTimeout;
    const DWORD multiplier = timeouts.ReadTotalTimeoutMultiplier;
    const DWORD constant = timeouts.ReadTotalTimeoutConstant;
    if (interval == MAXDWORD && multiplier == 0 && constant == 0) {
      m_endsOnAnyByte = true;  // what is there, without waiting
      SetTotal(0);
    } else if (interval == MAXDWORD && multiplier == MAXDWORD && constant != MAXDWORD) {
      m_endsOnAnyByte = true;  // the first byte, waited for up to the constant
      SetTotal(constant);
    } else {
      if (multiplier || constant) SetTotal(uint64_t(multiplier) * count + constant);
      if (interval && interval != MAXDWORD) m_interval = interval;
    }
  }

  bool EndsOnAnyByte() const { return m_endsOnAnyByte; }
  // Milliseconds left to wait; -1 for no end. The interval runs from the last byte.
  int Remaining(bool gotBytes, Clock::time_point lastByte) const {
    int left = m_hasTotal ? MillisecondsUntil(m_total) : -1;
    if (gotBytes && m_interval) {
      const int gap = MillisecondsUntil(lastByte + std::chrono::milliseconds(m_interval));
      left = left < 0 ? gap : std::min(left, gap);
    }
    return left;
  }

 private:
  void SetTotal(uint64_t milliseconds) {
    m_hasTotal = true;
    m_total = Clock::now() + std::chrono::milliseconds(milliseconds);
  }

  bool m_endsOnAnyByte = false;
  bool m_hasTotal = false;
  Clock::time_point m_total{};
  DWORD m_interval = 0;
};

// A device without modem lines, as a pseudo-terminal is, refuses their ioctls this way.
bool HasNoModemLines() { return errno == ENOTTY || errno == EINVAL; }

DWORD OpenError(int error) {
  switch (error) {
    case ENOENT:
    case ENXIO:
    case ENODEV:
    case ENOTDIR:
      return ERROR_FILE_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EBUSY:
    case EWOULDBLOCK:
      return ERROR_ACCESS_DENIED;
    default:
      return ErrorFromErrno(error);
  }
}

SerialObject* Refuse(DWORD error) {
  SetLastError(error);
  return nullptr;
}

// Takes the descriptor for itself, or says why not; the descriptor is closed on failure.
bool MakeExclusive(int descriptor) {
  if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    const int error = errno;
    ::close(descriptor);
    SetLastError(OpenError(error));
    return false;
  }
  ::ioctl(descriptor, TIOCEXCL);  // as root it keeps nobody out; the lock still does
  return true;
}

// Raw bytes at the speed the line has (`found`), or at 9600 when termios has no rate for it.
bool MakeRaw(int descriptor, const termios& found, DCB& dcb) {
  termios line = found;
  dcb = SerialSettings::FromTermios(line);
  if (!dcb.BaudRate) dcb.BaudRate = 9600;
  return SerialSettings::ToTermios(dcb, line) && ::tcsetattr(descriptor, TCSANOW, &line) == 0;
}

// The console, or a terminal that a getty or a shell has as its own, is in use: opening
// it would take that program's input and change its line.
bool BelongsToSomeoneElse(const std::string& path) {
  struct stat device;
  return ::stat(path.c_str(), &device) == 0 && S_ISCHR(device.st_mode) &&
         IsTerminalInUse(device.st_rdev);
}

// What the port may have changed of the line: the output modem lines, as TIOCMGET gives
// them; -1 for a device without them.
int OutputLines(int descriptor) {
  int lines = 0;
  return ::ioctl(descriptor, TIOCMGET, &lines) == 0 ? lines & (TIOCM_DTR | TIOCM_RTS) : -1;
}

}  // namespace

// One call on the port: counted in, so that Close can wait for it to leave.
class SerialObject::Call {
 public:
  explicit Call(SerialObject& port) : m_port(port), m_entered(port.Enter()) {}
  ~Call() {
    if (m_entered) m_port.Leave();
  }
  explicit operator bool() const { return m_entered; }

 private:
  SerialObject& m_port;
  const bool m_entered;
};

SerialObject* SerialObject::Open(const std::string& path) {
  if (BelongsToSomeoneElse(path)) return Refuse(ERROR_ACCESS_DENIED);
  int descriptor;
  do {
    descriptor = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor < 0) return Refuse(OpenError(errno));
  if (!::isatty(descriptor)) {
    ::close(descriptor);
    return Refuse(ERROR_FILE_NOT_FOUND);
  }
  if (!MakeExclusive(descriptor)) return nullptr;
  DCB dcb;
  termios found;
  const int wake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  const int foundLines = OutputLines(descriptor);
  if (wake < 0 || ::tcgetattr(descriptor, &found) != 0 || !MakeRaw(descriptor, found, dcb)) {
    const DWORD error = ErrorFromErrno(errno);
    if (wake >= 0) ::close(wake);
    ::ioctl(descriptor, TIOCNXCL);
    ::close(descriptor);
    return Refuse(error);
  }
  auto* port = new (std::nothrow) SerialObject(descriptor, wake);
  if (!port) {
    ::close(wake);
    ::ioctl(descriptor, TIOCNXCL);
    ::close(descriptor);
    return Refuse(ERROR_NOT_ENOUGH_MEMORY);
  }
  port->m_dcb = dcb;
  port->m_found = found;
  port->m_foundLines = foundLines;
  SetLastError(ERROR_SUCCESS);
  return port;
}

SerialObject* SerialObject::Acquire(HANDLE handle) {
  StreamObject* stream = StreamObject::Acquire(handle);
  auto* port = dynamic_cast<SerialObject*>(stream);
  if (stream && !port) {
    stream->Release();
    SetLastError(ERROR_INVALID_HANDLE);
  }
  return port;
}

SerialObject::~SerialObject() { Close(); }

bool SerialObject::Enter() {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (m_closed) {
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
  }
  ++m_calls;
  return true;
}

void SerialObject::Leave() {
  std::lock_guard<std::mutex> lock(m_mutex);
  if (--m_calls == 0) m_idle.notify_all();
}

BOOL SerialObject::Close() {
  std::unique_lock<std::mutex> lock(m_mutex);
  if (m_closed) return TRUE;
  m_closed = true;
  const uint64_t one = 1;
  while (::write(m_wake, &one, sizeof one) < 0 && errno == EINTR) {
  }
  m_idle.wait(lock, [this] { return m_calls == 0; });
  RestoreLine();
  ::ioctl(m_descriptor, TIOCNXCL);
  ::close(m_descriptor);  // lets the lock go
  ::close(m_wake);
  m_descriptor = -1;
  return TRUE;
}

// The line goes back to the settings and the modem lines it had before the open, for the
// program that uses it next. A device that has gone refuses, and nothing is lost.
void SerialObject::RestoreLine() {
  ::tcsetattr(m_descriptor, TCSANOW, &m_found);
  if (m_foundLines < 0) return;
  int raise = m_foundLines, lower = ~m_foundLines & (TIOCM_DTR | TIOCM_RTS);
  ::ioctl(m_descriptor, TIOCMBIS, &raise);
  ::ioctl(m_descriptor, TIOCMBIC, &lower);
}

SerialObject::Wake SerialObject::WaitFor(short events, int milliseconds) {
  pollfd watched[2] = {{m_wake, POLLIN, 0}, {m_descriptor, events, 0}};
  const nfds_t count = events ? 2 : 1;
  int ready;
  do {
    ready = ::poll(watched, count, milliseconds);
  } while (ready < 0 && errno == EINTR);
  if (watched[0].revents) return Wake::kClosed;
  return ready > 0 ? Wake::kReady : Wake::kTimeout;
}

bool SerialObject::HasHungUp() {
  pollfd line = {m_descriptor, POLLIN, 0};
  return ::poll(&line, 1, 0) > 0 && (line.revents & (POLLHUP | POLLERR));
}

COMMTIMEOUTS SerialObject::Timeouts() {
  std::lock_guard<std::mutex> lock(m_mutex);
  return m_timeouts;
}

BOOL SerialObject::Read(void* buffer, DWORD count, DWORD& done) {
  done = 0;
  Call call(*this);
  if (!call) return FALSE;
  const ReadDeadline deadline(Timeouts(), count);
  auto* bytes = static_cast<char*>(buffer);
  Clock::time_point lastByte{};
  while (done < count) {
    const ssize_t got = ::read(m_descriptor, bytes + done, count - done);
    if (got > 0) {
      done += DWORD(got);
      lastByte = Clock::now();
      if (deadline.EndsOnAnyByte()) break;
      continue;
    }
    if (got < 0 && errno == EINTR) continue;
    if (got < 0 && errno != EAGAIN) return FailFromErrno();
    if (got == 0 && HasHungUp()) {  // the device has gone: the line reads as its end
      SetLastError(ERROR_GEN_FAILURE);
      return FALSE;
    }
    const int left = deadline.Remaining(done > 0, lastByte);
    if (left == 0) break;
    if (WaitFor(POLLIN, left) == Wake::kClosed) {
      SetLastError(ERROR_OPERATION_ABORTED);
      return FALSE;
    }
  }
  return TRUE;
}

BOOL SerialObject::Write(const void* data, DWORD count, DWORD& done) {
  done = 0;
  Call call(*this);
  if (!call) return FALSE;
  const COMMTIMEOUTS timeouts = Timeouts();
  const uint64_t total =
      uint64_t(timeouts.WriteTotalTimeoutMultiplier) * count + timeouts.WriteTotalTimeoutConstant;
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(total);
  const auto* bytes = static_cast<const char*>(data);
  while (done < count) {
    const ssize_t put = ::write(m_descriptor, bytes + done, count - done);
    if (put > 0) {
      done += DWORD(put);
      continue;
    }
    if (put < 0 && errno == EINTR) continue;
    if (put < 0 && errno != EAGAIN) return FailFromErrno();
    // Out of time is no failure: the count tells how much went.
    const int left = total ? MillisecondsUntil(deadline) : -1;
    if (left == 0) break;
    if (WaitFor(POLLOUT, left) == Wake::kClosed) {
      SetLastError(ERROR_OPERATION_ABORTED);
      return FALSE;
    }
  }
  return TRUE;
}

BOOL SerialObject::Flush() {
  Call call(*this);
  if (!call) return FALSE;
  for (;;) {
    int waiting = 0;
    if (::ioctl(m_descriptor, TIOCOUTQ, &waiting) != 0) return FailFromErrno();
    if (waiting == 0) return TRUE;
    if (WaitFor(0, kDrainPollMs) == Wake::kClosed) {
      SetLastError(ERROR_OPERATION_ABORTED);
      return FALSE;
    }
  }
}

BOOL SerialObject::GetState(DCB& dcb) {
  Call call(*this);
  if (!call) return FALSE;
  std::lock_guard<std::mutex> lock(m_mutex);
  dcb = m_dcb;
  return TRUE;
}

BOOL SerialObject::SetState(const DCB& dcb) {
  Call call(*this);
  if (!call) return FALSE;
  termios line;
  if (::tcgetattr(m_descriptor, &line) != 0) return FailFromErrno();
  if (!SerialSettings::ToTermios(dcb, line)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (::tcsetattr(m_descriptor, TCSANOW, &line) != 0) return FailFromErrno();
  if (!ApplyLineControl(dcb)) return FALSE;
  std::lock_guard<std::mutex> lock(m_mutex);
  m_dcb = dcb;
  m_dcb.DCBlength = sizeof m_dcb;
  return TRUE;
}

// DTR and RTS as the DCB asks. termios has no DTR/DSR handshake: DTR then simply stays
// on, which is what a receiver at the other end waits for.
bool SerialObject::ApplyLineControl(const DCB& dcb) {
  if (!ChangeModemLine(TIOCM_DTR, dcb.fDtrControl != DTR_CONTROL_DISABLE)) return false;
  if (dcb.fRtsControl == RTS_CONTROL_HANDSHAKE) return true;  // CRTSCTS drives it
  return ChangeModemLine(TIOCM_RTS, dcb.fRtsControl == RTS_CONTROL_ENABLE);
}

bool SerialObject::ChangeModemLine(int line, bool on) {
  if (::ioctl(m_descriptor, on ? TIOCMBIS : TIOCMBIC, &line) == 0 || HasNoModemLines()) return true;
  FailFromErrno();
  return false;
}

BOOL SerialObject::GetTimeouts(COMMTIMEOUTS& timeouts) {
  Call call(*this);
  if (!call) return FALSE;
  timeouts = Timeouts();
  return TRUE;
}

BOOL SerialObject::SetTimeouts(const COMMTIMEOUTS& timeouts) {
  Call call(*this);
  if (!call) return FALSE;
  std::lock_guard<std::mutex> lock(m_mutex);
  m_timeouts = timeouts;
  return TRUE;
}

BOOL SerialObject::SetMask(DWORD mask) {
  Call call(*this);
  if (!call) return FALSE;
  std::lock_guard<std::mutex> lock(m_mutex);
  m_mask = mask;
  ++m_maskChanges;  // ends a wait under the old mask
  return TRUE;
}

bool SerialObject::ReadModemLines(DWORD& status) {
  int lines = 0;
  status = 0;
  if (::ioctl(m_descriptor, TIOCMGET, &lines) != 0) {
    if (HasNoModemLines()) return true;
    FailFromErrno();
    return false;
  }
  if (lines & TIOCM_CTS) status |= MS_CTS_ON;
  if (lines & TIOCM_DSR) status |= MS_DSR_ON;
  if (lines & TIOCM_RI) status |= MS_RING_ON;
  if (lines & TIOCM_CD) status |= MS_RLSD_ON;
  return true;
}

namespace {

// The events of the lines that differ between two readings of the modem status.
DWORD LineEvents(DWORD before, DWORD now) {
  const DWORD changed = before ^ now;
  DWORD events = 0;
  if (changed & MS_CTS_ON) events |= EV_CTS;
  if (changed & MS_DSR_ON) events |= EV_DSR;
  if (changed & MS_RING_ON) events |= EV_RING;
  if (changed & MS_RLSD_ON) events |= EV_RLSD;
  return events;
}

}  // namespace

// Bytes waiting count as EV_RXCHAR for as long as they wait, not only when they come.
BOOL SerialObject::WaitEvent(DWORD& events) {
  events = 0;
  Call call(*this);
  if (!call) return FALSE;
  DWORD mask;
  unsigned changes;
  {
    std::lock_guard<std::mutex> lock(m_mutex);
    mask = m_mask;
    changes = m_maskChanges;
  }
  DWORD lines = 0;
  if (!ReadModemLines(lines)) return FALSE;
  for (;;) {
    int waiting = 0;
    if ((mask & EV_RXCHAR) && ::ioctl(m_descriptor, FIONREAD, &waiting) == 0 && waiting > 0)
      events |= EV_RXCHAR;
    DWORD now = 0;
    if (!ReadModemLines(now)) return FALSE;
    events |= LineEvents(lines, now) & mask;
    if (events) return TRUE;
    if (HasHungUp()) {
      SetLastError(ERROR_GEN_FAILURE);
      return FALSE;
    }
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      if (m_maskChanges != changes) return TRUE;
    }
    if (WaitFor(mask & EV_RXCHAR ? POLLIN : 0, kModemLinePollMs) == Wake::kClosed) {
      SetLastError(ERROR_OPERATION_ABORTED);
      return FALSE;
    }
  }
}

BOOL SerialObject::ModemStatus(DWORD& status) {
  Call call(*this);
  if (!call) return FALSE;
  return ReadModemLines(status) ? TRUE : FALSE;
}

BOOL SerialObject::Escape(DWORD function) {
  Call call(*this);
  if (!call) return FALSE;
  int result = 0;
  switch (function) {
    case SETRTS:
    case CLRRTS:
      return ChangeModemLine(TIOCM_RTS, function == SETRTS) ? TRUE : FALSE;
    case SETDTR:
    case CLRDTR:
      return ChangeModemLine(TIOCM_DTR, function == SETDTR) ? TRUE : FALSE;
    case SETBREAK:
    case CLRBREAK:
      result = ::ioctl(m_descriptor, function == SETBREAK ? TIOCSBRK : TIOCCBRK);
      return result == 0 || HasNoModemLines() ? TRUE : FailFromErrno();
    case CLRIR:
      return TRUE;  // no port here has an infrared mode to leave
    case SETIR:
      SetLastError(ERROR_NOT_SUPPORTED);
      return FALSE;
    default:
      SetLastError(ERROR_INVALID_PARAMETER);
      return FALSE;
  }
}

BOOL SerialObject::Purge(DWORD flags) {
  Call call(*this);
  if (!call) return FALSE;
  if ((flags & PURGE_RXCLEAR) && ::tcflush(m_descriptor, TCIFLUSH) != 0) return FailFromErrno();
  if ((flags & PURGE_TXCLEAR) && ::tcflush(m_descriptor, TCOFLUSH) != 0) return FailFromErrno();
  return TRUE;
}

}  // namespace platform
