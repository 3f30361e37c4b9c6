#include "host/lens_files/opentrackio.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "host/input/inputs.h"
#include "host/lens_files/lens_model.h"
#include "host/text/files.h"

namespace trackedcam::host {
namespace {

using Eigen::Matrix3d;
using Json = nlohmann::ordered_json;

// The coefficients apply to millimetres, not to multiples of the focal length: each takes as many
// focal lengths as the point has powers in its term, but for the one that the result has too. The
// list alternates between the numerator and the denominator of the radial factor.
Json DistortionJson(const LensModel& lens, double focalLengthMm) {
  const double f2 = focalLengthMm * focalLengthMm;
  return {{"model", "Brown-Conrady U-D"},
          {"radial", {lens.k1 / f2, 0.0, lens.k2 / (f2 * f2), 0.0, lens.k3 / (f2 * f2 * f2), 0.0}},
          {"tangential", {lens.p1 / focalLengthMm, lens.p2 / focalLengthMm}}};
}

// rotation = Rz(pan) * Rx(tilt) * Ry(roll). Tilt and roll are computed from the rotation without
// the pan, so that they fit the pan even if it is arbitrary (gimbal lock).
Json RotationJson(const Matrix3d& rotation) {
  const double pan = std::atan2(-rotation(0, 1), rotation(1, 1));
  const double c = std::cos(pan);
  const double s = std::sin(pan);
  const double tilt = std::atan2(rotation(2, 1), c * rotation(1, 1) - s * rotation(0, 1));
  const double roll =
      std::atan2(c * rotation(0, 2) + s * rotation(1, 2), c * rotation(0, 0) + s * rotation(1, 0));
  constexpr double kDegrees = 180 / EIGEN_PI;
  return {{"pan", pan * kDegrees}, {"tilt", tilt * kDegrees}, {"roll", roll * kDegrees}};
}

Json TransformJson(const ExportInput& input) {
  const ParentAxes axes = ParseParentAxes(
      input.parentAxes.empty() ? kOpenTrackIoParentAxes : input.parentAxes, kOpenTrackIoParentAxes);
  const CameraPlacement placement =
      InEngineAxes(PlacementInReportedAxes(input.calibration.transformCamTc), axes.fromReported,
                   RightForwardUp());
  const Eigen::Vector3d& position = placement.position;
  return {{"translation", {{"x", position.x()}, {"y", position.y()}, {"z", position.z()}}},
          {"rotation", RotationJson(placement.rotation)},
          {"id", "Camera"}};
}

}  // namespace

std::string OpenTrackIoText(const ExportInput& input) {
  constexpr std::size_t kLongestText = 1023;
  const LensModel lens = LensModelOf(input.calibration);
  const std::optional<EngineLens> inMillimetres = LensOf(input);
  if (!inMillimetres || !(inMillimetres->focalLengthMm > 0)) {
    throw InputError("the result does not have the size of the sensor (inputs.sensorMm)");
  }
  const std::array<double, 2>& filmbackMm = inMillimetres->filmbackMm;
  const std::array<double, 2>& imageCenter = inMillimetres->imageCenter;
  Json history = Json::array();
  for (const std::string& line :
       input.origin ? OriginLines(*input.origin) : std::vector<std::string>()) {
    history.push_back(line.substr(0, kLongestText));
  }
  return JsonText({
      {"static",
       {{"camera",
         {{"activeSensorPhysicalDimensions", {{"height", filmbackMm[1]}, {"width", filmbackMm[0]}}},
          {"activeSensorResolution", {{"height", lens.height}, {"width", lens.width}}}}},
        {"lens", {{"calibrationHistory", history}}}}},
      {"lens",
       {{"distortion", Json::array({DistortionJson(lens, inMillimetres->focalLengthMm)})},
        // The transform is that of the entrance pupil already.
        {"entrancePupilOffset", 0.0},
        {"pinholeFocalLength", inMillimetres->focalLengthMm},
        {"projectionOffset",
         {{"x", (imageCenter[0] - 0.5) * filmbackMm[0]},
          {"y", (imageCenter[1] - 0.5) * filmbackMm[1]}}}}},
      {"protocol", {{"name", "OpenTrackIO"}, {"version", {1, 0, 1}}}},
      {"transforms", Json::array({TransformJson(input)})},
  });
}

}  // namespace trackedcam::host
