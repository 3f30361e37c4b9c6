#include "app/commands/simulate_command.h"

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "app/platform.h"
#include "app/terminal/output.h"
#include "host/text/text.h"
#include "simulator/shoot.h"
#include "simulator/simulated_files.h"
#include "simulator/write_recording.h"
#include "simulator/write_shoot.h"

namespace trackedcam::app {
namespace {

using host::Shortest;
using simulator::ShootOptions;
namespace fs = std::filesystem;

/// Adds options with their defaults to one group of the help.
class Group {
 public:
  Group(CLI::App& command, std::string name) : command_(command), name_(std::move(name)) {}

  void AddFlag(const std::string& name, bool& value, const std::string& description) {
    command_.add_flag(name, value, description)->group(name_);
  }

  template <class Number>
  void AddNumber(const std::string& name, Number& value, const std::string& unit,
                 const std::string& description) {
    command_.add_option(name, value, description)
        ->capture_default_str()
        ->type_name(unit)
        ->group(name_);
  }

  /// In millimetres, or in milliseconds.
  void AddThousandths(const std::string& name, double& value, const std::string& unit,
                      const std::string& description) {
    constexpr double kThousandths = 1e3;
    const auto store = [&value](double thousandths) { value = thousandths / kThousandths; };
    command_.add_option_function<double>(name, store, description)
        ->default_str(Shortest(value * kThousandths))
        ->type_name(unit)
        ->group(name_);
  }

  template <class Store>
  void AddValue(const std::string& name, const std::string& form, const std::string& standard,
                const std::string& description, Store store) {
    command_.add_option_function<std::string>(name, store, description)
        ->default_str(standard)
        ->type_name(form)
        ->group(name_);
  }

