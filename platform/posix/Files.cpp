// The file calls: paths with "\\" or "/" between their parts, devices "COMn:" to the
// serial ports, everything else to files.
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "platform/posix/FileObject.h"
#include "platform/posix/SerialDevice.h"
#include "platform/posix/SystemError.h"
#include "platform/posix/WideText.h"

using platform::FileObject;
using platform::StreamObject;

namespace {

std::string PathOf(LPCWSTR name) {
  std::string path = platform::ToUtf8(name);
  for (char& c : path)
    if (c == '\\') c = '/';
  return path;
}

// Holds a reference on a stream for the length of a call, so that a CloseHandle on
// another thread, which is how a blocked read is ended, can't free it under the caller;
// a handle closed just before the call fails instead of reaching a freed stream.
class StreamInUse {
 public:
  explicit StreamInUse(HANDLE handle) : m_stream(StreamObject::Acquire(handle)) {}
  ~StreamInUse() {
    if (m_stream) m_stream->Release();
  }
  StreamObject* operator->() const { return m_stream; }
  explicit operator bool() const { return m_stream != nullptr; }

 private:
  StreamObject* const m_stream;
};

}  // namespace

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode, SECURITY_ATTRIBUTES*,
                   DWORD disposition, DWORD, HANDLE) {
  if (!name || !name[0]) {
    SetLastError(name ? ERROR_FILE_NOT_FOUND : ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  if (platform::IsSerialDeviceName(name))
    return platform::OpenSerialDevice(name, access, shareMode, disposition);
  FileObject* file = FileObject::Open(PathOf(name), access, shareMode, disposition);
  return file ? file->AsHandle() : INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE handle, LPVOID buffer, DWORD count, DWORD* read, OVERLAPPED*) {
  DWORD done = 0;
  StreamInUse stream(handle);
  const BOOL result = stream ? stream->Read(buffer, count, done) : FALSE;
  if (read) *read = done;
  return result;
}

BOOL WriteFile(HANDLE handle, LPCVOID data, DWORD count, DWORD* written, OVERLAPPED*) {
  DWORD done = 0;
  StreamInUse stream(handle);
  const BOOL result = stream ? stream->Write(data, count, done) : FALSE;
  if (written) *written = done;
  return result;
}

DWORD SetFilePointer(HANDLE handle, LONG distance, LONG* distanceHigh, DWORD moveMethod) {
  FileObject* file = FileObject::FromHandle(handle);
  if (!file) return INVALID_SET_FILE_POINTER;
  const int64_t move = distanceHigh
                           ? int64_t(uint64_t(uint32_t(*distanceHigh)) << 32 | uint32_t(distance))
                           : int64_t(distance);
  int64_t position = 0;
  if (!file->PositionFrom(move, moveMethod, position)) return INVALID_SET_FILE_POINTER;
  // Without a high part there is nowhere to put a position beyond 32 bits.
  if (!distanceHigh && position >= int64_t(INVALID_SET_FILE_POINTER)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_SET_FILE_POINTER;
  }
  file->MoveTo(position);
  if (distanceHigh) {
    *distanceHigh = LONG(position >> 32);
    SetLastError(ERROR_SUCCESS);  // the low part alone may look like the failure value
  }
  return DWORD(position);
}

BOOL FlushFileBuffers(HANDLE handle) {
  StreamInUse stream(handle);
  return stream ? stream->Flush() : FALSE;
}

BOOL DeleteFileW(LPCWSTR name) {
  if (!name) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  return ::unlink(PathOf(name).c_str()) == 0 ? TRUE : platform::FailFromErrno();
}

DWORD GetFileAttributesW(LPCWSTR name) {
  if (!name) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return INVALID_FILE_ATTRIBUTES;
  }
  struct stat status;
  if (::stat(PathOf(name).c_str(), &status) != 0) {
    platform::FailFromErrno();
    return INVALID_FILE_ATTRIBUTES;
  }
  return S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}
