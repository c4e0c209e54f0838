// A geometric object of parts, each an ordered list of nodes with X, Y, Z, M and a
// NodeID. Nodes are read and written through one working copy that goes back to
// storage only when the cursor moves. Storage is dynamic (a ChunkedRecordStore per
// part) or fixed-size (arrays sized by the owner first). Every change raises
// ModifiedCount, on which the cached results of the geometry and the viewer depend.
// Every operation holds the LibraryLock.
#pragma once

#include <cstdint>
#include <vector>

#include "coords/Position.h"
#include "frame/BaseObject.h"
#include "shapes/ChunkedRecordStore.h"
#include "shapes/FixedPart.h"
#include "shapes/NodeRecord.h"
#include "shapes/ShapeIndex.h"

namespace kx {

class Shape : public BaseObject {
 public:
  // The bounds, in this order.
  enum Bound { kMinX, kMaxX, kMinY, kMaxY, kMinZ, kMaxZ, kMinM, kMaxM, kBoundCount };

  Shape();
  // A dynamic shape whose list of parts exists but is empty, for readers that add
  // prepared stores with AddPartStore.
  struct WithoutParts {};
  explicit Shape(WithoutParts);
  ~Shape() override;

  // ---- life and cursor
  int32_t GetPartIndex();
  void SetPartIndex(int32_t part);
  int32_t GetNodeIndex();
  void SetNodeIndex(int32_t node);
  int32_t GetPartCount();
  int32_t GetNodeCount();
  int32_t GetTotalNodeCount();
  int32_t GetModifiedCount();
  int32_t GetShapeID();
  void SetShapeID(int32_t id);
  int32_t GetNodeID();
  // With a reference for the caller, or null.
  Position* GetDatumGridTemplate();
  void SetDatumGridTemplate(Position* position);
  bool GetPixelShape();
  void SetPixelShape(bool pixels);

  // ---- nodes
  double GetX();
  double GetY();
  double GetZ();
  double GetM();
  void SetX(double value);
  void SetY(double value);
  void SetZ(double value);
  void SetM(double value);
  void GetNode(double& x, double& y, double& z, double& m);
  void SetNode(double x, double y, double z, double m);
  // The position brought to the template, into X and Y; Z and M become 0.
  void SetPosition(Position* position);
  // The shape's one position object, with a reference for the caller, holding X and Y.
  Position* GetPosition();
  void NewNode(int32_t index);
  void DeleteNode();
  // Bulk loading: straight into storage at the end of the active part. The records
  // take the next NodeIDs of the counter in place.
  void AppendNode(double x, double y, double z, double m);
  void AppendNodes(NodeRecord* records, int32_t count);

  // ---- parts and the whole
  void NewPart(int32_t index);
  void ClearPart();
  void DeletePart();
  void ClearShape();
  // New shapes with a reference for the caller, or null.
  Shape* Copy();
  Shape* Copy2(int32_t first, int32_t last);
  void GetBoundingBox(double bounds[kBoundCount]);
  bool GetFixedSize();
  void SetFixedSize(bool fixed);
  void FixedPartCount(int32_t parts);
  void FixedNodeCount(int32_t part, int32_t nodes);
  // Appends a prepared store as a part; the shape keeps a reference.
  void AddPartStore(ChunkedRecordStore* store);

  // ---- geometry
  double Area();
  double PartArea();
  double Distance(int32_t first, int32_t last);
  bool IsInside(double x, double y);
  bool IsInside2(Position* position);
  bool IsIntersecting(Shape* other);
  bool IsCleanPolygon();
  double FindClosestNode(double x, double y);
  double FindClosestNode2(Position* position);
  double FindClosestVector(double x, double y);
  double FindClosestVector2(Position* position);
  void InvertPart();
  void ConvertDatumGrid(Position* target);
  void RecomputeBounds();
  // The bounds of parts first to last, handed out without being stored.
  void GetPartBounds(int32_t firstPart, int32_t lastPart, double bounds[kBoundCount]);

  // ---- reading storage, for the geometry and for the readers and writers of shapes
  int32_t StoredPartCount() const;
  int32_t StoredNodeCount(int32_t part) const;
  NodeRecord StoredNode(int32_t part, int32_t index) const;
  const double* Bounds() const { return m_bounds; }
  // Whether Shape_IsInside closes the part in passing: 3 nodes or more, not closed.
  bool ClosedForInside(int32_t part) const;
  // Calls visit(records, count) for each run of records of the part that lie side by
  // side in memory, in node order.
  template <class Visit>
  void VisitRuns(int32_t part, Visit visit) const {
    if (m_fixedSize) {
      const FixedPart& slot = m_fixedParts[part];
      if (slot.count > 0) visit(reinterpret_cast<const uint8_t*>(slot.nodes), slot.count);
      return;
    }
    const ChunkedRecordStore& store = *m_parts[part];
    for (int32_t c = 0; c < store.GetChunkCount(); ++c)
      visit(store.ChunkAt(c).Records(), store.ChunkAt(c).GetCount());
  }

