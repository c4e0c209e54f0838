#include "coords/CoefficientTable.h"

namespace kx {

// A Horner scheme in dy over inner Horner schemes in dx for the northing, and the same
// with dx and dy exchanged for the easting, reading each block from its top down.
void CoefficientTable::Evaluate(const double* T, double x, double y, double& u, double& v) {
  const int n = static_cast<int>(T[0]);
  const int c = (n + 1) * (n + 2) / 2;
  const double dx = x - T[c + 1];
  const double dy = y - T[2 * c + 2];
  int i = c, j = 2 * c + 1;
  u = T[i];
  v = T[j];
  for (int r = n; r >= 1; --r) {
    --i;
    --j;
    double p = T[i], q = T[j];
    for (int m = n; m >= r; --m) {
      --i;
      --j;
      p = dx * p + T[i];
      q = dy * q + T[j];
    }
    u = dy * u + p;
    v = dx * v + q;
  }
}

}  // namespace kx
