// Shape: storage, the cursor, the working copy and its bounds, positions.
#include "shapes/Shape.h"

#include <algorithm>
#include <new>

#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"
#include "shapes/ShapeTexts.h"

namespace kx {

using namespace shape_text;

namespace {
// Every store of a shape: 40-byte records, one small block first, then larger ones.
constexpr int32_t kFirstChunk = 20;
constexpr int32_t kSecondChunk = 50;
constexpr int32_t kLaterChunks = 100;

// One dimension's extremes taking in a value; a NaN changes neither. Written as
// selections, which the compiler turns into min and max instructions without branches.
inline void Extend(double& low, double& high, double value) {
  low = value < low ? value : low;
  high = value > high ? value : high;
}
}  // namespace

Shape::Shape() = default;

Shape::Shape(WithoutParts) : m_storageReady(true) {}

Shape::~Shape() {
  for (ChunkedRecordStore*& store : m_parts) ReleaseObject(store);
  ReleaseObject(m_template);
  ReleaseObject(m_cachedPosition);
  FreeFixedParts();
}

// ---- storage ----------------------------------------------------------------------

ChunkedRecordStore* Shape::NewStore() {
  ChunkedRecordStore* store = new (std::nothrow)
      ChunkedRecordStore(sizeof(NodeRecord), kFirstChunk, kSecondChunk, kLaterChunks);
  if (!store) SetError(kErrOutOfMemory, text::kOutOfMemory);
  return store;
}

// A dynamic shape gets its first, empty part at the first use.
void Shape::EnsureStorage() {
  if (m_fixedSize || m_storageReady) return;
  ChunkedRecordStore* store = NewStore();
  if (!store) return;
  m_parts.push_back(store);
  m_storageReady = true;
  m_partIndex = 0;
  m_partActive = true;
  Changed();
}

ChunkedRecordStore* Shape::ActiveStore() const {
  return !m_fixedSize && m_partActive ? m_parts[m_partIndex] : nullptr;
}

FixedPart* Shape::ActiveFixedPart() const {
  return m_fixedSize && m_partActive ? &m_fixedParts[m_partIndex] : nullptr;
}

int32_t Shape::RefreshPartNodeCount() {
  if (const ChunkedRecordStore* store = ActiveStore())
    m_partNodeCount = store->GetCount();
  else if (const FixedPart* slot = ActiveFixedPart())
    m_partNodeCount = slot->count;
  else
    m_partNodeCount = 0;
  return m_partNodeCount;
}

bool Shape::ReadActive(int32_t index, NodeRecord& record) {
  if (ChunkedRecordStore* store = ActiveStore()) {
    store->Get(index, &record);
    return CopyError(store) == 0;
  }
  record = ActiveFixedPart()->nodes[index];
  return true;
}

bool Shape::WriteActive(int32_t index, const NodeRecord& record) {
  if (ChunkedRecordStore* store = ActiveStore()) {
    store->Set(index, &record);
    return CopyError(store) == 0;
  }
  ActiveFixedPart()->nodes[index] = record;
  return true;
}

bool Shape::HasActiveNode() { return m_partActive && RefreshPartNodeCount() > 0; }

NodeRecord Shape::WorkingRecord() const {
  return {m_workingNodeId, 0, m_value[kX], m_value[kY], m_value[kZ], m_value[kM]};
}

int32_t Shape::StoredPartCount() const {
  return m_fixedSize ? m_fixedPartCount : int32_t(m_parts.size());
}

int32_t Shape::StoredNodeCount(int32_t part) const {
  return m_fixedSize ? m_fixedParts[part].count : m_parts[part]->GetCount();
}

NodeRecord Shape::StoredNode(int32_t part, int32_t index) const {
  if (m_fixedSize) return m_fixedParts[part].nodes[index];
  const ChunkedRecordStore& store = *m_parts[part];
  for (int32_t c = 0;; ++c) {
    const RecordChunk& chunk = store.ChunkAt(c);
    if (index < chunk.GetCount()) return RecordAt(chunk.Records(), index);
    index -= chunk.GetCount();
  }
}

// ---- the cursor -------------------------------------------------------------------

// The working copy goes back to storage; a failure there keeps it dirty.
void Shape::Commit() {
  if (!m_dirty) return;
  if (WriteActive(m_nodeIndex, WorkingRecord())) m_dirty = false;
}

void Shape::Load(int32_t index) {
  if (RefreshPartNodeCount() == 0) return;
  NodeRecord record;
  if (!ReadActive(index, record)) return;
  m_workingNodeId = record.nodeId;
  m_value[kX] = record.x;
  m_value[kY] = record.y;
  m_value[kZ] = record.z;
  m_value[kM] = record.m;
  m_nodeIndex = index;
  m_fresh = false;
}

void Shape::MoveToNode(int32_t node) {
  if (m_fixedSize && !m_partActive) {
    SetError(kErrInvalidState, kNoPartActivated);
    return;
  }
  const int32_t count = RefreshPartNodeCount();
  if (count == 0 || node == m_nodeIndex) return;
  if (node == -1 && m_nodeIndex == count - 1) return;
  Commit();
  if (node == -1) node = count - 1;
  if (node < -1 || node >= count) {
    SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
    return;
  }
  Load(node);
}

// Each change of part lands on its first node.
void Shape::ActivatePart(int32_t part) {
  m_partIndex = part;
  m_partActive = true;
  Load(0);
}

void Shape::MoveToPart(int32_t part) {
  if (m_fixedSize) {
    MoveToFixedPart(part);
    return;
  }
  EnsureStorage();
  const int32_t parts = int32_t(m_parts.size());
  if (parts == 0) return;
  Commit();
  if (m_partActive && (part == m_partIndex || (part == -1 && m_partIndex == parts - 1))) return;
  if (part < -1 || part > parts) {
    SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
  } else if (part == parts) {
    SetError(kErrNotFound, kPartNotFound);
    m_partActive = false;
  } else {
    ActivatePart(part == -1 ? parts - 1 : part);
  }
}

void Shape::MoveToFixedPart(int32_t part) {
  if (!m_fixedParts) {
    SetError(kErrInvalidArgument, kPartsNotAllocated);
    return;
  }
  if (part < -1 || part >= m_fixedPartCount) {
    SetError(kErrInvalidArgument, kInvalidPartIndex);
    return;
  }
  Commit();
  if (part == -1) part = m_fixedPartCount - 1;
  if (m_partActive && part == m_partIndex) return;
  ActivatePart(part);
}

// Puts the cursor back where a walk found it.
void Shape::RestoreCursor(Cursor cursor) {
  if (!m_partActive || m_partIndex != cursor.part) MoveToPart(cursor.part);
  if (RefreshPartNodeCount() > 0 && cursor.node < m_partNodeCount) {
    Commit();
    Load(cursor.node);
  } else {
    m_nodeIndex = cursor.node;
  }
}

int32_t Shape::GetPartIndex() { return ReadField(m_partIndex); }

void Shape::SetPartIndex(int32_t part) {
  LockScope lock;
  ClearError();
  MoveToPart(part);
}

int32_t Shape::GetNodeIndex() { return ReadField(m_nodeIndex); }

void Shape::SetNodeIndex(int32_t node) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  MoveToNode(node);
}

