// The platform's files: Windows dispositions and errors on file descriptors, paths with
// either separator, and device names that never reach the file system.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

#include "platform/win32ce.h"
#include "tests/support/TempDirectory.h"

namespace {

std::u16string Wide(const std::string& text) { return std::u16string(text.begin(), text.end()); }

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

HANDLE Open(const std::string& path, DWORD access, DWORD disposition, DWORD share = kShareAll) {
  return CreateFileW(Wide(path).c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                     nullptr);
}

std::string Contents(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

void Put(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

TEST(Files, WriteSeekAndReadThroughBackslashedPaths) {
  kxtest::TempDirectory directory;
  HANDLE file = Open(directory.Path() + "\\data.bin", GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  DWORD done = 0;
  EXPECT_TRUE(WriteFile(file, "hello world", 11, &done, nullptr));
  EXPECT_EQ(done, 11u);
  EXPECT_TRUE(FlushFileBuffers(file));
  EXPECT_EQ(SetFilePointer(file, -5, nullptr, FILE_END), 6u);
  char bytes[32] = {};
  EXPECT_TRUE(ReadFile(file, bytes, sizeof bytes, &done, nullptr));
  EXPECT_EQ(std::string(bytes, done), "world");
  EXPECT_TRUE(ReadFile(file, bytes, sizeof bytes, &done, nullptr));  // the end is no failure
  EXPECT_EQ(done, 0u);

  // A position before the start is refused and nothing moves.
  EXPECT_EQ(SetFilePointer(file, -12, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
  EXPECT_EQ(GetLastError(), ERROR_NEGATIVE_SEEK);
  EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 11u);
  // Without a high part, a position beyond 32 bits has nowhere to go.
  EXPECT_EQ(SetFilePointer(file, 0x7FFFFFFF, nullptr, FILE_BEGIN), 0x7FFFFFFFu);
  EXPECT_EQ(SetFilePointer(file, 0x7FFFFFFF, nullptr, FILE_CURRENT), 0xFFFFFFFEu);
  EXPECT_EQ(SetFilePointer(file, 2, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  LONG high = 1;
  EXPECT_EQ(SetFilePointer(file, 2, &high, FILE_CURRENT), 0u);
  EXPECT_EQ(high, 2);
  EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
  EXPECT_TRUE(CloseHandle(file));
  EXPECT_EQ(Contents(directory / "data.bin"), "hello world");
}

// Each transfer starts at the handle's pointer and moves it; a write beyond the end
// leaves zeros in between.
TEST(Files, TransfersStartAtTheHandlesPointerAndMoveIt) {
  kxtest::TempDirectory directory;
  const std::string path = directory / "data.bin";
  Put(path, "0123456789");
  HANDLE file = Open(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
  HANDLE other = Open(path, GENERIC_READ, OPEN_EXISTING);
  char bytes[4] = {};
  DWORD done = 0;
  EXPECT_EQ(SetFilePointer(file, 3, nullptr, FILE_BEGIN), 3u);
  EXPECT_TRUE(ReadFile(file, bytes, 2, &done, nullptr));
  EXPECT_EQ(std::string(bytes, done), "34");
  EXPECT_TRUE(WriteFile(file, "ab", 2, &done, nullptr));
  EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 7u);
  EXPECT_TRUE(ReadFile(other, bytes, 4, &done, nullptr));  // its own pointer, still at 0
  EXPECT_EQ(std::string(bytes, done), "0123");
  EXPECT_EQ(SetFilePointer(file, 2, nullptr, FILE_END), 12u);
  EXPECT_TRUE(WriteFile(file, "z", 1, &done, nullptr));
  CloseHandle(file);
  CloseHandle(other);
  EXPECT_EQ(Contents(path), std::string("01234ab789\0\0z", 13));
}

// Rewrites inside the first page, as headers are rewritten after every record: other
// handles and the writer's own reads see them at once; writes that reach beyond what the
// file holds, or beyond the page, still make it grow.
TEST(Files, RewritesOfTheFirstPageAreSeenAtOnceAndGrowthStillWorks) {
  kxtest::TempDirectory directory;
  const std::string path = directory / "data.bin";
  HANDLE writer = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
  HANDLE both = Open(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
  HANDLE reader = Open(path, GENERIC_READ, OPEN_EXISTING);
  DWORD done = 0;
  const std::string body(200, '.');
  EXPECT_TRUE(WriteFile(writer, body.data(), 200, &done, nullptr));
  for (const char* head : {"HEAD", "head", "Head"}) {
    SetFilePointer(writer, 0, nullptr, FILE_BEGIN);
    EXPECT_TRUE(WriteFile(writer, head, 4, &done, nullptr));
    EXPECT_EQ(done, 4u);
    char bytes[4] = {};
    SetFilePointer(reader, 0, nullptr, FILE_BEGIN);
    EXPECT_TRUE(ReadFile(reader, bytes, 4, &done, nullptr));
    EXPECT_EQ(std::string(bytes, done), head);
  }
  EXPECT_EQ(SetFilePointer(writer, 0, nullptr, FILE_CURRENT), 4u);
  SetFilePointer(writer, 198, nullptr, FILE_BEGIN);
  EXPECT_TRUE(WriteFile(writer, "xyz", 3, &done, nullptr));  // two bytes more than there were
  SetFilePointer(writer, 4094, nullptr, FILE_BEGIN);
  EXPECT_TRUE(WriteFile(writer, "page", 4, &done, nullptr));  // across the end of the page
  SetFilePointer(both, 4, nullptr, FILE_BEGIN);
  EXPECT_TRUE(WriteFile(both, "-", 1, &done, nullptr));
  char bytes[6] = {};
  SetFilePointer(both, 0, nullptr, FILE_BEGIN);
  EXPECT_TRUE(ReadFile(both, bytes, 6, &done, nullptr));
  EXPECT_EQ(std::string(bytes, done), "Head-.");
  for (HANDLE file : {writer, both, reader}) CloseHandle(file);
  const std::string contents = Contents(path);
  ASSERT_EQ(contents.size(), 4098u);
  EXPECT_EQ(contents.substr(0, 6), "Head-.");
  EXPECT_EQ(contents.substr(196, 6), std::string("..xyz\0", 6));
  EXPECT_EQ(contents.substr(4094), "page");
}

TEST(Files, DispositionsAndTheirErrorsAsOnTheDevice) {
  kxtest::TempDirectory directory;
  const std::string path = directory / "file.txt";
  EXPECT_EQ(Open(path, GENERIC_READ, OPEN_EXISTING), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Open(directory / "missing/file.txt", GENERIC_WRITE, CREATE_ALWAYS),
            INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Open(directory.Path(), GENERIC_READ, OPEN_EXISTING), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);

  HANDLE file = Open(path, GENERIC_WRITE, OPEN_ALWAYS);
  EXPECT_EQ(GetLastError(), ERROR_SUCCESS);  // it wasn't there
  WriteFile(file, "abc", 3, nullptr, nullptr);
  CloseHandle(file);
  EXPECT_EQ(Open(path, GENERIC_WRITE, CREATE_NEW), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS);
  file = Open(path, GENERIC_WRITE, OPEN_ALWAYS);
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  CloseHandle(file);
  EXPECT_EQ(Contents(path), "abc");
  file = Open(path, GENERIC_WRITE, CREATE_ALWAYS);
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  CloseHandle(file);
  EXPECT_EQ(Contents(path), "");
  EXPECT_EQ(Open(path, GENERIC_WRITE, 9), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

// Handles that share coexist; one that shares nothing is alone with the file; and a file
// is emptied only by a handle that has it to itself, so nobody loses bytes under a handle.
TEST(Files, SharingAsOnTheDevice) {
  kxtest::TempDirectory directory;
  const std::string path = directory / "shared.bin";
  Put(path, "bytes");
  HANDLE reader = Open(path, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ);
  HANDLE other = Open(path, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ);
  HANDLE updater = Open(path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
  for (HANDLE file : {reader, other, updater}) EXPECT_NE(file, INVALID_HANDLE_VALUE);
  EXPECT_EQ(Open(path, GENERIC_WRITE, CREATE_ALWAYS, 0), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(Open(path, GENERIC_WRITE, CREATE_ALWAYS), INVALID_HANDLE_VALUE);  // empties it
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(Contents(path), "bytes");
  for (HANDLE file : {reader, other, updater}) CloseHandle(file);
  HANDLE alone = Open(path, GENERIC_WRITE, CREATE_ALWAYS, 0);
  ASSERT_NE(alone, INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(Contents(path), "");
  EXPECT_EQ(Open(path, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
  CloseHandle(alone);
  HANDLE again = Open(path, GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ);
  EXPECT_NE(again, INVALID_HANDLE_VALUE);
  CloseHandle(again);
}

TEST(Files, TheHandleDecidesWhatMayBeDone) {
  kxtest::TempDirectory directory;
  Put(directory / "file.txt", "abc");
  char byte;
  DWORD done = 7;
  HANDLE reader = Open(directory / "file.txt", GENERIC_READ, OPEN_EXISTING);
  EXPECT_FALSE(WriteFile(reader, "x", 1, &done, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(done, 0u);
  HANDLE writer = Open(directory / "file.txt", GENERIC_WRITE, OPEN_EXISTING);
  EXPECT_FALSE(ReadFile(writer, &byte, 1, &done, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  CloseHandle(reader);
  CloseHandle(writer);

  HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  for (HANDLE notAFile : {HANDLE(nullptr), INVALID_HANDLE_VALUE, event}) {
    SetLastError(0);
    EXPECT_FALSE(ReadFile(notAFile, &byte, 1, &done, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(SetFilePointer(notAFile, 0, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(FlushFileBuffers(notAFile));
  }
  EXPECT_FALSE(CloseHandle(INVALID_HANDLE_VALUE));
  CloseHandle(event);
}

// A file of the port's name in the working directory is never what "COM3:" opens.
TEST(Files, SerialDeviceNamesGoToThePortsNotToFiles) {
  kxtest::PrivateRegistry noPorts;
  kxtest::TempDirectory directory;
  char* previous = getcwd(nullptr, 0);
  ASSERT_EQ(chdir(directory.Path().c_str()), 0);
  Put("COM3:", "not a port");
  for (const char16_t* port : {u"COM3:", u"com12:"}) {
    EXPECT_EQ(CreateFileW(port, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  }
  for (const char16_t* file : {u"COM3", u"COM:", u"COMX:", u"COM3:x"}) {
    HANDLE handle = CreateFileW(file, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    CloseHandle(handle);
  }
  EXPECT_EQ(chdir(previous), 0);
  free(previous);
}

TEST(Files, DeleteFileByEitherSeparator) {
  kxtest::TempDirectory directory;
  Put(directory / "gone.txt", "x");
  EXPECT_TRUE(DeleteFileW(Wide(directory.Path() + "\\gone.txt").c_str()));
  EXPECT_FALSE(DeleteFileW(Wide(directory / "gone.txt").c_str()));
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(DeleteFileW(Wide(directory.Path()).c_str()));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

}  // namespace
