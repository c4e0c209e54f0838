// The satellites of one "GSV" cycle, in order of first mention, with those a "GSA" named
// as used for the fix.
#pragma once

#include <cstdint>

#include "frame/ObjectList.h"
#include "gps/NmeaSentence.h"
#include "gps/Satellite.h"

namespace kx {

class Satellites : public BaseObject {
 public:
  //   $GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00*74
  //          total, number, in view, then number, elevation, azimuth, SNR by four
  // True when the last message of a complete cycle has arrived. A cycle that starts in
  // the middle or loses a message is thrown away whole.
  bool Update(NmeaSentence* sentence);
  void Close() override;

  int32_t GetCount() const { return m_members.GetCount(); }
  // From 1, with a reference; "Index out of bounds" and null outside.
  Satellite* Item(int32_t position);

 private:
  bool FromGSV(NmeaSentence& sentence);
  void FromGSA(NmeaSentence& sentence);
  Satellite* MemberOrNew(int32_t number, bool& isNew);

  ObjectList m_members;
  int32_t m_expected = 1;
};

}  // namespace kx
