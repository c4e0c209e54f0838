// File: the read-ahead that its user never sees, the open modes, lines both ways, and
// what a short read or a failed write through the system becomes.
#include <gtest/gtest.h>

#include <fstream>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "frame/Ref.h"
#include "links/File.h"
#include "tests/support/TempDirectory.h"

namespace kx {
namespace {

// What the system calls of the files did, and the faults they are to show.
struct SystemCallLog {
  int reads = 0, writes = 0, seeks = 0;
  DWORD readLimit = 0xFFFFFFFFu;  // each ReadFile moves at most this many bytes
  bool readsFail = false, writesFail = false, deletesFail = false;
  DWORD failure = 0;  // the last error of a failed call
};
SystemCallLog* calls = nullptr;

BOOL LoggedRead(HANDLE file, LPVOID buffer, DWORD count, DWORD* read, OVERLAPPED* overlapped) {
  ++calls->reads;
  if (calls->readsFail) {
    *read = 0;
    SetLastError(calls->failure);
    return FALSE;
  }
  return ReadFile(file, buffer, std::min(count, calls->readLimit), read, overlapped);
}

// A failing write puts half of its bytes, as a full disk would.
BOOL LoggedWrite(HANDLE file, LPCVOID data, DWORD count, DWORD* written, OVERLAPPED* overlapped) {
  ++calls->writes;
  if (!calls->writesFail) return WriteFile(file, data, count, written, overlapped);
  WriteFile(file, data, count / 2, written, overlapped);
  SetLastError(calls->failure);
  return FALSE;
}

DWORD LoggedSeek(HANDLE file, LONG distance, LONG* high, DWORD method) {
  ++calls->seeks;
  return SetFilePointer(file, distance, high, method);
}

BOOL LoggedDelete(LPCWSTR name) {
  if (!calls->deletesFail) return DeleteFileW(name);
  SetLastError(calls->failure);
  return FALSE;
}

const File::SystemCalls kLoggedCalls = {&CreateFileW, &LoggedRead,        &LoggedWrite,
                                        &LoggedSeek,  &FlushFileBuffers,  &LoggedDelete,
                                        &CloseHandle, &GetFileAttributesW};

class FileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    calls = &m_log;
    m_previous = File::UseSystemCalls(&kLoggedCalls);
  }
  void TearDown() override {
    File::UseSystemCalls(m_previous);
    calls = nullptr;
  }

