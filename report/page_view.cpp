#include "report/page_view.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "report/html.h"
#include "report/photograph_view.h"
#include "report/result_values.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
using Number = std::optional<double>;
namespace fs = std::filesystem;

constexpr double kMillimetresPerMetre = 1000;

// Lists of numbers.

std::string CopyOf(const Json& number) {
  return number.is_number() ? number.dump() : "nan";
}

/// {numbers, copy}: as text, and as the file has them for the clipboard; null if there are none.
Json List(const Json& numbers, int decimals, double scale = 1) {
  if (!numbers.is_array() || numbers.empty()) {
    return nullptr;
  }
  Json texts = Json::array();
  std::string copy;
  for (const Json& number : numbers) {
    texts.push_back(Fixed(Times(NumberAt(number, ""), scale), decimals));
    copy += (copy.empty() ? "" : " ") + CopyOf(number);
  }
  return {{"numbers", texts}, {"copy", copy}};
}

/// {rows, copy} of a 4x4 matrix.
Json Matrix(const Json& numbers) {
  Json matrix = List(numbers, 6);
  if (matrix.is_null()) {
    return nullptr;
  }
  Json rows = Json::array();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i % 4 == 0) {
      rows.push_back({{"numbers", Json::array()}});
    }
    rows.back()["numbers"].push_back(matrix["numbers"][i]);
  }
  return {{"rows", rows}, {"copy", matrix["copy"]}};
}

/// The three numbers of a matrix's translation, in millimetres.
Json Position(const Json& matrix) {
  Json position = Json::array();
  for (const char* element : {"/3", "/7", "/11"}) {
    position.push_back(Fixed(Times(NumberAt(matrix, element), kMillimetresPerMetre), 2));
  }
  return position;
}

Json Texts(const Json& list) {
  Json texts = Json::array();
  for (const Json& text : list) {
    if (text.is_string()) {
      texts.push_back(text);
    }
  }
  return texts;
}

// The answer.

/// good, doubt, wrong or failed; "none" for a result without a verdict, unless its code is that of
/// a failure.
std::string LevelOf(const Json& result) {
  std::string level = TextAt(result, "/verdict/level");
  for (const char* known : {"good", "doubt", "wrong", "failed"}) {
    if (level == known) {
      return level;
    }
  }
  const Number code = NumberAt(result, "/code");
  return code == 0.0 || code == 99.0 ? "none" : "failed";
}

/// A difference with what its p says.
/// @param level Of the verdict.
Json Difference(const Json& difference, const std::string& level = "") {
  if (!difference.is_object()) {
    return nullptr;
  }
  const bool isCertain = ValueAt(difference, "/isCertain") == true;
  const bool isKnown = NumberAt(difference, "/p").has_value();
  const auto known = [&](const char* path) {
    return isKnown ? NumberAt(difference, path) : Number();
  };
  return {{"millimetres", Fixed(known("/offMm"), 2)},
          {"degrees", Fixed(known("/offDegrees"), 3)},
          {"isKnown", isKnown},
          {"certainty", TextAt(difference, "/certaintyText")},
          {"isBad", isCertain && level != "good"}};
}

/// One argument of a command line: after the equals sign, a minus sign does not begin an option.
std::string Option(const std::string& name, const Json& numbers) {
  std::string text;
  for (const Json& number : numbers) {
    text += (text.empty() ? "" : ",") + CopyOf(number);
  }
  return name + '=' + text;
}

/// The mounting found, in the axes in which the mounting was stated.
Json MountingOptions(const Json& result) {
  const bool isReported = TextAt(result, "/inputs/mountingAxes") == "reported";
  const Json& found =
      ValueAt(result, isReported ? "/crossCheck/mountingReported" : "/crossCheck/mounting");
  if (!found.is_object() || ValueAt(result, "/crossCheck/isMountingToPassOn") == false) {
    return nullptr;
  }
  return Option("--chart-rotation", ValueAt(found, "/rotationDegrees")) + ' ' +
         Option("--chart-translation", ValueAt(found, "/translationMetres")) +
         (isReported ? " --mounting-axes=reported" : "");
}

