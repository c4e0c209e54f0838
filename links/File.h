// A file with a read-ahead buffer that its user never sees: a logical position, four open
// modes, and text lines read forwards and backwards. All of the library's file input and
// output goes through this class.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"
#include "frame/String.h"

namespace kx {

class File : public BaseObject {
 public:
  enum Mode : int16_t { kRead = 1, kCreate = 2, kAppend = 3, kUpdate = 4 };
  enum Origin : int16_t { kFromStart = 0, kFromCurrent = 1, kFromEnd = 2 };

  // The system calls of every File, in one table that tests replace with their own to
  // make reads come short, writes fail, or to count the calls.
  struct SystemCalls {
    decltype(&::CreateFileW) createFile;
    decltype(&::ReadFile) readFile;
    decltype(&::WriteFile) writeFile;
    decltype(&::SetFilePointer) setFilePointer;
    decltype(&::FlushFileBuffers) flushFileBuffers;
    decltype(&::DeleteFileW) deleteFile;
    decltype(&::CloseHandle) closeHandle;
    decltype(&::GetFileAttributesW) getFileAttributes;
  };
  static const SystemCalls kPlatformCalls;
  // Puts a table in place for all files and returns the one it replaces; null stands for
  // the platform's. Only while no file is in use on another thread.
  static const SystemCalls* UseSystemCalls(const SystemCalls* calls);

  File() = default;
  ~File() override;

  // Closes an open file first. A mode outside 1 to 4 leaves the file closed and reports
  // nothing. The directory and the name are joined with "\\".
  bool Open(const String* name, int16_t mode);
  bool Open(const String* directory, const String* name, int16_t mode);
  bool Open(const char* name, int16_t mode);
  void Close() override;
  bool IsOpen() const { return m_handle != nullptr; }

  // Only while the file is closed; 0 reads without a buffer.
  void SetBufferSize(int32_t bytes);
  // Fewer bytes than asked only at the end of the file, or at the end of what the buffer
  // holds when that is the end of the file.
  int32_t Read(void* buffer, int32_t count);
  uint32_t Write(const void* data, uint32_t count);
  // The characters, without a terminator.
  uint32_t Write(const String* text);
  // Returns the new position, -1 on failure.
  int32_t Seek(int32_t offset, int16_t origin);
  int32_t Tell();
  void Flush();
  bool IsAtStart();
  bool IsAtEnd();
  // The next line with its line end, or a piece of 512 bytes of a longer one; null at
  // the end.
  String* ReadLine();
  // The line that ends before the position, which then stands at its start; null at the
  // start, and when 512 bytes before the position hold no line end.
  String* ReadPreviousLine();
  // A null name does nothing.
  bool Delete(const String* name);
  bool Delete(const String* directory, const String* name);
  // A file (not a directory) stands under the name.
  static bool Exists(const String* name);

  // Up to and with the last "\\"; null for a null path or one without a backslash.
  static String* DirectoryOf(const String* path);
  // What follows the last "\\"; null likewise.
  static String* FileNameOf(const String* path);
  // One "\\" between the two, none added when the directory ends in one; null when
  // either is null.
  static String* JoinPath(const String* directory, const String* name);

 private:
  bool OpenWith(const WCHAR* name, DWORD access, DWORD shareMode, DWORD disposition);
  bool OpenForAppend(const WCHAR* name);
  // Puts the system's position where the logical one is and forgets the buffer.
  void DropBuffer();
  bool FillBuffer();
  bool SeekInBuffer(int32_t offset, int16_t origin);
  // One ReadFile at the logical position.
  bool RawRead(void* buffer, int32_t count, int32_t& got);
  int32_t SystemSeek(int32_t offset, DWORD origin);
  void ReportSystemError(int32_t fallback, const char* text);

  HANDLE m_handle = nullptr;
  int32_t m_bufferCapacity = 0;
  uint8_t* m_buffer = nullptr;
  int32_t m_bufferPosition = 0;  // the next byte to hand out
  int32_t m_bufferFill = 0;
  int32_t m_bufferFileOffset = 0;  // of the buffer's first byte
  // While the buffer is in use the system's position stands at the end of what was read
  // into it, and the logical position is buffer file offset + buffer position.
  uint8_t m_bufferValid = 0;
};

}  // namespace kx
