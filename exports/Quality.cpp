// Quality_*: the dilutions of precision as the parser delivered them.
#include "gps/Quality.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
Quality* Of(KxQuality handle) { return ObjectOf<Quality>(handle); }
}  // namespace

extern "C" {

KX_API void Quality_Delete(KxQuality quality) { DeleteObject(Of(quality)); }
KX_API KxError Quality_GetErrHandle(KxQuality quality) { return ErrorHandleOf(Of(quality)); }
KX_API void Quality_GetHDOP(KxQuality quality, double* value) {
  Quality* self = Of(quality);
  Deliver(self, value, [&] { return self->GetHDOP(); });
}
KX_API void Quality_GetVDOP(KxQuality quality, double* value) {
  Quality* self = Of(quality);
  Deliver(self, value, [&] { return self->GetVDOP(); });
}
KX_API void Quality_GetPDOP(KxQuality quality, double* value) {
  Quality* self = Of(quality);
  Deliver(self, value, [&] { return self->GetPDOP(); });
}

}  // extern "C"
