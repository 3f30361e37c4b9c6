#include "app/commands/calibrate_command.h"

#include <chrono>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/commands/config_file.h"
#include "app/commands/watch_shoot.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "app/platform.h"
#include "app/terminal/engine_summary.h"
#include "app/terminal/next_commands.h"
#include "app/terminal/output.h"
#include "app/terminal/summary.h"
#include "host/calibrate.h"
#include "host/input/continued_data.h"
#include "host/input/photograph_file.h"
#include "host/result/earlier_runs.h"
#include "host/result/result_file.h"
#include "host/result/result_json.h"
#include "host/silenced_stdout.h"
#include "host/text/files.h"
#include "host/text/text.h"
#include "host/verdict/verdict.h"
#include "report/page.h"
#include "report/thumbnails.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCalibrateFooter = R"(Examples:
  A simulated shoot:
    trackedcam calibrate --config shoot/shoot.toml
  Your own shoot; the mounting of the chart's tracker is found:
    trackedcam calibrate --data tracker_data.csv --sensor 36x20.25 \
        --board 9x6 --square 0.03 --log-folder log --result result.json
  The same with a known mounting:
    trackedcam calibrate --data tracker_data.csv --sensor 36x20.25 \
        --board 9x6 --square 0.03 --log-folder log --result result.json \
        --chart-rotation=12,-8,5 --chart-translation=0.1,-0.05,0.02

The mounting is the position of the chart's first inner corner and the rotation
Rx * Ry * Rz, in the tracker's axes after the axis fix (fixed): the reported
x, y, z count as -x, -z, -y.

A file for --config has the options in a section [calibrate], such as
"square = 0.03". Its paths are relative to its folder. Options on the command
line override it.

Exit status:
  0  calibrated, perhaps with a warning
  1  failed, or an export failed (gimbal lock), or a file could not be written
  2  wrong usage
  3  calibrated, but the cross-check is certain that the result is wrong)";

// All files that are read, and photographs of the data file that do not exist.
std::vector<fs::path> InputFiles(const CalibrateOptions& options, const fs::path& configFile,
                                 const std::vector<host::DataRow>& rows) {
  std::vector<fs::path> files = {options.inputs.data, options.truth, configFile};
  files.insert(files.end(), options.inputs.moreData.begin(), options.inputs.moreData.end());
  for (const host::DataRow& row : rows) {
    if (!row.photograph.empty() && host::IsUtf8(row.photograph)) {
      files.push_back(options.inputs.workingFolder / fs::u8path(row.photograph));
    }
  }
  return files;
}

void PrepareOutput(const CalibrateOptions& options, std::vector<fs::path> inputs) {
  if (!options.result.empty()) {
    PrepareOutputFile(
        {"--result", options.result, "a result file of trackedcam", host::IsResultFile}, inputs);
    inputs.push_back(options.result);
  }
  if (!options.report.empty()) {
    PrepareOutputFile(
        {"--report", options.report, "a report page of trackedcam", host::IsReportPage}, inputs);
  }
  PrepareOutputFolder("--log-folder", options.inputs.logFolder);
}

bool IsRefused(const CalibrateOptions& options, const host::Report& report) {
  return report.verdict.level == host::Level::kWrong && !options.evenIfWrong;
}

// A failed calibration is not exported. If an export fails, the run's result is still good.
void Export(const CalibrateOptions& options, host::Report& report) {
  if (report.verdict.level == host::Level::kFailed || IsRefused(options, report)) {
    return;
  }
  host::ExportInput input = {report.run.outputs, options.inputs.sensorMm, options.parentAxes};
  input.origin = {report.run.record.time, report.verdict.level, report.verdict.message, {}, {}, {}};
  for (const host::Engine* engine : options.exports) {
    try {
      report.exports.push_back(
          host::ExportToEngine(*engine, input, report.run.folder / engine->name));
    } catch (const std::exception& error) {
      report.exports.push_back({engine, -1, false, {}, error.what(), {}});
    }
  }
}

