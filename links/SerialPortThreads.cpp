// The three workers of an open SerialPort. Each takes the port's handle once as it
// starts; the owner's Close sets their stop events and closes the handle, which ends a
// read or a WaitCommEvent that blocks, and then joins them.
#include "frame/LibraryLock.h"
#include "frame/Ref.h"
#include "frame/WaitGroup.h"
#include "links/SerialPort.h"

namespace kx {

namespace {

constexpr const char* kReadFailed = "Error reading data from serial port.";
constexpr const char* kWriteFailed = "Error writing data to serial port.";
constexpr const char* kWaitCommEventFailed = "WaitCommEvent() Error.";

// The reader's buffer: one read gives at most this much.
constexpr DWORD kReadSize = 256;
// The error number of a read that claims more bytes than were asked for.
constexpr int32_t kReadCountFault = 14;
constexpr DWORD kModemEvents = EV_CTS | EV_DSR | EV_RLSD | EV_RING;

// The modem lines in the order they are reported, with their notices for on and off.
struct LineNotice {
  DWORD bit;
  int32_t on;
  int32_t off;
};
constexpr LineNotice kLineNotices[] = {
    {MS_CTS_ON, SerialPort::kCtsOn, SerialPort::kCtsOff},
    {MS_DSR_ON, SerialPort::kDsrOn, SerialPort::kDsrOff},
    {MS_RING_ON, SerialPort::kRingOn, SerialPort::kRingOff},
    {MS_RLSD_ON, SerialPort::kRlsdOn, SerialPort::kRlsdOff},
};

}  // namespace

void SerialPort::ThreadMain(Thread* thread, BaseObject*) {
  if (thread->IsSameObject(m_reader))
    RunReader();
  else if (thread->IsSameObject(m_writer))
    RunWriter();
  else if (thread->IsSameObject(m_modemWatcher))
    RunModem();
}

// A worker that failed records why, tells the owner unless the owner is closing it, and
// waits for Close. When a device goes away more than one worker fails: the first failure
// stays in the record, which the others leave alone.
void SerialPort::Fail(int32_t number, const char* text, Event* stop) {
  {
    LockScope lock;
    if (!Error().Failed()) SetError(number, text);
  }
  if (!m_closing) m_error->Set();
  stop->Wait();
}

void SerialPort::RunReader() {
  const HANDLE handle = m_handle.load();
  uint8_t bytes[kReadSize];
  while (!m_readerStop->WaitFor(0)) {
    DWORD count = 0;
    const BOOL read = ReadFile(handle, bytes, kReadSize, &count, nullptr);
    if (!read || count > kReadSize) {
      Fail(read ? kReadCountFault : int32_t(GetLastError()), kReadFailed, m_readerStop);
      break;
    }
    if (count == 0) continue;
    bool delivered = false;
    {
      LockScope lock;
      if (m_receiveGate) {
        Ref<ByteBuffer> buffer(new ByteBuffer(bytes, int32_t(count)));
        m_receivedQueue.Push(buffer.get());
        delivered = true;
      }
    }
    if (delivered) m_received->Set();
  }
  m_readerStop->Reset();
}

void SerialPort::RunWriter() {
  const HANDLE handle = m_handle.load();
  WaitGroup group;
  group.Add(m_writerStop);
  group.Add(m_writeRequest);
  for (;;) {
    Ref<Event> woke(group.WaitAny());
    woke->Reset();
    if (woke.get() == m_writerStop || !WriteOne(handle)) break;
  }
  m_writerStop->Reset();
}

// One buffer of the queue, if there is one; false when the writer has failed.
bool SerialPort::WriteOne(HANDLE handle) {
  Ref<ByteBuffer> buffer;
  {
    LockScope lock;
    buffer = Ref<ByteBuffer>(static_cast<ByteBuffer*>(m_writeQueue.Pop()));
  }
  if (!buffer) return true;
  DWORD written = 0;
  if (!WriteFile(handle, buffer->GetData(), DWORD(buffer->GetLength()), &written, nullptr)) {
    Fail(int32_t(GetLastError()), kWriteFailed, m_writerStop);
    return false;
  }
  bool noticed = false;
  {
    LockScope lock;
    if (m_sentGate) {
      Ref<Value> notice(new Value(int32_t(written)));
      m_sentQueue.Push(notice.get());
      noticed = true;
    }
  }
  if (noticed) m_sent->Set();
  return true;
}

void SerialPort::RunModem() {
  const HANDLE handle = m_handle.load();
  DWORD status = 0;
  GetCommModemStatus(handle, &status);  // a failure leaves the lines off
  StoreLines(status);
  m_previousLines = status;
  SetCommMask(handle, kModemEvents);
  for (;;) {
    DWORD events = 0;
    if (!WaitCommEvent(handle, &events, nullptr)) {
      Fail(int32_t(GetLastError()), kWaitCommEventFailed, m_modemStop);
      break;
    }
    if (m_modemStop->WaitFor(0)) break;
    bool gate;
    {
      LockScope lock;
      gate = m_modemGate;
    }
    if (!gate || !GetCommModemStatus(handle, &status)) continue;
    const int32_t notice = NextModemNotice(status);
    {
      LockScope lock;
      Ref<Value> value(new Value(notice));
      m_modemQueue.Push(value.get());
    }
    m_modem->Set();
  }
  m_modemStop->Reset();
}

void SerialPort::StoreLines(DWORD status) {
  m_cts = (status & MS_CTS_ON) != 0;
  m_dsr = (status & MS_DSR_ON) != 0;
  m_ring = (status & MS_RING_ON) != 0;
  m_rlsd = (status & MS_RLSD_ON) != 0;
}

// Stores the lines, and reports the first one that changed: one line per wake-up.
int32_t SerialPort::NextModemNotice(DWORD status) {
  StoreLines(status);
  for (const LineNotice& line : kLineNotices) {
    if ((status ^ m_previousLines) & line.bit) {
      m_previousLines ^= line.bit;
      return status & line.bit ? line.on : line.off;
    }
  }
  return kNoChange;
}

}  // namespace kx
