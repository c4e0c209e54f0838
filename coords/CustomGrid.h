// A grid the caller defines: an algorithm with its parameters, on a catalogued datum
// or on a datum of its own. A plain value holder, shared by reference.
#pragma once

#include <cstdint>

#include "coords/CustomDatum.h"
#include "coords/GridCatalogue.h"
#include "frame/BaseObject.h"

namespace kx {

class CustomGrid : public BaseObject {
 public:
  CustomGrid();
  // A new object with the same values and a copy, not a share, of the datum.
  explicit CustomGrid(const CustomGrid& other);
  ~CustomGrid() override;

  double GetFalseEasting();
  void SetFalseEasting(double metres);
  double GetFalseNorthing();
  void SetFalseNorthing(double metres);
  double GetScaleFactor();
  void SetScaleFactor(double value);
  // Angles cross in degrees and are kept in radians.
  double GetLongitudeOfOrigin();
  void SetLongitudeOfOrigin(double degrees);
  double GetLatitudeOfOrigin();
  void SetLatitudeOfOrigin(double degrees);
  double GetLatitudeSP1();
  void SetLatitudeSP1(double degrees);
  double GetLatitudeSP2();
  void SetLatitudeSP2(double degrees);
  // Any number is kept; an unknown one shows at the next conversion.
  int32_t GetAlgorithm();
  void SetAlgorithm(int32_t algorithm);
  int16_t GetDatum();
  // 1 to 28; 28 means the grid's own CustomDatum.
  void SetDatum(int16_t id);
  // With one more reference for the caller; an all-zero object is made when there is none.
  CustomDatum* GetCustomDatum();
  // Shares the object (null is allowed) and makes the datum 28.
  void SetCustomDatum(CustomDatum* datum);

  bool IsSame(CustomGrid* other);
  // The values as a catalogue row; the algorithm is cut to 16 bits.
  GridRecord AsRow() const;

 private:
  int16_t m_datum = 28;
  CustomDatum* m_customDatum = nullptr;
  int32_t m_algorithm = 3;
  double m_falseEasting = 0, m_falseNorthing = 0;
  double m_longitudeOfOrigin = 0, m_latitudeOfOrigin = 0;
  double m_scaleFactor = 1.0;
  double m_latitudeSP1 = 0, m_latitudeSP2 = 0;
};

}  // namespace kx
