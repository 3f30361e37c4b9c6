#include "app/commands/calibrate_command.h"

#include <iostream>
#include <memory>
#include <optional>

#include "app/commands/calibrate_options.h"
#include "app/options/create_folder.h"
#include "app/options/output_file.h"
#include "app/platform.h"
#include "app/words/engine_summary.h"
#include "app/words/progress_bar.h"
#include "app/words/summary.h"
#include "host/calibrate.h"
#include "host/input/mounting_axes.h"
#include "host/result/result_json.h"
#include "host/result/truth.h"
#include "host/text/file_text.h"
#include "host/text/json_file.h"
#include "host/verdict/verdict.h"

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

void PrepareOutput(const CalibrateOptions& options) {
  CreateFolder("--log-folder", options.inputs.logFolder);
  if (!options.result.empty()) {
    if (options.result == options.inputs.data || options.result == options.truth) {
      throw CLI::ValidationError("--result", options.result.u8string() + " would be overwritten");
    }
    PrepareOutputFile("--result", options.result);
  }
}

// With the library's own lines when they are wanted; else with a progress bar where standard error
// is a terminal.
host::Report RunCalibration(const CalibrateOptions& options) {
  std::optional<SilencedStdout> silenced;
  if (!options.verbose) {
    silenced.emplace();
  }
  ProgressBar bar(std::cerr);
  const bool isShown = !options.verbose && IsTerminal(stderr);
  host::Report report = host::Calibrate(options.inputs, [&](const host::Progress& progress) {
    if (isShown) {
      bar.Show(progress);
    }
  });
  // Engines get no figures of a failed calibration.
  if (host::IsUsable(report.run)) {
    for (const host::Engine* engine : options.exports) {
      report.exports.push_back(host::ExportToEngine(
          *engine, {report.run.outputs, options.inputs.sensorMm, options.parentAxes},
          report.run.folder / engine->name));
    }
  }
  return report;
}

void WriteResult(const fs::path& path, const host::Report& report) {
  host::WriteFile(path, host::JsonText(host::ResultJson(report)));
  std::cout << "Result: " << path.u8string() << '\n';
}

void Warn(const CalibrateOptions& options, const host::LibraryRun& run) {
  if (run.code == host::kSuccess && host::IsUsable(run)) {
    return;
  }
  std::cerr << "trackedcam: ";
  if (run.code == host::kTooFewPhotographs && host::IsBoardNowhere(run.record)) {
    const auto size = [&](int less) {
      return std::to_string(options.inputs.board[0] - less) + 'x' +
             std::to_string(options.inputs.board[1] - less);
    };
    std::cerr << "No board of " << size(0) << " inner corners was found in any photograph: --board "
              << "counts inner corners, so a chart of " << size(0) << " squares is " << size(1)
              << ".\n";
    return;
  }
  const std::string code = run.code ? ' ' + std::to_string(*run.code) : "";
  std::cerr << (host::IsUsable(run) ? "warning: " : "error" + code + ": ")
            << host::VerdictOf(run).words << '\n';
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

int Calibrate(CalibrateOptions options) {
  host::Inputs& inputs = options.inputs;
  if (inputs.workingFolder.empty()) {
    inputs.workingFolder = inputs.data.parent_path();
  }
  if (options.mountingIsReported && inputs.mounting) {
    inputs.mounting = host::FromReportedAxes(*inputs.mounting);
  }
  std::optional<host::CalibrationOutputs> truth;
  if (!options.truth.empty()) {
    truth = host::ReadTruth(options.truth, inputs.sensorMm);
  }
  host::ReadDataFile(inputs.data);
  PrepareOutput(options);
  fs::current_path(inputs.workingFolder);  // photographs keep their names

  const host::Report report = RunCalibration(options);
  PrintSummary(std::cout, report, truth ? &*truth : nullptr);
  if (!options.result.empty()) {
    WriteResult(options.result, report);
  }
  std::cout.flush();
  Warn(options, report.run);
  return PrintExports(report) && host::IsUsable(report.run) ? 0 : 1;
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
