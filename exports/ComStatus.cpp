// ComStatus_*: the state of the source as the parser delivered it.
#include "gps/ComStatus.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
ComStatus* Of(KxComStatus handle) { return ObjectOf<ComStatus>(handle); }
}  // namespace

extern "C" {

KX_API void ComStatus_Delete(KxComStatus status) { DeleteObject(Of(status)); }
KX_API KxError ComStatus_GetErrHandle(KxComStatus status) { return ErrorHandleOf(Of(status)); }
KX_API KxBool ComStatus_GetValidNmea(KxComStatus status) {
  ComStatus* self = Of(status);
  return Guarded(self, [&] { return KxBool(self->GetValidNmea()); });
}
KX_API KxBool ComStatus_GetValidFix(KxComStatus status) {
  ComStatus* self = Of(status);
  return Guarded(self, [&] { return KxBool(self->GetValidFix()); });
}
KX_API short ComStatus_GetComPort(KxComStatus status) {
  ComStatus* self = Of(status);
  return Guarded(self, [&] { return short(self->GetComPort()); });
}
KX_API int ComStatus_GetBaudRate(KxComStatus status) {
  ComStatus* self = Of(status);
  return Guarded(self, [&] { return int(self->GetBaudRate()); });
}

}  // extern "C"
