#include "host/result/result_file.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <system_error>

#include <nlohmann/json.hpp>

#include "crosscheck/twist.h"
#include "host/engines/placement.h"
#include "host/input/inputs.h"
#include "host/text/files.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::size_t kHead = 4096;

// Nothing for what is no JSON object. A file that begins otherwise is not read.
std::optional<Json> ReadObject(const fs::path& file) {
  if (BeginningOf(file, 1) != "{") {
    return std::nullopt;
  }
  try {
    auto json = ReadJson<Json>(file);
    return json.is_object() ? std::optional<Json>(std::move(json)) : std::nullopt;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

bool HasAll(const Json& json, std::initializer_list<const char*> keys) {
  return std::all_of(keys.begin(), keys.end(), [&](const char* key) { return json.contains(key); });
}

constexpr double kMillimetresPerMetre = 1000.0;

CalibrationOutputs Parse(const nlohmann::json& json, const std::array<double, 2>& sensor) {
  CalibrationOutputs truth;
  truth.imageSize = ReadNumbers(json, "imageSize", 2);
  truth.normFocal = ReadNumbers(json, "normFocal", 2);
  truth.normCenter = ReadNumbers(json, "normCenter", 2);
  truth.distortion = ReadNumbers(json, "distortion", 5);
  truth.transformCamTc = ReadNumbers(json, "transformCamTc", 16);
  truth.fieldOfView = ReadNumbers(json, "fieldOfView", 2);
  // As the library does it: by the smaller pixel pitch.
  const bool isVertical = sensor[1] / truth.imageSize[1] <= sensor[0] / truth.imageSize[0];
  const std::size_t axis = isVertical ? 1 : 0;
  truth.focalLengthMm = {truth.normFocal[axis] * sensor[axis]};
  return truth;
}

struct Result {
  int code = 0;
  ExportInput input;
};

// The lens of a file that was written before the engines needed it, or by hand, is not there.
void ParseLens(const nlohmann::json& json, ExportInput& input) {
  if (json.contains("imageSize") && json.contains("distortion")) {
    input.calibration.imageSize = ReadNumbers(json, "imageSize", 2);
    input.calibration.distortion = ReadNumbers(json, "distortion", 5);
  }
  const auto inputs = json.find("inputs");
  if (inputs != json.end() && inputs->contains("sensorMm")) {
    const auto sensor = ReadNumbers(*inputs, "sensorMm", 2);
    input.sensorMm = {sensor[0], sensor[1]};
  }
}

std::string TextAt(const nlohmann::json& json, const char* place) {
  const nlohmann::json::json_pointer pointer(place);
  return json.contains(pointer) && json.at(pointer).is_string()
             ? json.at(pointer).get<std::string>()
             : "";
}

// Empty unless all are there.
std::vector<double> NumbersAt(const nlohmann::json& json, const std::vector<std::string>& places) {
  std::vector<double> numbers;
  for (const std::string& place : places) {
    const nlohmann::json::json_pointer pointer(place);
    if (!json.contains(pointer) || !json.at(pointer).is_number()) {
      return {};
    }
    numbers.push_back(json.at(pointer).get<double>());
  }
  return numbers;
}

std::vector<double> ThreeAt(const nlohmann::json& json, const std::string& place) {
  return NumbersAt(json, {place + "/0", place + "/1", place + "/2"});
}

// How far from the middle of the image the chart was seen, in pixels.
double ReachOf(const nlohmann::json& photograph, const std::vector<double>& imageSize) {
  double reach = 0;
  const nlohmann::json::json_pointer corners("/crossCheck/corners");
  for (const nlohmann::json& corner :
       photograph.contains(corners) ? photograph.at(corners) : nlohmann::json::array()) {
    const std::vector<double> place = NumbersAt(corner, {"/0", "/1"});
    if (!place.empty()) {
      reach = std::max(reach, std::hypot(place[0] - imageSize[0] / 2, place[1] - imageSize[1] / 2));
    }
  }
  return reach;
}

Result Parse(const nlohmann::json& json) {
  Result result;
  result.code = json.at("code").get<int>();
  if (IsUsable(result.code)) {
    CalibrationOutputs& calibration = result.input.calibration;
    calibration.normFocal = ReadNumbers(json, "normFocal", 2);
    calibration.normCenter = ReadNumbers(json, "normCenter", 2);
    calibration.transformCamTc = ReadNumbers(json, "transformCamTc", 16);
    ParseLens(json, result.input);
    result.input.origin = OriginOf(json);
    result.input.photograph = PhotographToShow(json);
  }
  return result;
}

Result Read(const std::filesystem::path& path) {
  try {
    return Parse(ReadJson<nlohmann::json>(path));
  } catch (const std::exception& error) {
    throw InputError(path.u8string() + " is not the result of a calibration: " + error.what());
  }
}

}  // namespace

std::string BeginningOf(const fs::path& file, std::size_t count) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) {
    return {};
  }
  std::ifstream stream(file, std::ios::binary);
  std::string bytes(count, '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(count));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return bytes;
}

