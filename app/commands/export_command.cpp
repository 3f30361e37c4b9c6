#include "app/commands/export_command.h"

#include <iostream>
#include <memory>
#include <optional>

#include <nlohmann/json.hpp>

#include "app/commands/config_file.h"
#include "app/options/option_values.h"
#include "app/options/outputs.h"
#include "app/terminal/engine_summary.h"
#include "app/terminal/output.h"
#include "host/lens_files/export_format.h"
#include "host/lens_files/stmap.h"
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
  trackedcam export opencv --result result.json --out camera.yml
  trackedcam export stmap --result result.json --out lens.exr

To an engine: prints the pose of the camera relative to its tracker, in the
engine's axes, and the lens.
To a file of another program: prints it, or writes it with --out. stmap writes
two, here lens_undistort.exr and lens_distort.exr.

The parent is the component or transform that the tracker moves. Its axes are
z-forward, minus-z-forward, or X, Y and Z in the tracker's reported axes, such
as z,-x,y.

Exit status: 0 done, 1 failed (such as gimbal lock), 2 wrong usage, 3 the result
is certainly wrong and was not exported.)";

constexpr int kFailed = 1;
constexpr int kWrongResult = 3;

struct ExportOptions {
  host::ExportFormat format;
  fs::path result;
  fs::path logFolder;  // empty: the result file's folder
  std::string parentAxes;
  fs::path out;  // empty: none
  bool hasNodalOffset = false;
  host::LensFileOptions file;
  fs::path preview;  // empty: none
  bool json = false;
  bool evenIfWrong = false;
};

[[noreturn]] void RejectOption(const std::string& option, const std::string& reason) {
  throw CLI::ValidationError(option, reason);
}

void RequireAxes(const ExportOptions& options) {
  try {
    RequireParentAxes(options.format, options.parentAxes);
  } catch (const host::InputError& error) {
    RejectOption("--parent-axes", error.what());
  }
}

void RequireEnding(const ExportOptions& options) {
  const std::vector<std::string_view> endings = options.format.file != nullptr
                                                    ? options.format.file->endings
                                                    : std::vector<std::string_view>{".ulens"};
  const std::string ending = CLI::detail::to_lower(options.out.extension().u8string());
  for (const std::string_view known : endings) {
    if (ending == known) {
      return;
    }
  }
  RejectOption("--out", options.out.u8string() + " does not end in " +
                            std::string(endings.front()) + ", the ending of a file for " +
                            NameOf(options.format));
}

void RequireFit(const ExportOptions& options) {
  const host::ExportFormat& format = options.format;
  RequireAxes(options);
  if (options.hasNodalOffset && (!IsUnreal(format) || options.out.empty())) {
    RejectOption("--nodal-offset", "is for a Lens File: export unreal with --out");
  }
  if (options.file.overscan && !IsStMap(format)) {
    RejectOption("--overscan", "is for stmap, not for " + NameOf(format));
  }
  if (!options.preview.empty() && !IsStMap(format)) {
    RejectOption("--preview", "is for stmap, not for " + NameOf(format));
  }
  if (IsStMap(format) && options.out.empty()) {
    RejectOption("--out", "is required for stmap");
  }
  if (!options.out.empty()) {
    if (format.engine != nullptr && !IsUnreal(format)) {
      RejectOption("--out", "is not for " + NameOf(format) + ": type in the values, or use --json");
    }
    if (!IsStandardOutput(options.out)) {
      RequireEnding(options);
    } else if (IsStMap(format)) {
      RejectOption("--out", "names two files for stmap, so it cannot be standard output");
    }
  }
}

// Before the files are computed.
std::vector<std::string> SuffixesOf(const host::ExportFormat& format) {
  return IsStMap(format) ? std::vector<std::string>{"_undistort", "_distort"}
                         : std::vector<std::string>{""};
}

void PrepareOutputs(const ExportOptions& options, const fs::path& configFile) {
  std::vector<fs::path> inputs = {options.result, configFile};
  const auto prepare = [&](const OutputFile& output) {
    PrepareOutputFile(output, inputs);
    inputs.push_back(output.file);
  };
  for (const std::string& suffix : SuffixesOf(options.format)) {
    if (IsUnreal(options.format) && !options.out.empty()) {
      prepare({"--out", options.out, "a Lens File of trackedcam", host::IsLensFile});
    } else if (!options.out.empty()) {
      prepare({"--out", host::WithSuffix(options.out, suffix), "a file of trackedcam export",
               host::IsExportFile});
    }
  }
  if (!options.preview.empty()) {
    if (CLI::detail::to_lower(options.preview.extension().u8string()) != ".png") {
      RejectOption("--preview", options.preview.u8string() + " does not end in .png");
    }
    prepare({"--preview", options.preview, "a preview of trackedcam export", host::IsExportFile});
  }
}

void Write(const fs::path& file, const std::string& content) {
  WriteOutput(file, content);
  if (!IsStandardOutput(file)) {
    std::cerr << "Wrote " << file.u8string() << '\n';
  }
}

