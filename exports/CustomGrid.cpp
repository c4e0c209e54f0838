// CustomGrid_*: a projection with its parameters that the application defines.
#include "coords/CustomGrid.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
CustomGrid* Of(KxCustomGrid handle) { return ObjectOf<CustomGrid>(handle); }
}  // namespace

extern "C" {

KX_API KxCustomGrid CustomGrid_New(void) { return HandleOf<KxCustomGrid>(NewObject<CustomGrid>()); }
KX_API void CustomGrid_Delete(KxCustomGrid grid) { DeleteObject(Of(grid)); }
KX_API KxError CustomGrid_GetErrHandle(KxCustomGrid grid) { return ErrorHandleOf(Of(grid)); }

KX_EXPORT_DOUBLE_PROPERTY(CustomGrid, KxCustomGrid, CustomGrid, FalseEasting, metres)
KX_EXPORT_DOUBLE_PROPERTY(CustomGrid, KxCustomGrid, CustomGrid, FalseNorthing, metres)
KX_EXPORT_DOUBLE_PROPERTY(CustomGrid, KxCustomGrid, CustomGrid, ScaleFactor, value)
KX_EXPORT_DOUBLE_PROPERTY(CustomGrid, KxCustomGrid, CustomGrid, LongitudeOfOrigin, degrees)
KX_EXPORT_DOUBLE_PROPERTY(CustomGrid, KxCustomGrid, CustomGrid, LatitudeOfOrigin, degrees)
KX_EXPORT_DOUBLE_PROPERTY(CustomGrid, KxCustomGrid, CustomGrid, LatitudeSP1, degrees)
KX_EXPORT_DOUBLE_PROPERTY(CustomGrid, KxCustomGrid, CustomGrid, LatitudeSP2, degrees)

KX_API int CustomGrid_GetAlgorithm(KxCustomGrid grid) {
  CustomGrid* self = Of(grid);
  return Guarded(self, [&] { return self->GetAlgorithm(); });
}
KX_API void CustomGrid_SetAlgorithm(KxCustomGrid grid, int algorithm) {
  CustomGrid* self = Of(grid);
  Guarded(self, [&] { self->SetAlgorithm(algorithm); });
}
KX_API short CustomGrid_GetDatum(KxCustomGrid grid) {
  CustomGrid* self = Of(grid);
  return Guarded(self, [&] { return self->GetDatum(); });
}
KX_API void CustomGrid_SetDatum(KxCustomGrid grid, short datum) {
  CustomGrid* self = Of(grid);
  Guarded(self, [&] { self->SetDatum(datum); });
}
KX_API KxCustomDatum CustomGrid_GetCustomDatum(KxCustomGrid grid) {
  CustomGrid* self = Of(grid);
  return HandleOf<KxCustomDatum>(Guarded(self, [&] { return self->GetCustomDatum(); }));
}
KX_API void CustomGrid_SetCustomDatum(KxCustomGrid grid, KxCustomDatum datum) {
  CustomGrid* self = Of(grid);
  Guarded(self, [&] { self->SetCustomDatum(ObjectOf<CustomDatum>(datum)); });
}

}  // extern "C"
