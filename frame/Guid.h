// Unique names in the usual 8-4-4-16 hexadecimal form, made from the time, the tick
// count and random numbers.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "frame/String.h"

namespace kx {

class Guid : public BaseObject {
 public:
  ~Guid() override;

  void Create();
  // The text of the last Create with a reference for the caller; null before the first.
  String* GetText() const;
  void Close() override;

 private:
  String* m_text = nullptr;
  uint32_t m_timeLow = 0;
  uint16_t m_timeMid = 0;
  uint16_t m_timeHighAndVersion = 0;
  uint8_t m_bytes[8] = {};
};

}  // namespace kx
