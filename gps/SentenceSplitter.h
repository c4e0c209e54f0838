// The ring in front of the sentences: raw bytes in, complete sentences with a good
// checksum out. Noise, broken-off and corrupt sentences vanish without a report.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/BaseObject.h"
#include "gps/NmeaSentence.h"

namespace kx {

class SentenceSplitter : public BaseObject {
 public:
  static constexpr uint16_t kRingSize = 512;

  // Append to the ring; true when a byte was LF. More than a ring's worth between two
  // scans overwrites the oldest bytes, and the scan goes on at the oldest byte left.
  bool WriteBytes(const uint8_t* bytes, int32_t length);
  bool WriteString(const char* text);
  // Appends bytes of any length, scanned as they go in, and calls `found()` for every
  // sentence so completed, which GetSentence then gives: a sentence that fits in the ring
  // is never overwritten before it has been scanned.
  template <class Found>
  void Feed(const uint8_t* bytes, int32_t length, Found&& found);
  // The next complete sentence with a good checksum; call until it returns false.
  bool FindSentence();
  // A new sentence of the one found last, without its CR and LF.
  NmeaSentence* GetSentence() const;
  void SetChecksumMandatory(bool mandatory) { m_checksumMandatory = mandatory; }

 private:
  // The bytes from the scan counter on, in one piece thanks to the mirror.
  const uint8_t* Here() const { return m_buffer + m_scan % kRingSize; }
  int32_t Unread() const { return uint16_t(m_write - m_scan) % kRingSize; }
  bool SkipToDollar();
  static int32_t FindLineEnd(const uint8_t* text, int32_t limit);
  static int32_t Find(const uint8_t* text, int32_t from, int32_t limit, uint8_t byte);
  bool Passes(const uint8_t* text, int32_t cr) const;
  static uint8_t Xor(const uint8_t* bytes, int32_t length);

  // The ring twice over: every byte is written at its place and a ring further on, so
  // that any ring's worth of bytes from any place can be read in one piece.
  uint8_t m_buffer[2 * kRingSize] = {};
  uint16_t m_write = 0;
  uint16_t m_end = 0;
  uint16_t m_scan = 0;
  uint16_t m_start = 0;
  bool m_checksumMandatory = true;
};

// Each piece goes in up to its last LF that the ring takes before unscanned bytes would be
// overwritten, and is scanned; a line longer than that goes in whole, by the ring's rule.
template <class Found>
void SentenceSplitter::Feed(const uint8_t* bytes, int32_t length, Found&& found) {
  while (length > 0) {
    int32_t piece = std::min(length, kRingSize - 1 - Unread());
    while (piece > 0 && bytes[piece - 1] != '\n') --piece;
    if (piece == 0) {
      const void* lineFeed = std::memchr(bytes, '\n', size_t(length));
      piece = lineFeed ? int32_t(static_cast<const uint8_t*>(lineFeed) - bytes) + 1 : length;
    }
    if (WriteBytes(bytes, piece))
      while (FindSentence()) found();
    bytes += piece;
    length -= piece;
  }
}

}  // namespace kx
