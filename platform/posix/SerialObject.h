// An open serial device behind a handle: a terminal's descriptor in raw, non-blocking
// mode, and an eventfd beside it that closing the handle makes readable. Every wait
// polls both, so CloseHandle on one thread ends a read, a write or a WaitCommEvent on
// another within a moment, and Close returns only when those calls have left: after
// CloseHandle the port is free for the next open.
//
// A port is exclusive: an flock on the descriptor keeps every other open of it out, in
// this process and in others, and TIOCEXCL keeps out programs that don't take the lock.
// A terminal that another program holds as its own (the console, a getty's or a shell's
// line) is in use likewise, and isn't opened at all. Closing gives the line back with the
// settings it had before.
#pragma once

#include <termios.h>

#include <condition_variable>
#include <mutex>
#include <string>

#include "platform/posix/StreamObject.h"

namespace platform {

class SerialObject : public StreamObject {
 public:
  // The device at a path; null with ERROR_FILE_NOT_FOUND for a missing device or one
  // that isn't a terminal, ERROR_ACCESS_DENIED for one in use or not permitted.
  static SerialObject* Open(const std::string& path);
  // The open port of a handle with a reference for the caller; null with
  // ERROR_INVALID_HANDLE for anything else.
  static SerialObject* Acquire(HANDLE handle);

  BOOL Read(void* buffer, DWORD count, DWORD& done) override;
  BOOL Write(const void* data, DWORD count, DWORD& done) override;
  // Waits until all that was written has left.
  BOOL Flush() override;
  BOOL Close() override;

  BOOL GetState(DCB& dcb);
  BOOL SetState(const DCB& dcb);
  BOOL GetTimeouts(COMMTIMEOUTS& timeouts);
  BOOL SetTimeouts(const COMMTIMEOUTS& timeouts);
  BOOL SetMask(DWORD mask);
  BOOL WaitEvent(DWORD& events);
  BOOL ModemStatus(DWORD& status);
  BOOL Escape(DWORD function);
  BOOL Purge(DWORD flags);

 private:
  enum class Wake { kReady, kTimeout, kClosed };
  class Call;

  SerialObject(int descriptor, int wake) : m_descriptor(descriptor), m_wake(wake) {}
  ~SerialObject() override;

  // Counts a call in; false, with ERROR_INVALID_HANDLE, once the port is closed.
  bool Enter();
  void Leave();
  // Until the descriptor is ready for `events` (none: only the time), the time is over
  // (-1 waits without end) or the port is closed.
  Wake WaitFor(short events, int milliseconds);
  bool HasHungUp();
  COMMTIMEOUTS Timeouts();
  // The input lines as MS_ bits; a device without modem lines has them all off.
  bool ReadModemLines(DWORD& status);
  bool ChangeModemLine(int line, bool on);
  bool ApplyLineControl(const DCB& dcb);
  void RestoreLine();

  int m_descriptor;
  const int m_wake;
  std::mutex m_mutex;
  std::condition_variable m_idle;
  int m_calls = 0;             // guarded by m_mutex
  bool m_closed = false;       // guarded by m_mutex
  DCB m_dcb{};                 // guarded by m_mutex
  COMMTIMEOUTS m_timeouts{};   // guarded by m_mutex
  DWORD m_mask = 0;            // guarded by m_mutex
  unsigned m_maskChanges = 0;  // guarded by m_mutex
  termios m_found{};           // the line's settings before the open
  int m_foundLines = -1;       // its DTR and RTS before the open; -1 without modem lines
};

}  // namespace platform
