#include "tools/kestrix/EventText.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tools/rig/EventObject.h"

namespace kestrix {

namespace {

// Name and value pairs, written as "name value" or as a JSON object.
class Fields {
 public:
  explicit Fields(const char* event) : m_event(event) {}
  Fields& Number(const char* name, double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    m_fields.push_back({name, text, false});
    return *this;
  }
  Fields& Integer(const char* name, long value) { return Number(name, double(value), 0); }
  Fields& Text(const char* name, const std::string& value) {
    m_fields.push_back({name, value, true});
    return *this;
  }
  std::string Line(bool json) const {
    std::string line = json ? "{\"event\":\"" + m_event + "\"" : m_event;
    for (const Field& f : m_fields) {
      if (json)
        line += ",\"" + f.name + "\":" + (f.quoted ? "\"" + Escaped(f.value) + "\"" : f.value);
      else
        line += " " + f.name + " " + f.value;
    }
    return json ? line + "}" : line;
  }

 private:
  struct Field {
    std::string name, value;
    bool quoted;
  };
  static std::string Escaped(const std::string& text) {
    std::string out;
    for (char c : text) {
      if (c == '"' || c == '\\') out += '\\';
      if (static_cast<unsigned char>(c) >= 0x20) out += c;
    }
    return out;
  }
  std::string m_event;
  std::vector<Field> m_fields;
};

constexpr short kUtmNorth = 1, kUtmSouth = 2;

std::string Narrow(BSTR text) {
  std::string out;
  for (unsigned i = 0; text && i < SysStringLen(text); ++i) out += static_cast<char>(text[i]);
  SysFreeString(text);
  return out;
}

std::string DateTimeText(KxGpsFix fix) {
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d", GpsFix_GetYear(fix),
                GpsFix_GetMonth(fix), GpsFix_GetDay(fix), GpsFix_GetHour(fix),
                GpsFix_GetMinute(fix), GpsFix_GetSecond(fix), GpsFix_GetMilliSecond(fix));
  return text;
}

Fields Fix(KxGpsFix fix, short grid) {
  Fields f("fix");
  f.Text("time", DateTimeText(fix)).Integer("type", GpsFix_GetFixType(fix));
  KxPosition p = GpsFix_GetPosition(fix);
  if (!p) return f;
  double lat = 0, lon = 0, sea = 0, ellipsoid = 0;
  Position_GetLatitudeDecDeg(p, &lat);
  Position_GetLongitudeDecDeg(p, &lon);
  Position_GetAltitude(p, 0, &sea);
  Position_GetAltitude(p, 1, &ellipsoid);
  f.Number("lat", lat, 9)
      .Number("lon", lon, 9)
      .Number("alt", sea, 3)
      .Number("altHAE", ellipsoid, 3);
  if (grid) {
    Position_SetGrid(p, grid == EventText::kUtm ? (lat < 0 ? kUtmSouth : kUtmNorth) : grid);
    double e = 0, n = 0;
    Position_GetEasting(p, &e);
    Position_GetNorthing(p, &n);
    BSTR zone = nullptr;
    Position_GetZone(p, &zone);
    f.Number("easting", e, 3).Number("northing", n, 3).Text("zone", Narrow(zone));
  }
  Position_Delete(p);
  return f;
}

Fields MovementOf(KxMovement m) {
  double speed = 0, heading = 0, variation = 0;
  Movement_GetSpeed(m, 0, &speed);
  Movement_GetHeading(m, &heading);
  Movement_GetMagneticVariation(m, &variation);
  return Fields("movement")
      .Number("speed", speed, 3)
      .Number("heading", heading, 2)
      .Number("variation", variation, 2);
}

Fields QualityOf(KxQuality q) {
  double pdop = 0, hdop = 0, vdop = 0;
  Quality_GetPDOP(q, &pdop);
  Quality_GetHDOP(q, &hdop);
  Quality_GetVDOP(q, &vdop);
  return Fields("quality").Number("pdop", pdop, 2).Number("hdop", hdop, 2).Number("vdop", vdop, 2);
}

Fields SatellitesOf(KxSatellites s) {
  const short count = Satellites_GetCount(s);
  std::string list;
  int used = 0;
  for (short i = 1; i <= count; ++i) {
    KxSatellite one = Satellites_Item(s, i);
    char text[64];
    std::snprintf(text, sizeof text, "%s%d:%d:%d:%d:%d", i > 1 ? ";" : "", Satellite_GetID(one),
                  Satellite_GetElevation(one), Satellite_GetAzimuth(one), Satellite_GetSNR(one),
                  Satellite_GetUsedForFix(one));
    used += Satellite_GetUsedForFix(one) != 0;
    list += text;
    Satellite_Delete(one);
  }
  return Fields("satellites").Integer("seen", count).Integer("used", used).Text("list", list);
}

Fields StatusOf(KxComStatus s) {
  return Fields("status")
      .Integer("nmea", ComStatus_GetValidNmea(s))
      .Integer("fix", ComStatus_GetValidFix(s))
      .Integer("port", ComStatus_GetComPort(s))
      .Integer("baud", ComStatus_GetBaudRate(s));
}

Fields SentenceOf(KxNmeaSentence s) {
  BSTR text = nullptr;
  NmeaSentence_GetSentence(s, &text);
  return Fields("sentence").Text("text", Narrow(text));
}

}  // namespace

bool EventText::ReadGrid(const std::string& text, short& grid) {
  if (text == "utm") {
    grid = kUtm;
    return true;
  }
  char* end = nullptr;
  const long id = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0' || id < 0 || id > 0x7FFF) return false;
  grid = short(id);
  return true;
}

std::string EventText::Describe(int type, void* object, short grid, bool json) {
  switch (type) {
    case KX_EVENT_SENTENCE:
      return SentenceOf(static_cast<KxNmeaSentence>(object)).Line(json);
    case KX_EVENT_FIX:
      return Fix(static_cast<KxGpsFix>(object), grid).Line(json);
    case KX_EVENT_SATELLITES:
      return SatellitesOf(static_cast<KxSatellites>(object)).Line(json);
    case KX_EVENT_MOVEMENT:
      return MovementOf(static_cast<KxMovement>(object)).Line(json);
    case KX_EVENT_QUALITY:
      return QualityOf(static_cast<KxQuality>(object)).Line(json);
    case KX_EVENT_STATUS:
      return StatusOf(static_cast<KxComStatus>(object)).Line(json);
    default:
      return "";
  }
}

void EventText::Release(int type, void* object) { kxrig::ReleaseEventObject(type, object); }

}  // namespace kestrix
