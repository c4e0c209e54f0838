#include "gps/NmeaInput.h"

#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"
#include "frame/WaitGroup.h"
#include "gps/PortDetection.h"

namespace kx {

namespace {
constexpr const char* kMultiplexerMissing = "Could not start Velomux. Key not found.";
}  // namespace

NmeaInput::NmeaInput()
    : m_lost(new Event()),
      m_found(new Event()),
      m_sentences(new Event()),
      m_stop(new Event()),
      m_thread(new Thread()) {}

NmeaInput::~NmeaInput() {
  Close();
  ReleaseObject(m_thread);
  ReleaseObject(m_lost);
  ReleaseObject(m_found);
  ReleaseObject(m_sentences);
  ReleaseObject(m_stop);
}

void NmeaInput::SetBaudRate(int32_t baudRate) {
  ClearError();
  LockScope lock;
  if (m_serial) m_serial->SetBaudRate(uint32_t(baudRate));
  m_baudRate = baudRate;
}

int32_t NmeaInput::GetPort() {
  LockScope lock;
  return m_serial ? m_serial->GetPort() : 0;
}

int32_t NmeaInput::GetBaudRate() {
  LockScope lock;
  return m_serial ? int32_t(m_serial->GetBaudRate()) : 0;
}

void NmeaInput::SetChecksumMandatory(bool mandatory) {
  LockScope lock;
  m_checksumMandatory = mandatory;
  if (m_splitter) m_splitter->SetChecksumMandatory(mandatory);
}

bool NmeaInput::Open() {
  if (m_thread->IsRunning()) return true;
  ClearError();
  if (m_port == -1) {
    SetError(kErrCompanionMissing, kMultiplexerMissing);
    return false;
  }
  if (IsFixed()) {
    Ref<SerialPort> port(OpenFixedPort());
    if (CopyError(port.get()) != 0) return false;
    Adopt(port.get(), Ref<SentenceSplitter>(new SentenceSplitter()).get());
  }
  m_stop->Reset();
  m_thread->Start(this, nullptr);
  return true;
}

SerialPort* NmeaInput::OpenFixedPort() {
  auto* port = new SerialPort();
  port->SetPort(m_port);
  port->SetBaudRate(uint32_t(m_baudRate));
  port->SetSentNoticeEnabled(false);
  port->SetModemNoticeEnabled(false);
  port->SetTimeoutMode(SerialPort::kCollect);
  port->Open();
  return port;
}

void NmeaInput::Close() {
  if (m_thread->IsRunning()) {
    m_stop->Set();
    m_thread->Close();
  }
  m_lost->Reset();
  m_found->Reset();
  m_sentences->Reset();
  GiveUpSource();
  LockScope lock;
  m_queue.Close();
  m_receiving = false;
}

NmeaSentence* NmeaInput::PopSentence() {
  LockScope lock;
  return static_cast<NmeaSentence*>(m_queue.Pop());
}

void NmeaInput::Write(ByteBuffer* bytes) {
  LockScope lock;
  if (m_serial && bytes) m_serial->WriteBuffer(bytes);
}

// Finds a port when there is none, reads it until it is lost, and searches again.
void NmeaInput::ThreadMain(Thread*, BaseObject*) {
  for (;;) {
    bool havePort;
    {
      LockScope lock;
      havePort = m_serial != nullptr;
    }
    if (!havePort && !FindPort()) return;
    if (ReadLoop() == LoopEnd::kStopped) return;
  }
}

bool NmeaInput::FindPort() {
  PortDetection detection(m_port, m_checksumMandatory, m_stop);
  if (!detection.Run()) return false;
  Ref<SerialPort> port(detection.TakePort());
  Ref<SentenceSplitter> splitter(detection.TakeSplitter());
  Adopt(port.get(), splitter.get());
  return true;
}

// Stop, the port's data and its error, in that order.
NmeaInput::LoopEnd NmeaInput::ReadLoop() {
  WaitGroup group;
  group.Add(m_stop);
  {
    LockScope lock;
    group.Add(Ref<Event>(m_serial->GetReceivedEvent()).get());
    group.Add(Ref<Event>(m_serial->GetErrorEvent()).get());
  }
  bool heard = QueueSentences();  // those behind the one that ended the search
  for (;;) {
    if (heard) {
      if (!m_receiving) {
        m_receiving = true;
        m_found->Set();
      }
      m_sentences->Set();
    }
    Ref<Event> woke(group.WaitAny(kSilence));
    if (woke.get() == m_stop) return LoopEnd::kStopped;
    if (woke) woke->Reset();
    heard = false;
    if (woke && woke->GetKind() == SerialPort::kReceived) {
      heard = Receive();
    } else if (Silent(bool(woke))) {
      return LoopEnd::kLost;
    }
  }
}

// Every complete sentence onto the queue; true if there was any.
bool NmeaInput::QueueSentences() {
  LockScope lock;
  bool any = false;
  while (m_splitter->FindSentence()) {
    m_queue.Push(Ref<NmeaSentence>(m_splitter->GetSentence()).get());
    any = true;
  }
  return any;
}

// Reads that piled up while this thread was busy may hold more than the ring: each is
// scanned as it goes in. True if a sentence was queued.
bool NmeaInput::Receive() {
  LockScope lock;
  bool any = false;
  while (Ref<ByteBuffer> bytes{m_serial->ReadBuffer()}) {
    m_splitter->Feed(bytes->GetData(), bytes->GetLength(), [&] {
      m_queue.Push(Ref<NmeaSentence>(m_splitter->GetSentence()).get());
      any = true;
    });
  }
  return any;
}

// The port failed or said nothing for the whole wait. A fixed port and speed stays in
// the loop, read on if it was only silent; in automatic modes the port is given up and
// the search starts again. Returns whether the loop ends.
bool NmeaInput::Silent(bool portFailed) {
  if (portFailed) m_serial->Close();  // only this thread replaces the port while it runs
  const bool ends = !IsFixed();
  if (ends) GiveUpSource();
  if (m_receiving) {
    m_receiving = false;
    m_lost->Set();
  }
  return ends;
}

void NmeaInput::Adopt(SerialPort* port, SentenceSplitter* splitter) {
  GiveUpSource();
  LockScope lock;
  port->AddRef();
  m_serial = port;
  splitter->AddRef();
  splitter->SetChecksumMandatory(m_checksumMandatory);
  m_splitter = splitter;
}

// The port is closed outside the lock: closing waits for its threads, which take it.
void NmeaInput::GiveUpSource() {
  SerialPort* port;
  SentenceSplitter* splitter;
  {
    LockScope lock;
    port = m_serial;
    splitter = m_splitter;
    m_serial = nullptr;
    m_splitter = nullptr;
  }
  if (port) port->Close();
  ReleaseObject(port);
  ReleaseObject(splitter);
}

}  // namespace kx
