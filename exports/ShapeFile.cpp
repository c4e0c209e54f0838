// ShapeFile_*: shapes to and from ESRI shape files.
#include "shapes/ShapeFile.h"

#include "exports/ExportSupport.h"

using namespace kx;
using namespace kx::exports;

namespace {

ShapeFile* Of(KxShapeFile handle) { return ObjectOf<ShapeFile>(handle); }

}  // namespace

extern "C" {

KX_API KxShapeFile ShapeFile_New(void) { return HandleOf<KxShapeFile>(NewObject<ShapeFile>()); }
KX_API void ShapeFile_Delete(KxShapeFile file) { DeleteObject(Of(file)); }
KX_API KxError ShapeFile_GetErrHandle(KxShapeFile file) { return ErrorHandleOf(Of(file)); }

KX_API void ShapeFile_Open(KxShapeFile file, const WCHAR* name, int mode) {
  ShapeFile* self = Of(file);
  Guarded(self, [&] { self->Open(NameIn(name).get(), mode); });
}
KX_API void ShapeFile_Close(KxShapeFile file) {
  ShapeFile* self = Of(file);
  Guarded(self, [&] { self->Close(); });
}
KX_API KxShape ShapeFile_Read(KxShapeFile file) {
  ShapeFile* self = Of(file);
  return HandleOf<KxShape>(Guarded(self, [&] { return self->Read(); }));
}
KX_API void ShapeFile_Write(KxShapeFile file, KxShape shape) {
  ShapeFile* self = Of(file);
  Guarded(self, [&] { self->Write(ObjectOf<Shape>(shape)); });
}
KX_API void ShapeFile_Seek(KxShapeFile file, int record) {
  ShapeFile* self = Of(file);
  Guarded(self, [&] { self->Seek(record); });
}
KX_API void ShapeFile_GetBoundingBox(KxShapeFile file, double* minX, double* maxX,
                                     double* minY, double* maxY, double* minZ, double* maxZ,
                                     double* minM, double* maxM) {
  ShapeFile* self = Of(file);
  Guarded(self, [&] {
    double bounds[8];
    self->GetBoundingBox(bounds);
    double* outs[8] = {minX, maxX, minY, maxY, minZ, maxZ, minM, maxM};
    for (int b = 0; b < 8; ++b)
      if (outs[b]) *outs[b] = bounds[b];
  });
}
KX_API int ShapeFile_GetShapeFileType(KxShapeFile file) {
  ShapeFile* self = Of(file);
  return Guarded(self, [&] { return int(self->GetShapeFileType()); });
}
KX_API void ShapeFile_SetShapeFileType(KxShapeFile file, int type) {
  ShapeFile* self = Of(file);
  Guarded(self, [&] { self->SetShapeFileType(type); });
}
KX_API KxBool ShapeFile_GetReadOnly(KxShapeFile file) {
  ShapeFile* self = Of(file);
  return Guarded(self, [&] { return KxBool(self->GetReadOnly()); });
}
KX_API void ShapeFile_SetReadOnly(KxShapeFile file, KxBool readOnly) {
  ShapeFile* self = Of(file);
  Guarded(self, [&] { self->SetReadOnly(readOnly != 0); });
}

}  // extern "C"
