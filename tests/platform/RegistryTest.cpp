// The platform's registry: keys and values as on the device, kept in a text file that
// several processes share. Every case has a registry of its own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/win32ce.h"
#include "tests/support/TempDirectory.h"

namespace {

std::u16string Wide(const std::string& text) { return std::u16string(text.begin(), text.end()); }

std::string Contents(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class Registry : public ::testing::Test {
 protected:
  HKEY Create(HKEY parent, const std::string& path) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(parent, Wide(path).c_str(), 0, nullptr, 0, 0, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    return key;
  }
  LONG Set(HKEY key, const char16_t* name, DWORD type, const std::vector<BYTE>& data) {
    return RegSetValueExW(key, name, 0, type, data.data(), DWORD(data.size()));
  }
  // The type and bytes of a value, or the error as the type.
  std::pair<DWORD, std::vector<BYTE>> Query(HKEY key, const char16_t* name) {
    DWORD type = 0, size = 0;
    LONG result = RegQueryValueExW(key, name, nullptr, &type, nullptr, &size);
    std::vector<BYTE> data(size);
    if (result == ERROR_SUCCESS)
      result = RegQueryValueExW(key, name, nullptr, &type, data.data(), &size);
    if (result != ERROR_SUCCESS) return {DWORD(result) | 0x80000000u, {}};
    return {type, data};
  }
  std::vector<std::u16string> SubKeys(HKEY key) {
    std::vector<std::u16string> names;
    WCHAR name[256];
    DWORD length = 256;
    for (DWORD i = 0;
         RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = 256)
      names.emplace_back(name, length);
    return names;
  }

  kxtest::PrivateRegistry m_registry;
};

const std::vector<BYTE> kText = {'C', 0, 'O', 0, 'M', 0, '1', 0, ':', 0, 0, 0};
const std::vector<BYTE> kNumber = {0x40, 0xE2, 0x01, 0x00};
const std::vector<BYTE> kList = {'a', 0, 0, 0, 'b', 0, 'c', 0, 0, 0, 0, 0};
// Characters that the file's strings escape, and one beyond ASCII.
const std::vector<BYTE> kEscaped = {'a', 0, '\n', 0, '"', 0, '\\', 0, 0xE9, 0, 0, 0};

TEST_F(Registry, KeysAreMadeAlongAPathAndFoundWithoutRegardToCase) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"\\Software\\Tarvik\\Velomux", 0, nullptr, 0, 0,
                            nullptr, &key, &disposition),
            ERROR_SUCCESS);
  EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
  HKEY again = nullptr;
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"SOFTWARE\\tarvik\\VELOMUX", 0, nullptr, 0, 0, nullptr,
                  &again, &disposition);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  HKEY software = nullptr;
  EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"software", 0, 0, &software), ERROR_SUCCESS);
  EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, 0, &software), ERROR_FILE_NOT_FOUND);

  for (const char* name : {"Gamma", "alpha", "Beta"}) RegCloseKey(Create(key, name));
  EXPECT_EQ(SubKeys(key), (std::vector<std::u16string>{u"alpha", u"Beta", u"Gamma"}));
  WCHAR name[5];
  DWORD length = 5;
  EXPECT_EQ(RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
            ERROR_MORE_DATA);
  length = 6;
  EXPECT_EQ(RegEnumKeyExW(key, 3, name, &length, nullptr, nullptr, nullptr, nullptr),
            ERROR_NO_MORE_ITEMS);

  // A name the file couldn't keep on one line, and one longer than Windows allows.
  EXPECT_EQ(RegCreateKeyExW(key, u"two\nlines", 0, nullptr, 0, 0, nullptr, &again, nullptr),
            ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegCreateKeyExW(key, Wide(std::string(256, 'k')).c_str(), 0, nullptr, 0, 0, nullptr,
                            &again, nullptr),
            ERROR_INVALID_PARAMETER);

  EXPECT_EQ(RegCloseKey(software), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(software), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
  EXPECT_EQ(RegQueryInfoKeyW(software, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr, nullptr),
            ERROR_INVALID_HANDLE);
  RegCloseKey(key);
}

