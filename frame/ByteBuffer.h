// A block of bytes with its length.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class ByteBuffer : public BaseObject {
 public:
  // A private copy; null bytes or a length below 1 give an empty buffer.
  ByteBuffer(const uint8_t* bytes, int32_t length);
  // Uninitialised storage, when the length is at least 1.
  explicit ByteBuffer(int32_t length);
  ~ByteBuffer() override;

  uint8_t* GetData() const { return m_data; }
  int32_t GetLength() const { return m_length; }

 private:
  uint8_t* m_data = nullptr;
  int32_t m_length = 0;
};

}  // namespace kx
