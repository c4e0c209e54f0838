#include "platform/posix/RegistryStore.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/posix/ActiveDrivers.h"
#include "platform/posix/RegistryText.h"
#include "platform/posix/SystemError.h"

namespace platform {

namespace {

LONG LastErrno() { return LONG(ErrorFromErrno(errno)); }

std::string HomeDirectory() {
  const char* home = std::getenv("HOME");
  if (home && *home) return home;
  const passwd* user = ::getpwuid(::getuid());
  return user && user->pw_dir ? user->pw_dir : "";
}

bool SameVersion(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

// The directories on the way to a file, made as needed.
LONG MakeDirectoriesFor(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1)) {
    if (::mkdir(path.substr(0, slash).c_str(), 0700) != 0 && errno != EEXIST) return LastErrno();
  }
  return ERROR_SUCCESS;
}

bool ReadAll(int descriptor, std::string& text) {
  char block[16384];
  for (;;) {
    const ssize_t got = ::read(descriptor, block, sizeof block);
    if (got == 0) return true;
    if (got < 0 && errno != EINTR) return false;
    if (got > 0) text.append(block, size_t(got));
  }
}

bool WriteAll(int descriptor, const std::string& text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t put = ::write(descriptor, text.data() + done, text.size() - done);
    if (put < 0 && errno != EINTR) return false;
    if (put > 0) done += size_t(put);
  }
  return true;
}

// The exclusive lock of all writers, in every process. Each holder opens the lock file
// itself: a descriptor inherited across fork would share its lock with the parent.
class WriterLock {
 public:
  LONG Acquire(const std::string& path) {
    const LONG made = MakeDirectoriesFor(path);
    if (made != ERROR_SUCCESS) return made;
    m_descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (m_descriptor < 0) return LastErrno();
    int locked;
    do {
      locked = ::flock(m_descriptor, LOCK_EX);
    } while (locked != 0 && errno == EINTR);
    return locked == 0 ? ERROR_SUCCESS : LastErrno();
  }
  ~WriterLock() {
    if (m_descriptor >= 0) ::close(m_descriptor);  // lets the lock go
  }

 private:
  int m_descriptor = -1;
};

}  // namespace

RegistryStore::RegistryStore() { Forget(); }

RegistryStore::~RegistryStore() {
  if (m_loaded >= 0) ::close(m_loaded);
}

std::string RegistryStore::Location() {
  const char* chosen = std::getenv("KESTRIX_REGISTRY");
  if (chosen && *chosen) return chosen;
  const char* config = std::getenv("XDG_CONFIG_HOME");
  // XDG_CONFIG_HOME counts only when it is an absolute path, as the XDG rules have it.
  const std::string base = config && *config == '/' ? config : HomeDirectory() + "/.config";
  return base + "/kestrix/registry";
}

void RegistryStore::Forget() {
  if (m_loaded >= 0) ::close(m_loaded);
  m_loaded = -1;
  m_top = std::make_unique<RegistryNode>(u"");
  for (const char16_t* root : kRootNames) m_top->AddChild(root);
}

LONG RegistryStore::Refresh() {
  const std::string path = Location();
  if (path != m_path) {
    Forget();
    m_path = path;
  }
  LONG result = ERROR_SUCCESS;
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status;
  if (descriptor < 0) {
    // No file where none can be is an empty registry too.
    if (errno != ENOENT && errno != ENOTDIR) return LastErrno();
    if (m_loaded >= 0) Forget();
  } else if (::fstat(descriptor, &status) != 0) {
    result = LastErrno();
    ::close(descriptor);
  } else if (m_loaded >= 0 && SameVersion(status, m_loadedStatus)) {
    ::close(descriptor);
  } else {
    result = Load(descriptor, status);
  }
  if (result == ERROR_SUCCESS) MergeActiveDrivers(*m_top->Child(u"HKEY_LOCAL_MACHINE"));
  return result;
}

LONG RegistryStore::Load(int descriptor, const struct stat& status) {
  std::string text;
  if (!ReadAll(descriptor, text)) {
    const LONG error = LastErrno();
    ::close(descriptor);
    return error;
  }
  Forget();
  RegistryText::Read(text, *m_top);
  m_loaded = descriptor;
  m_loadedStatus = status;
  return ERROR_SUCCESS;
}

LONG RegistryStore::Modify(const std::function<LONG(RegistryNode&)>& change) {
  WriterLock lock;
  LONG result = lock.Acquire(Location() + ".lock");
  if (result == ERROR_SUCCESS) result = Refresh();
  if (result == ERROR_SUCCESS) result = change(*m_top);
  if (result != ERROR_SUCCESS) return result;
  result = Save();
  if (result != ERROR_SUCCESS) Forget();
  return result;
}

LONG RegistryStore::Save() {
  const std::string temporary = m_path + ".new";
  const int descriptor = ::open(temporary.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) return LastErrno();
  struct stat status;
  if (!WriteAll(descriptor, RegistryText::Write(*m_top)) || ::fsync(descriptor) != 0 ||
      ::fstat(descriptor, &status) != 0 || ::rename(temporary.c_str(), m_path.c_str()) != 0) {
    const LONG error = LastErrno();
    ::close(descriptor);
    ::unlink(temporary.c_str());
    return error;
  }
  if (m_loaded >= 0) ::close(m_loaded);
  m_loaded = descriptor;
  m_loadedStatus = status;
  return ERROR_SUCCESS;
}

}  // namespace platform
