#include "frame/BaseObject.h"

#include "frame/LibraryLock.h"

namespace kx {

namespace {
int32_t lastId = 0;  // guarded by the LibraryLock
}

BaseObject::BaseObject() {
  LockScope lock;
  m_id = ++lastId;
}

BaseObject::~BaseObject() = default;

void BaseObject::Close() {}

void BaseObject::ThreadMain(Thread*, BaseObject*) {}

LONG BaseObject::AddRef() { return InterlockedIncrement(&m_refCount); }

LONG BaseObject::Release() {
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
