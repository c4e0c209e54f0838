#include "gps/NmeaSentence.h"

#include <algorithm>
#include <string>

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
  m_fields.RemoveAll();
  m_spans.clear();
  m_fieldCount = 0;
  m_dirty = 0;
  m_parsed = 1;
}

void NmeaSentence::SetSentence(const String* text) {
  Close();
  if (!text || text->GetLength() < kShortestSentence) return;
  m_text = Shared(const_cast<String*>(text));
  const char* bytes = text->GetText();
  for (int32_t i = 0; i < text->GetLength(); ++i)
    if (bytes[i] == ',') ++m_fieldCount;
  m_parsed = 0;
}

// Each field begins behind a comma and ends before the next ",", "*" or the end; empty
// fields stay, as empty ones.
void NmeaSentence::ParseFields() {
  if (m_parsed) return;
  m_parsed = 1;
  const char* bytes = m_text->GetText();
  const int32_t length = m_text->GetLength();
  m_spans.reserve(size_t(m_fieldCount));
  int32_t at = 0;
  for (int32_t number = 1; number <= m_fieldCount; ++number) {
    while (at < length && bytes[at] != ',') ++at;
    const int32_t begin = ++at;
    while (at < length && bytes[at] != ',' && bytes[at] != '*') ++at;
    m_spans.push_back(begin < length ? Span{begin, at - begin} : Span{0, 0});
  }
}

void NmeaSentence::TakeOverSpans() {
  for (size_t i = 0; i < m_spans.size(); ++i) {
    const int32_t number = int32_t(i) + 1;
    if (m_fields.ContainsID(number)) continue;
    const Span& span = m_spans[i];
    StoreField(number, new String(m_text->GetText() + span.begin, span.length));
  }
  m_spans.clear();
}

// Takes over the caller's reference.
void NmeaSentence::StoreField(int32_t index, String* field) {
  Ref<String> owned(field);
  owned->SetID(index);
  m_fields.Add(owned.get());
}

String* NmeaSentence::GetField(int32_t index) {
  ParseFields();
  if (m_fields.GetCount() > 0)
    if (String* field = static_cast<String*>(m_fields.FindByID(index))) return field;
  if (index >= 1 && size_t(index) <= m_spans.size()) {
    const Span& span = m_spans[size_t(index) - 1];
    return new String(m_text->GetText() + span.begin, span.length);
  }
  return index <= m_fieldCount ? new String() : nullptr;
}

TextView NmeaSentence::PeekField(int32_t index) {
  ParseFields();
  if (m_fields.GetCount() > 0)
    if (Ref<String> field{static_cast<String*>(m_fields.FindByID(index))}) return field->View();
  if (index >= 1 && size_t(index) <= m_spans.size()) {
    const Span& span = m_spans[size_t(index) - 1];
    return {m_text->GetText() + span.begin, span.length};
  }
  return index <= m_fieldCount ? TextView{"", 0} : TextView{};
}

void NmeaSentence::SetField(int32_t index, const String* value) {
  ParseFields();
  m_fields.RemoveByID(index);
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
  ParseFields();
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
  if (!m_command && m_text) m_command = m_text->Mid(3, 3);
  return Shared(m_command);
}

String* NmeaSentence::GetFullCommand() const {
  if (!m_fullCommand && m_text) m_fullCommand = m_text->Mid(1, 5);
  return Shared(m_fullCommand);
}

// The command is characters 3 to 5 of the text until one is set.
int32_t NmeaSentence::GetType() const {
  if (!m_command && !m_text) return kNone;
  for (const TypeName& t : kTypes) {
    const bool same =
        m_command ? m_command->EqualsAt(t.name, 0, 0) : m_text->EqualsAt(t.name, 3, 3);
    if (same) return t.type;
  }
  return kNone;
}

String* NmeaSentence::GetSentence() {
  if (m_dirty) BuildText();
  return Shared(m_text);
}

// "$", the full command, "," and each field, then "*hh" with the exclusive or of
// everything behind the "$", when it still fits.
void NmeaSentence::BuildText() {
  ParseFields();
  TakeOverSpans();
  std::string text = "$";
  Ref<String> command(GetFullCommand());
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