// Shows the lines of the library's log, or a progress bar if standard error is a terminal.
host::Report RunCalibration(const CalibrateOptions& options, const host::ShootData& shoot) {
  std::optional<host::SilencedStdout> silenced;
  if (!options.verbose) {
    silenced.emplace();
  }
  std::ostream terminal(PlainOutput(std::cerr));
  ProgressBar bar(terminal);
  const bool isShown = !options.verbose && IsTerminal(stderr);
  host::Report report = host::Calibrate(options.inputs, shoot, [&](const host::Progress& progress) {
    if (isShown) {
      bar.Show(progress);
    }
  });
  Export(options, report);
  return report;
}

struct WrittenFiles {
  fs::path result;  // empty if there is none
  fs::path page;
  std::vector<std::string> errors;    // of files that an option names
  std::vector<std::string> warnings;  // of files in the run's folder
};

// If one file cannot be written, the others still are.
fs::path Write(const fs::path& file, bool isNamed, WrittenFiles& written,
               const std::function<std::string()>& content) {
  try {
    WriteOutput(file, content());
    return IsStandardOutput(file) ? fs::path() : file;
  } catch (const std::exception& error) {
    (isNamed ? written.errors : written.warnings).emplace_back(error.what());
    return {};
  }
}

// The pictures of the page, and how long they took.
struct Pictures {
  std::vector<report::Thumbnail> thumbnails;
  report::UndistortedPhotograph undistorted;
  std::optional<double> seconds;
};

Pictures MakePictures(const CalibrateOptions& options, const host::Report& report) {
  const auto begin = std::chrono::steady_clock::now();
  const auto read = [](const fs::path& file) -> report::Picture {
    host::PhotographFile photograph = host::ReadPhotograph(file);
    return {std::move(photograph.bytes), photograph.isLarge};
  };
  Pictures pictures;
  try {
    const nlohmann::ordered_json result = host::ResultJson(report);
    pictures.thumbnails = report::MakeThumbnails(result, read, options.hasFullPhotographs);
    pictures.undistorted = report::MakeUndistorted(result, read);
  } catch (const std::exception&) {
    // A page does without them.
  }
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
  pictures.seconds = passed.count();
  return pictures;
}

WrittenFiles WriteFiles(const CalibrateOptions& options, const host::Report& report,
                        const Pictures& pictures) {
  const nlohmann::ordered_json result = host::ResultJson(report, pictures.seconds);
  std::string text = host::JsonText(result);
  WrittenFiles written;
  if (!options.result.empty()) {
    written.result = Write(options.result, true, written, [&] { return text; });
  }
  // No later run replaces this one.
  const fs::path inRunFolder =
      Write(report.run.folder / "result.json", false, written, [&] { return text; });
  written.result = written.result.empty() ? inRunFolder : written.result;
  if (!options.withoutReport) {
    const bool isNamed = !options.report.empty();
    const fs::path page = isNamed ? options.report : report.run.folder / "report.html";
    written.page = Write(page, isNamed, written, [&] {
      return report::Page(result, pictures.thumbnails, page.parent_path(), pictures.undistorted,
                          host::RunsBeside(report.run.folder, result));
    });
  }
  return written;
}

// The file that further commands read.
fs::path ResultFileOf(const CalibrateOptions& options, const host::Report& report) {
  return IsStandardOutput(options.result) ? report.run.folder / "result.json" : options.result;
}

// False if an export failed.
bool PrintExports(std::ostream& out, const host::Report& report) {
  bool isDone = true;
  for (const host::EngineExport& engineExport : report.exports) {
    out << '\n';
    PrintEngineExport(out, engineExport);
    isDone = isDone && engineExport.code == 0;
  }
  out.flush();
  for (const host::EngineExport& engineExport : report.exports) {
    PrintProblem(std::cerr, engineExport);
  }
  return isDone;
}