int32_t Shape::GetPartCount() {
  LockScope lock;
  ClearError();
  EnsureStorage();
  return StoredPartCount();
}

int32_t Shape::GetNodeCount() {
  LockScope lock;
  ClearError();
  EnsureStorage();
  return RefreshPartNodeCount();
}

int32_t Shape::GetTotalNodeCount() {
  LockScope lock;
  ClearError();
  EnsureStorage();
  return m_totalNodeCount;
}

int32_t Shape::GetModifiedCount() { return ReadField(m_modifiedCount); }

int32_t Shape::GetShapeID() { return ReadField(m_shapeId); }

void Shape::SetShapeID(int32_t id) {
  LockScope lock;
  ClearError();
  if (id == m_shapeId) return;
  m_shapeId = id;
  Changed();
}

int32_t Shape::GetNodeID() { return ReadField(m_workingNodeId); }

Position* Shape::GetDatumGridTemplate() {
  LockScope lock;
  ClearError();
  if (m_template) m_template->AddRef();
  return m_template;
}

void Shape::SetDatumGridTemplate(Position* position) {
  LockScope lock;
  ClearError();
  if (position) position->AddRef();
  ReleaseObject(m_template);
  m_template = position;
  Changed();
}

bool Shape::GetPixelShape() { return ReadField(m_pixelShape); }