bool IsResultFile(const fs::path& file) {
  const auto json = ReadObject(file);
  return json && HasAll(*json, {"code", "message", "normFocal", "transformCamTc", "versions"});
}

bool IsReportPage(const fs::path& file) {
  return BeginningOf(file, kHead).find(R"(<meta name="generator" content="trackedcam">)") !=
         std::string::npos;
}

bool IsLensFile(const fs::path& file) {
  const auto json = ReadObject(file);
  // Those of other programs are of the same form, but hardly to the last blank.
  return json && json->value("/metadata/type"_json_pointer, "") == "LensFile" &&
         json->value("/metadata/lensInfo/serialNumber"_json_pointer, "none").empty() &&
         json->value("/metadata/userMetadata"_json_pointer, Json()).empty() &&
         JsonText(*json) == ReadFile(file);
}

bool IsExportFile(const fs::path& file) {
  return BeginningOf(file, kHead).find(kWrittenBy) != std::string::npos;
}

bool IsTruthFile(const fs::path& file) {
  const auto json = ReadObject(file);
  return json && HasAll(*json, {"seed", "lensPixels", "transformCamTc", "mounting", "photographs"});
}

TransformDifference Difference(const std::vector<double>& a, const std::vector<double>& b) {
  double rotationSquares = 0;
  double translationSquares = 0;
  for (std::size_t i = 0; i < 12; ++i) {
    const double difference = a.at(i) - b.at(i);
    (i % 4 == 3 ? translationSquares : rotationSquares) += difference * difference;
  }
  // By the distance between the matrices: the arc cosine of a trace loses small angles.
  const double sine = std::sqrt(rotationSquares / 8);
  return {kMillimetresPerMetre * std::sqrt(translationSquares),
          2 * std::asin(std::min(sine, 1.0)) / crosscheck::kDegree};
}

CalibrationOutputs ReadTruth(const std::filesystem::path& path,
                             const std::array<double, 2>& sensor) {
  try {
    return Parse(ReadJson<nlohmann::json>(path), sensor);
  } catch (const std::exception& error) {
    throw InputError(path.u8string() + " is not the truth of a simulated shoot: " + error.what());
  }
}

Origin OriginOf(const nlohmann::json& result) {
  const std::string level = TextAt(result, "/verdict/level");
  // A result without a verdict is older than the cross-check.
  const Verdict ofCode = VerdictOf(result.at("code").get<int>());
  Origin origin = {TextAt(result, "/time"), ofCode.level, ofCode.message, {}, {}, {}};
  for (const Level known : {Level::kGood, Level::kDoubtful, Level::kWrong, Level::kFailed}) {
    if (level == Name(known)) {
      origin.level = known;
      origin.message = TextAt(result, "/verdict/message");
    }
  }
  const std::string lens = "/crossCheck/lens/";
  origin.lensErrors = NumbersAt(
      result, {lens + "fx", lens + "fy", lens + "cx", lens + "cy", lens + "k1", lens + "k2"});
  origin.positionErrorsMm = ThreeAt(result, "/crossCheck/standardErrorCamTc/translationMm");
  origin.rotationErrorsDegrees = ThreeAt(result, "/crossCheck/standardErrorCamTc/rotationDegrees");
  return origin;
}

std::filesystem::path PhotographToShow(const nlohmann::json& result) {
  const std::vector<double> imageSize = NumbersAt(result, {"/imageSize/0", "/imageSize/1"});
  std::string path;
  double farthest = 0;
  for (const nlohmann::json& photograph :
       imageSize.empty() ? nlohmann::json::array()
                         : result.value("photographs", nlohmann::json::array())) {
    const double reach = ReachOf(photograph, imageSize);
    if (reach > farthest && TextAt(photograph, "/state") == "used") {
      farthest = reach;
      path = TextAt(photograph, "/path");
    }
  }
  return fs::u8path(path);
}

ExportInput ReadResult(const std::filesystem::path& path) {
  Result result = Read(path);
  if (!IsUsable(result.code)) {
    throw std::runtime_error(path.u8string() + " is of a calibration that failed, code " +
                             std::to_string(result.code) + ": " + VerdictOf(result.code).message);
  }
  if (!IsPlacement(result.input.calibration.transformCamTc)) {
    throw InputError(path.u8string() +
                     " holds a transformCamTc that no engine can take: it is no rotation and "
                     "translation");
  }
  const std::vector<double>& focal = result.input.calibration.normFocal;
  if (!(focal[0] > 0 && focal[1] > 0)) {
    throw InputError(path.u8string() + " holds a normFocal that is no focal length");
  }
  return std::move(result.input);
}

}  // namespace trackedcam::host
