#include "frame/ByteBuffer.h"

#include <cstring>

namespace kx {

ByteBuffer::ByteBuffer(const uint8_t* bytes, int32_t length) {
  if (!bytes || length < 1) return;
  m_data = new uint8_t[size_t(length)];
  std::memcpy(m_data, bytes, size_t(length));
  m_length = length;
}

ByteBuffer::ByteBuffer(int32_t length) {
  if (length < 1) return;
  m_data = new uint8_t[size_t(length)];
  m_length = length;
}

ByteBuffer::~ByteBuffer() { delete[] m_data; }

}  // namespace kx