Json Mounting(const Json& result) {
  const auto rotation = [&](const char* path) { return List(ValueAt(result, path), 3); };
  const auto translation = [&](const char* path) {
    return List(ValueAt(result, path), 2, kMillimetresPerMetre);
  };
  const Json inReported = {
      {"statedRotation", rotation("/inputs/mountingReported/rotationDegrees")},
      {"statedTranslation", translation("/inputs/mountingReported/translationMetres")},
      {"foundRotation", rotation("/crossCheck/mountingReported/rotationDegrees")},
      {"foundTranslation", translation("/crossCheck/mountingReported/translationMetres")}};
  const bool hasReported =
      !inReported["statedRotation"].is_null() || !inReported["foundRotation"].is_null();
  const Json& difference = ValueAt(result, "/crossCheck/nominalMounting");
  const bool isStated = ValueAt(result, "/inputs/chartRotationDegrees").is_array();
  const bool isSecondRun = ValueAt(result, "/firstRun").is_object();
  return {{"name", isSecondRun ? "used"
                   : isStated  ? "stated"
                               : ""},
          {"statedRotation", rotation("/inputs/chartRotationDegrees")},
          {"statedTranslation", translation("/inputs/chartTranslationMetres")},
          {"foundRotation", rotation("/crossCheck/mounting/rotationDegrees")},
          {"foundTranslation", translation("/crossCheck/mounting/translationMetres")},
          {"inReported", hasReported ? inReported : Json()},
          {"options", MountingOptions(result)},
          {"difference", Difference(difference, LevelOf(result))},
          {"likelyMistake", TextAt(difference, "/likelyMistakeText")}};
}

/// Null if the result has no such limit.
Json Limit(const Json& result, const std::string& name, int decimals, double scale = 1) {
  const Number failure = NumberAt(result, "/limits/" + name + "/failure");
  if (!failure) {
    return nullptr;
  }
  const Number doubt = NumberAt(result, "/limits/" + name + "/doubt");
  return {{"doubt", doubt ? Json(Fixed(Times(doubt, scale), decimals)) : Json()},
          {"failure", Fixed(Times(failure, scale), decimals)}};
}

/// A value of the lens with its 95 % half-width.
Json LensRow(const Json& result, const char* name, const Number& value, int decimals) {
  const Number half = Times(NumberAt(result, std::string("/crossCheck/lens/") + name),
                            NumberAt(result, "/crossCheck/t95"));
  return {{"name", name},
          {"value", Fixed(value, decimals)},
          {"half", half ? Json(Fixed(half, decimals)) : Json()},
          {"isPixels", decimals == 2}};
}

Json Lens(const Json& result) {
  if (!NumberAt(result, "/focalLengthMm/0")) {
    return nullptr;
  }
  const Number width = NumberAt(result, "/imageSize/0");
  const Number height = NumberAt(result, "/imageSize/1");
  return {{"focalLength", Fixed(NumberAt(result, "/focalLengthMm/0"), 3)},
          {"horizontal", Fixed(NumberAt(result, "/fieldOfView/0"), 3)},
          {"vertical", Fixed(NumberAt(result, "/fieldOfView/1"), 3)},
          {"width", Fixed(width, 0)},
          {"height", Fixed(height, 0)},
          {"error", Fixed(NumberAt(result, "/lensErrorPixels"), 3)},
          {"errorLimit", Limit(result, "lensErrorPixels", 1)},
          {"rows",
           {LensRow(result, "fx", Times(NumberAt(result, "/normFocal/0"), width), 2),
            LensRow(result, "fy", Times(NumberAt(result, "/normFocal/1"), height), 2),
            LensRow(result, "cx", Times(NumberAt(result, "/normCenter/0"), width), 2),
            LensRow(result, "cy", Times(NumberAt(result, "/normCenter/1"), height), 2),
            LensRow(result, "k1", NumberAt(result, "/distortion/0"), 5),
            LensRow(result, "k2", NumberAt(result, "/distortion/1"), 5)}}};
}