void Shape::SetPixelShape(bool pixels) {
  LockScope lock;
  ClearError();
  if (pixels == m_pixelShape) return;
  m_pixelShape = pixels;
  Changed();
}

// ---- values and bounds ------------------------------------------------------------

double Shape::GetX() { return ReadField(m_value[kX]); }
double Shape::GetY() { return ReadField(m_value[kY]); }
double Shape::GetZ() { return ReadField(m_value[kZ]); }
double Shape::GetM() { return ReadField(m_value[kM]); }

void Shape::GetNode(double& x, double& y, double& z, double& m) {
  ClearError();
  x = m_value[kX];
  y = m_value[kY];
  z = m_value[kZ];
  m = m_value[kM];
}

void Shape::TakeFirstValue(Dimension d, double value) {
  m_bounds[2 * d] = value;
  m_bounds[2 * d + 1] = value;
}

void Shape::Widen(Dimension d, double value) {
  Extend(m_bounds[2 * d], m_bounds[2 * d + 1], value);
}

// On a copy of the bounds, which the records can't alias, so that it stays in registers.
void Shape::ExtendOver(double bounds[kBoundCount], const uint8_t* records, int32_t count,
                       bool first) {
  if (count <= 0) return;
  double b[kBoundCount];
  std::copy(bounds, bounds + kBoundCount, b);
  if (first) {
    const NodeRecord r = RecordAt(records, 0);
    b[kMinX] = b[kMaxX] = r.x;
    b[kMinY] = b[kMaxY] = r.y;
    b[kMinZ] = b[kMaxZ] = r.z;
    b[kMinM] = b[kMaxM] = r.m;
  }
  for (int32_t k = 0; k < count; ++k) {
    const NodeRecord r = RecordAt(records, k);
    Extend(b[kMinX], b[kMaxX], r.x);
    Extend(b[kMinY], b[kMaxY], r.y);
    Extend(b[kMinZ], b[kMaxZ], r.z);
    Extend(b[kMinM], b[kMaxM], r.m);
  }
  std::copy(b, b + kBoundCount, bounds);
}

void Shape::ZeroBounds() {
  for (double& bound : m_bounds) bound = 0;
}

// A new value of a node that was there before. Returns whether the bounds need a scan:
// the value left the extreme it stood on, and another node may now hold that extreme.
bool Shape::Track(Dimension d, double value) {
  const double old = m_value[d];
  m_value[d] = value;
  if (m_totalNodeCount == 1) {
    TakeFirstValue(d, value);
    return false;
  }
  const bool rescan =
      (old == m_bounds[2 * d] && value > old) || (old == m_bounds[2 * d + 1] && value < old);
  Widen(d, value);
  return rescan;
}

void Shape::SetValue(Dimension d, double value) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (!HasActiveNode()) {
    SetError(kErrInvalidArgument, kNoNodeMemory);
    return;
  }
  if (value == m_value[d]) return;
  m_dirty = true;
  Changed();
  if (m_fresh) {
    m_value[d] = value;
    if (m_totalNodeCount == 1)
      TakeFirstValue(d, value);
    else
      Widen(d, value);
    m_fresh = false;
    return;
  }
  if (Track(d, value)) RecomputeBounds();
}

