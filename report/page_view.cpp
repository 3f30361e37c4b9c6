#include "report/page_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "report/html.h"
#include "report/result_values.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
using Number = std::optional<double>;
namespace fs = std::filesystem;

constexpr double kMillimetresPerMetre = 1000;
constexpr double kSmall = 0.01;  // millimetres or degrees

Number Minus(const Number& a, const Number& b) {
  return a && b ? Number(*a - *b) : std::nullopt;
}

std::optional<Rotation> RotationAt(const Json& result, const std::string& path) {
  Rotation rotation = {};
  for (std::size_t i = 0; i < rotation.size(); ++i) {
    const Number number = NumberAt(result, At(path, i / 3 * 4 + i % 3));
    if (!number) {
      return std::nullopt;
    }
    rotation[i] = *number;
  }
  return rotation;
}

std::optional<Rotation> StatedRotation(const Json& result) {
  std::array<double, 3> degrees = {};
  for (std::size_t i = 0; i < degrees.size(); ++i) {
    const Number number = NumberAt(result, At("/inputs/chartRotationDegrees", i));
    if (!number) {
      return std::nullopt;
    }
    degrees[i] = *number;
  }
  return RotationOfAngles(degrees);
}

/// A row of the tables of section 6, which its charts are drawn from.
Json Component(const char* axis, const Number& one, const Number& other, const Number& difference,
               const Number& half, int decimals) {
  const auto raw = [](const Number& number) { return number ? Json(*number) : Json(); };
  return {{"axis", axis},
          {"one", one ? Json(Fixed(one, decimals)) : Json()},
          {"other", other ? Json(Fixed(other, decimals)) : Json()},
          {"difference", Fixed(difference, decimals)},
          // A perfect shoot is known better than the other decimals show.
          {"half", Fixed(half, half && *half < kSmall ? decimals + 2 : decimals)},
          {"rawDifference", raw(difference)},
          {"rawHalf", raw(half)}};
}

constexpr std::array<const char*, 3> kAxes = {"x", "y", "z"};

/// Shift rows and turn rows of one transform against the cross-check's.
/// @param shift Path of the other's translation: a list of 3, or of 16 where `isMatrix`.
/// @param turn From the cross-check's rotation to the other's; none where there is no other.
Json Components(const Json& result, const std::string& shift, bool isMatrix,
                const std::string& found, const std::string& errors,
                const std::optional<std::array<double, 3>>& turn) {
  const Number t95 = NumberAt(result, "/crossCheck/t95");
  Json shifts = Json::array();
  Json turns = Json::array();
  for (std::size_t i = 0; i < kAxes.size(); ++i) {
    const Number other =
        Times(NumberAt(result, At(shift, isMatrix ? 4 * i + 3 : i)), kMillimetresPerMetre);
    const Number one = Times(NumberAt(result, At(found, 4 * i + 3)), kMillimetresPerMetre);
    shifts.push_back(Component(kAxes[i], other, one, Minus(other, one),
                               Times(NumberAt(result, At(errors + "/shiftMm", i)), t95), 2));
    turns.push_back(Component(kAxes[i], {}, {}, turn ? Number((*turn)[i]) : std::nullopt,
                              Times(NumberAt(result, At(errors + "/turnDegrees", i)), t95), 3));
  }
  return {{"shifts", shifts}, {"turns", turns}, {"isCompared", turn.has_value()}};
}

const double kDegreesPerRadian = 180 / std::acos(-1.0);

struct Row {
  std::string name;
  const Json* figures;  // of the cross-check; null where it has none
  std::size_t place;    // of the figures in its list
};

/// A data file may name a photograph twice; each row has figures of its own.
std::vector<Row> RowsOf(const Json& result) {
  std::vector<Row> solved;
  for (const Json& photograph : ValueAt(result, "/crossCheck/perPhotograph")) {
    solved.push_back({TextAt(photograph, "/photograph"), &photograph, solved.size()});
  }
  std::vector<Row> rows;
  std::set<std::string> known;
  std::set<std::size_t> taken;
  for (const Json& value : ValueAt(result, "/photographs")) {
    if (value.is_string()) {
      const auto name = value.get<std::string>();
      const auto row = std::find_if(solved.begin(), solved.end(), [&](const Row& candidate) {
        return candidate.name == name && taken.count(candidate.place) == 0;
      });
      rows.push_back(row == solved.end() ? Row{name, nullptr, 0} : *row);
      if (row != solved.end()) {
        taken.insert(row->place);
      }
      known.insert(name);
    }
  }
  for (const Row& row : solved) {
    if (taken.count(row.place) == 0) {
      rows.push_back(row);
      known.insert(row.name);
    }
  }
  const auto addIfNew = [&](const Json& name) {
    if (name.is_string() && known.insert(name.get<std::string>()).second) {
      rows.push_back({name.get<std::string>(), nullptr, 0});
    }
  };
  for (const Json& name : ValueAt(result, "/used")) {
    addIfNew(name);
  }
  for (const Json& dropped : ValueAt(result, "/dropped")) {
    addIfNew(ValueAt(dropped, "/photograph"));
  }
  return rows;
}

