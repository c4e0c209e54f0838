#include "gps/NmeaParser.h"

#include "frame/ByteBuffer.h"
#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"

namespace kx {

namespace {

constexpr const char* kMustNotBeEnabled = "Port must not be enabled!";
constexpr const char* kMustBeEnabled = "Port must be enabled!";
constexpr const char* kAutodetect = "Autodetect mode not allowed";
constexpr const char* kUnknownDatum = "Unknown datum!";
constexpr const char* kUnknownEventType = "Unknown event type!";
constexpr const char* kNoEventsNeeded = "NoEvents must be set!";
// Without a good fix for this long while sentences come, the fix isn't valid.
constexpr DWORD kFixTimeout = 5000;
constexpr int32_t kSentenceTag = 1;
constexpr int32_t kStatusTag = 2;

template <class T>
T* Shared(T* object) {
  if (object) object->AddRef();
  return object;
}

}  // namespace

NmeaParser::NmeaParser()
    : m_input(new NmeaInput()),
      m_handParser(new SentenceSplitter()),
      m_engine(new Thread()),
      m_stop(new Event()),
      m_enable(new Event()),
      m_disable(new Event()),
      m_acknowledge(new Event()) {
  m_engine->Start(this, nullptr);
}

NmeaParser::~NmeaParser() {
  Close();
  ClearData();
  ReleaseObject(m_satellitesInWork);
  for (Poll& poll : m_polls) ReleaseObject(poll.waiter);
  ReleaseObject(m_events);
  ReleaseObject(m_stopWait);
  ReleaseObject(m_queueData);
  ReleaseObject(m_input);
  ReleaseObject(m_handParser);
  ReleaseObject(m_engine);
  ReleaseObject(m_stop);
  ReleaseObject(m_enable);
  ReleaseObject(m_disable);
  ReleaseObject(m_acknowledge);
}

// ---- settings ---------------------------------------------------------------------

void NmeaParser::SetComPort(int16_t port) {
  ClearError();
  if (m_portEnabled) {
    SetError(kErrInvalidState, kMustNotBeEnabled);
    return;
  }
  m_portNumber = port;
}

void NmeaParser::SetBaudRate(int32_t baudRate) {
  ClearError();
  if (m_portEnabled && (m_portNumber == 0 || m_baudRate == 0)) {
    SetError(kErrInvalidState, kAutodetect);
    return;
  }
  m_baudRate = baudRate;
  if (m_portEnabled) m_input->SetBaudRate(baudRate);
}

void NmeaParser::SetGpsDatum(int16_t datum) {
  ClearError();
  if (datum < 1 || datum > 28) {
    SetError(kErrInvalidArgument, kUnknownDatum);
    return;
  }
  m_datum = datum;
}

void NmeaParser::SetNoEvents(bool noEvents) {
  ClearError();
  if (m_portEnabled) {
    SetError(kErrInvalidState, kMustNotBeEnabled);
    return;
  }
  m_noEvents = noEvents;
}

void NmeaParser::SetChecksumMandatory(bool mandatory) {
  ClearError();
  m_handParser->SetChecksumMandatory(mandatory);
  m_input->SetChecksumMandatory(mandatory);
}

void NmeaParser::EventInterval(int32_t milliseconds, int32_t type) {
  LockScope lock;
  ClearError();
  if (type < kFix || type > kQuality) {
    SetError(kErrInvalidArgument, kUnknownEventType);
    return;
  }
  m_intervals[KindOf(type)] = milliseconds < 0 ? -1 : milliseconds;
}

int32_t NmeaParser::GetEventInterval(int32_t type) const { return m_intervals[KindOf(type)]; }

void NmeaParser::SetCallbackHWND(HWND window) {
  ClearError();
  if (window) {
    m_window = window;
    m_queueMode = false;
    return;
  }
  {
    LockScope lock;
    if (!m_events) {
      m_events = new EventQueue();
      m_stopWait = new Event();
      m_queueData = new Event();
    }
  }
  m_window = nullptr;
  m_queueMode = true;
}

// ---- enabling and the engine thread -----------------------------------------------

void NmeaParser::SetPortEnabled(bool enabled) {
  ClearError();
  if (enabled == m_portEnabled || m_closed) return;
  if (enabled) {
    m_input->SetPort(m_portNumber);
    m_input->SetBaudRate(m_baudRate);
    const bool fixed = (m_portNumber != 0 && m_baudRate != 0) || m_portNumber == -1;
    if (fixed && !m_input->Open()) {
      CopyError(m_input);
      return;
    }
  }
  Event* command = enabled ? m_enable : m_disable;
  command->Set();
  m_acknowledge->Wait();
  m_acknowledge->Reset();
  m_portEnabled = enabled;
}

void NmeaParser::Acknowledge(Event* command) {
  command->Reset();
  m_acknowledge->Set();
}

void NmeaParser::ThreadMain(Thread*, BaseObject*) { RunEngine(); }

// Idle until enabled; enabled until disabled; finished at stop. Every event is reset as
// soon as the wait has returned it.
void NmeaParser::RunEngine() {
  WaitGroup group;
  for (Event* event : {m_stop, m_input->GetFoundEvent(), m_input->GetSentencesEvent(),
                       m_input->GetLostEvent(), m_disable, m_enable})
    group.Add(event);
  bool enabled = false;
  for (;;) {
    Ref<Event> woke(group.WaitAny());
    woke->Reset();
    if (woke.get() == m_stop) {
      if (enabled) {
        ClearData();
        m_input->Close();
      }
      return;
    }
    if (!enabled) {
      if (woke.get() == m_enable) {
        if (!m_input->IsRunning()) m_input->Open();
        Acknowledge(m_enable);
        enabled = true;
      }
      continue;
    }
    enabled = EnabledStep(woke.get());
  }
}

// One event while enabled; false when it disabled the engine.
bool NmeaParser::EnabledStep(Event* woke) {
  if (woke == m_input->GetFoundEvent()) {
    OnFound();
  } else if (woke == m_input->GetSentencesEvent()) {
    OnSentences();
  } else if (woke == m_input->GetLostEvent()) {
    OnLost();
  } else if (woke == m_disable) {
    ClearData();
    m_input->Close();
    Acknowledge(m_disable);
    return false;
  }
  return true;
}

void NmeaParser::OnFound() {
  LockScope lock;
  m_status.SetComPort(int16_t(m_input->GetPort()));
  m_status.SetBaudRate(m_input->GetBaudRate());
  m_status.SetValidNmea(true);
  if (!m_noEvents) DeliverStatus();
}

void NmeaParser::OnSentences() {
  while (NmeaSentence* sentence = m_input->PopSentence()) {
    Ref<NmeaSentence> owned(sentence);
    Ref<EventItem> item(new EventItem(sentence, kSentenceTag));
    Dispatch(item.get());
  }
  LockScope lock;
  if (m_lastFixTick != 0 && GetTickCount() - m_lastFixTick >= kFixTimeout) {
    m_status.SetValidFix(false);
    DeliverStatus();
    m_lastFixTick = 0;
  }
}

void NmeaParser::OnLost() {
  ClearData();
  LockScope lock;
  m_status.SetComPort(int16_t(m_input->GetPort()));
  m_status.SetBaudRate(m_input->GetBaudRate());
  if (!m_noEvents) DeliverStatus();
}

// Events still queued go with the data; the satellites in work stay.
void NmeaParser::ClearData() {
  LockScope lock;
  for (Poll& poll : m_polls) ReleaseObject(poll.last);
  m_status.Close();
  m_lastFixTick = 0;
  ReleaseObject(m_lastTime);
  ReleaseObject(m_lastGgaPosition);
  if (m_events) m_events->Close();
  for (DateTime*& delivered : m_lastDelivered) ReleaseObject(delivered);
}

// ---- dispatch ---------------------------------------------------------------------

void NmeaParser::Dispatch(EventItem* item) {
  LockScope lock;
  Ref<BaseObject> payload(item->GetPayload());
  if (item->GetTag() == kStatusTag) {
    if (!m_noEvents) Deliver(kStatus, payload.get());
    return;
  }
  DispatchSentence(static_cast<NmeaSentence*>(payload.get()));
}

void NmeaParser::DispatchSentence(NmeaSentence* sentence) {
  switch (sentence->GetType()) {
    case NmeaSentence::kRMC:
      FixStep(sentence);
      MovementStep(sentence);
      break;
    case NmeaSentence::kGLL:
    case NmeaSentence::kGGA:
      FixStep(sentence);
      break;
    case NmeaSentence::kGSV:
      SatellitesStep(sentence);
      break;
    case NmeaSentence::kGSA:
      QualityStep(sentence);
      SatellitesStep(sentence);
      break;
    case NmeaSentence::kVTG:
      MovementStep(sentence);
      break;
    default:
      break;
  }
  if (!m_noEvents) Deliver(kSentence, sentence);
}

// A step is skipped when events are on and its interval turned it off.
bool NmeaParser::Gated(int32_t type) const { return !m_noEvents && m_intervals[KindOf(type)] < 0; }

void NmeaParser::FixStep(NmeaSentence* sentence) {
  Ref<GpsFix> fix(new GpsFix(sentence, m_datum, m_lastGgaPosition, m_lastTime));
  ReleaseObject(m_lastTime);
  m_lastTime = fix->GetDateTime();
  if (Gated(kFix)) return;
  if (fix->GetFixType() == GpsFix::kNoFix) {
    if (m_status.GetValidFix()) SetValidFix(false);
  } else {
    m_lastFixTick = GetTickCount();
    if (m_lastFixTick == 0) m_lastFixTick = 1;  // 0 means none
    if (!m_status.GetValidFix()) SetValidFix(true);
    DeliverThrottled(kFix, fix.get());
  }
  if (sentence->GetType() == NmeaSentence::kGGA) {
    ReleaseObject(m_lastGgaPosition);
    m_lastGgaPosition = fix->GetPosition();
  }
}

void NmeaParser::MovementStep(NmeaSentence* sentence) {
  if (Gated(kMovement)) return;
  Ref<Movement> movement(new Movement(sentence));
  if (movement->GetValid()) DeliverThrottled(kMovement, movement.get());
}

void NmeaParser::QualityStep(NmeaSentence* sentence) {
  if (Gated(kQuality)) return;
  Ref<Quality> quality(new Quality(sentence));
  DeliverThrottled(kQuality, quality.get());
}

void NmeaParser::SatellitesStep(NmeaSentence* sentence) {
  if (Gated(kSatellites)) return;
  if (!m_satellitesInWork) m_satellitesInWork = new Satellites();
  if (!m_satellitesInWork->Update(sentence)) return;
  DeliverThrottled(kSatellites, m_satellitesInWork);
  ReleaseObject(m_satellitesInWork);  // the next sentence starts a new list
}

// ---- delivery ---------------------------------------------------------------------

void NmeaParser::SetValidFix(bool valid) {
  m_status.SetValidFix(valid);
  DeliverStatus();
}

void NmeaParser::DeliverStatus() {
  Ref<ComStatus> copy(new ComStatus(m_status));
  Deliver(kStatus, copy.get());
}

// Intervals count whole seconds of GPS time: an event is held back while less than the
// interval has passed since the last one of its kind was delivered.
void NmeaParser::DeliverThrottled(int32_t type, BaseObject* object) {
  if (m_noEvents) {
    Store(type, object);
    return;
  }
  const int32_t kind = KindOf(type);
  const int32_t interval = m_intervals[kind];
  DateTime*& before = m_lastDelivered[kind];
  if (interval != 0 && m_lastTime && before) {
    const int64_t seconds = DateTime::SecondsBetween(before, m_lastTime);
    if (seconds >= 0 && seconds < interval / 1000) return;
  }
  ReleaseObject(before);
  before = Shared(m_lastTime);
  Deliver(type, object);
}

void NmeaParser::Deliver(int32_t type, BaseObject* object) {
  if (m_noEvents) return;
  if (m_queueMode) {
    Ref<EventItem> item(new EventItem(object, type));
    m_events->Push(item.get());
    m_queueData->Set();
    return;
  }
  HWND window = m_window;
  if (!window) return;  // no window and no queue: the event is lost
  object->AddRef();     // the receiver's, given up with its family's Delete
  if (!PostMessageW(window, kMessage, WPARAM(type), LPARAM(object))) object->Release();
}

// ---- the application's side: queue, polling, status, hand parsing ----------------

BaseObject* NmeaParser::GetEventData(int32_t& type) {
  ClearError();
  type = 0;
  if (!m_stopWait || m_stopWait->WaitFor(0)) return nullptr;
  WaitGroup group;
  group.Add(m_queueData);
  group.Add(m_stopWait);
  for (;;) {
    Ref<EventItem> item;
    {
      LockScope lock;
      item = Ref<EventItem>(static_cast<EventItem*>(m_events->Pop()));
    }
    if (item) {
      type = item->GetTag();
      return item->GetPayload();
    }
    Ref<Event> woke(group.WaitAny());
    if (woke.get() == m_stopWait) return nullptr;
    m_queueData->Reset();
  }
}

// Under the lock: the last object, and the waiter woken by news of its kind.
void NmeaParser::Store(int32_t type, BaseObject* object) {
  Poll& poll = m_polls[KindOf(type)];
  if (poll.waiter && type == kFix && static_cast<GpsFix*>(object)->GetFixType() < m_wantedFixType)
    return;
  object->AddRef();
  ReleaseObject(poll.last);
  poll.last = object;
  if (poll.waiter) poll.waiter->Set();
}

BaseObject* NmeaParser::Polled(int32_t type, int32_t timeout) {
  ClearError();
  if (!m_noEvents) {
    SetError(kErrInvalidState, kNoEventsNeeded);
    return nullptr;
  }
  Poll& poll = m_polls[KindOf(type)];
  if (timeout < 1) {
    LockScope lock;
    return Shared(poll.last);
  }
  Ref<Event> waiter;
  {
    LockScope lock;
    ReleaseObject(poll.waiter);
    poll.waiter = new Event();
    waiter = Ref<Event>::Share(poll.waiter);
  }
  const bool news = waiter->WaitFor(DWORD(timeout));
  LockScope lock;
  ReleaseObject(poll.waiter);
  return news ? Shared(poll.last) : nullptr;
}

GpsFix* NmeaParser::GetGpsFix(int32_t timeout, int16_t fixType) {
  if (m_noEvents) m_wantedFixType = fixType;
  return static_cast<GpsFix*>(Polled(kFix, timeout));
}

Satellites* NmeaParser::GetSatellites(int32_t timeout) {
  return static_cast<Satellites*>(Polled(kSatellites, timeout));
}

Movement* NmeaParser::GetMovement(int32_t timeout) {
  return static_cast<Movement*>(Polled(kMovement, timeout));
}

Quality* NmeaParser::GetQuality(int32_t timeout) {
  return static_cast<Quality*>(Polled(kQuality, timeout));
}

ComStatus* NmeaParser::GetComStatus() {
  LockScope lock;
  ClearError();
  return new ComStatus(m_status);
}

// The serial port comes with the live links; until then there is nothing to write to.
void NmeaParser::WriteData(const String* text) {
  ClearError();
  if (!m_portEnabled) {
    SetError(kErrInvalidState, kMustBeEnabled);
    return;
  }
  if (m_portNumber == 0 || m_baudRate == 0) {
    SetError(kErrInvalidState, kAutodetect);
    return;
  }
  if (!text) return;
  m_input->Write(Ref<ByteBuffer>(new ByteBuffer(reinterpret_cast<const uint8_t*>(text->GetText()),
                                                text->GetLength()))
                     .get());
}

void NmeaParser::Parse(const String* text) {
  ClearError();
  if (m_portEnabled) {
    SetError(kErrInvalidState, kMustNotBeEnabled);
    return;
  }
  if (!text || text->GetLength() == 0) return;
  // Scanned as it goes in: a text longer than the ring keeps all its sentences.
  m_handParser->Feed(reinterpret_cast<const uint8_t*>(text->GetText()), text->GetLength(), [&] {
    Ref<NmeaSentence> sentence(m_handParser->GetSentence());
    Ref<EventItem> item(new EventItem(sentence.get(), kSentenceTag));
    Dispatch(item.get());
  });
}

void NmeaParser::Close() {
  SetPortEnabled(false);
  if (m_engine->IsRunning()) {
    m_stop->Set();
    m_engine->Close();
  }
  m_closed = true;
  if (m_stopWait) m_stopWait->Set();
}

}  // namespace kx
