#include "app/commands/export_command.h"

#include <iostream>
#include <memory>

#include "app/engines/engine_json.h"
#include "app/engines/engine_summary.h"
#include "app/options/add_path.h"
#include "app/options/add_value.h"
#include "app/options/create_folder.h"
#include "app/options/option_values.h"
#include "app/result/result_file.h"
#include "app/text/json_file.h"

namespace trackedcam::app {
namespace {

constexpr const char* kFooter = R"(Examples:
  trackedcam export ue4 --result result.json
  trackedcam export aximmetry --result result.json --json

The figures place the camera relative to its tracker, in the engine's axes.

Exit status: 0 done, 1 failed (such as by gimbal lock), 2 wrong usage.)";

struct ExportOptions {
  const Engine* engine = nullptr;
  std::filesystem::path result;
  std::filesystem::path logFolder;  // empty: the result's
  bool json = false;
};

int Export(const ExportOptions& options) {
  const CalibrationOutputs calibration = ReadResult(options.result);
  const std::filesystem::path logFolder =
      options.logFolder.empty() ? options.result.parent_path() : options.logFolder;
  CreateFolder("--log-folder", logFolder);

  const EngineExport engineExport =
      ExportToEngine(*options.engine, calibration, logFolder, /*verbose=*/false);
  if (options.json) {
    std::cout << JsonText(EngineJson(engineExport));
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
          "For the log, created when missing;\nelse the result file's folder");
  command->add_flag("--json", options->json, "Print the figures as JSON, at full precision");
  command->callback([options, &status] { status = Export(*options); });
}

}  // namespace trackedcam::app
