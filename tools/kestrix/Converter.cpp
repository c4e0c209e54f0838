#include "tools/kestrix/Converter.h"

#include <cstdio>

#include "tools/kestrix/CoordinateText.h"

namespace kestrix {

namespace {

bool IsGrid(const Side& side) { return side.reference.kind == Reference::Kind::kGrid; }

std::string Text(BSTR text) {
  std::string out;
  for (unsigned i = 0; i < SysStringLen(text); ++i) out += static_cast<char>(text[i]);
  return out;
}

// "error 10003: Invalid latitude..." for the call just made; empty when it succeeded.
// Every call clears the record first, so each one is looked at before the next.
std::string Failure(KxPosition position) {
  KxError error = Position_GetErrHandle(position);
  const short number = Error_ErrNum(error);
  if (number == 0) return "";
  return "error " + std::to_string(number) + ": " + Text(Error_ErrDesc(error, nullptr));
}

// A position given up at the end of the scope.
class Scratch {
 public:
  Scratch() : m_position(Position_New()) {}
  ~Scratch() { Position_Delete(m_position); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  operator KxPosition() const { return m_position; }

 private:
  KxPosition m_position;
};

}  // namespace

Converter::Converter(const Side& from, const Side& to) : m_from(from), m_to(to) {}

Converter::~Converter() = default;

// A grid side sets the grid and its zone, a datum side the datum.
void Converter::Place(KxPosition position, const Side& side) {
  if (!IsGrid(side)) {
    Position_SetDatum(position, side.reference.id);
    return;
  }
  Position_SetGrid(position, side.reference.id);
  if (side.zone != 0 && Failure(position).empty()) Position_SetZone(position, side.zone);
}

std::string Converter::Check() {
  for (const Side* side : {&m_from, &m_to}) {
    Scratch probe;
    Place(probe, *side);
    KxError error = Position_GetErrHandle(probe);
    if (Error_ErrNum(error) != 0) return Text(Error_ErrDesc(error, nullptr));
  }
  return "";
}

std::string Converter::Convert(const std::string& line, bool& ok) {
  ok = false;
  Scratch position;
  std::string failure;
  // Each call in turn, until one fails.
  auto step = [&](auto call) {
    if (!failure.empty()) return;
    call();
    failure = Failure(position);
  };
  if (!IsGrid(m_to)) step([&] { Position_SetDatum(position, m_to.reference.id); });
  if (IsGrid(m_from)) {
    const auto planar = CoordinateText::ReadPlanar(line);
    if (!planar) return "no coordinates: a grid side reads \"easting northing\"";
    step([&] { Place(position, m_from); });
    step([&] { Position_SetEasting(position, &planar->easting); });
    step([&] { Position_SetNorthing(position, &planar->northing); });
  } else {
    const auto geographic = CoordinateText::ReadGeographic(line);
    if (!geographic)
      return "no coordinates: a datum side reads \"lat lon [h]\" in degrees, or "
             "\"59 18'7.25 N 18 4'15.5 E [h]\"";
    step([&] { Position_SetDatum(position, m_from.reference.id); });
    step([&] { Position_SetLatitudeDecDeg(position, &geographic->latitude); });
    step([&] { Position_SetLongitudeDecDeg(position, &geographic->longitude); });
    step([&] { Position_SetAltitude(position, &geographic->height, 1); });
  }
  if (IsGrid(m_to))
    step([&] { Place(position, m_to); });
  else
    step([&] { Position_SetDatum(position, m_to.reference.id); });
  if (!failure.empty()) return failure;
  const std::string result = Read(position, failure);
  ok = failure.empty();
  return ok ? result : failure;
}

// Degrees to nine decimals (a tenth of a millimetre) and metres to the millimetre.
std::string Converter::Read(KxPosition position, std::string& failure) {
  auto get = [&](auto call) {
    if (!failure.empty()) return;
    call();
    failure = Failure(position);
  };
  char text[128];
  if (IsGrid(m_to)) {
    double e = 0, n = 0;
    BSTR zone = nullptr;
    get([&] { Position_GetEasting(position, &e); });
    get([&] { Position_GetNorthing(position, &n); });
    get([&] { Position_GetZone(position, &zone); });
    const std::string zoneText = zone ? Text(zone) : "";
    SysFreeString(zone);
    std::snprintf(text, sizeof text, "%.3f %.3f%s%s", e, n, zoneText.empty() ? "" : " ",
                  zoneText.c_str());
  } else {
    double lat = 0, lon = 0, h = 0;
    get([&] { Position_GetLatitudeDecDeg(position, &lat); });
    get([&] { Position_GetLongitudeDecDeg(position, &lon); });
    get([&] { Position_GetAltitude(position, 1, &h); });
    std::snprintf(text, sizeof text, "%.9f %.9f %.3f", lat, lon, h);
  }
  return text;
}

}  // namespace kestrix