TEST_F(Registry, ValuesKeepTheirTypeAndBytesThroughTheFile) {
  HKEY key = Create(HKEY_LOCAL_MACHINE, "Drivers\\Active\\01");
  const std::vector<BYTE> unterminated = {'a', 0, 'b', 0};
  const std::vector<BYTE> loneSurrogate = {0x3D, 0xD8, 0, 0};
  struct Case {
    const char16_t* name;
    DWORD type;
    std::vector<BYTE> data;
  } cases[] = {{u"Name", REG_SZ, kText},
               {u"Hnd", REG_DWORD, kNumber},
               {u"Blob", REG_BINARY, {0, 1, 0xFF}},
               {u"Empty", REG_BINARY, {}},
               {u"Ports", REG_MULTI_SZ, kList},
               {u"", REG_SZ, kEscaped},
               {u"Odd \"name\"", REG_SZ, unterminated},
               {u"Lone", REG_SZ, loneSurrogate},
               {u"Short", REG_DWORD, {1, 2}},
               {u"Expand", 2, kText}};
  for (const Case& c : cases) EXPECT_EQ(Set(key, c.name, c.type, c.data), ERROR_SUCCESS);
  EXPECT_EQ(Set(key, u"Hnd", REG_DWORD, kNumber), ERROR_SUCCESS);  // keeps its place

  // A second registry made from the file alone holds the same.
  const std::string copy = m_registry.Directory() / "copy";
  std::filesystem::copy_file(m_registry.File(), copy);
  kxtest::ScopedEnvironment elsewhere("KESTRIX_REGISTRY", copy.c_str());
  DWORD index = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name, c.name + std::char_traits<char16_t>::length(c.name)));
    EXPECT_EQ(Query(key, c.name), std::make_pair(c.type, c.data));
    WCHAR name[32];
    DWORD length = 32, type = 0;
    ASSERT_EQ(RegEnumValueW(key, index++, name, &length, nullptr, &type, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(name, length), c.name);
    EXPECT_EQ(type, c.type);
  }

  BYTE small[4];
  DWORD size = sizeof small;
  EXPECT_EQ(RegQueryValueExW(key, u"NAME", nullptr, nullptr, small, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, kText.size());
  EXPECT_EQ(RegQueryValueExW(key, u"Name", nullptr, nullptr, small, nullptr),
            ERROR_INVALID_PARAMETER);
  DWORD subKeys, values, longestName, largest;
  EXPECT_EQ(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values,
                             &longestName, &largest, nullptr, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(subKeys, 0u);
  EXPECT_EQ(values, std::size(cases));
  EXPECT_EQ(longestName, 10u);
  EXPECT_EQ(largest, kEscaped.size());

  EXPECT_EQ(RegDeleteValueW(key, u"blob"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueW(key, u"Blob"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Query(key, u"Blob").first, ERROR_FILE_NOT_FOUND | 0x80000000u);
  EXPECT_EQ(RegSetValueExW(key, u"x", 0, REG_BINARY, nullptr, 3), ERROR_INVALID_PARAMETER);
  RegCloseKey(key);
}

TEST_F(Registry, TheFileIsTextThatPeopleCanReadAndEdit) {
  HKEY key = Create(HKEY_LOCAL_MACHINE, "Drivers\\Active\\01");
  Set(key, u"Name", REG_SZ, kText);
  Set(key, u"Hnd", REG_DWORD, kNumber);
  Set(key, u"Ports", REG_MULTI_SZ, kList);
  Set(key, nullptr, REG_SZ, kEscaped);
  RegCloseKey(Create(HKEY_CURRENT_USER, "Empty\\Leaf"));
  const std::string text = Contents(m_registry.File());
  EXPECT_NE(text.find("\n[HKEY_LOCAL_MACHINE\\Drivers\\Active\\01]\n"
                      "\"Name\"=\"COM1:\"\n"
                      "\"Hnd\"=dword:0001e240\n"
                      "\"Ports\"=multi:\"a\",\"bc\"\n"
                      "@=\"a\\x0a\\\"\\\\\xc3\xa9\"\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\n[HKEY_CURRENT_USER\\Empty\\Leaf]\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("[HKEY_CURRENT_USER\\Empty]"), std::string::npos) << text;

  // By hand, with Windows line ends, comments, blanks, and lines that can't be read.
  std::ofstream(m_registry.File(), std::ios::trunc | std::ios::binary)
      << "; edited\r\n"
         "[HKEY_LOCAL_MACHINE\\Drivers\\Active\\01]\r\n"
         "  \"Name\" = \"COM\\x32:\"\r\n"
         "\"Broken\"=dword:xyz\r\n"
         "\"Unclosed\"=\"abc\r\n"
         "@=hex:0A, 0b\r\n"
         "\r\n"
         "[HKEY_NOWHERE\\Key]\r\n"
         "\"Lost\"=dword:1\r\n"
         "[HKEY_LOCAL_MACHINE\\Drivers\\Active\\02]\r\n"
         "\"Hnd\"=dword:7\r\n";
  const std::vector<BYTE> com2 = {'C', 0, 'O', 0, 'M', 0, '2', 0, ':', 0, 0, 0};
  EXPECT_EQ(Query(key, u"Name"), std::make_pair(REG_SZ, com2));
  EXPECT_EQ(Query(key, u""), std::make_pair(REG_BINARY, std::vector<BYTE>{10, 11}));
  EXPECT_EQ(Query(key, u"Hnd").first, ERROR_FILE_NOT_FOUND | 0x80000000u);
  EXPECT_EQ(Query(key, u"Broken").first, ERROR_FILE_NOT_FOUND | 0x80000000u);
  EXPECT_EQ(Query(key, u"Unclosed").first, ERROR_FILE_NOT_FOUND | 0x80000000u);
  HKEY active = Create(HKEY_LOCAL_MACHINE, "Drivers\\Active");
  EXPECT_EQ(SubKeys(active), (std::vector<std::u16string>{u"01", u"02"}));
  // The hand-made root is gone, and so is the key that nothing kept.
  EXPECT_EQ(SubKeys(HKEY_CURRENT_USER), std::vector<std::u16string>{});
  RegCloseKey(active);
  RegCloseKey(key);
}

TEST_F(Registry, DeletingAKeyTakesEverythingBelowAndOpenHandlesNotice) {
  HKEY deep = Create(HKEY_CURRENT_USER, "A\\B\\C");
  Set(deep, u"v", REG_DWORD, kNumber);
  EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"a"), ERROR_SUCCESS);
  EXPECT_EQ(Query(deep, u"v").first, ERROR_KEY_DELETED | 0x80000000u);
  EXPECT_EQ(Set(deep, u"v", REG_DWORD, kNumber), ERROR_KEY_DELETED);
  EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"A"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u""), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, nullptr), ERROR_INVALID_PARAMETER);
  HKEY opened;
  EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"A\\B", 0, 0, &opened), ERROR_FILE_NOT_FOUND);
  RegCloseKey(deep);
}

