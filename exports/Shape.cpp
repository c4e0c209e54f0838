// Shape_*: parts of nodes, measured and tested.
#include "shapes/Shape.h"

#include "exports/ExportSupport.h"
#include "frame/LibraryLock.h"

using namespace kx;
using namespace kx::exports;

namespace {

Shape* Of(KxShape handle) { return ObjectOf<Shape>(handle); }
Position* PositionOf(KxPosition handle) { return ObjectOf<Position>(handle); }

void Refuse(Shape* shape) { shape->Error().SetError(kErrInvalidArgument, text::kInvalidParameter); }

int Int(KxShape shape, int32_t (Shape::*getter)()) {
  Shape* self = Of(shape);
  return Guarded(self, [&] { return int((self->*getter)()); });
}

void Call(KxShape shape, void (Shape::*operation)()) {
  Shape* self = Of(shape);
  Guarded(self, [&] { (self->*operation)(); });
}

void CallWith(KxShape shape, int value, void (Shape::*operation)(int32_t)) {
  Shape* self = Of(shape);
  Guarded(self, [&] { (self->*operation)(value); });
}

// A measure through its out pointer, which is also the result.
template <class Fn>
double* Measure(KxShape shape, double* out, Fn&& call) {
  Deliver(Of(shape), out, call);
  return out;
}

template <class Fn>
KxBool Test(KxShape shape, Fn&& call) {
  Shape* self = Of(shape);
  return Guarded(self, [&] { return KxBool(call(self)); });
}

// A query at x and y, both given.
template <class Fn>
double* AtPoint(KxShape shape, const double* x, const double* y, double* out, Fn&& query) {
  Shape* self = Of(shape);
  return Measure(shape, out, [&] {
    if (x && y) return query(self, *x, *y);
    Refuse(self);
    return 0.0;
  });
}

}  // namespace

