// Critical sections as recursive pthread mutexes.
#include <pthread.h>

#include <cstdlib>

#include "platform/win32ce.h"

void InitializeCriticalSection(CRITICAL_SECTION* cs) {
  auto* mutex = static_cast<pthread_mutex_t*>(std::malloc(sizeof(pthread_mutex_t)));
  if (!mutex) std::abort();  // as on the device, this call has no way to fail
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
  cs->impl = mutex;
}

void DeleteCriticalSection(CRITICAL_SECTION* cs) {
  auto* mutex = static_cast<pthread_mutex_t*>(cs->impl);
  if (!mutex) return;
  pthread_mutex_destroy(mutex);
  std::free(mutex);
  cs->impl = nullptr;
}

void EnterCriticalSection(CRITICAL_SECTION* cs) {
  pthread_mutex_lock(static_cast<pthread_mutex_t*>(cs->impl));
}

void LeaveCriticalSection(CRITICAL_SECTION* cs) {
  pthread_mutex_unlock(static_cast<pthread_mutex_t*>(cs->impl));
}
