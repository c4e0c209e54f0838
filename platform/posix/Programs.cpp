// ShellExecuteEx on posix_spawn: the file is a program, found on PATH when its name has
// no directory, and the parameters are its command line, split as the device splits
// one: at blanks, with double quotes around a part that holds blanks.
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <new>
#include <string>
#include <vector>

#include "platform/posix/KernelObject.h"
#include "platform/posix/SystemError.h"
#include "platform/posix/WideText.h"

extern char** environ;

namespace {

using platform::KernelObject;

class ProcessObject : public KernelObject {
 public:
  ProcessObject() : KernelObject(Kind::kProcess, true) {}
};

std::string PathOf(LPCWSTR name) {
  std::string path = platform::ToUtf8(name);
  for (char& c : path)
    if (c == '\\') c = '/';
  return path;
}

std::vector<std::string> SplitCommandLine(const std::string& line) {
  std::vector<std::string> parts;
  std::string part;
  bool quoted = false, inPart = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
      inPart = true;
    } else if ((c == ' ' || c == '\t') && !quoted) {
      if (inPart) parts.push_back(part);
      part.clear();
      inPart = false;
    } else {
      part += c;
      inPart = true;
    }
  }
  if (inPart) parts.push_back(part);
  return parts;
}

struct Watch {
  pid_t process;
  ProcessObject* handle;  // counted; null when nobody asked for one
};

DWORD ReapProcess(LPVOID parameter) {
  const Watch* watch = static_cast<Watch*>(parameter);
  int status;
  while (::waitpid(watch->process, &status, 0) < 0 && errno == EINTR) {
  }
  if (watch->handle) {
    watch->handle->Signal();
    watch->handle->Release();
  }
  delete watch;
  return 0;
}

// A thread of its own waits for the program. Without one, the program's handle is never
// signalled, and the program stays a zombie after its end.
bool WatchProcess(pid_t process, ProcessObject* handle) {
  auto* watch = new (std::nothrow) Watch{process, handle};
  if (!watch) return false;
  if (handle) handle->AddRef();
  const HANDLE thread = CreateThread(nullptr, 0, ReapProcess, watch, 0, nullptr);
  if (!thread) {
    if (handle) handle->Release();
    delete watch;
    return false;
  }
  CloseHandle(thread);  // lets it run on alone
  return true;
}

}  // namespace

BOOL ShellExecuteEx(SHELLEXECUTEINFO* info) {
  if (!info || info->cbSize != sizeof *info || !info->lpFile || !info->lpFile[0]) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const std::string file = PathOf(info->lpFile);
  std::vector<std::string> parts = {file};
  if (info->lpParameters)
    for (std::string& part : SplitCommandLine(platform::ToUtf8(info->lpParameters)))
      parts.push_back(std::move(part));
  std::vector<char*> arguments;
  for (std::string& part : parts) arguments.push_back(part.data());
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (info->lpDirectory)
    posix_spawn_file_actions_addchdir_np(&actions, PathOf(info->lpDirectory).c_str());
  pid_t process = 0;
  const int failure =
      ::posix_spawnp(&process, file.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure) {
    SetLastError(platform::ErrorFromErrno(failure));
    return FALSE;
  }
  ProcessObject* handle = new (std::nothrow) ProcessObject();
  if (!WatchProcess(process, handle)) {
    if (handle) handle->Release();
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;  // the program runs all the same
  }
  info->hInstApp = reinterpret_cast<HINSTANCE>(intptr_t(42));  // above 32: success
  if (info->fMask & SEE_MASK_NOCLOSEPROCESS)
    info->hProcess = handle->AsHandle();
  else
    handle->Release();
  return TRUE;
}
