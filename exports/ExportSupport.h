// What every family's flat functions share: handle casts, the guard that keeps
// exceptions inside, and the hand-over of text in both directions.
#pragma once

#include <new>
#include <type_traits>

#include "KestrixCE.h"
#include "frame/BaseObject.h"
#include "frame/ErrorNumbers.h"
#include "frame/Ref.h"
#include "frame/String.h"

namespace kx::exports {

// A handle is the object itself.
template <class T, class Handle>
T* ObjectOf(Handle handle) {
  return reinterpret_cast<T*>(handle);
}

template <class Handle, class T>
Handle HandleOf(T* object) {
  return reinterpret_cast<Handle>(object);
}

template <class T>
KxError ErrorHandleOf(T* object) {
  return object ? reinterpret_cast<KxError>(&object->Error()) : nullptr;
}

// Family_New: a new object with count 1, or null when memory can't be had.
template <class T>
T* NewObject() noexcept {
  try {
    return new T();
  } catch (...) {
    return nullptr;
  }
}

// Family_Delete: a null handle does nothing.
template <class T>
void DeleteObject(T* object) noexcept {
  ReleaseObject(object);
}

// Runs one class call. A stray exception becomes error 10005 on the object, and the
// call returns the empty value of its type.
template <class Fn>
auto Guarded(BaseObject* object, Fn&& call) noexcept -> decltype(call()) {
  using Result = decltype(call());
  try {
    return call();
  } catch (...) {
    if (object) object->Error().SetError(kErrInternal, text::kUnexpected);
    if constexpr (!std::is_void_v<Result>) return Result{};
  }
}

// A value result through an out pointer; a null pointer receives nothing.
template <class R, class Fn>
void Deliver(BaseObject* object, R* out, Fn&& call) {
  Guarded(object, [&] {
    const R value = call();
    if (out) *out = value;
  });
}

template <class T, class R>
void GetValue(T* object, R* out, R (T::*getter)()) {
  Deliver(object, out, [&] { return (object->*getter)(); });
}

// A value argument by pointer; a null pointer is refused as an invalid parameter.
template <class T, class A>
void SetValue(T* object, const A* value, void (T::*setter)(A)) {
  Guarded(object, [&] {
    if (value)
      (object->*setter)(*value);
    else
      object->Error().SetError(kErrInvalidArgument, text::kInvalidParameter);
  });
}

// A text result: the caller receives the wide form and owns it; the String is given
// up. A null `text` (a failed call) hands out no text.
void HandOut(String* text, BSTR* out);

// A text argument: a temporary String for the length of the call.
inline Ref<String> TextIn(const WCHAR* text) { return Ref<String>(new String(text)); }

// A file name argument: as UTF-8, so that the file system receives it unchanged.
inline Ref<String> NameIn(const WCHAR* name) { return Ref<String>(String::FromWideName(name)); }

}  // namespace kx::exports

// The getter and setter of a double property, Family_GetName and Family_SetName.
#define KX_EXPORT_DOUBLE_PROPERTY(Family, Handle, Class, Name, unit)                      \
  KX_API void Family##_Get##Name(Handle handle, double* unit) {                           \
    kx::exports::GetValue(kx::exports::ObjectOf<Class>(handle), unit, &Class::Get##Name); \
  }                                                                                       \
  KX_API void Family##_Set##Name(Handle handle, const double* unit) {                     \
    kx::exports::SetValue(kx::exports::ObjectOf<Class>(handle), unit, &Class::Set##Name); \
  }
