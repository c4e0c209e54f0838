// A handle that moves bytes: a file or a serial device. ReadFile, WriteFile,
// FlushFileBuffers and CloseHandle reach the device through these operations.
#pragma once

#include "platform/posix/KernelObject.h"

namespace platform {

class StreamObject : public KernelObject {
 public:
  StreamObject();
  ~StreamObject() override;

  // Null, with ERROR_INVALID_HANDLE as the last error, for a handle of anything else.
  static StreamObject* FromHandle(HANDLE handle) {
    KernelObject* object = KernelObject::FromHandle(handle);
    if (object && object->GetKind() == Kind::kStream) return static_cast<StreamObject*>(object);
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  // The stream with a reference for the caller, only while it lives: a worker thread may
  // still hold a handle that its owner has just closed on another thread, which is how a
  // serial port stops its readers. Null with ERROR_INVALID_HANDLE otherwise.
  static StreamObject* Acquire(HANDLE handle);

  // Each returns FALSE with the last error set on failure; `done` counts the bytes that
  // moved all the same. Reads and writes may block; another thread's CloseHandle is the
  // way to end them, so a stream keeps its device usable until Close.
  virtual BOOL Read(void* buffer, DWORD count, DWORD& done) = 0;
  virtual BOOL Write(const void* data, DWORD count, DWORD& done) = 0;
  virtual BOOL Flush() = 0;
};

}  // namespace platform
