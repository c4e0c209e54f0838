#include "gps/NmeaInput.h"

#include "frame/LibraryLock.h"

namespace kx {

NmeaInput::NmeaInput() : m_lost(new Event()), m_found(new Event()), m_sentences(new Event()) {}

NmeaInput::~NmeaInput() {
  Close();
  ReleaseObject(m_lost);
  ReleaseObject(m_found);
  ReleaseObject(m_sentences);
}

bool NmeaInput::Open() {
  ClearError();
  return true;
}

void NmeaInput::Close() {
  LockScope lock;
  m_queue.Close();
  m_openPort = 0;
  m_openBaudRate = 0;
}

NmeaSentence* NmeaInput::PopSentence() {
  LockScope lock;
  return static_cast<NmeaSentence*>(m_queue.Pop());
}

}  // namespace kx
