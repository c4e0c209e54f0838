// Shape: area, length, nearest node and edge, reversal and conversion of all nodes.
#include <cmath>
#include <vector>

#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"
#include "shapes/SegmentCross.h"
#include "shapes/Shape.h"
#include "shapes/ShapeTexts.h"

namespace kx {

using namespace shape_text;

namespace {

// Position_Distance's method for metres on the sphere.
constexpr int32_t kOnTheSphere = 1;

void Place(Position* position, bool grid, double x, double y) {
  if (grid) {
    position->SetEasting(x);
    position->SetNorthing(y);
  } else {
    position->SetLongitudeDecDeg(x);
    position->SetLatitudeDecDeg(y);
  }
}

}  // namespace

// The geometry reads storage, so the working node goes there first; the index it keeps
// belongs to the present ModifiedCount.
const ShapeIndex& Shape::Index() {
  Commit();
  if (!m_index.IsCurrent(m_modifiedCount)) m_index.Rebuild(*this, m_modifiedCount);
  return m_index;
}

bool Shape::IsClosed(int32_t part) const {
  const int32_t count = StoredNodeCount(part);
  if (count == 0) return false;
  const NodeRecord first = StoredNode(part, 0), last = StoredNode(part, count - 1);
  return first.x == last.x && first.y == last.y;
}

bool Shape::ClosedForInside(int32_t part) const {
  return StoredNodeCount(part) >= 3 && !IsClosed(part);
}

// Half the sum of y[i] (x[i+1] - x[i-1]) for i from 0 to n - 2, where node 0's
// predecessor is node n - 2 (the last node repeats the first). Positive clockwise.
double Shape::SignedArea(const PartGeometry& part) const {
  const int32_t n = part.count;
  if (n < 2) return 0;
  const XY* p = part.nodes.data();
  double sum = p[0].y * (p[1].x - p[n - 2].x);
  for (int32_t i = 1; i <= n - 2; ++i) sum += p[i].y * (p[i + 1].x - p[i - 1].x);
  return 0.5 * sum;
}

double Shape::PartArea() {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (m_template && !HasGrid(m_template)) {
    SetError(kErrInvalidState, kAreaOfDatum);
    return 0;
  }
  const bool active = m_partActive;
  Index();
  if (!active || !m_index.Part(m_partIndex).closed || m_index.CrossesItself(m_partIndex)) {
    SetError(kErrInvalidState, kPartNotPolygon);
    return 0;
  }
  return SignedArea(m_index.Part(m_partIndex));
}

double Shape::Area() {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (m_areaStamp == m_modifiedCount) return m_area;
  if (!IsCleanPolygon()) {
    SetError(kErrInvalidState, kShapeNotPolygon);
    return 0;
  }
  if (m_template && !HasGrid(m_template)) {
    SetError(kErrInvalidState, kAreaOfDatum);
    return 0;
  }
  double sum = 0;
  for (int32_t part = 0; part < m_index.PartCount(); ++part) sum += SignedArea(m_index.Part(part));
  m_area = sum;
  m_areaStamp = m_modifiedCount;
  return sum;
}

// ---- length -----------------------------------------------------------------------

// Adds the distances between successive nodes first to last of the active part, through
// two copies of the template. Stops with 10004 where the part ends before `last`.
//
// In a grid the copies hold easting and northing as set, in one grid and zone, and
// Position_Distance in the plane reads them back as they are: the distance is the root
// of the squared differences, computed here in the same order of operations without
// the round trip through the positions.
bool Shape::StepThroughPart(Position* from, Position* to, int32_t first, int32_t last,
                            double& sum) {
  const bool grid = HasGrid(m_template);
  int32_t k = 0;
  double E1 = 0, N1 = 0;
  VisitRuns(m_partIndex, [&](const uint8_t* records, int32_t count) {
    for (int32_t r = 0; r < count && k <= last; ++r, ++k) {
      if (k < first) continue;
      const NodeRecord node = RecordAt(records, r);
      if (grid) {
        const double E2 = node.x, N2 = node.y;
        if (k > first) sum += std::sqrt((E2 - E1) * (E2 - E1) + (N2 - N1) * (N2 - N1));
        E1 = E2;
        N1 = N2;
        continue;
      }
      if (k > first) {
        Place(to, false, node.x, node.y);
        sum += from->Distance(to, kOnTheSphere);
      }
      Place(from, false, node.x, node.y);
    }
  });
  if (k > last) return true;
  SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
  return false;
}

double Shape::Length(int32_t first, int32_t last) {
  const int32_t count = RefreshPartNodeCount();
  if (count == 0) return 0;
  if (first == -1) first = count - 1;
  if (first < 0 || first >= count) {
    SetError(kErrIndexOutOfRange, text::kIndexOutOfBounds);
    return 0;
  }
  if (last == -1) last = count - 1;
  Commit();
  Ref<Position> from(m_template->Copy()), to(m_template->Copy());
  if (!from || !to) {
    CopyError(m_template);
    return 0;
  }
  double sum = 0;
  StepThroughPart(from.get(), to.get(), first, last, sum);
  return sum;
}

double Shape::Distance(int32_t first, int32_t last) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  const bool whole = first == 0 && last == -1;
  if (whole && m_lengthStamp == m_modifiedCount && m_lengthPart == m_partIndex) return m_length;
  if (!m_template) {
    SetError(kErrInvalidState, kTemplateNotSet);
    return 0;
  }
  const double sum = Length(first, last);
  if (whole && !Error().Failed()) {
    m_length = sum;
    m_lengthStamp = m_modifiedCount;
    m_lengthPart = m_partIndex;
  }
  return sum;
}

