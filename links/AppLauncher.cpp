#include "links/AppLauncher.h"

#include <string>

#include "links/WideName.h"

namespace kx {

void AppLauncher::Launch(const String* file, const String* parameters) {
  ClearError();
  if (!file) return;
  const std::u16string wideFile = WideName(file);
  const std::u16string wideParameters = WideName(parameters);
  SHELLEXECUTEINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI;
  info.lpFile = wideFile.c_str();
  info.lpParameters = parameters ? wideParameters.c_str() : nullptr;
  info.nShow = SW_SHOWNORMAL;
  if (!ShellExecuteEx(&info)) {
    SetError(int32_t(GetLastError()), "Failed to launch application");
    return;
  }
  if (info.hProcess) CloseHandle(info.hProcess);  // the program is not waited for
}

}  // namespace kx
