// The coordinates of one input line: decimal degrees "lat lon [h]", degrees, minutes
// and seconds with hemisphere letters "59 18'7.25 N 18 4'15.5 E [h]", or a grid's
// "easting northing".
#pragma once

#include <optional>
#include <string>

namespace kestrix {

struct Geographic {
  double latitude = 0, longitude = 0;  // degrees, north and east positive
  double height = 0;
};

struct Planar {
  double easting = 0, northing = 0;
};

class CoordinateText {
 public:
  static std::optional<Geographic> ReadGeographic(const std::string& line);
  static std::optional<Planar> ReadPlanar(const std::string& line);
};

}  // namespace kestrix
