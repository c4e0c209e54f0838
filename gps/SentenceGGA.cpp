#include "gps/SentenceGGA.h"

namespace kx {

SentenceGGA::~SentenceGGA() { Close(); }

void SentenceGGA::Close() {
  m_valid = false;
  m_satellites = 0;
  m_hdop = 0;
  ReleaseObject(m_position);
  ReleaseObject(m_time);
  DecodedSentence::Close();
}

// An empty quality field has no first character and so counts as valid.
void SentenceGGA::Parse(NmeaSentence* sentence, int16_t datum) {
  if (!Adopt(sentence, NmeaSentence::kGGA)) return;
  m_valid = !FirstIs(6, '0');
  m_satellites = static_cast<int16_t>(Integer(7));
  m_hdop = Number(8);
  m_position = PositionOf(2, 3, 4, 5, 9, 11, datum);
  m_time = new DateTime(Field(1));
}

void SentenceGGA::SetPosition(Position* position) {
  Ref<Position> copy(CopyOf(position));
  Replace(m_position, copy.get());
}

void SentenceGGA::Compose(NmeaSentence& s) {
  s.SetCommand(Ref<String>(new String("GGA")).get());
  SetTimeField(s, 1, m_time);
  SetPositionFields(s, 2, m_position);
  s.SetField(6, m_valid ? "1" : "0");
  s.SetField(7, int32_t(m_satellites));
  s.SetField(8, m_hdop, 1);
  const double seaLevel = m_position ? m_position->GetAltitude(0) : 0;
  const double separation = m_position ? m_position->GetAltitude(1) - seaLevel : 0;
  s.SetField(9, seaLevel, 1);
  s.SetField(10, "M");
  s.SetField(11, separation, 1);
  s.SetField(12, "M");
  s.SetField(13, "");
  s.SetField(14, "");
}

}  // namespace kx