Json Findings(const Json& findings) {
  Json list = Json::array();
  for (const Json& finding : findings) {
    const std::string severity = TextAt(finding, "/severity");
    const bool isKnown = severity == "error" || severity == "warning";
    const std::string text = TextAt(finding, "/text");
    list.push_back({{"severity", isKnown ? severity : "note"},
                    {"text", text.empty() ? TextAt(finding, "/id") : text},
                    {"advice", TextAt(finding, "/advice")}});
  }
  return list;
}

/// How many photographs a run used, or "?" if its log does not say.
std::string UsedOf(const Json& run) {
  const Json& photographs = ValueAt(run, "/photographs");
  const auto countOf = [&](const char* state) {
    return std::count_if(photographs.begin(), photographs.end(), [&](const Json& photograph) {
      return TextAt(photograph, "/state") == state;
    });
  };
  return countOf("unknown") > 0 ? "?" : std::to_string(countOf("used"));
}

/// The values by which two runs are compared.
Json RunValues(const Json& run) {
  return {
      {"code", Fixed(NumberAt(run, "/code"), 0)},
      {"position", Position(ValueAt(run, "/transformCamTc"))},
      {"reprojection", Fixed(NumberAt(run, "/reprojectionErrorPixels"), 2)},
      {"spread", Fixed(Times(NumberAt(run, "/translationSpreadMetres"), kMillimetresPerMetre), 2)},
      {"used", UsedOf(run)},
      {"difference", Difference(ValueAt(run, "/crossCheck/library"))}};
}

// The cross-check.

/// Rows of one table of the comparison.
Json ComparisonRows(const Json& axes, int decimals) {
  constexpr double kSmall = 0.01;  // a shoot without noise is known better than `decimals` shows
  Json rows = Json::array();
  for (const Json& axis : axes) {
    const Number half = NumberAt(axis, "/half");
    rows.push_back({{"axis", TextAt(axis, "/axis")},
                    {"other", Fixed(NumberAt(axis, "/other"), decimals)},
                    {"found", Fixed(NumberAt(axis, "/found"), decimals)},
                    {"difference", Fixed(NumberAt(axis, "/difference"), decimals)},
                    {"half", Fixed(half, half && *half < kSmall ? decimals + 2 : decimals)}});
  }
  return rows;
}

Json Comparison(const Json& comparison) {
  if (!comparison.is_object()) {
    return nullptr;
  }
  return {{"translation", ComparisonRows(ValueAt(comparison, "/translation"), 2)},
          {"rotation", ComparisonRows(ValueAt(comparison, "/rotation"), 3)}};
}

Json OnScreen(const Json& list) {
  Json rows = Json::array();
  for (const Json& row : list) {
    rows.push_back({{"index", rows.size()},
                    {"distance", Fixed(NumberAt(row, "/distanceMetres"), 2)},
                    {"middlePixels", Fixed(NumberAt(row, "/middle/pixels"), 2)},
                    {"middleMm", Fixed(NumberAt(row, "/middle/mm"), 1)},
                    {"cornerPixels", Fixed(NumberAt(row, "/corner/pixels"), 2)},
                    {"cornerMm", Fixed(NumberAt(row, "/corner/mm"), 1)},
                    {"difference", Fixed(NumberAt(row, "/libraryApart"), 2)}});
  }
  return rows;
}

Json SuggestedViews(const Json& list) {
  Json views = Json::array();
  for (const Json& view : list) {
    views.push_back({{"number", views.size() + 1},
                     {"text", TextAt(view, "/text")},
                     {"tilt", Fixed(NumberAt(view, "/tiltDegrees"), 0)},
                     {"direction", Fixed(NumberAt(view, "/tiltDirectionDegrees"), 0)},
                     {"roll", Fixed(NumberAt(view, "/rollDegrees"), 0)},
                     {"distance", Fixed(NumberAt(view, "/distanceMetres"), 2)},
                     {"gain", Fixed(NumberAt(view, "/gain"), 2)}});
  }
  return views;
}

