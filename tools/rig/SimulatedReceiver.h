// A receiver at the device's end of a line: a thread that says the lines of a script one
// after the other, each taking the time its bytes need on the wire at the receiver's speed
// (ten bits a byte), divided by a speed-up, with silences between them where the script
// asks for them (a receiver says an epoch's sentences at once, then waits for the next).
// Like a real receiver it is heard only while the port runs at its speed: at another
// speed the script waits, as what it said would arrive garbled. When the port comes to its
// speed the receiver starts a moment later, with the next line, so that the port's own
// purge doesn't take a line away.
#pragma once

#include <termios.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "tools/rig/PseudoTerminal.h"

namespace kxrig {

class SimulatedReceiver {
 public:
  // The n-th line heard, counting from 0, with its CR LF; an empty line ends the script.
  using Script = std::function<std::string(int64_t)>;
  // The seconds of silence before the n-th line, divided by the speed-up as well.
  using Pause = std::function<double(int64_t)>;

  SimulatedReceiver(PseudoTerminal& line, int baud, Script script, double speedup = 1,
                    Pause pause = nullptr)
      : m_line(line),
        m_speed(SpeedOf(baud)),
        m_secondsPerByte(10.0 / baud / speedup),
        m_speedup(speedup),
        m_script(std::move(script)),
        m_pause(std::move(pause)),
        m_thread([this] { Run(); }) {}
  ~SimulatedReceiver() { Stop(); }
  SimulatedReceiver(const SimulatedReceiver&) = delete;
  SimulatedReceiver& operator=(const SimulatedReceiver&) = delete;

  // Ends the thread; lines said so far stay said.
  void Stop() {
    {
      std::lock_guard<std::mutex> lock(m_mutex);
      m_stop = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable()) m_thread.join();
  }
  // A muted receiver says nothing, as one without power.
  void SetMuted(bool muted) { m_muted = muted; }
  // Lines that went onto the line whole.
  int64_t Sent() const { return m_sent; }
  bool Finished() const { return m_finished; }

  static speed_t SpeedOf(int baud) {
    switch (baud) {
      case 4800:
        return B4800;
      case 9600:
        return B9600;
      case 19200:
        return B19200;
      case 38400:
        return B38400;
      case 57600:
        return B57600;
      case 115200:
        return B115200;
      default:
        return B0;
    }
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr auto kLook = std::chrono::milliseconds(10);    // for the port's speed
  static constexpr auto kStart = std::chrono::milliseconds(100);  // once heard

  void Run() {
    bool heard = false;
    int64_t pausedBefore = -1;
    auto next = Clock::now();
    while (!m_finished) {
      if (m_muted || m_line.Speed() != m_speed) {
        heard = false;
        if (!SleepUntil(Clock::now() + kLook)) return;
        continue;
      }
      if (!heard) {
        heard = true;
        next = Clock::now() + kStart;
        if (!SleepUntil(next)) return;
      }
      const std::string text = m_script(m_sent);
      if (text.empty()) {
        m_finished = true;
        break;
      }
      if (m_pause && pausedBefore != m_sent) {
        pausedBefore = m_sent;
        next += Seconds(m_pause(m_sent) / m_speedup);
        if (!SleepUntil(next)) return;
        continue;  // the port may have changed its speed meanwhile
      }
      if (m_line.Send(text)) ++m_sent;
      next += Seconds(double(text.size()) * m_secondsPerByte);
      if (!SleepUntil(next)) return;
    }
  }
  static Clock::duration Seconds(double seconds) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  }
  // False when told to stop.
  bool SleepUntil(Clock::time_point when) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_wake.wait_until(lock, when, [this] { return m_stop; });
  }

  PseudoTerminal& m_line;
  const speed_t m_speed;
  const double m_secondsPerByte;
  const double m_speedup;
  const Script m_script;
  const Pause m_pause;
  std::mutex m_mutex;
  std::condition_variable m_wake;
  bool m_stop = false;
  std::atomic<bool> m_muted{false};
  std::atomic<bool> m_finished{false};
  std::atomic<int64_t> m_sent{0};
  std::thread m_thread;  // last: starts when all else is ready
};

}  // namespace kxrig
