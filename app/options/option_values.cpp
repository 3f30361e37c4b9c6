#include "app/options/option_values.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "host/input/inputs.h"
#include "host/input/reported_axes.h"
#include "host/lens_files/stmap.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

using host::Engine;
using host::kEngines;
using host::ParseInteger;
using host::ParseNumber;
using host::Shortest;

constexpr double kFarthestMounting = 3;  // metres; a tracker is on its chart or near it

// Without the path: it could look like another line of the message.
constexpr const char* kControlCharacter =
    "the path has a line ending or another control character; rename the file or folder";

[[noreturn]] void Reject(const std::string& option, const std::string& reason) {
  throw CLI::ValidationError(option, reason);
}

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// Nothing unless there are exactly N parts. Blanks around them are removed.
template <std::size_t N>
std::optional<std::array<std::string_view, N>> SplitParts(std::string_view text, char separator) {
  std::array<std::string_view, N> parts;
  for (std::size_t i = 0; i < N; ++i) {
    const bool isLast = i + 1 == N;
    const std::size_t length = isLast ? text.size() : text.find(separator);
    if (length == std::string_view::npos) {
      return std::nullopt;
    }
    parts[i] = Trim(text.substr(0, length));
    text.remove_prefix(isLast ? length : length + 1);
  }
  return parts;
}

// False unless the text is a list of N finite numbers.
template <std::size_t N>
bool Split(std::string_view text, char separator, std::array<double, N>& numbers) {
  const auto parts = SplitParts<N>(text, separator);
  for (std::size_t i = 0; parts && i < N; ++i) {
    const auto number = ParseNumber((*parts)[i]);
    if (!number || !std::isfinite(*number)) {
      return false;
    }
    numbers[i] = *number;
  }
  return parts.has_value();
}

std::optional<std::array<int, 2>> SplitIntegers(std::string_view text) {
  const std::size_t separator = text.find('x');
  if (separator == std::string_view::npos) {
    return std::nullopt;
  }
  const auto first = ParseInteger(text.substr(0, separator));
  const auto second = ParseInteger(text.substr(separator + 1));
  if (!first || !second) {
    return std::nullopt;
  }
  return std::array<int, 2>{*first, *second};
}

// "mm", "cm", or empty for metres.
std::string_view UnitOf(std::string_view text) {
  const std::string_view end = text.substr(std::max<std::size_t>(text.size(), 2) - 2);
  return end == "mm" || end == "cm" ? end : std::string_view();
}

// A unit becomes an exponent, which is exact: "12.7mm" is the number 12.7e-3.
std::optional<double> ParseMetres(std::string_view number, std::string_view unit) {
  if (unit.empty()) {
    return ParseNumber(number);
  }
  return ParseNumber(std::string(Trim(number)) + (unit == "mm" ? "e-3" : "e-2"));
}

std::optional<double> ParseMetres(std::string_view text) {
  const std::string_view unit = UnitOf(text);
  return ParseMetres(text.substr(0, text.size() - unit.size()), unit);
}

std::string_view WithoutUnit(std::string_view text, std::string_view unit) {
  const std::size_t end = text.size() - std::min(text.size(), unit.size());
  return text.substr(end) == unit ? Trim(text.substr(0, end)) : text;
}

// Three lengths, each with its own unit, or all with the unit of the last one.
std::optional<std::array<double, 3>> ParseLengths(std::string_view text) {
  const auto parts = SplitParts<3>(text, ',');
  if (!parts) {
    return std::nullopt;
  }
  const std::array<std::string_view, 3> units = {UnitOf((*parts)[0]), UnitOf((*parts)[1]),
                                                 UnitOf((*parts)[2])};
  const bool hasOneUnit = units[0].empty() && units[1].empty();
  std::array<double, 3> metres = {};
  for (std::size_t i = 0; i < metres.size(); ++i) {
    if (!hasOneUnit && units[i].empty()) {
      return std::nullopt;
    }
    const std::string_view number = (*parts)[i].substr(0, (*parts)[i].size() - units[i].size());
    const auto length = ParseMetres(number, hasOneUnit ? units[2] : units[i]);
    if (!length || !std::isfinite(*length)) {
      return std::nullopt;
    }
    metres[i] = *length;
  }
  return metres;
}

template <class Named>
std::string NamesOf(const Named& all) {
  std::string names;
  for (const auto& one : all) {
    names += (names.empty() ? "" : ", ") + std::string(one.name);
  }
  return names;
}

}  // namespace

