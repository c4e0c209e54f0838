// Shape: nodes and parts made and deleted, copies, fixed-size storage, the bounds scan.
#include <algorithm>
#include <new>

#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"
#include "shapes/Shape.h"
#include "shapes/ShapeTexts.h"

namespace kx {

using namespace shape_text;

bool Shape::RefuseFixedSize() {
  if (!m_fixedSize) return false;
  SetError(kErrNotSupported, kNotForFixedSize);
  return true;
}

// The start of an edit of parts: a fixed-size shape refuses it, and a shape whose storage
// is made only now has nothing to edit yet (its one empty part is all a new part would
// be). Whether the edit goes on.
bool Shape::StartEdit() {
  ClearError();
  if (RefuseFixedSize()) return false;
  if (m_storageReady) return true;
  EnsureStorage();
  return false;
}

// ---- new nodes --------------------------------------------------------------------

// Into the active part: at `index` (-1 appends) of a store, or into the next free slot
// of a fixed part. `placed` receives the record's index.
bool Shape::InsertNode(int32_t index, const NodeRecord& record, int32_t& placed) {
  if (ChunkedRecordStore* store = ActiveStore()) {
    store->Insert(index, &record);
    if (CopyError(store) != 0) return false;
    placed = index == -1 ? store->GetCount() - 1 : index;
    return true;
  }
  FixedPart* slot = ActiveFixedPart();
  slot->nodes[slot->count] = record;
  placed = slot->count++;
  return true;
}

void Shape::NewNode(int32_t index) {
  LockScope lock;
  ClearError();
  if (m_fixedSize) {
    const FixedPart* slot = ActiveFixedPart();
    if (!slot || index != -1 || slot->count >= slot->capacity) {
      SetError(kErrInvalidState, kNoPartActivated);
      return;
    }
  } else if (!m_storageReady && index != -1 && index != 0) {
    SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
    return;
  }
  EnsureStorage();
  if (!m_partActive) {
    SetError(kErrInvalidState, kNoPartActivated);
    return;
  }
  Commit();
  // The working values stay: a new node holds the values of the one that was active.
  // When that node is in this part, the values are in the bounds already, and as long
  // as that node keeps them, a value set here only widens the bounds (fresh). Otherwise
  // the values may be left over from a node that is gone (the part was emptied, the
  // only node deleted): this node brings them into the bounds, and leaving them is
  // tracked as a change of any node.
  const bool inherited = RefreshPartNodeCount() > 0;
  int32_t placed;
  if (!InsertNode(index, NodeRecord{m_nextNodeId, 0, 0, 0, 0, 0}, placed)) return;
  m_workingNodeId = m_nextNodeId++;
  m_nodeIndex = placed;
  m_empty = false;
  m_dirty = true;
  m_fresh = inherited;
  ++m_totalNodeCount;
  ++m_partNodeCount;
  if (!inherited) {
    for (Dimension d : {kX, kY, kZ, kM}) {
      if (m_totalNodeCount == 1)
        TakeFirstValue(d, m_value[d]);
      else
        Widen(d, m_value[d]);
    }
  }
  Changed();
}

void Shape::AppendNode(double x, double y, double z, double m) {
  NodeRecord record{0, 0, x, y, z, m};
  AppendNodes(&record, 1);
}

// The run goes into storage in one copy and into the bounds in one pass; a store that
// runs out of memory keeps the records placed before.
void Shape::AppendNodes(NodeRecord* records, int32_t count) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (count <= 0) return;
  if (m_fixedSize) {
    const FixedPart* slot = ActiveFixedPart();
    if (!slot || count > slot->capacity - slot->count) {
      SetError(kErrInvalidArgument, kNoNodeMemory);
      return;
    }
  } else if (!m_partActive) {
    SetError(kErrInvalidState, kNoPartActivated);
    return;
  }
  Commit();
  for (int32_t k = 0; k < count; ++k) records[k].nodeId = m_nextNodeId + k;
  const int32_t placed = StoreRun(records, count);
  RefreshPartNodeCount();
  if (placed > 0) {
    ExtendOver(m_bounds, reinterpret_cast<const uint8_t*>(records), placed, m_totalNodeCount == 0);
    const NodeRecord& last = records[placed - 1];
    m_value[kX] = last.x;
    m_value[kY] = last.y;
    m_value[kZ] = last.z;
    m_value[kM] = last.m;
    m_workingNodeId = last.nodeId;
    m_nextNodeId += placed;
    m_nodeIndex = m_partNodeCount - 1;
    m_empty = false;
    m_fresh = false;
    m_totalNodeCount += placed;
  }
  Changed();
}

