// Movement_*: speed, heading and magnetic variation as the parser delivered them.
#include "gps/Movement.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
Movement* Of(KxMovement handle) { return ObjectOf<Movement>(handle); }
}  // namespace

extern "C" {

KX_API void Movement_Delete(KxMovement movement) { DeleteObject(Of(movement)); }
KX_API KxError Movement_GetErrHandle(KxMovement movement) { return ErrorHandleOf(Of(movement)); }
KX_API void Movement_GetSpeed(KxMovement movement, short unit, double* value) {
  Movement* self = Of(movement);
  Deliver(self, value, [&] { return self->GetSpeed(unit); });
}
KX_API void Movement_GetHeading(KxMovement movement, double* degrees) {
  Movement* self = Of(movement);
  Deliver(self, degrees, [&] { return self->GetHeading(); });
}
KX_API void Movement_GetMagneticVariation(KxMovement movement, double* degrees) {
  Movement* self = Of(movement);
  Deliver(self, degrees, [&] { return self->GetMagneticVariation(); });
}

}  // extern "C"
