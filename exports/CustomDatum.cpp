// CustomDatum_*: an ellipsoid and seven parameters that the application defines.
#include "coords/CustomDatum.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
CustomDatum* Of(KxCustomDatum handle) { return ObjectOf<CustomDatum>(handle); }
}  // namespace

extern "C" {

KX_API KxCustomDatum CustomDatum_New(void) {
  return HandleOf<KxCustomDatum>(NewObject<CustomDatum>());
}
KX_API void CustomDatum_Delete(KxCustomDatum datum) { DeleteObject(Of(datum)); }
KX_API KxError CustomDatum_GetErrHandle(KxCustomDatum datum) { return ErrorHandleOf(Of(datum)); }

#define KX_CUSTOM_DATUM_VALUE(Name, unit)                                      \
  KX_API void CustomDatum_Get##Name(KxCustomDatum datum, double* unit) {       \
    GetValue(Of(datum), unit, &CustomDatum::Get##Name);                        \
  }                                                                            \
  KX_API void CustomDatum_Set##Name(KxCustomDatum datum, const double* unit) { \
    SetValue(Of(datum), unit, &CustomDatum::Set##Name);                        \
  }

KX_CUSTOM_DATUM_VALUE(SemiMajorAxis, metres)
KX_CUSTOM_DATUM_VALUE(E2, value)
KX_CUSTOM_DATUM_VALUE(DeltaX, metres)
KX_CUSTOM_DATUM_VALUE(DeltaY, metres)
KX_CUSTOM_DATUM_VALUE(DeltaZ, metres)
KX_CUSTOM_DATUM_VALUE(RotX, seconds)
KX_CUSTOM_DATUM_VALUE(RotY, seconds)
KX_CUSTOM_DATUM_VALUE(RotZ, seconds)
KX_CUSTOM_DATUM_VALUE(ScaleFactor, value)
#undef KX_CUSTOM_DATUM_VALUE

}  // extern "C"