// Behind the last node of the active part; returns how many records found room.
int32_t Shape::StoreRun(const NodeRecord* records, int32_t count) {
  if (ChunkedRecordStore* store = ActiveStore()) {
    const int32_t placed = store->Append(records, count);
    CopyError(store);
    return placed;
  }
  FixedPart* slot = ActiveFixedPart();
  std::copy(records, records + count, slot->nodes + slot->count);
  slot->count += count;
  return count;
}

// ---- new parts --------------------------------------------------------------------

void Shape::NewPart(int32_t index) {
  LockScope lock;
  if (!StartEdit()) return;
  if (m_totalNodeCount == 0 && !m_parts.empty()) return;  // the empty part serves
  Commit();
  const int32_t parts = int32_t(m_parts.size());
  if (index < -1 || index > parts) {
    SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
    return;
  }
  ChunkedRecordStore* store = NewStore();
  if (!store) return;
  const int32_t place = index == -1 ? parts : index;
  try {
    m_parts.insert(m_parts.begin() + place, store);
  } catch (const std::bad_alloc&) {
    ReleaseObject(store);
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return;
  }
  m_partIndex = place;
  m_partActive = true;
  m_nodeIndex = 0;
  m_partNodeCount = 0;
  Changed();
}

void Shape::AddPartStore(ChunkedRecordStore* store) {
  LockScope lock;
  ClearError();
  if (!store || m_fixedSize) {
    SetError(kErrInvalidState, kNoPartActivated);
    return;
  }
  EnsureStorage();
  Commit();
  store->AddRef();
  try {
    m_parts.push_back(store);
  } catch (const std::bad_alloc&) {
    ReleaseObject(store);
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return;
  }
  m_totalNodeCount += store->GetCount();
  if (store->GetCount() > 0) m_empty = false;
  if (!m_partActive) ActivatePart(int32_t(m_parts.size()) - 1);
  ScanBounds(0, StoredPartCount() - 1, m_bounds);
  Changed();
}

// ---- deleting ---------------------------------------------------------------------

void Shape::DeleteNode() {
  LockScope lock;
  ClearError();
  if (RefuseFixedSize()) return;
  EnsureStorage();
  if (!HasActiveNode()) return;
  double deleted[4];
  for (Dimension d : {kX, kY, kZ, kM}) deleted[d] = m_value[d];
  ChunkedRecordStore* store = ActiveStore();
  store->Remove(m_nodeIndex);
  if (CopyError(store) != 0) return;
  // The pending change belonged to the node that went.
  m_dirty = false;
  m_fresh = false;
  if (m_nodeIndex == m_partNodeCount - 1 && m_nodeIndex > 0) --m_nodeIndex;
  --m_totalNodeCount;
  --m_partNodeCount;
  Changed();
  if (m_totalNodeCount == 0) {
    ZeroBounds();
    return;
  }
  Load(m_nodeIndex);
  bool rescan = false;
  for (Dimension d : {kX, kY, kZ, kM}) {
    if (deleted[d] != m_bounds[2 * d] && deleted[d] != m_bounds[2 * d + 1]) continue;
    TakeFirstValue(d, m_value[d]);
    rescan = true;
  }
  if (rescan) RecomputeBounds();
}

// Does a node of the part stand on one of the bounds?
bool Shape::TouchesBounds(int32_t part) const {
  bool touches = false;
  VisitRuns(part, [&](const uint8_t* records, int32_t count) {
    for (int32_t k = 0; k < count && !touches; ++k) {
      const NodeRecord r = RecordAt(records, k);
      const double values[4] = {r.x, r.y, r.z, r.m};
      for (int d = 0; d < 4; ++d)
        if (values[d] == m_bounds[2 * d] || values[d] == m_bounds[2 * d + 1]) touches = true;
    }
  });
  return touches;
}

// Empties the active part of a shape with other parts. The working node goes to storage
// first, so that a value moved onto a bound counts among the part's.
void Shape::ClearActivePart() {
  Commit();
  const bool touched = TouchesBounds(m_partIndex);
  ChunkedRecordStore* store = ActiveStore();
  const int32_t removed = store->GetCount();
  store->Clear();
  if (CopyError(store) != 0) return;
  Changed();
  m_dirty = false;
  m_fresh = false;
  m_nodeIndex = 0;
  m_totalNodeCount -= removed;
  m_partNodeCount = 0;
  if (touched) RecomputeBounds();
}

