// What the commands share: the form of the help, kinds of options, parsers of their values, and the
// options for the mounting.

#pragma once

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/chart/printed_chart.h"
#include "host/engines/engine.h"
#include "host/input/inputs.h"
#include "host/input/reported_axes.h"
#include "host/lens_files/export_format.h"

namespace trackedcam::app {

// The help.

class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() {
    column_width(34);
    label("SUBCOMMAND", "COMMAND");
    label("REQUIRED", "(required)");
  }

  // One blank line between groups.
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    return CLI::detail::find_and_replace(Formatter::make_help(app, std::move(name), mode), "\n\n\n",
                                         "\n\n");
  }

  // Without "Excludes: --no-report" and "Needs: --watch", which break the column: the text of the
  // option says it.
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string text = Formatter::make_option_opts(option);
    return text.substr(0, std::min(text.find(" Excludes:"), text.find(" Needs:")));
  }
};

/// Adds a command to the program. It takes the program's options too.
CLI::App& AddCommand(CLI::App& program, const std::string& name, const std::string& description,
                     const char* footer);

constexpr const char* kParentAxesHelp =
    "Axes of the camera's parent in unreal or unity\n(default: z-forward)";

// Kinds of options.

/// Adds an option with one of the parsers below.
/// @param form How the value is written, for the help.
template <class Value, class Parsed>
CLI::Option* AddValue(CLI::App& command, const std::string& name, Value& value,
                      Parsed (*parse)(const std::string& option, const std::string& text),
                      const std::string& form, const std::string& description) {
  const auto store = [name, &value, parse](const std::string& text) { value = parse(name, text); };
  return command.add_option_function<std::string>(name, store, description)->type_name(form);
}

/// An absolute path without "." and "..".
/// @throws CLI::ValidationError if it is empty, or has a line ending or another control character.
std::filesystem::path ParsePath(const std::string& option, const std::string& text);

/// Between the paths of an option for several: a control character, which no path may have.
constexpr char kBetweenPaths = '\x1F';

/// The path of a file that is written; "-" is standard output.
std::filesystem::path ParseOutput(const std::string& option, const std::string& text);

/// Adds an option for a path.
/// @param form FILE or FOLDER at the beginning: IsPath recognises these options by it.
inline CLI::Option* AddPath(CLI::App& command, const std::string& name, std::filesystem::path& path,
                            const std::string& form, const std::string& description) {
  return AddValue(command, name, path, ParsePath, form, description);
}

inline CLI::Option* AddOutput(CLI::App& command, const std::string& name,
                              std::filesystem::path& path, const std::string& form,
                              const std::string& description) {
  return AddValue(command, name, path, ParseOutput, form, description);
}

inline bool IsPath(const CLI::Option& option) {
  const std::string form = option.get_type_name();
  return form.rfind("FILE", 0) == 0 || form.rfind("FOLDER", 0) == 0;
}

/// Checks of an option: empty if the path is that of a file or a folder, otherwise the error.
std::string RequireFile(const std::string& path);
std::string RequireFolder(const std::string& path);

// Parsers of values. An error names the option and says how to write the value.
// All throw CLI::ValidationError if the text is invalid.

/// "36x20.25": width and height in millimetres, both above 0.
std::array<double, 2> ParseSensor(const std::string& option, const std::string& text);

/// "1920x1080": width and height in pixels, both above 0.
std::array<int, 2> ParseImageSize(const std::string& option, const std::string& text);

/// "9x6": inner corners along a row and along a column, both from 3 to 100.
std::array<int, 2> ParseBoard(const std::string& option, const std::string& text);

/// "0.03", which is metres, "3cm" or "30mm": metres, above 0 and below 1.
double ParseSquare(const std::string& option, const std::string& text);

/// "299.2mm": a length above 0; without a unit in metres.
double ParseLength(const std::string& option, const std::string& text);

/// "12,-8,5": three numbers.
std::array<double, 3> ParseTriple(const std::string& option, const std::string& text);

/// "0.1,-0.05,0.02", which is metres, "10cm,-50mm,2cm" or "100,-50,20mm": three lengths in metres.
/// Without a unit none may be above 3.
std::array<double, 3> ParseTranslation(const std::string& option, const std::string& text);

