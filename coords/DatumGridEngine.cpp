#include "coords/DatumGridEngine.h"

#include <cmath>
#include <string>

#include "coords/Constants.h"
#include "frame/ErrorNumbers.h"
#include "frame/NumberText.h"
#include "frame/Ref.h"

namespace kx {

namespace {

constexpr const char* kUnknownDatum = "Unknown datum!";
constexpr const char* kGridNotSet = "Grid not set!";
constexpr const char* kZoneMustBeSpecified = "Zone must be specified for this grid";
constexpr const char* kUnknownAlgorithm = "Unknown algorithm for grid projection";
constexpr const char* kOutsideGrid = "Position outside grid";

// What an inverse projection gives for easting and northing far from its grid may be no
// point at all: a latitude beyond a pole, or no number. A datum shift would turn it into
// a plausible one, so it is refused before that.
bool IsOnTheEarth(double latitude, double longitude) {
  return std::fabs(latitude) <= kHalfPi && std::isfinite(longitude);
}

// Iterations of the geocentric-to-geographic latitude end on exact equality or here.
constexpr int kLatitudePasses = 10;

bool HasNoShift(const DatumRecord& p) {
  return p.dx == 0 && p.dy == 0 && p.dz == 0 && p.rx == 0 && p.ry == 0 && p.rz == 0 && p.scale == 0;
}

bool SameShift(const DatumRecord& p, const DatumRecord& q) {
  return p.dx == q.dx && p.dy == q.dy && p.dz == q.dz && p.rx == q.rx && p.ry == q.ry &&
         p.rz == q.rz && p.scale == q.scale;
}

struct Geocentric {
  double X, Y, Z;
};

// Position-vector rotation and scale, then the translation: this datum to the hub.
Geocentric ToHub(const Geocentric& g, const DatumRecord& p) {
  const double m = 1 + p.scale;
  return {(g.X - p.rz * g.Y + p.ry * g.Z) * m + p.dx, (p.rz * g.X + g.Y - p.rx * g.Z) * m + p.dy,
          (-p.ry * g.X + p.rx * g.Y + g.Z) * m + p.dz};
}

// The inverse of ToHub, to first order in the rotations: the hub to this datum.
Geocentric FromHub(Geocentric g, const DatumRecord& p) {
  g.X -= p.dx;
  g.Y -= p.dy;
  g.Z -= p.dz;
  const double m = 1 + p.scale;
  return {(g.X + p.rz * g.Y - p.ry * g.Z) / m, (-p.rz * g.X + g.Y + p.rx * g.Z) / m,
          (p.ry * g.X - p.rx * g.Y + g.Z) / m};
}

}  // namespace

DatumGridEngine::~DatumGridEngine() {
  ReleaseObject(customGrid);
  ReleaseObject(customDatum);
}

// ---- datums -----------------------------------------------------------------------

void DatumGridEngine::ShiftDatum(const EllipsoidRecord& target,
                                 const DatumRecord& targetParameters) {
  Ref<CustomDatum> sourceDatum;
  EllipsoidRecord sourceEllipsoid;
  DatumRecord source;
  if (datum == DatumTable::kCustom) {
    sourceDatum = Ref<CustomDatum>(GetCustomDatum());
    sourceEllipsoid = sourceDatum->Ellipsoid();
    source = sourceDatum->Parameters();
  } else {
    // An id outside the catalogue can only come from a decoder; it counts as the hub.
    const DatumRecord* row = DatumTable::Row(datum);
    if (!row) row = DatumTable::Row(DatumTable::kWgs84);
    sourceEllipsoid = DatumTable::EllipsoidOf(*row);
    source = *row;
  }
  if (sourceEllipsoid.a == target.a && sourceEllipsoid.e2 == target.e2 &&
      SameShift(source, targetParameters))
    return;

  const double p = latitude, l = longitude, h = altitudeEllipsoid;
  const double aS = sourceEllipsoid.a, eS = sourceEllipsoid.e2;
  const double NS = aS / std::sqrt(1 - eS * std::sin(p) * std::sin(p));
  Geocentric g{(NS + h) * std::cos(p) * std::cos(l), (NS + h) * std::cos(p) * std::sin(l),
               ((1 - eS) * NS + h) * std::sin(p)};
  if (!HasNoShift(source)) g = ToHub(g, source);
  if (!HasNoShift(targetParameters)) g = FromHub(g, targetParameters);

  const double aT = target.a, eT = target.e2;
  longitude = std::atan2(g.Y, g.X);
  const double P = std::sqrt(g.X * g.X + g.Y * g.Y);
  latitude = std::atan2(g.Z, P * (1 - eT));
  double N = 0;
  for (int pass = 0; pass < kLatitudePasses; ++pass) {
    N = aT / std::sqrt(1 - eT * std::sin(latitude) * std::sin(latitude));
    const double next = std::atan2(g.Z + eT * N * std::sin(latitude), P);
    if (next == latitude) break;
    latitude = next;
  }
  altitudeEllipsoid = P / std::cos(latitude) - N;
}

void DatumGridEngine::ChangeDatum(int16_t id) {
  ClearError();
  if (id == datum) return;
  const DatumRecord* row = DatumTable::Row(id);
  if (!row) {
    SetError(kErrInvalidArgument, kUnknownDatum);
    return;
  }
  ShiftDatum(DatumTable::EllipsoidOf(*row), *row);
  datum = id;
}

void DatumGridEngine::ChangeCustomDatum(CustomDatum* target) {
  ClearError();
  ShiftDatum(target->Ellipsoid(), target->Parameters());
  AttachCustomDatum(target);
}

void DatumGridEngine::AttachCustomDatum(CustomDatum* target) {
  ShareCustomDatum(target);
  datum = DatumTable::kCustom;
}

void DatumGridEngine::ShareCustomDatum(CustomDatum* target) {
  if (target) target->AddRef();
  ReleaseObject(customDatum);
  customDatum = target;
}

void DatumGridEngine::AttachCustomGrid(CustomGrid* target) {
  if (target) target->AddRef();
  ReleaseObject(customGrid);
  customGrid = target;
  grid = GridCatalogue::kCustom;
}

CustomDatum* DatumGridEngine::GetCustomDatum() {
  if (!customDatum) customDatum = new CustomDatum();
  customDatum->AddRef();
  return customDatum;
}

CustomGrid* DatumGridEngine::GetCustomGrid() {
  if (!customGrid) customGrid = new CustomGrid();
  customGrid->AddRef();
  return customGrid;
}

EllipsoidRecord DatumGridEngine::EllipsoidOfDatum(int16_t id) {
  if (id == DatumTable::kCustom) return Ref<CustomDatum>(GetCustomDatum())->Ellipsoid();
  const DatumRecord* row = DatumTable::Row(id);
  return DatumTable::EllipsoidOf(row ? *row : *DatumTable::Row(DatumTable::kWgs84));
}

// ---- the projection frame ---------------------------------------------------------

bool DatumGridEngine::SelectRow(GridRecord& row) {
  switch (grid) {
    case GridCatalogue::kNoGrid:
      SetError(kErrInvalidArgument, kGridNotSet);
      return false;
    case GridCatalogue::kStatePlane1983:
    case GridCatalogue::kStatePlane1927: {
      const bool of1983 = grid == GridCatalogue::kStatePlane1983;
      const int index = of1983 ? GridCatalogue::FindZone83(zone) : GridCatalogue::FindZone27(zone);
      if (index < 0) {
        SetError(kErrInvalidArgument, kZoneMustBeSpecified);
        return false;
      }
      row = of1983 ? GridCatalogue::Zone83(index) : GridCatalogue::Zone27(index);
      return true;
    }
    case GridCatalogue::kCustom:
      row = Ref<CustomGrid>(GetCustomGrid())->AsRow();
      return true;
    default:
      row = GridCatalogue::Row(grid);
      return true;
  }
}

const Projection* DatumGridEngine::AlgorithmOf(const GridRecord& row) {
  const Projection* projection = Projection::ForAlgorithm(row.algorithm);
  if (!projection) SetError(kErrInvalidArgument, kUnknownAlgorithm);
  return projection;
}

EllipsoidRecord DatumGridEngine::ReachGridDatum(const GridRecord& row) {
  if (row.datum == DatumTable::kCustom) {
    Ref<CustomDatum> gridDatum(Ref<CustomGrid>(GetCustomGrid())->GetCustomDatum());
    ChangeCustomDatum(gridDatum.get());
    return gridDatum->Ellipsoid();
  }
  const bool bothNad27 = DatumTable::IsNad27(datum) && DatumTable::IsNad27(row.datum);
  if (datum == row.datum || bothNad27) return EllipsoidOfDatum(datum);
  ChangeDatum(row.datum);
  return EllipsoidOfDatum(row.datum);
}

void DatumGridEngine::ReturnFromGridDatum(const GridRecord& row) {
  const bool positionCustom = datum == DatumTable::kCustom;
  const bool gridCustom = row.datum == DatumTable::kCustom;
  if (gridCustom) {
    Ref<CustomDatum> gridDatum(Ref<CustomGrid>(GetCustomGrid())->GetCustomDatum());
    if (positionCustom) {
      Ref<CustomDatum> kept = Ref<CustomDatum>::Share(customDatum);
      ShareCustomDatum(gridDatum.get());
      ChangeCustomDatum(kept.get());
    } else {
      const int16_t kept = datum;
      AttachCustomDatum(gridDatum.get());
      ChangeDatum(kept);
    }
    return;
  }
  if (positionCustom) {
    Ref<CustomDatum> kept = Ref<CustomDatum>::Share(customDatum);
    datum = row.datum;
    ChangeCustomDatum(kept.get());
    return;
  }
  if (datum == row.datum || (DatumTable::IsNad27(datum) && DatumTable::IsNad27(row.datum))) return;
  const int16_t kept = datum;
  datum = row.datum;
  ChangeDatum(kept);
}

void DatumGridEngine::ReduceToZone() {
  const ZoneFamily family = GridCatalogue::FamilyOf(grid);
  if (family != ZoneFamily::kUtm && family != ZoneFamily::kGaussKrueger3) return;
  const bool utm = family == ZoneFamily::kUtm;
  const double width = utm ? 6 : 3;
  const int offset = utm ? 31 : 0;
  int n = static_cast<int>(std::trunc(longitude / width * 180 / kPi));
  if (longitude < 0) n -= 1;
  longitude -= DegreesToRadians(n * width);
  if (forcedZone)
    longitude += DegreesToRadians((n - (*forcedZone - offset)) * width);
  else
    zone = static_cast<int16_t>(n + offset);
}

void DatumGridEngine::AddZoneOffset() {
  switch (GridCatalogue::FamilyOf(grid)) {
    case ZoneFamily::kUtm:
      longitude += DegreesToRadians((zone - 31) * 6.0);
      break;
    case ZoneFamily::kGaussKrueger3:
      longitude += DegreesToRadians(zone * 3.0);
      break;
    default:
      break;
  }
}

void DatumGridEngine::ProjectForward() {
  ClearError();
  const double keptLatitude = latitude, keptLongitude = longitude;
  const double keptAltitude = altitudeEllipsoid;
  const int16_t keptDatum = datum;
  Ref<CustomDatum> keptCustomDatum = Ref<CustomDatum>::Share(customDatum);

  GridRecord row;
  if (!SelectRow(row)) return;
  const EllipsoidRecord ellipsoid = ReachGridDatum(row);
  ReduceToZone();
  if (const Projection* projection = AlgorithmOf(row)) {
    if (!projection->Forward({row, ellipsoid, zone}, latitude, longitude, easting, northing))
      SetError(kErrInvalidArgument, kOutsideGrid);
  }

  latitude = keptLatitude;
  longitude = keptLongitude;
  altitudeEllipsoid = keptAltitude;
  datum = keptDatum;
  ShareCustomDatum(keptCustomDatum.get());
}

void DatumGridEngine::ProjectInverse() {
  ClearError();
  GridRecord row;
  if (!SelectRow(row)) return;
  const EllipsoidRecord ellipsoid =
      row.datum == DatumTable::kCustom
          ? Ref<CustomDatum>(Ref<CustomGrid>(GetCustomGrid())->GetCustomDatum())->Ellipsoid()
          : EllipsoidOfDatum(row.datum);
  const Projection* projection = AlgorithmOf(row);
  if (!projection) return;
  double lat = 0, lon = 0;
  if (!projection->Inverse({row, ellipsoid, zone}, easting, northing, lat, lon) ||
      !IsOnTheEarth(lat, lon)) {
    SetError(kErrInvalidArgument, kOutsideGrid);
    return;
  }
  latitude = lat;
  longitude = lon;
  AddZoneOffset();
  ReturnFromGridDatum(row);
}

// ---- zone text --------------------------------------------------------------------

String* DatumGridEngine::GetZoneText() const {
  std::string text;
  if (grid == GridCatalogue::kNoGrid) return new String("");
  if (GridCatalogue::FamilyOf(grid) == ZoneFamily::kUtm) {
    NumberText::AppendInt(text, zone);
    text += BandLetter();
  } else if (zone != 0 || grid == GridCatalogue::kGaussKrueger) {
    NumberText::AppendInt(text, zone);
  }
  return new String(text.c_str());
}

// The latitude band: 8 degrees each from "C" at 80 south, skipping "I" and "O". There
// is no clamp at either end.
char DatumGridEngine::BandLetter() const {
  const double degrees = latitude * 180 / kPi;
  int code = 'C' + static_cast<int>(std::trunc((degrees + 80) / 8));
  if (code >= 'I') ++code;
  if (code >= 'O') ++code;
  return static_cast<char>(code);
}

}  // namespace kx
