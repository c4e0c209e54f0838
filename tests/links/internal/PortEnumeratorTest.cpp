// The active ports as the registry lists them, the names of ports, and starting programs.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "frame/Ref.h"
#include "links/AppLauncher.h"
#include "links/PortEnumerator.h"
#include "links/RegistryKey.h"
#include "tests/support/TempDirectory.h"

namespace {

using kx::ObjectList;
using kx::PortEnumerator;
using kx::Ref;
using kx::RegistryKey;
using kx::String;

// "text=ID" of every item, with commas between.
std::string Items(ObjectList* list) {
  Ref<ObjectList> held(list);
  std::string text;
  for (int32_t i = 1; i <= held->GetCount(); ++i) {
    Ref<String> item(static_cast<String*>(held->GetItem(i)));
    if (i > 1) text += ",";
    text += std::string(item->GetText(), size_t(item->GetLength())) + "=" +
            std::to_string(item->GetID());
  }
  return text;
}

int32_t Parse(const char* name) {
  Ref<String> text(name ? new String(name) : nullptr);
  return PortEnumerator::ParsePortNumber(text.get());
}

class PortEnumeratorTest : public ::testing::Test {
 protected:
  void Driver(const char* entry, const char* name, const char* key = nullptr) {
    Ref<RegistryKey> driver(
        m_machine->CreateSubKey((std::string("Drivers\\Active\\") + entry).c_str()));
    if (name)
      driver->SetValue(Ref<String>(new String("Name")).get(), Ref<String>(new String(name)).get());
    if (key)
      driver->SetValue(Ref<String>(new String("Key")).get(), Ref<String>(new String(key)).get());
  }

  kxtest::PrivateRegistry m_registry;
  Ref<RegistryKey> m_machine{RegistryKey::LocalMachine()};
};

TEST_F(PortEnumeratorTest, ActivePortsComeSortedOnceEachWithTheirDriversNames) {
  Ref<RegistryKey> serial(m_machine->CreateSubKey("Drivers\\BuiltIn\\Serial"));
  serial->SetValue(Ref<String>(new String("FriendlyName")).get(),
                   Ref<String>(new String("Serial Cable on COM1:")).get());
  Driver("01", "COM7:");
  Driver("02", "COM1:", "Drivers\\BuiltIn\\Serial");
  Driver("03", "com1:");                   // a second driver of COM1
  Driver("04", "BTD0:");                   // not a port
  Driver("05", nullptr);                   // no name at all
  Driver("06", "COM3:", "Drivers\\None");  // a driver key with no friendly name
  Driver("07", "COM12:");                  // only "COM1" of it counts
  Ref<RegistryKey> numbered(m_machine->CreateSubKey("Drivers\\Active\\08"));
  numbered->SetValue("Name", 5);  // a name that isn't text

  EXPECT_EQ(Items(PortEnumerator::ListActivePorts()), "COM1 Serial Cable on COM1:=1,COM3=3,COM7=7");
  EXPECT_EQ(Items(PortEnumerator::ListPorts(false)), "COM1=1,COM3=3,COM7=7");
  EXPECT_EQ(Items(PortEnumerator::ListAllPorts(8)), "COM2=2,COM4=4,COM5=5,COM6=6,COM8=8");
}

TEST_F(PortEnumeratorTest, WithoutActiveDriversTheListsHoldEveryPort) {
  EXPECT_EQ(Items(PortEnumerator::ListActivePorts()), "");
  EXPECT_EQ(Items(PortEnumerator::ListAllPorts(3)), "COM1=1,COM2=2,COM3=3");
}

TEST(PortNames, NamesAndNumbers) {
  EXPECT_EQ(Parse("COM7"), 7);
  EXPECT_EQ(Parse("com7:"), 7);
  EXPECT_EQ(Parse("\\\\.\\COM7"), 7);
  EXPECT_EQ(Parse("COMX"), 0);  // no digits
  EXPECT_EQ(Parse("COM"), -1);
  EXPECT_EQ(Parse("LPT1"), -1);
  EXPECT_EQ(Parse(nullptr), -1);
  Ref<String> device(PortEnumerator::PortName(3, true));
  Ref<String> plain(PortEnumerator::PortName(3, false));
  EXPECT_STREQ(device->GetText(), "COM3:");
  EXPECT_STREQ(plain->GetText(), "COM3");
  EXPECT_TRUE(PortEnumerator::IsValidBaudRate(57600));
  EXPECT_FALSE(PortEnumerator::IsValidBaudRate(57601));
  EXPECT_EQ(Items(PortEnumerator::ListStopBits()), "One=0,OneAndOneHalf=1,Two=2");
}

TEST(AppLauncher, StartsAProgramWithItsParametersAndDoesNotWait) {
  kxtest::TempDirectory directory;
  const std::string made = directory / "made by the program";
  const std::string parameters = "-c \"sleep 0.1; echo started > '" + made + "'\"";
  Ref<kx::AppLauncher> launcher(new kx::AppLauncher());
  const auto start = std::chrono::steady_clock::now();
  launcher->Launch(Ref<String>(new String("/bin/sh")).get(),
                   Ref<String>(new String(parameters.c_str())).get());
  EXPECT_FALSE(launcher->Error().Failed());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
  for (int i = 0; i < 100 && !std::filesystem::exists(made); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_TRUE(std::filesystem::exists(made));

  launcher->Launch(Ref<String>(new String("no-such-program-anywhere")).get(), nullptr);
  EXPECT_EQ(launcher->Error().GetNumber(), 2);
  EXPECT_STREQ(launcher->Error().GetText(), "Failed to launch application");
  launcher->Launch(nullptr, nullptr);
  EXPECT_FALSE(launcher->Error().Failed());
}

}  // namespace
