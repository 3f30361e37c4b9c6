#include "app/truth.h"

#include <fstream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace trackedcam::app {
namespace {

using Json = nlohmann::json;

std::vector<double> Numbers(const Json& truth, const char* key, std::size_t count) {
  auto numbers = truth.at(key).get<std::vector<double>>();
  if (numbers.size() != count) {
    throw std::invalid_argument(std::string(key) + " has the wrong length");
  }
  return numbers;
}

CalibrationOutputs Parse(std::istream& file, const std::array<double, 2>& sensor) {
  const Json json = Json::parse(file);
  CalibrationOutputs truth;
  truth.imageSize = Numbers(json, "imageSize", 2);
  truth.normFocal = Numbers(json, "normFocal", 2);
  truth.normCenter = Numbers(json, "normCenter", 2);
  truth.distortion = Numbers(json, "distortion", 5);
  truth.transformCamTc = Numbers(json, "transformCamTc", 16);
  truth.fieldOfView = Numbers(json, "fieldOfView", 2);
  // As the library does it: by the smaller pixel pitch.
  const bool isVertical = sensor[1] / truth.imageSize[1] <= sensor[0] / truth.imageSize[0];
  const std::size_t axis = isVertical ? 1 : 0;
  truth.focalLengthMm = {truth.normFocal[axis] * sensor[axis]};
  return truth;
}

}  // namespace

CalibrationOutputs ReadTruth(const std::filesystem::path& path,
                             const std::array<double, 2>& sensor) {
  std::ifstream file(path, std::ios::binary);
  try {
    return Parse(file, sensor);
  } catch (const std::exception& error) {
    throw CLI::ValidationError(
        "--truth", path.u8string() + " is not the truth of a simulated shoot: " + error.what());
  }
}

}  // namespace trackedcam::app