int Calibrate(CalibrateOptions options, const std::string& commandLine,
              const fs::path& configFile) {
  host::Inputs& inputs = options.inputs;
  inputs.mounting = MountingOf(options.mounting);
  inputs.hasReportedMountingAxes = options.mounting.isReported;
  if (inputs.workingFolder.empty()) {
    inputs.workingFolder = host::FolderOfData(inputs.data, inputs.moreData);
  }
  std::optional<host::CalibrationOutputs> truth;
  if (!options.truth.empty()) {
    truth = host::ReadTruth(options.truth, inputs.sensorMm);
  }
  if (options.watch) {
    PrepareOutput(options, InputFiles(options, configFile, {}));
    WatchShoot(inputs, options.until.value_or(inputs.goodEnough));
  }
  const host::ShootData shoot = host::ReadShootData(inputs);
  PrepareOutput(options, InputFiles(options, configFile, shoot.rows));
  fs::current_path(inputs.workingFolder);  // relative paths of photographs begin there

  host::Report report = RunCalibration(options, shoot);
  if (auto next = NextCalibrations(commandLine, report.verdict); !next.empty()) {
    report.verdict.commands = std::move(next);
  } else if (report.verdict.level == host::Level::kGood && !options.result.empty()) {
    report.verdict.commands =
        ExportCommands(ResultFileOf(options, report), options.exports, options.parentAxes);
  }
  const Pictures pictures = options.withoutReport ? Pictures() : MakePictures(options, report);
  const WrittenFiles written = WriteFiles(options, report, pictures);
  std::ostream& out = TextBeside(options.result);
  PrintSummary(out, report, truth ? &*truth : nullptr, written.page);
  if (!written.result.empty()) {
    out << "Result: " << written.result.u8string() << '\n';
  }
  PrintSeconds(out, report.seconds, pictures.seconds);
  out.flush();
  PrintWarning(std::cerr, report);
  for (const std::string& warning : written.warnings) {
    std::cerr << "trackedcam: warning: " << warning << '\n';
  }
  for (const std::string& error : written.errors) {
    std::cerr << "trackedcam: error: " << error << '\n';
  }
  if (!options.exports.empty() && IsRefused(options, report)) {
    std::cerr << "trackedcam: error: " << host::NotExportedText("--even-if-wrong") << '\n';
  }
  const bool isExported = PrintExports(out, report);
  const int status = ExitStatus(report);
  return status == 0 && !(isExported && written.errors.empty()) ? 1 : status;
}

std::vector<std::string> PathsIn(const std::string& text) {
  std::vector<std::string> paths;
  std::istringstream stream(text);
  for (std::string path; std::getline(stream, path, kBetweenPaths);) {
    paths.push_back(path);
  }
  return paths.empty() ? std::vector<std::string>{text} : paths;
}

// The first one, and those that continue it.
CLI::Option* AddData(CLI::App& command, host::Inputs& inputs) {
  const auto store = [&inputs](const std::string& text) {
    inputs.moreData.clear();
    for (const std::string& path : PathsIn(text)) {
      if (const std::string error = RequireFile(path); !error.empty()) {
        throw CLI::ValidationError("--data", error);
      }
      inputs.moreData.push_back(ParsePath("--data", path));
    }
    inputs.data = inputs.moreData.front();
    inputs.moreData.erase(inputs.moreData.begin());
  };
  return command
      .add_option_function<std::string>("--data", store,
                                        "Tracker data file: a row for each photograph;\n"
                                        "again for each file that continues the shoot")
      ->type_name("FILE")
      ->join(kBetweenPaths);
}

}  // namespace

