// Error_ErrNum and Error_ErrDesc: reading an object's last failure through its
// error handle.
#include "exports/ErrorSlot.h"
#include "exports/ExportSupport.h"
#include "frame/ErrorRecord.h"

using namespace kx;

static_assert(KX_ERR_INVALID_ARGUMENT == kErrInvalidArgument);
static_assert(KX_ERR_INTERNAL == kErrInternal);
static_assert(KX_ERR_NOT_SUPPORTED == kErrNotSupported);

namespace {
// The String of the last Error_ErrDesc: its BSTR stays the library's until the next
// call, on any handle, replaces it. Not locked: one caller at a time.
String* lastDescription = nullptr;

ErrorRecord* RecordOf(KxError error) { return reinterpret_cast<ErrorRecord*>(error); }
}  // namespace

void kx::exports::ReleaseErrorSlot() { ReleaseObject(lastDescription); }

extern "C" KX_API short Error_ErrNum(KxError error) {
  return static_cast<short>(static_cast<int16_t>(RecordOf(error)->GetNumber()));
}

extern "C" KX_API BSTR Error_ErrDesc(KxError error, BSTR* text) {
  ReleaseObject(lastDescription);
  BSTR description = nullptr;
  try {
    const char* recorded = RecordOf(error)->GetText();
    lastDescription = new String(recorded ? recorded : "");
    description = lastDescription->GetBSTR();
  } catch (...) {
    description = nullptr;  // out of memory: no text to give
  }
  if (text) *text = description;
  return description;
}
