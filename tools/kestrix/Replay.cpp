#include "tools/kestrix/Replay.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>

#include "KestrixCE.h"
#include "tools/kestrix/EpochFilter.h"
#include "tools/kestrix/EventText.h"

namespace kestrix {

namespace {

// Marks the end of one line's events in queue mode: its own sentence event comes last.
const char* const kSentinel = "$PKXSYNC*44\r\n";

// Each byte one character, 0x80 to 0xFF included.
std::u16string Wide(const std::string& bytes) {
  std::u16string text;
  for (const char byte : bytes) text += char16_t(static_cast<unsigned char>(byte));
  return text;
}

bool IsSentinel(int type, void* object) {
  if (type != KX_EVENT_SENTENCE) return false;
  BSTR text = nullptr;
  NmeaSentence_GetSentence(static_cast<KxNmeaSentence>(object), &text);
  const bool sentinel = text && SysStringLen(text) == 11 && text[1] == u'P' && text[3] == u'X';
  SysFreeString(text);
  return sentinel;
}

class Session {
 public:
  Session(const ReplayOptions& options, std::FILE* out) : m_options(options), m_out(out) {}
  ~Session() {
    for (auto& [type, object] : m_polled) EventText::Release(type, object);
    NmeaParser_Delete(m_parser);
    if (m_window) DestroyWindow(m_window);
  }

  bool Start() {
    if (m_options.mode == "window") return StartWindow();
    if (m_options.mode == "queue") {
      NmeaParser_SetCallbackHWND(m_parser, nullptr);
      return true;
    }
    if (m_options.mode == "poll") {
      NmeaParser_SetNoEvents(m_parser, 1);
      return true;
    }
    std::fprintf(stderr, "unknown mode %s: window, queue or poll\n", m_options.mode.c_str());
    return false;
  }

  // The bytes of a line as a receiver sent them. Wide text ends at its first NUL, which
  // binary receivers mix in: the bytes on either side of one go in one after the other,
  // and the parser finds the sentences among them as among any other noise.
  void Feed(const std::string& line) {
    for (size_t start = 0, end = 0; start < line.size(); start = end + 1) {
      end = std::min(line.find('\0', start), line.size());
      if (end > start) NmeaParser_Parse(m_parser, Wide(line.substr(start, end - start)).c_str());
    }
    if (m_options.mode == "window") return DrainWindow();
    if (m_options.mode == "queue") return DrainQueue();
    DrainPolls();
  }

 private:
  bool StartWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.lpszClassName = u"KestrixReplay";
    RegisterClassW(&windowClass);
    m_window = CreateWindowExW(0, u"KestrixReplay", u"", 0, 0, 0, 0, 0, nullptr, nullptr,
                               GetModuleHandleW(nullptr), nullptr);
    NmeaParser_SetCallbackHWND(m_parser, m_window);
    return m_window != nullptr;
  }

  void Print(int type, void* object) {
    if (!m_filter.Admits(type, object)) return;
    std::fprintf(m_out, "%s\n",
                 EventText::Describe(type, object, m_options.grid, m_options.json).c_str());
  }

  void DrainWindow() {
    MSG message;
    while (PeekMessageW(&message, m_window, 0, 0, PM_REMOVE)) {
      if (message.message != KX_NMEA_MESSAGE) continue;
      void* object = reinterpret_cast<void*>(message.lParam);
      Print(int(message.wParam), object);
      EventText::Release(int(message.wParam), object);
    }
  }

  void DrainQueue() {
    NmeaParser_Parse(m_parser, Wide(kSentinel).c_str());
    for (;;) {
      int type = 0;
      void* object = NmeaParser_GetEventData(m_parser, &type);
      if (!object) return;
      const bool end = IsSentinel(type, object);
      if (!end) Print(type, object);
      EventText::Release(type, object);
      if (end) return;
    }
  }

  // The newest object of each kind, printed when it differs from the one printed before.
  void DrainPolls() {
    Poll(KX_EVENT_FIX, NmeaParser_GetGpsFix(m_parser, 0, 0));
    Poll(KX_EVENT_MOVEMENT, NmeaParser_GetMovement(m_parser, 0));
    Poll(KX_EVENT_QUALITY, NmeaParser_GetQuality(m_parser, 0));
    Poll(KX_EVENT_SATELLITES, NmeaParser_GetSatellites(m_parser, 0));
  }

  void Poll(int type, void* object) {
    if (!object) return;
    void*& last = m_polled[type];
    if (object == last) {
      EventText::Release(type, object);
      return;
    }
    Print(type, object);
    if (last) EventText::Release(type, last);
    last = object;  // kept, so that its address can't be reused by a newer one
  }

  const ReplayOptions& m_options;
  std::FILE* m_out;
  KxNmeaParser m_parser = NmeaParser_New();
  HWND m_window = nullptr;
  std::map<int, void*> m_polled;
  EpochFilter m_filter{m_options.all};
};

}  // namespace

int Replay::Run(const ReplayOptions& options, std::FILE* out) {
  std::ifstream file(options.log, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", options.log.c_str());
    return 2;
  }
  Session session(options, out);
  if (!session.Start()) return 2;
  // A log stores lines with LF or with CR LF; a sentence ends with CR LF on the wire.
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    session.Feed(line + "\r\n");
  }
  return 0;
}

}  // namespace kestrix