  std::string Make(const std::string& name, const std::string& contents) {
    std::ofstream(m_directory / name, std::ios::binary) << contents;
    return m_directory / name;
  }
  std::string Contents(const std::string& name) {
    std::ifstream in(m_directory / name, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  // The bytes 0 to 99.
  std::string Counting() {
    std::string bytes(100, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return Make("counting", bytes);
  }
  static std::string Failure(const BaseObject& object) {
    const ErrorRecord& error = object.Error();
    return std::to_string(error.GetNumber()) + " " + (error.GetText() ? error.GetText() : "");
  }
  static std::string Line(String* line) {
    const Ref<String> held(line);
    return held ? std::string(held->GetText(), size_t(held->GetLength())) : "<null>";
  }

  SystemCallLog m_log;
  kxtest::TempDirectory m_directory;

 private:
  const File::SystemCalls* m_previous = nullptr;
};

TEST_F(FileTest, SmallReadsComeFromTheBufferAndLargeOnesFromTheFile) {
  File file;
  file.SetBufferSize(16);
  ASSERT_TRUE(file.Open(Counting().c_str(), File::kRead));
  uint8_t out[32];
  EXPECT_EQ(file.Read(out, 8), 8);  // half the capacity goes straight to the file
  EXPECT_EQ(m_log.reads, 1);
  EXPECT_EQ(file.Read(out, 2), 2);  // fills the buffer with 8 to 23
  EXPECT_EQ(out[0], 8);
  EXPECT_EQ(file.Read(out, 7), 7);
  EXPECT_EQ(out[6], 16);
  EXPECT_EQ(m_log.reads, 2);
  const int seeks = m_log.seeks;
  EXPECT_EQ(file.Tell(), 17);
  EXPECT_EQ(file.Seek(-9, File::kFromCurrent), 8);
  EXPECT_EQ(file.Seek(17, File::kFromStart), 17);
  EXPECT_EQ(m_log.seeks, seeks);

  // Past the end of a full buffer: all that is asked, from the file at the logical position.
  EXPECT_EQ(file.Read(out, 10), 10);
  EXPECT_EQ(out[0], 17);
  EXPECT_EQ(out[9], 26);
  EXPECT_EQ(m_log.reads, 3);
  EXPECT_EQ(file.Read(out, 1), 1);  // the buffer was given up and fills again
  EXPECT_EQ(out[0], 27);
  EXPECT_EQ(m_log.reads, 4);
  EXPECT_EQ(file.Seek(60, File::kFromStart), 60);  // outside the buffer: the system moves
  EXPECT_GT(m_log.seeks, seeks);
  EXPECT_EQ(file.Read(out, 1), 1);
  EXPECT_EQ(out[0], 60);
}

TEST_F(FileTest, ABufferThatHoldsTheEndOfTheFileAnswersWithoutTheSystem) {
  File file;
  file.SetBufferSize(16);
  ASSERT_TRUE(file.Open(Counting().c_str(), File::kRead));
  EXPECT_EQ(file.Seek(90, File::kFromStart), 90);
  uint8_t out[32];
  EXPECT_EQ(file.Read(out, 2), 2);  // 90 to 99: the buffer isn't full
  const SystemCallLog before = m_log;
  EXPECT_FALSE(file.IsAtEnd());
  EXPECT_EQ(file.Read(out, 20), 8);  // only what the buffer holds
  EXPECT_EQ(out[7], 99);
  EXPECT_TRUE(file.IsAtEnd());
  EXPECT_EQ(file.Seek(-4, File::kFromCurrent), 96);
  EXPECT_EQ(file.Seek(0, File::kFromEnd), 100);
  EXPECT_TRUE(file.IsAtEnd());
  EXPECT_EQ(m_log.reads, before.reads);
  EXPECT_EQ(m_log.seeks, before.seeks);
  EXPECT_EQ(file.Seek(-1, File::kFromEnd), 99);  // the system's end, not the buffer's
  EXPECT_EQ(file.Seek(0, 3), -1);
  EXPECT_EQ(Failure(file), "10010 Error opening, reading, writing or seeking file");
}

TEST_F(FileTest, AWriteAfterBufferedReadsGoesWhereTheReaderStands) {
  Make("text", "0123456789");
  File file;
  file.SetBufferSize(8);
  ASSERT_TRUE(file.Open((m_directory / "text").c_str(), File::kUpdate));
  char out[4];
  EXPECT_EQ(file.Read(out, 3), 3);
  const String xy("XY");
  EXPECT_EQ(file.Write(&xy), 2u);
  EXPECT_EQ(file.Tell(), 5);
  file.Close();
  EXPECT_EQ(Contents("text"), "012XY56789");
}

TEST_F(FileTest, OpenModes) {
  File file;
  const std::string path = m_directory / "log";
  ASSERT_TRUE(file.Open(path.c_str(), File::kAppend));  // a missing file is made
  file.Write("ab", 2);
  ASSERT_TRUE(file.Open(path.c_str(), File::kAppend));  // closes the first
  file.Write("cd", 2);
  file.Close();
  EXPECT_EQ(Contents("log"), "abcd");
  ASSERT_TRUE(file.Open(path.c_str(), File::kUpdate));
  file.Write("X", 1);
  file.Close();
  EXPECT_EQ(Contents("log"), "Xbcd");
  ASSERT_TRUE(file.Open(path.c_str(), File::kCreate));
  file.Close();
  EXPECT_EQ(Contents("log"), "");
  const Ref<String> directory(new String(m_directory.Path().c_str()));
  const Ref<String> name(new String("made"));
  ASSERT_TRUE(file.Open(directory.get(), name.get(), File::kUpdate));  // joined with "\\"
  EXPECT_TRUE(file.IsOpen());

  file.SetBufferSize(64);
  EXPECT_EQ(Failure(file), "10006 Cannot set buffer when file is opened");
  EXPECT_FALSE(file.Open(path.c_str(), 5));
  EXPECT_FALSE(file.IsOpen());
  EXPECT_FALSE(file.Error().Failed());
  EXPECT_FALSE(file.Open((m_directory / "missing").c_str(), File::kRead));
  EXPECT_EQ(Failure(file), "2 Error openeing file");
  EXPECT_FALSE(file.Open(static_cast<const char*>(nullptr), File::kRead));
  EXPECT_EQ(Failure(file), "10003 Invalid file name");
}

TEST_F(FileTest, LinesForwardsAndBackwards) {
  File file;
  file.SetBufferSize(64);  // lines go around the buffer
  ASSERT_TRUE(file.Open(Make("lines", "one\r\ntwo\nthree\n").c_str(), File::kRead));
  char out[2];
  file.Read(out, 1);
  EXPECT_EQ(Line(file.ReadLine()), "ne\r\n");
  EXPECT_EQ(Line(file.ReadLine()), "two\n");
  EXPECT_EQ(Line(file.ReadLine()), "three\n");
  EXPECT_EQ(Line(file.ReadLine()), "<null>");
  EXPECT_EQ(Line(file.ReadPreviousLine()), "three\n");
  EXPECT_EQ(Line(file.ReadPreviousLine()), "two\n");
  EXPECT_EQ(Line(file.ReadPreviousLine()), "one\r\n");
  EXPECT_EQ(Line(file.ReadPreviousLine()), "<null>");
  EXPECT_EQ(Line(file.ReadLine()), "one\r\n");

  ASSERT_TRUE(file.Open(Make("single", "abc\n").c_str(), File::kRead));
  file.Seek(0, File::kFromEnd);
  EXPECT_EQ(Line(file.ReadPreviousLine()), "abc\n");
  EXPECT_EQ(file.Tell(), 0);
  // A line without an end is given with the line before it, as the device gives it.
  ASSERT_TRUE(file.Open(Make("open", "a\nbc").c_str(), File::kRead));
  file.Seek(0, File::kFromEnd);
  EXPECT_EQ(Line(file.ReadPreviousLine()), "a\nbc");

  // Long lines come in pieces of 512; 512 bytes without a line end stop the way back.
  ASSERT_TRUE(file.Open(Make("long", std::string(1100, 'x') + "\n").c_str(), File::kRead));
  EXPECT_EQ(Line(file.ReadLine()).size(), 512u);
  EXPECT_EQ(Line(file.ReadLine()).size(), 512u);
  EXPECT_EQ(Line(file.ReadLine()), std::string(76, 'x') + "\n");
  EXPECT_EQ(Line(file.ReadPreviousLine()), std::string(511, 'x') + "\n");
  EXPECT_EQ(file.Tell(), 589);
  EXPECT_EQ(Line(file.ReadPreviousLine()), "<null>");
  EXPECT_EQ(file.Tell(), 77);
}

TEST_F(FileTest, ShortReadsAndFailedCallsReachTheRecord) {
  File file;
  ASSERT_TRUE(file.Open(Counting().c_str(), File::kRead));
  uint8_t out[32];
  m_log.readLimit = 3;
  EXPECT_EQ(file.Read(out, 10), 3);
  EXPECT_FALSE(file.Error().Failed());
  file.Close();
  file.SetBufferSize(16);
  file.Open(Counting().c_str(), File::kRead);
  EXPECT_EQ(file.Read(out, 2), 2);
  EXPECT_EQ(file.Read(out, 10), 1);  // a short fill counts as the end: never more than came
  EXPECT_EQ(out[0], 2);

  m_log.readsFail = true;
  m_log.failure = ERROR_GEN_FAILURE;
  file.Seek(50, File::kFromStart);
  EXPECT_EQ(file.Read(out, 1), 0);
  EXPECT_EQ(Failure(file), "31 Error reading from file");
  m_log.failure = 0;
  EXPECT_EQ(file.Read(out, 1), 0);
  EXPECT_EQ(Failure(file), "10010 Error reading from file");
  EXPECT_EQ(Line(file.ReadLine()), "<null>");
  EXPECT_EQ(Failure(file), "10010 Error reading from file");

  ASSERT_TRUE(file.Open((m_directory / "out").c_str(), File::kCreate));
  m_log.writesFail = true;
  m_log.failure = ERROR_DISK_FULL;
  EXPECT_EQ(file.Write("0123456789", 10), 5u);
  EXPECT_EQ(Failure(file), "10010 Error opening, reading, writing or seeking file");
  file.Close();
  EXPECT_EQ(Contents("out"), "01234");

  // A closed file asks the system all the same, and reports what it says.
  EXPECT_EQ(file.Write("x", 1), 0u);
  EXPECT_EQ(Failure(file), "10010 Error opening, reading, writing or seeking file");
  m_log.readsFail = false;
  EXPECT_EQ(file.Read(out, 1), 0);
  EXPECT_EQ(Failure(file), "6 Error reading from file");
  EXPECT_EQ(file.Tell(), -1);
  EXPECT_TRUE(file.IsAtEnd());
  EXPECT_EQ(Line(file.ReadLine()), "<null>");
}

TEST_F(FileTest, DeletingAndPathNames) {
  File file;
  const Ref<String> gone(new String(Make("gone", "x").c_str()));
  EXPECT_TRUE(file.Delete(gone.get()));
  EXPECT_FALSE(file.Delete(gone.get()));
  EXPECT_EQ(Failure(file), "2 Error deleting file");
  EXPECT_FALSE(file.Delete(nullptr));
  EXPECT_FALSE(file.Error().Failed());
  m_log.deletesFail = true;
  EXPECT_FALSE(file.Delete(gone.get()));
  EXPECT_EQ(Failure(file), "10019 Error deleting file");

  const String path("\\Storage Card\\maps\\a.shp"), plain("a.shp"), folder("\\maps\\");
  EXPECT_EQ(Line(File::DirectoryOf(&path)), "\\Storage Card\\maps\\");
  EXPECT_EQ(Line(File::FileNameOf(&path)), "a.shp");
  EXPECT_EQ(Line(File::FileNameOf(&folder)), "");
  EXPECT_EQ(File::DirectoryOf(&plain), nullptr);
  EXPECT_EQ(File::FileNameOf(nullptr), nullptr);
  const String bare("\\maps");
  EXPECT_EQ(Line(File::JoinPath(&bare, &plain)), "\\maps\\a.shp");
  EXPECT_EQ(Line(File::JoinPath(&folder, &plain)), "\\maps\\a.shp");
  EXPECT_EQ(File::JoinPath(&folder, nullptr), nullptr);
}

}  // namespace
}  // namespace kx