TEST_F(Registry, LivesInTheUsersConfigDirectoryWithoutTheVariable) {
  kxtest::TempDirectory home;
  kxtest::ScopedEnvironment noVariable("KESTRIX_REGISTRY", nullptr);
  kxtest::ScopedEnvironment noConfig("XDG_CONFIG_HOME", nullptr);
  kxtest::ScopedEnvironment ownHome("HOME", home.Path().c_str());
  RegCloseKey(Create(HKEY_USERS, "Made"));
  EXPECT_TRUE(std::filesystem::exists(home / ".config/kestrix/registry"));
  {
    kxtest::ScopedEnvironment config("XDG_CONFIG_HOME", (home / "xdg").c_str());
    RegCloseKey(Create(HKEY_USERS, "Made"));
    EXPECT_TRUE(std::filesystem::exists(home / "xdg/kestrix/registry"));
  }
}

TEST_F(Registry, AWriteThatFailsKeepsNothing) {
  HKEY key = Create(HKEY_CURRENT_USER, "Kept");
  std::ofstream(m_registry.Directory() / "plain") << "a file, not a directory";
  kxtest::ScopedEnvironment unwritable("KESTRIX_REGISTRY",
                                       (m_registry.Directory() / "plain/registry").c_str());
  HKEY made;
  EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"New", 0, nullptr, 0, 0, nullptr, &made, nullptr),
            ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Set(HKEY_CURRENT_USER, u"v", REG_DWORD, kNumber), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Query(HKEY_CURRENT_USER, u"v").first, ERROR_FILE_NOT_FOUND | 0x80000000u);
  EXPECT_EQ(SubKeys(HKEY_CURRENT_USER), std::vector<std::u16string>{});
  RegCloseKey(key);
}

// Each process writes keys of its own and values into one shared key, all at once. The
// file must come out whole, with every one of them.
TEST_F(Registry, ProcessesWritingAtOnceLoseNothing) {
  constexpr int kProcesses = 4, kKeys = 25;
  std::vector<pid_t> children;
  for (int p = 0; p < kProcesses; ++p) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      bool good = true;
      for (int k = 0; k < kKeys; ++k) {
        const std::string tag = "P" + std::to_string(p) + "K" + std::to_string(k);
        HKEY key = nullptr;
        good &= RegCreateKeyExW(HKEY_CURRENT_USER, Wide("Load\\" + tag).c_str(), 0, nullptr, 0, 0,
                                nullptr, &key, nullptr) == ERROR_SUCCESS;
        const DWORD number = DWORD(p * 1000 + k);
        good &= RegSetValueExW(key, u"Number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                               4) == ERROR_SUCCESS;
        good &= RegSetValueExW(HKEY_CURRENT_USER, Wide(tag).c_str(), 0, REG_DWORD,
                               reinterpret_cast<const BYTE*>(&number), 4) == ERROR_SUCCESS;
        RegCloseKey(key);
      }
      _exit(good ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  HKEY load = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Load", 0, 0, &load), ERROR_SUCCESS);
  EXPECT_EQ(SubKeys(load).size(), size_t(kProcesses * kKeys));
  for (int p = 0; p < kProcesses; ++p) {
    for (int k = 0; k < kKeys; ++k) {
      const std::string tag = "P" + std::to_string(p) + "K" + std::to_string(k);
      HKEY key = nullptr;
      ASSERT_EQ(RegOpenKeyExW(load, Wide(tag).c_str(), 0, 0, &key), ERROR_SUCCESS) << tag;
      const DWORD number = DWORD(p * 1000 + k);
      const std::vector<BYTE> expected(reinterpret_cast<const BYTE*>(&number),
                                       reinterpret_cast<const BYTE*>(&number) + 4);
      EXPECT_EQ(Query(key, u"Number"), std::make_pair(REG_DWORD, expected)) << tag;
      EXPECT_EQ(Query(HKEY_CURRENT_USER, Wide(tag).c_str()), std::make_pair(REG_DWORD, expected));
      RegCloseKey(key);
    }
  }
  RegCloseKey(load);
  EXPECT_FALSE(std::filesystem::exists(m_registry.File() + ".new"));
}

}  // namespace
