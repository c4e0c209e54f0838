// Which class carries which algorithm number of the grid catalogue.
#include "coords/DanishSystems.h"
#include "coords/LambertConformalConic.h"
#include "coords/NzMapGrid.h"
#include "coords/ObliqueStereographic.h"
#include "coords/Projection.h"
#include "coords/SwissObliqueMercator.h"
#include "coords/TransverseMercator.h"

namespace kx {

const Projection* Projection::ForAlgorithm(int16_t algorithm) {
  static const TransverseMercator transverseMercator;
  static const SwissObliqueMercator swissObliqueMercator;
  static const LambertConformalConic lambert(false);
  static const LambertConformalConic belgianLambert(true);
  static const ObliqueStereographic obliqueStereographic;
  static const NzMapGrid nzMapGrid;
  static const DanishSystems danishSystems;
  switch (algorithm) {
    case 1:
    case 3:
      return &transverseMercator;
    case 2:
      return &swissObliqueMercator;
    case 4:
      return &nzMapGrid;
    case 5:
      return &lambert;
    case 6:
      return &belgianLambert;
    case 8:
      return &obliqueStereographic;
    case 9:
    case 10:
    case 11:
      return &danishSystems;
    default:
      return nullptr;
  }
}

}  // namespace kx
