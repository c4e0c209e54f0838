// A point on the earth, held at once as latitude and longitude (radians), as degrees,
// minutes and seconds, and as easting and northing in a grid. Whichever form was
// written last is the truth; the others are brought up to date when first read.
#pragma once

#include <atomic>
#include <cstdint>

#include "coords/CustomDatum.h"
#include "coords/CustomGrid.h"
#include "coords/DatumGridEngine.h"
#include "frame/BaseObject.h"
#include "frame/Ref.h"
#include "frame/String.h"

namespace kx {

class Position : public BaseObject {
 public:
  Position();
  // From the fields of a sentence: "ddmm.mmmm" texts, hemisphere letters, altitude and
  // geoid separation; any may be null. The datum is taken as it comes.
  Position(const String* latitude, const String* longitude, const String* latitudeHemisphere,
           const String* longitudeHemisphere, const String* altitude, const String* separation,
           int16_t datum);
  // The same, read in place; an absent view stands for a null field.
  Position(TextView latitude, TextView longitude, TextView latitudeHemisphere,
           TextView longitudeHemisphere, TextView altitude, TextView separation, int16_t datum);
  ~Position() override;

  double GetLatitudeRads();
  void SetLatitudeRads(double radians);
  double GetLongitudeRads();
  void SetLongitudeRads(double radians);
  double GetLatitudeDecDeg();
  void SetLatitudeDecDeg(double degrees);
  double GetLongitudeDecDeg();
  void SetLongitudeDecDeg(double degrees);
  // The hemisphere comes back as a new String, "N" or "S" ("E" or "W").
  void GetLatitudeDMS(int16_t& degrees, int16_t& minutes, double& seconds, String*& hemisphere);
  void SetLatitudeDMS(double degrees, double minutes, double seconds, const String* hemisphere);
  void GetLongitudeDMS(int16_t& degrees, int16_t& minutes, double& seconds, String*& hemisphere);
  void SetLongitudeDMS(double degrees, double minutes, double seconds, const String* hemisphere);
  // Format 0: "59 18'7.25 N"; format 1: the NMEA form. Null for another format.
  String* GetLatitudeString(int16_t format);
  String* GetLongitudeString(int16_t format);
  // Kind 0: above mean sea level; kind 1: above the ellipsoid of the datum.
  double GetAltitude(int16_t kind);
  void SetAltitude(double metres, int16_t kind);

  double GetEasting();
  void SetEasting(double metres);
  double GetNorthing();
  void SetNorthing(double metres);
  String* GetZone();
  // The leading integer of the text is the zone.
  void SetZone(const String* zone);

  int16_t GetDatum();
  void SetDatum(int16_t id);
  int16_t GetGrid();
  void SetGrid(int16_t id);
  void SetCustomDatum(CustomDatum* datum);
  void SetCustomGrid(CustomGrid* grid);
  // With one more reference; an empty object is made when there is none.
  CustomDatum* GetCustomDatum();
  CustomGrid* GetCustomGrid();

  // A new position (count 1) with the same values and copies of the custom objects.
  Position* Copy();
  void MakeSameDatum(Position* other);
  void MakeSameGrid(Position* other);
  bool IsSameDatum(Position* other);
  bool IsSameGrid(Position* other);

  // Method 1: metres on the sphere; 2: radians of arc; 3: metres in the grid plane.
  double Distance(Position* other, int32_t method);
  // Degrees clockwise from north (grid north in method 3), 0 up to 360.
  double Bearing(Position* other, int32_t method);
  void Move(double distance, double bearing, int32_t method);

  // Raised by every change; read without the lock by those who watch for one.
  uint32_t GetRevision() const { return m_revision.load(std::memory_order_relaxed); }

 private:
  struct Sexagesimal {
    int16_t degrees = 0;
    int16_t minutes = 0;
    double seconds = 0;
  };

  void Touch() { m_pristine = 0; }
  // Written only under the LibraryLock, so no read-modify-write is needed; readers
  // outside it see one value or the next.
  void Changed() {
    m_revision.store(m_revision.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  }
  bool RefreshGeographic();
  bool RefreshGrid();
  void RefreshSexagesimal();
  const Sexagesimal& LatitudeForm();
  const Sexagesimal& LongitudeForm();
  void StoreLatitude(double radians);
  void StoreLongitude(double radians);
  void GetDMS(const Sexagesimal& form, bool negative, char positive, char negativeLetter,
              int16_t& degrees, int16_t& minutes, double& seconds, String*& hemisphere);
  String* AngleText(const Sexagesimal& form, char hemisphere, int16_t format, int32_t nmeaForm);
  bool AcceptsZone(int16_t zone) const;
  template <class Label, class Shift>
  void ChangeDatumBy(const Label& label, const Shift& shift);
  void PrepareGridChange();
  bool CanMeasure(const Position* other, int32_t method, const char* unknownMethod);
  bool IsMethod(int32_t method, const char* unknown);
  Ref<Position> InMyDatum(Position* other);
  Ref<Position> InMyGrid(Position* other);
  void AdoptZone(int16_t zone);
  Ref<Position> Brought(Ref<Position> copy);
  bool ReadGeographic(double& latitude, double& longitude);
  bool ReadGrid(double& easting, double& northing);
  bool ReadOthersGeographic(Position* other, double& latitude, double& longitude);
  bool ReadOthersGrid(Position* other, double& easting, double& northing);

  DatumGridEngine m_engine;
  double m_altitudeSeaLevel = 0;
  Sexagesimal m_latitude;
  Sexagesimal m_longitude;
  uint8_t m_geographicStale = 0;
  uint8_t m_gridStale = 0;
  uint8_t m_pristine = 1;
  uint8_t m_latitudeFormStale = 0;  // the radians were written after the form
  uint8_t m_longitudeFormStale = 0;
  std::atomic<uint32_t> m_revision{0};
};

}  // namespace kx
