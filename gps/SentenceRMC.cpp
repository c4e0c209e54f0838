#include "gps/SentenceRMC.h"

#include <cmath>

#include "gps/SpeedUnit.h"
#include "gps/Velocity.h"

namespace kx {

SentenceRMC::~SentenceRMC() { Close(); }

void SentenceRMC::Close() {
  m_speed = 0;
  m_valid = false;
  m_course = 0;
  m_magneticVariation = 0;
  ReleaseObject(m_position);
  ReleaseObject(m_dateTime);
  DecodedSentence::Close();
}

// Fields are read whatever the status says.
void SentenceRMC::Parse(NmeaSentence* sentence, int16_t datum) {
  if (!Adopt(sentence, NmeaSentence::kRMC)) return;
  ParseMovement();
  m_position = PositionOf(3, 4, 5, 6, 0, 0, datum);
  m_dateTime = new DateTime(Field(9), Field(1));
}

void SentenceRMC::ParseMovement() {
  m_valid = FirstIs(2, 'A');
  m_speed = Number(7);
  m_course = Number(8);
  m_magneticVariation = FirstIs(11, 'W') ? -Number(10) : Number(10);
}

double SentenceRMC::GetSpeed(int32_t unit) const { return SpeedUnit::FromKnots(m_speed, unit); }

void SentenceRMC::SetSpeed(double speed, int32_t unit) {
  Change(m_speed, SpeedUnit::ToKnots(speed, unit));
}

void SentenceRMC::SetVelocity(double x, double y) {
  const Velocity v = Velocity::FromComponents(x, y);
  Change(m_speed, v.knots);
  Change(m_course, v.course);
}

void SentenceRMC::SetPosition(Position* position) {
  Ref<Position> copy(CopyOf(position));
  Replace(m_position, copy.get());
}

void SentenceRMC::Compose(NmeaSentence& s) {
  s.SetCommand(Ref<String>(new String("RMC")).get());
  Ref<DateTime> now(m_dateTime ? nullptr : DateTime::NowUtc());
  DateTime* when = m_dateTime ? m_dateTime : now.get();
  SetTimeField(s, 1, when);
  s.SetField(2, m_valid ? "A" : "V");
  SetPositionFields(s, 3, m_position);
  s.SetField(7, m_speed, 2);
  SetCourseField(s, 8, m_course);
  s.SetField(9, Ref<String>(when->ToText(1)).get());
  s.SetField(10, std::fabs(m_magneticVariation), 1);
  s.SetField(11, m_magneticVariation >= 0 ? "E" : "W");
}

}  // namespace kx
