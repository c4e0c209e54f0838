#include "frame/ErrorRecord.h"

#include <cstdlib>
#include <cstring>

#include "frame/ErrorNumbers.h"

namespace kx {

namespace {
char* CopyText(const char* text) {
  if (!text) text = "";
  const size_t size = std::strlen(text) + 1;
  auto* copy = static_cast<char*>(std::malloc(size));
  if (copy) std::memcpy(copy, text, size);
  return copy;  // a failed copy leaves the number standing without its text
}
}  // namespace

ErrorRecord::~ErrorRecord() { std::free(m_text); }

void ErrorRecord::SetError(int32_t number, const char* text) {
  // The new text is copied first: it may be the old one (a record copying itself).
  char* copy = number != 0 ? CopyText(text) : nullptr;
  std::free(m_text);
  m_text = copy;
  m_number = number;
}

void ErrorRecord::ClearError() {
  std::free(m_text);
  m_text = nullptr;
  m_number = 0;
}

int16_t ErrorRecord::m_copy_err(const ErrorRecord* other) {
  if (!other)
    SetError(kErrInternal, text::kNullCopyError);
  else
    SetError(other->m_number, other->m_text);
  return static_cast<int16_t>(m_number);
}

}  // namespace kx
