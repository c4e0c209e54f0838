#include "gps/Quality.h"

#include "frame/Ref.h"

namespace kx {

Quality::Quality(NmeaSentence* sentence) {
  if (!sentence || sentence->GetType() != NmeaSentence::kGSA) return;
  auto number = [sentence](int32_t index) {
    Ref<String> field(sentence->GetField(index));
    return field ? field->ToDouble() : 0.0;
  };
  m_pdop = number(15);
  m_hdop = number(16);
  m_vdop = number(17);
}

}  // namespace kx
