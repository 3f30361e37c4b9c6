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

constexpr const char* kExportFooter = R"(Examples:
  trackedcam export unreal --result result.json --out lens.ulens
  trackedcam export unity --result result.json --parent-axes minus-z-forward
  trackedcam export aximmetry --result result.json --json

Prints the pose of the camera relative to its tracker, in the engine's axes.

The parent is the component or transform that the tracker moves. Its axes are
z-forward, minus-z-forward, or X, Y and Z in the tracker's reported axes, such
as z,-x,y.

Exit status: 0 done, 1 failed (such as gimbal lock), 2 wrong usage.)";

struct ExportOptions {
  const host::Engine* engine = nullptr;
  fs::path result;
  fs::path logFolder;  // empty: the result file's folder
  std::string parentAxes;
  fs::path out;  // empty: none
  bool json = false;
};

void RequireFit(const ExportOptions& options, const fs::path& configFile) {
  const std::string name(options.engine->name);
  if (!options.parentAxes.empty() && !options.engine->takesParentAxes) {
    throw CLI::ValidationError("--parent-axes",
                               "is for unreal and unity; the axes of " + name + " are fixed");
  }
  if (options.out.empty()) {
    return;
  }
  if (name != "unreal") {
    throw CLI::ValidationError("--out",
                               "is for unreal; type in the values for " + name + ", or use --json");
  }
  if (CLI::detail::to_lower(options.out.extension().u8string()) != ".ulens") {
    throw CLI::ValidationError("--out", options.out.u8string() +
                                            " does not end in .ulens, the ending of a Lens File "
                                            "of Unreal");
  }
  PrepareOutputFile({"--out", options.out, "a Lens File of trackedcam", host::IsLensFile},
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
  if (!options.out.empty() && engineExport.values.unreal) {
    host::WriteFile(options.out,
                    host::LensFileText(*engineExport.values.unreal, options.out.stem().u8string()));
    std::cerr << "Wrote " << options.out.u8string() << '\n';
  }
  return engineExport.code == 0 ? 0 : 1;
}

}  // namespace

void AddExportCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "export", "Convert a result for an engine", kExportFooter);
  const auto options = std::make_shared<ExportOptions>();
  AddValue(command, "engine", options->engine, ParseEngine, "ENGINE",
           "unreal, unity, ue4, ue5, ue5-xn or aximmetry")
      ->required();
  AddPath(command, "--result", options->result, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddPath(command, "--log-folder", options->logFolder, "FOLDER",
          "Folder for the library's log\n(default: the result file's folder)");
  AddValue(command, "--parent-axes", options->parentAxes, ParseParentAxesText, "X,Y,Z",
           kParentAxesHelp);
  AddPath(command, "--out", options->out, "FILE.ulens", "For unreal: Lens File to import");
  command.add_flag("--json", options->json, "Values as JSON, at full precision");
  command.callback(
      [options, &program, &status] { status = Export(*options, ConfigFile(program)); });
}

}  // namespace trackedcam::app