// ---- nearest node and edge --------------------------------------------------------

// The start of a search among the nodes: a shape without any fails it.
bool Shape::StartNodeSearch() {
  ClearError();
  EnsureStorage();
  if (m_totalNodeCount == 0) {
    SetError(kErrInvalidState, kNoNodes);
    return false;
  }
  Commit();
  return true;
}

double Shape::FindClosestNode(double x, double y) {
  LockScope lock;
  if (!StartNodeSearch()) return 0;
  double best = 0;
  int32_t bestPart = -1, bestNode = 0;
  for (int32_t part = 0; part < StoredPartCount(); ++part) {
    int32_t k = 0;
    VisitRuns(part, [&](const uint8_t* records, int32_t count) {
      for (int32_t r = 0; r < count; ++r, ++k) {
        const NodeRecord node = RecordAt(records, r);
        const double d = std::sqrt((node.x - x) * (node.x - x) + (node.y - y) * (node.y - y));
        if (bestPart < 0 || d < best) {
          best = d;
          bestPart = part;
          bestNode = k;
        }
      }
    });
  }
  MoveToPart(bestPart);
  MoveToNode(bestNode);
  return best;
}

double Shape::FindClosestVector(double x, double y) {
  LockScope lock;
  if (!StartNodeSearch()) return 0;
  const XY P{x, y};
  double best = 0;
  int32_t bestPart = -1, bestNode = 0;
  auto consider = [&](double d, int32_t part, int32_t node) {
    if (bestPart >= 0 && !(d < best)) return;
    best = d;
    bestPart = part;
    bestNode = node;
  };
  for (int32_t part = 0; part < StoredPartCount(); ++part) {
    const int32_t count = StoredNodeCount(part);
    if (count == 1) {
      const NodeRecord only = StoredNode(part, 0);
      consider(PointToSegment(P, {only.x, only.y}, {only.x, only.y}), part, 0);
      continue;
    }
    int32_t k = 0;
    XY previous{};
    VisitRuns(part, [&](const uint8_t* records, int32_t run) {
      for (int32_t r = 0; r < run; ++r, ++k) {
        const NodeRecord node = RecordAt(records, r);
        const XY here{node.x, node.y};
        if (k > 0) consider(PointToSegment(P, previous, here), part, k - 1);
        previous = here;
      }
    });
  }
  MoveToPart(bestPart);
  MoveToNode(bestNode);
  return best;
}

