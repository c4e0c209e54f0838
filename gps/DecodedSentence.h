// What the four sentence classes share: the sentence they read or built, the dirty flag
// that says whether it still matches their values, and the field helpers.
#pragma once

#include <cstdint>

#include "coords/Position.h"
#include "frame/BaseObject.h"
#include "frame/DateTime.h"
#include "frame/Ref.h"
#include "gps/NmeaSentence.h"

namespace kx {

class DecodedSentence : public BaseObject {
 public:
  ~DecodedSentence() override;
  // The kept sentence while nothing changed since it was read or built; else a new one
  // composed from the values. With a reference for the caller.
  NmeaSentence* ToSentence();
  void Close() override;

 protected:
  // A sentence of the right type is kept, after the object was emptied; any other
  // (or none) leaves the object as it is. Returns whether it was taken.
  bool Adopt(NmeaSentence* sentence, int32_t type);
  virtual void Compose(NmeaSentence& sentence) = 0;
  // Stores a value and marks the object dirty only when it really changes.
  template <class T>
  void Change(T& field, const T& value) {
    if (field == value) return;
    field = value;
    m_dirty = 1;
  }
  // Shares a new object in place of the old one; a change whenever the object differs.
  template <class T>
  void Replace(T*& field, T* value) {
    if (field == value) return;
    if (value) value->AddRef();
    ReleaseObject(field);
    field = value;
    m_dirty = 1;
  }

  // A field of the kept sentence, read in place; index 0 is absent.
  TextView Field(int32_t index) const { return index ? m_sentence->PeekField(index) : TextView{}; }
  bool FirstIs(int32_t index, char letter) const;
  double Number(int32_t index) const;
  int32_t Integer(int32_t index) const;
  // The object with one more reference, for a getter.
  template <class T>
  static T* Share(T* object) {
    if (object) object->AddRef();
    return object;
  }
  // The object with the decoder's own reference, which forgets it: for a caller that
  // keeps the value and lets the decoder go.
  template <class T>
  T* Take(T*& field) {
    T* object = field;
    field = nullptr;
    m_dirty = 1;
    return object;
  }
  // The NMEA position constructor with these fields (0 for none).
  Position* PositionOf(int32_t latitude, int32_t latitudeHemisphere, int32_t longitude,
                       int32_t longitudeHemisphere, int32_t altitude, int32_t separation,
                       int16_t datum) const;

  // Composing: latitude, hemisphere, longitude, hemisphere from `first` on.
  static void SetPositionFields(NmeaSentence& sentence, int32_t first, Position* position);
  // A course that would round to 360.0 goes out as 0.0.
  static void SetCourseField(NmeaSentence& sentence, int32_t index, double course);
  // The time of day, or the device's present time when there is none.
  static void SetTimeField(NmeaSentence& sentence, int32_t index, DateTime* time);

  NmeaSentence* m_sentence = nullptr;
  uint8_t m_dirty = 1;
};

// A copy for the caller: `Position` getters come in this form and as the object itself.
Position* CopyOf(Position* position);

}  // namespace kx