// What an error of the lengths does to the transform.
Json Scale(const Json& scale) {
  const Number mm = NumberAt(scale, "/mmPerPermille");
  return mm ? Json{{"mm", Fixed(mm, 1)},
                   {"degrees", Fixed(NumberAt(scale, "/degreesPerPermille"), 2)},
                   {"percent", Fixed(Times(NumberAt(scale, "/uncertainty"), 100), 2)}}
            : Json();
}

Json CrossCheck(const Json& crossCheck, const std::string& level) {
  if (!crossCheck.is_object()) {
    return nullptr;
  }
  const auto known = [&](const char* path, int decimals) {
    const Number number = NumberAt(crossCheck, path);
    return number ? Json(Fixed(number, decimals)) : Json();
  };
  const Json onScreen = OnScreen(ValueAt(crossCheck, "/onScreen"));
  const Json views = SuggestedViews(ValueAt(crossCheck, "/suggestedViews"));
  return {{"photographs", known("/photographs", 0)},
          {"used", known("/used", 0)},
          {"library", Difference(ValueAt(crossCheck, "/library"), level)},
          {"halves", Difference(ValueAt(crossCheck, "/halves"))},
          {"camTc", Comparison(ValueAt(crossCheck, "/comparison/camTc"))},
          {"trChart", Comparison(ValueAt(crossCheck, "/comparison/trChart"))},
          {"noiseDegrees", known("/trackerNoise/degrees", 3)},
          {"noiseMillimetres", known("/trackerNoise/mm", 2)},
          {"cornerNoise", known("/cornerNoisePixels", 3)},
          {"amplification", known("/diversity/amplification", 2)},
          {"photographsToHalve", known("/photographsToHalve", 0)},
          {"delaySeen", known("/delayKnownToMs", 0)},
          {"isDelayUnseen", ValueAt(crossCheck, "/solved") == true &&
                                crossCheck.contains("delayKnownToMs") &&
                                !NumberAt(crossCheck, "/delayKnownToMs")},
          {"scale", Scale(ValueAt(crossCheck, "/scale"))},
          {"squareFactor", known("/square/factor", 4)},
          {"squareError", known("/square/standardError", 4)},
          {"onScreen", onScreen},
          {"hasOnScreen", !onScreen.empty()},
          {"views", views},
          {"hasViews", !views.empty()}};
}

// The photographs.

Json InState(const Json& photographs, const char* state, const char* other) {
  Json list = Json::array();
  std::copy_if(photographs.begin(), photographs.end(), std::back_inserter(list),
               [&](const Json& photograph) {
                 return photograph["state"] == state || photograph["state"] == other;
               });
  return list;
}

Json Undistorted(const UndistortedPhotograph& photograph) {
  if (photograph.bytes.empty()) {
    return nullptr;
  }
  Json lines = Json::array();
  for (const std::array<double, 4>& line : photograph.lines) {
    lines.push_back({{"x1", line[0]}, {"y1", line[1]}, {"x2", line[2]}, {"y2", line[3]}});
  }
  return {{"number", photograph.place + 1},
          {"image", "data:image/jpeg;base64," + Base64(photograph.bytes)},
          {"width", photograph.size[0]},
          {"height", photograph.size[1]},
          {"lines", lines}};
}

// The record.

// One text: "library 5.31 s, cross-check 0.42 s, page 1.20 s"; of those that are known.
std::string Seconds(const Json& seconds) {
  std::string text;
  for (const auto& [part, path] :
       {std::pair("library", "/library"), std::pair("cross-check", "/crossCheck"),
        std::pair("page", "/page")}) {
    if (const Number number = NumberAt(seconds, path)) {
      text += (text.empty() ? "" : ", ") + std::string(part) + ' ' + Fixed(number, 2) + " s";
    }
  }
  return text;
}

