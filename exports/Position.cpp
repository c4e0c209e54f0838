// Position_*: a point in a datum, optionally in a grid.
#include "coords/Position.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
Position* Of(KxPosition handle) { return ObjectOf<Position>(handle); }

void GetDMS(KxPosition handle, short* degrees, short* minutes, double* seconds, BSTR* hemisphere,
            void (Position::*getter)(int16_t&, int16_t&, double&, String*&)) {
  Position* position = Of(handle);
  Guarded(position, [&] {
    int16_t d = 0, m = 0;
    double s = 0;
    String* letter = nullptr;
    (position->*getter)(d, m, s, letter);
    if (degrees) *degrees = d;
    if (minutes) *minutes = m;
    if (seconds) *seconds = s;
    HandOut(letter, hemisphere);
  });
}

void SetDMS(KxPosition handle, const double* degrees, const double* minutes, const double* seconds,
            const WCHAR* hemisphere,
            void (Position::*setter)(double, double, double, const String*)) {
  Position* position = Of(handle);
  Guarded(position, [&] {
    if (!degrees || !minutes || !seconds) {
      position->Error().SetError(kErrInvalidArgument, text::kInvalidParameter);
      return;
    }
    (position->*setter)(*degrees, *minutes, *seconds, TextIn(hemisphere).get());
  });
}
}  // namespace

extern "C" {

KX_API KxPosition Position_New(void) { return HandleOf<KxPosition>(NewObject<Position>()); }
KX_API void Position_Delete(KxPosition position) { DeleteObject(Of(position)); }
KX_API KxError Position_GetErrHandle(KxPosition position) { return ErrorHandleOf(Of(position)); }

KX_API KxPosition Position_Copy(KxPosition position) {
  Position* self = Of(position);
  return HandleOf<KxPosition>(Guarded(self, [&] { return self->Copy(); }));
}

KX_EXPORT_DOUBLE_PROPERTY(Position, KxPosition, Position, LatitudeRads, value)
KX_EXPORT_DOUBLE_PROPERTY(Position, KxPosition, Position, LongitudeRads, value)
KX_EXPORT_DOUBLE_PROPERTY(Position, KxPosition, Position, LatitudeDecDeg, value)
KX_EXPORT_DOUBLE_PROPERTY(Position, KxPosition, Position, LongitudeDecDeg, value)

KX_API void Position_GetLatitudeDMS(KxPosition position, short* degrees, short* minutes,
                                    double* seconds, BSTR* hemisphere) {
  GetDMS(position, degrees, minutes, seconds, hemisphere, &Position::GetLatitudeDMS);
}
KX_API void Position_SetLatitudeDMS(KxPosition position, const double* degrees,
                                    const double* minutes, const double* seconds,
                                    const WCHAR* hemisphere) {
  SetDMS(position, degrees, minutes, seconds, hemisphere, &Position::SetLatitudeDMS);
}
KX_API void Position_GetLongitudeDMS(KxPosition position, short* degrees, short* minutes,
                                     double* seconds, BSTR* hemisphere) {
  GetDMS(position, degrees, minutes, seconds, hemisphere, &Position::GetLongitudeDMS);
}
KX_API void Position_SetLongitudeDMS(KxPosition position, const double* degrees,
                                     const double* minutes, const double* seconds,
                                     const WCHAR* hemisphere) {
  SetDMS(position, degrees, minutes, seconds, hemisphere, &Position::SetLongitudeDMS);
}

KX_API void Position_GetLatitudeString(KxPosition position, BSTR* text, short format) {
  Position* self = Of(position);
  HandOut(Guarded(self, [&] { return self->GetLatitudeString(format); }), text);
}
KX_API void Position_GetLongitudeString(KxPosition position, BSTR* text, short format) {
  Position* self = Of(position);
  HandOut(Guarded(self, [&] { return self->GetLongitudeString(format); }), text);
}

KX_API void Position_GetAltitude(KxPosition position, short kind, double* value) {
  Position* self = Of(position);
  Deliver(self, value, [&] { return self->GetAltitude(kind); });
}
KX_API void Position_SetAltitude(KxPosition position, const double* value, short kind) {
  Position* self = Of(position);
  Guarded(self, [&] {
    if (value)
      self->SetAltitude(*value, kind);
    else
      self->Error().SetError(kErrInvalidArgument, text::kInvalidParameter);
  });
}

KX_EXPORT_DOUBLE_PROPERTY(Position, KxPosition, Position, Easting, value)
KX_EXPORT_DOUBLE_PROPERTY(Position, KxPosition, Position, Northing, value)

KX_API void Position_GetZone(KxPosition position, BSTR* text) {
  Position* self = Of(position);
  HandOut(Guarded(self, [&] { return self->GetZone(); }), text);
}
KX_API void Position_SetZone(KxPosition position, short zone) {
  Position* self = Of(position);
  Guarded(self, [&] { self->SetZone(Ref<String>(new String(int32_t(zone))).get()); });
}

KX_API short Position_GetDatum(KxPosition position) {
  Position* self = Of(position);
  return Guarded(self, [&] { return self->GetDatum(); });
}
KX_API void Position_SetDatum(KxPosition position, short datum) {
  Position* self = Of(position);
  Guarded(self, [&] { self->SetDatum(datum); });
}
KX_API short Position_GetGrid(KxPosition position) {
  Position* self = Of(position);
  return Guarded(self, [&] { return self->GetGrid(); });
}
KX_API void Position_SetGrid(KxPosition position, short grid) {
  Position* self = Of(position);
  Guarded(self, [&] { self->SetGrid(grid); });
}
KX_API void Position_SetCustomDatum(KxPosition position, KxCustomDatum datum) {
  Position* self = Of(position);
  Guarded(self, [&] { self->SetCustomDatum(ObjectOf<CustomDatum>(datum)); });
}
KX_API void Position_SetCustomGrid(KxPosition position, KxCustomGrid grid) {
  Position* self = Of(position);
  Guarded(self, [&] { self->SetCustomGrid(ObjectOf<CustomGrid>(grid)); });
}
KX_API void Position_MakeSameDatum(KxPosition position, KxPosition other) {
  Position* self = Of(position);
  Guarded(self, [&] { self->MakeSameDatum(Of(other)); });
}
KX_API void Position_MakeSameGrid(KxPosition position, KxPosition other) {
  Position* self = Of(position);
  Guarded(self, [&] { self->MakeSameGrid(Of(other)); });
}
KX_API KxBool Position_IsSameDatum(KxPosition position, KxPosition other) {
  Position* self = Of(position);
  return Guarded(self, [&] { return KxBool(self->IsSameDatum(Of(other))); });
}
KX_API KxBool Position_IsSameGrid(KxPosition position, KxPosition other) {
  Position* self = Of(position);
  return Guarded(self, [&] { return KxBool(self->IsSameGrid(Of(other))); });
}

KX_API void Position_Distance(KxPosition position, KxPosition other, int method, double* value) {
  Position* self = Of(position);
  Deliver(self, value, [&] { return self->Distance(Of(other), method); });
}
KX_API void Position_Bearing(KxPosition position, KxPosition other, int method, double* value) {
  Position* self = Of(position);
  Deliver(self, value, [&] { return self->Bearing(Of(other), method); });
}
KX_API void Position_Move(KxPosition position, const double* distance, const double* bearing,
                          int method) {
  Position* self = Of(position);
  Guarded(self, [&] {
    if (distance && bearing)
      self->Move(*distance, *bearing, method);
    else
      self->Error().SetError(kErrInvalidArgument, text::kInvalidParameter);
  });
}

}  // extern "C"
