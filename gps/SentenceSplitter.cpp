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

// Only the last ring's worth of a long write survives, as if written byte by byte. The
// scan never falls further behind than the ring reaches: its counter would otherwise
// come round to a place within the newest bytes and skip the sentences before it.
bool SentenceSplitter::WriteBytes(const uint8_t* bytes, int32_t length) {
  if (!bytes || length <= 0) return false;
  const bool lineFeed = std::memchr(bytes, '\n', size_t(length)) != nullptr;
  const bool overtaken = length >= kRingSize - Unread();
  int32_t skip = length > kRingSize ? length - kRingSize : 0;
  m_write = uint16_t(m_write + skip);
  for (int32_t at = skip; at < length;) {
    const uint16_t place = m_write % kRingSize;
    const int32_t piece = std::min<int32_t>(length - at, kRingSize - place);
    std::memcpy(m_buffer + place, bytes + at, size_t(piece));
    std::memcpy(m_buffer + kRingSize + place, bytes + at, size_t(piece));
    m_write = uint16_t(m_write + piece);
    at += piece;
  }
  if (overtaken) m_scan = uint16_t(m_write - (kRingSize - 1));
  return lineFeed;
}

bool SentenceSplitter::WriteString(const char* text) {
  return text && WriteBytes(reinterpret_cast<const uint8_t*>(text), int32_t(std::strlen(text)));
}

// Moves the scan counter to the next "$" before the write counter; false if none.
bool SentenceSplitter::SkipToDollar() {
  const int32_t unread = Unread();
  if (unread == 0) return false;
  const void* dollar = std::memchr(Here(), '$', size_t(unread));
  m_scan = uint16_t(m_scan + (dollar ? static_cast<const uint8_t*>(dollar) - Here() : unread));
  return dollar != nullptr;
}

// From the "$" to the first CR LF, unless another "$" comes first: then the sentence
// broke off and the newer one is followed. The checksum covers every byte behind the
// "$" up to the first "*"; a CR before any "*" means the sentence has none.
bool SentenceSplitter::FindSentence() {
  while (SkipToDollar()) {
    const uint8_t* text = Here();
    const int32_t unread = Unread();
    const int32_t next = Find(text, 1, unread, '$');
    const int32_t lineFeed = FindLineEnd(text, next);
    if (lineFeed == next) {
      if (next == unread) return false;  // partial: resume at its "$" later
      m_scan = uint16_t(m_scan + next);
      continue;
    }
    const uint16_t dollar = m_scan;
    m_scan = uint16_t(m_scan + lineFeed + 1);
    if (Passes(text, lineFeed - 1)) {
      m_start = dollar;
      m_end = m_scan;
      return true;
    }
    // dropped without a word
  }
  return false;
}

// The first LF behind a CR within [2, limit), or limit.
int32_t SentenceSplitter::FindLineEnd(const uint8_t* text, int32_t limit) {
  for (int32_t from = 2;;) {
    const int32_t at = Find(text, from, limit, '\n');
    if (at == limit || text[at - 1] == '\r') return at;
    from = at + 1;
  }
}

int32_t SentenceSplitter::Find(const uint8_t* text, int32_t from, int32_t limit, uint8_t byte) {
  if (from >= limit) return limit;
  const void* found = std::memchr(text + from, byte, size_t(limit - from));
  return found ? int32_t(static_cast<const uint8_t*>(found) - text) : limit;
}

// `cr` is the place of the CR of the CR LF.
bool SentenceSplitter::Passes(const uint8_t* text, int32_t cr) const {
  const int32_t star = Find(text, 1, cr, '*');
  if (star == cr || Find(text, 1, star, '\r') < star) return !m_checksumMandatory;
  const int given = 16 * HexDigit(text[star + 1]) + HexDigit(text[star + 2]);
  return int8_t(given) == int8_t(Xor(text + 1, star - 1));
}

uint8_t SentenceSplitter::Xor(const uint8_t* bytes, int32_t length) {
  uint64_t words = 0;
  int32_t at = 0;
  for (; at + 8 <= length; at += 8) {
    uint64_t word;
    std::memcpy(&word, bytes + at, 8);
    words ^= word;
  }
  words ^= words >> 32;
  words ^= words >> 16;
  words ^= words >> 8;
  uint8_t sum = uint8_t(words);
  for (; at < length; ++at) sum ^= bytes[at];
  return sum;
}

NmeaSentence* SentenceSplitter::GetSentence() const {
  int32_t length = int32_t(uint16_t(m_end - m_start) % kRingSize) - 2;
  if (length < 0) length = 0;
  auto* sentence = new NmeaSentence();
  const char* text = reinterpret_cast<const char*>(m_buffer + m_start % kRingSize);
  sentence->AdoptSentence(new String(text, length));
  return sentence;
}

}  // namespace kx
