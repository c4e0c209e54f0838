#include "gps/GpsFix.h"

#include "frame/Ref.h"
#include "gps/SentenceGGA.h"
#include "gps/SentenceGLL.h"
#include "gps/SentenceRMC.h"

namespace kx {

namespace {

// The sentence's time of day on the date of the fix before, or alone with date 0.
DateTime* OnLastDate(DateTime* time, DateTime* lastDateTime) {
  if (!time) return nullptr;
  if (!lastDateTime) {
    time->AddRef();
    return time;
  }
  return new DateTime(lastDateTime->GetYear(), lastDateTime->GetMonth(), lastDateTime->GetDay(),
                      time->GetHour(), time->GetMinute(), time->GetSecond(),
                      time->GetMilliSecond());
}

}  // namespace

GpsFix::GpsFix(NmeaSentence* sentence, int16_t datum, Position* lastGgaPosition,
               DateTime* lastDateTime) {
  switch (sentence ? sentence->GetType() : NmeaSentence::kNone) {
    case NmeaSentence::kRMC:
      FromRMC(sentence, datum, lastGgaPosition);
      break;
    case NmeaSentence::kGLL:
      FromGLL(sentence, datum, lastGgaPosition, lastDateTime);
      break;
    case NmeaSentence::kGGA:
      FromGGA(sentence, datum, lastDateTime);
      break;
    default:
      break;
  }
}

GpsFix::~GpsFix() {
  ReleaseObject(m_position);
  ReleaseObject(m_dateTime);
}

void GpsFix::FromRMC(NmeaSentence* sentence, int16_t datum, Position* lastGgaPosition) {
  SentenceRMC rmc(sentence, datum);
  m_position = rmc.TakePosition();
  m_dateTime = rmc.TakeDateTime();
  if (rmc.GetValid()) TakeAltitudes(lastGgaPosition);
}

void GpsFix::FromGLL(NmeaSentence* sentence, int16_t datum, Position* lastGgaPosition,
                     DateTime* lastDateTime) {
  SentenceGLL gll(sentence, datum);
  m_position = gll.TakePosition();
  m_dateTime = OnLastDate(Ref<DateTime>(gll.TakeTime()).get(), lastDateTime);
  if (gll.GetValid()) TakeAltitudes(lastGgaPosition);
}

void GpsFix::FromGGA(NmeaSentence* sentence, int16_t datum, DateTime* lastDateTime) {
  SentenceGGA gga(sentence, datum);
  m_position = gga.TakePosition();
  m_dateTime = OnLastDate(Ref<DateTime>(gga.TakeTime()).get(), lastDateTime);
  m_fixType = gga.GetValid() ? kFix3D : kNoFix;
}

void GpsFix::TakeAltitudes(Position* lastGgaPosition) {
  if (!lastGgaPosition || !m_position) {
    m_fixType = kFix2D;
    return;
  }
  m_fixType = kFix3D;
  m_position->SetAltitude(lastGgaPosition->GetAltitude(1), 1);
  m_position->SetAltitude(lastGgaPosition->GetAltitude(0), 0);
}

Position* GpsFix::GetPosition() const {
  if (m_position) m_position->AddRef();
  return m_position;
}

DateTime* GpsFix::GetDateTime() const {
  if (m_dateTime) m_dateTime->AddRef();
  return m_dateTime;
}

}  // namespace kx
