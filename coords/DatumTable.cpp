#include "coords/DatumTable.h"

namespace kx {

namespace {

struct IndexedEllipsoid {
  int32_t index;
  EllipsoidRecord record;
};

constexpr IndexedEllipsoid kEllipsoids[] = {
#define ELLIPSOID(index, name, a, e2) {index, {a, e2}},
#include "coords/data/Ellipsoids.inc"
#undef ELLIPSOID
};

constexpr DatumRecord kEmptyRow = {0, 0, 0, 0, 0, 0, 0, 0, 0};

// Indexed by id; rows 0 and 28 stay empty.
struct DatumRows {
  DatumRecord rows[DatumTable::kCustom + 1];
  constexpr DatumRows() : rows() {
    for (auto& row : rows) row = kEmptyRow;
#define DATUM(id, name, ellipsoid, dx, dy, dz, rx, ry, rz, scale) \
  rows[id] = DatumRecord{ellipsoid, 0, dx, dy, dz, rx, ry, rz, scale};
#include "coords/data/Datums.inc"
#undef DATUM
  }
};

constexpr DatumRows kDatums;

constexpr const EllipsoidRecord* FindEllipsoid(int32_t index) {
  for (const auto& entry : kEllipsoids)
    if (entry.index == index) return &entry.record;
  return nullptr;
}

constexpr bool EveryRowNamesAKnownEllipsoid() {
  for (int16_t id = 1; id <= DatumTable::kLastCatalogued; ++id)
    if (!FindEllipsoid(kDatums.rows[id].ellipsoid)) return false;
  return true;
}
static_assert(EveryRowNamesAKnownEllipsoid());

}  // namespace

const DatumRecord* DatumTable::Row(int16_t id) {
  if (id < 1 || id > kLastCatalogued) return nullptr;
  return &kDatums.rows[id];
}

const EllipsoidRecord& DatumTable::EllipsoidOf(const DatumRecord& row) {
  return *FindEllipsoid(row.ellipsoid);  // never null: checked at compile time
}

}  // namespace kx