// The empty state. ModifiedCount stays: whoever watches it must see the change.
void Shape::Reset() {
  m_shapeId = 0;
  m_fresh = false;
  m_totalNodeCount = 0;
  m_partNodeCount = 0;
  for (double& value : m_value) value = 0;
  m_nodeIndex = 0;
  m_partIndex = 0;
  ZeroBounds();
  m_workingNodeId = 0;
  m_nextNodeId = 1;
  ReleaseObject(m_template);
  ReleaseObject(m_cachedPosition);
  m_cleanStamp = 0;
  m_cleanResult = false;
  m_dirty = false;
  m_empty = true;
}

void Shape::ClearPart() {
  LockScope lock;
  ClearError();
  if (RefuseFixedSize()) return;
  EnsureStorage();
  if (!m_partActive) return;
  if (RefreshPartNodeCount() == 0) {
    m_nodeIndex = 0;
    return;
  }
  if (m_parts.size() > 1) {
    ClearActivePart();
    return;
  }
  m_parts[0]->Clear();
  Reset();
  Changed();
}

void Shape::DeletePart() {
  LockScope lock;
  if (!StartEdit()) return;
  if (m_parts.size() <= 1) {
    if (!m_parts.empty()) {
      m_parts[0]->Clear();
      Reset();
      Changed();
    }
    return;
  }
  if (!m_partActive) return;
  const int32_t going = m_partIndex;
  Commit();  // the working node's values are the part's too
  const bool touched = TouchesBounds(going);
  const int32_t removed = m_parts[going]->GetCount();
  const bool last = going == int32_t(m_parts.size()) - 1;
  MoveToPart(last ? going - 1 : going + 1);
  ReleaseObject(m_parts[going]);
  m_parts.erase(m_parts.begin() + going);
  if (!last) --m_partIndex;
  m_totalNodeCount -= removed;
  if (touched) RecomputeBounds();
  Changed();
}

void Shape::ClearShape() {
  LockScope lock;
  if (!StartEdit()) return;
  while (m_parts.size() > 1) {
    m_parts[0]->Clear();
    ReleaseObject(m_parts[0]);
    m_parts.erase(m_parts.begin());
  }
  if (m_parts.empty()) {
    ChunkedRecordStore* store = NewStore();
    if (!store) return;
    m_parts.push_back(store);
  }
  m_parts[0]->Clear();
  m_partActive = true;
  Reset();
  Changed();
}

// ---- copies -----------------------------------------------------------------------

bool Shape::TakeStores(const Shape& from) {
  for (const ChunkedRecordStore* store : from.m_parts) {
    ChunkedRecordStore* clone = store->Clone();
    if (!clone) return false;
    m_parts.push_back(clone);
  }
  return true;
}

Shape* Shape::Copy() {
  LockScope lock;
  ClearError();
  if (RefuseFixedSize()) return nullptr;
  EnsureStorage();
  Commit();
  try {
    Ref<Shape> copy(new Shape());
    if (m_empty) return copy.Detach();
    if (!copy->TakeStores(*this)) {
      SetError(kErrOutOfMemory, text::kOutOfMemory);
      return nullptr;
    }
    copy->m_storageReady = true;
    if (m_template) m_template->AddRef();
    copy->m_template = m_template;
    for (int b = 0; b < kBoundCount; ++b) copy->m_bounds[b] = m_bounds[b];
    copy->m_partIndex = m_partIndex;
    copy->m_nodeIndex = m_nodeIndex;
    copy->m_pixelShape = m_pixelShape;
    copy->m_workingNodeId = m_workingNodeId;
    for (int d = 0; d < 4; ++d) copy->m_value[d] = m_value[d];
    copy->m_totalNodeCount = m_totalNodeCount;
    copy->m_partActive = m_partActive;
    copy->m_empty = false;
    copy->RefreshPartNodeCount();
    return copy.Detach();
  } catch (const std::bad_alloc&) {
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return nullptr;
  }
}

