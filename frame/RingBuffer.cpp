#include "frame/RingBuffer.h"

#include <algorithm>
#include <cstring>

namespace kx {

RingBuffer::RingBuffer(uint32_t capacity)
    : m_storage(new uint8_t[capacity ? capacity : 1]), m_capacity(capacity) {}

RingBuffer::~RingBuffer() { delete[] m_storage; }

void RingBuffer::Close() {
  m_read = 0;
  m_write = 0;
}

// Both copies go in at most two pieces: up to the end of the storage, then from its start.
uint32_t RingBuffer::Write(const uint8_t* bytes, uint32_t length) {
  if (!bytes || m_capacity == 0) return 0;
  const uint32_t count = std::min(length, GetFree());
  const uint32_t at = m_write % m_capacity;
  const uint32_t first = std::min(count, m_capacity - at);
  std::memcpy(m_storage + at, bytes, first);
  std::memcpy(m_storage, bytes + first, count - first);
  m_write += count;
  return count;
}

uint32_t RingBuffer::Read(uint8_t* bytes, uint32_t length) {
  if (!bytes || m_capacity == 0) return 0;
  const uint32_t count = std::min(length, GetCount());
  const uint32_t at = m_read % m_capacity;
  const uint32_t first = std::min(count, m_capacity - at);
  std::memcpy(bytes, m_storage + at, first);
  std::memcpy(bytes + first, m_storage, count - first);
  m_read += count;
  if (GetCount() == 0) Close();
  return count;
}

}  // namespace kx
