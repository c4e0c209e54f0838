#include "gps/DecodedSentence.h"

namespace kx {

DecodedSentence::~DecodedSentence() { ReleaseObject(m_sentence); }

void DecodedSentence::Close() {
  ReleaseObject(m_sentence);
  m_dirty = 1;
}

bool DecodedSentence::Adopt(NmeaSentence* sentence, int32_t type) {
  if (!sentence || sentence->GetType() != type) return false;
  Close();
  sentence->AddRef();
  m_sentence = sentence;
  m_dirty = 0;
  return true;
}

NmeaSentence* DecodedSentence::ToSentence() {
  if (m_dirty || !m_sentence) {
    Ref<NmeaSentence> built(new NmeaSentence());
    Compose(*built);
    ReleaseObject(m_sentence);
    m_sentence = built.Detach();
    m_dirty = 0;
  }
  m_sentence->AddRef();
  return m_sentence;
}

bool DecodedSentence::FirstIs(int32_t index, char letter) const {
  return Field(index).StartsWith(letter);
}

double DecodedSentence::Number(int32_t index) const { return Field(index).ToDouble(); }

int32_t DecodedSentence::Integer(int32_t index) const { return Field(index).ToInt(); }

Position* DecodedSentence::PositionOf(int32_t latitude, int32_t latitudeHemisphere,
                                      int32_t longitude, int32_t longitudeHemisphere,
                                      int32_t altitude, int32_t separation, int16_t datum) const {
  return new Position(Field(latitude), Field(longitude), Field(latitudeHemisphere),
                      Field(longitudeHemisphere), Field(altitude), Field(separation), datum);
}

void DecodedSentence::SetPositionFields(NmeaSentence& sentence, int32_t first, Position* position) {
  if (!position) {
    sentence.SetField(first, "0000.00000");
    sentence.SetField(first + 1, "N");
    sentence.SetField(first + 2, "00000.00000");
    sentence.SetField(first + 3, "E");
    return;
  }
  sentence.SetField(first, Ref<String>(position->GetLatitudeString(1)).get());
  sentence.SetField(first + 1, position->GetLatitudeRads() >= 0 ? "N" : "S");
  sentence.SetField(first + 2, Ref<String>(position->GetLongitudeString(1)).get());
  sentence.SetField(first + 3, position->GetLongitudeRads() >= 0 ? "E" : "W");
}

void DecodedSentence::SetCourseField(NmeaSentence& sentence, int32_t index, double course) {
  sentence.SetField(index, course >= 359.95 ? 0.0 : course, 1);
}

void DecodedSentence::SetTimeField(NmeaSentence& sentence, int32_t index, DateTime* time) {
  Ref<DateTime> now(time ? nullptr : DateTime::NowUtc());
  sentence.SetField(index, Ref<String>((time ? time : now.get())->ToText(0)).get());
}

Position* CopyOf(Position* position) { return position ? position->Copy() : nullptr; }

}  // namespace kx
