#include "frame/BaseObject.h"

#include <atomic>

#include "frame/LibraryLock.h"

namespace kx {

namespace {
// One increment under the library's lock would do the same; an atomic one is cheaper
// for the many small objects a sentence makes.
std::atomic<int32_t> lastId{0};
}  // namespace

BaseObject::BaseObject() : m_id(lastId.fetch_add(1, std::memory_order_relaxed) + 1) {}

BaseObject::~BaseObject() = default;

void BaseObject::Close() {}

void BaseObject::ThreadMain(Thread*, BaseObject*) {}

LONG BaseObject::AddRef() { return InterlockedIncrement(&m_refCount); }

LONG BaseObject::Release() {
  // The only holder: no other thread has a reference to add to, so the count can drop
  // without the locked read-modify-write that most short-lived objects would pay.
  if (__atomic_load_n(&m_refCount, __ATOMIC_ACQUIRE) == 1) {
    __atomic_store_n(&m_refCount, 0, __ATOMIC_RELAXED);
    Close();
    return 0;
  }
  const LONG count = InterlockedDecrement(&m_refCount);
  if (count == 0) Close();
  return count;
}

void BaseObject::Lock() { LibraryLock::Enter(); }

void BaseObject::Unlock() { LibraryLock::Leave(); }

bool BaseObject::IsSameObject(const BaseObject* other) const {
  return other && other->m_id == m_id;
}

}  // namespace kx
