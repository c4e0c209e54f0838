#include "exports/ExportSupport.h"

namespace kx::exports {

void HandOut(String* text, BSTR* out) {
  if (out) *out = text ? text->GetBSTR() : nullptr;
  if (!text) return;
  text->DetachBSTR();
  ReleaseObject(text);
}

}  // namespace kx::exports
