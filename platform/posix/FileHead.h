// The first page of an open file, mapped shared, for the rewrites that record-structured
// files make of their headers after every record: a copy into the page cache instead of
// a system call. The page cache is the same for the mapping and for reads and writes, so
// readers see such a rewrite at once and it reaches the disk as any write does; a crash
// of the process keeps it like a finished write. What a mapping can't survive is a file
// emptied under it before the emptier writes again: the rewrite would fault where a write
// would have grown the file. Handles of this library empty a file only while no other
// handle has it open (see the sharing in FileObject.cpp); a program that truncates
// without taking locks is not held back.
#pragma once

#include <cstddef>
#include <cstdint>

namespace platform {

class FileHead {
 public:
  FileHead() = default;
  FileHead(const FileHead&) = delete;
  FileHead& operator=(const FileHead&) = delete;
  ~FileHead() { Release(); }

  // Copies `count` bytes to `offset` when they lie inside the first page and inside the
  // `size` bytes the file holds: only bytes that exist are rewritten, so the file never
  // grows this way. False, with nothing written, when they don't or when the page can't
  // be mapped (a descriptor opened without read access, a file system without shared
  // mappings); the caller then writes as usual.
  bool Rewrite(int descriptor, int64_t offset, const void* data, size_t count, int64_t size);
  // Gives the mapping up for good, before the descriptor closes.
  void Release();

 private:
  enum class State { kUntried, kMapped, kUnavailable };
  bool Map(int descriptor);

  State m_state = State::kUntried;
  uint8_t* m_page = nullptr;
  size_t m_bytes = 0;
};

}  // namespace platform