Json Inputs(const Json& inputs) {
  if (!inputs.is_object()) {
    return nullptr;
  }
  return {
      {"data", TextAt(inputs, "/data")},
      {"workingFolder", TextAt(inputs, "/workingFolder")},
      {"logFolder", TextAt(inputs, "/logFolder")},
      {"sensor", List(ValueAt(inputs, "/sensorMm"), 3)},
      {"board", List(ValueAt(inputs, "/board"), 0)},
      {"square", Fixed(Times(NumberAt(inputs, "/squareMetres"), kMillimetresPerMetre), 3)},
      {"rotation", List(ValueAt(inputs, "/chartRotationDegrees"), 3)},
      {"translation", List(ValueAt(inputs, "/chartTranslationMetres"), 2, kMillimetresPerMetre)},
      {"isInverted", ValueAt(inputs, "/invertTrackerQuaternions") == true},
      {"records", Fixed(NumberAt(inputs, "/expectedRecords"), 0)}};
}

/// Each engine has its own names for position and rotation.
const Json& FirstOf(const Json& engine, const char* path, const char* other) {
  const Json& value = ValueAt(engine, path);
  return value.is_null() ? ValueAt(engine, other) : value;
}

/// The lens as the engine names it, in the order of the export; without the size of the image,
/// which is not typed in.
Json EngineLens(const Json& lens) {
  static const std::map<std::string, std::string> kNames = {
      {"filmbackMm", "filmback (mm)"},
      {"focalLengthMm", "focal length by width (mm)"},
      {"fxFy", "Fx, Fy"},
      {"imageCenter", "image center"},
      {"sensorSize", "sensor size (mm)"},
      {"focalLength", "focal length by width (mm)"},
      {"lensShift", "lens shift"}};
  Json rows = Json::array();
  const auto add = [&](const std::string& name, const Json& value) {
    Json row = List(value.is_number() ? Json::array({value}) : value, 6);
    if (row.is_object()) {
      row["name"] = name;
      rows.push_back(row);
    }
  };
  for (const auto& [key, value] : lens.items()) {
    const auto name = kNames.find(key);
    if (name != kNames.end()) {
      add(name->second, value);
    } else if (key == "distortion") {
      for (const auto& [parameter, number] : value.items()) {
        add(parameter, number);
      }
    }
  }
  return rows;
}

/// True if the errors of the photographs are those of the result. Without a result, and in older
/// files, they are those of the cross-check.
bool IsOfResult(const Json& photographs) {
  return std::any_of(photographs.begin(), photographs.end(), [](const Json& photograph) {
    return NumberAt(photograph, "/crossCheck/resultPixels").has_value();
  });
}

Json Engines(const Json& exports) {
  Json engines = Json::array();
  for (const auto& [name, engine] : exports.items()) {
    if (!ValueAt(engine, "/format").is_null()) {
      continue;  // a file of another program, which has no values to type in
    }
    const std::string title = TextAt(engine, "/title");
    const Json cameraAxes = Texts(ValueAt(engine, "/cameraAxes"));
    engines.push_back(
        {{"title", title.empty() ? name : title},
         {"hand", TextAt(engine, "/hand")},
         {"problem", NumberAt(engine, "/code") == 0.0 ? "" : TextAt(engine, "/message")},
         {"cameraAxes", cameraAxes},
         {"hasCameraAxes", !cameraAxes.empty()},
         {"parentAxes", TextAt(engine, "/parentAxes")},
         {"position", List(ValueAt(engine, "/localPosition"), 6)},
         {"translation", List(FirstOf(engine, "/translationCm", "/locationCm"), 4)},
         {"rotation", List(FirstOf(engine, "/rotationDeg", "/localEulerAngles"), 4)},
         {"quaternion", List(FirstOf(engine, "/quaternionXyzw", "/localRotationXyzw"), 7)},
         {"fieldOfView", List(ValueAt(engine, "/fovX"), 4)},
         {"lens", EngineLens(ValueAt(engine, "/lens"))},
         {"lensCentre", List(ValueAt(engine, "/lensCentre"), 6)}});
  }
  return engines;
}

