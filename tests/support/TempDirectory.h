// A directory of a test's own under the system's temporary directory, removed with
// everything in it at the end; and a registry of its own in such a directory.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <string>

namespace kxtest {

class TempDirectory {
 public:
  TempDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kx-test-XXXXXX").string();
    if (mkdtemp(pattern.data())) m_path = pattern;
  }
  ~TempDirectory() {
    std::error_code ignored;
    if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
  }
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  const std::string& Path() const { return m_path; }
  std::string operator/(const std::string& name) const { return m_path + "/" + name; }

 private:
  std::string m_path;
};

// Sets an environment variable for the length of a scope; null unsets it.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, const char* value) : m_name(name) {
    if (const char* old = getenv(name)) m_old = old;
    if (value)
      setenv(name, value, 1);
    else
      unsetenv(name);
  }
  ~ScopedEnvironment() {
    if (m_old)
      setenv(m_name.c_str(), m_old->c_str(), 1);
    else
      unsetenv(m_name.c_str());
  }

 private:
  std::string m_name;
  std::optional<std::string> m_old;
};

// The registry of one test: never the user's, and without the machine's serial devices
// among its active drivers, which are looked for in an empty directory.
class PrivateRegistry {
 public:
  PrivateRegistry()
      : m_location(m_directory / "registry"),
        m_variable("KESTRIX_REGISTRY", m_location.c_str()),
        m_devices("KESTRIX_DEVICES", (m_directory / "dev").c_str()) {}
  const std::string& File() const { return m_location; }
  const TempDirectory& Directory() const { return m_directory; }

 private:
  TempDirectory m_directory;
  std::string m_location;
  ScopedEnvironment m_variable;
  ScopedEnvironment m_devices;
};

}  // namespace kxtest