// ---- reversal ---------------------------------------------------------------------

bool Shape::ReverseActivePart() {
  std::vector<NodeRecord> records;
  records.reserve(m_partNodeCount);
  VisitRuns(m_partIndex, [&](const uint8_t* run, int32_t count) {
    for (int32_t r = 0; r < count; ++r) records.push_back(RecordAt(run, r));
  });
  ChunkedRecordStore* store = ActiveStore();
  const int32_t n = int32_t(records.size());
  for (int32_t k = 0; k < n; ++k) {
    store->Set(k, &records[n - 1 - k]);
    if (CopyError(store) != 0) return false;
  }
  return true;
}

void Shape::InvertPart() {
  LockScope lock;
  if (!StartEdit()) return;
  if (!m_partActive) return;
  Commit();
  if (RefreshPartNodeCount() < 2) return;
  if (!ReverseActivePart()) return;
  Load(m_nodeIndex);  // the index stays, its node changes
  Changed();
}

// ---- conversion -------------------------------------------------------------------

// Every node's X and Y in the target's frame, Z, M and NodeID kept; nothing is written
// unless all of them convert.
bool Shape::ConvertNodes(Position* target, std::vector<NodeRecord>& converted) {
  const bool fromGrid = HasGrid(m_template), toGrid = HasGrid(target);
  for (int32_t part = 0; part < StoredPartCount(); ++part) {
    bool ok = true;
    VisitRuns(part, [&](const uint8_t* records, int32_t count) {
      for (int32_t r = 0; r < count && ok; ++r) {
        NodeRecord node = RecordAt(records, r);
        Ref<Position> copy(m_template->Copy());
        if (!copy) {
          ok = CopyError(m_template) == 0;
          return;
        }
        Place(copy.get(), fromGrid, node.x, node.y);
        if (toGrid)
          copy->MakeSameGrid(target);
        else
          copy->MakeSameDatum(target);
        ok = CopyError(copy.get()) == 0 && ReadPosition(copy.get(), toGrid, node.x, node.y);
        converted.push_back(node);
      }
    });
    if (!ok) return false;
  }
  return true;
}

void Shape::ConvertDatumGrid(Position* target) {
  LockScope lock;
  ClearError();
  EnsureStorage();
  if (!m_template) {
    SetError(kErrInvalidState, kTemplateNotSet);
    return;
  }
  if (!target) {
    SetError(kErrInvalidArgument, kPositionNull);
    return;
  }
  const bool fromGrid = HasGrid(m_template), toGrid = HasGrid(target);
  if (fromGrid && toGrid && m_template->IsSameGrid(target)) return;
  if (!fromGrid && !toGrid && m_template->IsSameDatum(target)) return;
  Commit();
  std::vector<NodeRecord> converted;
  converted.reserve(m_totalNodeCount);
  if (!ConvertNodes(target, converted)) return;
  Position* replacement = target->Copy();
  if (!replacement) {
    CopyError(target);
    return;
  }
  size_t next = 0;
  for (int32_t part = 0; part < StoredPartCount(); ++part) {
    const int32_t count = StoredNodeCount(part);
    for (int32_t k = 0; k < count; ++k, ++next) {
      if (m_fixedSize)
        m_fixedParts[part].nodes[k] = converted[next];
      else
        m_parts[part]->Set(k, &converted[next]);
    }
  }
  ReleaseObject(m_template);
  m_template = replacement;
  if (HasActiveNode()) Load(m_nodeIndex);
  RecomputeBounds();
  Changed();
}

}  // namespace kx
