// GPS input over the real receiver logs of tests/data/nmea, concatenated: (a) the bare
// splitter, (b) sentences to decoded values and snapshot objects, (c) the whole path
// through NmeaParser_Parse into the event queue; beside it gpsd's gpsdecode on the same
// bytes as a whole process, when it is installed.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "KestrixCE.h"
#include "frame/Ref.h"
#include "gps/GpsFix.h"
#include "gps/Movement.h"
#include "gps/Quality.h"
#include "gps/Satellites.h"
#include "gps/SentenceSplitter.h"

namespace {

// The logs with CR LF line ends, as a port delivers them.
struct Corpus {
  std::string bytes;
  std::u16string wide;
  int64_t lines = 0;
};

const Corpus& Logs() {
  static const Corpus corpus = [] {
    Corpus c;
    for (const auto& entry : std::filesystem::directory_iterator(KX_NMEA_LOGS)) {
      if (entry.path().extension() != ".log") continue;
      std::ifstream file(entry.path(), std::ios::binary);
      std::string line;
      while (std::getline(file, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        c.bytes += line + "\r\n";
        ++c.lines;
      }
    }
    c.wide.assign(c.bytes.begin(), c.bytes.end());
    return c;
  }();
  return corpus;
}

template <class OnSentence>
int64_t Split(kx::SentenceSplitter& splitter, const std::string& bytes, OnSentence&& on) {
  int64_t found = 0;
  constexpr size_t kChunk = 256;  // what a port read hands over
  for (size_t at = 0; at < bytes.size(); at += kChunk) {
    const size_t length = std::min(kChunk, bytes.size() - at);
    splitter.WriteBytes(reinterpret_cast<const uint8_t*>(bytes.data() + at), int32_t(length));
    while (splitter.FindSentence()) {
      ++found;
      on();
    }
  }
  return found;
}

void BareSplitter(benchmark::State& state) {
  const Corpus& logs = Logs();
  int64_t sentences = 0;
  for (auto _ : state) {
    kx::SentenceSplitter splitter;
    sentences += Split(splitter, logs.bytes, [] {});
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(logs.bytes.size()));
  state.counters["sentences"] = benchmark::Counter(double(sentences), benchmark::Counter::kIsRate);
}
BENCHMARK(BareSplitter)->Unit(benchmark::kMillisecond);

// What the engine makes of each sentence, without delivering it.
void Decode(kx::NmeaSentence* sentence, kx::Satellites*& satellites) {
  using kx::NmeaSentence;
  switch (sentence->GetType()) {
    case NmeaSentence::kRMC:
    case NmeaSentence::kVTG:
      kx::Ref<kx::Movement>(new kx::Movement(sentence));
      if (sentence->GetType() == NmeaSentence::kVTG) break;
      [[fallthrough]];
    case NmeaSentence::kGLL:
    case NmeaSentence::kGGA:
      kx::Ref<kx::GpsFix>(new kx::GpsFix(sentence, 1, nullptr, nullptr));
      break;
    case NmeaSentence::kGSA:
      kx::Ref<kx::Quality>(new kx::Quality(sentence));
      [[fallthrough]];
    case NmeaSentence::kGSV:
      if (satellites->Update(sentence))
        kx::ReleaseObject(satellites), satellites = new kx::Satellites();
      break;
    default:
      break;
  }
}

void SentencesToValues(benchmark::State& state) {
  const Corpus& logs = Logs();
  int64_t sentences = 0;
  for (auto _ : state) {
    kx::SentenceSplitter splitter;
    auto* satellites = new kx::Satellites();
    sentences += Split(splitter, logs.bytes, [&] {
      kx::Ref<kx::NmeaSentence> sentence(splitter.GetSentence());
      Decode(sentence.get(), satellites);
    });
    kx::ReleaseObject(satellites);
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(logs.bytes.size()));
  state.counters["sentences"] = benchmark::Counter(double(sentences), benchmark::Counter::kIsRate);
}
BENCHMARK(SentencesToValues)->Unit(benchmark::kMillisecond);

void ParserToQueue(benchmark::State& state) {
  const Corpus& logs = Logs();
  int64_t sentences = 0;
  for (auto _ : state) {
    KxNmeaParser parser = NmeaParser_New();
    NmeaParser_SetCallbackHWND(parser, nullptr);
    constexpr size_t kChunk = 256;  // the hand parser's ring holds 512 bytes
    for (size_t at = 0; at < logs.wide.size(); at += kChunk)
      NmeaParser_Parse(parser, logs.wide.substr(at, kChunk).c_str());
    state.PauseTiming();
    NmeaParser_Delete(parser);
    state.ResumeTiming();
    sentences += logs.lines;
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(logs.bytes.size()));
  state.counters["lines"] = benchmark::Counter(double(sentences), benchmark::Counter::kIsRate);
}
BENCHMARK(ParserToQueue)->Unit(benchmark::kMillisecond);

// gpsdecode as a whole process on the same bytes, timed by the wall clock.
void GpsdecodeProcess(benchmark::State& state) {
  const Corpus& logs = Logs();
  const std::string path = std::filesystem::temp_directory_path() / "kx_bench_nmea.log";
  std::ofstream(path, std::ios::binary) << logs.bytes;
  if (std::system("command -v gpsdecode >/dev/null 2>&1") != 0) {
    state.SkipWithError("gpsdecode not installed (Debian gpsd-clients)");
    return;
  }
  const std::string command = "gpsdecode < " + path + " > /dev/null";
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    if (std::system(command.c_str()) != 0) state.SkipWithError("gpsdecode failed");
    state.SetIterationTime(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(logs.bytes.size()));
  state.counters["lines"] =
      benchmark::Counter(double(logs.lines * state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(GpsdecodeProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
