#include "host/result/stored_calibration.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/result/result_file.h"
#include "host/text/files.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

using ParsedJson = nlohmann::json;

constexpr int kForm = 1;  // of this part of the file
constexpr const char* kChecksum = "checksum";
constexpr const char* kAgain = " Calibrate again.";

constexpr std::array<const char*, crosscheck::kCornerParameters> kParameters = {
    "fx",  "fy", "cx", "cy",      "k1",           "k2",
    "p1",  "p2", "k3", "stretch", "bowAlongRows", "bowAlongColumns",
    "warp"};

// FNV-1a of the values as text, which tells an edited file from that of a calibration.
std::string ChecksumOf(ParsedJson calibration) {
  calibration.erase(kChecksum);
  std::uint64_t hash = 14695981039346656037U;
  for (const char character : calibration.dump()) {
    hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211U;
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (int shift = 60; shift >= 0; shift -= 4) {
    text += kDigits[(hash >> static_cast<unsigned>(shift)) & 0xFU];
  }
  return text;
}

template <class Derived>
std::vector<double> ListOf(const Eigen::MatrixBase<Derived>& matrix) {
  std::vector<double> list;
  for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
    for (Eigen::Index column = 0; column < matrix.cols(); ++column) {
      list.push_back(matrix(row, column));
    }
  }
  return list;
}

Eigen::MatrixXd MatrixAt(const ParsedJson& json, const char* key, Eigen::Index rows,
                         Eigen::Index columns) {
  const std::vector<double> list = ReadNumbers(json, key, static_cast<std::size_t>(rows * columns));
  return Eigen::Map<const Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>>(
      list.data(), rows, columns);
}

crosscheck::Pose PoseAt(const ParsedJson& json, const char* key) {
  return crosscheck::Pose(Eigen::Matrix4d(MatrixAt(json, key, 4, 4)));
}

template <class Named>
const Named* NamedAt(const std::vector<Named>& all, const ParsedJson& json, const char* key) {
  const auto name = json.at(key).get<std::string>();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Named& named) { return named.name == name; });
  if (found == all.end()) {
    throw std::runtime_error(std::string(key) + " is not known");
  }
  return &*found;
}

StoredCalibration ParseCalibration(const ParsedJson& json) {
  StoredCalibration stored;
  crosscheck::Calibration& calibration = stored.calibration;
  const std::vector<double> size = ReadNumbers(json, "imageSize", 2);
  const std::vector<double> board = ReadNumbers(json, "board", 2);
  calibration.board.columns = static_cast<int>(board[0]);
  calibration.board.rows = static_cast<int>(board[1]);
  calibration.board.square = json.at("edgeMetres").get<double>();
  calibration.square = json.at("squareMetres").get<double>();
  crosscheck::CornerModel model{calibration.lens, calibration.board};
  const std::vector<double> values = ReadNumbers(json, "model", kParameters.size());
  model.SetParameters(Eigen::Map<const crosscheck::CornerVector>(values.data()));
  calibration.lens = model.lens;
  calibration.lens.width = static_cast<int>(size[0]);
  calibration.lens.height = static_cast<int>(size[1]);
  calibration.board = model.board;
  calibration.Transform_Cam_Tc = PoseAt(json, "transformCamTc");
  calibration.Transform_Tr_Chart = PoseAt(json, "transformTrChart");
  for (const ParsedJson& name : json.at("solvedFor")) {
    const auto found = std::find(kParameters.begin(), kParameters.end(), name.get<std::string>());
    calibration.parameters.push_back(found - kParameters.begin());
  }
  const Eigen::Index count = crosscheck::CovarianceSize(calibration.parameters);
  calibration.covariance = MatrixAt(json, "covariance", count, count);
  calibration.scaleUncertainty = json.at("scaleUncertainty").get<double>();
  calibration.rotationVariance = json.at("rotationVariance").get<double>();
  calibration.translationVariance = json.at("translationVariance").get<double>();
  calibration.freedom = json.at("freedom").get<double>();
  calibration.cornerNoisePixels = json.at("cornerNoisePixels").get<double>();
  calibration.cornerInflation = json.at("cornerInflation").get<double>();
  calibration.invertTrackerQuaternions = json.at("invertTrackerQuaternions").get<bool>();
  calibration.quaternionAxes = MatrixAt(json, "quaternionAxes", 3, 3);
  stored.trackerFrame = {NamedAt(kTrackerAxes, json, "trackerAxes"),
                         NamedAt(kTrackerUnits, json, "trackerUnits"),
                         json.at("quaternionOrder").get<std::string>() == "xyzw"};
  return stored;
}

