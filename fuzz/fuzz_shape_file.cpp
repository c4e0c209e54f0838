// Shape files of arbitrary bytes: the input is split into a ".shx" and a ".shp", which
// File reads from memory through its table of system calls. Opening, reading every
// record in both forms of Shape, and seeking to places taken from the input must never
// read out of bounds, allocate beyond what the bytes can hold, or loop for ever.
#include <cstdint>
#include <cstring>

#include "frame/Ref.h"
#include "links/File.h"
#include "shapes/ShapeFile.h"

using kx::File;
using kx::Ref;
using kx::Shape;
using kx::ShapeFile;
using kx::String;

namespace {

struct MemoryFile {
  const uint8_t* data = nullptr;
  int64_t size = 0;
  int64_t position = 0;
  bool present = false;
};

MemoryFile files[2];  // .shp, .shx

// The index ends in "x", whatever the case.
MemoryFile& FileOf(LPCWSTR name) {
  size_t length = 0;
  while (name[length]) ++length;
  return files[length > 0 && (name[length - 1] | 0x20) == u'x' ? 1 : 0];
}

HANDLE Create(LPCWSTR name, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
  MemoryFile& file = FileOf(name);
  if (!file.present) {
    SetLastError(2);
    return INVALID_HANDLE_VALUE;
  }
  file.position = 0;
  return &file;
}

BOOL Read(HANDLE handle, LPVOID buffer, DWORD count, DWORD* read, OVERLAPPED*) {
  MemoryFile& file = *static_cast<MemoryFile*>(handle);
  const int64_t left = file.position < file.size ? file.size - file.position : 0;
  const int64_t got = count < left ? count : left;
  if (got > 0) std::memcpy(buffer, file.data + file.position, size_t(got));
  file.position += got;
  *read = DWORD(got);
  return true;
}

BOOL Write(HANDLE, LPCVOID, DWORD, DWORD* written, OVERLAPPED*) {
  *written = 0;
  return false;
}

DWORD Move(HANDLE handle, LONG distance, LONG*, DWORD method) {
  MemoryFile& file = *static_cast<MemoryFile*>(handle);
  const int64_t base = method == FILE_BEGIN     ? 0
                       : method == FILE_CURRENT ? file.position
                                                : file.size;
  if (base + distance < 0) return INVALID_SET_FILE_POINTER;
  file.position = base + distance;
  return DWORD(file.position);
}

BOOL Flush(HANDLE) { return true; }
BOOL Remove(LPCWSTR) { return false; }
BOOL Close(HANDLE) { return true; }

DWORD Attributes(LPCWSTR name) {
  return FileOf(name).present ? FILE_ATTRIBUTE_NORMAL : INVALID_FILE_ATTRIBUTES;
}

const File::SystemCalls kMemoryCalls = {&Create, &Read,   &Write, &Move,
                                        &Flush,  &Remove, &Close, &Attributes};

void ReadAll(ShapeFile& file) {
  // Each record takes at least 8 bytes, so a file can't hold more than this many.
  for (int record = 0; record < 1 << 20; ++record) {
    Ref<Shape> shape(file.Read());
    if (!shape) return;
    (void)shape->GetTotalNodeCount();
  }
  __builtin_trap();  // the read position didn't move on
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2 || size > (1 << 20)) return 0;
  File::UseSystemCalls(&kMemoryCalls);
  // The first two bytes say how much of the rest is the index; 0xFFFF means no index.
  const size_t split = size_t(data[0]) | size_t(data[1]) << 8;
  const size_t rest = size - 2;
  const size_t indexSize = split == 0xFFFF ? 0 : split % (rest + 1);
  files[1] = {data + 2, int64_t(indexSize), 0, split != 0xFFFF};
  files[0] = {data + 2 + indexSize, int64_t(rest - indexSize), 0, true};
  const Ref<String> name(new String("fuzz"));
  for (bool readOnly : {true, false}) {
    ShapeFile file;
    file.SetReadOnly(readOnly);
    file.Open(name.get(), ShapeFile::kRead);
    ReadAll(file);
    for (size_t k = 0; k + 4 <= indexSize && k < 64; k += 4) {
      int32_t record;
      std::memcpy(&record, data + 2 + k, 4);
      file.Seek(record % 4096);
      ReadAll(file);
    }
    file.Seek(0);
    ReadAll(file);
  }
  File::UseSystemCalls(nullptr);
  return 0;
}
