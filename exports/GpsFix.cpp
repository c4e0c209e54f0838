// GpsFix_*: one fix as the parser delivered it.
#include "gps/GpsFix.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {
GpsFix* Of(KxGpsFix handle) { return ObjectOf<GpsFix>(handle); }

// A member of the fix's date and time; 0 when it has none.
short DatePart(KxGpsFix fix, int32_t (DateTime::*part)() const) {
  GpsFix* self = Of(fix);
  return Guarded(self, [&] {
    Ref<DateTime> when(self->GetDateTime());
    return when ? short(((*when).*part)()) : short(0);
  });
}
}  // namespace

extern "C" {

KX_API void GpsFix_Delete(KxGpsFix fix) { DeleteObject(Of(fix)); }
KX_API KxError GpsFix_GetErrHandle(KxGpsFix fix) { return ErrorHandleOf(Of(fix)); }
KX_API int GpsFix_GetFixType(KxGpsFix fix) {
  GpsFix* self = Of(fix);
  return Guarded(self, [&] { return int(self->GetFixType()); });
}
KX_API KxPosition GpsFix_GetPosition(KxGpsFix fix) {
  GpsFix* self = Of(fix);
  return HandleOf<KxPosition>(Guarded(self, [&] { return self->GetPositionCopy(); }));
}
KX_API short GpsFix_GetYear(KxGpsFix fix) { return DatePart(fix, &DateTime::GetYear); }
KX_API short GpsFix_GetMonth(KxGpsFix fix) { return DatePart(fix, &DateTime::GetMonth); }
KX_API short GpsFix_GetDay(KxGpsFix fix) { return DatePart(fix, &DateTime::GetDay); }
KX_API short GpsFix_GetHour(KxGpsFix fix) { return DatePart(fix, &DateTime::GetHour); }
KX_API short GpsFix_GetMinute(KxGpsFix fix) { return DatePart(fix, &DateTime::GetMinute); }
KX_API short GpsFix_GetSecond(KxGpsFix fix) { return DatePart(fix, &DateTime::GetSecond); }
KX_API short GpsFix_GetMilliSecond(KxGpsFix fix) {
  return DatePart(fix, &DateTime::GetMilliSecond);
}

}  // extern "C"