void AddCalibrateOptions(CLI::App& command, CalibrateOptions& options) {
  AddData(command, options.inputs)->required()->group("Shoot");
  AddPath(command, "--working-folder", options.inputs.workingFolder, "FOLDER",
          "Folder at which relative paths of photographs\nbegin (default: the data file's folder)")
      ->check(RequireFolder)
      ->group("Shoot");
  AddExclude(command, options.inputs.exclude, "Shoot");
  CLI::Option* watch = command
                           .add_flag("--watch", options.watch,
                                     "Follow the shoot while it is photographed: say\n"
                                     "what each new row adds; Ctrl-C calibrates")
                           ->group("Shoot");
  AddValue(command, "--until", options.until, ParseGoodEnough, "MM,DEGREES",
           "With --watch: how accurately the transform\nmust be known (default: that of "
           "--good-enough)")
      ->needs(watch)
      ->group("Shoot");
  AddValue(command, "--expected-records", options.inputs.expectedRecords, ParseCount, "N",
           "Number of recorded rows\n(default: all rows of the data file)")
      ->group("Shoot");
  command
      .add_flag("--invert-tracker-quaternions", options.inputs.invertTrackerQuaternions,
                "Inversion of both trackers' quaternions")
      ->group("Shoot");
  AddValue(command, "--tracker-axes", options.inputs.trackerFrame.axes, ParseTrackerAxes, "AXES",
           "Coordinate system of the poses: reported\n(default), unreal or unity")
      ->group("Shoot");
  AddValue(command, "--tracker-units", options.inputs.trackerFrame.unit, ParseTrackerUnit, "UNIT",
           "Unit of the positions: m, cm, mm or in\n(default: cm for unreal, otherwise m)")
      ->group("Shoot");
  AddValue(command, "--quaternion-order", options.inputs.trackerFrame.hasQuaternionsXyzw,
           ParseQuaternionOrder, "ORDER", "Order in the quaternions: wxyz (default) or\nxyzw")
      ->group("Shoot");

  AddValue(command, "--sensor", options.inputs.sensorMm, ParseSensor, "WxH",
           "Size of the camera's sensor in millimetres")
      ->required()
      ->group("Camera");

  AddValue(command, "--board", options.inputs.board, ParseBoard, "COLSxROWS",
           "Inner corners along a row and along a column:\none less than the squares")
      ->required()
      ->group("Chart");
  AddValue(command, "--square", options.inputs.squareMetres, ParseSquare, "METRES",
           "Edge of one square in metres, or with a unit,\nsuch as 30mm")
      ->required()
      ->group("Chart");
  AddMountingOptions(command, options.mounting, "found from the shoot", "Chart");
  command
      .add_flag("--refine-mounting", options.inputs.refineMounting,
                "Second run if the cross-check finds another\nmounting or bad photographs")
      ->group("Chart");

  AddPath(command, "--log-folder", options.inputs.logFolder, "FOLDER",
          "Folder for logs and reprojected images; each\nrun creates a subfolder")
      ->required()
      ->group("Output");
  AddOutput(command, "--result", options.result, "FILE.json",
            "Result file with all values as JSON; - is\nstandard output, and the summary goes to\n"
            "standard error")
      ->group("Output");
  CLI::Option* report =
      AddPath(command, "--report", options.report, "FILE.html",
              "Report page (default: report.html in the run's\nfolder); not together with "
              "--no-report")
          ->group("Output");
  command.add_flag("--no-report", options.withoutReport, "No report page")
      ->excludes(report)
      ->group("Output");
  AddPagePhotographs(command, options.hasFullPhotographs, "Output");
  AddValue(command, "--export", options.exports, ParseEngines, "ENGINES",
           "Engines to export the result to, as a list of\nunreal, unity, ue4, ue5, ue5-xn, "
           "aximmetry")
      ->group("Output");
  AddValue(command, "--parent-axes", options.parentAxes, ParseParentAxesText, "X,Y,Z",
           kParentAxesHelp)
      ->group("Output");
  command
      .add_flag("--even-if-wrong", options.evenIfWrong,
                "Export of a result that is certainly wrong")
      ->group("Output");
  AddPath(command, "--truth", options.truth, "FILE.json",
          "Truth of a simulated shoot, to compare with")
      ->check(RequireFile)
      ->group("Output");
  AddAccuracyOptions(command, options.inputs.goodEnough, options.inputs.scaleUncertainty,
                     options.inputs.atMetres, "Output");
  command.add_flag("--verbose", options.verbose, "Lines of the library's log, not the progress")
      ->group("Output");
}

void AddCalibrateCommand(CLI::App& program, const std::string& commandLine, int& status) {
  CLI::App& command =
      AddCommand(program, "calibrate", "Calibrate lens and camera tracker", kCalibrateFooter);
  const auto options = std::make_shared<CalibrateOptions>();
  AddCalibrateOptions(command, *options);
  command.callback([options, commandLine, &program, &status] {
    status = Calibrate(*options, commandLine, ConfigFile(program));
  });
}

}  // namespace trackedcam::app
