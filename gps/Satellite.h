// One satellite of a "GSV" cycle; its number is its ID.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class Satellite : public BaseObject {
 public:
  explicit Satellite(int32_t number) { SetID(number); }

  int16_t GetElevation() const { return m_elevation; }
  int16_t GetAzimuth() const { return m_azimuth; }
  int16_t GetSNR() const { return m_snr; }
  bool GetUsedForFix() const { return m_usedForFix; }

  void SetView(int16_t elevation, int16_t azimuth, int16_t snr) {
    m_elevation = elevation;
    m_azimuth = azimuth;
    m_snr = snr;
  }
  void SetUsedForFix(bool used) { m_usedForFix = used; }

 private:
  int16_t m_elevation = 0;
  int16_t m_azimuth = 0;
  int16_t m_snr = 0;
  bool m_usedForFix = false;
};

}  // namespace kx