/// Of the photographs that the library dropped, by name.
std::map<std::string, std::string> ReasonsOf(const Json& result) {
  std::map<std::string, std::string> reasons;
  for (const Json& dropped : ValueAt(result, "/dropped")) {
    reasons.emplace(TextAt(dropped, "/photograph"), TextAt(dropped, "/reason"));
  }
  return reasons;
}

/// The library names the image "Reproject_" and all of the photograph's path behind the last
/// backslash.
std::string ReprojectedImage(const Json& result, const std::string& photograph) {
  const std::string end = "Reproject_" + photograph.substr(photograph.find_last_of('\\') + 1);
  for (const Json& image : ValueAt(result, "/images")) {
    std::string path = image.is_string() ? image.get<std::string>() : std::string();
    if (path.size() >= end.size() && path.compare(path.size() - end.size(), end.size(), end) == 0) {
      return path;
    }
  }
  return {};
}

std::string LinkTo(const std::string& path, const Json& result, const fs::path& pageFolder) {
  const fs::path working = fs::u8path(TextAt(result, "/inputs/workingFolder"));
  try {
    return FileLink(working / fs::u8path(path), pageFolder);
  } catch (const std::exception&) {
    return {};  // not every name can be a path on every system
  }
}

/// What the page's colours and words say about it.
const char* StateOf(const Json* crossCheck, const std::string* reason) {
  if (crossCheck == nullptr) {
    return reason == nullptr ? "kept" : "missing";
  }
  if (ValueAt(*crossCheck, "/used") == false) {
    return "apart";
  }
  return reason == nullptr ? "kept" : "spare";
}

std::string ShortName(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

constexpr double kCertain = 0.001;  // the share of chance below which two figures differ

/// The numbers as the file has them, for a paste.
std::string CopyOf(const Json& numbers) {
  std::string text;
  for (const Json& number : numbers) {
    text += (text.empty() ? "" : " ") + (number.is_null() ? "nan" : number.dump());
  }
  return text;
}

Json FixedAll(const Json& numbers, int decimals, double scale = 1) {
  Json texts = Json::array();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    texts.push_back(Fixed(Times(NumberAt(numbers, At("", i)), scale), decimals));
  }
  return texts;
}

/// {figures, copy} of a list, null where it is missing or empty.
Json List(const Json& numbers, int decimals, double scale = 1) {
  if (!numbers.is_array() || numbers.empty()) {
    return nullptr;
  }
  return {{"figures", FixedAll(numbers, decimals, scale)}, {"copy", CopyOf(numbers)}};
}

Json Matrix(const Json& numbers) {
  if (!numbers.is_array()) {
    return nullptr;
  }
  Json rows = Json::array();
  for (std::size_t row = 0; row + 4 <= numbers.size(); row += 4) {
    Json figures = Json::array();
    for (std::size_t i = row; i < row + 4; ++i) {
      figures.push_back(Fixed(NumberAt(numbers, At("", i)), 6));
    }
    rows.push_back({{"figures", figures}});
  }
  return rows.empty() ? Json() : Json{{"rows", rows}, {"copy", CopyOf(numbers)}};
}

/// How sure the two are that they differ.
Json Distance(const Json& difference) {
  if (!difference.is_object()) {
    return nullptr;
  }
  const Number p = NumberAt(difference, "/p");
  return {{"millimetres", Fixed(NumberAt(difference, "/offMm"), 2)},
          {"degrees", Fixed(NumberAt(difference, "/offDegrees"), 3)},
          {"p", p && *p < kCertain ? Json() : Json(Fixed(p, 2))},
          {"isCertain", p && *p < kCertain},
          {"perhaps", TextAt(difference, "/perhaps")}};
}

