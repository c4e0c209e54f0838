// The communications calls of a serial port's handle.
#include "platform/posix/SerialObject.h"

using platform::SerialObject;

namespace {

// Holds the port for the length of a call; CloseHandle on another thread may come at any
// moment, and a handle closed before the call fails with ERROR_INVALID_HANDLE.
class PortInUse {
 public:
  explicit PortInUse(HANDLE handle) : m_port(SerialObject::Acquire(handle)) {}
  ~PortInUse() {
    if (m_port) m_port->Release();
  }
  SerialObject* operator->() const { return m_port; }
  explicit operator bool() const { return m_port != nullptr; }

 private:
  SerialObject* const m_port;
};

BOOL Refuse(DWORD error) {
  SetLastError(error);
  return FALSE;
}

}  // namespace

BOOL GetCommState(HANDLE handle, DCB* dcb) {
  PortInUse port(handle);
  if (!port) return FALSE;
  return dcb ? port->GetState(*dcb) : Refuse(ERROR_INVALID_PARAMETER);
}

BOOL SetCommState(HANDLE handle, DCB* dcb) {
  PortInUse port(handle);
  if (!port) return FALSE;
  return dcb ? port->SetState(*dcb) : Refuse(ERROR_INVALID_PARAMETER);
}

BOOL GetCommTimeouts(HANDLE handle, COMMTIMEOUTS* timeouts) {
  PortInUse port(handle);
  if (!port) return FALSE;
  return timeouts ? port->GetTimeouts(*timeouts) : Refuse(ERROR_INVALID_PARAMETER);
}

BOOL SetCommTimeouts(HANDLE handle, COMMTIMEOUTS* timeouts) {
  PortInUse port(handle);
  if (!port) return FALSE;
  return timeouts ? port->SetTimeouts(*timeouts) : Refuse(ERROR_INVALID_PARAMETER);
}

BOOL SetCommMask(HANDLE handle, DWORD mask) {
  PortInUse port(handle);
  return port ? port->SetMask(mask) : FALSE;
}

BOOL WaitCommEvent(HANDLE handle, DWORD* mask, OVERLAPPED* overlapped) {
  PortInUse port(handle);
  if (!port) return FALSE;
  if (!mask || overlapped) return Refuse(ERROR_INVALID_PARAMETER);
  return port->WaitEvent(*mask);
}

BOOL GetCommModemStatus(HANDLE handle, DWORD* status) {
  PortInUse port(handle);
  if (!port) return FALSE;
  return status ? port->ModemStatus(*status) : Refuse(ERROR_INVALID_PARAMETER);
}

BOOL EscapeCommFunction(HANDLE handle, DWORD function) {
  PortInUse port(handle);
  return port ? port->Escape(function) : FALSE;
}

BOOL PurgeComm(HANDLE handle, DWORD flags) {
  PortInUse port(handle);
  return port ? port->Purge(flags) : FALSE;
}
