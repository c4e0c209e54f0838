#include "gps/SentenceVTG.h"

#include "gps/SpeedUnit.h"
#include "gps/Velocity.h"

namespace kx {

SentenceVTG::~SentenceVTG() { Close(); }

void SentenceVTG::Close() {
  m_speed = 0;
  m_course = 0;
  m_magneticVariation = 0;
  m_valid = false;
  DecodedSentence::Close();
}

// The magnetic course, when given and not 0.0, makes the variation.
void SentenceVTG::Parse(NmeaSentence* sentence) {
  if (!Adopt(sentence, NmeaSentence::kVTG)) return;
  m_course = Number(1);
  m_valid = FirstIs(2, 'T');
  const double magnetic = Number(3);
  if (magnetic != 0.0) m_magneticVariation = m_course - magnetic;
  m_speed = Number(5);
}

double SentenceVTG::GetSpeed(int32_t unit) const { return SpeedUnit::FromKnots(m_speed, unit); }

void SentenceVTG::SetSpeed(double speed, int32_t unit) {
  Change(m_speed, SpeedUnit::ToKnots(speed, unit));
}

void SentenceVTG::SetVelocity(double x, double y) {
  const Velocity v = Velocity::FromComponents(x, y);
  Change(m_speed, v.knots);
  Change(m_course, v.course);
}

void SentenceVTG::Compose(NmeaSentence& s) {
  s.SetCommand(Ref<String>(new String("VTG")).get());
  SetCourseField(s, 1, m_course);
  s.SetField(2, "T");
  s.SetField(3, m_course - m_magneticVariation, 1);
  s.SetField(4, "M");
  s.SetField(5, m_speed, 2);
  s.SetField(6, "N");
  s.SetField(7, SpeedUnit::FromKnots(m_speed, SpeedUnit::kKilometresPerHour), 2);
  s.SetField(8, "K");
}

}  // namespace kx
