// The state of the source: the port and its speed, and whether sentences and fixes are
// coming in.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class ComStatus : public BaseObject {
 public:
  ComStatus() = default;
  // The engine hands out copies of its own, which it goes on writing.
  explicit ComStatus(const ComStatus& other);

  void Close() override;

  int32_t GetBaudRate() const { return m_baudRate; }
  int16_t GetComPort() const { return m_port; }  // -1: the multiplexer's link
  bool GetValidFix() const { return m_validFix; }
  bool GetValidNmea() const { return m_validNmea; }
  void SetBaudRate(int32_t baudRate) { m_baudRate = baudRate; }
  void SetComPort(int16_t port) { m_port = port; }
  void SetValidFix(bool valid) { m_validFix = valid; }
  void SetValidNmea(bool valid) { m_validNmea = valid; }

 private:
  int32_t m_baudRate = 0;
  int16_t m_port = 0;
  bool m_validFix = false;
  bool m_validNmea = false;
};

}  // namespace kx
