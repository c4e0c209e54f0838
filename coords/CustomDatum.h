// A datum the caller defines: an ellipsoid and the seven parameters that lead from it
// to WGS 84. A plain value holder, shared by reference with the positions that use it.
#pragma once

#include "coords/DatumTable.h"
#include "frame/BaseObject.h"

namespace kx {

class CustomDatum : public BaseObject {
 public:
  CustomDatum() = default;
  // A new object with the same nine values.
  explicit CustomDatum(const CustomDatum& other);

  double GetSemiMajorAxis();
  void SetSemiMajorAxis(double metres);
  double GetE2();
  void SetE2(double value);  // stores the absolute value
  double GetDeltaX();
  void SetDeltaX(double metres);
  double GetDeltaY();
  void SetDeltaY(double metres);
  double GetDeltaZ();
  void SetDeltaZ(double metres);
  // Rotations cross in seconds of arc and are kept in radians.
  double GetRotX();
  void SetRotX(double seconds);
  double GetRotY();
  void SetRotY(double seconds);
  double GetRotZ();
  void SetRotZ(double seconds);
  double GetScaleFactor();
  void SetScaleFactor(double value);

  // All nine values equal, compared exactly; false for null.
  bool IsSame(const CustomDatum* other) const;

  // The values as the datum shift reads them.
  EllipsoidRecord Ellipsoid() const { return {m_semiMajorAxis, m_e2}; }
  DatumRecord Parameters() const;

 private:
  double m_semiMajorAxis = 0;
  double m_e2 = 0;
  double m_deltaX = 0, m_deltaY = 0, m_deltaZ = 0;
  double m_rotX = 0, m_rotY = 0, m_rotZ = 0;
  double m_scaleFactor = 0;
};

}  // namespace kx
