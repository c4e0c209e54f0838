#include "shapes/ChunkedRecordStore.h"

#include <algorithm>
#include <new>

#include "frame/ErrorNumbers.h"

namespace kx {

namespace {
constexpr const char* kChunkNotFound = "Chunk hosting this record at this index is not found";
}  // namespace

ChunkedRecordStore::ChunkedRecordStore(int32_t recordSize, int32_t firstCapacity,
                                       int32_t secondCapacity, int32_t chunkCapacity)
    : m_recordSize(recordSize),
      m_chunkCapacity(chunkCapacity),
      m_firstCapacity(firstCapacity),
      m_secondCapacity(secondCapacity) {}

ChunkedRecordStore::~ChunkedRecordStore() { Clear(); }

void ChunkedRecordStore::PlaceCursor(int32_t chunk, int32_t position, int32_t record) {
  m_cursorChunk = chunk;
  m_cursorPosition = position;
  m_cursorRecord = record;
}

// Does the chunk under the cursor hold the target? The cursor must be set.
bool ChunkedRecordStore::Reaches(int32_t target) const {
  const int32_t first = m_cursorRecord - m_cursorPosition;
  return target >= first && target < first + CursorChunk()->GetCount();
}

// Puts the cursor on a record. The order of the tests is the point: a step forward or
// backward lands in the same or a neighbouring chunk, and only a jump walks the list.
bool ChunkedRecordStore::Locate(int32_t target) {
  if (m_cursorChunk >= 0) {
    if (m_cursorRecord == target) return true;
    if (Reaches(target)) {
      m_cursorPosition += target - m_cursorRecord;
      m_cursorRecord = target;
      return true;
    }
  }
  if (m_chunks.empty()) return false;
  if (target == 0) {
    PlaceCursor(0, 0, 0);
    return true;
  }
  if (target == m_count) {
    const int32_t last = GetChunkCount() - 1;
    PlaceCursor(last, m_chunks[last]->GetCount(), m_count);
    return true;
  }
  if (m_cursorChunk >= 0) {
    const int32_t first = m_cursorRecord - m_cursorPosition;
    const int32_t next = m_cursorChunk + 1, previous = m_cursorChunk - 1;
    if (target >= first + CursorChunk()->GetCount() && next < GetChunkCount()) {
      const int32_t nextFirst = first + CursorChunk()->GetCount();
      if (target < nextFirst + m_chunks[next]->GetCount()) {
        PlaceCursor(next, target - nextFirst, target);
        return true;
      }
    } else if (target < first && previous >= 0) {
      const int32_t previousFirst = first - m_chunks[previous]->GetCount();
      if (target >= previousFirst) {
        PlaceCursor(previous, target - previousFirst, target);
        return true;
      }
    }
  }
  int32_t first = 0;
  for (int32_t chunk = 0; chunk < GetChunkCount(); ++chunk) {
    const int32_t count = m_chunks[chunk]->GetCount();
    if (target >= first && target < first + count) {
      PlaceCursor(chunk, target - first, target);
      return true;
    }
    first += count;
  }
  return false;
}

RecordChunk* ChunkedRecordStore::NewChunk(int32_t capacity) {
  RecordChunk* chunk = new (std::nothrow) RecordChunk(m_recordSize, capacity);
  if (!chunk) {
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return nullptr;
  }
  if (chunk->Error().Failed()) {
    CopyError(chunk);
    ReleaseObject(chunk);
  }
  return chunk;
}

int32_t ChunkedRecordStore::NextChunkCapacity() const {
  switch (GetChunkCount()) {
    case 0:
      return m_firstCapacity;
    case 1:
      return m_secondCapacity;
    default:
      return m_chunkCapacity;
  }
}

// The chunk that takes the upper half of a split: the capacity of its place in the list,
// but never less than the half it takes and the new record. A chunk of 100 that stands
// alone (its neighbours emptied by removals) would otherwise hand 50 records to a second
// chunk of 50, which then has no slot for a record that belongs among them.
int32_t ChunkedRecordStore::SplitCapacity(const RecordChunk& full) const {
  const int32_t moved = full.GetCount() - full.GetCapacity() / 2;
  return std::max(NextChunkCapacity(), moved + 1);
}

// Takes over the caller's reference; on failure the chunk is given up.
bool ChunkedRecordStore::InsertChunk(int32_t place, RecordChunk* chunk) {
  try {
    m_chunks.insert(m_chunks.begin() + place, chunk);
    return true;
  } catch (const std::bad_alloc&) {
    ReleaseObject(chunk);
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return false;
  }
}

bool ChunkedRecordStore::CheckRecord(const void* record) {
  if (record) return true;
  SetError(kErrInvalidArgument, text::kInvalidParameter);
  return false;
}

bool ChunkedRecordStore::CheckIndex(int32_t index) {
  if (!m_chunks.empty() && index >= 0 && index < m_count) return true;
  SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
  return false;
}

void ChunkedRecordStore::FailLocate() { SetError(kErrNotFound, kChunkNotFound); }

// The upper half of a full chunk moves into the fresh one behind it, and the cursor
// follows the wanted position to whichever chunk now holds it.
void ChunkedRecordStore::SplitInto(RecordChunk* full, RecordChunk* fresh, int32_t position) {
  const int32_t half = full->GetCapacity() / 2;
  const uint8_t* records = full->Records();
  const int32_t count = full->GetCount();
  for (int32_t k = half; k < count; ++k)
    fresh->Insert(k - half, records + int64_t(k) * full->GetRecordSize());
  for (int32_t k = count - 1; k >= half; --k) full->Remove(k);
  if (position <= half)
    m_cursorPosition = position;
  else
    PlaceCursor(m_cursorChunk + 1, position - half, 0);
}

void ChunkedRecordStore::Insert(int32_t index, const void* record) {
  ClearError();
  if (!CheckRecord(record)) return;
  if (index < -1 || index > m_count) {
    SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
    return;
  }
  if (m_chunks.empty()) {
    RecordChunk* chunk = NewChunk(NextChunkCapacity());
    if (!chunk || !InsertChunk(0, chunk)) return;
    chunk->Insert(0, record);
    PlaceCursor(0, 0, 0);
    m_count = 1;
    return;
  }
  if (index == -1) index = m_count;
  if (!Locate(index == 0 ? 0 : index - 1)) {
    FailLocate();
    return;
  }
  const int32_t position = index == 0 ? 0 : m_cursorPosition + 1;
  RecordChunk* chunk = CursorChunk();
  if (chunk->FreeSlots() > 0) {
    m_cursorPosition = position;
  } else {
    const bool append = position == chunk->GetCapacity();
    RecordChunk* fresh = NewChunk(append ? NextChunkCapacity() : SplitCapacity(*chunk));
    if (!fresh || !InsertChunk(m_cursorChunk + 1, fresh)) return;
    if (append)
      PlaceCursor(m_cursorChunk + 1, 0, 0);  // an append moves nothing
    else
      SplitInto(chunk, fresh, position);
  }
  CursorChunk()->Insert(m_cursorPosition, record);
  m_cursorRecord = index;
  ++m_count;
}

int32_t ChunkedRecordStore::Append(const void* records, int32_t count) {
  ClearError();
  if (count <= 0 || !CheckRecord(records)) return 0;
  const auto* bytes = static_cast<const uint8_t*>(records);
  int32_t placed = 0;
  while (placed < count) {
    if (m_chunks.empty() || m_chunks.back()->FreeSlots() == 0) {
      RecordChunk* fresh = NewChunk(NextChunkCapacity());
      if (!fresh || !InsertChunk(GetChunkCount(), fresh)) break;
    }
    RecordChunk* last = m_chunks.back();
    const int32_t run = std::min(count - placed, last->FreeSlots());
    last->Append(bytes + int64_t(placed) * last->GetRecordSize(), run);
    placed += run;
    m_count += run;
  }
  if (placed > 0) PlaceCursor(GetChunkCount() - 1, m_chunks.back()->GetCount() - 1, m_count - 1);
  return placed;
}

void ChunkedRecordStore::Remove(int32_t index) {
  ClearError();
  if (!CheckIndex(index)) return;
  if (!Locate(index)) {
    FailLocate();
    return;
  }
  RecordChunk* chunk = CursorChunk();
  const bool wasLast = m_cursorPosition == chunk->GetCount() - 1;
  chunk->Remove(m_cursorPosition);
  --m_count;
  if (wasLast && chunk->GetCount() > 0 && m_cursorPosition > 0) {
    --m_cursorPosition;
    --m_cursorRecord;
  }
  if (chunk->GetCount() > 0) return;
  ReleaseObject(m_chunks[m_cursorChunk]);
  m_chunks.erase(m_chunks.begin() + m_cursorChunk);
  if (m_chunks.empty()) {
    ForgetCursor();
  } else if (m_cursorChunk < GetChunkCount()) {
    PlaceCursor(m_cursorChunk, 0, index);
  } else {
    const int32_t last = GetChunkCount() - 1;
    PlaceCursor(last, m_chunks[last]->GetCount() - 1, m_count - 1);
  }
}

void ChunkedRecordStore::Set(int32_t index, const void* record) {
  ClearError();
  if (!CheckRecord(record) || !CheckIndex(index)) return;
  if (!Locate(index)) {
    FailLocate();
    return;
  }
  CursorChunk()->Set(m_cursorPosition, record);
}

void ChunkedRecordStore::Get(int32_t index, void* record) {
  ClearError();
  if (!CheckRecord(record) || !CheckIndex(index)) return;
  if (!Locate(index)) {
    FailLocate();
    return;
  }
  CursorChunk()->Get(m_cursorPosition, record);
}

void ChunkedRecordStore::Clear() {
  for (RecordChunk*& chunk : m_chunks) ReleaseObject(chunk);
  m_chunks.clear();
  m_count = 0;
  ForgetCursor();
}

ChunkedRecordStore* ChunkedRecordStore::Clone() const {
  ChunkedRecordStore* copy = new (std::nothrow)
      ChunkedRecordStore(m_recordSize, m_firstCapacity, m_secondCapacity, m_chunkCapacity);
  if (!copy) return nullptr;
  for (const RecordChunk* chunk : m_chunks) {
    RecordChunk* twin = chunk->Clone();
    if (!twin || !copy->InsertChunk(copy->GetChunkCount(), twin)) {
      ReleaseObject(copy);
      return nullptr;
    }
  }
  copy->m_count = m_count;
  copy->PlaceCursor(m_cursorChunk, m_cursorPosition, m_cursorRecord);
  return copy;
}

}  // namespace kx
