// The dilutions of precision of a "GSA".
#pragma once

#include "frame/BaseObject.h"
#include "gps/NmeaSentence.h"

namespace kx {

class Quality : public BaseObject {
 public:
  Quality() = default;
  //   $GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39
  //          mode and 12 satellites          PDOP HDOP VDOP
  explicit Quality(NmeaSentence* sentence);

  double GetHDOP() const { return m_hdop; }
  double GetVDOP() const { return m_vdop; }
  double GetPDOP() const { return m_pdop; }

 private:
  double m_hdop = 0;
  double m_vdop = 0;
  double m_pdop = 0;
};

}  // namespace kx
