#include "frame/Guid.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "platform/win32ce.h"

namespace kx {

namespace {

constexpr uint32_t kHighOffset = 1338356;

// The generator is seeded once in the process, with the first sum of time and offset.
// rand() isn't safe across threads, so the two draws happen under one lock.
void Draw(uint32_t seed, uint32_t& r1, uint32_t& r2) {
  static std::mutex mutex;
  static bool seeded = false;
  std::lock_guard<std::mutex> lock(mutex);
  if (!seeded) {
    std::srand(seed);
    seeded = true;
  }
  r1 = uint32_t(std::rand());
  r2 = uint32_t(std::rand());
}

}  // namespace

Guid::~Guid() { Close(); }

void Guid::Close() { ReleaseObject(m_text); }

void Guid::Create() {
  Close();
  SYSTEMTIME now;
  GetSystemTime(&now);
  FILETIME file{};
  SystemTimeToFileTime(&now, &file);
  const DWORD tick = GetTickCount();
  const uint32_t sum = file.dwHighDateTime + kHighOffset;
  uint32_t r1, r2;
  Draw(sum, r1, r2);

  m_timeLow = file.dwLowDateTime;
  m_timeMid = uint16_t(sum);
  m_timeHighAndVersion = uint16_t(sum >> 16) | 0x1000;
  const uint16_t words[4] = {uint16_t(r1), uint16_t(tick >> 16), uint16_t(tick), uint16_t(r2)};
  for (int i = 0; i < 4; ++i) {
    m_bytes[2 * i] = uint8_t(words[i] >> 8);
    m_bytes[2 * i + 1] = uint8_t(words[i]);
  }
  char text[40];
  std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x%02x%02x%02x%02x%02x%02x",
                unsigned(m_timeLow), unsigned(m_timeMid), unsigned(m_timeHighAndVersion),
                m_bytes[0], m_bytes[1], m_bytes[2], m_bytes[3], m_bytes[4], m_bytes[5], m_bytes[6],
                m_bytes[7]);
  m_text = new String(text);
}

String* Guid::GetText() const {
  if (m_text) m_text->AddRef();
  return m_text;
}

}  // namespace kx
