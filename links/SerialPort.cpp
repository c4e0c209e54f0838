#include "links/SerialPort.h"

#include <string>

#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"
#include "links/RegistryKey.h"

namespace kx {

namespace {

constexpr const char* kPortIsOpen = "Cannot set port is opened.";
constexpr const char* kCouldNotOpen = "Could not open comm port!";
constexpr const char* kNoSuchPort = "Comm port does not exist";
constexpr const char* kPortInUse = "Comm port in use!";
constexpr const char* kCouldNotSetDcb = "Could not set DCB";
constexpr const char* kTimeoutsFailed = "Unexpected com port error.";
constexpr const char* kRtsByHandshake = "Cannot set RTS when RTS handshake is selected";
constexpr const char* kDtrByHandshake = "Cannot set DTR when DTR handshake is selected";
constexpr const char* kSettingRts = "Error setting RTS";
constexpr const char* kSettingDtr = "Error setting DTR";
constexpr const char* kSettingBreak = "Error setting Break";
constexpr const char* kBreakWhileClosed = "Cannot set Break when port is closed";
constexpr const char* kSettingIr = "Error setting IR";

// Where the Widcomm stack keeps whether its browser may pop up for the port of COM8.
constexpr const char* kBrowserKey = "\\SOFTWARE\\Widcomm\\BtConfig\\Autoconnect\\0008";
constexpr const char* kBrowserEnabled = "BtBrowserEnabled";
constexpr int32_t kBluetoothPort = 8;

// Read time-outs of the two modes, in milliseconds.
constexpr DWORD kReadTimeout = 200;

std::u16string DeviceName(int32_t port) {
  const std::string name = "COM" + std::to_string(port) + ":";
  return std::u16string(name.begin(), name.end());
}

}  // namespace

SerialPort::SerialPort()
    : m_reader(new Thread()),
      m_writer(new Thread()),
      m_modemWatcher(new Thread()),
      m_readerStop(new Event()),
      m_writerStop(new Event()),
      m_modemStop(new Event()),
      m_received(new Event(GetID(), kReceived)),
      m_writeRequest(new Event()),
      m_sent(new Event(GetID(), kSent)),
      m_error(new Event(GetID(), kError)),
      m_modem(new Event(GetID(), kModem)) {}

SerialPort::~SerialPort() {
  Close();
  for (Thread** thread : {&m_reader, &m_writer, &m_modemWatcher}) ReleaseObject(*thread);
  for (Event** event : {&m_readerStop, &m_writerStop, &m_modemStop, &m_received, &m_writeRequest,
                        &m_sent, &m_error, &m_modem})
    ReleaseObject(*event);
}

// ---- opening and closing -------------------------------------------------------------

void SerialPort::Open() {
  ClearError();
  if (IsOpen()) return;
  BrowserStep(true);
  if (OpenHandle()) ApplyDcb();
  if (!Error().Failed()) ApplyTimeouts();
  if (!Error().Failed() && m_dtr && m_handshake == 0) {
    SetDtr(true);
    ClearError();  // a port without the line still serves
  }
  if (!Error().Failed()) Purge(true, true);
  if (!Error().Failed() && m_ir) SetIr(true);
  if (!Error().Failed()) {
    StartThreads();
  } else if (HANDLE handle = m_handle.exchange(nullptr)) {
    CloseHandle(handle);
  }
  BrowserStep(false);
}

bool SerialPort::OpenHandle() {
  const HANDLE handle = CreateFileW(DeviceName(m_port).c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle != INVALID_HANDLE_VALUE) {
    m_handle = handle;
    return true;
  }
  const DWORD code = GetLastError();
  if (code == ERROR_FILE_NOT_FOUND)
    SetError(kErrSerialPort, kNoSuchPort);
  else if (code == ERROR_ACCESS_DENIED)
    SetError(kErrSerialPort, kPortInUse);
  else
    SetError(code ? int32_t(code) : kErrSerialPort, kCouldNotOpen);
  return false;
}

void SerialPort::StartThreads() {
  m_reader->Start(this, nullptr);
  m_writer->Start(this, nullptr);
  bool modemGate;
  {
    LockScope lock;
    modemGate = m_modemGate;
  }
  if (modemGate) m_modemWatcher->Start(this, nullptr);
}

// The handle is closed before the threads are joined: that is what ends a read or a
// WaitCommEvent that blocks.
void SerialPort::Close() {
  ClearError();
  m_closing = 1;
  if (HANDLE handle = m_handle.load()) {
    for (Event* stop : {m_readerStop, m_writerStop, m_modemStop}) stop->Set();
    CloseHandle(handle);
    m_handle = nullptr;
    for (Thread* thread : {m_reader, m_writer, m_modemWatcher})
      if (thread->IsRunning()) thread->Close();
  }
  for (Event* event : {m_received, m_writeRequest, m_sent, m_error, m_modem}) event->Reset();
  {
    LockScope lock;
    for (EventQueue* queue : {&m_receivedQueue, &m_writeQueue, &m_sentQueue, &m_modemQueue})
      queue->Close();
  }
  m_closing = 0;
  ClearError();  // what the workers recorded on their way out is no failure
}

// With port 8 the Widcomm browser is switched off while the port opens, unless the owner
// leaves it alone. Nothing of this reaches the owner.
void SerialPort::BrowserStep(bool opening) {
  if (m_port != kBluetoothPort) return;
  Ref<RegistryKey> machine(RegistryKey::LocalMachine());
  Ref<RegistryKey> key(machine->OpenSubKey(kBrowserKey));
  if (!key || m_leaveBrowserAlone) return;
  key->SetValue(kBrowserEnabled, opening && m_suppressBrowser ? 0 : 1);
}

void SerialPort::ApplyDcb() {
  const HANDLE handle = m_handle.load();
  if (!handle) return;
  DCB dcb{};
  dcb.DCBlength = sizeof dcb;
  if (!GetCommState(handle, &dcb)) {
    SetError(kErrSerialPort, kCouldNotSetDcb);
    return;
  }
  dcb.BaudRate = m_baudRate;
  dcb.fParity = 1;
  dcb.Parity = BYTE(m_parity);
  dcb.fOutxCtsFlow = 0;
  dcb.fRtsControl = RTS_CONTROL_DISABLE;
  if (m_handshake & kRtsCts) {
    dcb.fOutxCtsFlow = 1;
    dcb.fRtsControl = RTS_CONTROL_HANDSHAKE;
  } else if (m_rts) {
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
  }
  dcb.fOutxDsrFlow = 0;
  dcb.fDtrControl = DTR_CONTROL_DISABLE;
  dcb.fDsrSensitivity = 0;
  if (m_handshake & kDtrDsr) {
    dcb.fDsrSensitivity = 1;
    dcb.fDtrControl = DTR_CONTROL_HANDSHAKE;
  } else if (m_dtr) {
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
  }
  dcb.fOutX = dcb.fInX = 0;
  if (m_handshake & kXonXoff) {
    dcb.fOutX = dcb.fInX = 1;
    dcb.XonChar = 17;
    dcb.XoffChar = 19;
  }
  dcb.ByteSize = BYTE(m_byteSize);
  dcb.StopBits = BYTE(m_stopBits);
  dcb.ErrorChar = dcb.EvtChar = 0;
  dcb.fNull = 0;
  dcb.fAbortOnError = 0;
  dcb.wReserved = 0;
  if (!SetCommState(handle, &dcb)) SetError(kErrSerialPort, kCouldNotSetDcb);
}

void SerialPort::ApplyTimeouts() {
  const HANDLE handle = m_handle.load();
  if (!handle) return;
  COMMTIMEOUTS timeouts{};
  if (!GetCommTimeouts(handle, &timeouts)) {
    SetError(kErrSerialPort, kTimeoutsFailed);
    return;
  }
  if (m_timeoutMode == kReturnOnAny) {
    timeouts.ReadIntervalTimeout = MAXDWORD;
    timeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
    timeouts.ReadTotalTimeoutConstant = kReadTimeout;
  } else if (m_timeoutMode == kCollect) {
    timeouts.ReadIntervalTimeout = 0;
    timeouts.ReadTotalTimeoutMultiplier = 0;
    timeouts.ReadTotalTimeoutConstant = kReadTimeout;
  }
  timeouts.WriteTotalTimeoutMultiplier = 1;
  timeouts.WriteTotalTimeoutConstant = m_writeTimeout;
  if (!SetCommTimeouts(handle, &timeouts)) SetError(kErrSerialPort, kTimeoutsFailed);
}

// ---- settings --------------------------------------------------------------------------

void SerialPort::SetPort(int32_t port) {
  ClearError();
  if (IsOpen())
    SetError(kErrSerialPort, kPortIsOpen);
  else
    m_port = port;
}

void SerialPort::SetBaudRate(uint32_t baudRate) {
  ClearError();
  m_baudRate = baudRate;
  ApplyDcb();
}

void SerialPort::SetParity(int32_t parity) {
  ClearError();
  m_parity = parity;
  ApplyDcb();
}

void SerialPort::SetStopBits(int32_t stopBits) {
  ClearError();
  m_stopBits = stopBits;
  ApplyDcb();
}

void SerialPort::SetByteSize(int32_t byteSize) {
  ClearError();
  m_byteSize = byteSize;
  ApplyDcb();
}

void SerialPort::SetHandshake(uint32_t handshake) {
  ClearError();
  m_handshake = handshake;
  ApplyDcb();
}

void SerialPort::SetWriteTimeout(uint32_t milliseconds) {
  ClearError();
  m_writeTimeout = milliseconds;
  ApplyTimeouts();
}

void SerialPort::SetBtBrowserSuppressed(bool suppressed) {
  m_suppressBrowser = suppressed;
  m_leaveBrowserAlone = false;
}

// ---- lines ------------------------------------------------------------------------------

bool SerialPort::ChangeLine(DWORD function, const char* failure) {
  const HANDLE handle = m_handle.load();
  if (!handle || EscapeCommFunction(handle, function)) return true;
  SetError(int32_t(GetLastError()), failure);
  return false;
}

void SerialPort::SetRts(bool on) {
  ClearError();
  if (m_handshake & kRtsCts) {
    SetError(kErrSerialPort, kRtsByHandshake);
    return;
  }
  ChangeLine(on ? SETRTS : CLRRTS, kSettingRts);
  m_rts = on;
}

void SerialPort::SetDtr(bool on) {
  ClearError();
  if (m_handshake & kDtrDsr) {
    SetError(kErrSerialPort, kDtrByHandshake);
    return;
  }
  ChangeLine(on ? SETDTR : CLRDTR, kSettingDtr);
  m_dtr = on;
}

void SerialPort::SetBreak(bool on) {
  ClearError();
  if (!IsOpen()) {
    SetError(kErrSerialPort, kBreakWhileClosed);
    return;
  }
  ChangeLine(on ? SETBREAK : CLRBREAK, kSettingBreak);
}

void SerialPort::SetIr(bool on) {
  ClearError();
  m_ir = on;
  ChangeLine(on ? SETIR : CLRIR, kSettingIr);
}

bool SerialPort::ReadLine(DWORD bit, std::atomic<bool>& field, const char* failure) {
  ClearError();
  const HANDLE handle = m_handle.load();
  if (!handle) return field;
  DWORD status = 0;
  if (!GetCommModemStatus(handle, &status)) {
    SetError(int32_t(GetLastError()), failure);
    return field;
  }
  field = (status & bit) != 0;
  return field;
}

bool SerialPort::GetDsr() { return ReadLine(MS_DSR_ON, m_dsr, "Error reading DSR"); }
bool SerialPort::GetCts() { return ReadLine(MS_CTS_ON, m_cts, "Error reading CTS"); }
bool SerialPort::GetRing() { return ReadLine(MS_RING_ON, m_ring, "Error reading RING"); }
bool SerialPort::GetRlsd() { return ReadLine(MS_RLSD_ON, m_rlsd, "Error reading RLSD"); }

// ---- queues -------------------------------------------------------------------------------

void SerialPort::CloseGate(bool& gate, bool enabled, EventQueue& queue) {
  LockScope lock;
  gate = enabled;
  if (!enabled) queue.Close();
}

void SerialPort::SetReceiveEnabled(bool enabled) {
  CloseGate(m_receiveGate, enabled, m_receivedQueue);
}

void SerialPort::SetSentNoticeEnabled(bool enabled) { CloseGate(m_sentGate, enabled, m_sentQueue); }

void SerialPort::SetModemNoticeEnabled(bool enabled) {
  CloseGate(m_modemGate, enabled, m_modemQueue);
}

ByteBuffer* SerialPort::ReadBuffer() {
  LockScope lock;
  return static_cast<ByteBuffer*>(m_receivedQueue.Pop());
}

void SerialPort::WriteBuffer(ByteBuffer* bytes) {
  {
    LockScope lock;
    m_writeQueue.Push(bytes);
  }
  m_writeRequest->Set();
}

Value* SerialPort::PopSentNotice() {
  LockScope lock;
  return static_cast<Value*>(m_sentQueue.Pop());
}

Value* SerialPort::PopModemNotice() {
  LockScope lock;
  return static_cast<Value*>(m_modemQueue.Pop());
}

void SerialPort::Purge(bool received, bool pending) {
  ClearError();
  const HANDLE handle = m_handle.load();
  if (!handle) return;
  {
    LockScope lock;
    if (received) m_receivedQueue.Close();
    if (pending) m_writeQueue.Close();
  }
  PurgeComm(handle, (received ? PURGE_RXCLEAR : 0) | (pending ? PURGE_TXCLEAR : 0));
}

}  // namespace kx
