#include "app/calibrate_command.h"

#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>

#include "app/calibrate_options.h"
#include "app/calibration_run.h"
#include "app/data_file.h"
#include "app/reprojected_images.h"
#include "app/result_json.h"
#include "app/summary.h"
#include "app/truth.h"
#include "app/verdict.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter = R"(Examples:
  trackedcam calibrate --config shoot/shoot.toml
  trackedcam calibrate --data tracker_data.csv --sensor 36x20.25 --board 9x6 --square 0.03
      --chart-rotation 12,-8,5 --chart-translation 0.1,-0.05,0.02 --log-folder log

With --config FILE the options come from a file, where they stand below [calibrate] as in
"square = 0.03". Paths in it are relative to its folder; the command line wins over it.

Exit status: 0 calibrated (code 0, or 99 with a warning), 1 failed, 2 wrong usage.)";

void CreateFolder(const std::string& option, const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    throw CLI::ValidationError(
        option, "cannot create the folder " + folder.u8string() + ": " + error.message());
  }
}

void PrepareOutput(const CalibrateOptions& options, const std::vector<std::string>& photographs) {
  CreateFolder("--log-folder", options.logFolder);
  CreateReprojectedImageFolders(options.logFolder, photographs);
  if (!options.result.empty()) {
    if (fs::is_directory(options.result)) {
      throw CLI::ValidationError("--result",
                                 options.result.u8string() + " is a folder, not a file");
    }
    if (options.result == options.data || options.result == options.truth) {
      throw CLI::ValidationError("--result", options.result.u8string() + " would be overwritten");
    }
    CreateFolder("--result", options.result.parent_path());
    // A run that is broken off must not leave the figures of the one before.
    fs::remove(options.result);
  }
}

void WriteResult(const fs::path& path, const CalibrationReport& report) {
  std::ofstream file(path, std::ios::binary);
  file << ResultJsonText(report);
  file.close();
  if (!file) {
    throw std::runtime_error("cannot write " + path.u8string());
  }
  std::cout << "Result: " << path.u8string() << '\n';
}

void Warn(const CalibrateOptions& options, const CalibrationReport& report) {
  if (report.code == kSuccess) {
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
  std::cerr << (IsUsable(report.code) ? "warning: " : "error " + std::to_string(report.code) + ": ")
            << VerdictOf(report.code).words << '\n';
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

  const CalibrationReport report = RunCalibration(options, photographs.size());
  PrintSummary(std::cout, report, truth ? &*truth : nullptr);
  if (!options.result.empty()) {
    WriteResult(options.result, report);
  }
  std::cout.flush();
  Warn(options, report);
  return IsUsable(report.code) ? 0 : 1;
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
