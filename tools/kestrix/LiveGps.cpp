#include "tools/kestrix/LiveGps.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "KestrixCE.h"
#include "tools/kestrix/EpochFilter.h"
#include "tools/kestrix/EventText.h"

namespace kestrix {

namespace {

std::atomic<bool> interrupted{false};

void OnInterrupt(int) { interrupted = true; }

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

std::string ErrorText(KxNmeaParser parser) {
  BSTR text = nullptr;  // the library's: not freed
  Error_ErrDesc(NmeaParser_GetErrHandle(parser), &text);
  std::string narrow;
  for (unsigned i = 0; text && i < SysStringLen(text); ++i) narrow += char(text[i]);
  return narrow;
}

// Closes the parser when the time is up or on Ctrl-C, which releases the waiting reader.
void Watch(KxNmeaParser parser, double seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!interrupted && (seconds <= 0 || std::chrono::steady_clock::now() < end))
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  NmeaParser_Close(parser);
}

}  // namespace

int LiveGps::Run(const LiveGpsOptions& options) {
  long port = 0, baud = 0;
  if (!ReadSetting(options.port, port) || !ReadSetting(options.baud, baud)) {
    std::fprintf(stderr, "--port and --baud take a number or auto\n");
    return 2;
  }
  KxNmeaParser parser = NmeaParser_New();
  NmeaParser_SetCallbackHWND(parser, nullptr);  // the queue
  NmeaParser_SetComPort(parser, short(port));
  // With a fixed port and no speed given, the parser searches that port at both speeds.
  NmeaParser_SetBaudRate(parser, int(baud));
  NmeaParser_SetPortEnabled(parser, 1);
  if (Error_ErrNum(NmeaParser_GetErrHandle(parser)) != 0) {
    std::fprintf(stderr, "%s\n", ErrorText(parser).c_str());
    NmeaParser_Delete(parser);
    return 2;
  }
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnInterrupt);
  std::thread watcher(Watch, parser, options.seconds);
  EpochFilter filter(options.all);
  for (;;) {
    int type = 0;
    void* object = NmeaParser_GetEventData(parser, &type);
    if (!object) break;  // closed
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
