#include "gps/Movement.h"

#include "frame/ErrorNumbers.h"
#include "gps/SentenceRMC.h"
#include "gps/SentenceVTG.h"
#include "gps/SpeedUnit.h"

namespace kx {

namespace {
template <class Decoded>
void TakeMovement(const Decoded& decoded, double& speed, double& heading, double& variation, bool& valid) {
  speed = decoded.GetSpeed(SpeedUnit::kKnots);
  heading = decoded.GetCourse();
  variation = decoded.GetMagneticVariation();
  valid = decoded.GetValid();
}
}  // namespace

Movement::Movement(NmeaSentence* sentence) {
  const int32_t type = sentence ? sentence->GetType() : NmeaSentence::kNone;
  if (type == NmeaSentence::kRMC)
    TakeMovement(SentenceRMC(sentence, SentenceRMC::MovementOnly{}), m_speed, m_heading, m_magneticVariation, m_valid);
  else if (type == NmeaSentence::kVTG)
    TakeMovement(SentenceVTG(sentence), m_speed, m_heading, m_magneticVariation, m_valid);
}

double Movement::GetSpeed(int32_t unit) {
  ClearError();
  if (!SpeedUnit::IsKnown(unit)) {
    SetError(kErrInvalidArgument, text::kInvalidParameter);
    return 0;
  }
  return SpeedUnit::FromKnots(m_speed, unit);
}

}  // namespace kx
