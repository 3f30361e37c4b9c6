#include "app/commands/pair_command.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/options/option_values.h"
#include "app/platform.h"
#include "app/terminal/output.h"
#include "host/pair/pair.h"
#include "host/pair/paired_shoot.h"
#include "host/recording/pose_formats.h"
#include "host/silenced_stdout.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

constexpr const char* kPairFooter = R"(Examples:
  trackedcam pair --camera-poses cam.txt --chart-poses chart.txt \
      --frames frames --times frames/times.csv \
      --board 9x6 --square 0.03 --out shoot
  trackedcam calibrate --config shoot/shoot.toml
  Poses in a table of another program:
    trackedcam pair --camera-poses cam.csv --chart-poses chart.csv \
        --columns time=t,x=px,y=py,z=pz,qw=w,qx=x,qy=y,qz=z --pose-unit mm \
        --frames frames --fps 50 --board 9x6 --square 30mm --out shoot

The clocks need not agree. Nod the camera three times at the beginning.

Exit status: 0 done, 1 a file could not be written, 2 wrong usage, or a
recording that cannot be paired.)";

struct PairOptions {
  std::filesystem::path cameraPoses, chartPoses, frames, times, out;
  bool chartFixed = false;
  double framesPerSecond = 0;
  host::PoseFormat format;
  std::array<int, 2> board = {};
  double square = 0;
  int photographs = 40;
  host::ShootSettings settings;
};

double ParseRate(const std::string& option, const std::string& text) {
  const auto rate = host::ParseNumber(text);
  if (!rate || !(*rate > 0 && *rate <= 10000)) {
    throw CLI::ValidationError(option, "must be frames per second, such as 50");
  }
  return *rate;
}

std::optional<host::PoseFileKind> ParsePoseFormat(const std::string& option,
                                                  const std::string& text) {
  const auto kind = host::ParsePoseFileKind(text);
  if (!kind) {
    throw CLI::ValidationError(option, "must be tum, euroc, opentrackio or csv");
  }
  return kind;
}

std::optional<host::TimeUnit> ParsePoseTimes(const std::string& option, const std::string& text) {
  const auto unit = host::ParseTimeUnit(text);
  if (!unit) {
    throw CLI::ValidationError(option, "must be s, ms, us or ns");
  }
  return unit;
}

host::PoseColumns ParseColumns(const std::string& option, const std::string& text) {
  try {
    return host::ParsePoseColumns(text);
  } catch (const host::InputError& error) {
    throw CLI::ValidationError(option, error.what());
  }
}

void CheckOptions(const PairOptions& options) {
  if (options.chartFixed == !options.chartPoses.empty()) {
    throw CLI::ValidationError("state one of --chart-poses and --chart-fixed");
  }
  if ((options.framesPerSecond > 0) == !options.times.empty()) {
    throw CLI::ValidationError("state one of --times and --fps");
  }
  if (options.settings.chartRotationDegrees.has_value() !=
      options.settings.chartTranslationMetres.has_value()) {
    throw CLI::ValidationError("state --chart-rotation and --chart-translation, or neither");
  }
  if (options.photographs < host::kLeastPairedPhotographs) {
    throw CLI::ValidationError("--photographs", "must be at least 12");
  }
  host::RequireEmpty(options.out);
}

host::PairInputs ReadInputs(const PairOptions& options) {
  host::PairInputs inputs;
  inputs.film = options.times.empty() ? host::ReadFilm(options.frames, options.framesPerSecond)
                                      : host::ReadFilm(options.frames, options.times);
  inputs.camera = ReadPoseRecording(options.cameraPoses, options.format);
  if (!options.chartFixed) {
    inputs.chart = ReadPoseRecording(options.chartPoses, options.format);
  }
  inputs.board = options.board;
  inputs.squareMetres = options.square;
  inputs.photographs = static_cast<std::size_t>(options.photographs);
  return inputs;
}