/// One word of a command line, whose minus signs a shell takes for no other option.
std::string Option(const std::string& name, const Json& numbers) {
  std::string text;
  for (const Json& number : numbers) {
    text += (text.empty() ? "" : ",") + number.dump();
  }
  return name + '=' + text;
}

/// What to state instead, in the axes in which the mounting was stated.
Json MountingOptions(const Json& result) {
  const bool isReported = TextAt(result, "/inputs/mountingAxes") == "reported";
  const Json& found =
      ValueAt(result, isReported ? "/crossCheck/mountingReported" : "/crossCheck/mounting");
  if (!found.is_object()) {
    return nullptr;
  }
  return Option("--chart-rotation", ValueAt(found, "/rotationDegrees")) + ' ' +
         Option("--chart-translation", ValueAt(found, "/translationMetres")) +
         (isReported ? " --mounting-axes=reported" : "");
}

Json Mounting(const Json& result) {
  const auto angles = [&](const char* path) { return List(ValueAt(result, path), 3); };
  const auto shift = [&](const char* path) {
    return List(ValueAt(result, path), 2, kMillimetresPerMetre);
  };
  const Json inReported = {
      {"statedRotation", angles("/inputs/mountingReported/rotationDegrees")},
      {"statedTranslation", shift("/inputs/mountingReported/translationMetres")},
      {"foundRotation", angles("/crossCheck/mountingReported/rotationDegrees")},
      {"foundTranslation", shift("/crossCheck/mountingReported/translationMetres")}};
  const bool hasReported =
      !inReported["statedRotation"].is_null() || !inReported["foundRotation"].is_null();
  return {{"statedRotation", angles("/inputs/chartRotationDegrees")},
          {"statedTranslation", shift("/inputs/chartTranslationMetres")},
          {"foundRotation", angles("/crossCheck/mounting/rotationDegrees")},
          {"foundTranslation", shift("/crossCheck/mounting/translationMetres")},
          {"inReported", hasReported ? inReported : Json()},
          {"options", MountingOptions(result)},
          {"off", Distance(ValueAt(result, "/crossCheck/nominalMounting"))}};
}

/// Above which a figure is doubted and above which the run fails; null where there is no limit.
Json LimitOf(const Json& result, const std::string& figure, int decimals, double scale = 1) {
  const Number failure = NumberAt(result, "/limits/" + figure + "/failure");
  if (!failure) {
    return nullptr;
  }
  const Number doubt = NumberAt(result, "/limits/" + figure + "/doubt");
  return {{"doubt", doubt ? Json(Fixed(Times(doubt, scale), decimals)) : Json()},
          {"failure", Fixed(Times(failure, scale), decimals)}};
}

/// In pixels where the file has shares of the image's size, with the 95 % half-width.
Json LensRow(const Json& result, const char* name, const Number& figure, const char* error,
             int decimals) {
  const Number half = Times(NumberAt(result, error), NumberAt(result, "/crossCheck/t95"));
  return {{"name", name},
          {"figure", Fixed(figure, decimals)},
          {"half", half ? Json(Fixed(half, decimals)) : Json()},
          {"isPixels", decimals == 2}};
}

Json Lens(const Json& result) {
  if (!NumberAt(result, "/focalLengthMm/0")) {
    return nullptr;
  }
  const auto pixels = [&](const char* share, const char* size) {
    return Times(NumberAt(result, share), NumberAt(result, size));
  };
  const char* kWidth = "/imageSize/0";
  const char* kHeight = "/imageSize/1";
  return {{"focalLength", Fixed(NumberAt(result, "/focalLengthMm/0"), 3)},
          {"horizontal", Fixed(NumberAt(result, "/fieldOfView/0"), 3)},
          {"vertical", Fixed(NumberAt(result, "/fieldOfView/1"), 3)},
          {"width", Fixed(NumberAt(result, kWidth), 0)},
          {"height", Fixed(NumberAt(result, kHeight), 0)},
          {"error", Fixed(NumberAt(result, "/lensErrorPixels"), 3)},
          {"errorLimit", LimitOf(result, "lensErrorPixels", 1)},
          {"rows",
           {LensRow(result, "fx", pixels("/normFocal/0", kWidth), "/crossCheck/lens/fx", 2),
            LensRow(result, "fy", pixels("/normFocal/1", kHeight), "/crossCheck/lens/fy", 2),
            LensRow(result, "cx", pixels("/normCenter/0", kWidth), "/crossCheck/lens/cx", 2),
            LensRow(result, "cy", pixels("/normCenter/1", kHeight), "/crossCheck/lens/cy", 2),
            LensRow(result, "k1", NumberAt(result, "/distortion/0"), "/crossCheck/lens/k1", 5),
            LensRow(result, "k2", NumberAt(result, "/distortion/1"), "/crossCheck/lens/k2", 5)}}};
}

