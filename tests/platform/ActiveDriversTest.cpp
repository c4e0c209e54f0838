// The serial devices of the machine among the active drivers: numbered around the
// entries that were written, renewed on every look, and never written to the file.
#include <gtest/gtest.h>

#include <string>

#include "platform/posix/ActiveDrivers.h"
#include "platform/posix/RegistryText.h"
#include "platform/posix/WideText.h"

namespace {

using platform::RegistryNode;
using platform::SerialDeviceFound;

std::vector<BYTE> Text(const std::string& utf8) {
  std::vector<BYTE> data;
  for (const char16_t c : platform::FromUtf8(utf8)) {
    data.push_back(BYTE(c));
    data.push_back(BYTE(c >> 8));
  }
  data.insert(data.end(), {0, 0});
  return data;
}

std::string TextOf(const RegistryNode* entry, const char16_t* name) {
  const platform::RegistryValue* value = entry ? entry->Value(name) : nullptr;
  if (!value) return "(none)";
  std::u16string text;
  for (size_t i = 0; i + 1 < value->data.size() && (value->data[i] || value->data[i + 1]); i += 2)
    text += char16_t(value->data[i] | value->data[i + 1] << 8);
  return platform::ToUtf8(text);
}

class ActiveDrivers : public ::testing::Test {
 protected:
  ActiveDrivers() : m_top(u"") {
    for (const char16_t* root :
         {u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER", u"HKEY_LOCAL_MACHINE", u"HKEY_USERS"})
      m_top.AddChild(root);
    m_machine = m_top.Child(u"HKEY_LOCAL_MACHINE");
  }
  RegistryNode* Written(const char16_t* entry, const std::string& name, const std::string& path) {
    RegistryNode* node = m_machine->AddChild(u"Drivers")->AddChild(u"Active")->AddChild(entry);
    node->SetValue(u"Name", REG_SZ, Text(name));
    if (!path.empty()) node->SetValue(u"DevicePath", REG_SZ, Text(path));
    return node;
  }
  const RegistryNode* Entry(const char16_t* name) {
    return m_machine->Child(u"Drivers")->Child(u"Active")->Child(name);
  }

  RegistryNode m_top;
  RegistryNode* m_machine;
};

const std::vector<SerialDeviceFound> kDevices = {
    {"ttyS0", "/dev/ttyS0", ""},
    {"ttyUSB0", "/dev/ttyUSB0", "u-blox GNSS receiver"},
    {"ttyACM0", "/dev/ttyACM0", ""},
    {"rfcomm0", "/dev/rfcomm0", ""},
};

TEST_F(ActiveDrivers, DevicesTakeThePortsThatWrittenEntriesLeaveFree) {
  Written(u"01", "COM1:", "/dev/pts/4");
  Written(u"02", "COM3:", "/dev/ttyACM0");  // this device is spoken for already
  platform::MergeActiveDrivers(*m_machine, kDevices);
  EXPECT_EQ(TextOf(Entry(u"ttyS0"), u"Name"), "COM2:");
  EXPECT_EQ(TextOf(Entry(u"ttyUSB0"), u"Name"), "COM4:");
  EXPECT_EQ(TextOf(Entry(u"rfcomm0"), u"Name"), "COM5:");
  EXPECT_EQ(Entry(u"ttyACM0"), nullptr);
  EXPECT_EQ(TextOf(Entry(u"ttyUSB0"), u"DevicePath"), "/dev/ttyUSB0");
  EXPECT_EQ(TextOf(Entry(u"ttyUSB0"), u"Key"), "Drivers\\Active\\ttyUSB0");
  EXPECT_EQ(TextOf(Entry(u"ttyUSB0"), u"FriendlyName"), "u-blox GNSS receiver (/dev/ttyUSB0)");
  EXPECT_EQ(TextOf(Entry(u"ttyS0"), u"FriendlyName"), "/dev/ttyS0");
  EXPECT_EQ(TextOf(Entry(u"01"), u"Name"), "COM1:");
}

// The automatic search never tries COM3: a third device there would never be found.
TEST_F(ActiveDrivers, NoDeviceIsNumberedOntoTheUnsearchedComThree) {
  platform::MergeActiveDrivers(*m_machine, kDevices);
  EXPECT_EQ(TextOf(Entry(u"ttyS0"), u"Name"), "COM1:");
  EXPECT_EQ(TextOf(Entry(u"ttyUSB0"), u"Name"), "COM2:");
  EXPECT_EQ(TextOf(Entry(u"ttyACM0"), u"Name"), "COM4:");
  EXPECT_EQ(TextOf(Entry(u"rfcomm0"), u"Name"), "COM5:");
  Written(u"by-hand", "COM3:", "/dev/serial/by-id/usb-gps");  // where a user may put one
  platform::MergeActiveDrivers(*m_machine, kDevices);
  EXPECT_EQ(TextOf(Entry(u"ttyACM0"), u"Name"), "COM4:");
}

TEST_F(ActiveDrivers, EachLookRenewsTheDevicesAndTheFileKeepsOnlyWhatWasWritten) {
  platform::MergeActiveDrivers(*m_machine, kDevices);
  EXPECT_EQ(platform::RegistryText::Write(m_top).find("tty"), std::string::npos);
  EXPECT_EQ(platform::RegistryText::Write(m_top).find("Drivers"), std::string::npos);

  // A device unplugged is gone from the next look; one written beside them stays, and
  // the file holds it under its whole path.
  Written(u"pty", "COM7:", "/dev/pts/9");
  platform::MergeActiveDrivers(*m_machine, {kDevices[1]});
  EXPECT_EQ(Entry(u"ttyS0"), nullptr);
  EXPECT_EQ(TextOf(Entry(u"ttyUSB0"), u"Name"), "COM1:");
  const std::string file = platform::RegistryText::Write(m_top);
  EXPECT_NE(file.find("[HKEY_LOCAL_MACHINE\\Drivers\\Active\\pty]\n\"Name\"=\"COM7:\""),
            std::string::npos);
  EXPECT_EQ(file.find("ttyUSB0"), std::string::npos);
}

}  // namespace
