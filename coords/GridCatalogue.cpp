#include "coords/GridCatalogue.h"

#include <iterator>

#include "coords/Constants.h"

namespace kx {

namespace {

constexpr GridRecord Record(int16_t datum, int16_t algorithm, double falseEasting,
                            double falseNorthing, double lon0, double lat0, double scale,
                            double sp1, double sp2, int16_t key = 0) {
  return GridRecord{datum,
                    algorithm,
                    0,
                    falseEasting,
                    falseNorthing,
                    DegreesToRadians(lon0),
                    DegreesToRadians(lat0),
                    scale,
                    DegreesToRadians(sp1),
                    DegreesToRadians(sp2),
                    key};
}

constexpr GridRecord kCatalogue[] = {
#define GRID(id, name, datum, alg, fe, fn, lon0, lat0, k0, sp1, sp2) \
  Record(datum, alg, fe, fn, lon0, lat0, k0, sp1, sp2),
#include "coords/data/Grids.inc"
#undef GRID
};
static_assert(std::size(kCatalogue) == GridCatalogue::kCustom + 1);

#define STATE_PLANE(key, datum, alg, fe, fn, lon0, lat0, k0, sp1, sp2) \
  Record(datum, alg, fe, fn, lon0, lat0, k0, sp1, sp2, key),
constexpr GridRecord kStatePlane27[] = {
#include "coords/data/StatePlane27.inc"
};
constexpr GridRecord kStatePlane83[] = {
#include "coords/data/StatePlane83.inc"
};
#undef STATE_PLANE
static_assert(std::size(kStatePlane27) == 132 && std::size(kStatePlane83) == 125);

// Linear from the first row, as the tables have always been searched.
template <size_t N>
int FindKey(const GridRecord (&table)[N], int16_t key) {
  for (size_t i = 0; i < N; ++i)
    if (table[i].zoneKey == key) return static_cast<int>(i);
  return -1;
}

}  // namespace

const GridRecord& GridCatalogue::Row(int16_t grid) { return kCatalogue[grid]; }

ZoneFamily GridCatalogue::FamilyOf(int16_t grid) {
  switch (grid) {
    case 1:
    case 2:
    case 13:
    case 15:
    case 16:
    case 28:
    case 32:
    case 33:
    case 47:
      return ZoneFamily::kUtm;
    case kGaussKrueger:
      return ZoneFamily::kGaussKrueger3;
    case kStatePlane1927:
      return ZoneFamily::kStatePlane27;
    case kStatePlane1983:
      return ZoneFamily::kStatePlane83;
    case kDanishSystem34:
      return ZoneFamily::kDanish34;
    default:
      return ZoneFamily::kNone;
  }
}

int GridCatalogue::FindZone27(int16_t key) { return FindKey(kStatePlane27, key); }
int GridCatalogue::FindZone83(int16_t key) { return FindKey(kStatePlane83, key); }
const GridRecord& GridCatalogue::Zone27(int index) { return kStatePlane27[index]; }
const GridRecord& GridCatalogue::Zone83(int index) { return kStatePlane83[index]; }

}  // namespace kx
