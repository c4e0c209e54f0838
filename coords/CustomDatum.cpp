#include "coords/CustomDatum.h"

#include <cmath>

#include "coords/Constants.h"

namespace kx {

namespace {
double SecondsToRadians(double seconds) { return seconds * kPi / 648000; }
double RadiansToSeconds(double radians) { return radians * 648000 / kPi; }
}  // namespace

CustomDatum::CustomDatum(const CustomDatum& other)
    : BaseObject(),
      m_semiMajorAxis(other.m_semiMajorAxis),
      m_e2(other.m_e2),
      m_deltaX(other.m_deltaX),
      m_deltaY(other.m_deltaY),
      m_deltaZ(other.m_deltaZ),
      m_rotX(other.m_rotX),
      m_rotY(other.m_rotY),
      m_rotZ(other.m_rotZ),
      m_scaleFactor(other.m_scaleFactor) {}

double CustomDatum::GetSemiMajorAxis() { return ReadField(m_semiMajorAxis); }
void CustomDatum::SetSemiMajorAxis(double metres) { WriteField(m_semiMajorAxis, metres); }
double CustomDatum::GetE2() { return ReadField(m_e2); }
void CustomDatum::SetE2(double value) { WriteField(m_e2, std::fabs(value)); }
double CustomDatum::GetDeltaX() { return ReadField(m_deltaX); }
void CustomDatum::SetDeltaX(double metres) { WriteField(m_deltaX, metres); }
double CustomDatum::GetDeltaY() { return ReadField(m_deltaY); }
void CustomDatum::SetDeltaY(double metres) { WriteField(m_deltaY, metres); }
double CustomDatum::GetDeltaZ() { return ReadField(m_deltaZ); }
void CustomDatum::SetDeltaZ(double metres) { WriteField(m_deltaZ, metres); }
double CustomDatum::GetRotX() { return RadiansToSeconds(ReadField(m_rotX)); }
void CustomDatum::SetRotX(double seconds) { WriteField(m_rotX, SecondsToRadians(seconds)); }
double CustomDatum::GetRotY() { return RadiansToSeconds(ReadField(m_rotY)); }
void CustomDatum::SetRotY(double seconds) { WriteField(m_rotY, SecondsToRadians(seconds)); }
double CustomDatum::GetRotZ() { return RadiansToSeconds(ReadField(m_rotZ)); }
void CustomDatum::SetRotZ(double seconds) { WriteField(m_rotZ, SecondsToRadians(seconds)); }
double CustomDatum::GetScaleFactor() { return ReadField(m_scaleFactor); }
void CustomDatum::SetScaleFactor(double value) { WriteField(m_scaleFactor, value); }

bool CustomDatum::IsSame(const CustomDatum* other) const {
  return other && m_semiMajorAxis == other->m_semiMajorAxis && m_e2 == other->m_e2 &&
         m_deltaX == other->m_deltaX && m_deltaY == other->m_deltaY &&
         m_deltaZ == other->m_deltaZ && m_rotX == other->m_rotX && m_rotY == other->m_rotY &&
         m_rotZ == other->m_rotZ && m_scaleFactor == other->m_scaleFactor;
}

DatumRecord CustomDatum::Parameters() const {
  return {0, 0, m_deltaX, m_deltaY, m_deltaZ, m_rotX, m_rotY, m_rotZ, m_scaleFactor};
}

}  // namespace kx