extern "C" {

KX_API KxShape Shape_New(void) { return HandleOf<KxShape>(NewObject<Shape>()); }
KX_API void Shape_Delete(KxShape shape) { DeleteObject(Of(shape)); }
KX_API KxError Shape_GetErrHandle(KxShape shape) { return ErrorHandleOf(Of(shape)); }
KX_API void Shape_LockObject(KxShape) { LibraryLock::Enter(); }
KX_API void Shape_UnlockObject(KxShape) { LibraryLock::Leave(); }

KX_API int Shape_GetPartIndex(KxShape shape) { return Int(shape, &Shape::GetPartIndex); }
KX_API void Shape_SetPartIndex(KxShape shape, int part) {
  CallWith(shape, part, &Shape::SetPartIndex);
}
KX_API int Shape_GetNodeIndex(KxShape shape) { return Int(shape, &Shape::GetNodeIndex); }
KX_API void Shape_SetNodeIndex(KxShape shape, int node) {
  CallWith(shape, node, &Shape::SetNodeIndex);
}
KX_API int Shape_GetPartCount(KxShape shape) { return Int(shape, &Shape::GetPartCount); }
KX_API int Shape_GetNodeCount(KxShape shape) { return Int(shape, &Shape::GetNodeCount); }
KX_API int Shape_GetTotalNodeCount(KxShape shape) {
  return Int(shape, &Shape::GetTotalNodeCount);
}
KX_API int Shape_GetModifiedCount(KxShape shape) { return Int(shape, &Shape::GetModifiedCount); }
KX_API int Shape_GetShapeID(KxShape shape) { return Int(shape, &Shape::GetShapeID); }
KX_API void Shape_SetShapeID(KxShape shape, int id) { CallWith(shape, id, &Shape::SetShapeID); }
KX_API int Shape_GetNodeID(KxShape shape) { return Int(shape, &Shape::GetNodeID); }

KX_API KxPosition Shape_GetDatumGridTemplate(KxShape shape) {
  Shape* self = Of(shape);
  return HandleOf<KxPosition>(Guarded(self, [&] { return self->GetDatumGridTemplate(); }));
}
KX_API void Shape_SetDatumGridTemplate(KxShape shape, KxPosition position) {
  Shape* self = Of(shape);
  Guarded(self, [&] { self->SetDatumGridTemplate(PositionOf(position)); });
}
KX_API KxBool Shape_GetPixelShape(KxShape shape) {
  return Test(shape, [](Shape* self) { return self->GetPixelShape(); });
}
KX_API void Shape_SetPixelShape(KxShape shape, KxBool pixels) {
  Shape* self = Of(shape);
  Guarded(self, [&] { self->SetPixelShape(pixels != 0); });
}

KX_EXPORT_DOUBLE_PROPERTY(Shape, KxShape, Shape, X, value)
KX_EXPORT_DOUBLE_PROPERTY(Shape, KxShape, Shape, Y, value)
KX_EXPORT_DOUBLE_PROPERTY(Shape, KxShape, Shape, Z, value)
KX_EXPORT_DOUBLE_PROPERTY(Shape, KxShape, Shape, M, value)

KX_API void Shape_GetNode(KxShape shape, double* x, double* y, double* z, double* m) {
  Shape* self = Of(shape);
  Guarded(self, [&] {
    double values[4];
    self->GetNode(values[0], values[1], values[2], values[3]);
    double* outs[4] = {x, y, z, m};
    for (int k = 0; k < 4; ++k)
      if (outs[k]) *outs[k] = values[k];
  });
}
KX_API void Shape_SetNode(KxShape shape, const double* x, const double* y, const double* z,
                          const double* m) {
  Shape* self = Of(shape);
  Guarded(self, [&] {
    if (x && y && z && m)
      self->SetNode(*x, *y, *z, *m);
    else
      Refuse(self);
  });
}
KX_API void Shape_SetPosition(KxShape shape, KxPosition position) {
  Shape* self = Of(shape);
  Guarded(self, [&] { self->SetPosition(PositionOf(position)); });
}
KX_API void Shape_SetNode2(KxShape shape, KxPosition position) {
  Shape_SetPosition(shape, position);
}
KX_API KxPosition Shape_GetPosition(KxShape shape) {
  Shape* self = Of(shape);
  return HandleOf<KxPosition>(Guarded(self, [&] { return self->GetPosition(); }));
}
KX_API void Shape_NewNode(KxShape shape, int index) { CallWith(shape, index, &Shape::NewNode); }
KX_API void Shape_DeleteNode(KxShape shape) { Call(shape, &Shape::DeleteNode); }

KX_API void Shape_NewPart(KxShape shape, int index) { CallWith(shape, index, &Shape::NewPart); }
KX_API void Shape_ClearPart(KxShape shape) { Call(shape, &Shape::ClearPart); }
KX_API void Shape_DeletePart(KxShape shape) { Call(shape, &Shape::DeletePart); }
KX_API void Shape_ClearShape(KxShape shape) { Call(shape, &Shape::ClearShape); }
KX_API KxShape Shape_Copy(KxShape shape) {
  Shape* self = Of(shape);
  return HandleOf<KxShape>(Guarded(self, [&] { return self->Copy(); }));
}
KX_API KxShape Shape_Copy2(KxShape shape, int first, int last) {
  Shape* self = Of(shape);
  return HandleOf<KxShape>(Guarded(self, [&] { return self->Copy2(first, last); }));
}
KX_API void Shape_GetBoundingBox(KxShape shape, double* minX, double* maxX, double* minY,
                                 double* maxY, double* minZ, double* maxZ, double* minM,
                                 double* maxM) {
  Shape* self = Of(shape);
  Guarded(self, [&] {
    double bounds[Shape::kBoundCount];
    self->GetBoundingBox(bounds);
    double* outs[Shape::kBoundCount] = {minX, maxX, minY, maxY, minZ, maxZ, minM, maxM};
    for (int b = 0; b < Shape::kBoundCount; ++b)
      if (outs[b]) *outs[b] = bounds[b];
  });
}
KX_API KxBool Shape_GetFixedSize(KxShape shape) {
  return Test(shape, [](Shape* self) { return self->GetFixedSize(); });
}
KX_API void Shape_SetFixedSize(KxShape shape, KxBool fixed) {
  Shape* self = Of(shape);
  Guarded(self, [&] { self->SetFixedSize(fixed != 0); });
}
KX_API void Shape_FixedPartCount(KxShape shape, int parts) {
  CallWith(shape, parts, &Shape::FixedPartCount);
}
KX_API void Shape_FixedNodeCount(KxShape shape, int part, int nodes) {
  Shape* self = Of(shape);
  Guarded(self, [&] { self->FixedNodeCount(part, nodes); });
}

KX_API double* Shape_Area(KxShape shape, double* out) {
  return Measure(shape, out, [&] { return Of(shape)->Area(); });
}
KX_API double* Shape_PartArea(KxShape shape, double* out) {
  return Measure(shape, out, [&] { return Of(shape)->PartArea(); });
}
KX_API double* Shape_Distance(KxShape shape, int first, int last, double* out) {
  return Measure(shape, out, [&] { return Of(shape)->Distance(first, last); });
}
KX_API KxBool Shape_IsInside(KxShape shape, const double* x, const double* y) {
  return Test(shape, [&](Shape* self) {
    if (x && y) return self->IsInside(*x, *y);
    Refuse(self);
    return false;
  });
}
KX_API KxBool Shape_IsInside2(KxShape shape, KxPosition position) {
  return Test(shape, [&](Shape* self) { return self->IsInside2(PositionOf(position)); });
}
KX_API KxBool Shape_IsIntersecting(KxShape shape, KxShape other) {
  return Test(shape, [&](Shape* self) { return self->IsIntersecting(Of(other)); });
}
KX_API KxBool Shape_IsCleanPolygon(KxShape shape) {
  return Test(shape, [](Shape* self) { return self->IsCleanPolygon(); });
}
KX_API double* Shape_FindClosestNode(KxShape shape, const double* x, const double* y,
                                     double* out) {
  return AtPoint(shape, x, y, out,
                 [](Shape* self, double px, double py) { return self->FindClosestNode(px, py); });
}
KX_API double* Shape_FindClosestNode2(KxShape shape, KxPosition position, double* out) {
  return Measure(shape, out, [&] { return Of(shape)->FindClosestNode2(PositionOf(position)); });
}
KX_API double* Shape_FindClosestVector(KxShape shape, const double* x, const double* y,
                                       double* out) {
  return AtPoint(shape, x, y, out, [](Shape* self, double px, double py) {
    return self->FindClosestVector(px, py);
  });
}
KX_API double* Shape_FindClosestVector2(KxShape shape, KxPosition position, double* out) {
  return Measure(shape, out,
                 [&] { return Of(shape)->FindClosestVector2(PositionOf(position)); });
}
KX_API void Shape_InvertPart(KxShape shape) { Call(shape, &Shape::InvertPart); }
KX_API void Shape_ConvertDatumGrid(KxShape shape, KxPosition target) {
  Shape* self = Of(shape);
  Guarded(self, [&] { self->ConvertDatumGrid(PositionOf(target)); });
}

}  // extern "C"
