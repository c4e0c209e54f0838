// The ring in front of the sentences: raw bytes in, complete sentences with a good
// checksum out. Noise, broken-off and corrupt sentences vanish without a report.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "gps/NmeaSentence.h"

namespace kx {

class SentenceSplitter : public BaseObject {
 public:
  static constexpr uint16_t kRingSize = 512;

  // Append to the ring; true when a byte was LF. More than a ring's worth between two
  // scans overwrites the oldest bytes.
  bool WriteBytes(const uint8_t* bytes, int32_t length);
  bool WriteString(const char* text);
  // The next complete sentence with a good checksum; call until it returns false.
  bool FindSentence();
  // A new sentence of the one found last, without its CR and LF.
  NmeaSentence* GetSentence() const;
  void SetChecksumMandatory(bool mandatory) { m_checksumMandatory = mandatory; }

 private:
  uint8_t At(uint16_t counter) const { return m_buffer[counter % kRingSize]; }
  bool SamePlace(uint16_t a, uint16_t b) const { return a % kRingSize == b % kRingSize; }
  bool SkipToDollar();
  bool Passes(bool hasStar, bool noChecksum, uint16_t star, uint8_t sum) const;

  uint8_t m_buffer[kRingSize] = {};
  uint16_t m_write = 0;
  uint16_t m_end = 0;
  uint16_t m_scan = 0;
  uint16_t m_start = 0;
  bool m_checksumMandatory = true;
};

}  // namespace kx
