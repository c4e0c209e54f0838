// The inner object of a Position that does all datum and grid work: it holds the
// point in radians and in grid metres, and shifts and projects it on request.
#pragma once

#include <cstdint>
#include <optional>

#include "coords/CustomDatum.h"
#include "coords/CustomGrid.h"
#include "coords/DatumTable.h"
#include "coords/GridCatalogue.h"
#include "coords/Projection.h"
#include "frame/BaseObject.h"
#include "frame/String.h"

namespace kx {

class DatumGridEngine : public BaseObject {
 public:
  DatumGridEngine() = default;
  ~DatumGridEngine() override;

  // Geocentric shift from the current datum to the target, through WGS 84. Leaves
  // `datum` as it is; the caller stores the new id.
  void ShiftDatum(const EllipsoidRecord& target, const DatumRecord& targetParameters);
  // To a catalogued datum, 1 to 27.
  void ChangeDatum(int16_t id);
  void ChangeCustomDatum(CustomDatum* datum);
  // Shares the object and makes the datum 28, without moving the point.
  void AttachCustomDatum(CustomDatum* datum);
  void AttachCustomGrid(CustomGrid* grid);
  // With one more reference; an empty object is made first when there is none.
  CustomDatum* GetCustomDatum();
  CustomGrid* GetCustomGrid();

  // Latitude and longitude to easting and northing in the current grid, and back.
  void ProjectForward();
  void ProjectInverse();

  // The zone as a new text (count 1), made from the values as they stand: nothing is
  // kept that two threads could share.
  String* GetZoneText() const;

  double longitude = 0;  // radians, east positive
  double latitude = 0;   // radians, north positive
  double altitudeEllipsoid = 0;
  double easting = 0;
  double northing = 0;
  int16_t datum = DatumTable::kWgs84;
  int16_t grid = GridCatalogue::kNoGrid;
  int16_t zone = 0;
  // The zone chosen by the caller; none lets the projection pick it from the longitude.
  std::optional<int16_t> forcedZone;
  CustomGrid* customGrid = nullptr;
  CustomDatum* customDatum = nullptr;

 private:
  bool SelectRow(GridRecord& row);
  EllipsoidRecord EllipsoidOfDatum(int16_t id);
  EllipsoidRecord ReachGridDatum(const GridRecord& row);
  void ReturnFromGridDatum(const GridRecord& row);
  void ReduceToZone();
  void AddZoneOffset();
  const Projection* AlgorithmOf(const GridRecord& row);
  void ShareCustomDatum(CustomDatum* datum);
  char BandLetter() const;
};

}  // namespace kx
