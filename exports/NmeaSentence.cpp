// NmeaSentence_*: one NMEA 0183 sentence as text and as fields.
#include "gps/NmeaSentence.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
NmeaSentence* Of(KxNmeaSentence handle) { return ObjectOf<NmeaSentence>(handle); }

// A text the sentence doesn't have goes out as an empty text, never as nothing.
void HandOutOrEmpty(String* text, BSTR* out) { HandOut(text ? text : new String(""), out); }
}  // namespace

extern "C" {

KX_API KxNmeaSentence NmeaSentence_New(void) {
  return HandleOf<KxNmeaSentence>(NewObject<NmeaSentence>());
}
KX_API void NmeaSentence_Delete(KxNmeaSentence sentence) { DeleteObject(Of(sentence)); }
KX_API KxError NmeaSentence_GetErrHandle(KxNmeaSentence sentence) {
  return ErrorHandleOf(Of(sentence));
}

KX_API void NmeaSentence_SetSentence(KxNmeaSentence sentence, const WCHAR* text) {
  NmeaSentence* self = Of(sentence);
  Guarded(self, [&] { self->SetSentence(TextIn(text).get()); });
}
KX_API void NmeaSentence_GetSentence(KxNmeaSentence sentence, BSTR* text) {
  NmeaSentence* self = Of(sentence);
  Guarded(self, [&] { HandOutOrEmpty(self->GetSentence(), text); });
}
KX_API short NmeaSentence_GetFieldCount(KxNmeaSentence sentence) {
  NmeaSentence* self = Of(sentence);
  return Guarded(self, [&] { return short(self->GetFieldCount()); });
}
KX_API void NmeaSentence_Fields(KxNmeaSentence sentence, short index, BSTR* text) {
  NmeaSentence* self = Of(sentence);
  Guarded(self, [&] { HandOutOrEmpty(self->GetField(index), text); });
}
KX_API void NmeaSentence_SetField(KxNmeaSentence sentence, short index, const WCHAR* text) {
  NmeaSentence* self = Of(sentence);
  Guarded(self, [&] { self->SetField(index, TextIn(text).get()); });
}
KX_API void NmeaSentence_GetCommand(KxNmeaSentence sentence, BSTR* text) {
  NmeaSentence* self = Of(sentence);
  Guarded(self, [&] { HandOutOrEmpty(self->GetCommand(), text); });
}
KX_API void NmeaSentence_GetFullCommand(KxNmeaSentence sentence, BSTR* text) {
  NmeaSentence* self = Of(sentence);
  Guarded(self, [&] { HandOutOrEmpty(self->GetFullCommand(), text); });
}
KX_API void NmeaSentence_SetCommand(KxNmeaSentence sentence, const WCHAR* command) {
  NmeaSentence* self = Of(sentence);
  Guarded(self, [&] { self->SetCommand(TextIn(command).get()); });
}
KX_API void NmeaSentence_SetFullCommand(KxNmeaSentence sentence, const WCHAR* command) {
  NmeaSentence_SetCommand(sentence, command);
}

}  // extern "C"