 private:
  CLI::App& command_;
  std::string name_;
};

std::string TextOf(double width, double height) {
  return Shortest(width) + 'x' + Shortest(height);
}

void AddPhotographs(Group group, ShootOptions& shoot) {
  group.AddNumber("--photographs", shoot.photographs, "N",
                  "Number of photographs, flawed ones included");
  group.AddNumber("--missing", shoot.missing, "N", "Number of them that do not exist");
  group.AddNumber("--not-an-image", shoot.notAnImage, "N", "Number of them that are text files");
  group.AddNumber("--without-chart", shoot.withoutChart, "N",
                  "Number of them that do not show the chart");
  group.AddNumber("--outliers", shoot.outliers, "N",
                  "Number of them for which a tracker had slipped");
  group.AddNumber(
      "--held-poses", shoot.heldPoses, "N",
      "Photographs in a row of each pose: camera and\nchart are held, the noise differs");
  group.AddFlag("--repeated-rows", shoot.repeatedRows,
                "The same reported poses for all photographs of\na held pose");
  group.AddFlag("--turntable", shoot.turntable, "Camera at rest, chart rotated about one axis");
  group.AddNumber("--seed", shoot.seed, "N", "Seed of all random values");
}

void AddCamera(Group group, ShootOptions& shoot) {
  group.AddValue("--image", "WxH", TextOf(shoot.imageWidth, shoot.imageHeight),
                 "Size of the photographs in pixels", [&shoot](const std::string& text) {
                   const auto size = ParseImageSize("--image", text);
                   shoot.imageWidth = size[0];
                   shoot.imageHeight = size[1];
                 });
  group.AddValue("--sensor", "WxH", TextOf(shoot.sensorWidthMm, shoot.sensorHeightMm),
                 "Size of the sensor in millimetres", [&shoot](const std::string& text) {
                   const auto sensor = ParseSensor("--sensor", text);
                   shoot.sensorWidthMm = sensor[0];
                   shoot.sensorHeightMm = sensor[1];
                 });
  group.AddValue(
      "--lens", "FX,FY,CX,CY,K1,K2", "",
      "Lens in pixels (default: slight distortion,\nsuited to the size of the photographs)",
      [&shoot](const std::string& text) {
        const auto lens = ParseLens("--lens", text);
        shoot.lens = {lens[0], lens[1], lens[2], lens[3], lens[4], lens[5]};
      });
  group.AddNumber("--blur", shoot.blurPixels, "PIXELS", "Blur of the optics in pixels");
  group.AddNumber("--noise", shoot.noiseGreyLevels, "LEVELS",
                  "Noise of the sensor in grey levels of 255");
  group.AddNumber("--uneven-light", shoot.unevenLight, "SHARE",
                  "Unevenness of the light: 0 (even) to 1 (dark\non one side)");
  group.AddNumber("--jpeg-quality", shoot.jpegQuality, "N", "JPEG quality, 1 to 100");
}

void AddChart(Group group, ShootOptions& shoot) {
  group.AddValue("--board", "COLSxROWS", TextOf(shoot.chart.cols, shoot.chart.rows),
                 "Inner corners along a row and along a column", [&shoot](const std::string& text) {
                   const auto board = ParseBoard("--board", text);
                   shoot.chart.cols = board[0];
                   shoot.chart.rows = board[1];
                 });
  group.AddValue("--square", "METRES", Shortest(shoot.chart.squareMetres),
                 "Edge of one square in metres", [&shoot](const std::string& text) {
                   shoot.chart.squareMetres = ParseSquare("--square", text);
                 });
  group.AddNumber("--mounting-error-mm", shoot.mountingErrorMm, "MM",
                  "Distance between the stated and the true\nmounting in millimetres");
  group.AddNumber("--mounting-error-degrees", shoot.mountingErrorDegrees, "DEG",
                  "Angle between the stated and the true mounting\nin degrees");
}

void AddTrackers(Group group, ShootOptions& shoot) {
  group.AddNumber("--tracker-noise-mm", shoot.trackerNoiseMm, "MM",
                  "Noise along each axis in millimetres");
  group.AddNumber("--tracker-noise-degrees", shoot.trackerNoiseDegrees, "DEG",
                  "Noise about each axis in degrees");
  group.AddNumber("--slip-mm", shoot.slipMm, "MM", "Distance of an outlier's slip in millimetres");
  group.AddNumber("--slip-degrees", shoot.slipDegrees, "DEG",
                  "Angle of an outlier's slip in degrees");
  group.AddNumber(
      "--frozen-rows", shoot.frozenRows, "N",
      "Rows that repeat the poses of the row before\nthem, although camera and chart moved");
  group.AddFlag("--inverted-quaternions", shoot.invertedQuaternions,
                "Inverse rotations in the trackers' quaternions");
}

void AddFlaws(Group group, SimulateOptions& options) {
  ShootOptions& shoot = options.shoot;
  group.AddNumber("--print-stretch", shoot.chart.stretch, "SHARE",
                  "Squares wider than high, by this share:\n0.005 is 0.5 %");
  group.AddThousandths("--chart-bow-mm", shoot.chart.bowMetres, "MM",
                       "Depth of the chart's middle behind its four\noutermost inner corners");
  group.AddValue("--tangential", "P1,P2", "0,0", "Tangential distortion of the lens",
                 [&options](const std::string& text) {
                   options.tangential = ParseTangential("--tangential", text);
                 });
  group.AddNumber("--k3", options.k3, "K3", "Radial distortion of the lens, sixth order");
  group.AddNumber("--noise-correlation", shoot.noiseCorrelation, "SHARE",
                  "Correlation of the trackers' noise in two\nphotographs in a row, 0 to 1");
  group.AddNumber("--tracker-scale", shoot.trackerScale, "FACTOR",
                  "Factor of all lengths that the trackers report");
  group.AddNumber(
      "--volume-bend-mm", shoot.volumeBendMm, "MM",
      "Bend of the tracking volume: reported height\nincreases by this 1 m to either side");
  group.AddNumber("--pose-error-mm", shoot.poseErrorMm, "MM",
                  "Error of a tracker's position that depends on\nits pose, along each axis");
  group.AddNumber("--pose-error-degrees", shoot.poseErrorDegrees, "DEG",
                  "Error of a tracker's rotation that depends on\nits pose, about each axis");
  group.AddNumber("--delay-ms", shoot.delayMs, "MS",
                  "Delay of the reported poses in milliseconds,\nwhile the hands move");
  group.AddNumber(
      "--exposure-ms", options.exposureMs, "MS",
      "Exposure of a photograph in milliseconds,\nwhile the hands move (a recording: 5)");
  group.AddNumber("--tremor", shoot.tremorMmPerSecond, "MM/S",
                  "Speed at which the hands tremble along each\naxis, instead of moving evenly");
  group.AddNumber("--sag-mm", shoot.sagMm, "MM",
                  "Sag of the camera's tracker on its mount,\nalways downwards");
  group.AddNumber("--loose-mm", shoot.looseMm, "MM",
                  "Distance between two seats of the camera's\ntracker, which is loose");
}

void AddDataFile(Group group, ShootOptions& shoot) {
  group.AddFlag("--windows-line-ends", shoot.windowsLineEnds, "Line ends of Windows");
  group.AddFlag("--byte-order-mark", shoot.byteOrderMark, "Byte-order mark at the beginning");
}

void AddRecording(Group group, SimulateOptions& options) {
  simulator::RecordingOptions& recording = options.recording;
  group.AddFlag("--recording", options.isRecording,
                "A film and both trackers as streams of poses,\ninstead of photographs");
  group.AddNumber("--seconds", recording.seconds, "S", "Length of the film in seconds");
  group.AddNumber("--fps", recording.framesPerSecond, "HZ", "Frames per second");
  group.AddNumber("--pose-rate", recording.posesPerSecond, "HZ",
                  "Poses of each tracker per second");
  group.AddValue("--motion", "HOW", "handheld",
                 "handheld: camera and chart in hands;\ntripod: camera at rest",
                 [&recording](const std::string& text) {
                   if (text != "handheld" && text != "tripod") {
                     throw CLI::ValidationError("--motion", text + " is not handheld or tripod");
                   }
                   recording.motion =
                       text == "tripod" ? simulator::Motion::kTripod : simulator::Motion::kHandheld;
                 });
  group.AddThousandths("--readout-ms", recording.readoutSeconds, "MS",
                       "Time from the first to the last row of a\nrolling shutter");
  group.AddNumber("--drift-ppm", recording.driftPpm, "PPM",
                  "How much faster the clock of the poses is than\nthat of the frames");
  group.AddNumber("--drop", recording.droppedFraction, "SHARE",
                  "Share of the poses that are missing");
  group.AddNumber("--stamp-step-ms", recording.stampStepMs, "MS",
                  "Step to which the times of the poses are\nrounded (0: they are not)");
}

// What one of the two kinds does not have is refused, because it would be ignored.
void SeparateKinds(CLI::App& command) {
  CLI::Option* recording = command.get_option("--recording");
  for (const char* option : {"--seconds", "--fps", "--pose-rate", "--motion", "--readout-ms",
                             "--drift-ppm", "--drop", "--stamp-step-ms"}) {
    command.get_option(option)->needs(recording);
  }
  for (const char* option :
       {"--photographs", "--missing", "--not-an-image", "--without-chart", "--outliers",
        "--held-poses", "--repeated-rows", "--turntable", "--slip-mm", "--slip-degrees",
        "--frozen-rows", "--loose-mm", "--tremor", "--windows-line-ends", "--byte-order-mark"}) {
    recording->excludes(command.get_option(option));
  }
}

constexpr const char* kSimulateFooter = R"(Examples:
  trackedcam simulate shoot
  trackedcam simulate shoot --photographs 30 --missing 1 --outliers 3 \
      --tracker-noise-mm 0.5
  trackedcam calibrate --config shoot/shoot.toml
  trackedcam simulate film --recording --seconds 30 --delay-ms 80

The folder gets photos/, tracker_data.csv, truth.json, shoot.toml and
simulated.txt, a list of the others. With --recording, it gets frames/ with
times.csv, camera_poses.txt, chart_poses.txt, truth.json and simulated.txt. An
earlier one of the same kind in it is replaced; any other or changed file is
refused without --force.

Exit status: 0 written, 1 failed, 2 wrong usage.)";

ShootOptions WithLens(const SimulateOptions& options) {
  ShootOptions shoot = options.shoot;
  shoot.exposureMs = options.exposureMs.value_or(shoot.exposureMs);
  simulator::Lens lens = simulator::LensOf(shoot);
  lens.p1 = options.tangential[0];
  lens.p2 = options.tangential[1];
  lens.k3 = options.k3;
  shoot.lens = lens;
  return shoot;
}

simulator::Shoot SimulateShoot(const SimulateOptions& options) {
  try {
    return simulator::SimulateShoot(WithLens(options));
  } catch (const std::invalid_argument& error) {
    throw CLI::ValidationError(error.what());
  }
}

simulator::Recording SimulateRecording(const SimulateOptions& options) {
  simulator::RecordingOptions recording = options.recording;
  recording.shoot = WithLens(options);
  recording.delayMs = options.shoot.delayMs;
  if (options.exposureMs) {
    recording.exposureSeconds = *options.exposureMs / 1e3;
  }
  try {
    return simulator::SimulateRecording(recording);
  } catch (const std::invalid_argument& error) {
    throw CLI::ValidationError(error.what());
  }
}

// Own rows or pictures under the names of simulated ones.
void RequireUnchanged(const fs::path& folder) {
  const std::vector<std::string> changed = simulator::ChangedFiles(folder);
  if (!changed.empty()) {
    const std::string others =
        changed.size() == 1 ? "" : " and " + std::to_string(changed.size() - 1) + " more";
    throw CLI::ValidationError("FOLDER", folder.u8string() + " has " + changed.front() + others +
                                             ", not as it was simulated; name another folder, or "
                                             "write into it with --force");
  }
}

template <class Work>
void WithProgress(const Work& work) {
  std::ostream terminal(PlainOutput(std::cerr));
  ProgressBar bar(terminal);
  const bool isShown = IsTerminal(stderr);
  work([&](int done, int all) {
    if (isShown) {
      bar.Show({"Simulating", static_cast<std::size_t>(done), static_cast<std::size_t>(all)});
    }
  });
}

void RunShoot(const SimulateOptions& options) {
  const simulator::Shoot shoot = SimulateShoot(options);
  if (!options.force) {
    RequireShootFolder(options.folder);
    RequireUnchanged(options.folder);
  }
  WithProgress(
      [&](const auto& progress) { simulator::WriteShoot(shoot, options.folder, progress); });
  std::cout << "Wrote a shoot of " << shoot.photographs.size() << " photographs to "
            << options.folder.u8string() << '\n'
            << "Next: trackedcam calibrate --config " << (options.folder / "shoot.toml").u8string()
            << '\n';
}

void RunRecording(const SimulateOptions& options) {
  const simulator::Recording recording = SimulateRecording(options);
  if (!options.force) {
    RequireRecordingFolder(options.folder);
    RequireUnchanged(options.folder);
  }
  WithProgress([&](const auto& progress) {
    simulator::WriteRecording(recording, options.folder, progress);
  });
  std::cout << "Wrote a recording of " << recording.frames.size() << " frames to "
            << options.folder.u8string() << '\n'
            << "Next: trackedcam pair --camera-poses "
            << (options.folder / "camera_poses.txt").u8string() << " --chart-poses "
            << (options.folder / "chart_poses.txt").u8string() << " --frames "
            << (options.folder / "frames").u8string() << " --times "
            << (options.folder / "frames" / "times.csv").u8string() << " --board "
            << options.shoot.chart.cols << 'x' << options.shoot.chart.rows << " --square "
            << Shortest(options.shoot.chart.squareMetres) << " --out shoot\n";
}

}  // namespace

