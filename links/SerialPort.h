// A COM port read and written by three threads of its own, so that its owner never blocks
// on the port: a reader that queues what arrives, a writer that sends what is queued, and
// a watcher of the modem's input lines. The owner learns what happened from four events
// that carry this object's ID and a kind (received 1, sent 2, error 3, modem 4), which it
// can wait on beside its own, and takes the results from queues under the LibraryLock.
//
// A worker that fails records the failure, sets the error event and parks until Close.
#pragma once

#include <atomic>
#include <cstdint>

#include "frame/ByteBuffer.h"
#include "frame/Event.h"
#include "frame/EventQueue.h"
#include "frame/Thread.h"
#include "frame/Value.h"

namespace kx {

class SerialPort : public BaseObject {
 public:
  enum EventKind : int32_t { kReceived = 1, kSent = 2, kError = 3, kModem = 4 };
  enum Handshake : uint32_t { kRtsCts = 1, kDtrDsr = 2, kXonXoff = 4 };
  // Read time-outs: 1 returns what has come as soon as anything has, 2 collects for
  // 200 ms. Both return within about 200 ms when nothing comes.
  enum TimeoutMode : int32_t { kReturnOnAny = 1, kCollect = 2 };
  // Modem notices: 0 no line changed; then on and off for each line.
  enum ModemNotice : int32_t {
    kNoChange = 0,
    kDsrOn,
    kDsrOff,
    kCtsOn,
    kCtsOff,
    kRingOn,
    kRingOff,
    kRlsdOn,
    kRlsdOff
  };

  SerialPort();
  ~SerialPort() override;

  // Does nothing on an open port.
  void Open();
  // Stops the threads, closes the port, resets the events and empties the queues. The
  // caller must not hold the LibraryLock.
  void Close() override;
  bool IsOpen() const { return m_handle.load() != nullptr; }
  void ThreadMain(Thread* thread, BaseObject* argument) override;

  // Line settings; on an open port each applies at once.
  void SetPort(int32_t port);
  int32_t GetPort() { return ReadField(m_port); }
  void SetBaudRate(uint32_t baudRate);
  uint32_t GetBaudRate() { return ReadField(m_baudRate); }
  void SetParity(int32_t parity);
  int32_t GetParity() { return ReadField(m_parity); }
  void SetStopBits(int32_t stopBits);
  int32_t GetStopBits() { return ReadField(m_stopBits); }
  void SetByteSize(int32_t byteSize);
  int32_t GetByteSize() { return ReadField(m_byteSize); }
  void SetHandshake(uint32_t handshake);
  uint32_t GetHandshake() { return ReadField(m_handshake); }

  // Output lines; refused while the handshake drives them.
  void SetRts(bool on);
  void SetDtr(bool on);
  bool GetDtr() { return ReadField(m_dtr); }
  // Input lines: read from the port when open, else as last read.
  bool GetDsr();
  bool GetCts();
  bool GetRing();
  bool GetRlsd();
  void SetBreak(bool on);
  void SetIr(bool on);

  // Whether the received, sent and modem queues are fed; closing a gate empties its queue.
  void SetReceiveEnabled(bool enabled);
  void SetSentNoticeEnabled(bool enabled);
  void SetModemNoticeEnabled(bool enabled);
  // Takes effect at the next Open.
  void SetTimeoutMode(int32_t mode) { m_timeoutMode = mode; }
  void SetWriteTimeout(uint32_t milliseconds);
  void SetBtBrowserSuppressed(bool suppressed);

  // The oldest received bytes with a reference for the caller, or null.
  ByteBuffer* ReadBuffer();
  // Queues the bytes for the writer.
  void WriteBuffer(ByteBuffer* bytes);
  // The oldest notice with a reference for the caller, or null: the bytes of one write,
  // or a modem notice code.
  Value* PopSentNotice();
  Value* PopModemNotice();
  // Empties the received queue, the write queue, or both, and the port's buffers with
  // them. Nothing on a closed port.
  void Purge(bool received, bool pending);

  // With a reference for the caller.
  Event* GetReceivedEvent() { return Shared(m_received); }
  Event* GetSentEvent() { return Shared(m_sent); }
  Event* GetErrorEvent() { return Shared(m_error); }
  Event* GetModemEvent() { return Shared(m_modem); }

 private:
  static Event* Shared(Event* event) {
    event->AddRef();
    return event;
  }

  bool OpenHandle();
  void ApplyDcb();
  void ApplyTimeouts();
  void StartThreads();
  void BrowserStep(bool opening);
  bool ChangeLine(DWORD function, const char* failure);
  // One input line by its MS_ bit into its field; the failure names the line.
  bool ReadLine(DWORD bit, std::atomic<bool>& field, const char* failure);
  void CloseGate(bool& gate, bool enabled, EventQueue& queue);
  void Fail(int32_t number, const char* text, Event* stop);

  void RunReader();
  void RunWriter();
  bool WriteOne(HANDLE handle);
  void RunModem();
  void StoreLines(DWORD status);
  int32_t NextModemNotice(DWORD status);

  // Set by the owner; a worker takes it once as it starts.
  std::atomic<HANDLE> m_handle{nullptr};
  uint32_t m_baudRate = 9600;
  int32_t m_port = 0;
  int32_t m_parity = 0;
  int32_t m_stopBits = 0;
  int32_t m_byteSize = 8;
  uint32_t m_handshake = 0;
  std::atomic<bool> m_dsr{false}, m_cts{false}, m_ring{false}, m_rlsd{false};
  bool m_rts = true;
  bool m_dtr = true;
  bool m_ir = false;
  Thread* m_reader;
  Thread* m_writer;
  Thread* m_modemWatcher;
  Event* m_readerStop;
  Event* m_writerStop;
  Event* m_modemStop;
  std::atomic<int32_t> m_closing{0};
  Event* m_received;
  Event* m_writeRequest;
  Event* m_sent;
  Event* m_error;
  Event* m_modem;
  EventQueue m_receivedQueue;
  EventQueue m_writeQueue;
  EventQueue m_sentQueue;
  EventQueue m_modemQueue;
  bool m_receiveGate = true;  // the three gates: guarded by the LibraryLock
  bool m_sentGate = true;
  bool m_modemGate = true;
  int32_t m_timeoutMode = kReturnOnAny;
  uint32_t m_writeTimeout = 0;
  bool m_leaveBrowserAlone = true;
  bool m_suppressBrowser = false;
  // The modem watcher's last view of the lines, as MS_ bits.
  DWORD m_previousLines = 0;
};

}  // namespace kx
