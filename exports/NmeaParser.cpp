// NmeaParser_*: the GPS engine.
#include "gps/NmeaParser.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
NmeaParser* Of(KxNmeaParser handle) { return ObjectOf<NmeaParser>(handle); }
}  // namespace

extern "C" {

KX_API KxNmeaParser NmeaParser_New(void) { return HandleOf<KxNmeaParser>(NewObject<NmeaParser>()); }
KX_API void NmeaParser_Delete(KxNmeaParser parser) { DeleteObject(Of(parser)); }
KX_API KxError NmeaParser_GetErrHandle(KxNmeaParser parser) { return ErrorHandleOf(Of(parser)); }
KX_API void NmeaParser_Close(KxNmeaParser parser) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->Close(); });
}
KX_API void NmeaParser_SetComPort(KxNmeaParser parser, short port) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->SetComPort(port); });
}
KX_API void NmeaParser_SetBaudRate(KxNmeaParser parser, int baudRate) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->SetBaudRate(baudRate); });
}
KX_API void NmeaParser_SetGpsDatum(KxNmeaParser parser, short datum) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->SetGpsDatum(datum); });
}
KX_API void NmeaParser_SetNoEvents(KxNmeaParser parser, KxBool noEvents) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->SetNoEvents(noEvents != 0); });
}
KX_API void NmeaParser_SetChecksumMandatory(KxNmeaParser parser, KxBool mandatory) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->SetChecksumMandatory(mandatory != 0); });
}
KX_API void NmeaParser_EventInterval(KxNmeaParser parser, int interval, int type) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->EventInterval(interval, type); });
}
KX_API void NmeaParser_SetCallbackHWND(KxNmeaParser parser, HWND window) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->SetCallbackHWND(window); });
}
KX_API void NmeaParser_SetPortEnabled(KxNmeaParser parser, KxBool enabled) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->SetPortEnabled(enabled != 0); });
}
KX_API void* NmeaParser_GetEventData(KxNmeaParser parser, int* type) {
  NmeaParser* self = Of(parser);
  int32_t eventType = 0;
  void* object = Guarded(self, [&] { return static_cast<void*>(self->GetEventData(eventType)); });
  if (type) *type = eventType;
  return object;
}
KX_API KxGpsFix NmeaParser_GetGpsFix(KxNmeaParser parser, int timeout, short fixType) {
  NmeaParser* self = Of(parser);
  return HandleOf<KxGpsFix>(Guarded(self, [&] { return self->GetGpsFix(timeout, fixType); }));
}
KX_API KxSatellites NmeaParser_GetSatellites(KxNmeaParser parser, int timeout) {
  NmeaParser* self = Of(parser);
  return HandleOf<KxSatellites>(Guarded(self, [&] { return self->GetSatellites(timeout); }));
}
KX_API KxMovement NmeaParser_GetMovement(KxNmeaParser parser, int timeout) {
  NmeaParser* self = Of(parser);
  return HandleOf<KxMovement>(Guarded(self, [&] { return self->GetMovement(timeout); }));
}
KX_API KxQuality NmeaParser_GetQuality(KxNmeaParser parser, int timeout) {
  NmeaParser* self = Of(parser);
  return HandleOf<KxQuality>(Guarded(self, [&] { return self->GetQuality(timeout); }));
}
KX_API KxComStatus NmeaParser_GetComStatus(KxNmeaParser parser) {
  NmeaParser* self = Of(parser);
  return HandleOf<KxComStatus>(Guarded(self, [&] { return self->GetComStatus(); }));
}
KX_API void NmeaParser_WriteData(KxNmeaParser parser, const WCHAR* data, short length) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->WriteData(Ref<String>(new String(data, int32_t(length))).get()); });
}
KX_API void NmeaParser_Parse(KxNmeaParser parser, const WCHAR* text) {
  NmeaParser* self = Of(parser);
  Guarded(self, [&] { self->Parse(TextIn(text).get()); });
}

}  // extern "C"
