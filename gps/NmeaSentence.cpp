#include "gps/NmeaSentence.h"

#include <algorithm>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "frame/ErrorNumbers.h"
#include "frame/Ref.h"

namespace kx {

namespace {

constexpr const char* kNullCommand = "Null command not allowed";
constexpr const char* kCommandLength = "Command must be 3 or 5 characters long";
constexpr int32_t kShortestSentence = 6;
// The rebuilt text holds at most this many characters; a full one goes without checksum.
constexpr size_t kTextLimit = 255;

struct TypeName {
  const char* name;
  int32_t type;
};
constexpr TypeName kTypes[] = {{"RMC", NmeaSentence::kRMC}, {"GLL", NmeaSentence::kGLL},
                               {"GGA", NmeaSentence::kGGA}, {"GSV", NmeaSentence::kGSV},
                               {"GSA", NmeaSentence::kGSA}, {"VTG", NmeaSentence::kVTG}};

String* Shared(String* text) {
  if (text) text->AddRef();
  return text;
}

// Three characters against a name in capitals, without regard to case: clearing bit 5
// turns a small letter into its capital, and no other byte into a capital.
bool SameLetters(const char* text, const char* name) {
  for (int i = 0; i < 3; ++i)
    if ((text[i] & ~0x20) != name[i]) return false;
  return true;
}

// Appends what fits within the limit.
void Append(std::string& text, const char* bytes, size_t length) {
  if (text.size() >= kTextLimit) return;
  text.append(bytes, std::min(length, kTextLimit - text.size()));
}

}  // namespace

NmeaSentence::~NmeaSentence() { Close(); }

void NmeaSentence::Close() {
  ReleaseObject(m_text);
  ReleaseObject(m_command);
  ReleaseObject(m_fullCommand);
  ReleaseObject(m_fields);
  ForgetSpans();
  m_fieldCount = 0;
  m_dirty = 0;
  m_commandInText = false;
}

void NmeaSentence::SetSentence(const String* text) {
  AdoptSentence(Shared(const_cast<String*>(text)));
}

void NmeaSentence::AdoptSentence(String* text) {
  Close();
  if (text && text->GetLength() < kShortestSentence) ReleaseObject(text);
  if (!text) return;
  m_text = text;
  m_commandInText = true;
  FindFields();
}

// Each field begins behind a comma and ends before the next ",", "*" or the end; empty
// fields stay, as empty ones. One pass finds them all, and so counts them; sixteen
// bytes at a time where the processor can compare them at once.
void NmeaSentence::FindFields() {
  const char* bytes = m_text->GetText();
  const int32_t length = m_text->GetLength();
  int32_t begin = -1;  // of the field in progress; none before the first comma
  int32_t star = -1;   // the first "*" of the field in progress
  auto mark = [&](int32_t at, bool comma) {
    if (comma) {
      if (begin >= 0) AddSpan(begin, (star >= 0 ? star : at) - begin);
      begin = at + 1;
      star = -1;
    } else if (star < 0) {
      star = at;
    }
  };
  int32_t at = 0;
#if defined(__SSE2__)
  const __m128i commas = _mm_set1_epi8(','), stars = _mm_set1_epi8('*');
  for (; at + 16 <= length; at += 16) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + at));
    const unsigned comma = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(chunk, commas)));
    unsigned marks = comma | unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(chunk, stars)));
    for (; marks; marks &= marks - 1) {
      const int bit = __builtin_ctz(marks);
      mark(at + bit, (comma >> bit) & 1);
    }
  }
#endif
  for (; at < length; ++at)
    if (bytes[at] == ',' || bytes[at] == '*') mark(at, bytes[at] == ',');
  if (begin >= 0) AddSpan(begin, (star >= 0 ? star : length) - begin);
}

void NmeaSentence::AddSpan(int32_t begin, int32_t length) {
  if (begin >= m_text->GetLength()) begin = length = 0;
  if (m_fieldCount < kInlineSpans) {
    // Member by member: a whole Span built first and copied would be read back before
    // its two halves have been written.
    Span& span = m_inlineSpans[m_fieldCount];
    span.begin = begin;
    span.length = length;
  } else {
    m_moreSpans.push_back(Span{begin, length});
  }
  m_spanCount = ++m_fieldCount;
}

const NmeaSentence::Span& NmeaSentence::SpanOf(int32_t number) const {
  return number <= kInlineSpans ? m_inlineSpans[number - 1]
                                : m_moreSpans[size_t(number - kInlineSpans - 1)];
}

void NmeaSentence::TakeOverSpans() {
  for (int32_t number = 1; number <= m_spanCount; ++number) {
    if (m_fields && m_fields->ContainsID(number)) continue;
    const Span& span = SpanOf(number);
    StoreField(number, new String(m_text->GetText() + span.begin, span.length));
  }
  ForgetSpans();
}

