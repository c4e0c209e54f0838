// Speed over ground, heading and magnetic variation, from "RMC" or "VTG".
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "gps/NmeaSentence.h"

namespace kx {

class Movement : public BaseObject {
 public:
  Movement() = default;
  // "RMC" or "VTG"; other types leave the defaults.
  explicit Movement(NmeaSentence* sentence);

  // An unknown unit gives "Invalid parameter!" and 0.
  double GetSpeed(int32_t unit);
  double GetHeading() const { return m_heading; }
  double GetMagneticVariation() const { return m_magneticVariation; }
  bool GetValid() const { return m_valid; }

 private:
  double m_speed = 0;  // knots
  double m_heading = 0;
  double m_magneticVariation = 0;
  bool m_valid = false;
};

}  // namespace kx