CLI::App& AddCommand(CLI::App& program, const std::string& name, const std::string& description,
                     const char* footer) {
  CLI::App* command = program.add_subcommand(name, description);
  command->group("Commands");
  command->fallthrough();
  command->footer(footer);
  return *command;
}

std::string RequireFile(const std::string& path) {
  if (host::HasControlCharacter(path)) {
    return kControlCharacter;
  }
  const bool isFile = std::filesystem::is_regular_file(std::filesystem::u8path(path));
  return isFile ? "" : "there is no file " + path;
}

std::string RequireFolder(const std::string& path) {
  if (host::HasControlCharacter(path)) {
    return kControlCharacter;
  }
  const bool isFolder = std::filesystem::is_directory(std::filesystem::u8path(path));
  return isFolder ? "" : "there is no folder " + path;
}

std::filesystem::path ParsePath(const std::string& option, const std::string& text) {
  if (text.empty()) {
    Reject(option, "the path is empty");
  }
  const auto path = std::filesystem::absolute(std::filesystem::u8path(text)).lexically_normal();
  if (host::HasControlCharacter(path.u8string())) {
    Reject(option, kControlCharacter);
  }
  return path;
}

std::filesystem::path ParseOutput(const std::string& option, const std::string& text) {
  return text == "-" ? std::filesystem::path(text) : ParsePath(option, text);
}

std::array<double, 2> ParseSensor(const std::string& option, const std::string& text) {
  std::array<double, 2> sensor = {};
  if (!Split(text, 'x', sensor) || sensor[0] <= 0 || sensor[1] <= 0) {
    Reject(option, text + " is not WIDTHxHEIGHT in millimetres, such as 36x20.25");
  }
  return sensor;
}

std::array<int, 2> ParseImageSize(const std::string& option, const std::string& text) {
  const auto size = SplitIntegers(text);
  if (!size || (*size)[0] <= 0 || (*size)[1] <= 0) {
    Reject(option, text + " is not WIDTHxHEIGHT in pixels, such as 1920x1080");
  }
  return *size;
}

std::array<int, 2> ParseBoard(const std::string& option, const std::string& text) {
  const auto board = SplitIntegers(text);
  if (!board) {
    Reject(option, text + " is not COLSxROWS of inner corners, such as 9x6");
  }
  if ((*board)[0] < host::kLeastInnerCorners || (*board)[1] < host::kLeastInnerCorners) {
    Reject(option, text +
                       " is too small: the chart needs at least 3 inner corners (4 squares) in "
                       "each direction");
  }
  if ((*board)[0] > host::kMostInnerCorners || (*board)[1] > host::kMostInnerCorners) {
    Reject(option, text +
                       " is too large: the chart may have at most 100 inner corners in each "
                       "direction");
  }
  return *board;
}

double ParseSquare(const std::string& option, const std::string& text) {
  const auto square = ParseMetres(text);
  if (!square || !std::isfinite(*square) || *square <= 0) {
    Reject(option, text + " is not a length in metres, such as 0.03, or with a unit, such as 30mm");
  }
  if (*square >= 1) {
    Reject(option, text + " is " + Shortest(*square) + " metres, too large for a square" +
                       (UnitOf(text).empty() ? "; for millimetres write " + text + "mm" : ""));
  }
  return *square;
}

double ParseLength(const std::string& option, const std::string& text) {
  const auto length = ParseMetres(text);
  if (!length || !std::isfinite(*length) || *length <= 0) {
    Reject(option, text + " is not a length, such as 299.2mm");
  }
  return *length;
}

std::array<double, 3> ParseTriple(const std::string& option, const std::string& text) {
  std::array<double, 3> triple = {};
  if (!Split(text, ',', triple)) {
    Reject(option, text + " is not three numbers X,Y,Z, such as 0.1,-0.05,0.02");
  }
  return triple;
}

std::array<double, 3> ParseTranslation(const std::string& option, const std::string& text) {
  const auto metres = ParseLengths(text);
  if (!metres) {
    Reject(option, text +
                       " is not three lengths X,Y,Z in metres, such as 0.1,-0.05,0.02, or with a "
                       "unit, such as 100,-50,20mm");
  }
  const auto [x, y, z] = *metres;
  const double farthest = std::max({std::abs(x), std::abs(y), std::abs(z)});
  if (farthest > kFarthestMounting && UnitOf(Trim(text)).empty()) {
    Reject(option, text + " is " + Shortest(farthest) +
                       " metres from the tracker; for millimetres write " + text +
                       "mm, for centimetres " + text + "cm");
  }
  return *metres;
}

