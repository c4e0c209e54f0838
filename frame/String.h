// Counted, immutable 8-bit text. It turns into wide text and BSTR only at the border.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "frame/TextView.h"

namespace kx {

class String : public BaseObject {
 public:
  // The null text: an empty String made from nothing.
  String();
  // Up to three NUL-terminated texts in order; a null counts as empty. Always
  // allocates, so the text is never null.
  explicit String(const char* a, const char* b = nullptr, const char* c = nullptr);
  // Up to three Strings in order; a null counts as empty. Nothing is allocated when the
  // total is empty.
  explicit String(const String* a, const String* b = nullptr, const String* c = nullptr);
  // Exactly `length` bytes, NULs included. Null bytes or a length below 1: the null text.
  String(const char* bytes, int32_t length);
  // Wide text, each character cut to its low byte. Null: the null text.
  explicit String(const WCHAR* wide);
  String(const WCHAR* wide, int32_t length);
  // A name for the file system, from the caller's wide text: UTF-8, so that every
  // character reaches the system as the caller wrote it (other text is cut to 8 bits
  // above). Null: null.
  static String* FromWideName(const WCHAR* wide);
  // "%d"
  explicit String(int32_t value);
  // "%.<precision>f"; a negative precision is the "%f" form.
  String(double value, int32_t precision);
  // Angle text: format 0 is the display form "59 18'7.25 N", 1 the NMEA latitude
  // "5918.12083", 2 the NMEA longitude "01801.00000".
  String(int32_t degrees, int32_t minutes, double seconds, char hemisphere, int32_t format);
  ~String() override;

  int32_t GetLength() const { return m_length; }
  // The character as a signed 8-bit value; 0 outside the text.
  int8_t GetChar(int32_t index) const;
  // The buffer itself; null for the null text.
  const char* GetText() const { return m_text; }
  TextView View() const { return {m_text ? m_text : "", m_length}; }
  // A null String is absent.
  static TextView ViewOf(const String* text) { return text ? text->View() : TextView{}; }
  double ToDouble() const;
  int16_t ToShort() const;
  int32_t ToInt() const;

  // `count` characters from `start`, to the end when `count` is 0; an empty String
  // when that reaches beyond the text.
  String* Mid(int32_t start, int32_t count) const;
  // Case-insensitive comparison from `start` with `text`: all the rest when `count` is
  // 0, else the first `count` characters.
  bool EqualsAt(const char* text, int32_t count, int32_t start) const;
  // As above; false whenever either side is empty.
  bool EqualsAt(const String* text, int32_t count, int32_t start) const;
  // The last position at or before `start` (-1: the last possible) where `text` stands;
  // -1 if none.
  int32_t ReverseFind(const char* text, int32_t start) const;
  // At most size - 1 characters, terminated.
  void CopyTo(char* buffer, int32_t size) const;

  // The wide form, made on first use and kept by the String.
  BSTR GetBSTR();
  // Forgets the wide form: its ownership has passed to whoever took it.
  void DetachBSTR() { m_wide = nullptr; }

 private:
  void Assign(const char* bytes, int32_t length);
  void AssignWide(const WCHAR* wide, int32_t length);
  void AssignText(const char* text, int32_t bufferSize);
  bool EqualsBytes(const char* text, int32_t textLength, int32_t count, int32_t start) const;

  char* m_text = nullptr;
  BSTR m_wide = nullptr;
  int32_t m_length = 0;
};

}  // namespace kx
