#include "gps/SentenceSplitter.h"

#include <algorithm>
#include <cstring>

#include "frame/Ref.h"

namespace kx {

namespace {

// "0" to "9" count as their digit, any other byte as its code minus 0x37: right for the
// capitals "A" to "F" only, so lower-case digits fail.
int HexDigit(uint8_t byte) { return byte >= '0' && byte <= '9' ? byte - '0' : byte - 0x37; }

}  // namespace

// Only the last ring's worth of a long write survives, as if written byte by byte.
bool SentenceSplitter::WriteBytes(const uint8_t* bytes, int32_t length) {
  if (!bytes || length <= 0) return false;
  const bool lineFeed = std::memchr(bytes, '\n', size_t(length)) != nullptr;
  int32_t skip = length > kRingSize ? length - kRingSize : 0;
  m_write = uint16_t(m_write + skip);
  for (int32_t at = skip; at < length;) {
    const uint16_t place = m_write % kRingSize;
    const int32_t piece = std::min<int32_t>(length - at, kRingSize - place);
    std::memcpy(m_buffer + place, bytes + at, size_t(piece));
    m_write = uint16_t(m_write + piece);
    at += piece;
  }
  return lineFeed;
}

bool SentenceSplitter::WriteString(const char* text) {
  return text && WriteBytes(reinterpret_cast<const uint8_t*>(text), int32_t(std::strlen(text)));
}

// Moves the scan counter to the next "$" before the write counter; false if none.
bool SentenceSplitter::SkipToDollar() {
  while (!SamePlace(m_scan, m_write)) {
    const uint16_t place = m_scan % kRingSize, end = m_write % kRingSize;
    const int32_t span = end > place ? end - place : kRingSize - place;
    const void* dollar = std::memchr(m_buffer + place, '$', size_t(span));
    if (dollar) {
      m_scan = uint16_t(m_scan + (static_cast<const uint8_t*>(dollar) - (m_buffer + place)));
      return true;
    }
    m_scan = uint16_t(m_scan + span);
  }
  return false;
}

// One walk from the "$" to the CR LF, which also sums the checksum: every byte behind
// the "$" up to the first "*"; a CR before any "*" means the sentence has none.
bool SentenceSplitter::FindSentence() {
  while (SkipToDollar()) {
    uint8_t previous = '$', sum = 0;
    enum { kSumming, kStar, kNoChecksum } state = kSumming;
    uint16_t star = 0;
    uint16_t at = uint16_t(m_scan + 1);
    for (;;) {
      if (SamePlace(at, m_write)) return false;  // partial: resume at its "$" later
      const uint8_t byte = At(at);
      if (byte == '$') {  // broken off: follow the newer sentence
        m_scan = at;
        break;
      }
      if (previous == '\r' && byte == '\n') {
        const uint16_t dollar = m_scan;
        m_scan = uint16_t(at + 1);
        if (Passes(state == kStar, state == kNoChecksum, star, sum)) {
          m_start = dollar;
          m_end = m_scan;
          return true;
        }
        break;  // dropped without a word
      }
      if (state == kSumming) {
        if (byte == '*') {
          state = kStar;
          star = at;
        } else if (byte == '\r') {
          state = kNoChecksum;
        } else {
          sum ^= byte;
        }
      }
      previous = byte;
      ++at;
    }
  }
  return false;
}

bool SentenceSplitter::Passes(bool hasStar, bool noChecksum, uint16_t star, uint8_t sum) const {
  if (noChecksum || !hasStar) return !m_checksumMandatory;
  const int given = 16 * HexDigit(At(uint16_t(star + 1))) + HexDigit(At(uint16_t(star + 2)));
  return int8_t(given) == int8_t(sum);
}

NmeaSentence* SentenceSplitter::GetSentence() const {
  int32_t length = int32_t(uint16_t(m_end - m_start) % kRingSize) - 2;
  if (length < 0) length = 0;
  char text[kRingSize + 1];
  for (int32_t i = 0; i < length; ++i) text[i] = char(At(uint16_t(m_start + i)));
  text[length] = '\0';
  auto* sentence = new NmeaSentence();
  sentence->SetSentence(Ref<String>(new String(text, length)).get());
  return sentence;
}

}  // namespace kx
