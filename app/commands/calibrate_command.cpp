#include "app/commands/calibrate_command.h"

#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "app/platform.h"
#include "app/terminal/engine_summary.h"
#include "app/terminal/next_commands.h"
#include "app/terminal/output.h"
#include "app/terminal/summary.h"
#include "host/calibrate.h"
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

std::string RequireFolder(const std::string& path) {
  return std::filesystem::is_directory(std::filesystem::u8path(path))
             ? ""
             : "there is no folder " + path;
}

constexpr const char* kFooter = R"(Examples:
  trackedcam calibrate --config shoot/shoot.toml
  trackedcam calibrate --data tracker_data.csv --sensor 36x20.25 --board 9x6 --square 0.03
      --chart-rotation=12,-8,5 --chart-translation=0.1,-0.05,0.02 --log-folder log
  trackedcam calibrate --data tracker_data.csv --sensor 36x20.25 --board 9x6 --square 0.03
      --log-folder log
The second finds the mounting of the chart's tracker from the shoot.

With --config FILE the options come from a file, where they stand below [calibrate] as in
"square = 0.03". Paths in it are relative to its folder; the command line wins over it.

Exit status: 0 calibrated (also with a warning), 1 failed (also an export by gimbal lock), 2 wrong
usage, 3 calibrated, and the cross-check is certain that it is wrong.)";

// All that is read, and what a row names and is not there.
std::vector<fs::path> InputFiles(const CalibrateOptions& options, const fs::path& configFile,
                                 const std::vector<host::DataRow>& rows) {
  std::vector<fs::path> files = {options.inputs.data, options.truth, configFile};
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
        {"--result", options.result, "the result of a calibration", host::IsResultFile}, inputs);
    inputs.push_back(options.result);
  }
  if (!options.report.empty()) {
    PrepareOutputFile({"--report", options.report, "the page of a calibration", host::IsReportPage},
                      inputs);
  }
  CreateFolder("--log-folder", options.inputs.logFolder);
}

// Engines get no figures of a failed calibration. One that cannot take them does not undo the run.
void Export(const CalibrateOptions& options, host::Report& report) {
  if (report.verdict.level == host::Level::kFailed) {
    return;
  }
  for (const host::Engine* engine : options.exports) {
    try {
      report.exports.push_back(host::ExportToEngine(
          *engine, {report.run.outputs, options.inputs.sensorMm, options.parentAxes},
          report.run.folder / engine->name));
    } catch (const std::exception& error) {
      report.exports.push_back({engine, -1, false, {}, error.what(), {}});
    }
  }
}

// With the library's own lines when they are wanted; else with a progress bar where standard error
// is a terminal.
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
  fs::path result;  // empty where there is none
  fs::path page;
  std::vector<std::string> problems;  // with what was asked for by name
  std::vector<std::string> losses;    // of what goes beside the log
};

// Each for itself: the others, and what is on the screen, are as good without it.
fs::path Write(const fs::path& file, bool isNamed, WrittenFiles& written,
               const std::function<std::string()>& content) {
  try {
    host::WriteFile(file, content());
    return file;
  } catch (const std::exception& error) {
    (isNamed ? written.problems : written.losses).emplace_back(error.what());
    return {};
  }
}

WrittenFiles WriteFiles(const CalibrateOptions& options, const host::Report& report) {
  std::string text = host::JsonText(host::ResultJson(report));
  WrittenFiles written;
  if (!options.result.empty()) {
    written.result = Write(options.result, true, written, [&] { return text; });
  }
  // One that is never replaced.
  const fs::path own =
      Write(report.run.folder / "result.json", false, written, [&] { return text; });
  written.result = written.result.empty() ? own : written.result;
  if (!options.withoutReport) {
    const bool isNamed = !options.report.empty();
    const fs::path page = isNamed ? options.report : report.run.folder / "report.html";
    written.page = Write(page, isNamed, written, [&] {
      return report::Page(text, report::MakeThumbnails(text), page.parent_path());
    });
  }
  return written;
}

// False when an engine refuses the result.
bool PrintExports(const host::Report& report) {
  bool isDone = true;
  for (const host::EngineExport& engineExport : report.exports) {
    std::cout << '\n';
    PrintEngineExport(std::cout, engineExport);
    isDone = isDone && engineExport.code == 0;
  }
  std::cout.flush();
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
    inputs.workingFolder = inputs.data.parent_path();
  }
  std::optional<host::CalibrationOutputs> truth;
  if (!options.truth.empty()) {
    truth = host::ReadTruth(options.truth, inputs.sensorMm);
  }
  const host::ShootData shoot = host::ReadShootData(inputs.data, inputs.trackerFrame);
  PrepareOutput(options, InputFiles(options, configFile, shoot.rows));
  fs::current_path(inputs.workingFolder);  // photographs keep their names

  host::Report report = RunCalibration(options, shoot);
  if (report.verdict.nextStep == host::NextStep::kRefineMounting && !report.firstRun) {
    report.verdict.commands = {commandLine + " --refine-mounting"};
  } else if (report.verdict.level == host::Level::kGood && !options.result.empty()) {
    report.verdict.commands = ExportCommands(options.result, options.exports, options.parentAxes);
  }
  const WrittenFiles written = WriteFiles(options, report);
  PrintSummary(std::cout, report, truth ? &*truth : nullptr, written.page);
  if (!written.result.empty()) {
    std::cout << "Result: " << written.result.u8string() << '\n';
  }
  std::cout.flush();
  PrintWarning(std::cerr, report);
  for (const std::string& loss : written.losses) {
    std::cerr << "trackedcam: warning: " << loss << '\n';
  }
  for (const std::string& problem : written.problems) {
    std::cerr << "trackedcam: error: " << problem << '\n';
  }
  const bool isExported = PrintExports(report);
  const int status = ExitStatus(report);
  return status == 0 && !(isExported && written.problems.empty()) ? 1 : status;
}

}  // namespace

