// A fixed circular byte queue. The two counters only grow; their difference is what the
// queue holds, and each one's place in the storage is the counter modulo the capacity.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class RingBuffer : public BaseObject {
 public:
  explicit RingBuffer(uint32_t capacity);
  ~RingBuffer() override;

  void Close() override;
  uint32_t GetCount() const { return m_write - m_read; }
  uint32_t GetFree() const { return m_capacity - GetCount(); }
  uint32_t GetCapacity() const { return m_capacity; }
  // As many bytes as fit, without overwriting; returns the number copied.
  uint32_t Write(const uint8_t* bytes, uint32_t length);
  // Up to `length` bytes; an emptied queue starts again from 0.
  uint32_t Read(uint8_t* bytes, uint32_t length);

 private:
  uint8_t* m_storage;
  uint32_t m_read = 0;
  uint32_t m_write = 0;
  uint32_t m_capacity;
};

}  // namespace kx