void NmeaSentence::ForgetSpans() {
  m_spanCount = 0;
  m_moreSpans.clear();
}

// Takes over the caller's reference.
void NmeaSentence::StoreField(int32_t index, String* field) {
  Ref<String> owned(field);
  owned->SetID(index);
  if (!m_fields) m_fields = new ObjectList();
  m_fields->Add(owned.get());
}

String* NmeaSentence::GetField(int32_t index) {
  if (m_fields)
    if (String* field = static_cast<String*>(m_fields->FindByID(index))) return field;
  if (index >= 1 && index <= m_spanCount) {
    const Span& span = SpanOf(index);
    return new String(m_text->GetText() + span.begin, span.length);
  }
  return index <= m_fieldCount ? new String() : nullptr;
}

TextView NmeaSentence::PeekField(int32_t index) {
  if (m_fields)
    if (Ref<String> field{static_cast<String*>(m_fields->FindByID(index))}) return field->View();
  if (index >= 1 && index <= m_spanCount) {
    const Span& span = SpanOf(index);
    return {m_text->GetText() + span.begin, span.length};
  }
  return index <= m_fieldCount ? TextView{"", 0} : TextView{};
}

void NmeaSentence::SetField(int32_t index, const String* value) {
  if (m_fields) m_fields->RemoveByID(index);
  StoreField(index, new String(value));
  if (index > m_fieldCount) m_fieldCount = index;
  m_dirty = 1;
}

void NmeaSentence::SetField(int32_t index, const char* text) {
  SetField(index, Ref<String>(new String(text)).get());
}

void NmeaSentence::SetField(int32_t index, int32_t value) {
  SetField(index, Ref<String>(new String(value)).get());
}

void NmeaSentence::SetField(int32_t index, double value, int32_t decimals) {
  SetField(index, Ref<String>(new String(value, decimals)).get());
}

void NmeaSentence::SetCommand(const String* command) {
  ClearError();
  if (!command) {
    SetError(kErrInvalidArgument, kNullCommand);
    return;
  }
  if (command->GetLength() == 3) {
    ReleaseObject(m_command);
    ReleaseObject(m_fullCommand);
    m_command = new String(command);
    m_fullCommand = new String("GP", command->GetText());
  } else if (command->GetLength() == 5) {
    ReleaseObject(m_command);
    ReleaseObject(m_fullCommand);
    m_fullCommand = new String(command);
    m_command = command->Mid(2, 3);
  } else {
    SetError(kErrInvalidArgument, kCommandLength);
    return;
  }
  m_dirty = 1;
}

String* NmeaSentence::GetCommand() const {
  if (!m_command && m_commandInText) m_command = m_text->Mid(3, 3);
  return Shared(m_command);
}

String* NmeaSentence::GetFullCommand() const {
  if (!m_fullCommand && m_commandInText) m_fullCommand = m_text->Mid(1, 5);
  return Shared(m_fullCommand);
}

// The command is characters 3 to 5 of a text that was set until one is set; either way
// it has three characters. Receivers and applications write it in either case.
int32_t NmeaSentence::GetType() const {
  const char* command = m_command         ? m_command->GetText()
                        : m_commandInText ? m_text->GetText() + 3
                                          : nullptr;
  if (!command) return kNone;
  for (const TypeName& t : kTypes)
    if (SameLetters(command, t.name)) return t.type;
  return kNone;
}

String* NmeaSentence::GetSentence() {
  if (m_dirty) BuildText();
  return Shared(m_text);
}

// "$", the full command, "," and each field, then "*hh" with the exclusive or of
// everything behind the "$", when it still fits.
void NmeaSentence::BuildText() {
  TakeOverSpans();
  std::string text = "$";
  Ref<String> command(GetFullCommand());
  Ref<String> shortCommand(GetCommand());  // both forms outlive the text they came from
  m_commandInText = false;
  if (command && command->GetLength() > 0)
    Append(text, command->GetText(), size_t(command->GetLength()));
  for (int32_t number = 1; number <= m_fieldCount; ++number) {
    Append(text, ",", 1);
    Ref<String> field(GetField(number));
    if (field->GetLength() > 0) Append(text, field->GetText(), size_t(field->GetLength()));
  }
  uint8_t checksum = 0;
  for (size_t i = 1; i < text.size(); ++i) checksum ^= uint8_t(text[i]);
  if (text.size() + 2 < kTextLimit) {
    static const char kHex[] = "0123456789ABCDEF";
    const char tail[3] = {'*', kHex[checksum >> 4], kHex[checksum & 15]};
    text.append(tail, 3);
  }
  ReleaseObject(m_text);
  m_text = new String(text.c_str(), int32_t(text.size()));
  m_dirty = 0;
}

}  // namespace kx