Json Findings(const Json& findings) {
  Json list = Json::array();
  for (const Json& finding : findings) {
    std::string severity = TextAt(finding, "/severity");
    if (severity != "error" && severity != "warning") {
      severity = "note";
    }
    Json photographs = Json::array();
    for (const Json& photograph : ValueAt(finding, "/photographs")) {
      if (photograph.is_string()) {
        photographs.push_back(photograph);
      }
    }
    const std::string text = TextAt(finding, "/text");
    list.push_back({{"severity", severity},
                    {"text", text.empty() ? TextAt(finding, "/id") : text},
                    {"photographs", photographs}});
  }
  return list;
}

// Engines go by names of their own.
Json FirstOf(const Json& engine, const char* path, const char* other) {
  const Json value = ValueAt(engine, path);
  return value.is_null() ? ValueAt(engine, other) : value;
}

Json Engines(const Json& result) {
  Json engines = Json::array();
  for (const auto& [name, engine] : ValueAt(result, "/exports").items()) {
    const std::string title = TextAt(engine, "/title");
    engines.push_back(
        {{"title", title.empty() ? name : title},
         {"hand", TextAt(engine, "/hand")},
         {"problem", NumberAt(engine, "/code") == 0.0 ? "" : TextAt(engine, "/message")},
         {"cameraAxes", ValueAt(engine, "/cameraAxes")},
         {"parentAxes", TextAt(engine, "/parentAxes")},
         {"position", List(ValueAt(engine, "/localPosition"), 6)},
         {"translation", List(FirstOf(engine, "/translationCm", "/locationCm"), 4)},
         {"rotation", List(FirstOf(engine, "/rotationDeg", "/localEulerAngles"), 4)},
         {"quaternion", List(FirstOf(engine, "/quaternionXyzw", "/localRotationXyzw"), 7)},
         {"fieldOfView", List(ValueAt(engine, "/fovX"), 4)},
         {"lensCentre", List(ValueAt(engine, "/lensCentre"), 6)}});
  }
  return engines;
}

Json OnScreen(const Json& result) {
  Json rows = Json::array();
  for (const Json& row : ValueAt(result, "/crossCheck/onScreen")) {
    rows.push_back({{"distance", Fixed(NumberAt(row, "/distanceMetres"), 2)},
                    {"pixels", Fixed(NumberAt(row, "/pixels"), 2)},
                    {"transform", Fixed(NumberAt(row, "/fromTransform"), 2)},
                    {"lens", Fixed(NumberAt(row, "/fromLens"), 2)},
                    {"apart", Fixed(NumberAt(row, "/libraryApart"), 2)}});
  }
  return rows;
}

