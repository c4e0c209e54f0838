// Threads on pthreads. A thread's handle is a kernel object that becomes signalled when
// the thread's routine has returned; closing the handle joins a finished thread and
// lets a running one go on alone.
#include <time.h>

#include <new>

#include "platform/posix/KernelObject.h"

using platform::ThreadObject;

namespace {

void* ThreadBody(void* argument) {
  auto* thread = static_cast<ThreadObject*>(argument);
  thread->start(thread->parameter);
  thread->finished.store(true, std::memory_order_release);
  thread->Signal();
  thread->Release();  // the thread's own reference
  return nullptr;
}

}  // namespace

BOOL platform::ThreadObject::Close() {
  if (finished.load(std::memory_order_acquire))
    pthread_join(thread, nullptr);  // returns at once: the routine is over
  else
    pthread_detach(thread);
  return TRUE;
}

HANDLE CreateThread(SECURITY_ATTRIBUTES*, size_t stackSize, LPTHREAD_START_ROUTINE start,
                    LPVOID parameter, DWORD, DWORD* threadId) {
  if (!start) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  auto* thread = new (std::nothrow) ThreadObject();
  if (!thread) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
  thread->start = start;
  thread->parameter = parameter;
  thread->AddRef();  // held by the running thread until its routine returns
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  if (stackSize) pthread_attr_setstacksize(&attributes, stackSize);
  const int failure = pthread_create(&thread->thread, &attributes, ThreadBody, thread);
  pthread_attr_destroy(&attributes);
  if (failure) {
    thread->Release();
    thread->Release();
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
  static std::atomic<DWORD> lastThreadId{0};
  if (threadId) *threadId = ++lastThreadId;
  return thread->AsHandle();
}

void Sleep(DWORD milliseconds) {
  timespec pause{time_t(milliseconds / 1000), long(milliseconds % 1000) * 1000000L};
  while (nanosleep(&pause, &pause) != 0) {
  }
}
