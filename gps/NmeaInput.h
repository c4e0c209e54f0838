// The engine's source of sentences: a port given or found, read on a thread of its own,
// split into sentences that wait in a queue for the engine. It signals the engine by
// three events: found when good NMEA starts, sentences when some are queued, lost when
// it stops.
//
// Port number 0 finds the port, a number above 0 is that COM port, -1 is the
// multiplexer alone; baud rate 0 finds the speed. No multiplexer program exists in this
// build: port -1 fails as if its registry key were missing, and port 0 goes straight on
// to the search of the serial ports.
#pragma once

#include <cstdint>

#include "frame/ByteBuffer.h"
#include "frame/Event.h"
#include "frame/EventQueue.h"
#include "frame/Thread.h"
#include "gps/NmeaSentence.h"
#include "gps/SentenceSplitter.h"
#include "links/SerialPort.h"

namespace kx {

class NmeaInput : public BaseObject {
 public:
  NmeaInput();
  ~NmeaInput() override;

  void SetPort(int32_t port) { m_port = port; }
  void SetBaudRate(int32_t baudRate);
  // The values of the open port; 0 without one.
  int32_t GetPort();
  int32_t GetBaudRate();
  void SetChecksumMandatory(bool mandatory);

  // Opens a fixed port on the caller's thread and starts the input thread; failures go
  // to the error record. Automatic modes open nothing here: the thread searches.
  bool Open();
  void Close() override;
  bool IsRunning() const { return m_thread->IsRunning(); }
  // The oldest queued sentence with a reference, or null. Under the LibraryLock.
  NmeaSentence* PopSentence();
  // Bytes out through the serial port, if there is one.
  void Write(ByteBuffer* bytes);

  Event* GetLostEvent() const { return m_lost; }
  Event* GetFoundEvent() const { return m_found; }
  Event* GetSentencesEvent() const { return m_sentences; }

  void ThreadMain(Thread* thread, BaseObject* argument) override;

  static constexpr DWORD kSilence = 4000;  // milliseconds without bytes: the source is lost

 private:
  enum class LoopEnd { kStopped, kLost };

  bool IsFixed() const { return m_port > 0 && m_baudRate != 0; }
  SerialPort* OpenFixedPort();
  bool FindPort();
  LoopEnd ReadLoop();
  bool QueueSentences();
  bool Receive();
  bool Silent(bool portFailed);
  void Adopt(SerialPort* port, SentenceSplitter* splitter);
  void GiveUpSource();

  int32_t m_port = 0;
  int32_t m_baudRate = 0;
  bool m_checksumMandatory = true;
  bool m_receiving = false;
  SerialPort* m_serial = nullptr;          // guarded by the LibraryLock
  SentenceSplitter* m_splitter = nullptr;  // guarded by the LibraryLock
  Event* m_lost;
  Event* m_found;
  Event* m_sentences;
  Event* m_stop;
  Thread* m_thread;
  EventQueue m_queue;
};

}  // namespace kx