/// "2mm,0.2deg" or "2,0.2": millimetres and degrees, both above 0.
host::Accuracy ParseGoodEnough(const std::string& option, const std::string& text);

/// "0.1%" or "0.1", from 0 to 10: as a fraction.
double ParsePercent(const std::string& option, const std::string& text);

/// "fixed" or "reported": true for the second.
bool ParseMountingAxes(const std::string& option, const std::string& text);

/// "1600,1600,955,545,-0.05,0.02": fx, fy, cx, cy in pixels, k1, k2.
std::array<double, 6> ParseLens(const std::string& option, const std::string& text);

/// "0.001,-0.0005": tangential distortion, p1 and p2.
std::array<double, 2> ParseTangential(const std::string& option, const std::string& text);

/// "A3": the name of a paper, in upper or lower case.
Paper ParsePaper(const std::string& option, const std::string& text);

/// "40": a whole number of at least 0.
int ParseCount(const std::string& option, const std::string& text);

/// "unreal": the axes of the poses in a data file.
const host::TrackerAxes* ParseTrackerAxes(const std::string& option, const std::string& text);

/// "wxyz" or "xyzw": true for the second.
bool ParseQuaternionOrder(const std::string& option, const std::string& text);

/// "cm": the unit of the positions in a data file.
const host::TrackerUnit* ParseTrackerUnit(const std::string& option, const std::string& text);

/// "full" or "small": true for the first.
bool ParsePagePhotographs(const std::string& option, const std::string& text);

/// "img_003,img_007": names without blanks around them, none of them empty.
std::vector<std::string> ParseNames(const std::string& option, const std::string& text);

/// "ue4": the name of an engine.
const host::Engine* ParseEngine(const std::string& option, const std::string& text);

/// "ue5,aximmetry": names of engines.
std::vector<const host::Engine*> ParseEngines(const std::string& option, const std::string& text);

/// "ue4" or "opencv": the name of an engine or of a file format.
host::ExportFormat ParseExportFormat(const std::string& option, const std::string& text);

/// "1.1": from 1 to host::kMostOverscan.
double ParseOverscan(const std::string& option, const std::string& text);

/// "z,-x,y" or "z-forward": the axes of the camera's parent in an engine, checked, but returned as
/// they were written.
std::string ParseParentAxesText(const std::string& option, const std::string& text);

/// "4m,80cm": distances in metres.
std::vector<double> ParseDistances(const std::string& option, const std::string& text);

/// Adds --page-photographs, for calibrate and report.
/// @param areFull Whether the page holds photographs that show the sharpness.
void AddPagePhotographs(CLI::App& command, bool& areFull, const std::string& group);

/// Adds --exclude, for calibrate and crosscheck. Given several times, its lists are joined.
void AddExclude(CLI::App& command, std::vector<std::string>& exclude, const std::string& group);

/// Adds --at.
void AddDistances(CLI::App& command, std::vector<double>& atMetres, const std::string& group = "");

/// Adds --good-enough, --scale-uncertainty and --at, for calibrate and crosscheck.
void AddAccuracyOptions(CLI::App& command, host::Accuracy& goodEnough, double& scaleUncertainty,
                        std::vector<double>& atMetres, const std::string& group);

// The mounting of the chart's tracker, for calibrate and crosscheck.

struct MountingOptions {
  std::optional<std::array<double, 3>> rotation;     // degrees
  std::optional<std::array<double, 3>> translation;  // metres
  bool isReported = false;                           // in the tracker's reported axes
};

/// Adds --chart-rotation, --chart-translation and --mounting-axes.
/// @param standard What the help names as the default of the first two.
/// @param group Of the help.
void AddMountingOptions(CLI::App& command, MountingOptions& options, const std::string& standard,
                        const std::string& group);

/// In the tracker's axes after the axis fix. Nothing if no mounting is stated.
/// @throws CLI::ValidationError if only the rotation or only the translation is stated.
std::optional<host::Mounting> MountingOf(const MountingOptions& options);

}  // namespace trackedcam::app
