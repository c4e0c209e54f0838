// An open file behind a handle: a file descriptor, the access it was opened for, and the
// file pointer. The pointer belongs to the handle, as on the device, and is kept here
// rather than in the descriptor: moving it costs no system call, and every transfer is
// one positioned read or write. Rewrites of bytes in the first page go through FileHead.
#pragma once

#include <cstdint>
#include <string>

#include "platform/posix/FileHead.h"
#include "platform/posix/StreamObject.h"

namespace platform {

class FileObject : public StreamObject {
 public:
  // The file at a POSIX path, with CreateFileW's access and disposition; null with the
  // last error set when it can't be opened.
  static FileObject* Open(const std::string& path, DWORD access, DWORD shareMode,
                          DWORD disposition);
  // Null, with ERROR_INVALID_HANDLE, for a handle that isn't an open file.
  static FileObject* FromHandle(HANDLE handle);

  BOOL Read(void* buffer, DWORD count, DWORD& done) override;
  BOOL Write(const void* data, DWORD count, DWORD& done) override;
  BOOL Flush() override;
  BOOL Close() override;
  // The position `distance` from the start, the present position or the end; one before
  // the start is refused with ERROR_NEGATIVE_SEEK.
  BOOL PositionFrom(int64_t distance, DWORD moveMethod, int64_t& position);
  void MoveTo(int64_t position);

 private:
  FileObject(int descriptor, DWORD access, int64_t size)
      : m_descriptor(descriptor), m_access(access), m_size(size) {}
  ~FileObject() override;

  int m_descriptor;
  const DWORD m_access;
  int64_t m_position = 0;
  // The size as this handle last saw it: at the open, after its writes, at a seek from
  // the end.
  int64_t m_size;
  FileHead m_head;
};

}  // namespace platform
