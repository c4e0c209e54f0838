#include "tools/kestrix/LiveGps.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "KestrixCE.h"
#include "tools/kestrix/ComPorts.h"
#include "tools/kestrix/EpochFilter.h"
#include "tools/kestrix/EventText.h"

namespace kestrix {

namespace {

std::atomic<bool> interrupted{false};

void OnInterrupt(int) { interrupted = true; }

// The first search round takes 4 seconds (2 at each speed); a note that nothing answered
// follows it, then one every half minute while that stays so.
constexpr auto kFirstNote = std::chrono::seconds(5);
constexpr auto kLaterNotes = std::chrono::seconds(30);

// "auto" is 0, what the parser takes as "find it"; anything else must be a number.
bool ReadSetting(const std::string& text, long& value) {
  if (text == "auto") {
    value = 0;
    return true;
  }
  char* end = nullptr;
  value = std::strtol(text.c_str(), &end, 10);
  return !text.empty() && *end == '\0' && value > 0;
}

// "error 10007: Comm port does not exist"; empty when the last call succeeded.
std::string Failure(KxNmeaParser parser) {
  KxError error = NmeaParser_GetErrHandle(parser);
  const short number = Error_ErrNum(error);
  if (number == 0) return "";
  BSTR text = Error_ErrDesc(error, nullptr);  // the library's: not freed
  std::string narrow;
  for (unsigned i = 0; text && i < SysStringLen(text); ++i) narrow += char(text[i]);
  return "error " + std::to_string(number) + ": " + narrow;
}

std::string PortText(const ComPort& port) {
  return "COM" + std::to_string(port.number) + " (" + port.device + ")";
}

// The library opens a fixed port on the caller's thread only at a fixed speed, and only
// then says why it won't open: with the speed to be found, the port is opened once at
// 4800 baud first, so that a missing or refused port is told at once.
std::string OpenFailure(long port) {
  KxNmeaParser probe = NmeaParser_New();
  NmeaParser_SetComPort(probe, short(port));
  NmeaParser_SetBaudRate(probe, 4800);
  NmeaParser_SetPortEnabled(probe, 1);
  const std::string failure = Failure(probe);
  NmeaParser_Delete(probe);
  return failure;
}

// What failed, in one line, and when the device refuses this user, what they can do.
void ReportOpenFailure(long port, const std::string& failure) {
  std::fprintf(stderr, "kestrix gps: COM%ld: %s\n", port, failure.c_str());
  const auto found = ComPorts::Find(int(port));
  const std::string refusal = found ? ComPorts::Refusal(found->device) : "";
  if (!refusal.empty()) std::fprintf(stderr, "kestrix gps: %s\n", refusal.c_str());
}

// The ports listened to, "COM1 (/dev/ttyS0), COM5 (/dev/pts/3)": the fixed one, or those
// of an automatic search, which leaves COM3 out. Empty when a search has none yet.
std::string PortsText(long port) {
  if (port) {
    const auto found = ComPorts::Find(int(port));
    return found ? PortText(*found) : "COM" + std::to_string(port);
  }
  std::string ports;
  for (const ComPort& known : ComPorts::Known())
    if (known.number != 3) ports += (ports.empty() ? "" : ", ") + PortText(known);
  return ports;
}

std::string SpeedsText(long baud) {
  return (baud ? std::to_string(baud) : std::string("4800 and 57600")) + " baud";
}

// In an automatic search, the ports this user may not open, which the search passes over
// without a word.
void ReportRefusedPorts() {
  for (const ComPort& known : ComPorts::Known()) {
    const std::string refusal = ComPorts::Refusal(known.device);
    if (known.number != 3 && !refusal.empty())
      std::fprintf(stderr, "kestrix gps: COM%d: %s\n", known.number, refusal.c_str());
  }
}

// Closes the parser when the time is up or on Ctrl-C, which releases the waiting reader.
// Until a receiver has answered, says so from time to time, with the ports of the moment.
void Watch(KxNmeaParser parser, const LiveGpsOptions& options, long port, long baud,
           const std::atomic<bool>& answered) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const auto end = start + std::chrono::duration_cast<Clock::duration>(
                               std::chrono::duration<double>(options.seconds));
  auto note = start + kFirstNote;
  while (!interrupted && (options.seconds <= 0 || Clock::now() < end)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    if (answered || Clock::now() < note) continue;
    const std::string ports = PortsText(port);
    if (ports.empty())
      std::fprintf(stderr, "kestrix gps: no COM port is there yet\n");
    else
      std::fprintf(stderr, "kestrix gps: no receiver has answered yet on %s at %s\n", ports.c_str(),
                   SpeedsText(baud).c_str());
    note += kLaterNotes;
  }
  NmeaParser_Close(parser);
}

}  // namespace

int LiveGps::Run(const LiveGpsOptions& options) {
  long port = 0, baud = 0;
  if (!ReadSetting(options.port, port) || !ReadSetting(options.baud, baud) || port > 0x7FFF) {
    std::fprintf(stderr, "--port and --baud take a number or auto\n");
    return 2;
  }
  if (port && !baud) {
    const std::string failure = OpenFailure(port);
    if (!failure.empty()) {
      ReportOpenFailure(port, failure);
      return 2;
    }
  }
  KxNmeaParser parser = NmeaParser_New();
  NmeaParser_SetCallbackHWND(parser, nullptr);  // the queue
  NmeaParser_SetComPort(parser, short(port));
  // With a fixed port and no speed given, the parser searches that port at both speeds.
  NmeaParser_SetBaudRate(parser, int(baud));
  NmeaParser_SetPortEnabled(parser, 1);
  const std::string failure = Failure(parser);
  if (!failure.empty()) {
    ReportOpenFailure(port, failure);
    NmeaParser_Delete(parser);
    return 2;
  }
  const std::string ports = PortsText(port), speeds = SpeedsText(baud);
  if (port)
    std::fprintf(stderr, "kestrix gps: listening on %s at %s\n", ports.c_str(), speeds.c_str());
  else if (ports.empty())
    std::fprintf(stderr,
                 "kestrix gps: searching for a receiver at %s; no COM port is there yet, and "
                 "the search goes on until one is\n",
                 speeds.c_str());
  else
    std::fprintf(stderr, "kestrix gps: searching %s at %s (COM3 is never searched)\n",
                 ports.c_str(), speeds.c_str());
  if (!port) ReportRefusedPorts();
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnInterrupt);
  std::atomic<bool> answered{false};
  std::thread watcher(Watch, parser, std::cref(options), port, baud, std::cref(answered));
  EpochFilter filter(options.all);
  for (;;) {
    int type = 0;
    void* object = NmeaParser_GetEventData(parser, &type);
    if (!object) break;  // closed
    if (type == KX_EVENT_STATUS && ComStatus_GetValidNmea(static_cast<KxComStatus>(object)))
      answered = true;
    if ((type != KX_EVENT_SENTENCE || options.sentences) && filter.Admits(type, object)) {
      std::printf("%s\n", EventText::Describe(type, object, options.grid, options.json).c_str());
      std::fflush(stdout);
    }
    EventText::Release(type, object);
  }
  watcher.join();
  NmeaParser_Delete(parser);
  return 0;
}

}  // namespace kestrix