host::PairReport RunPairing(const host::PairInputs& inputs) {
  std::ostream terminal(PlainOutput(std::cerr));
  ProgressBar bar(terminal);
  const bool hasBar = IsTerminal(stderr);
  const host::SilencedStdout silenced;  // the lines of the library's stages
  return host::Pair(inputs, [&](std::size_t done, std::size_t all) {
    if (hasBar) {
      bar.Show({"searching the board", done, all});
    }
  });
}

int PairFilm(const PairOptions& options) {
  CheckOptions(options);
  const host::PairInputs inputs = ReadInputs(options);
  const host::PairReport report = RunPairing(inputs);
  for (const std::string& line : host::PairingText(inputs, report)) {
    std::cout << line << '\n';
  }
  host::WritePairedShoot(inputs, report, options.settings, options.out);
  std::cout << "\nNext: trackedcam calibrate --config " << (options.out / "shoot.toml").u8string()
            << '\n';
  return 0;
}

}  // namespace

void AddPairCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "pair", "Make a shoot of a film and recorded poses", kPairFooter);
  const auto options = std::make_shared<PairOptions>();
  AddPath(command, "--camera-poses", options->cameraPoses, "FILE",
          "Poses of the tracker on the camera")
      ->required()
      ->check(RequireFile);
  AddPath(command, "--chart-poses", options->chartPoses, "FILE",
          "Poses of the tracker on the chart")
      ->check(RequireFile);
  command.add_flag("--chart-fixed", options->chartFixed,
                   "The chart has no tracker and did not move");
  AddPath(command, "--frames", options->frames, "FOLDER", "Frames of the film, as pictures")
      ->required()
      ->check(RequireFolder);
  AddPath(command, "--times", options->times, "FILE",
          "CSV with the header frame,time: names of the\nframes, seconds")
      ->check(RequireFile);
  AddValue(command, "--fps", options->framesPerSecond, ParseRate, "RATE",
           "Frames per second, instead of --times");
  AddValue(command, "--board", options->board, ParseBoard, "COLSxROWS",
           "Inner corners of the chart, such as 9x6")
      ->required();
  AddValue(command, "--square", options->square, ParseSquare, "METRES",
           "Edge of its squares, such as 0.03 or 30mm")
      ->required();
  AddPath(command, "--out", options->out, "FOLDER", "Folder for the shoot; missing or empty")
      ->required();
  AddValue(command, "--photographs", options->photographs, ParseCount, "N",
           "Frames to choose, at most (default: 40)");
  AddValue(command, "--pose-format", options->format.kind, ParsePoseFormat, "FORMAT",
           "tum, euroc, opentrackio or csv (default:\nrecognised in the file)");
  AddValue(command, "--columns", options->format.columns, ParseColumns, "NAMES",
           "Names of the columns of a CSV file:\ntime=...,x=...,y=...,z=...,qw=...,qx=...,"
           "\nqy=...,qz=...");
  AddValue(command, "--pose-unit", options->format.unit, ParseTrackerUnit, "UNIT",
           "Unit of the positions: m, cm, mm or in\n(default: the header's, otherwise m)");
  AddValue(command, "--time-unit", options->format.timeUnit, ParsePoseTimes, "UNIT",
           "Unit of the times: s, ms, us or ns (default:\nthe header's or the format's)");
  AddValue(command, "--sensor", options->settings.sensorMm, ParseSensor, "WxH",
           "Size of the sensor in millimetres, for\nshoot.toml (default: 36 wide)");
  AddValue(command, "--chart-rotation", options->settings.chartRotationDegrees, ParseTriple,
           "X,Y,Z", "Mounting of the chart, for shoot.toml (default:\nto be found)");
  AddValue(command, "--chart-translation", options->settings.chartTranslationMetres,
           ParseTranslation, "X,Y,Z", "The same");
  command.callback([options, &status] { status = PairFilm(*options); });
}

}  // namespace trackedcam::app
