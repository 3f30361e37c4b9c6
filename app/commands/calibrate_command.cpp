#include "app/commands/calibrate_command.h"

#include <iostream>
#include <memory>
#include <optional>

#include "app/commands/calibrate_options.h"
#include "app/commands/calibration_run.h"
#include "app/commands/data_file.h"
#include "app/engines/engine_summary.h"
#include "app/options/create_folder.h"
#include "app/options/output_file.h"
#include "app/result/result_json.h"
#include "app/result/summary.h"
#include "app/result/truth.h"
#include "app/result/verdict.h"
#include "app/run/reprojected_images.h"
#include "app/text/json_file.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter = R"(Examples:
  trackedcam calibrate --config shoot/shoot.toml
  trackedcam calibrate --data tracker_data.csv --sensor 36x20.25 --board 9x6 --square 0.03
      --chart-rotation 12,-8,5 --chart-translation 0.1,-0.05,0.02 --log-folder log

With --config FILE the options come from a file, where they stand below [calibrate] as in
"square = 0.03". Paths in it are relative to its folder; the command line wins over it.

Exit status: 0 calibrated (code 0, or 99 with a warning), 1 failed (also an export by gimbal lock),
2 wrong usage.)";

void PrepareOutput(const CalibrateOptions& options, const std::vector<std::string>& photographs) {
  CreateFolder("--log-folder", options.logFolder);
  CreateReprojectedImageFolders(options.logFolder, photographs);
  if (!options.result.empty()) {
    if (options.result == options.data || options.result == options.truth) {
      throw CLI::ValidationError("--result", options.result.u8string() + " would be overwritten");
    }
    PrepareOutputFile("--result", options.result);
    // A run that is broken off must not leave the figures of the one before.
    fs::remove(options.result);
  }
}

void WriteResult(const fs::path& path, const CalibrationReport& report) {
  WriteOutputFile(path, JsonText(ResultJson(report)));
  std::cout << "Result: " << path.u8string() << '\n';
}

void Warn(const CalibrateOptions& options, const CalibrationReport& report) {
  if (report.code == kSuccess && IsUsable(report)) {
    return;
  }
  std::cerr << "trackedcam: ";
  if (report.code == kTooFewPhotographs && IsBoardNowhere(report.record)) {
    const auto size = [&](int less) {
      return std::to_string(options.board[0] - less) + 'x' +
             std::to_string(options.board[1] - less);
    };
    std::cerr << "No board of " << size(0) << " inner corners was found in any photograph: --board "
              << "counts inner corners, so a chart of " << size(0) << " squares is " << size(1)
              << ".\n";
    return;
  }
  std::cerr << (IsUsable(report) ? "warning: " : "error " + std::to_string(report.code) + ": ")
            << VerdictOf(report).words << '\n';
}

// False when an engine refuses the result.
bool HandToEngines(const CalibrateOptions& options, CalibrationReport& report) {
  bool isDone = true;
  for (const Engine* engine : options.exports) {
    report.exports.push_back(
        ExportToEngine(*engine, report.outputs, options.logFolder, options.verbose));
    isDone = isDone && report.exports.back().code == 0;
  }
  return isDone;
}

void PrintExports(const CalibrationReport& report) {
  for (const EngineExport& engineExport : report.exports) {
    std::cout << '\n';
    PrintEngineExport(std::cout, engineExport);
  }
  std::cout.flush();
  for (const EngineExport& engineExport : report.exports) {
    PrintProblem(std::cerr, engineExport);
  }
}

int Calibrate(const CalibrateOptions& options) {
  const std::vector<std::string> photographs = ReadPhotographPaths(options.data);
  std::optional<CalibrationOutputs> truth;
  if (!options.truth.empty()) {
    truth = ReadTruth(options.truth, options.sensor);
  }
  PrepareOutput(options, photographs);
  fs::current_path(options.workingFolder.empty() ? options.data.parent_path()
                                                 : options.workingFolder);

  CalibrationReport report = RunCalibration(options, photographs.size());
  // Engines get no figures of a failed calibration.
  const bool isDone = IsUsable(report) && HandToEngines(options, report);
  PrintSummary(std::cout, report, truth ? &*truth : nullptr);
  if (!options.result.empty()) {
    WriteResult(options.result, report);
  }
  std::cout.flush();
  Warn(options, report);
  PrintExports(report);
  return isDone ? 0 : 1;
}

}  // namespace

void AddCalibrateCommand(CLI::App& program, int& status) {
  CLI::App* command =
      program.add_subcommand("calibrate", "Calibrate lens and camera tracker from a shoot");
  command->group("Commands");
  command->fallthrough();
  command->footer(kFooter);
  const auto options = std::make_shared<CalibrateOptions>();
  AddCalibrateOptions(*command, *options);
  command->callback([options, &status] { status = Calibrate(*options); });
}

}  // namespace trackedcam::app
