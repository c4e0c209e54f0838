// Text from outside (NMEA fields, file names, wide text from the application) through
// String: parsing, slicing, searching and widening must stay within the bytes given.
#include <cstdint>
#include <cstring>

#include "frame/Ref.h"
#include "frame/String.h"

using kx::Ref;
using kx::String;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 4096) return 0;
  const auto* bytes = reinterpret_cast<const char*>(data);
  Ref<String> text(new String(bytes, int32_t(size)));
  (void)text->ToDouble();
  (void)text->ToInt();
  (void)text->ToShort();
  const int32_t start = size ? data[0] % (size + 2) : 0;
  const int32_t count = size > 1 ? data[1] % (size + 2) : 0;
  Ref<String> middle(text->Mid(start, count));
  (void)text->EqualsAt("GGA", count, start);
  (void)text->EqualsAt(middle.get(), 0, start);
  (void)text->ReverseFind(",", start - 1);
  (void)text->GetBSTR();
  if (size >= sizeof(double) + 2) {
    double seconds;
    std::memcpy(&seconds, data + 2, sizeof seconds);
    Ref<String> angle(new String(int32_t(int8_t(data[0])), int32_t(data[1]), seconds, 'N',
                                 int32_t(data[0] % 4)));
    Ref<String> number(new String(seconds, int32_t(int8_t(data[1]))));
  }
  const char16_t* wide = reinterpret_cast<const char16_t*>(data);
  Ref<String> fromWide(new String(wide, int32_t(size / 2)));
  return 0;
}
