// kestrix: the library on the command line.
//
//   kestrix convert --from datum:1 --to grid:1 59.3 18.07
//   echo "6576000 674000" | kestrix convert --from grid:1 --from-zone 33 --to "WGS 84"
//   kestrix convert --list
//   kestrix replay receiver.log --grid 1 --mode queue --json
//   kestrix shp roads.shp --geometry
//   kestrix shp copy roads.shp copy.shp
//   kestrix shp copy --append more.shp roads.shp
//   kestrix simulate receiver.log --baud 57600 &   kestrix gps --grid utm
#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "tools/kestrix/Catalogue.h"
#include "tools/kestrix/Converter.h"
#include "tools/kestrix/EventText.h"
#include "tools/kestrix/LiveGps.h"
#include "tools/kestrix/Replay.h"
#include "tools/kestrix/ShpCommand.h"
#include "tools/kestrix/Simulator.h"

namespace {

struct ConvertOptions {
  std::string from, to;
  short fromZone = 0, toZone = 0;
  bool list = false;
  std::vector<std::string> coordinates;
};

// Exit codes: 0 all converted, 1 a line or more could not be converted, 2 a refused
// datum, grid or zone.
int Convert(const ConvertOptions& options) {
  if (options.list) {
    std::fputs(kestrix::Catalogue::List().c_str(), stdout);
    return 0;
  }
  const auto from = kestrix::Catalogue::Find(options.from);
  const auto to = kestrix::Catalogue::Find(options.to);
  if (!from || !to) {
    const bool gridName = (!from ? options.from : options.to).rfind("grid:", 0) == 0;
    std::fprintf(stderr, "%s\n", gridName ? "Unknown grid!" : "Unknown datum!");
    return 2;
  }
  kestrix::Converter converter({*from, options.fromZone}, {*to, options.toZone});
  const std::string refusal = converter.Check();
  if (!refusal.empty()) {
    std::fprintf(stderr, "%s\n", refusal.c_str());
    return 2;
  }
  // Each line its answer on stdout, or on stderr why not, naming the line.
  int status = 0;
  auto one = [&](const std::string& line, const std::string& where) {
    bool ok = false;
    const std::string result = converter.Convert(line, ok);
    if (ok) {
      std::printf("%s\n", result.c_str());
      return;
    }
    const size_t first = line.find_first_not_of(" \t"), last = line.find_last_not_of(" \t\r");
    const std::string shown =
        first == std::string::npos ? "" : line.substr(first, last - first + 1);
    std::fflush(stdout);  // the messages in their place among the answers
    std::fprintf(stderr, "%s\"%s\": %s\n", where.c_str(), shown.c_str(), result.c_str());
    status = 1;
  };
  if (!options.coordinates.empty()) {
    std::string line;
    for (const std::string& part : options.coordinates) line += part + " ";
    one(line, "");
    return status;
  }
  std::string line;
  for (long number = 1; std::getline(std::cin, line); ++number)
    if (line.find_first_not_of(" \t\r") != std::string::npos)
      one(line, "line " + std::to_string(number) + " ");
  return status;
}

const char* const kAllHelp =
    "print every event as delivered; by default a fix and a movement once per epoch "
    "(the GGA and the RMC of one second give one line)";

void AddGridOption(CLI::App* command, short& grid) {
  command->add_option_function<std::string>(
      "--grid",
      [&grid](const std::string& text) {
        if (!kestrix::EventText::ReadGrid(text, grid))
          throw CLI::ValidationError("--grid", "a grid id (see convert --list) or utm");
      },
      "print fixes also in this grid; utm: UTM of the fix's hemisphere (grid 1 or 2)");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"KestrixCE on the command line"};
  app.require_subcommand(1);
  ConvertOptions options;
  CLI::App* convert = app.add_subcommand(
      "convert",
      "Convert coordinates between datums and grids, one line each (arguments or stdin). "
      "A datum side reads \"lat lon [h]\" in degrees or \"59 18'7.25 N 18 4'15.5 E [h]\"; "
      "a grid side reads \"easting northing\".");
  convert->add_option("--from", options.from, "datum:N, grid:N or a name from --list");
  convert->add_option("--to", options.to, "datum:N, grid:N or a name from --list");
  convert->add_option("--zone", options.toZone, "the zone of the --to grid");
  convert->add_option("--from-zone", options.fromZone, "the zone of the --from grid");
  convert->add_flag("--list", options.list, "print the datums and grids");
  convert->add_option("coordinates", options.coordinates, "one point; else lines on stdin");
  kestrix::ReplayOptions replay;
  CLI::App* replayCommand = app.add_subcommand(
      "replay", "Feed a receiver log through the parser and print every delivered event.");
  replayCommand->add_option("log", replay.log, "the log file")->required();
  AddGridOption(replayCommand, replay.grid);
  replayCommand->add_flag("--all", replay.all, kAllHelp);
  replayCommand->add_option("--mode", replay.mode, "window (default), queue or poll");
  replayCommand->add_flag("--json", replay.json, "one JSON object per line");
  kestrix::ShpOptions shp;
  CLI::App* shpCommand = app.add_subcommand(
      "shp", "Print a shape file record by record: type, parts, nodes and bounds.");
  shpCommand->add_option("file", shp.file, "the .shp file, with or without extension");
  shpCommand->add_flag("--geometry", shp.geometry,
                       "add length, point count, area and the clean-polygon verdict");
  CLI::App* shpCopy = shpCommand->add_subcommand("copy", "Read every record, write a new file.");
  shpCopy->add_option("in", shp.copyFrom, "the file to read")->required();
  shpCopy->add_option("out", shp.copyTo, "the file to write")->required();
  shpCopy->add_flag("--append", shp.append,
                    "write behind the records the file holds (made if missing)");
  kestrix::LiveGpsOptions gps;
  CLI::App* gpsCommand = app.add_subcommand(
      "gps", "Read a live receiver and print fixes, movement, satellites and status.");
  gpsCommand->add_option("--port", gps.port, "COM port number, or auto (default)");
  gpsCommand->add_option("--baud", gps.baud, "baud rate, or auto (default)");
  AddGridOption(gpsCommand, gps.grid);
  gpsCommand->add_flag("--all", gps.all, kAllHelp);
  gpsCommand->add_flag("--json", gps.json, "one JSON object per line");
  gpsCommand->add_flag("--sentences", gps.sentences, "print every sentence too");
  gpsCommand->add_option("--seconds", gps.seconds, "stop after this long (default: Ctrl-C)");
  kestrix::SimulatorOptions simulate;
  CLI::App* simulateCommand = app.add_subcommand(
      "simulate", "Make a pseudo-terminal a COM port and play a receiver log on it.");
  simulateCommand->add_option("log", simulate.log, "the log file")->required();
  simulateCommand->add_option("--baud", simulate.baud, "speed of the receiver (4800)");
  simulateCommand->add_option("--speedup", simulate.speedup, "play this many times faster");
  simulateCommand->add_option("--port", simulate.port, "the COM port number (5)");
  simulateCommand->add_flag("--once", simulate.once, "play the log once, not over and over");
  simulateCommand->add_flag("--realtime", simulate.realtime,
                            "an epoch at a time at the pace of the recording (one a second), "
                            "not every line back to back at the pace of the baud rate");
  simulateCommand->add_option("--seconds", simulate.seconds, "stop after this long");
  CLI11_PARSE(app, argc, argv);
  if (replayCommand->parsed()) return kestrix::Replay::Run(replay, stdout);
  if (gpsCommand->parsed()) return kestrix::LiveGps::Run(gps);
  if (simulateCommand->parsed()) return kestrix::Simulator::Run(simulate);
  if (shpCopy->parsed()) return kestrix::ShpCommand::Copy(shp);
  if (shpCommand->parsed()) {
    if (shp.file.empty()) {
      std::fprintf(stderr, "shp needs a file\n");
      return 2;
    }
    return kestrix::ShpCommand::Dump(shp, stdout);
  }
  if (!options.list && (options.from.empty() || options.to.empty())) {
    std::fprintf(stderr, "convert needs --from and --to (or --list)\n");
    return 2;
  }
  return Convert(options);
}
