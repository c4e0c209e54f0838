#include "gps/PortDetection.h"

#include "frame/ByteBuffer.h"
#include "frame/ObjectList.h"
#include "links/PortEnumerator.h"

namespace kx {

PortDetection::PortDetection(int32_t port, bool checksumMandatory, Event* stop)
    : m_port(port), m_checksumMandatory(checksumMandatory), m_stop(stop) {}

PortDetection::~PortDetection() { CloseAll(); }

bool PortDetection::Run() {
  for (;;) {
    WaitGroup group;
    group.Add(m_stop);
    OpenCandidates(group);
    for (uint32_t speed : kSpeeds) {
      if (speed != kSpeeds[0])
        for (Candidate& c : m_candidates) c.port->SetBaudRate(speed);
      const Outcome outcome = Listen(group);
      if (outcome != Outcome::kSilent) {
        CloseAll();
        return outcome == Outcome::kFound;
      }
    }
    CloseAll();
  }
}

std::vector<int32_t> PortDetection::CandidateNumbers() const {
  if (m_port != 0) return {m_port};
  std::vector<int32_t> numbers;
  Ref<ObjectList> active(PortEnumerator::ListActivePorts());
  for (int32_t i = 1; active && i <= active->GetCount(); ++i) {
    const int32_t number = active->GetIDAt(i);
    if (number != kNeverScanned) numbers.push_back(number);
  }
  return numbers;
}

// Every candidate that opens at the first speed joins the wait with its received and
// error events; its splitter carries the port's ID.
void PortDetection::OpenCandidates(WaitGroup& group) {
  for (int32_t number : CandidateNumbers()) {
    Ref<SerialPort> port(new SerialPort());
    port->SetPort(number);
    port->SetBaudRate(kSpeeds[0]);
    port->SetSentNoticeEnabled(false);
    port->SetModemNoticeEnabled(false);
    port->SetTimeoutMode(SerialPort::kCollect);
    port->Open();
    if (port->Error().Failed()) continue;
    group.Add(Ref<Event>(port->GetReceivedEvent()).get());
    group.Add(Ref<Event>(port->GetErrorEvent()).get());
    Ref<SentenceSplitter> splitter(new SentenceSplitter());
    splitter->SetChecksumMandatory(m_checksumMandatory);
    splitter->SetID(port->GetID());
    m_candidates.push_back({port, splitter});
  }
}

// Up to the time of one speed, in all.
PortDetection::Outcome PortDetection::Listen(WaitGroup& group) {
  const DWORD start = GetTickCount();
  for (;;) {
    const DWORD spent = GetTickCount() - start;
    if (spent >= kListenPerSpeed) return Outcome::kSilent;
    Ref<Event> woke(group.WaitAny(kListenPerSpeed - spent));
    if (!woke) return Outcome::kSilent;
    if (woke.get() == m_stop) return Outcome::kStopped;
    woke->Reset();
    Candidate* candidate = FindByPortId(woke->GetOwnerID());
    if (!candidate) continue;
    if (woke->GetKind() == SerialPort::kError) {
      candidate->port->Close();
    } else if (Heard(*candidate)) {
      m_found = *candidate;
      return Outcome::kFound;
    }
  }
}

// Feeds what the port received to its splitter; true at the first good sentence, which
// is used up by the test.
bool PortDetection::Heard(const Candidate& candidate) {
  while (Ref<ByteBuffer> bytes{candidate.port->ReadBuffer()}) {
    candidate.splitter->WriteBytes(bytes->GetData(), bytes->GetLength());
    if (candidate.splitter->FindSentence()) return true;
  }
  return false;
}

PortDetection::Candidate* PortDetection::FindByPortId(int32_t id) {
  for (Candidate& c : m_candidates)
    if (c.port->GetID() == id) return &c;
  return nullptr;
}

// All but the port found; the list is emptied.
void PortDetection::CloseAll() {
  for (Candidate& c : m_candidates)
    if (c.port.get() != m_found.port.get()) c.port->Close();
  m_candidates.clear();
}

}  // namespace kx