void AddSimulateOptions(CLI::App& command, SimulateOptions& options) {
  const auto store = [&options](const std::string& text) {
    ParsePath("FOLDER", text);
    options.folder = std::filesystem::u8path(text);  // the next command names it as it was written
  };
  command
      .add_option_function<std::string>("FOLDER", store,
                                        "Folder to write; created if it is missing")
      ->type_name("")
      ->required();
  command.add_flag("--force", options.force,
                   "Permission to write into a folder with other\nfiles; those of the same names "
                   "are overwritten");
  AddPhotographs({command, "Photographs"}, options.shoot);
  AddCamera({command, "Camera"}, options.shoot);
  AddChart({command, "Chart"}, options.shoot);
  AddTrackers({command, "Trackers"}, options.shoot);
  AddFlaws({command, "What the calibration does not model"}, options);
  AddDataFile({command, "Data file"}, options.shoot);
  AddRecording({command, "Recording"}, options);
  SeparateKinds(command);
}

void AddSimulateCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "simulate", "Write a simulated shoot or recording", kSimulateFooter);
  const auto options = std::make_shared<SimulateOptions>();
  AddSimulateOptions(command, *options);
  command.callback([options, &status] {
    if (options->isRecording) {
      RunRecording(*options);
    } else {
      RunShoot(*options);
    }
    status = 0;
  });
}

}  // namespace trackedcam::app