host::Accuracy ParseGoodEnough(const std::string& option, const std::string& text) {
  const auto isPossible = [](const std::optional<double>& number) {
    return number && std::isfinite(*number) && *number > 0;
  };
  if (const auto parts = SplitParts<2>(text, ',')) {
    const auto mm = ParseNumber(WithoutUnit((*parts)[0], "mm"));
    const auto degrees = ParseNumber(WithoutUnit((*parts)[1], "deg"));
    if (isPossible(mm) && isPossible(degrees)) {
      return {*mm, *degrees};
    }
  }
  Reject(option, text + " is not MM,DEGREES, such as 2mm,0.2deg");
}

std::vector<double> ParseDistances(const std::string& option, const std::string& text) {
  std::vector<double> distances;
  std::istringstream parts(text + ',');
  for (std::string part; std::getline(parts, part, ',');) {
    const std::string_view length = Trim(part);
    const auto metres =
        UnitOf(length).empty() ? ParseNumber(WithoutUnit(length, "m")) : ParseMetres(length);
    if (!metres || !std::isfinite(*metres) || *metres <= 0) {
      Reject(option, text +
                         " is not a list of distances in metres, such as 2,4.5, or with a unit, "
                         "such as 4m,80cm");
    }
    distances.push_back(*metres);
  }
  return distances;
}

double ParsePercent(const std::string& option, const std::string& text) {
  const auto percent = ParseNumber(WithoutUnit(text, "%"));
  if (!percent || !(*percent >= 0 && *percent <= 100 * host::kMostScaleUncertainty)) {
    Reject(option, text + " is not a percentage from 0 to " +
                       Shortest(100 * host::kMostScaleUncertainty) + ", such as 0.1%");
  }
  return *percent / 100;
}

bool ParseMountingAxes(const std::string& option, const std::string& text) {
  if (text != "fixed" && text != "reported") {
    Reject(option, text + " is not one of fixed, reported");
  }
  return text == "reported";
}

std::array<double, 6> ParseLens(const std::string& option, const std::string& text) {
  std::array<double, 6> lens = {};
  if (!Split(text, ',', lens)) {
    Reject(option, text + " is not FX,FY,CX,CY,K1,K2, such as 1600,1600,955,545,-0.05,0.02");
  }
  return lens;
}

std::array<double, 2> ParseTangential(const std::string& option, const std::string& text) {
  std::array<double, 2> tangential = {};
  if (!Split(text, ',', tangential)) {
    Reject(option, text + " is not P1,P2, such as 0.001,-0.0005");
  }
  return tangential;
}

Paper ParsePaper(const std::string& option, const std::string& text) {
  for (const Paper& paper : kPapers) {
    if (CLI::detail::to_lower(std::string(paper.name)) == CLI::detail::to_lower(text)) {
      return paper;
    }
  }
  Reject(option, text + " is not one of " + NamesOf(kPapers));
}

int ParseCount(const std::string& option, const std::string& text) {
  const auto count = ParseInteger(text);
  if (!count || *count < 0) {
    Reject(option, text + " is not a number of records, such as 40");
  }
  return *count;
}

const host::TrackerAxes* ParseTrackerAxes(const std::string& option, const std::string& text) {
  for (const host::TrackerAxes& axes : host::kTrackerAxes) {
    if (axes.name == text) {
      return &axes;
    }
  }
  Reject(option, text + " is not one of " + NamesOf(host::kTrackerAxes));
}

bool ParseQuaternionOrder(const std::string& option, const std::string& text) {
  if (text != "wxyz" && text != "xyzw") {
    Reject(option, text + " is not one of wxyz, xyzw");
  }
  return text == "xyzw";
}

const host::TrackerUnit* ParseTrackerUnit(const std::string& option, const std::string& text) {
  for (const host::TrackerUnit& unit : host::kTrackerUnits) {
    if (unit.name == text) {
      return &unit;
    }
  }
  Reject(option, text + " is not one of " + NamesOf(host::kTrackerUnits));
}

const Engine* ParseEngine(const std::string& option, const std::string& text) {
  for (const Engine& engine : kEngines) {
    if (engine.name == Trim(text)) {
      return &engine;
    }
  }
  Reject(option, text + " is not one of " + NamesOf(kEngines));
}

bool ParsePagePhotographs(const std::string& option, const std::string& text) {
  if (Trim(text) == "full") {
    return true;
  }
  if (Trim(text) != "small") {
    Reject(option, text + " is not one of full, small");
  }
  return false;
}

