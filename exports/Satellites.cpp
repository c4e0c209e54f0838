// Satellites_* and Satellite_*: one cycle of satellites in view, and each of them.
#include "gps/Satellites.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
Satellite* Of(KxSatellite handle) { return ObjectOf<Satellite>(handle); }
Satellites* Of(KxSatellites handle) { return ObjectOf<Satellites>(handle); }

short Member(KxSatellite satellite, int16_t (Satellite::*member)() const) {
  Satellite* self = Of(satellite);
  return Guarded(self, [&] { return short((self->*member)()); });
}
}  // namespace

extern "C" {

KX_API void Satellite_Delete(KxSatellite satellite) { DeleteObject(Of(satellite)); }
KX_API KxError Satellite_GetErrHandle(KxSatellite satellite) {
  return ErrorHandleOf(Of(satellite));
}
KX_API short Satellite_GetID(KxSatellite satellite) {
  Satellite* self = Of(satellite);
  return Guarded(self, [&] { return short(self->GetID()); });
}
KX_API short Satellite_GetElevation(KxSatellite satellite) {
  return Member(satellite, &Satellite::GetElevation);
}
KX_API short Satellite_GetAzimuth(KxSatellite satellite) {
  return Member(satellite, &Satellite::GetAzimuth);
}
KX_API short Satellite_GetSNR(KxSatellite satellite) {
  return Member(satellite, &Satellite::GetSNR);
}
KX_API KxBool Satellite_GetUsedForFix(KxSatellite satellite) {
  Satellite* self = Of(satellite);
  return Guarded(self, [&] { return KxBool(self->GetUsedForFix()); });
}

KX_API void Satellites_Delete(KxSatellites satellites) { DeleteObject(Of(satellites)); }
KX_API KxError Satellites_GetErrHandle(KxSatellites satellites) {
  return ErrorHandleOf(Of(satellites));
}
KX_API short Satellites_GetCount(KxSatellites satellites) {
  Satellites* self = Of(satellites);
  return Guarded(self, [&] { return short(self->GetCount()); });
}
KX_API KxSatellite Satellites_Item(KxSatellites satellites, short position) {
  Satellites* self = Of(satellites);
  return HandleOf<KxSatellite>(Guarded(self, [&] { return self->Item(position); }));
}

}  // extern "C"