void AddCalibrateOptions(CLI::App& command, CalibrateOptions& options) {
  AddPath(command, "--data", options.inputs.data, "FILE",
          "Tracker data file: a row for each photograph")
      ->required()
      ->check(RequireFile)
      ->group("Shoot");
  AddPath(command, "--working-folder", options.inputs.workingFolder, "FOLDER",
          "Where relative paths of photographs begin;\nelse the data file's folder")
      ->check(RequireFolder)
      ->group("Shoot");
  AddValue(command, "--expected-records", options.inputs.expectedRecords, ParseCount, "N",
           "Rows that were recorded; else those of the file")
      ->group("Shoot");
  command
      .add_flag("--invert-tracker-quaternions", options.inputs.invertTrackerQuaternions,
                "The trackers' quaternions give the inverse rotation")
      ->group("Shoot");
  AddValue(command, "--tracker-axes", options.inputs.trackerFrame.axes, ParseTrackerAxes, "AXES",
           "Whose poses the data file holds: reported (the\ntracking system's), or those of a "
           "component of\nunreal or a transform of unity, which are converted")
      ->group("Shoot");
  AddValue(command, "--tracker-units", options.inputs.trackerFrame.unit, ParseTrackerUnit, "UNIT",
           "Of positions in the data file: m, cm or mm;\nelse cm of unreal, m of the others")
      ->group("Shoot");

  AddValue(command, "--sensor", options.inputs.sensorMm, ParseSensor, "WxH",
           "Size of the camera's sensor, millimetres")
      ->required()
      ->group("Camera");

  AddValue(command, "--board", options.inputs.board, ParseBoard, "COLSxROWS",
           "Inner corners along a row and along a column:\none less than the squares")
      ->required()
      ->group("Chart");
  AddValue(command, "--square", options.inputs.squareMetres, ParseSquare, "METRES",
           "Edge of one square, metres")
      ->required()
      ->group("Chart");
  AddMountingOptions(command, options.mounting, "Chart");
  command
      .add_flag("--refine-mounting", options.inputs.refineMounting,
                "Where the cross-check finds another mounting or\nbad photographs: calibrate again "
                "with it and\nwithout them")
      ->group("Chart");

  AddPath(command, "--log-folder", options.inputs.logFolder, "FOLDER",
          "For the log and the reprojected images: each run\ngets a folder of its own in it")
      ->required()
      ->group("Output");
  AddPath(command, "--result", options.result, "FILE.json", "Write every figure as JSON")
      ->group("Output");
  CLI::Option* report = AddPath(command, "--report", options.report, "FILE.html",
                                "Write the page there; else report.html beside the log")
                            ->group("Output");
  command.add_flag("--no-report", options.withoutReport, "Write no page")
      ->excludes(report)
      ->group("Output");
  AddValue(
      command, "--export", options.exports, ParseEngines, "ENGINES",
      "Hand the result to engines as well: a list of\nunreal, unity, ue4, ue5, ue5-xn, aximmetry")
      ->group("Output");
  AddValue(command, "--parent-axes", options.parentAxes, ParseParentAxesText, "X,Y,Z",
           "Of the camera's parent in unreal or unity, in\nreported axes, such as z,-x,y")
      ->group("Output");
  AddPath(command, "--truth", options.truth, "FILE.json",
          "Compare with the truth of a simulated shoot")
      ->check(RequireFile)
      ->group("Output");
  command.add_flag("--verbose", options.verbose, "Show the library's own lines")->group("Output");
}

void AddCalibrateCommand(CLI::App& program, const std::string& commandLine, int& status) {
  CLI::App* command =
      program.add_subcommand("calibrate", "Calibrate lens and camera tracker from a shoot");
  command->group("Commands");
  command->fallthrough();
  command->footer(kFooter);
  const auto options = std::make_shared<CalibrateOptions>();
  AddCalibrateOptions(*command, *options);
  command->callback([options, commandLine, &program, &status] {
    status = Calibrate(*options, commandLine, ConfigFile(program));
  });
}

}  // namespace trackedcam::app