Json SuggestedViews(const Json& result) {
  Json views = Json::array();
  for (const Json& view : ValueAt(result, "/crossCheck/suggestedViews")) {
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

Json CrossCheck(const Json& result) {
  const Json& crossCheck = ValueAt(result, "/crossCheck");
  if (!crossCheck.is_object()) {
    return nullptr;
  }
  const auto known = [&](const char* path, int decimals) {
    const Number number = NumberAt(crossCheck, path);
    return number ? Json(Fixed(number, decimals)) : Json();
  };
  return {{"photographs", known("/photographs", 0)},
          {"used", known("/used", 0)},
          {"library", Distance(ValueAt(crossCheck, "/library"))},
          {"halves", Distance(ValueAt(crossCheck, "/halves"))},
          {"noiseDegrees", known("/trackerNoise/degrees", 3)},
          {"noiseMillimetres", known("/trackerNoise/mm", 2)},
          {"cornerNoise", known("/cornerNoisePixels", 3)},
          {"amplification", known("/diversity/amplification", 2)},
          {"photographsToHalve", known("/photographsToHalve", 0)},
          {"squareFactor", known("/square/factor", 4)},
          {"squareError", known("/square/standardError", 4)}};
}

/// The figures in which two runs are compared.
Json RunFigures(const Json& run) {
  return {
      {"code", Fixed(NumberAt(run, "/code"), 0)},
      {"x", Fixed(Times(NumberAt(run, "/transformCamTc/3"), kMillimetresPerMetre), 2)},
      {"y", Fixed(Times(NumberAt(run, "/transformCamTc/7"), kMillimetresPerMetre), 2)},
      {"z", Fixed(Times(NumberAt(run, "/transformCamTc/11"), kMillimetresPerMetre), 2)},
      {"reprojection", Fixed(NumberAt(run, "/reprojectionErrorPixels"), 2)},
      {"spread", Fixed(Times(NumberAt(run, "/translationSpreadMetres"), kMillimetresPerMetre), 2)},
      {"used", ValueAt(run, "/used").size()},
      {"off", Distance(ValueAt(run, "/crossCheck/library"))},
      {"words", TextAt(run, "/verdict/words")}};
}

Json Inputs(const Json& result) {
  const Json& inputs = ValueAt(result, "/inputs");
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

/// good, doubt, wrong or failed; "none" of a result without a verdict that is not a failure.
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

std::string LogLink(const Json& result, const std::filesystem::path& pageFolder) {
  const std::string log = TextAt(result, "/log");
  return log.empty() ? log
                     : FileLink(std::filesystem::u8path(TextAt(result, "/inputs/workingFolder")) /
                                    std::filesystem::u8path(log),
                                pageFolder);
}

Json Commands(const Json& result) {
  Json commands = Json::array();
  for (const Json& command : ValueAt(result, "/verdict/commands")) {
    if (command.is_string()) {
      commands.push_back(command);
    }
  }
  return commands;
}

Json InState(const Json& photographs, const char* state) {
  Json list = Json::array();
  std::copy_if(photographs.begin(), photographs.end(), std::back_inserter(list),
               [&](const Json& photograph) { return photograph["state"] == state; });
  return list;
}

}  // namespace

Json TransformComponents(const Json& result) {
  const auto one = RotationAt(result, "/transformCamTc");
  const auto found = RotationAt(result, "/crossCheck/transformCamTc");
  std::optional<std::array<double, 3>> turn;
  if (one && found) {
    turn = TurnDegrees(Product(*one, Inverse(*found)));
  }
  return Components(result, "/transformCamTc", true, "/crossCheck/transformCamTc",
                    "/crossCheck/standardErrorCamTc", turn);
}

Json MountingComponents(const Json& result) {
  const auto stated = StatedRotation(result);
  const auto found = RotationAt(result, "/crossCheck/transformTrChart");
  std::optional<std::array<double, 3>> turn;
  if (stated && found) {
    turn = TurnDegrees(Product(Inverse(*found), *stated));
  }
  return Components(result, "/inputs/chartTranslationMetres", false, "/crossCheck/transformTrChart",
                    "/crossCheck/standardErrorTrChart", turn);
}

Rotation Product(const Rotation& a, const Rotation& b) {
  Rotation product = {};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      product[3 * r + c] = a[3 * r] * b[c] + a[3 * r + 1] * b[3 + c] + a[3 * r + 2] * b[6 + c];
    }
  }
  return product;
}

Rotation Inverse(const Rotation& a) {
  return {a[0], a[3], a[6], a[1], a[4], a[7], a[2], a[5], a[8]};
}

Rotation RotationOfAngles(const std::array<double, 3>& degrees) {
  std::array<double, 3> c = {};
  std::array<double, 3> s = {};
  for (std::size_t i = 0; i < 3; ++i) {
    c[i] = std::cos(degrees[i] / kDegreesPerRadian);
    s[i] = std::sin(degrees[i] / kDegreesPerRadian);
  }
  const Rotation aboutX = {1, 0, 0, 0, c[0], -s[0], 0, s[0], c[0]};
  const Rotation aboutY = {c[1], 0, s[1], 0, 1, 0, -s[1], 0, c[1]};
  const Rotation aboutZ = {c[2], -s[2], 0, s[2], c[2], 0, 0, 0, 1};
  return Product(Product(aboutX, aboutY), aboutZ);
}

std::array<double, 3> TurnDegrees(const Rotation& rotation) {
  // Twice the sine of the angle along the axis; atan2 keeps small angles exact.
  std::array<double, 3> turn = {rotation[7] - rotation[5], rotation[2] - rotation[6],
                                rotation[3] - rotation[1]};
  const double sine = std::hypot(turn[0], turn[1], turn[2]) / 2;
  const double cosine = (rotation[0] + rotation[4] + rotation[8] - 1) / 2;
  const double scale = sine > 0 ? std::atan2(sine, cosine) * kDegreesPerRadian / (2 * sine) : 0;
  for (double& part : turn) {
    part *= scale;
  }
  return turn;
}

