#include "links/File.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

#include "frame/ErrorNumbers.h"
#include "frame/Ref.h"
#include "links/WideName.h"

namespace kx {

namespace {

constexpr const char* kInvalidFileName = "Invalid file name";
constexpr const char* kOpenFailed = "Error openeing file";
constexpr const char* kFileFailed = "Error opening, reading, writing or seeking file";
constexpr const char* kReadFailed = "Error reading from file";
constexpr const char* kDeleteFailed = "Error deleting file";
constexpr const char* kBufferWhileOpen = "Cannot set buffer when file is opened";
// The longest line ReadLine gives, and the stretch ReadPreviousLine looks back over.
constexpr int32_t kLineLimit = 512;

std::atomic<const File::SystemCalls*> systemCalls{&File::kPlatformCalls};

const File::SystemCalls& Calls() { return *systemCalls.load(std::memory_order_acquire); }

}  // namespace

const File::SystemCalls File::kPlatformCalls = {
    &::CreateFileW,      &::ReadFile,    &::WriteFile,   &::SetFilePointer,
    &::FlushFileBuffers, &::DeleteFileW, &::CloseHandle, &::GetFileAttributesW};

const File::SystemCalls* File::UseSystemCalls(const SystemCalls* calls) {
  return systemCalls.exchange(calls ? calls : &kPlatformCalls, std::memory_order_acq_rel);
}

File::~File() {
  Close();
  delete[] m_buffer;
}

// ---- opening and closing -------------------------------------------------------------

bool File::Open(const String* name, int16_t mode) {
  ClearError();
  Close();
  if (!name) {
    SetError(kErrInvalidArgument, kInvalidFileName);
    return false;
  }
  const std::u16string wide = WideName(name);
  switch (mode) {
    case kRead:
      return OpenWith(wide.c_str(), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    case kCreate:
      return OpenWith(wide.c_str(), GENERIC_WRITE, 0, CREATE_ALWAYS);
    case kAppend:
      return OpenForAppend(wide.c_str());
    case kUpdate:
      return OpenWith(wide.c_str(), GENERIC_READ | GENERIC_WRITE,
                      FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_ALWAYS);
    default:
      return false;
  }
}

bool File::Open(const String* directory, const String* name, int16_t mode) {
  const Ref<String> path(JoinPath(directory, name));
  return Open(path.get(), mode);
}

bool File::Open(const char* name, int16_t mode) {
  const Ref<String> text(name ? new String(name) : nullptr);
  return Open(text.get(), mode);
}

bool File::OpenWith(const WCHAR* name, DWORD access, DWORD shareMode, DWORD disposition) {
  const HANDLE handle = Calls().createFile(name, access, shareMode, nullptr, disposition,
                                           FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    ReportSystemError(kErrFileIO, kOpenFailed);
    return false;
  }
  m_handle = handle;
  return true;
}

// An existing file is written at its end; a missing one is made.
bool File::OpenForAppend(const WCHAR* name) {
  const HANDLE handle = Calls().createFile(name, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                           FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return OpenWith(name, GENERIC_WRITE, 0, CREATE_NEW);
  m_handle = handle;
  Calls().setFilePointer(m_handle, 0, nullptr, FILE_END);
  return true;
}

void File::Close() {
  if (m_handle) Calls().closeHandle(m_handle);
  m_handle = nullptr;
  m_bufferValid = 0;
}

void File::SetBufferSize(int32_t bytes) {
  ClearError();
  if (IsOpen()) {
    SetError(kErrInvalidState, kBufferWhileOpen);
    return;
  }
  if (bytes == m_bufferCapacity) return;
  delete[] m_buffer;
  m_buffer = nullptr;
  m_bufferCapacity = 0;
  m_bufferValid = 0;
  if (bytes <= 0) return;
  m_buffer = new (std::nothrow) uint8_t[size_t(bytes)];
  if (!m_buffer) {
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return;
  }
  m_bufferCapacity = bytes;
}

// ---- reading and writing -------------------------------------------------------------

int32_t File::Read(void* buffer, int32_t count) {
  ClearError();
  count = std::max(count, 0);
  // Only reads smaller than half the buffer pay for filling it.
  if (!m_bufferValid && m_buffer && 2 * int64_t(count) < m_bufferCapacity && !FillBuffer())
    return 0;
  int32_t got = 0;
  if (!m_bufferValid) {
    RawRead(buffer, count, got);
    return got;
  }
  const int32_t left = m_bufferFill - m_bufferPosition;
  // A full buffer has the file going on behind it; one that isn't full ends with the file.
  if (count > left && m_bufferFill == m_bufferCapacity) {
    RawRead(buffer, count, got);
    return got;
  }
  count = std::min(count, left);
  std::memcpy(buffer, m_buffer + m_bufferPosition, size_t(count));
  m_bufferPosition += count;
  return count;
}

bool File::FillBuffer() {
  const int32_t offset = SystemSeek(0, FILE_CURRENT);
  int32_t got = 0;
  if (!RawRead(m_buffer, m_bufferCapacity, got)) return false;
  m_bufferFileOffset = offset;
  m_bufferFill = got;
  m_bufferPosition = 0;
  m_bufferValid = 1;
  return true;
}

bool File::RawRead(void* buffer, int32_t count, int32_t& got) {
  DropBuffer();
  DWORD done = 0;
  const bool read = Calls().readFile(m_handle, buffer, DWORD(count), &done, nullptr);
  got = int32_t(done);
  if (!read) ReportSystemError(kErrFileIO, kReadFailed);
  return read;
}

uint32_t File::Write(const void* data, uint32_t count) {
  ClearError();
  DropBuffer();
  DWORD written = 0;
  Calls().writeFile(m_handle, data, count, &written, nullptr);
  if (written != count) SetError(kErrFileIO, kFileFailed);
  return written;
}

uint32_t File::Write(const String* text) {
  return text ? Write(text->GetText(), uint32_t(text->GetLength())) : Write(nullptr, 0);
}

void File::Flush() {
  ClearError();
  DropBuffer();
  if (!Calls().flushFileBuffers(m_handle)) ReportSystemError(kErrFileIO, kFileFailed);
}

// ---- position ---------------------------------------------------------------------------

void File::DropBuffer() {
  if (!m_bufferValid) return;
  m_bufferValid = 0;
  SystemSeek(m_bufferFileOffset + m_bufferPosition, FILE_BEGIN);
}

// Offsets are 32-bit signed: a position the system gives beyond them (a file over 2 GiB)
// can't be named and fails like any seek, instead of coming back negative.
int32_t File::SystemSeek(int32_t offset, DWORD origin) {
  const DWORD position = Calls().setFilePointer(m_handle, offset, nullptr, origin);
  if (position != INVALID_SET_FILE_POINTER && position <= DWORD(INT32_MAX))
    return int32_t(position);
  SetError(kErrFileIO, kFileFailed);
  return -1;
}

int32_t File::Seek(int32_t offset, int16_t origin) {
  ClearError();
  if (origin < kFromStart || origin > kFromEnd) {
    SetError(kErrFileIO, kFileFailed);
    return -1;
  }
  if (m_bufferValid && SeekInBuffer(offset, origin)) return m_bufferFileOffset + m_bufferPosition;
  DropBuffer();
  return SystemSeek(offset, DWORD(origin));
}

// A target inside the buffer costs no system call.
bool File::SeekInBuffer(int32_t offset, int16_t origin) {
  switch (origin) {
    case kFromStart:
      if (offset < m_bufferFileOffset ||
          int64_t(offset) >= int64_t(m_bufferFileOffset) + m_bufferFill)
        return false;
      m_bufferPosition = offset - m_bufferFileOffset;
      return true;
    case kFromCurrent:
      if (!(offset >= 0 && offset < m_bufferFill - m_bufferPosition) &&
          !(offset <= 0 && offset >= -m_bufferPosition))
        return false;
      m_bufferPosition += offset;
      return true;
    default:  // only a buffer that holds the end of the file knows where the end is
      if (m_bufferFill == m_bufferCapacity || offset != 0) return false;
      m_bufferPosition = m_bufferFill;
      return true;
  }
}

int32_t File::Tell() {
  ClearError();
  if (m_bufferValid) return m_bufferFileOffset + m_bufferPosition;
  return SystemSeek(0, FILE_CURRENT);
}

bool File::IsAtStart() {
  ClearError();
  DropBuffer();
  return int32_t(Calls().setFilePointer(m_handle, 0, nullptr, FILE_CURRENT)) <= 0;
}

bool File::IsAtEnd() {
  ClearError();
  if (m_bufferValid) {
    if (m_bufferFill < m_bufferCapacity) return m_bufferPosition >= m_bufferFill;
    if (m_bufferPosition < m_bufferFill) return false;
    DropBuffer();
  }
  const SystemCalls& calls = Calls();
  const int32_t position = int32_t(calls.setFilePointer(m_handle, 0, nullptr, FILE_CURRENT));
  const int32_t end = int32_t(calls.setFilePointer(m_handle, 0, nullptr, FILE_END));
  calls.setFilePointer(m_handle, position, nullptr, FILE_BEGIN);
  return position >= end;
}

// ---- lines ------------------------------------------------------------------------------

String* File::ReadLine() {
  ClearError();
  DropBuffer();
  if (IsAtEnd()) return nullptr;
  const int32_t start = SystemSeek(0, FILE_CURRENT);
  char bytes[kLineLimit];
  int32_t got = 0;
  if (!RawRead(bytes, kLineLimit, got) || got == 0) return nullptr;
  const auto* end = static_cast<const char*>(std::memchr(bytes, '\n', size_t(got)));
  const int32_t count = end ? int32_t(end - bytes) + 1 : got;
  SystemSeek(start + count, FILE_BEGIN);
  return new String(bytes, count);
}

String* File::ReadPreviousLine() {
  ClearError();
  DropBuffer();
  if (IsAtStart()) return nullptr;
  const int32_t position = SystemSeek(0, FILE_CURRENT);
  const int32_t stretch = std::min(position, kLineLimit);
  const int32_t from = SystemSeek(position - stretch, FILE_BEGIN);
  char bytes[kLineLimit];
  int32_t got = 0;
  if (from < 0 || !RawRead(bytes, stretch, got)) return nullptr;
  // The first line end met from behind ends the line wanted; a second one ends the walk.
  int32_t count = 0;
  bool ended = false;
  for (int32_t i = got - 1; i >= 0; --i) {
    if (bytes[i] == '\n') {
      if (ended) break;
      ended = true;
    }
    ++count;
  }
  SystemSeek(from + got - count, FILE_BEGIN);
  return ended ? new String(bytes + got - count, count) : nullptr;
}

// ---- names ------------------------------------------------------------------------------

bool File::Delete(const String* name) {
  ClearError();
  DropBuffer();
  if (!name) return false;
  if (Calls().deleteFile(WideName(name).c_str())) return true;
  ReportSystemError(kErrFileDelete, kDeleteFailed);
  return false;
}

bool File::Delete(const String* directory, const String* name) {
  const Ref<String> path(JoinPath(directory, name));
  return Delete(path.get());
}

bool File::Exists(const String* name) {
  if (!name) return false;
  const DWORD attributes = Calls().getFileAttributes(WideName(name).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

String* File::DirectoryOf(const String* path) {
  const int32_t last = path ? path->ReverseFind("\\", -1) : -1;
  return last < 0 ? nullptr : path->Mid(0, last + 1);
}

String* File::FileNameOf(const String* path) {
  const int32_t last = path ? path->ReverseFind("\\", -1) : -1;
  return last < 0 ? nullptr : path->Mid(last + 1, 0);
}

String* File::JoinPath(const String* directory, const String* name) {
  if (!directory || !name) return nullptr;
  const bool separated = directory->GetChar(directory->GetLength() - 1) == '\\';
  const String separator(separated ? "" : "\\");
  return new String(directory, &separator, name);
}

// The system's last error, or the fallback number when the system gives none.
void File::ReportSystemError(int32_t fallback, const char* text) {
  const DWORD code = GetLastError();
  SetError(code ? int32_t(code) : fallback, text);
}

}  // namespace kx
