// A small tagged holder: nothing, a text, an integer or a block of bytes.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "frame/ByteBuffer.h"
#include "frame/String.h"

namespace kx {

class Value : public BaseObject {
 public:
  enum Type : int32_t { kEmpty = 0, kText = 1, kInteger = 2, kBinary = 4 };

  Value() = default;
  explicit Value(String* text);  // shares the String
  explicit Value(const char* text);
  explicit Value(int32_t integer);
  explicit Value(ByteBuffer* binary);  // shares the buffer
  ~Value() override;

  void Close() override;
  int32_t GetType() const { return m_type; }
  // The objects with a reference for the caller; null when there is none.
  String* GetString() const;
  int32_t GetInteger() const { return m_integer; }
  ByteBuffer* GetBinary() const;
  void SetString(String* text);
  void SetInteger(int32_t integer);
  void SetBinary(ByteBuffer* binary);

 private:
  int32_t m_type = kEmpty;
  String* m_string = nullptr;
  int32_t m_integer = 0;
  ByteBuffer* m_binary = nullptr;
};

}  // namespace kx