std::string LogLink(const Json& result, const fs::path& pageFolder) {
  const fs::path folder = fs::u8path(TextAt(result, "/inputs/workingFolder"));
  const std::string log = TextAt(result, "/log");
  return log.empty() ? "" : FileLink(folder / fs::u8path(log), pageFolder);
}

}  // namespace

Json PageView(const Json& result, const std::vector<Thumbnail>& thumbnails,
              const fs::path& pageFolder, const UndistortedPhotograph& undistorted) {
  const std::string level = LevelOf(result);
  const std::string verdict = TextAt(result, "/verdict/message");
  const std::string message = TextAt(result, "/message");
  const Json findings = Findings(ValueAt(result, "/findings"));
  const Json& firstRun = ValueAt(result, "/firstRun");
  const Json photographs = PhotographViews(result, thumbnails, pageFolder);
  const Json unusable = InState(photographs, "missing", "missing");
  const Json disagreeing = InState(photographs, "apart", "out");
  const Json engines = Engines(ValueAt(result, "/exports"));
  const Json lastRun = RunValues(result);
  return {
      {"level", level},
      {level, true},
      {"code", Fixed(NumberAt(result, "/code"), 0)},
      {"message", message},
      {"headline", verdict.empty() ? message : verdict},
      {"advice", TextAt(result, "/verdict/advice")},
      {"commands", Texts(ValueAt(result, "/verdict/commands"))},
      {"dataName", ShortName(TextAt(result, "/inputs/data"))},
      {"time", TextAt(result, "/time")},
      {"seconds", Seconds(ValueAt(result, "/seconds"))},
      {"matrix", Matrix(ValueAt(result, "/transformCamTc"))},
      {"mounting", Mounting(result)},
      {"lens", Lens(result)},
      {"reprojectionLimit", Limit(result, "reprojectionErrorPixels", 1)},
      {"spreadLimit", Limit(result, "translationSpreadMetres", 0, kMillimetresPerMetre)},
      {"findings", findings},
      {"hasFindings", !findings.empty()},
      {"firstRun", firstRun.is_object() ? RunValues(firstRun) : Json()},
      {"lastRun", lastRun},
      {"crossCheck", CrossCheck(ValueAt(result, "/crossCheck"), level)},
      {"undistorted", Undistorted(undistorted)},
      {"photographs", photographs},
      {"isOfResult", IsOfResult(ValueAt(result, "/photographs"))},
      {"photographCount", photographs.size()},
      {"canBeRepeated", CanBeRepeated(result)},
      {"others", TextAt(result, "/photographCounts/others")},
      {"unusable", unusable},
      {"hasUnusable", !unusable.empty()},
      {"disagreeing", disagreeing},
      {"hasDisagreeing", !disagreeing.empty()},
      {"inputs", Inputs(ValueAt(result, "/inputs"))},
      {"engines", engines},
      {"hasEngines", !engines.empty() && level != "wrong"},
      {"log", TextAt(result, "/log")},
      {"logLink", LogLink(result, pageFolder)},
      {"libraryVersion", TextAt(result, "/versions/library")},
      {"programVersion", TextAt(result, "/versions/program")},
  };
}

Json RunsView(const Json& beside) {
  Json runs = Json::array();
  for (const Json& run : ValueAt(beside, "/runs")) {
    runs.push_back({{"name", TextAt(run, "/name")},
                    {"time", TextAt(run, "/time")},
                    {"level", TextAt(run, "/level")},
                    {"pixels", Fixed(NumberAt(run, "/pixels"), 2)},
                    {"mm", Fixed(NumberAt(run, "/mm"), 2)},
                    {"degrees", Fixed(NumberAt(run, "/degrees"), 3)}});
  }
  return runs.empty() ? Json() : Json{{"text", TextAt(beside, "/text")}, {"runs", runs}};
}

}  // namespace trackedcam::report
