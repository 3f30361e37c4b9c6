#include "app/commands/crosscheck_command.h"

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/options/option_values.h"
#include "app/terminal/next_commands.h"
#include "app/terminal/summary.h"
#include "host/calibrate.h"
#include "host/result/result_file.h"
#include "host/result/result_json.h"
#include "host/text/files.h"

namespace trackedcam::app {
namespace {

constexpr const char* kCrosscheckFooter = R"(Examples:
  trackedcam crosscheck --log log/run_001/log_2026-11-21-14.05.09.txt \
      --config shoot/shoot.toml
  trackedcam crosscheck --log log.txt \
      --chart-rotation=12,-8,5 --chart-translation=0.1,-0.05,0.02

The mounting is the one that was passed to the library. With --config, it and
the truth come from the section [calibrate].

Exit status:
  0  good, or usable with a warning
  1  the run of the log failed
  2  wrong usage
  3  the cross-check is certain that the result is wrong)";

struct CrosscheckOptions {
  std::filesystem::path log;
  MountingOptions mounting;
  host::Accuracy goodEnough;
  double scaleUncertainty = host::Inputs().scaleUncertainty;
  std::vector<double> atMetres;
  std::filesystem::path truth;  // empty: unknown
  std::vector<std::string> exclude;
  bool json = false;
};

int Crosscheck(const CrosscheckOptions& options, const std::string& commandLine) {
  host::Report report =
      host::CheckLog(options.log, MountingOf(options.mounting), options.goodEnough,
                     options.scaleUncertainty, options.exclude, options.atMetres);
  report.inputs.hasReportedMountingAxes = options.mounting.isReported;
  report.verdict.option.clear();  // only calibrate has it
  report.verdict.commands = NextCalibrations(commandLine, report.verdict);
  if (options.json) {
    std::cout << host::JsonText(host::ResultJson(report));
  } else {
    std::optional<host::CalibrationOutputs> truth;
    if (!options.truth.empty()) {
      truth = host::ReadTruth(options.truth, {1, 1});  // the log does not have the sensor
    }
    PrintSummary(std::cout, report, truth ? &*truth : nullptr);
  }
  std::cout.flush();
  PrintWarning(std::cerr, report);
  return ExitStatus(report);
}

}  // namespace

void AddCrosscheckCommand(CLI::App& program, const std::string& commandLine, int& status) {
  CLI::App& command =
      AddCommand(program, "crosscheck", "Check a calibration from its log", kCrosscheckFooter);
  const auto options = std::make_shared<CrosscheckOptions>();
  AddPath(command, "--log", options->log, "FILE", "Log of a calibration, by any program")
      ->required()
      ->check(RequireFile);
  AddExclude(command, options->exclude, "Options");
  AddMountingOptions(command, options->mounting, "not known", "Options");
  AddAccuracyOptions(command, options->goodEnough, options->scaleUncertainty, options->atMetres,
                     "Options");
  AddPath(command, "--truth", options->truth, "FILE.json",
          "Truth of a simulated shoot, to compare with")
      ->check(RequireFile);
  command.add_flag("--json", options->json, "All values as JSON, as in the result file");
  command.callback([options, commandLine, &status] { status = Crosscheck(*options, commandLine); });
}

}  // namespace trackedcam::app
