#include "app/commands/export_command.h"

#include <iostream>
#include <memory>

#include <nlohmann/json.hpp>

#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "app/terminal/engine_summary.h"
#include "host/result/result_file.h"
#include "host/run/run_folder.h"
#include "host/silenced_stdout.h"
#include "host/text/files.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFooter = R"(Examples:
  trackedcam export unreal --result result.json --out lens.ulens
  trackedcam export unity --result result.json --parent-axes minus-z-forward
  trackedcam export aximmetry --result result.json --json

The figures place the camera relative to its tracker, in the engine's axes.

Exit status: 0 done, 1 failed (such as by gimbal lock), 2 wrong usage.)";

struct ExportOptions {
  const host::Engine* engine = nullptr;
  fs::path result;
  fs::path logFolder;  // empty: the result's
  std::string parentAxes;
  fs::path out;  // empty: not wanted
  bool json = false;
};

void RequireFit(const ExportOptions& options, const fs::path& configFile) {
  const std::string name(options.engine->name);
  if (!options.parentAxes.empty() && !options.engine->takesParentAxes) {
    throw CLI::ValidationError("--parent-axes", "is for unreal and unity; the figures of " + name +
                                                    " have axes of their own");
  }
  if (options.out.empty()) {
    return;
  }
  if (name != "unreal") {
    throw CLI::ValidationError(
        "--out", name + " reads no file: type the figures in, or take them with --json");
  }
  if (CLI::detail::to_lower(options.out.extension().u8string()) != ".ulens") {
    throw CLI::ValidationError("--out", options.out.u8string() +
                                            " does not end in .ulens, by which Unreal knows a "
                                            "lens file");
  }
  PrepareOutputFile({"--out", options.out, "a lens file of trackedcam", host::IsLensFile},
                    {options.result, configFile});
}

host::EngineExport RunExport(const ExportOptions& options, const host::ExportInput& input) {
  if (options.engine->takesParentAxes) {
    return host::ExportToEngine(*options.engine, input, {});
  }
  const fs::path folder = host::CreateRunFolder(
      options.logFolder.empty() ? options.result.parent_path() : options.logFolder);
  const host::SilencedStdout silenced;
  return host::ExportToEngine(*options.engine, input, folder);
}

int Export(const ExportOptions& options, const fs::path& configFile) {
  RequireFit(options, configFile);
  host::ExportInput input = host::ReadResult(options.result);
  input.parentAxes = options.parentAxes;
  const host::EngineExport engineExport = RunExport(options, input);
  if (options.json) {
    std::cout << host::JsonText(host::EngineJson(engineExport));
  } else {
    PrintEngineExport(std::cout, engineExport);
  }
  std::cout.flush();
  PrintProblem(std::cerr, engineExport);
  if (!options.out.empty() && engineExport.figures.unreal) {
    host::WriteFile(options.out, host::LensFileText(*engineExport.figures.unreal,
                                                    options.out.stem().u8string()));
    std::cerr << "Wrote " << options.out.u8string() << '\n';
  }
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
           "unreal, unity, ue4, ue5, ue5-xn or aximmetry")
      ->required();
  AddPath(*command, "--result", options->result, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddPath(*command, "--log-folder", options->logFolder, "FOLDER",
          "For the library's log, in a folder of its own;\nelse the result file's folder");
  AddValue(*command, "--parent-axes", options->parentAxes, ParseParentAxesText, "X,Y,Z",
           "Of the camera's parent in unreal or unity, in\nreported axes, such as z,-x,y, or "
           "z-forward\n(presumed) or minus-z-forward");
  AddPath(*command, "--out", options->out, "FILE.ulens", "Of unreal: write a Lens File to import");
  command->add_flag("--json", options->json, "Print the figures as JSON, at full precision");
  command->callback(
      [options, &program, &status] { status = Export(*options, ConfigFile(program)); });
}

}  // namespace trackedcam::app
