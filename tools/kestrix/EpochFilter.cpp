#include "tools/kestrix/EpochFilter.h"

#include <cstdio>

#include "KestrixCE.h"

namespace kestrix {

namespace {

// The time of day alone: a GGA before the first RMC has no date yet, and the RMC of the
// same second must still count as the same epoch.
std::string EpochOf(KxGpsFix fix) {
  char text[32];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", GpsFix_GetHour(fix),
                GpsFix_GetMinute(fix), GpsFix_GetSecond(fix), GpsFix_GetMilliSecond(fix));
  return text;
}

std::string ValuesOf(KxMovement movement) {
  double speed = 0, heading = 0, variation = 0;
  Movement_GetSpeed(movement, 0, &speed);
  Movement_GetHeading(movement, &heading);
  Movement_GetMagneticVariation(movement, &variation);
  char text[96];
  std::snprintf(text, sizeof text, "%.17g %.17g %.17g", speed, heading, variation);
  return text;
}

}  // namespace

bool EpochFilter::Admits(int type, void* object) {
  if (m_all) return true;
  if (type == KX_EVENT_FIX) {
    m_epoch = EpochOf(static_cast<KxGpsFix>(object));
    if (m_epoch == m_fixEpoch) return false;
    m_fixEpoch = m_epoch;
    return true;
  }
  if (type == KX_EVENT_MOVEMENT) {
    const std::string values = ValuesOf(static_cast<KxMovement>(object));
    if (m_epoch.empty() ? values == m_movement : m_epoch == m_movementEpoch) return false;
    m_movementEpoch = m_epoch;
    m_movement = values;
    return true;
  }
  return true;
}

}  // namespace kestrix
