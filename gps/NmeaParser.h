// The GPS engine: sentences from a source or from the application become fixes,
// movements, qualities, satellite lists and status changes, delivered by window message,
// through a queue, or kept for polling. It runs a thread of its own from construction
// to Close.
#pragma once

#include <atomic>
#include <cstdint>

#include "frame/DateTime.h"
#include "frame/Event.h"
#include "frame/EventQueue.h"
#include "frame/Thread.h"
#include "frame/WaitGroup.h"
#include "gps/ComStatus.h"
#include "gps/EventItem.h"
#include "gps/GpsFix.h"
#include "gps/Movement.h"
#include "gps/NmeaInput.h"
#include "gps/Quality.h"
#include "gps/Satellites.h"
#include "gps/SentenceSplitter.h"

namespace kx {

class NmeaParser : public BaseObject {
 public:
  // Event types: the wParam of message 1125 and the type out of GetEventData.
  enum EventType : int32_t {
    kSentence = 1,
    kFix = 5,
    kSatellites = 6,
    kMovement = 7,
    kQuality = 8,
    kStatus = 9
  };
  static constexpr unsigned kMessage = 1125;  // WM_USER + 101

  NmeaParser();
  ~NmeaParser() override;
  // Final: stops the source and the engine thread, and releases a waiting GetEventData.
  void Close() override;
  void ThreadMain(Thread* thread, BaseObject* argument) override;

  void SetComPort(int16_t port);
  void SetBaudRate(int32_t baudRate);
  void SetGpsDatum(int16_t datum);
  void SetNoEvents(bool noEvents);
  void SetChecksumMandatory(bool mandatory);
  void EventInterval(int32_t milliseconds, int32_t type);
  // A window for the events; null turns the queue on instead.
  void SetCallbackHWND(HWND window);
  void SetPortEnabled(bool enabled);

  // Blocks until an event comes or the parser closes; the object with a reference.
  BaseObject* GetEventData(int32_t& type);
  // With events off: the last object, or the next one within the timeout.
  GpsFix* GetGpsFix(int32_t timeout, int16_t fixType);
  Satellites* GetSatellites(int32_t timeout);
  Movement* GetMovement(int32_t timeout);
  Quality* GetQuality(int32_t timeout);
  ComStatus* GetComStatus();
  void WriteData(const String* data);
  // Text by hand, as if it came from a port; complete sentences are dispatched at once.
  void Parse(const String* text);

  int16_t GetComPort() const { return m_portNumber; }
  int32_t GetBaudRate() const { return m_baudRate; }
  int16_t GetGpsDatum() const { return m_datum; }
  int32_t GetEventInterval(int32_t type) const;

 private:
  // The four kinds that are throttled and polled, by index.
  enum Kind { kFixKind, kSatellitesKind, kMovementKind, kQualityKind, kKinds };
  struct Poll {
    BaseObject* last = nullptr;
    Event* waiter = nullptr;
  };

  static int32_t KindOf(int32_t type) { return type - kFix; }
  void RunEngine();
  bool EnabledStep(Event* woke);
  void OnFound();
  void OnSentences();
  void OnLost();
  void ClearData();
  void Dispatch(EventItem* item);
  void DispatchSentence(NmeaSentence* sentence);
  void FixStep(NmeaSentence* sentence);
  void MovementStep(NmeaSentence* sentence);
  void QualityStep(NmeaSentence* sentence);
  void SatellitesStep(NmeaSentence* sentence);
  bool Gated(int32_t type) const;
  void SetValidFix(bool valid);
  void DeliverStatus();
  void DeliverThrottled(int32_t type, BaseObject* object);
  void Deliver(int32_t type, BaseObject* object);
  void Store(int32_t type, BaseObject* object);
  BaseObject* Polled(int32_t type, int32_t timeout);
  void Acknowledge(Event* command);

  std::atomic<HWND> m_window{nullptr};
  std::atomic<bool> m_queueMode{false};
  EventQueue* m_events = nullptr;
  Event* m_stopWait = nullptr;
  Event* m_queueData = nullptr;
  NmeaInput* m_input;
  SentenceSplitter* m_handParser;
  std::atomic<int16_t> m_datum{1};
  bool m_portEnabled = false;
  int16_t m_portNumber = 0;
  std::atomic<int32_t> m_baudRate{4800};
  std::atomic<int16_t> m_wantedFixType{0};
  bool m_noEvents = false;
  Thread* m_engine;
  Event* m_stop;
  Event* m_enable;
  Event* m_disable;
  Event* m_acknowledge;
  Satellites* m_satellitesInWork = nullptr;
  Poll m_polls[kKinds];
  ComStatus m_status;
  Position* m_lastGgaPosition = nullptr;
  DateTime* m_lastTime = nullptr;
  DWORD m_lastFixTick = 0;
  std::atomic<int32_t> m_intervals[kKinds] = {};
  DateTime* m_lastDelivered[kKinds] = {};
  bool m_closed = false;
};

}  // namespace kx