Shape* Shape::Copy2(int32_t first, int32_t last) {
  LockScope lock;
  ClearError();
  if (RefuseFixedSize() || !m_storageReady) return nullptr;
  const int32_t count = RefreshPartNodeCount();
  if (count == 0) {
    SetError(kErrInvalidState, kNoNodeToCopy);
    return nullptr;
  }
  if (last == -1) last = count - 1;
  if (first < 0 || first >= count || last < -1 || last >= count) {
    SetError(kErrInvalidArgument, kIndexValuesInvalid);
    return nullptr;
  }
  Commit();
  Ref<Shape> copy(new (std::nothrow) Shape());
  if (!copy) {
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return nullptr;
  }
  for (int32_t k = first; k <= last; ++k) {
    const NodeRecord node = StoredNode(m_partIndex, k);
    copy->NewNode(-1);
    copy->SetNode(node.x, node.y, node.z, node.m);
    if (CopyError(copy.get()) != 0) return nullptr;
  }
  if (m_template) m_template->AddRef();
  copy->m_template = m_template;
  copy->SetNodeIndex(0);
  return copy.Detach();
}

void Shape::GetBoundingBox(double bounds[kBoundCount]) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  for (int b = 0; b < kBoundCount; ++b) bounds[b] = m_bounds[b];
  if (m_totalNodeCount == 0) SetError(kErrInvalidState, kShapeEmpty);
}

// ---- fixed-size storage -----------------------------------------------------------

bool Shape::GetFixedSize() { return ReadField(m_fixedSize); }

void Shape::SetFixedSize(bool fixed) {
  LockScope lock;
  ClearError();
  if (fixed == m_fixedSize) return;
  if (m_fixedSize && m_fixedParts) {
    SetError(kErrInvalidState, kFixedToDynamic);
  } else if (!m_fixedSize && m_storageReady) {
    SetError(kErrInvalidState, kDynamicToFixed);
  } else {
    m_fixedSize = fixed;
  }
}

void Shape::FreeFixedParts() {
  for (int32_t part = 0; part < m_fixedPartCount; ++part) delete[] m_fixedParts[part].nodes;
  delete[] m_fixedParts;
  m_fixedParts = nullptr;
  m_fixedPartCount = 0;
}

void Shape::FixedPartCount(int32_t parts) {
  LockScope lock;
  ClearError();
  if (parts < 1) {
    SetError(kErrInvalidState, kPartCountTooSmall);
    return;
  }
  if (!m_fixedSize) {
    SetError(kErrInvalidState, kMustBeFixedSize);
    return;
  }
  FixedPart* slots = new (std::nothrow) FixedPart[parts];
  if (!slots) {
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return;
  }
  // A second call starts the shape over with the new slots.
  FreeFixedParts();
  m_fixedParts = slots;
  m_fixedPartCount = parts;
  m_partActive = false;
  m_partIndex = 0;
  m_nodeIndex = 0;
  m_partNodeCount = 0;
  m_totalNodeCount = 0;
  m_dirty = false;
  ZeroBounds();
  Changed();
}

void Shape::FixedNodeCount(int32_t part, int32_t nodes) {
  LockScope lock;
  ClearError();
  if (!m_fixedSize) return;
  if (part < 0 || part >= m_fixedPartCount || nodes < 1) {
    SetError(kErrInvalidState, kInvalidPartNode);
    return;
  }
  Commit();
  FixedPart& slot = m_fixedParts[part];
  NodeRecord* array = new (std::nothrow) NodeRecord[nodes];
  if (!array) {
    m_partActive = false;
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return;
  }
  delete[] slot.nodes;
  const int32_t dropped = slot.count;
  m_totalNodeCount -= dropped;
  slot = FixedPart{0, nodes, array};
  m_partIndex = part;
  m_partActive = true;
  m_nodeIndex = 0;
  m_partNodeCount = 0;
  if (dropped > 0) RecomputeBounds();  // the slot's nodes went with it
  Changed();
}

// ---- bounds -----------------------------------------------------------------------

void Shape::ScanBounds(int32_t firstPart, int32_t lastPart, double bounds[kBoundCount]) const {
  bool first = true;
  for (int b = 0; b < kBoundCount; ++b) bounds[b] = 0;
  for (int32_t part = firstPart; part <= lastPart; ++part) {
    VisitRuns(part, [&](const uint8_t* records, int32_t count) {
      ExtendOver(bounds, records, count, first);
      first = first && count == 0;
    });
  }
}

// The working node goes to storage first, so the scan sees its values. An empty shape
// has all bounds 0.
void Shape::RecomputeBounds() {
  Commit();
  ScanBounds(0, StoredPartCount() - 1, m_bounds);
}

void Shape::GetPartBounds(int32_t firstPart, int32_t lastPart, double bounds[kBoundCount]) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  Commit();
  if (firstPart < 0) firstPart = 0;
  if (lastPart >= StoredPartCount()) lastPart = StoredPartCount() - 1;
  ScanBounds(firstPart, lastPart, bounds);
}

}  // namespace kx
