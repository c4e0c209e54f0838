#include "links/PortEnumerator.h"

#include <cctype>
#include <cstdlib>
#include <string>

#include "frame/Ref.h"
#include "frame/Value.h"
#include "links/RegistryKey.h"

namespace kx {

namespace {

constexpr const char* kActiveDrivers = "Drivers\\Active";
// Only so much of a driver's name counts as the port: ports above 9 count by their first
// digit.
constexpr int32_t kPortTextLength = 4;

struct Item {
  const char* text;
  int32_t id;
};

ObjectList* ListOf(std::initializer_list<Item> items) {
  auto* list = new ObjectList();
  for (const Item& item : items) {
    Ref<String> text(new String(item.text));
    text->SetID(item.id);
    list->Add(text.get());
  }
  return list;
}

bool StartsWithoutCase(const String* text, const char* prefix) {
  const int32_t length = int32_t(std::char_traits<char>::length(prefix));
  if (text->GetLength() < length) return false;
  for (int32_t i = 0; i < length; ++i)
    if (std::tolower(static_cast<unsigned char>(text->GetText()[i])) !=
        std::tolower(static_cast<unsigned char>(prefix[i])))
      return false;
  return true;
}

// A text value of the key, or null.
String* TextValue(RegistryKey* key, const char* name) {
  Ref<Value> value(key->GetValue(name));
  return value && value->GetType() == Value::kText ? value->GetString() : nullptr;
}

// "COMn" and, with names, the friendly name of the driver that the entry's "Key" names.
String* PortText(RegistryKey* machine, RegistryKey* entry, const String* name, bool withNames) {
  Ref<String> port(name->Mid(0, kPortTextLength));
  if (!withNames) return port.Detach();
  Ref<String> driverPath(TextValue(entry, "Key"));
  Ref<RegistryKey> driver(driverPath ? machine->OpenSubKey(driverPath.get()) : nullptr);
  Ref<String> friendly(driver ? TextValue(driver.get(), "FriendlyName") : nullptr);
  if (!friendly) return port.Detach();
  return new String(port.get(), Ref<String>(new String(" ")).get(), friendly.get());
}

void AddPort(ObjectList* list, RegistryKey* machine, RegistryKey* entry, bool withNames) {
  Ref<String> name(TextValue(entry, "Name"));
  if (!name || !StartsWithoutCase(name.get(), "COM")) return;
  Ref<String> text(PortText(machine, entry, name.get(), withNames));
  Ref<String> port(name->Mid(0, kPortTextLength));
  const int32_t number = PortEnumerator::ParsePortNumber(port.get());
  if (list->ContainsID(number)) return;
  text->SetID(number);
  list->InsertSorted(text.get(), number);
}

}  // namespace

ObjectList* PortEnumerator::ListPorts(bool withNames) {
  auto* list = new ObjectList();
  Ref<RegistryKey> machine(RegistryKey::LocalMachine());
  Ref<RegistryKey> active(machine->OpenSubKey(kActiveDrivers));
  Ref<ObjectList> entries(active ? active->GetSubKeyNames() : nullptr);
  if (!entries) return list;
  for (int32_t i = 1; i <= entries->GetCount(); ++i) {
    Ref<String> entryName(static_cast<String*>(entries->GetItem(i)));
    Ref<RegistryKey> entry(active->OpenSubKey(entryName.get()));
    if (entry) AddPort(list, machine.get(), entry.get(), withNames);
  }
  return list;
}

ObjectList* PortEnumerator::ListAllPorts(int32_t highestPort) {
  Ref<ObjectList> active(ListActivePorts());
  auto* list = new ObjectList();
  for (int32_t port = 1; port <= highestPort; ++port) {
    if (active->ContainsID(port)) continue;
    Ref<String> name(PortName(port, false));
    name->SetID(port);
    list->Add(name.get());
  }
  return list;
}

String* PortEnumerator::PortName(int32_t port, bool deviceForm) {
  const std::string name = "COM" + std::to_string(port) + (deviceForm ? ":" : "");
  return new String(name.c_str());
}

int32_t PortEnumerator::ParsePortNumber(const String* name) {
  if (!name || name->GetLength() < 4) return -1;
  int32_t start;
  if (StartsWithoutCase(name, "COM"))
    start = 3;
  else if (StartsWithoutCase(name, "\\\\.\\COM"))
    start = 7;
  else
    return -1;
  return int32_t(std::strtol(name->GetText() + start, nullptr, 10));
}

bool PortEnumerator::IsValidBaudRate(uint32_t baudRate) {
  for (const uint32_t rate : {0u, 110u, 300u, 600u, 1200u, 2400u, 4800u, 9600u, 14400u, 19200u,
                              38400u, 56000u, 57600u, 115200u, 128000u, 256000u})
    if (rate == baudRate) return true;
  return false;
}

ObjectList* PortEnumerator::ListBaudRates() {
  return ListOf({{"4800", 4800},
                 {"9600", 9600},
                 {"14400", 14400},
                 {"19200", 19200},
                 {"38400", 38400},
                 {"57600", 57600}});
}

ObjectList* PortEnumerator::ListHandshakes() {
  return ListOf({{"None", 0}, {"RTS", 1}, {"DTR", 2}, {"XonXoff", 4}});
}

ObjectList* PortEnumerator::ListParities() {
  return ListOf({{"No", 0}, {"Odd", 1}, {"Even", 2}, {"Mark", 3}, {"Space", 4}});
}

ObjectList* PortEnumerator::ListStopBits() {
  return ListOf({{"One", 0}, {"OneAndOneHalf", 1}, {"Two", 2}});
}

ObjectList* PortEnumerator::ListByteSizes() { return ListOf({{"7", 7}, {"8", 8}}); }

}  // namespace kx
