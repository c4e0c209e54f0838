// The engine's source of sentences: a port found or given, read on a thread of its own,
// split into sentences that wait in a queue for the engine. It signals the engine by
// three events: found when good NMEA starts, sentences when some are queued, lost when
// it stops.
//
// The ports themselves come with the serial and multiplexer links; until then a source
// opens without error and delivers nothing, so an enabled engine simply waits.
#pragma once

#include <cstdint>

#include "frame/Event.h"
#include "frame/EventQueue.h"
#include "gps/NmeaSentence.h"

namespace kx {

class NmeaInput : public BaseObject {
 public:
  NmeaInput();
  ~NmeaInput() override;

  void SetPort(int32_t port) { m_port = port; }
  void SetBaudRate(int32_t baudRate) { m_baudRate = baudRate; }
  // The values of the open source.
  int32_t GetPort() const { return m_openPort; }
  int32_t GetBaudRate() const { return m_openBaudRate; }
  void SetChecksumMandatory(bool mandatory) { m_checksumMandatory = mandatory; }

  // Reports a failure in the error record.
  bool Open();
  void Close() override;
  bool IsRunning() const { return false; }
  // The oldest queued sentence with a reference, or null. Under the LibraryLock.
  NmeaSentence* PopSentence();

  Event* GetLostEvent() const { return m_lost; }
  Event* GetFoundEvent() const { return m_found; }
  Event* GetSentencesEvent() const { return m_sentences; }

 private:
  int32_t m_port = 0;
  int32_t m_baudRate = 0;
  int32_t m_openPort = 0;
  int32_t m_openBaudRate = 0;
  bool m_checksumMandatory = true;
  Event* m_lost;
  Event* m_found;
  Event* m_sentences;
  EventQueue m_queue;
};

}  // namespace kx