std::vector<std::string> ParseNames(const std::string& option, const std::string& text) {
  std::vector<std::string> names;
  std::istringstream parts(text + ',');
  for (std::string part; std::getline(parts, part, ',');) {
    names.emplace_back(Trim(part));
    if (names.back().empty()) {
      Reject(option, text +
                         " has an empty name; names are separated by commas, as in "
                         "img_003,img_007");
    }
  }
  return names;
}

std::vector<const Engine*> ParseEngines(const std::string& option, const std::string& text) {
  std::vector<const Engine*> engines;
  std::istringstream names(text + ',');
  for (std::string name; std::getline(names, name, ',');) {
    engines.push_back(ParseEngine(option, name));
  }
  return engines;
}

host::ExportFormat ParseExportFormat(const std::string& option, const std::string& text) {
  const auto format = host::FindExportFormat(Trim(text));
  if (!format) {
    Reject(option, text + " is not one of " + host::ExportFormatNames());
  }
  return *format;
}

double ParseOverscan(const std::string& option, const std::string& text) {
  const auto overscan = ParseNumber(Trim(text));
  if (!overscan || !(*overscan >= 1 && *overscan <= host::kMostOverscan)) {
    Reject(option,
           text + " is not a factor from 1 to " + Shortest(host::kMostOverscan) + ", such as 1.1");
  }
  return *overscan;
}

std::string ParseParentAxesText(const std::string& option, const std::string& text) {
  try {
    host::ParseParentAxes(text, host::kUnrealParentAxes);
  } catch (const host::InputError& error) {
    Reject(option, error.what());
  }
  return text;
}

void AddPagePhotographs(CLI::App& command, bool& areFull, const std::string& group) {
  AddValue(command, "--page-photographs", areFull, ParsePagePhotographs, "SIZE",
           "Photographs in the report page: small\n(default), or full for a page to mail")
      ->group(group);
}

void AddExclude(CLI::App& command, std::vector<std::string>& exclude, const std::string& group) {
  AddValue(command, "--exclude", exclude, ParseNames, "NAMES",
           "Photographs to leave out, such as\nimg_003,img_007 (default: none)")
      ->join(',')
      ->group(group);
}

void AddDistances(CLI::App& command, std::vector<double>& atMetres, const std::string& group) {
  CLI::Option* option = AddValue(
      command, "--at", atMetres, ParseDistances, "DISTANCES",
      "Distances at which the error in the image is\ngiven, such as 4m,8m (default: the chart's,\n"
      "2m,4m,10m)");
  if (!group.empty()) {
    option->group(group);
  }
}

void AddAccuracyOptions(CLI::App& command, host::Accuracy& goodEnough, double& scaleUncertainty,
                        std::vector<double>& atMetres, const std::string& group) {
  AddValue(command, "--good-enough", goodEnough, ParseGoodEnough, "MM,DEGREES",
           "How far off the result may be without a doubt\n(default: 2mm,0.2deg)")
      ->group(group);
  AddValue(command, "--scale-uncertainty", scaleUncertainty, ParsePercent, "PERCENT",
           "How accurately the squares are known against\nthe trackers' lengths (default: 0.1%)")
      ->group(group);
  AddDistances(command, atMetres, group);
}

void AddMountingOptions(CLI::App& command, MountingOptions& options, const std::string& standard,
                        const std::string& group) {
  AddValue(command, "--chart-rotation", options.rotation, ParseTriple, "X,Y,Z",
           "Mounting of the chart's tracker: rotation in\ndegrees (default: " + standard + ")")
      ->group(group);
  AddValue(command, "--chart-translation", options.translation, ParseTranslation, "X,Y,Z",
           "Mounting of the chart's tracker: translation\nin metres (default: " + standard + ")")
      ->group(group);
  AddValue(command, "--mounting-axes", options.isReported, ParseMountingAxes, "AXES",
           "Axes of this rotation and translation: fixed\n(default) or reported")
      ->group(group);
}

std::optional<host::Mounting> MountingOf(const MountingOptions& options) {
  if (options.rotation.has_value() != options.translation.has_value()) {
    throw CLI::ValidationError(options.rotation ? "--chart-translation" : "--chart-rotation",
                               "is missing: state both for a mounting, or neither");
  }
  if (!options.rotation) {
    return std::nullopt;
  }
  const host::Mounting mounting = {*options.rotation, *options.translation};
  return options.isReported ? host::FromReportedAxes(mounting) : mounting;
}

}  // namespace trackedcam::app