void Shape::SetX(double value) { SetValue(kX, value); }
void Shape::SetY(double value) { SetValue(kY, value); }
void Shape::SetZ(double value) { SetValue(kZ, value); }
void Shape::SetM(double value) { SetValue(kM, value); }

void Shape::SetNode(double x, double y, double z, double m) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (!HasActiveNode()) {
    SetError(kErrInvalidArgument, kNoNodeMemory);
    return;
  }
  const double values[4] = {x, y, z, m};
  if (x == m_value[kX] && y == m_value[kY] && z == m_value[kZ] && m == m_value[kM]) return;
  m_dirty = true;
  Changed();
  bool rescan = false;
  for (Dimension d : {kX, kY, kZ, kM}) {
    if (!m_fresh) {
      rescan = Track(d, values[d]) || rescan;
    } else {
      m_value[d] = values[d];
      if (m_totalNodeCount == 1)
        TakeFirstValue(d, values[d]);
      else
        Widen(d, values[d]);
    }
  }
  m_fresh = false;
  if (rescan) RecomputeBounds();
}

// ---- positions --------------------------------------------------------------------

bool Shape::HasGrid(Position* position) const { return position->GetGrid() != 0; }

// x and y of a position in the template's frame: easting and northing when the
// template has a grid, else longitude and latitude in degrees.
bool Shape::ReadPosition(Position* position, bool grid, double& x, double& y) {
  x = grid ? position->GetEasting() : position->GetLongitudeDecDeg();
  if (CopyError(position) != 0) return false;
  y = grid ? position->GetNorthing() : position->GetLatitudeDecDeg();
  return CopyError(position) == 0;
}

bool Shape::BringToTemplate(Position* position, double& x, double& y) {
  const bool grid = HasGrid(m_template);
  const bool same = grid ? m_template->IsSameGrid(position) : m_template->IsSameDatum(position);
  if (same) return ReadPosition(position, grid, x, y);
  Ref<Position> copy(position->Copy());
  if (!copy) {
    CopyError(position);
    return false;
  }
  if (grid)
    copy->MakeSameGrid(m_template);
  else
    copy->MakeSameDatum(m_template);
  if (CopyError(copy.get()) != 0) return false;
  return ReadPosition(copy.get(), grid, x, y);
}

void Shape::SetPosition(Position* position) {
  LockScope lock;
  ClearError();
  if (!position) {
    SetError(kErrInvalidArgument, kPositionNull);
    return;
  }
  if (!m_template) {
    m_template = position->Copy();
    if (!m_template) {
      CopyError(position);
      return;
    }
  }
  double x, y;
  if (BringToTemplate(position, x, y)) SetNode(x, y, 0, 0);
}

Position* Shape::GetPosition() {
  LockScope lock;
  ClearError();
  if (!m_template) {
    SetError(kErrInvalidState, kTemplateNotSet);
    return nullptr;
  }
  const bool grid = HasGrid(m_template);
  if (m_cachedPosition && !(grid ? m_template->IsSameGrid(m_cachedPosition)
                                 : m_template->IsSameDatum(m_cachedPosition)))
    ReleaseObject(m_cachedPosition);
  if (!m_cachedPosition) {
    m_cachedPosition = m_template->Copy();
    if (!m_cachedPosition) {
      CopyError(m_template);
      return nullptr;
    }
  }
  if (grid) {
    m_cachedPosition->SetEasting(m_value[kX]);
    m_cachedPosition->SetNorthing(m_value[kY]);
  } else {
    m_cachedPosition->SetLongitudeDecDeg(m_value[kX]);
    m_cachedPosition->SetLatitudeDecDeg(m_value[kY]);
  }
  m_cachedPosition->AddRef();
  return m_cachedPosition;
}

}  // namespace kx
