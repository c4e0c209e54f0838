#include "coords/CustomGrid.h"

#include "coords/Constants.h"
#include "frame/ErrorNumbers.h"
#include "frame/Ref.h"

namespace kx {

namespace {
constexpr const char* kUnknownDatum = "Unknown datum!";
double RadiansToDegrees(double radians) { return radians * 180 / kPi; }
double ToRadians(double degrees) { return degrees * kPi / 180; }
}  // namespace

CustomGrid::CustomGrid() : m_customDatum(new CustomDatum()) {}

CustomGrid::CustomGrid(const CustomGrid& other)
    : BaseObject(),
      m_datum(other.m_datum),
      m_customDatum(other.m_customDatum ? new CustomDatum(*other.m_customDatum) : nullptr),
      m_algorithm(other.m_algorithm),
      m_falseEasting(other.m_falseEasting),
      m_falseNorthing(other.m_falseNorthing),
      m_longitudeOfOrigin(other.m_longitudeOfOrigin),
      m_latitudeOfOrigin(other.m_latitudeOfOrigin),
      m_scaleFactor(other.m_scaleFactor),
      m_latitudeSP1(other.m_latitudeSP1),
      m_latitudeSP2(other.m_latitudeSP2) {}

CustomGrid::~CustomGrid() { ReleaseObject(m_customDatum); }

double CustomGrid::GetFalseEasting() { return ReadField(m_falseEasting); }
void CustomGrid::SetFalseEasting(double metres) { WriteField(m_falseEasting, metres); }
double CustomGrid::GetFalseNorthing() { return ReadField(m_falseNorthing); }
void CustomGrid::SetFalseNorthing(double metres) { WriteField(m_falseNorthing, metres); }
double CustomGrid::GetScaleFactor() { return ReadField(m_scaleFactor); }
void CustomGrid::SetScaleFactor(double value) { WriteField(m_scaleFactor, value); }
double CustomGrid::GetLongitudeOfOrigin() {
  return RadiansToDegrees(ReadField(m_longitudeOfOrigin));
}
void CustomGrid::SetLongitudeOfOrigin(double degrees) {
  WriteField(m_longitudeOfOrigin, ToRadians(degrees));
}
double CustomGrid::GetLatitudeOfOrigin() { return RadiansToDegrees(ReadField(m_latitudeOfOrigin)); }
void CustomGrid::SetLatitudeOfOrigin(double degrees) {
  WriteField(m_latitudeOfOrigin, ToRadians(degrees));
}
double CustomGrid::GetLatitudeSP1() { return RadiansToDegrees(ReadField(m_latitudeSP1)); }
void CustomGrid::SetLatitudeSP1(double degrees) { WriteField(m_latitudeSP1, ToRadians(degrees)); }
double CustomGrid::GetLatitudeSP2() { return RadiansToDegrees(ReadField(m_latitudeSP2)); }
void CustomGrid::SetLatitudeSP2(double degrees) { WriteField(m_latitudeSP2, ToRadians(degrees)); }

int32_t CustomGrid::GetAlgorithm() {
  ClearError();
  return m_algorithm;
}

void CustomGrid::SetAlgorithm(int32_t algorithm) {
  ClearError();
  m_algorithm = algorithm;
}

int16_t CustomGrid::GetDatum() {
  ClearError();
  return m_datum;
}

void CustomGrid::SetDatum(int16_t id) {
  ClearError();
  if (id < 1 || id > DatumTable::kCustom) {
    SetError(kErrInvalidArgument, kUnknownDatum);
    return;
  }
  m_datum = id;
}

CustomDatum* CustomGrid::GetCustomDatum() {
  ClearError();
  if (!m_customDatum) m_customDatum = new CustomDatum();
  m_customDatum->AddRef();
  return m_customDatum;
}

void CustomGrid::SetCustomDatum(CustomDatum* datum) {
  ClearError();
  if (datum) datum->AddRef();
  ReleaseObject(m_customDatum);
  m_customDatum = datum;
  m_datum = DatumTable::kCustom;
}

bool CustomGrid::IsSame(CustomGrid* other) {
  if (!other) return false;
  const bool sameProjection =
      m_algorithm == other->m_algorithm && m_falseEasting == other->m_falseEasting &&
      m_falseNorthing == other->m_falseNorthing &&
      m_longitudeOfOrigin == other->m_longitudeOfOrigin &&
      m_latitudeOfOrigin == other->m_latitudeOfOrigin && m_scaleFactor == other->m_scaleFactor &&
      m_latitudeSP1 == other->m_latitudeSP1 && m_latitudeSP2 == other->m_latitudeSP2;
  if (!sameProjection) return false;
  if (m_datum != DatumTable::kCustom) return m_datum == other->m_datum;
  if (!m_customDatum) return false;
  Ref<CustomDatum> otherDatum(other->GetCustomDatum());
  return m_customDatum->IsSame(otherDatum.get());
}

GridRecord CustomGrid::AsRow() const {
  return GridRecord{m_datum,
                    static_cast<int16_t>(m_algorithm),
                    0,
                    m_falseEasting,
                    m_falseNorthing,
                    m_longitudeOfOrigin,
                    m_latitudeOfOrigin,
                    m_scaleFactor,
                    m_latitudeSP1,
                    m_latitudeSP2,
                    0};
}

}  // namespace kx
