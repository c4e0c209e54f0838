// One block of fixed-size records of a ChunkedRecordStore. Its capacity never changes;
// the records in use lie at positions 0 to count - 1 without a gap.
#pragma once

#include <cstdint>

#include "frame/BaseObject.h"

namespace kx {

class RecordChunk : public BaseObject {
 public:
  // The record size is rounded up to a multiple of 4. A failed allocation leaves 10012
  // in the record and a chunk of capacity 0.
  RecordChunk(int32_t recordSize, int32_t capacity);
  ~RecordChunk() override;

  int32_t GetCount() const { return m_count; }
  int32_t FreeSlots() const { return m_capacity - m_count; }
  int32_t GetCapacity() const { return m_capacity; }
  int32_t GetRecordSize() const { return m_recordSize; }

  // The caller makes sure that a slot is free.
  void Insert(int32_t position, const void* record);
  void InsertZero(int32_t position);
  // `count` records behind the last; the caller makes sure that they fit.
  void Append(const void* records, int32_t count);
  void Remove(int32_t position);
  void Set(int32_t position, const void* record);
  void Get(int32_t position, void* record);
  // Same size, capacity, records and count; null when memory can't be had.
  RecordChunk* Clone() const;

  // The records in use, one after the other, for readers that walk a whole chunk.
  const uint8_t* Records() const { return m_data; }

 private:
  uint8_t* Slot(int32_t position) const { return m_data + int64_t(position) * m_recordSize; }
  bool InRange(int32_t position);

  int32_t m_recordSize;
  int32_t m_capacity;
  int32_t m_count = 0;
  uint8_t* m_data = nullptr;
};

}  // namespace kx
