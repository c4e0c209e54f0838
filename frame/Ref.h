// An owning holder of one reference, given up on destruction: ReleaseObject as a scope.
#pragma once

#include <utility>

#include "frame/BaseObject.h"

namespace kx {

template <class T>
class Ref {
 public:
  Ref() = default;
  // Takes over a reference that the caller owns (a new object, an object result).
  explicit Ref(T* adopted) : m_object(adopted) {}
  // Takes a reference of its own on an object that someone else holds.
  static Ref Share(T* object) {
    if (object) object->AddRef();
    return Ref(object);
  }

  Ref(const Ref& other) : m_object(other.m_object) {
    if (m_object) m_object->AddRef();
  }
  Ref(Ref&& other) noexcept : m_object(other.Detach()) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(m_object, other.m_object);
    return *this;
  }
  ~Ref() { ReleaseObject(m_object); }

  T* get() const { return m_object; }
  T* operator->() const { return m_object; }
  T& operator*() const { return *m_object; }
  explicit operator bool() const { return m_object != nullptr; }

  // Hands the reference over to the caller.
  T* Detach() {
    T* object = m_object;
    m_object = nullptr;
    return object;
  }
  // Another reference for a caller who keeps the object too.
  T* NewReference() const {
    if (m_object) m_object->AddRef();
    return m_object;
  }
  void Reset() { ReleaseObject(m_object); }

 private:
  T* m_object = nullptr;
};

}  // namespace kx
