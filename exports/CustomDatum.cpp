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

KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, SemiMajorAxis, metres)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, E2, value)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, DeltaX, metres)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, DeltaY, metres)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, DeltaZ, metres)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, RotX, seconds)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, RotY, seconds)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, RotZ, seconds)
KX_EXPORT_DOUBLE_PROPERTY(CustomDatum, KxCustomDatum, CustomDatum, ScaleFactor, value)

}  // extern "C"
