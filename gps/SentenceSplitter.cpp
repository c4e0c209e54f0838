#include "gps/SentenceSplitter.h"

#include <cstring>

#include "frame/Ref.h"

namespace kx {

namespace {

// "0" to "9" count as their digit, any other byte as its code minus 0x37: right for the
// capitals "A" to "F" only, so lower-case digits fail.
int HexDigit(uint8_t byte) { return byte >= '0' && byte <= '9' ? byte - '0' : byte - 0x37; }

}  // namespace

bool SentenceSplitter::WriteBytes(const uint8_t* bytes, int32_t length) {
  bool lineFeed = false;
  for (int32_t i = 0; bytes && i < length; ++i) {
    m_buffer[m_write++ % kRingSize] = bytes[i];
    lineFeed = lineFeed || bytes[i] == '\n';
  }
  return lineFeed;
}

bool SentenceSplitter::WriteString(const char* text) {
  return text && WriteBytes(reinterpret_cast<const uint8_t*>(text), int32_t(std::strlen(text)));
}

bool SentenceSplitter::FindSentence() {
  while (!SamePlace(m_scan, m_write)) {
    if (At(m_scan) != '$') {
      ++m_scan;
      continue;
    }
    uint8_t previous = '$';
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
        if (ChecksumPasses(dollar, at)) {
          m_start = dollar;
          m_end = m_scan;
          return true;
        }
        break;  // dropped without a word
      }
      previous = byte;
      ++at;
    }
  }
  return false;
}

bool SentenceSplitter::ChecksumPasses(uint16_t dollar, uint16_t lineFeed) const {
  uint8_t sum = 0;
  for (uint16_t at = uint16_t(dollar + 1); at != lineFeed; ++at) {
    const uint8_t byte = At(at);
    if (byte == '\r') return !m_checksumMandatory;  // no "*": no checksum
    if (byte == '*') {
      const int given = 16 * HexDigit(At(uint16_t(at + 1))) + HexDigit(At(uint16_t(at + 2)));
      return int8_t(given) == int8_t(sum);
    }
    sum ^= byte;
  }
  return !m_checksumMandatory;
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
