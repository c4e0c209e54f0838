// One fix: its type, position and date and time. Made by the engine from one sentence
// and never changed after.
#pragma once

#include <cstdint>

#include "coords/Position.h"
#include "frame/BaseObject.h"
#include "frame/DateTime.h"
#include "gps/NmeaSentence.h"

namespace kx {

class GpsFix : public BaseObject {
 public:
  enum FixType : int32_t { kNoFix = 0, kFix2D = 2, kFix3D = 3 };

  GpsFix() = default;
  // From "RMC", "GLL" or "GGA", with the engine's memories: the position of the last
  // "GGA" and the last date and time (each may be null). Other types give no fix.
  GpsFix(NmeaSentence* sentence, int16_t datum, Position* lastGgaPosition, DateTime* lastDateTime);
  ~GpsFix() override;

  int32_t GetFixType() const { return m_fixType; }
  // The fix's own, with a reference; the copy is the caller's to change.
  Position* GetPosition() const;
  Position* GetPositionCopy() const { return m_position ? m_position->Copy() : nullptr; }
  DateTime* GetDateTime() const;

 private:
  void FromRMC(NmeaSentence* sentence, int16_t datum, Position* lastGgaPosition);
  void FromGLL(NmeaSentence* sentence, int16_t datum, Position* lastGgaPosition,
               DateTime* lastDateTime);
  void FromGGA(NmeaSentence* sentence, int16_t datum, DateTime* lastDateTime);
  // A valid "RMC" or "GLL": three dimensions with the altitudes of the last "GGA".
  void TakeAltitudes(Position* lastGgaPosition);

  int32_t m_fixType = kNoFix;
  Position* m_position = nullptr;
  DateTime* m_dateTime = nullptr;
};

}  // namespace kx