Json PhotographList(const Json& result, const std::vector<Thumbnail>& thumbnails,
                    const fs::path& pageFolder) {
  const std::map<std::string, std::string> reasons = ReasonsOf(result);
  std::map<std::string, const Thumbnail*> thumbnailOf;
  for (const Thumbnail& thumbnail : thumbnails) {
    if (!ImageType(thumbnail.bytes).empty()) {
      thumbnailOf.emplace(thumbnail.photograph, &thumbnail);
    }
  }
  Json list = Json::array();
  for (const auto& [name, crossCheck, place] : RowsOf(result)) {
    const auto reason = reasons.find(name);
    const std::string state =
        StateOf(crossCheck, reason == reasons.end() ? nullptr : &reason->second);
    const std::string image = ReprojectedImage(result, name);
    Json photograph = {
        {"number", list.size() + 1},
        {"photograph", name},
        {"shortName", ShortName(name)},
        {"state", state},
        {state, true},
        {"reason", reason == reasons.end() ? "" : reason->second},
        {"link", LinkTo(image.empty() ? name : image, result, pageFolder)},
        {"isReprojected", !image.empty()},
    };
    if (crossCheck != nullptr) {
      photograph["place"] = place;
      photograph["hasFigures"] = true;
      photograph["millimetres"] = Fixed(NumberAt(*crossCheck, "/mm"), 2);
      photograph["degrees"] = Fixed(NumberAt(*crossCheck, "/degrees"), 3);
      photograph["pixels"] = Fixed(NumberAt(*crossCheck, "/predictedPixels"), 2);
      photograph["why"] = TextAt(*crossCheck, "/why");
    }
    const auto thumbnail = thumbnailOf.find(name);
    if (thumbnail != thumbnailOf.end()) {
      const std::string& bytes = thumbnail->second->bytes;
      photograph["thumbnail"] =
          "data:" + std::string(ImageType(bytes)) + ";base64," + Base64(bytes);
    }
    list.push_back(photograph);
  }
  return list;
}

Json PageView(const Json& result, const std::vector<Thumbnail>& thumbnails,
              const std::filesystem::path& pageFolder) {
  const std::string level = LevelOf(result);
  const Json photographs = PhotographList(result, thumbnails, pageFolder);
  const Json lost = InState(photographs, "missing");
  const std::string data = TextAt(result, "/inputs/data");
  const Json& firstRun = ValueAt(result, "/firstRun");
  return {
      {"level", level},
      {level, true},
      {"code", Fixed(NumberAt(result, "/code"), 0)},
      {"message", TextAt(result, "/message")},
      {"words", TextAt(result, "/verdict/words")},
      {"advice", TextAt(result, "/verdict/advice")},
      {"commands", Commands(result)},
      {"dataName", data.substr(data.find_last_of("/\\") + 1)},
      {"time", TextAt(result, "/time")},
      {"findings", Findings(ValueAt(result, "/findings"))},
      {"lens", Lens(result)},
      {"matrix", Matrix(ValueAt(result, "/transformCamTc"))},
      {"transform", TransformComponents(result)},
      {"mounting", Mounting(result)},
      {"mountingComponents", MountingComponents(result)},
      {"crossCheck", CrossCheck(result)},
      {"reprojection", Fixed(NumberAt(result, "/reprojectionErrorPixels"), 2)},
      {"spread",
       Fixed(Times(NumberAt(result, "/translationSpreadMetres"), kMillimetresPerMetre), 2)},
      {"reprojectionLimit", LimitOf(result, "reprojectionErrorPixels", 1)},
      {"spreadLimit", LimitOf(result, "translationSpreadMetres", 0, kMillimetresPerMetre)},
      {"photographs", photographs},
      {"photographCount", photographs.size()},
      {"usedCount", ValueAt(result, "/used").size()},
      {"lost", lost},
      {"lostCount", lost.size()},
      {"disagreeing", InState(photographs, "apart")},
      {"onScreen", OnScreen(result)},
      {"views", SuggestedViews(result)},
      {"firstRun", firstRun.is_object() ? RunFigures(firstRun) : Json()},
      {"lastRun", RunFigures(result)},
      {"inputs", Inputs(result)},
      {"engines", Engines(result)},
      {"log", TextAt(result, "/log")},
      {"logLink", LogLink(result, pageFolder)},
      {"libraryVersion", TextAt(result, "/versions/library")},
      {"programVersion", TextAt(result, "/versions/program")},
  };
}

}  // namespace trackedcam::report
