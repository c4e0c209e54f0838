// The Danish System 34 and System 45 after the National Survey and Cadastre's
// transformation tcts_u (Knud Poder 1991, Karsten Engsager 1999): bivariate polynomials
// between tc32 and the local systems, with their boxes and polygons.
#include "coords/DanishSystems.h"

#include <cmath>

#include "coords/BoundaryPolygon.h"
#include "coords/CoefficientTable.h"
#include "coords/DatumGridEngine.h"
#include "frame/Ref.h"

namespace kx {

namespace {

#include "coords/data/danish/DanishTables.inc"

// Northing and easting limits, inclusive.
struct Box {
  double northMin, northMax, eastMin, eastMax;
  bool Holds(double north, double east) const {
    return north >= northMin && north <= northMax && east >= eastMin && east <= eastMax;
  }
};

// One side of a system: the table that leaves it, its polygon and its box.
struct Side {
  const double* table;
  const double* polygon;
  Box box;
};

struct System {
  Side tc32;   // tables from tc32, polygon and box on the tc32 side
  Side local;  // tables to tc32, polygon and box on the local side
};

constexpr double kS34jTc32Polygon[] = {8,      6080000, 460000, 6130000, 435000, 6280000,
                                       435000, 6370000, 496000, 6410000, 600000, 6300000,
                                       670000, 6050000, 670000, 6060000, 540000};
constexpr double kS34jLocalPolygon[] = {8,        49741.6,  338404.7, 100249.6, 362414.7, 250280.9,
                                        359416.9, 339073.3, 296600.2, 376988.8, 191783.1, 265574.7,
                                        123987.5, 15564.9,  128976.2, 28148.8,  258789.3};
constexpr double kS34sTc32Polygon[] = {8,      6300000, 670000, 6250000, 750000, 6190000,
                                       770000, 6120000, 770000, 6030000, 700000, 6070000,
                                       580000, 6260000, 580000, 6290000, 620000};
constexpr double kS34sLocalPolygon[] = {8,        265558.8, 123989.1, 213963.1, 45022.2, 153598.1,
                                        26229.5,  83639.7,  27605.4,  -4968.3,  99310.9, 37335.1,
                                        218539.4, 227365.1, 214764.5, 256577.4, 174191};
constexpr double kS45bTc32Polygon[] = {4,       6150000, 894000,  6146000, 862000,
                                       6116000, 860000,  6106000, 894000};
constexpr double kS45bLocalPolygon[] = {4, 76000, 26000, 76000, 70000, 30000, 70000, 30000, 26000};

constexpr System kJylland = {{kS34jFromTc32, kS34jTc32Polygon, {6000000, 6500000, 300000, 700000}},
                             {kS34jToTc32, kS34jLocalPolygon, {-32000, 468000, 95000, 495000}}};
constexpr System kSjaelland = {
    {kS34sFromTc32, kS34sTc32Polygon, {6000000, 6315000, 550000, 775000}},
    {kS34sToTc32, kS34sLocalPolygon, {-43894, 280862, 31610, 248251}}};
constexpr System kBornholm = {
    {kS45bFromTc32, kS45bTc32Polygon, {6006000, 6200000, 800000, 1000000}},
    {kS45bToTc32, kS45bLocalPolygon, {-50000, 150000, -56000, 150000}}};

// The round trip may miss the input by this much, in metres, in either coordinate.
constexpr double kRoundTripGuard = 0.04;

constexpr int16_t kTc32Grid = 47;
constexpr int16_t kTc32Zone = 32;
constexpr int16_t kTc32Datum = 27;

const System& SystemOf(char letter) {
  return letter == 'b' ? kBornholm : letter == 's' ? kSjaelland : kJylland;
}

}  // namespace

char DanishSystems::LetterOf(int16_t algorithm, int16_t zone) {
  if (algorithm == 10) return 'b';
  if (zone == 2 || algorithm == 11) return 's';
  return 'j';
}

const double* DanishSystems::Tc32Polygon(char letter) { return SystemOf(letter).tc32.polygon; }

int DanishSystems::tcts_u(double north, double east, double* northOut, double* eastOut, char letter,
                          int direction) {
  const System& system = SystemOf(letter);
  const Side& from = direction > 0 ? system.tc32 : system.local;
  const Side& back = direction > 0 ? system.local : system.tc32;
  if (!from.box.Holds(north, east)) return kOutsideBox;
  int status = kConverted;
  if (BoundaryPolygon::PointInPolygon(from.polygon, north, east) < 0) status = kOutsidePolygon;
  CoefficientTable::Evaluate(from.table, north, east, *northOut, *eastOut);
  double northBack = 0, eastBack = 0;
  CoefficientTable::Evaluate(back.table, *northOut, *eastOut, northBack, eastBack);
  if (std::fabs(north - northBack) > kRoundTripGuard ||
      std::fabs(east - eastBack) > kRoundTripGuard)
    status = kRoundTripMissed;
  return status;
}

// The frame has brought the point to datum 27; tc32 comes from a grid 47 forced into
// zone 32.
bool DanishSystems::Forward(const ProjectionFrame& frame, double latitude, double longitude,
                            double& easting, double& northing) const {
  Ref<DatumGridEngine> tc32(new DatumGridEngine());
  tc32->latitude = latitude;
  tc32->longitude = longitude;
  tc32->datum = kTc32Datum;
  tc32->grid = kTc32Grid;
  tc32->forcedZone = kTc32Zone;
  tc32->ProjectForward();
  const char letter = LetterOf(frame.row.algorithm, frame.zone);
  return tcts_u(tc32->northing, tc32->easting, &northing, &easting, letter, +1) == kConverted;
}

bool DanishSystems::Inverse(const ProjectionFrame& frame, double easting, double northing,
                            double& latitude, double& longitude) const {
  Ref<DatumGridEngine> tc32(new DatumGridEngine());
  const char letter = LetterOf(frame.row.algorithm, frame.zone);
  if (tcts_u(northing, easting, &tc32->northing, &tc32->easting, letter, -1) != kConverted)
    return false;
  tc32->datum = kTc32Datum;
  tc32->grid = kTc32Grid;
  tc32->zone = kTc32Zone;
  tc32->forcedZone = kTc32Zone;
  tc32->ProjectInverse();
  latitude = tc32->latitude;
  longitude = tc32->longitude;
  return true;
}

}  // namespace kx
