// Fixed-size records in one logical sequence over blocks of bounded size. Growth never
// moves a record that already stands, and a cursor on the last record reached makes a
// walk in either direction cost no search. Each part of a dynamic Shape owns one.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/BaseObject.h"
#include "shapes/RecordChunk.h"

namespace kx {

class ChunkedRecordStore : public BaseObject {
 public:
  // The first chunk holds `firstCapacity` records, the second `secondCapacity`, every
  // later one `chunkCapacity`.
  ChunkedRecordStore(int32_t recordSize, int32_t firstCapacity, int32_t secondCapacity,
                     int32_t chunkCapacity);
  ~ChunkedRecordStore() override;
  void Close() override { Clear(); }

  int32_t GetCount() const { return m_count; }
  // Index -1 appends. The cursor ends on the new record.
  void Insert(int32_t index, const void* record);
  // `count` records behind the last, side by side at the chunks' record size, in the
  // chunks that one Insert after another would give them. Returns how many found room: fewer only
  // when memory ran out. The cursor ends on the last record.
  int32_t Append(const void* records, int32_t count);
  void Remove(int32_t index);
  void Set(int32_t index, const void* record);
  void Get(int32_t index, void* record);
  void Clear();
  // Null when memory can't be had.
  ChunkedRecordStore* Clone() const;

  // The chunks in record order, for readers that walk all records at once.
  int32_t GetChunkCount() const { return int32_t(m_chunks.size()); }
  const RecordChunk& ChunkAt(int32_t index) const { return *m_chunks[index]; }

 private:
  bool Locate(int32_t target);
  bool Reaches(int32_t target) const;
  RecordChunk* CursorChunk() const { return m_chunks[m_cursorChunk]; }
  void PlaceCursor(int32_t chunk, int32_t position, int32_t record);
  void ForgetCursor() { PlaceCursor(-1, 0, 0); }
  RecordChunk* NewChunk(int32_t capacity);
  // The first, the second, then every later chunk has its own capacity.
  int32_t NextChunkCapacity() const;
  int32_t SplitCapacity(const RecordChunk& full) const;
  bool InsertChunk(int32_t place, RecordChunk* chunk);
  void SplitInto(RecordChunk* full, RecordChunk* fresh, int32_t position);
  bool CheckRecord(const void* record);
  bool CheckIndex(int32_t index);
  void FailLocate();

  int32_t m_recordSize;
  int32_t m_chunkCapacity;
  int32_t m_count = 0;
  int32_t m_firstCapacity;
  int32_t m_secondCapacity;
  // Counted references. A vector rather than an ObjectList: the neighbours of the
  // cursor chunk are one index away, which is what Locate relies on.
  std::vector<RecordChunk*> m_chunks;
  int32_t m_cursorChunk = -1;  // -1: no cursor
  int32_t m_cursorPosition = 0;
  int32_t m_cursorRecord = 0;
};

}  // namespace kx
