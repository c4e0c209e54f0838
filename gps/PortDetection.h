// Finding the receiver: every candidate port is opened and listened to, first at 4800
// and then at 57600 baud, two seconds each, until one of them passes a whole sentence
// with a good checksum. The search goes round until it succeeds or is stopped, so a
// receiver plugged in later is found on a later round.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/Event.h"
#include "frame/Ref.h"
#include "frame/WaitGroup.h"
#include "gps/SentenceSplitter.h"
#include "links/SerialPort.h"

namespace kx {

class PortDetection {
 public:
  // Port 0 searches all active ports but COM3; any other number searches that port alone.
  PortDetection(int32_t port, bool checksumMandatory, Event* stop);
  ~PortDetection();
  PortDetection(const PortDetection&) = delete;
  PortDetection& operator=(const PortDetection&) = delete;

  // True with a port that spoke, false when stopped.
  bool Run();
  // The port found and its splitter, holding what came after the first sentence; with
  // the detection's references.
  SerialPort* TakePort() { return m_found.port.Detach(); }
  SentenceSplitter* TakeSplitter() { return m_found.splitter.Detach(); }

  static constexpr uint32_t kSpeeds[] = {4800, 57600};
  static constexpr DWORD kListenPerSpeed = 2000;  // milliseconds
  static constexpr int32_t kNeverScanned = 3;

 private:
  struct Candidate {
    Ref<SerialPort> port;
    Ref<SentenceSplitter> splitter;
  };
  enum class Outcome { kSilent, kFound, kStopped };

  std::vector<int32_t> CandidateNumbers() const;
  void OpenCandidates(WaitGroup& group);
  Outcome Listen(WaitGroup& group);
  bool Heard(const Candidate& candidate);
  Candidate* FindByPortId(int32_t id);
  void CloseAll();

  const int32_t m_port;
  const bool m_checksumMandatory;
  Event* const m_stop;
  std::vector<Candidate> m_candidates;
  Candidate m_found;
};

}  // namespace kx
