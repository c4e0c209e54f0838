#include "coords/Position.h"

#include <cmath>
#include <new>
#include <utility>

#include "coords/Constants.h"
#include "coords/SphericalGeometry.h"
#include "frame/ErrorNumbers.h"
#include "frame/LibraryLock.h"
#include "frame/Ref.h"

namespace kx {

namespace {

constexpr const char* kInvalidLatitude = "Invalid latitude. Must be between -PI/2 and PI/2";
constexpr const char* kInvalidDegrees = "Invalid value of Degrees. Must be between 0 and 90!";
constexpr const char* kUnknownDatum = "Unknown datum!";
constexpr const char* kUnknownGrid = "Unknown grid!";
constexpr const char* kUseCustomDatum = "Set Position.CustomDatum instead!";
constexpr const char* kUseCustomGrid = "Set Position.CustomGrid instead!";
constexpr const char* kNullCustomDatum = "CustomDatum may not be null.";
constexpr const char* kNullCustomGrid = "CustomGrid may not be null.";
constexpr const char* kInvalidZone = "Invalid Zone for this grid!";

constexpr int16_t kAltitudeSeaLevel = 0;
constexpr int16_t kAltitudeEllipsoid = 1;

// Into -pi..+pi; both ends stand as they are.
double NormalisedLongitude(double x) {
  if (x >= -kPi && x <= kPi) return x;
  x = x - std::trunc(x / (2 * kPi)) * 2 * kPi;
  if (x > kPi) return x - 2 * kPi;
  if (x < -kPi) return x + 2 * kPi;
  return x;
}

// Whole degrees, whole minutes and seconds rounded to a thousandth, of |radians|.
void ToSexagesimal(double radians, int16_t& degreesOut, int16_t& minutesOut, double& seconds) {
  const double d = std::fabs(radians) * 180 / kPi;
  double degrees = std::trunc(d);
  double minutes = std::trunc((d - degrees) * 60);
  seconds = d * 3600 - degrees * 3600 - minutes * 60;
  seconds = std::trunc((seconds + 0.0005) * 1000) / 1000;
  if (seconds >= 60) {
    seconds -= 60;
    minutes += 1;
  }
  if (minutes >= 60) {
    minutes -= 60;
    degrees += 1;
  }
  degreesOut = static_cast<int16_t>(degrees);
  minutesOut = static_cast<int16_t>(minutes);
}

double DmsToRadians(double degrees, double minutes, double seconds) {
  return degrees / 180 * kPi + minutes / 180 / 60 * kPi + seconds / 180 / 3600 * kPi;
}

// "ddmm.mmmm" of a sentence into its parts, all digits of the seconds kept.
double NmeaAngle(TextView text, int16_t& degreesOut, int16_t& minutesOut, double& secondsOut) {
  const double x = text.ToDouble();
  const double w = std::trunc(x);
  const double minutes = w - std::trunc(w / 100) * 100;
  const double degrees = (w - minutes) / 100;
  const double seconds = (x - w) * 60;
  degreesOut = static_cast<int16_t>(degrees);
  minutesOut = static_cast<int16_t>(minutes);
  secondsOut = seconds;
  return (degrees + minutes / 60 + seconds / 3600) / 180 * kPi;
}

}  // namespace

Position::Position() = default;

Position::Position(const String* latitude, const String* longitude,
                   const String* latitudeHemisphere, const String* longitudeHemisphere,
                   const String* altitude, const String* separation, int16_t datum)
    : Position(String::ViewOf(latitude), String::ViewOf(longitude),
               String::ViewOf(latitudeHemisphere), String::ViewOf(longitudeHemisphere),
               String::ViewOf(altitude), String::ViewOf(separation), datum) {}

Position::Position(TextView latitude, TextView longitude, TextView latitudeHemisphere,
                   TextView longitudeHemisphere, TextView altitude, TextView separation,
                   int16_t datum) {
  m_pristine = 0;
  m_engine.datum = datum;
  const double lon =
      NmeaAngle(longitude, m_longitude.degrees, m_longitude.minutes, m_longitude.seconds);
  m_engine.longitude = longitudeHemisphere.StartsWith('W') ? -lon : lon;
  const double lat =
      NmeaAngle(latitude, m_latitude.degrees, m_latitude.minutes, m_latitude.seconds);
  m_engine.latitude = latitudeHemisphere.StartsWith('S') ? -lat : lat;
  m_altitudeSeaLevel = altitude.ToDouble();
  m_engine.altitudeEllipsoid =
      separation.IsPresent() ? m_altitudeSeaLevel + separation.ToDouble() : 0;
}

Position::~Position() = default;

// ---- bringing the stale side up to date ------------------------------------------

bool Position::RefreshGeographic() {
  if (!m_geographicStale) return true;
  m_engine.ProjectInverse();
  if (CopyError(&m_engine) != 0) return false;
  RefreshSexagesimal();
  m_geographicStale = 0;
  return true;
}

bool Position::RefreshGrid() {
  if (!m_gridStale) return true;
  m_engine.ProjectForward();
  if (CopyError(&m_engine) != 0) return false;
  m_gridStale = 0;
  return true;
}

// The sexagesimal forms are worked out when first read after a write: the same values
// as at the write, since nothing else changes the radians without a refresh.
void Position::RefreshSexagesimal() {
  m_engine.longitude = NormalisedLongitude(m_engine.longitude);
  m_latitudeFormStale = 1;
  m_longitudeFormStale = 1;
}

const Position::Sexagesimal& Position::LatitudeForm() {
  if (m_latitudeFormStale) {
    ToSexagesimal(m_engine.latitude, m_latitude.degrees, m_latitude.minutes, m_latitude.seconds);
    m_latitudeFormStale = 0;
  }
  return m_latitude;
}

const Position::Sexagesimal& Position::LongitudeForm() {
  if (m_longitudeFormStale) {
    ToSexagesimal(m_engine.longitude, m_longitude.degrees, m_longitude.minutes,
                  m_longitude.seconds);
    m_longitudeFormStale = 0;
  }
  return m_longitude;
}

void Position::StoreLatitude(double radians) {
  m_engine.latitude = radians;
  m_latitudeFormStale = 1;
  m_gridStale = 1;
  m_geographicStale = 0;
  Changed();
}

void Position::StoreLongitude(double radians) {
  m_engine.longitude = NormalisedLongitude(radians);
  m_longitudeFormStale = 1;
  m_gridStale = 1;
  m_geographicStale = 0;
  Changed();
}

// ---- latitude and longitude -------------------------------------------------------

double Position::GetLatitudeRads() {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGeographic();
  return m_engine.latitude;
}

void Position::SetLatitudeRads(double radians) {
  LockScope lock;
  ClearError();
  Touch();
  if (!(radians >= -kHalfPi && radians <= kHalfPi)) {
    SetError(kErrInvalidArgument, kInvalidLatitude);
    return;
  }
  StoreLatitude(radians);
}

double Position::GetLongitudeRads() {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGeographic();
  return m_engine.longitude;
}

void Position::SetLongitudeRads(double radians) {
  LockScope lock;
  ClearError();
  Touch();
  StoreLongitude(radians);
}

double Position::GetLatitudeDecDeg() { return GetLatitudeRads() * 180 / kPi; }
void Position::SetLatitudeDecDeg(double degrees) { SetLatitudeRads(degrees / 180 * kPi); }
double Position::GetLongitudeDecDeg() { return GetLongitudeRads() * 180 / kPi; }
void Position::SetLongitudeDecDeg(double degrees) { SetLongitudeRads(degrees / 180 * kPi); }

void Position::GetDMS(const Sexagesimal& form, bool negative, char positiveLetter,
                      char negativeLetter, int16_t& degrees, int16_t& minutes, double& seconds,
                      String*& hemisphere) {
  degrees = form.degrees;
  minutes = form.minutes;
  seconds = form.seconds;
  const char letter[2] = {negative ? negativeLetter : positiveLetter, 0};
  hemisphere = new String(letter);
}

void Position::GetLatitudeDMS(int16_t& degrees, int16_t& minutes, double& seconds,
                              String*& hemisphere) {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGeographic();
  GetDMS(LatitudeForm(), m_engine.latitude < 0, 'N', 'S', degrees, minutes, seconds, hemisphere);
}

void Position::GetLongitudeDMS(int16_t& degrees, int16_t& minutes, double& seconds,
                               String*& hemisphere) {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGeographic();
  GetDMS(LongitudeForm(), m_engine.longitude < 0, 'E', 'W', degrees, minutes, seconds, hemisphere);
}

void Position::SetLatitudeDMS(double degrees, double minutes, double seconds,
                              const String* hemisphere) {
  LockScope lock;
  ClearError();
  Touch();
  if (!(degrees >= 0 && degrees <= 90)) {
    SetError(kErrInvalidArgument, kInvalidDegrees);
    return;
  }
  const double value = DmsToRadians(degrees, minutes, seconds);
  StoreLatitude(String::ViewOf(hemisphere).StartsWith('S') ? -value : value);
}

void Position::SetLongitudeDMS(double degrees, double minutes, double seconds,
                               const String* hemisphere) {
  LockScope lock;
  ClearError();
  Touch();
  const double value = DmsToRadians(degrees, minutes, seconds);
  StoreLongitude(String::ViewOf(hemisphere).StartsWith('W') ? -value : value);
}

String* Position::AngleText(const Sexagesimal& form, char hemisphere, int16_t format,
                            int32_t nmeaForm) {
  if (format != 0 && format != 1) {
    SetError(kErrInvalidArgument, text::kInvalidParameter);
    return nullptr;
  }
  return new String(form.degrees, form.minutes, form.seconds, hemisphere,
                    format == 0 ? 0 : nmeaForm);
}

String* Position::GetLatitudeString(int16_t format) {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGeographic();
  return AngleText(LatitudeForm(), m_engine.latitude < 0 ? 'S' : 'N', format, 1);
}

String* Position::GetLongitudeString(int16_t format) {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGeographic();
  return AngleText(LongitudeForm(), m_engine.longitude < 0 ? 'W' : 'E', format, 2);
}

// ---- altitude ---------------------------------------------------------------------

double Position::GetAltitude(int16_t kind) {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGeographic();
  if (kind == kAltitudeSeaLevel) return m_altitudeSeaLevel;
  if (kind == kAltitudeEllipsoid) return m_engine.altitudeEllipsoid;
  SetError(kErrInvalidArgument, text::kInvalidParameter);
  return 0;
}

void Position::SetAltitude(double metres, int16_t kind) {
  LockScope lock;
  ClearError();
  Touch();
  if (kind == kAltitudeSeaLevel)
    m_altitudeSeaLevel = metres;
  else if (kind == kAltitudeEllipsoid)
    m_engine.altitudeEllipsoid = metres;
  else
    SetError(kErrInvalidArgument, text::kInvalidParameter);
  Changed();
}

// ---- grid values ------------------------------------------------------------------

double Position::GetEasting() {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGrid();
  return m_engine.easting;
}

double Position::GetNorthing() {
  LockScope lock;
  ClearError();
  Touch();
  RefreshGrid();
  return m_engine.northing;
}

void Position::SetEasting(double metres) {
  LockScope lock;
  ClearError();
  Touch();
  m_engine.easting = metres;
  m_geographicStale = 1;
  m_gridStale = 0;
  Changed();
}

void Position::SetNorthing(double metres) {
  LockScope lock;
  ClearError();
  Touch();
  m_engine.northing = metres;
  m_geographicStale = 1;
  m_gridStale = 0;
  Changed();
}

String* Position::GetZone() {
  LockScope lock;
  ClearError();
  if (m_engine.grid != GridCatalogue::kNoGrid) {
    Touch();
    // The band letter speaks of the latitude, which a new easting or northing has moved.
    if (RefreshGrid() && GridCatalogue::FamilyOf(m_engine.grid) == ZoneFamily::kUtm)
      RefreshGeographic();
  }
  return m_engine.GetZoneText();
}

bool Position::AcceptsZone(int16_t zone) const {
  switch (GridCatalogue::FamilyOf(m_engine.grid)) {
    case ZoneFamily::kUtm:
      return zone >= 1 && zone <= 60;
    case ZoneFamily::kGaussKrueger3:
      return zone >= 1 && zone <= 10;
    case ZoneFamily::kStatePlane83:
      return GridCatalogue::FindZone83(zone) >= 0;
    case ZoneFamily::kStatePlane27:
      return GridCatalogue::FindZone27(zone) >= 0;
    case ZoneFamily::kDanish34:
      return zone == 1 || zone == 2;
    case ZoneFamily::kNone:
      break;
  }
  return false;
}

void Position::SetZone(const String* text) {
  LockScope lock;
  ClearError();
  Touch();
  const int16_t zone = text ? text->ToShort() : 0;
  if (zone == m_engine.zone) return;
  m_engine.forcedZone.reset();
  const ZoneFamily family = GridCatalogue::FamilyOf(m_engine.grid);
  if (family == ZoneFamily::kNone) return;  // a grid without zones ignores them
  if (!AcceptsZone(zone)) {
    SetError(kErrInvalidArgument, kInvalidZone);
    return;
  }
  RefreshGeographic();
  if (family == ZoneFamily::kUtm || family == ZoneFamily::kGaussKrueger3)
    m_engine.forcedZone = zone;
  m_gridStale = 1;
  if (Error().Failed()) return;
  m_engine.zone = zone;
  Changed();
}

// ---- datum and grid ---------------------------------------------------------------

int16_t Position::GetDatum() {
  LockScope lock;
  ClearError();
  Touch();
  return m_engine.datum;
}

int16_t Position::GetGrid() {
  LockScope lock;
  ClearError();
  Touch();
  return m_engine.grid;
}

// A change of datum by state: a new position takes only the label; where easting and
// northing are the truth, the label changes and the inverse projection follows; else
// the point itself is shifted. The point never moves on the earth.
template <class Label, class Shift>
void Position::ChangeDatumBy(const Label& label, const Shift& shift) {
  if (m_pristine) {
    label();
  } else if (m_geographicStale) {
    label();
    RefreshGeographic();
  } else {
    shift();
    CopyError(&m_engine);
    RefreshSexagesimal();
  }
  Changed();
}

// Before a grid changes: the geographic values become the truth for the new grid.
void Position::PrepareGridChange() {
  if (m_pristine) return;
  RefreshGeographic();
  m_gridStale = 1;
}

void Position::SetDatum(int16_t id) {
  LockScope lock;
  ClearError();
  if (id < 1 || id > DatumTable::kCustom) {
    SetError(kErrInvalidArgument, kUnknownDatum);
    return;
  }
  if (id == DatumTable::kCustom) {
    SetError(kErrInvalidArgument, kUseCustomDatum);
    return;
  }
  if (id == m_engine.datum) return;
  ChangeDatumBy([&] { m_engine.datum = id; }, [&] { m_engine.ChangeDatum(id); });
}

void Position::SetCustomDatum(CustomDatum* datum) {
  LockScope lock;
  ClearError();
  if (!datum) {
    SetError(kErrInvalidArgument, kNullCustomDatum);
    return;
  }
  if (m_engine.datum == DatumTable::kCustom && datum->IsSame(m_engine.customDatum)) return;
  ChangeDatumBy([&] { m_engine.AttachCustomDatum(datum); },
                [&] { m_engine.ChangeCustomDatum(datum); });
}

void Position::SetGrid(int16_t id) {
  LockScope lock;
  ClearError();
  if (!GridCatalogue::IsKnown(id)) {
    SetError(kErrInvalidArgument, kUnknownGrid);
    return;
  }
  if (id == GridCatalogue::kCustom) {
    SetError(kErrInvalidArgument, kUseCustomGrid);
    return;
  }
  if (id == m_engine.grid) return;
  PrepareGridChange();
  m_engine.grid = id;
  m_engine.zone = 0;
  m_engine.forcedZone.reset();  // a zone forced in the old grid means something else here
  Changed();
}

void Position::SetCustomGrid(CustomGrid* grid) {
  LockScope lock;
  ClearError();
  if (!grid) {
    SetError(kErrInvalidArgument, kNullCustomGrid);
    return;
  }
  if (m_engine.grid == GridCatalogue::kCustom && m_engine.customGrid &&
      m_engine.customGrid->IsSame(grid))
    return;
  PrepareGridChange();
  m_engine.AttachCustomGrid(grid);
  m_engine.forcedZone.reset();
  Changed();
}

CustomDatum* Position::GetCustomDatum() {
  LockScope lock;
  return m_engine.GetCustomDatum();
}

CustomGrid* Position::GetCustomGrid() {
  LockScope lock;
  return m_engine.GetCustomGrid();
}

// ---- comparing and copying --------------------------------------------------------

bool Position::IsSameDatum(Position* other) {
  LockScope lock;
  ClearError();
  if (!other) return false;
  const int16_t datum = m_engine.datum;
  if (datum != other->m_engine.datum) return false;
  if (datum != DatumTable::kCustom) return true;
  Ref<CustomDatum> mine(GetCustomDatum());
  Ref<CustomDatum> theirs(other->GetCustomDatum());
  return mine->IsSame(theirs.get());
}

bool Position::IsSameGrid(Position* other) {
  LockScope lock;
  ClearError();
  if (!other || m_engine.grid == GridCatalogue::kNoGrid) return false;
  if (m_engine.grid != other->m_engine.grid) return false;
  if (m_engine.grid == GridCatalogue::kCustom) {
    Ref<CustomGrid> mine(GetCustomGrid());
    Ref<CustomGrid> theirs(other->GetCustomGrid());
    return mine->IsSame(theirs.get());
  }
  Ref<String> zoneText(other->GetZone());
  return m_engine.zone == zoneText->ToInt();
}

void Position::MakeSameDatum(Position* other) {
  LockScope lock;
  ClearError();
  if (!other) return;
  if (other->m_engine.datum == DatumTable::kCustom) {
    Ref<CustomDatum> datum(other->GetCustomDatum());
    SetCustomDatum(datum.get());
  } else {
    SetDatum(other->m_engine.datum);
  }
}

void Position::MakeSameGrid(Position* other) {
  LockScope lock;
  ClearError();
  if (!other || other->m_engine.grid == GridCatalogue::kNoGrid) return;
  if (other->m_engine.grid == GridCatalogue::kCustom) {
    Ref<CustomGrid> grid(other->GetCustomGrid());
    SetCustomGrid(grid.get());
    return;
  }
  Ref<String> zone(other->GetZone());
  SetGrid(other->m_engine.grid);
  SetZone(zone.get());
}

Position* Position::Copy() {
  LockScope lock;
  ClearError();
  try {
    Ref<Position> copy(new Position());
    copy->m_altitudeSeaLevel = m_altitudeSeaLevel;
    copy->m_latitude = LatitudeForm();
    copy->m_longitude = LongitudeForm();
    copy->m_geographicStale = m_geographicStale;
    copy->m_gridStale = m_gridStale;
    copy->m_pristine = m_pristine;
    DatumGridEngine& from = m_engine;
    DatumGridEngine& to = copy->m_engine;
    to.altitudeEllipsoid = from.altitudeEllipsoid;
    to.longitude = from.longitude;
    to.latitude = from.latitude;
    to.easting = from.easting;
    to.northing = from.northing;
    to.datum = from.datum;
    to.grid = from.grid;
    to.zone = from.zone;
    to.forcedZone = from.forcedZone;
    if (from.customDatum) to.customDatum = new CustomDatum(*from.customDatum);
    if (from.customGrid) to.customGrid = new CustomGrid(*from.customGrid);
    return copy.Detach();
  } catch (const std::bad_alloc&) {
    SetError(kErrOutOfMemory, text::kOutOfMemory);
    return nullptr;
  }
}

}  // namespace kx

