#include "shapes/RecordChunk.h"

#include <cstring>
#include <new>

#include "frame/ErrorNumbers.h"

namespace kx {

RecordChunk::RecordChunk(int32_t recordSize, int32_t capacity)
    : m_recordSize((recordSize + 3) / 4 * 4), m_capacity(capacity) {
  m_data = new (std::nothrow) uint8_t[size_t(m_recordSize) * size_t(capacity)];
  if (!m_data) {
    m_capacity = 0;
    SetError(kErrOutOfMemory, text::kOutOfMemory);
  }
}

RecordChunk::~RecordChunk() { delete[] m_data; }

bool RecordChunk::InRange(int32_t position) {
  if (position >= 0 && position < m_count) return true;
  SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
  return false;
}

void RecordChunk::Insert(int32_t position, const void* record) {
  ClearError();
  if (!record) {
    SetError(kErrInvalidArgument, text::kInvalidParameter);
    return;
  }
  if (position < m_count)
    std::memmove(Slot(position + 1), Slot(position), size_t(m_count - position) * m_recordSize);
  std::memcpy(Slot(position), record, m_recordSize);
  ++m_count;
}

void RecordChunk::InsertZero(int32_t position) {
  ClearError();
  if (position < m_count)
    std::memmove(Slot(position + 1), Slot(position), size_t(m_count - position) * m_recordSize);
  std::memset(Slot(position), 0, m_recordSize);
  ++m_count;
}

void RecordChunk::Append(const void* records, int32_t count) {
  ClearError();
  std::memcpy(Slot(m_count), records, size_t(count) * m_recordSize);
  m_count += count;
}

void RecordChunk::Remove(int32_t position) {
  ClearError();
  if (!InRange(position)) return;
  if (position < m_count - 1)
    std::memmove(Slot(position), Slot(position + 1), size_t(m_count - 1 - position) * m_recordSize);
  --m_count;
  std::memset(Slot(m_count), 0, m_recordSize);
}

void RecordChunk::Set(int32_t position, const void* record) {
  ClearError();
  if (!record) {
    SetError(kErrInvalidArgument, text::kInvalidParameter);
    return;
  }
  if (InRange(position)) std::memcpy(Slot(position), record, m_recordSize);
}

void RecordChunk::Get(int32_t position, void* record) {
  ClearError();
  if (!record) {
    SetError(kErrInvalidArgument, text::kInvalidParameter);
    return;
  }
  if (InRange(position)) std::memcpy(record, Slot(position), m_recordSize);
}

RecordChunk* RecordChunk::Clone() const {
  RecordChunk* copy = new (std::nothrow) RecordChunk(m_recordSize, m_capacity);
  if (!copy) return nullptr;
  if (copy->Error().Failed()) {
    ReleaseObject(copy);
    return nullptr;
  }
  std::memcpy(copy->m_data, m_data, size_t(m_count) * m_recordSize);
  copy->m_count = m_count;
  return copy;
}

}  // namespace kx
