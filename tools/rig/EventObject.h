// The object of an engine event belongs to whoever takes the event: this gives it up,
// whatever its type.
#pragma once

#include "exports/KestrixCE.h"

namespace kxrig {

inline void ReleaseEventObject(int type, void* object) {
  switch (type) {
    case KX_EVENT_SENTENCE:
      NmeaSentence_Delete(static_cast<KxNmeaSentence>(object));
      break;
    case KX_EVENT_FIX:
      GpsFix_Delete(static_cast<KxGpsFix>(object));
      break;
    case KX_EVENT_SATELLITES:
      Satellites_Delete(static_cast<KxSatellites>(object));
      break;
    case KX_EVENT_MOVEMENT:
      Movement_Delete(static_cast<KxMovement>(object));
      break;
    case KX_EVENT_QUALITY:
      Quality_Delete(static_cast<KxQuality>(object));
      break;
    case KX_EVENT_STATUS:
      ComStatus_Delete(static_cast<KxComStatus>(object));
      break;
    default:
      break;
  }
}

}  // namespace kxrig
