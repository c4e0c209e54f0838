#include "platform/posix/FileHead.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

namespace platform {

bool FileHead::Rewrite(int descriptor, int64_t offset, const void* data, size_t count,
                       int64_t size) {
  if (m_state == State::kUnavailable || offset < 0 || count == 0) return false;
  const int64_t end = offset + int64_t(count);
  if (end > size) return false;
  if (m_state == State::kUntried && !Map(descriptor)) return false;
  if (end > int64_t(m_bytes)) return false;
  std::memcpy(m_page + offset, data, count);
  return true;
}

// Mapped the first time a rewrite comes, so that files written only once never are.
bool FileHead::Map(int descriptor) {
  const long page = ::sysconf(_SC_PAGESIZE);
  void* mapped =
      page > 0 ? ::mmap(nullptr, size_t(page), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0)
               : MAP_FAILED;
  if (mapped == MAP_FAILED) {
    m_state = State::kUnavailable;
    return false;
  }
  m_page = static_cast<uint8_t*>(mapped);
  m_bytes = size_t(page);
  m_state = State::kMapped;
  return true;
}

void FileHead::Release() {
  if (m_state == State::kMapped) ::munmap(m_page, m_bytes);
  m_page = nullptr;
  m_bytes = 0;
  m_state = State::kUnavailable;
}

}  // namespace platform