 private:
  enum Dimension { kX, kY, kZ, kM };
  struct Cursor {
    int32_t part, node;
  };

  // storage
  void EnsureStorage();
  ChunkedRecordStore* NewStore();
  ChunkedRecordStore* ActiveStore() const;
  FixedPart* ActiveFixedPart() const;
  int32_t RefreshPartNodeCount();
  bool ReadActive(int32_t index, NodeRecord& record);
  bool WriteActive(int32_t index, const NodeRecord& record);
  bool HasActiveNode();
  NodeRecord WorkingRecord() const;

  // cursor
  void Commit();
  void Load(int32_t index);
  void MoveToNode(int32_t node);
  void MoveToPart(int32_t part);
  void MoveToFixedPart(int32_t part);
  void ActivatePart(int32_t part);
  Cursor MarkCursor() const { return {m_partIndex, m_nodeIndex}; }
  void RestoreCursor(Cursor cursor);
  void Changed() { ++m_modifiedCount; }

  // values and bounds
  void SetValue(Dimension d, double value);
  bool Track(Dimension d, double value);
  void TakeFirstValue(Dimension d, double value);
  void Widen(Dimension d, double value);
  // Bounds widened by a run of records; with `first`, its first record sets them.
  static void ExtendOver(double bounds[kBoundCount], const uint8_t* records, int32_t count,
                         bool first);
  void ZeroBounds();
  bool TouchesBounds(int32_t part) const;
  void ScanBounds(int32_t firstPart, int32_t lastPart, double bounds[kBoundCount]) const;

  // editing
  bool RefuseFixedSize();
  bool StartEdit();
  bool StartNodeSearch();
  bool InsertNode(int32_t index, const NodeRecord& record, int32_t& placed);
  int32_t StoreRun(const NodeRecord* records, int32_t count);
  void ClearActivePart();
  void Reset();
  void FreeFixedParts();
  bool TakeStores(const Shape& from);

  // positions
  bool HasGrid(Position* position) const;
  bool BringToTemplate(Position* position, double& x, double& y);
  bool ReadPosition(Position* position, bool grid, double& x, double& y);

  // geometry
  const ShapeIndex& Index();
  bool IsClosed(int32_t part) const;
  double SignedArea(const PartGeometry& part) const;
  bool PositionToXY(Position* position, double& x, double& y);
  bool Inside(double x, double y);
  bool CloseInPassing();
  bool InSameFrame(Shape* other);
  bool PartsAreRings();
  bool RingsAreNested();
  double Length(int32_t first, int32_t last);
  bool StepThroughPart(Position* from, Position* to, int32_t first, int32_t last, double& sum);
  bool ReverseActivePart();
  bool ConvertNodes(Position* target, std::vector<NodeRecord>& converted);

  int32_t m_shapeId = 0;
  bool m_fixedSize = false;
  FixedPart* m_fixedParts = nullptr;
  int32_t m_fixedPartCount = 0;
  bool m_storageReady = false;
  int32_t m_workingNodeId = 0;
  double m_value[4] = {};  // working X, Y, Z, M
  int32_t m_nodeIndex = 0;
  int32_t m_partIndex = 0;
  double m_bounds[kBoundCount] = {};
  bool m_dirty = false;
  std::vector<ChunkedRecordStore*> m_parts;  // counted references, in part order
  Position* m_template = nullptr;
  Position* m_cachedPosition = nullptr;
  int32_t m_nextNodeId = 1;
  int32_t m_totalNodeCount = 0;
  bool m_empty = true;
  bool m_pixelShape = false;
  bool m_fresh = false;
  bool m_partActive = false;
  int32_t m_partNodeCount = 0;
  int32_t m_modifiedCount = 1;
  bool m_cleanResult = false;
  int32_t m_cleanStamp = 0;
  double m_area = 0;
  int32_t m_areaStamp = 0;
  double m_length = 0;
  int32_t m_lengthStamp = 0;
  int32_t m_lengthPart = 0;
  ShapeIndex m_index;
};

}  // namespace kx
