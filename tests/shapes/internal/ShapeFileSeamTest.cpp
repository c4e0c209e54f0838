// ShapeFile over a File whose system calls fail on purpose: a write that fails at any
// point leaves files that read as whole files of the records before it (the state a
// crash leaves), and reads that come short fail cleanly.
#include <gtest/gtest.h>

#include "frame/Ref.h"
#include "links/File.h"
#include "shapes/ShapeFile.h"
#include "tests/support/TempDirectory.h"

namespace kx {
namespace {

int writesLeft = 0;
DWORD readLimit = 0;

BOOL LimitedWrite(HANDLE handle, LPCVOID data, DWORD count, DWORD* written, OVERLAPPED* o) {
  if (writesLeft-- > 0) return ::WriteFile(handle, data, count, written, o);
  *written = 0;
  return false;
}

BOOL ShortRead(HANDLE handle, LPVOID buffer, DWORD count, DWORD* read, OVERLAPPED* o) {
  return ::ReadFile(handle, buffer, count < readLimit ? count : readLimit, read, o);
}

// Puts a table in place for the length of a scope.
class Calls {
 public:
  explicit Calls(const File::SystemCalls& calls) : m_calls(calls) { File::UseSystemCalls(&m_calls); }
  ~Calls() { File::UseSystemCalls(nullptr); }

 private:
  File::SystemCalls m_calls;
};

Ref<String> Name(const kxtest::TempDirectory& dir) { return Ref<String>(new String((dir / "t").c_str())); }

Ref<Shape> Line(int32_t id) {
  Ref<Shape> shape(new Shape());
  shape->SetShapeID(id);
  for (int k = 0; k < 3; ++k) shape->AppendNode(id, k, 0, 0);
  return shape;
}

// ShapeIDs of the records, and whether the reading ended without a failure.
std::vector<int32_t> ReadIds(const kxtest::TempDirectory& dir, bool& clean) {
  ShapeFile file;
  file.Open(Name(dir).get(), ShapeFile::kRead);
  std::vector<int32_t> ids;
  while (Ref<Shape> shape{file.Read()}) ids.push_back(shape->GetShapeID());
  clean = !file.Error().Failed();
  return ids;
}

TEST(ShapeFileSeam, AFailedWriteAtAnyPointLeavesTheRecordsBeforeIt) {
  for (int allowed = 0; allowed < 40; ++allowed) {
    kxtest::TempDirectory dir;
    int32_t completed = 0;
    {
      File::SystemCalls calls = File::kPlatformCalls;
      calls.writeFile = &LimitedWrite;
      Calls scope(calls);
      writesLeft = allowed;
      ShapeFile file;
      file.SetShapeFileType(3);
      file.Open(Name(dir).get(), ShapeFile::kCreate);
      for (int32_t id = 1; id <= 8 && !file.Error().Failed(); ++id) {
        file.Write(Line(id).get());
        if (!file.Error().Failed()) completed = id;
      }
    }
    bool clean = false;
    const std::vector<int32_t> ids = ReadIds(dir, clean);
    if (allowed < 1) continue;  // not even the first header reached the file
    EXPECT_TRUE(clean) << allowed;
    ASSERT_EQ(int32_t(ids.size()), completed) << allowed;
    for (int32_t k = 0; k < completed; ++k) EXPECT_EQ(ids[size_t(k)], k + 1);
  }
}

TEST(ShapeFileSeam, ShortReadsFailTheRecordWithoutReadingBeyondIt) {
  kxtest::TempDirectory dir;
  {
    ShapeFile file;
    file.SetShapeFileType(3);
    file.Open(Name(dir).get(), ShapeFile::kCreate);
    for (int32_t id = 1; id <= 3; ++id) file.Write(Line(id).get());
  }
  File::SystemCalls calls = File::kPlatformCalls;
  calls.readFile = &ShortRead;
  Calls scope(calls);
  readLimit = 150;  // the header comes whole, the read-ahead doesn't
  ShapeFile file;
  file.Open(Name(dir).get(), ShapeFile::kRead);
  ASSERT_FALSE(file.Error().Failed());
  int records = 0;
  while (Ref<Shape> shape{file.Read()}) ++records;
  EXPECT_LT(records, 3);
  EXPECT_EQ(file.Error().GetNumber(), 10010);
}

}  // namespace
}  // namespace kx
