#include "app/commands/export_command.h"

#include <iostream>
#include <memory>

#include "app/options/add_path.h"
#include "app/options/add_value.h"
#include "app/options/option_values.h"
#include "app/platform.h"
#include "app/words/engine_summary.h"
#include "host/result/result_file.h"
#include "host/run/run_folder.h"
#include "host/text/json_file.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter = R"(Examples:
  trackedcam export ue4 --result result.json
  trackedcam export aximmetry --result result.json --json

The figures place the camera relative to its tracker, in the engine's axes.

Exit status: 0 done, 1 failed (such as by gimbal lock), 2 wrong usage.)";

struct ExportOptions {
  const host::Engine* engine = nullptr;
  fs::path result;
  fs::path logFolder;  // empty: the result's
  bool json = false;
};

int Export(const ExportOptions& options) {
  const host::CalibrationOutputs calibration = host::ReadResult(options.result);
  const fs::path folder = host::CreateRunFolder(
      options.logFolder.empty() ? options.result.parent_path() : options.logFolder);
  host::EngineExport engineExport;
  {
    const SilencedStdout silenced;
    engineExport = host::ExportToEngine(*options.engine, calibration, folder);
  }
  if (options.json) {
    std::cout << host::JsonText(host::EngineJson(engineExport));
  } else {
    PrintEngineExport(std::cout, engineExport);
  }
  std::cout.flush();
  PrintProblem(std::cerr, engineExport);
  return engineExport.code == 0 ? 0 : 1;
}

}  // namespace

void AddExportCommand(CLI::App& program, int& status) {
  CLI::App* command =
      program.add_subcommand("export", "Hand the result of a calibration to an engine");
  command->group("Commands");
  command->fallthrough();
  command->footer(kFooter);
  const auto options = std::make_shared<ExportOptions>();
  AddValue(*command, "engine", options->engine, ParseEngine, "ENGINE",
           "ue4, ue5, ue5-xn or aximmetry")
      ->required();
  AddPath(*command, "--result", options->result, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddPath(*command, "--log-folder", options->logFolder, "FOLDER",
          "For the log, in a folder of its own;\nelse the result file's folder");
  command->add_flag("--json", options->json, "Print the figures as JSON, at full precision");
  command->callback([options, &status] { status = Export(*options); });
}

}  // namespace trackedcam::app
