// One NMEA 0183 sentence, held as text and as numbered fields, convertible both ways.
// Fields are parsed from the text on first use; the text is rebuilt, with a fresh
// checksum, after a field or the command has changed.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/BaseObject.h"
#include "frame/ObjectList.h"
#include "frame/String.h"

namespace kx {

class NmeaSentence : public BaseObject {
 public:
  enum Type : int32_t { kNone = 0, kRMC = 1, kGLL = 2, kGGA = 3, kGSV = 4, kGSA = 5, kVTG = 6 };

  NmeaSentence() = default;
  ~NmeaSentence() override;

  // Replaces everything; a null text or one shorter than 6 characters leaves the
  // sentence empty. Checksums aren't tested here.
  void SetSentence(const String* text);
  // The same, taking over the caller's reference to the text.
  void AdoptSentence(String* text);
  // The text, rebuilt first when a field or the command changed; null when there is none.
  String* GetSentence();
  int32_t GetFieldCount() const { return m_fieldCount; }
  // Field `index` from 1, with a reference; an empty String for a missing field up to the
  // field count (so for 0 and below too), null above it.
  String* GetField(int32_t index);
  // The field as GetField gives it, read in place: valid until the sentence changes.
  TextView PeekField(int32_t index);
  void SetField(int32_t index, const String* value);
  void SetField(int32_t index, const char* text);
  void SetField(int32_t index, int32_t value);
  void SetField(int32_t index, double value, int32_t decimals);
  // Three letters ("GGA") or five ("GPGGA"); the other form follows.
  void SetCommand(const String* command);
  String* GetCommand() const;
  String* GetFullCommand() const;
  int32_t GetType() const;
  void Close() override;

 private:
  struct Span {
    int32_t begin, length;
  };

  // Fields of a sentence read from text are kept as places in the text; most sentences
  // have fewer than this many, the rest go to the heap.
  static constexpr int32_t kInlineSpans = 24;

  void FindFields();
  void AddSpan(int32_t begin, int32_t length);
  const Span& SpanOf(int32_t number) const;
  void StoreField(int32_t index, String* field);
  // The fields read from the text become written ones, before the text is replaced.
  void TakeOverSpans();
  void ForgetSpans();
  void BuildText();

  String* m_text = nullptr;
  // Fields are read from the text through their places in it; those set
  // since are kept as Strings and take precedence.
  Span m_inlineSpans[kInlineSpans];
  std::vector<Span> m_moreSpans;
  int32_t m_spanCount = 0;         // fields still read from the text
  ObjectList* m_fields = nullptr;  // made when the first field is set
  int32_t m_fieldCount = 0;
  uint8_t m_dirty = 0;
  mutable String* m_command = nullptr;  // made from the text when first asked for
  mutable String* m_fullCommand = nullptr;
  // The text was set, so its characters 1 to 5 are the command until one is set; a text
  // built here holds only the command that the sentence had.
  bool m_commandInText = false;
};

}  // namespace kx
