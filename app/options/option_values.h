#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/chart/chart.h"
#include "host/engines/engine.h"
#include "host/input/inputs.h"
#include "host/input/reported_axes.h"

namespace trackedcam::app {

/// The layout of the help: room for long options, and one blank line between groups.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() {
    column_width(38);
    label("SUBCOMMAND", "COMMAND");
    label("REQUIRED", "(required)");
  }

  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    return CLI::detail::find_and_replace(Formatter::make_help(app, std::move(name), mode), "\n\n\n",
                                         "\n\n");
  }
};

/// Adds an option whose value is read by one of the functions of option_values.h.
/// @param form How the value is written, for the help.
template <class Value, class Parsed>
CLI::Option* AddValue(CLI::App& command, const std::string& name, Value& value,
                      Parsed (*parse)(const std::string& option, const std::string& text),
                      const std::string& form, const std::string& description) {
  const auto store = [name, &value, parse](const std::string& text) { value = parse(name, text); };
  return command.add_option_function<std::string>(name, store, description)->type_name(form);
}

// A path option: stored as an absolute path without "." and "..".

/// @param form How the value is written, for the help: FILE or FOLDER, which tells paths from other
///             values.
inline CLI::Option* AddPath(CLI::App& command, const std::string& name, std::filesystem::path& path,
                            const std::string& form, const std::string& description) {
  const auto store = [&path](const std::string& text) {
    path = std::filesystem::absolute(std::filesystem::u8path(text)).lexically_normal();
  };
  return command.add_option_function<std::string>(name, store, description)->type_name(form);
}

inline bool IsPath(const CLI::Option& option) {
  const std::string form = option.get_type_name();
  return form.rfind("FILE", 0) == 0 || form.rfind("FOLDER", 0) == 0;
}

// How the values of options are written.

/// Each parser names the option in its error and says how to write the value.
/// @throws CLI::ValidationError when the text has another form.

/// "36x20.25": width and height in millimetres, both above 0.
std::array<double, 2> ParseSensor(const std::string& option, const std::string& text);

/// "1920x1080": width and height in pixels, both above 0.
std::array<int, 2> ParseImageSize(const std::string& option, const std::string& text);

/// "9x6": inner corners along a row and along a column, both at least 3.
std::array<int, 2> ParseBoard(const std::string& option, const std::string& text);

/// "12,-8,5": three numbers.
std::array<double, 3> ParseTriple(const std::string& option, const std::string& text);

/// "0.1,-0.05,0.02", which is metres, "10cm,-50mm,2cm" or "100,-50,20mm": three lengths in metres.
/// Without a unit none is above 3.
std::array<double, 3> ParseTranslation(const std::string& option, const std::string& text);

/// "1600,1600,955,545,-0.05,0.02": fx, fy, cx, cy in pixels, k1, k2.
std::array<double, 6> ParseLens(const std::string& option, const std::string& text);

/// "0.03", which is metres, "3cm" or "30mm": metres, above 0 and below 1.
double ParseSquare(const std::string& option, const std::string& text);

/// "299.2mm": a length above 0, in metres where it has no unit.
double ParseLength(const std::string& option, const std::string& text);

/// "A3": the name of a paper, in upper or lower case.
Paper ParsePaper(const std::string& option, const std::string& text);

/// "40": a whole number of at least 0.
int ParseCount(const std::string& option, const std::string& text);

/// "ue4": the name of an engine.
const host::Engine* ParseEngine(const std::string& option, const std::string& text);

/// "ue5,aximmetry": names of engines.
std::vector<const host::Engine*> ParseEngines(const std::string& option, const std::string& text);

/// "z,-x,y" or "z-forward": the axes of the camera's parent in an engine, kept as they are typed.
std::string ParseParentAxesText(const std::string& option, const std::string& text);

/// "unreal": the axes of the poses in a data file.
const host::TrackerAxes* ParseTrackerAxes(const std::string& option, const std::string& text);

/// "cm": the unit of the positions in a data file.
const host::TrackerUnit* ParseTrackerUnit(const std::string& option, const std::string& text);

/// "fixed" or "reported": true for the second.
bool ParseMountingAxes(const std::string& option, const std::string& text);

/// A check of an option: nothing when the path names a file, else what is wrong.
std::string RequireFile(const std::string& path);

struct MountingOptions {
  std::optional<std::array<double, 3>> rotation;     // degrees
  std::optional<std::array<double, 3>> translation;  // metres
  bool isReported = false;                           // in the axes that the tracking system reports
};

/// Adds --chart-rotation, --chart-translation and --mounting-axes to a group of the help.
void AddMountingOptions(CLI::App& command, MountingOptions& options, const std::string& group);

/// In the tracker's axes after the axis fix. Nothing where none is stated.
/// @throws CLI::ValidationError where only one half is.
std::optional<host::Mounting> MountingOf(const MountingOptions& options);

}  // namespace trackedcam::app
