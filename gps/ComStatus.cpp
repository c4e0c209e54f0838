#include "gps/ComStatus.h"

namespace kx {

ComStatus::ComStatus(const ComStatus& other)
    : BaseObject(),
      m_baudRate(other.m_baudRate),
      m_port(other.m_port),
      m_validFix(other.m_validFix),
      m_validNmea(other.m_validNmea) {}

void ComStatus::Close() {
  m_baudRate = 0;
  m_port = 0;
  m_validFix = false;
  m_validNmea = false;
}

}  // namespace kx