ParsedJson ReadResultObject(const std::filesystem::path& result) {
  try {
    auto json = ReadJson<ParsedJson>(result);
    if (json.is_object() && json.contains("code") && json.contains("versions")) {
      return json;
    }
  } catch (const std::exception& error) {
    throw InputError(result.u8string() + " cannot be read as a result file: " + error.what() +
                     ". If it was cut or edited, use a copy, or calibrate again.");
  }
  throw InputError(result.u8string() +
                   " is not a result file of trackedcam: use the file that calibrate wrote with "
                   "--result, or result.json in the folder of its run.");
}

}  // namespace

nlohmann::ordered_json CalibrationJson(const crosscheck::Calibration& calibration,
                                       const Inputs& inputs) {
  std::vector<std::string> solvedFor;
  for (const Eigen::Index parameter : calibration.parameters) {
    solvedFor.emplace_back(kParameters.at(static_cast<std::size_t>(parameter)));
  }
  const crosscheck::CornerModel model{calibration.lens, calibration.board};
  nlohmann::ordered_json json = {
      {"form", kForm},
      {"imageSize", {calibration.lens.width, calibration.lens.height}},
      {"board", {calibration.board.columns, calibration.board.rows}},
      {"squareMetres", calibration.square},
      {"edgeMetres", calibration.board.square},
      {"model", ListOf(model.Parameters())},
      {"transformCamTc", ListOf(calibration.Transform_Cam_Tc.matrix())},
      {"transformTrChart", ListOf(calibration.Transform_Tr_Chart.matrix())},
      {"solvedFor", solvedFor},
      {"covariance", ListOf(calibration.covariance)},
      {"scaleUncertainty", calibration.scaleUncertainty},
      {"rotationVariance", calibration.rotationVariance},
      {"translationVariance", calibration.translationVariance},
      {"freedom", calibration.freedom},
      {"cornerNoisePixels", calibration.cornerNoisePixels},
      {"cornerInflation", calibration.cornerInflation},
      {"invertTrackerQuaternions", calibration.invertTrackerQuaternions},
      {"quaternionAxes", ListOf(calibration.quaternionAxes)},
      {"trackerAxes", AxesOf(inputs.trackerFrame).name},
      {"trackerUnits", UnitOf(inputs.trackerFrame).name},
      {"quaternionOrder", inputs.trackerFrame.hasQuaternionsXyzw ? "xyzw" : "wxyz"},
  };
  json[kChecksum] = ChecksumOf(ParsedJson::parse(json.dump()));
  return json;
}

std::optional<StoredCalibration> CalibrationIn(const ParsedJson& result) {
  const auto crossCheck = result.find("crossCheck");
  if (crossCheck == result.end() || !crossCheck->is_object()) {
    return std::nullopt;
  }
  const ParsedJson calibration = crossCheck->value("calibration", ParsedJson());
  if (calibration.is_null()) {
    return std::nullopt;
  }
  if (!calibration.is_object() || calibration.value("form", ParsedJson()) != ParsedJson(kForm)) {
    throw InputError("it is of another form than this version reads." + std::string(kAgain));
  }
  if (calibration.value(kChecksum, ParsedJson()) != ParsedJson(ChecksumOf(calibration))) {
    throw InputError("it was edited after the calibration: use a copy, or calibrate again.");
  }
  StoredCalibration stored;
  try {
    stored = ParseCalibration(calibration);
  } catch (const std::exception& error) {
    throw InputError(std::string(error.what()) + "." + kAgain);
  }
  if (!crosscheck::IsSound(stored.calibration)) {
    throw InputError("its values are not those of a calibration." + std::string(kAgain));
  }
  return stored;
}

StoredCalibration ReadCalibration(const std::filesystem::path& result) {
  const ParsedJson json = ReadResultObject(result);
  const std::string name = result.u8string();
  Origin origin;
  try {
    origin = OriginOf(json);
  } catch (const std::exception& error) {
    throw InputError(name + " is not a result file of trackedcam: " + error.what());
  }
  if (origin.level == Level::kFailed || origin.level == Level::kWrong) {
    throw InputError(name + " holds no result that can be verified: " + origin.message + kAgain);
  }
  const auto crossCheck = json.find("crossCheck");
  if (crossCheck == json.end() || !crossCheck->is_object() ||
      !crossCheck->contains("calibration")) {
    throw InputError(name +
                     " is of an older form, without what later photographs are tested "
                     "against." +
                     kAgain);
  }
  std::optional<StoredCalibration> stored;
  try {
    stored = CalibrationIn(json);
  } catch (const std::exception& error) {
    throw InputError(name + " cannot be verified: " + error.what());
  }
  if (!stored) {
    throw InputError(name +
                     " cannot be verified: its shoot did not determine transform and "
                     "mounting, or a tracker moved during it." +
                     kAgain);
  }
  stored->time = origin.time;
  return *stored;
}

}  // namespace trackedcam::host
