#include "gps/SentenceGLL.h"

namespace kx {

SentenceGLL::~SentenceGLL() { Close(); }

void SentenceGLL::Close() {
  m_valid = false;
  ReleaseObject(m_position);
  ReleaseObject(m_time);
  DecodedSentence::Close();
}

void SentenceGLL::Parse(NmeaSentence* sentence, int16_t datum) {
  if (!Adopt(sentence, NmeaSentence::kGLL)) return;
  m_valid = FirstIs(6, 'A');
  m_position = PositionOf(1, 2, 3, 4, 0, 0, datum);
  m_time = new DateTime(Field(5));
}

void SentenceGLL::SetPosition(Position* position) {
  Ref<Position> copy(CopyOf(position));
  Replace(m_position, copy.get());
}

void SentenceGLL::Compose(NmeaSentence& s) {
  s.SetCommand(Ref<String>(new String("GLL")).get());
  SetPositionFields(s, 1, m_position);
  SetTimeField(s, 5, m_time);
  s.SetField(6, m_valid ? "A" : "V");
}

}  // namespace kx
