// The registry's file: where it lives, reading it again when another process has
// replaced it, and writing it whole under a lock that all processes take.
//
// Writers take an exclusive flock on "<file>.lock", read the file if it changed, apply
// their change, write "<file>.new" and rename it over the file. Readers take no lock: the
// file they open is always one whole version. The file that the tree was read from stays
// open, so its inode can't come back for a new file, and a new version is told by
// another inode (or, for an edit in place, another size or time).
#pragma once

#include <sys/stat.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/posix/RegistryNode.h"

namespace platform {

class RegistryStore {
 public:
  // The roots under the whole registry, in the order of their handles from 0x80000000.
  static constexpr const char16_t* kRootNames[] = {u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER",
                                                   u"HKEY_LOCAL_MACHINE", u"HKEY_USERS"};

  RegistryStore();
  ~RegistryStore();
  RegistryStore(const RegistryStore&) = delete;
  RegistryStore& operator=(const RegistryStore&) = delete;

  // The file's place: $KESTRIX_REGISTRY, else kestrix/registry in the user's config
  // directory. Asked at every use, so a test can give each case a registry of its own.
  static std::string Location();

  // Brings the tree up to date with the file. A missing file is an empty registry.
  LONG Refresh();
  // Under the lock: brings the tree up to date, applies the change and, when that
  // succeeds, writes the file. A change that fails must leave the tree as it found it.
  // When the file can't be written the change is undone by reading the file again.
  LONG Modify(const std::function<LONG(RegistryNode&)>& change);
  RegistryNode& Top() { return *m_top; }

 private:
  void Forget();
  LONG Load(int descriptor, const struct stat& status);
  LONG Save();

  std::string m_path;
  int m_loaded = -1;  // the file the tree was read from, or -1
  struct stat m_loadedStatus {};
  std::unique_ptr<RegistryNode> m_top;
};

}  // namespace platform
