// Which class carries which algorithm number of the grid catalogue.
#include "coords/Projection.h"

namespace kx {

const Projection* Projection::ForAlgorithm(int16_t algorithm) {
  switch (algorithm) {
    default:  // no algorithm is built in yet
      return nullptr;
  }
}

}  // namespace kx