// ---- distance, bearing and move ---------------------------------------------------

namespace kx {

namespace {
constexpr const char* kNullPosition = "Position may not be null.";
constexpr const char* kUnknownDistanceMethod = "Unknown method to calculate distance.";
constexpr const char* kUnknownBearingMethod = "Unknown method to calculate bearing.";
constexpr const char* kUnknownMoveMethod = "Unknown method.";
constexpr int32_t kSphereMetres = 1;
constexpr int32_t kSphereRadians = 2;
constexpr int32_t kGridPlane = 3;
constexpr double kTwoPi = 6.283185307179586;
}  // namespace

bool Position::CanMeasure(const Position* other, int32_t method, const char* unknownMethod) {
  if (!other) {
    SetError(kErrInvalidArgument, kNullPosition);
    return false;
  }
  return IsMethod(method, unknownMethod);
}

bool Position::IsMethod(int32_t method, const char* unknown) {
  if (method >= kSphereMetres && method <= kGridPlane) return true;
  SetError(kErrInvalidArgument, unknown);
  return false;
}

// The other position itself when it shares this datum, else a copy brought into it:
// the other never changes. Null, with the failure here, when it can't be brought.
Ref<Position> Position::InMyDatum(Position* other) {
  if (IsSameDatum(other)) return Ref<Position>::Share(other);
  Ref<Position> copy(other->Copy());
  if (!copy) {
    CopyError(other);
    return copy;
  }
  copy->MakeSameDatum(this);
  return Brought(std::move(copy));
}

// The same for this grid and zone. The copy takes this zone directly, also one that
// SetZone doesn't offer (grid 29 west of 3 degrees east, grid 48 zone 0): measured in
// two zones, the plane would mix two planes.
Ref<Position> Position::InMyGrid(Position* other) {
  if (IsSameGrid(other)) return Ref<Position>::Share(other);
  Ref<Position> copy(other->Copy());
  if (!copy) {
    CopyError(other);
    return copy;
  }
  if (m_engine.grid == GridCatalogue::kCustom) {
    Ref<CustomGrid> grid(GetCustomGrid());
    copy->SetCustomGrid(grid.get());
  } else {
    copy->SetGrid(m_engine.grid);
    copy->AdoptZone(m_engine.zone);
  }
  return Brought(std::move(copy));
}

// A copy that failed on its way (its inverse projection, say) takes its failure here:
// read afterwards, it would answer with the values it had.
Ref<Position> Position::Brought(Ref<Position> copy) {
  if (!copy->Error().Failed()) return copy;
  CopyError(copy.get());
  return Ref<Position>();
}

// The zone of the grid it has, whatever its number: SetZone without its range, for a
// copy that must lie in another position's zone.
void Position::AdoptZone(int16_t zone) {
  LockScope lock;
  ClearError();
  Touch();
  if (!RefreshGeographic()) return;
  const ZoneFamily family = GridCatalogue::FamilyOf(m_engine.grid);
  if (family == ZoneFamily::kUtm || family == ZoneFamily::kGaussKrueger3)
    m_engine.forcedZone = zone;
  m_engine.zone = zone;
  m_gridStale = 1;
  Changed();
}

bool Position::ReadGeographic(double& latitude, double& longitude) {
  longitude = GetLongitudeRads();
  if (Error().Failed()) return false;
  latitude = GetLatitudeRads();
  return !Error().Failed();
}

bool Position::ReadGrid(double& easting, double& northing) {
  easting = GetEasting();
  if (Error().Failed()) return false;
  northing = GetNorthing();
  return !Error().Failed();
}

// The other's point as this position sees it. When the other can't be read so, its
// failure becomes this one's: a point that isn't there is never measured to.
bool Position::ReadOthersGeographic(Position* other, double& latitude, double& longitude) {
  Ref<Position> there = InMyDatum(other);
  if (!there) return false;
  if (there->ReadGeographic(latitude, longitude)) return true;
  CopyError(there.get());
  return false;
}

bool Position::ReadOthersGrid(Position* other, double& easting, double& northing) {
  Ref<Position> there = InMyGrid(other);
  if (!there) return false;
  if (there->ReadGrid(easting, northing)) return true;
  CopyError(there.get());
  return false;
}

double Position::Distance(Position* other, int32_t method) {
  LockScope lock;
  ClearError();
  if (!CanMeasure(other, method, kUnknownDistanceMethod)) return 0;
  if (method == kGridPlane) {
    double E1, N1, E2, N2;
    if (!ReadGrid(E1, N1) || !ReadOthersGrid(other, E2, N2)) return 0;
    return std::sqrt((E2 - E1) * (E2 - E1) + (N2 - N1) * (N2 - N1));
  }
  double p1, l1, p2, l2;
  if (!ReadGeographic(p1, l1) || !ReadOthersGeographic(other, p2, l2)) return 0;
  const double d = SphericalGeometry::Arc(p1, l1, p2, l2);
  return method == kSphereMetres ? d * SphericalGeometry::kEarthRadius : d;
}

double Position::Bearing(Position* other, int32_t method) {
  LockScope lock;
  ClearError();
  if (!CanMeasure(other, method, kUnknownBearingMethod)) return 0;
  double bearing = 0;
  if (method == kGridPlane) {
    double E1, N1, E2, N2;
    if (!ReadGrid(E1, N1) || !ReadOthersGrid(other, E2, N2)) return 0;
    double b = kHalfPi - std::atan2(N2 - N1, E2 - E1);
    if (b < 0) b += kTwoPi;
    bearing = b * 180 / kPi;
  } else {
    const double d = Distance(other, kSphereRadians);
    if (Error().Failed() || !(d > 1e-16)) return 0;  // at the same point
    double p1, l1, p2, l2;
    if (!ReadGeographic(p1, l1) || !ReadOthersGeographic(other, p2, l2)) return 0;
    bearing = SphericalGeometry::Bearing(p1, l1, p2, l2, d);
  }
  return bearing == 360.0 ? 0 : bearing;
}

void Position::Move(double distance, double bearing, int32_t method) {
  LockScope lock;
  ClearError();
  if (IsMethod(method, kUnknownMoveMethod)) {
    if (method == kGridPlane) {
      double E1, N1;
      if (ReadGrid(E1, N1)) {
        const double t = kHalfPi - bearing * kPi / 180;
        SetEasting(E1 + distance * std::cos(t));
        SetNorthing(N1 + distance * std::sin(t));
      }
    } else {
      const double r =
          method == kSphereMetres ? distance / SphericalGeometry::kEarthRadius : distance;
      double p1, l1;
      if (ReadGeographic(p1, l1)) {
        double p2, l2;
        SphericalGeometry::Destination(p1, l1, r, bearing * 0.017453292519943295, p2, l2);
        SetLatitudeRads(p2);
        SetLongitudeRads(l2);
      }
    }
  }
  Changed();
}

}  // namespace kx
