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

}  // namespace

Converter::Converter(const Side& from, const Side& to) : m_from(from), m_to(to) {}

Converter::~Converter() = default;

std::string Converter::Failure(KxPosition position) {
  KxError error = Position_GetErrHandle(position);
  if (Error_ErrNum(error) == 0) return "";
  return Text(Error_ErrDesc(error, nullptr));
}

// A grid side sets the grid and its zone, a datum side the datum; each step is checked
// so that the first refusal is the one reported.
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
    KxPosition probe = Position_New();
    Place(probe, *side);
    const std::string failure = Failure(probe);
    Position_Delete(probe);
    if (!failure.empty()) return failure;
  }
  return "";
}

std::string Converter::Convert(const std::string& line, bool& ok) {
  ok = false;
  KxPosition position = Position_New();
  if (!IsGrid(m_to)) Position_SetDatum(position, m_to.reference.id);  // the inverse lands there
  std::string result;
  if (IsGrid(m_from)) {
    const auto planar = CoordinateText::ReadPlanar(line);
    if (!planar) {
      Position_Delete(position);
      return "Invalid parameter!";
    }
    Place(position, m_from);
    Position_SetEasting(position, &planar->easting);
    Position_SetNorthing(position, &planar->northing);
  } else {
    const auto geographic = CoordinateText::ReadGeographic(line);
    if (!geographic) {
      Position_Delete(position);
      return "Invalid parameter!";
    }
    Position_SetDatum(position, m_from.reference.id);
    Position_SetLatitudeDecDeg(position, &geographic->latitude);
    Position_SetLongitudeDecDeg(position, &geographic->longitude);
    Position_SetAltitude(position, &geographic->height, 1);
  }
  result = Failure(position);
  if (result.empty()) {
    if (IsGrid(m_to))
      Place(position, m_to);
    else
      Position_SetDatum(position, m_to.reference.id);
    result = Read(position);
    ok = Failure(position).empty();
    if (!ok) result = Failure(position);
  }
  Position_Delete(position);
  return result;
}

// Degrees to nine decimals (a tenth of a millimetre) and metres to the millimetre.
std::string Converter::Read(KxPosition position) {
  char text[128];
  if (IsGrid(m_to)) {
    double e = 0, n = 0;
    Position_GetEasting(position, &e);
    Position_GetNorthing(position, &n);
    BSTR zone = nullptr;
    Position_GetZone(position, &zone);
    const std::string zoneText = Text(zone);
    SysFreeString(zone);
    std::snprintf(text, sizeof text, "%.3f %.3f%s%s", e, n, zoneText.empty() ? "" : " ",
                  zoneText.c_str());
  } else {
    double lat = 0, lon = 0, h = 0;
    Position_GetLatitudeDecDeg(position, &lat);
    Position_GetLongitudeDecDeg(position, &lon);
    Position_GetAltitude(position, 1, &h);
    std::snprintf(text, sizeof text, "%.9f %.9f %.3f", lat, lon, h);
  }
  return text;
}

}  // namespace kestrix
