// RegistryKey: keys as counted objects, values as Value objects, failures in the record.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "frame/Ref.h"
#include "links/RegistryKey.h"
#include "tests/support/TempDirectory.h"

namespace kx {
namespace {

std::string Failure(const BaseObject& object) {
  const ErrorRecord& error = object.Error();
  return std::to_string(error.GetNumber()) + " " + (error.GetText() ? error.GetText() : "");
}

std::string TextOf(const String* text) {
  return text ? std::string(text->GetText() ? text->GetText() : "", size_t(text->GetLength()))
              : "<null>";
}

// The names of a list of Strings, joined with commas.
std::string Names(ObjectList* list) {
  const Ref<ObjectList> held(list);
  if (!held) return "<null>";
  std::string names;
  for (Ref<BaseObject> item(held->GetFirst()); item; item = Ref<BaseObject>(held->GetNext()))
    names += (names.empty() ? "" : ",") + TextOf(static_cast<String*>(item.get()));
  return names;
}

class RegistryKeyTest : public ::testing::Test {
 protected:
  kxtest::PrivateRegistry m_registry;
  Ref<RegistryKey> m_machine{RegistryKey::LocalMachine()};
};

TEST_F(RegistryKeyTest, ValuesComeBackAsTextIntegerAndBytes) {
  const Ref<RegistryKey> key(m_machine->CreateSubKey("Software\\Tarvik\\Velomux"));
  ASSERT_TRUE(key);
  const String installPath("\\Program Files\\Velomux"), name("InstallPath");
  const uint8_t bytes[] = {1, 0, 255};
  const Ref<ByteBuffer> buffer(new ByteBuffer(bytes, 3));
  EXPECT_TRUE(key->SetValue(&name, &installPath));
  EXPECT_TRUE(key->SetValue("Port", -7));
  const String blob("Blob");
  EXPECT_TRUE(key->SetValue(&blob, buffer.get()));

  // As the device stores them: wide text with its terminator, little-endian integers.
  DWORD type = 0, size = 0;
  HKEY raw = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Tarvik\\Velomux", 0, 0, &raw);
  EXPECT_EQ(RegQueryValueExW(raw, u"InstallPath", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, REG_SZ);
  EXPECT_EQ(size, DWORD(installPath.GetLength() + 1) * 2);
  const BYTE list[] = {'a', 0, 0, 0, 0, 0};
  RegSetValueExW(raw, u"List", 0, REG_MULTI_SZ, list, sizeof list);
  RegCloseKey(raw);

  const Ref<RegistryKey> again(m_machine->OpenSubKey("software\\tarvik\\velomux"));
  ASSERT_TRUE(again);
  const Ref<Value> text(again->GetValue("installpath"));
  ASSERT_TRUE(text);
  EXPECT_EQ(text->GetType(), Value::kText);
  const Ref<String> path(text->GetString());
  EXPECT_EQ(TextOf(path.get()), "\\Program Files\\Velomux");
  const Ref<Value> port(again->GetValue("Port"));
  EXPECT_EQ(port->GetType(), Value::kInteger);
  EXPECT_EQ(port->GetInteger(), -7);
  const Ref<Value> binary(again->GetValue("Blob"));
  const Ref<ByteBuffer> read(binary->GetBinary());
  EXPECT_EQ(std::vector<uint8_t>(read->GetData(), read->GetData() + read->GetLength()),
            std::vector<uint8_t>(bytes, bytes + 3));
  const Ref<Value> other(again->GetValue("List"));
  EXPECT_EQ(other->GetType(), Value::kEmpty);

  // A Value of each kind is written as its kind; an empty one is refused.
  const Ref<Value> number(new Value(42));
  EXPECT_TRUE(again->SetValue(&name, number.get()));
  EXPECT_EQ(Ref<Value>(again->GetValue(&name))->GetInteger(), 42);
  const Value empty;
  EXPECT_FALSE(again->SetValue(&name, &empty));
  EXPECT_EQ(Failure(*again), "10003 Invalid parameter!");

  EXPECT_EQ(again->GetValue("Missing"), nullptr);
  EXPECT_EQ(Failure(*again), "2 Error reading registry value");
  const Ref<ByteBuffer> nothing(new ByteBuffer(nullptr, 0));
  EXPECT_TRUE(again->SetValue(&blob, nothing.get()));
  EXPECT_EQ(again->GetValue("Blob"), nullptr);  // no bytes: no value, and no failure
  EXPECT_FALSE(again->Error().Failed());
}

TEST_F(RegistryKeyTest, NamesCountsAndDeletion) {
  const Ref<RegistryKey> active(m_machine->CreateSubKey("Drivers\\Active"));
  for (const char* name : {"02", "01", "10"}) {
    const Ref<RegistryKey> driver(active->CreateSubKey(name));
    driver->SetValue("Hnd", 1);
  }
  active->SetValue("b", 1);
  active->SetValue("a", 2);
  EXPECT_EQ(Names(active->GetSubKeyNames()), "01,02,10");
  EXPECT_EQ(Names(active->GetValueNames()), "b,a");
  EXPECT_TRUE(active->QueryCounts());
  EXPECT_EQ(active->GetSubKeyCount(), 3);
  EXPECT_EQ(active->GetValueCount(), 2);

  EXPECT_TRUE(active->DeleteSubKey("01"));
  EXPECT_FALSE(active->DeleteSubKey("01"));
  EXPECT_EQ(Failure(*active), "2 Error deleting register subkey");
  EXPECT_TRUE(active->DeleteValue("b"));
  EXPECT_FALSE(active->DeleteValue("b"));
  EXPECT_EQ(Failure(*active), "2 Error deleting register value");
  EXPECT_EQ(active->OpenSubKey("01"), nullptr);
  EXPECT_EQ(Failure(*active), "2 Error opening subkey");
  EXPECT_EQ(active->CreateSubKey("bad\nname"), nullptr);
  EXPECT_EQ(Failure(*active), "87 Error creating or opening subkey");

  // A name longer than the buffer the names are read into fails the whole list.
  HKEY raw = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Drivers\\Active", 0, 0, &raw);
  const std::u16string longName(300, u'v');
  const BYTE one[] = {1, 0, 0, 0};
  RegSetValueExW(raw, longName.c_str(), 0, REG_DWORD, one, 4);
  RegCloseKey(raw);
  EXPECT_EQ(Names(active->GetValueNames()), "<null>");
  EXPECT_EQ(Failure(*active), "234 Error reading value names");

  // A key that holds no handle fails in every call, through the system.
  RegistryKey none;
  EXPECT_EQ(Names(none.GetSubKeyNames()), "<null>");
  EXPECT_EQ(Failure(none), "6 Error reading subkey names");
  EXPECT_FALSE(none.QueryCounts());
  EXPECT_EQ(none.Error().GetNumber(), 6);
}

TEST_F(RegistryKeyTest, NullArgumentsAreRefusedBeforeTheSystemIsAsked) {
  const String* noName = nullptr;
  RegistryKey& key = *m_machine;
  const std::vector<std::function<bool()>> calls = {
      [&] { return key.CreateSubKey(noName) != nullptr; },
      [&] { return key.OpenSubKey(noName) != nullptr; },
      [&] { return key.DeleteSubKey(noName); },
      [&] { return key.DeleteValue(noName); },
      [&] { return key.GetValue(noName) != nullptr; },
      [&] { return key.SetValue(noName, 1); },
      [&] { return key.SetValue(static_cast<const char*>(nullptr), 1); },
      [&] { return key.CopyFrom(nullptr, true); }};
  for (size_t i = 0; i < calls.size(); ++i) {
    key.SetValue("clear", 0);
    EXPECT_FALSE(calls[i]()) << i;
    EXPECT_EQ(Failure(key), "10003 Invalid parameter!") << i;
  }
}

TEST_F(RegistryKeyTest, CopyFromTakesValuesAndWithRecursionTheKeysBelow) {
  const Ref<RegistryKey> source(m_machine->CreateSubKey("Source"));
  source->SetValue("Top", 1);
  const Ref<RegistryKey> child(source->CreateSubKey("Child\\Grandchild"));
  const String text("deep");
  const String name("Text");
  child->SetValue(&name, &text);

  const Ref<RegistryKey> flat(m_machine->CreateSubKey("Flat"));
  EXPECT_TRUE(flat->CopyFrom(source.get(), false));
  EXPECT_EQ(Names(flat->GetValueNames()), "Top");
  EXPECT_EQ(Names(flat->GetSubKeyNames()), "");

  const Ref<RegistryKey> copy(m_machine->CreateSubKey("Copy"));
  EXPECT_TRUE(copy->CopyFrom(source.get(), true));
  const Ref<RegistryKey> deep(copy->OpenSubKey("Child\\Grandchild"));
  ASSERT_TRUE(deep);
  const Ref<Value> value(deep->GetValue(&name));
  const Ref<String> copied(value->GetString());
  EXPECT_EQ(TextOf(copied.get()), "deep");

  // The handles can change hands without being closed.
  HKEY handle = deep->Detach();
  RegistryKey adopter;
  adopter.Attach(handle);
  EXPECT_EQ(Names(adopter.GetValueNames()), "Text");

  RegistryKey gone(source->Detach());
  m_machine->DeleteSubKey("Source");
  EXPECT_FALSE(copy->CopyFrom(&gone, true));
  EXPECT_EQ(Failure(*copy), "1018 Error reading value names");
}

}  // namespace
}  // namespace kx
