#include "host/result/truth.h"

#include "host/input/input_error.h"
#include "host/text/json_file.h"

namespace trackedcam::host {
namespace {

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

}  // namespace

CalibrationOutputs ReadTruth(const std::filesystem::path& path,
                             const std::array<double, 2>& sensor) {
  try {
    return Parse(ReadJson<nlohmann::json>(path), sensor);
  } catch (const std::exception& error) {
    throw InputError(path.u8string() + " is not the truth of a simulated shoot: " + error.what());
  }
}

}  // namespace trackedcam::host
