#include "frame/Thread.h"

#include "frame/ErrorNumbers.h"

namespace kx {

Thread::Thread() : m_done(new Event()) {}

Thread::~Thread() {
  Close();
  ReleaseObject(m_done);
}

void Thread::Start(BaseObject* owner, BaseObject* argument) {
  ClearError();
  if (m_handle) return;
  m_running.store(true, std::memory_order_release);
  m_owner = owner;
  if (argument) argument->AddRef();
  ReleaseObject(m_argument);
  m_argument = argument;
  m_done->Reset();
  m_handle = CreateThread(nullptr, 0, Body, this, 0, &m_threadId);
  if (!m_handle) {
    m_running.store(false, std::memory_order_release);
    SetError(int32_t(GetLastError()), text::kCouldNotCreateThread);
  }
}

DWORD Thread::Body(LPVOID self) {
  auto* thread = static_cast<Thread*>(self);
  thread->m_owner->ThreadMain(thread, thread->m_argument);
  thread->m_done->Set();
  return 0;
}

void Thread::Close() {
  ClearError();
  if (m_handle) {
    m_done->Wait();
    m_done->Reset();
    // ThreadMain is over; waiting for the thread itself as well lets CloseHandle join
    // it instead of leaving it to end alone, after the owner may already be gone.
    WaitForSingleObject(m_handle, INFINITE);
    CloseHandle(m_handle);
    m_handle = nullptr;
  }
  m_threadId = 0;
  m_owner = nullptr;
  m_running.store(false, std::memory_order_release);
  ReleaseObject(m_argument);
}

}  // namespace kx