host::EngineExport RunExport(const ExportOptions& options, const host::ExportInput& input) {
  const host::Engine& engine = *options.format.engine;
  if (engine.takesParentAxes) {
    return host::ExportToEngine(engine, input, {});
  }
  const fs::path folder = host::CreateRunFolder(
      options.logFolder.empty() ? options.result.parent_path() : options.logFolder);
  const host::SilencedStdout silenced;
  return host::ExportToEngine(engine, input, folder);
}

int ExportToEngine(const ExportOptions& options, const host::ExportInput& input) {
  const host::EngineExport engineExport = RunExport(options, input);
  std::ostream& out = TextBeside(options.out);
  if (options.json) {
    out << host::JsonText(host::EngineJson(engineExport));
  } else {
    PrintEngineExport(out, engineExport);
  }
  out.flush();
  PrintProblem(std::cerr, engineExport);
  if (!options.out.empty() && engineExport.values.unreal) {
    Write(options.out, host::LensFileText(*engineExport.values.unreal,
                                          options.out.stem().u8string(), options.hasNodalOffset));
  }
  return engineExport.code == 0 ? 0 : kFailed;
}

void PrintStMaps(const host::LensModel& lens, const std::array<int, 2>& size) {
  std::cout << "ST maps for " << lens.width << 'x' << lens.height << '\n';
  PrintRow(std::cout, "undistorted picture, pixels",
           {std::to_string(size[0]), std::to_string(size[1])});
  PrintRow(std::cout, "overscan",
           {static_cast<double>(size[0]) / lens.width, static_cast<double>(size[1]) / lens.height},
           7);
}

int ExportToFile(const ExportOptions& options, const host::ExportInput& input) {
  const host::LensFileFormat& format = *options.format.file;
  const std::vector<host::LensFile> files = format.write(input, options.file);
  if (options.json) {
    TextBeside(options.out) << host::JsonText(host::LensFileJson(format, input, options.file));
  } else if (!format.isText) {
    const host::LensModel lens = host::LensModelOf(input.calibration);
    PrintStMaps(lens, host::UndistortedSize(lens, options.file.overscan));
  } else if (options.out.empty()) {
    std::cout << files.front().content;
  }
  std::cout.flush();
  for (const host::LensFile& file : files) {
    if (!options.out.empty()) {
      Write(host::WithSuffix(options.out, file.suffix), file.content);
    }
  }
  return 0;
}

int Export(const ExportOptions& options, const fs::path& configFile) {
  RequireFit(options);
  PrepareOutputs(options, configFile);
  host::ExportInput input = host::ReadResult(options.result);
  input.parentAxes = options.parentAxes;
  const std::string refusal = RefusalOf(*input.origin, "--even-if-wrong");
  if (!refusal.empty() && !options.evenIfWrong) {
    std::cerr << "trackedcam: error: " << refusal << '\n';
    return kWrongResult;
  }
  const int status = options.format.engine != nullptr ? ExportToEngine(options, input)
                                                      : ExportToFile(options, input);
  if (!options.preview.empty()) {
    Write(options.preview, host::PreviewOf(input, options.file));
  }
  const std::string doubt = DoubtOf(*input.origin);
  if (!doubt.empty()) {
    std::cerr << "trackedcam: warning: " << doubt << '\n';
  }
  return status;
}

}  // namespace

void AddExportCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "export", "Convert a result for an engine or program", kExportFooter);
  const auto options = std::make_shared<ExportOptions>();
  AddValue(command, "format", options->format, ParseExportFormat, "FORMAT",
           "An engine: unreal, unity, ue4, ue5, ue5-xn,\naximmetry; or a file: opencv, ros, "
           "colmap,\nopentrackio, stmap")
      ->required();
  AddPath(command, "--result", options->result, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddPath(command, "--log-folder", options->logFolder, "FOLDER",
          "Folder for the library's log\n(default: the result file's folder)");
  command
      .add_option(
          "--parent-axes", options->parentAxes,
          "Axes of the camera's parent in unreal, unity\nor opentrackio (default: z-forward)")
      ->type_name("X,Y,Z");
  AddOutput(command, "--out", options->out, "FILE",
            "File to write; for unreal a Lens File, .ulens;\n- is standard output");
  command.add_flag("--nodal-offset", options->hasNodalOffset,
                   "For unreal: the pose in the Lens File too, for\na camera that the tracker "
                   "moves itself");
  AddValue(command, "--overscan", options->file.overscan, ParseOverscan, "FACTOR",
           "For stmap: size of the undistorted picture, in\nsizes of the photograph (default: as "
           "needed)");
  AddPath(command, "--preview", options->preview, "FILE.png",
          "For stmap: a photograph without its distortion");
  command.add_flag("--json", options->json, "Values as JSON, at full precision");
  command.add_flag("--even-if-wrong", options->evenIfWrong,
                   "Export of a result that is certainly wrong");
  command.callback(
      [options, &program, &status] { status = Export(*options, ConfigFile(program)); });
}

}  // namespace trackedcam::app
