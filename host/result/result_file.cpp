#include "host/result/result_file.h"

#include <stdexcept>

#include "host/engines/camera_placement.h"
#include "host/input/input_error.h"
#include "host/text/json_file.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

struct Result {
  int code = 0;
  HandOver handOver;
};

// The lens of a file that was written before the engines needed it, or by hand, is not there.
void ParseLens(const nlohmann::json& json, HandOver& handOver) {
  if (json.contains("imageSize") && json.contains("distortion")) {
    handOver.calibration.imageSize = ReadNumbers(json, "imageSize", 2);
    handOver.calibration.distortion = ReadNumbers(json, "distortion", 5);
  }
  const auto inputs = json.find("inputs");
  if (inputs != json.end() && inputs->contains("sensorMm")) {
    const auto sensor = ReadNumbers(*inputs, "sensorMm", 2);
    handOver.sensorMm = {sensor[0], sensor[1]};
  }
}

Result Parse(const nlohmann::json& json) {
  Result result;
  result.code = json.at("code").get<int>();
  if (IsUsable(result.code)) {
    CalibrationOutputs& calibration = result.handOver.calibration;
    calibration.normFocal = ReadNumbers(json, "normFocal", 2);
    calibration.normCenter = ReadNumbers(json, "normCenter", 2);
    calibration.transformCamTc = ReadNumbers(json, "transformCamTc", 16);
    ParseLens(json, result.handOver);
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

HandOver ReadResult(const std::filesystem::path& path) {
  Result result = Read(path);
  if (!IsUsable(result.code)) {
    throw std::runtime_error(path.u8string() + " is of a calibration that failed, code " +
                             std::to_string(result.code) + ": " + VerdictOf(result.code).words);
  }
  if (!IsPlacement(result.handOver.calibration.transformCamTc)) {
    throw InputError(path.u8string() +
                     " holds a transformCamTc that no engine can take: it is no rotation and "
                     "translation");
  }
  const std::vector<double>& focal = result.handOver.calibration.normFocal;
  if (!(focal[0] > 0 && focal[1] > 0)) {
    throw InputError(path.u8string() + " holds a normFocal that is no focal length");
  }
  return std::move(result.handOver);
}

}  // namespace trackedcam::host
