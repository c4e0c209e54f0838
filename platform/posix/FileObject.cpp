// Files on file descriptors, with the Windows rules where POSIX has others: dispositions
// instead of open flags, directories refused, access checked by the handle, and sharing
// on advisory locks (below).
#include "platform/posix/FileObject.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "platform/posix/SystemError.h"

namespace platform {

namespace {

// A writer's descriptor may read too, where the file allows it: that is what maps its
// first page. The handle still refuses the reads it wasn't opened for.
int AccessFlags(DWORD access) { return access & GENERIC_WRITE ? O_RDWR : O_RDONLY; }

int OpenDescriptor(const std::string& path, int flags) {
  int descriptor;
  do {
    descriptor = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

// A missing file is ERROR_FILE_NOT_FOUND, a missing directory on its way
// ERROR_PATH_NOT_FOUND, as on the device.
DWORD OpenError(const std::string& path) {
  const int error = errno;
  if (error != ENOENT) return ErrorFromErrno(error);
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos || slash == 0) return ERROR_FILE_NOT_FOUND;
  struct stat status;
  const bool folderThere = ::stat(path.substr(0, slash).c_str(), &status) == 0;
  return folderThere ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

// Opens by the disposition. CREATE_ALWAYS and OPEN_ALWAYS tell by ERROR_ALREADY_EXISTS
// that the file was there, so they try the exclusive creation first. A file that
// CREATE_ALWAYS finds is emptied later, once the handle has it to itself.
int OpenByDisposition(const std::string& path, int flags, DWORD disposition) {
  switch (disposition) {
    case OPEN_EXISTING:
      return OpenDescriptor(path, flags);
    case CREATE_NEW:
      return OpenDescriptor(path, flags | O_CREAT | O_EXCL);
    case CREATE_ALWAYS:
    case OPEN_ALWAYS: {
      const int descriptor = OpenDescriptor(path, flags | O_CREAT | O_EXCL);
      if (descriptor >= 0 || errno != EEXIST) return descriptor;
      SetLastError(ERROR_ALREADY_EXISTS);
      return OpenDescriptor(path, flags);
    }
    default:
      errno = EINVAL;
      return -1;
  }
}

// A descriptor that can't be positioned (a pipe, a terminal) transfers at its own place.
ssize_t ReadAt(int descriptor, void* buffer, size_t count, int64_t offset) {
  const ssize_t got = ::pread(descriptor, buffer, count, off_t(offset));
  return got < 0 && errno == ESPIPE ? ::read(descriptor, buffer, count) : got;
}

ssize_t WriteAt(int descriptor, const void* data, size_t count, int64_t offset) {
  const ssize_t put = ::pwrite(descriptor, data, count, off_t(offset));
  return put < 0 && errno == ESPIPE ? ::write(descriptor, data, count) : put;
}

// Sharing, on the advisory locks that every handle of this library takes: an open file
// holds a shared lock, a handle that shares nothing an exclusive one, and emptying a file
// that CREATE_ALWAYS found needs it alone for that moment, so that nobody's view of the
// file (a mapped header, above all) loses its bytes under it. A handle that can't have its
// lock fails with ERROR_SHARING_VIOLATION, as on the device. Programs that take no locks
// aren't held back, and a file system without locks shares everything.
bool Lock(int descriptor, int operation) {
  int result;
  do {
    result = ::flock(descriptor, operation | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  return result == 0 || errno != EWOULDBLOCK;
}

bool TakeShare(int descriptor, DWORD shareMode, bool emptying) {
  const bool alone = shareMode == 0 || emptying;
  if (!Lock(descriptor, alone ? LOCK_EX : LOCK_SH)) return false;
  if (emptying && ::ftruncate(descriptor, 0) != 0) return false;
  return !(alone && shareMode != 0) || Lock(descriptor, LOCK_SH);
}

int OpenWithAccess(const std::string& path, DWORD access, DWORD disposition) {
  const int descriptor = OpenByDisposition(path, AccessFlags(access), disposition);
  if (descriptor >= 0 || errno != EACCES || access & GENERIC_READ) return descriptor;
  return OpenByDisposition(path, O_WRONLY, disposition);
}

}  // namespace

FileObject* FileObject::Open(const std::string& path, DWORD access, DWORD shareMode,
                             DWORD disposition) {
  SetLastError(ERROR_SUCCESS);
  const int descriptor = OpenWithAccess(path, access, disposition);
  if (descriptor < 0) {
    SetLastError(OpenError(path));
    return nullptr;
  }
  const DWORD found = GetLastError();  // ERROR_ALREADY_EXISTS stays the caller's news
  const bool emptying = disposition == CREATE_ALWAYS && found == ERROR_ALREADY_EXISTS;
  if (!TakeShare(descriptor, shareMode, emptying)) {
    const int error = errno;
    ::close(descriptor);
    SetLastError(error == EWOULDBLOCK ? ERROR_SHARING_VIOLATION : ErrorFromErrno(error));
    return nullptr;
  }
  struct stat status;
  if (::fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
    ::close(descriptor);
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  }
  auto* file = new (std::nothrow) FileObject(descriptor, access, int64_t(status.st_size));
  if (!file) {
    ::close(descriptor);
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  }
  return file;
}

FileObject* FileObject::FromHandle(HANDLE handle) {
  StreamObject* stream = StreamObject::FromHandle(handle);
  auto* file = dynamic_cast<FileObject*>(stream);
  if (stream && !file) SetLastError(ERROR_INVALID_HANDLE);
  return file;
}

FileObject::~FileObject() { Close(); }

BOOL FileObject::Read(void* buffer, DWORD count, DWORD& done) {
  done = 0;
  if (!(m_access & GENERIC_READ)) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
  }
  // A disk file gives all that is asked unless the end comes first, as on the device.
  auto* bytes = static_cast<char*>(buffer);
  while (done < count) {
    const ssize_t got = ReadAt(m_descriptor, bytes + done, count - done, m_position);
    if (got == 0) break;
    if (got < 0) {
      if (errno == EINTR) continue;
      return FailFromErrno();
    }
    done += DWORD(got);
    m_position += got;
  }
  return TRUE;
}

BOOL FileObject::Write(const void* data, DWORD count, DWORD& done) {
  done = 0;
  if (!(m_access & GENERIC_WRITE)) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
  }
  if (m_head.Rewrite(m_descriptor, m_position, data, count, m_size)) {
    done = count;
    m_position += count;
    return TRUE;
  }
  const auto* bytes = static_cast<const char*>(data);
  while (done < count) {
    const ssize_t put = WriteAt(m_descriptor, bytes + done, count - done, m_position);
    if (put < 0) {
      if (errno == EINTR) continue;
      return FailFromErrno();
    }
    done += DWORD(put);
    m_position += put;
    if (m_position > m_size) m_size = m_position;
  }
  return TRUE;
}

BOOL FileObject::Flush() { return ::fsync(m_descriptor) == 0 ? TRUE : FailFromErrno(); }

BOOL FileObject::Close() {
  if (m_descriptor < 0) return TRUE;
  m_head.Release();
  const int descriptor = m_descriptor;
  m_descriptor = -1;
  // After close, even a failed one, the descriptor is gone: no retry on EINTR.
  return ::close(descriptor) == 0 || errno == EINTR ? TRUE : FailFromErrno();
}

BOOL FileObject::PositionFrom(int64_t distance, DWORD moveMethod, int64_t& position) {
  int64_t base = 0;
  if (moveMethod == FILE_CURRENT) {
    base = m_position;
  } else if (moveMethod == FILE_END) {
    struct stat status;
    if (::fstat(m_descriptor, &status) != 0) return FailFromErrno();
    base = m_size = status.st_size;
  } else if (moveMethod != FILE_BEGIN) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  position = base + distance;
  if (position >= 0) return TRUE;
  SetLastError(ERROR_NEGATIVE_SEEK);
  return FALSE;
}

void FileObject::MoveTo(int64_t position) { m_position = position; }

}  // namespace platform
