#include "gps/Quality.h"

#include "frame/Ref.h"

namespace kx {

Quality::Quality(NmeaSentence* sentence) {
  if (!sentence || sentence->GetType() != NmeaSentence::kGSA) return;
  auto number = [sentence](int32_t index) { return sentence->PeekField(index).ToDouble(); };
  m_pdop = number(15);
  m_hdop = number(16);
  m_vdop = number(17);
}

}  // namespace kx
