#include "host/engines/unity.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "host/text/files.h"

namespace trackedcam::host {
namespace {

using Eigen::Matrix3d;
using Json = nlohmann::ordered_json;

// rotation = Ry * Rx * Rz. The angle about z is computed from the rotation without Ry, so that it
// fits y even if y is arbitrary (gimbal lock).
std::vector<double> EulerAngles(const Matrix3d& rotation) {
  const double y = std::atan2(rotation(0, 2), rotation(2, 2));
  const double c = std::cos(y);
  const double s = std::sin(y);
  const double x = std::atan2(-rotation(1, 2), s * rotation(0, 2) + c * rotation(2, 2));
  const double z =
      std::atan2(s * rotation(2, 1) - c * rotation(0, 1), c * rotation(0, 0) - s * rotation(2, 0));
  constexpr double kDegrees = 180 / EIGEN_PI;
  return {x * kDegrees, y * kDegrees, z * kDegrees};
}

std::optional<UnityLens> UnityLensOf(const ExportInput& input) {
  const std::optional<EngineLens> lens = LensOf(input);
  if (!lens) {
    return std::nullopt;
  }
  return UnityLens{*lens, {0.5 - lens->imageCenter[0], lens->imageCenter[1] - 0.5}};
}

Json LensJson(const UnityLens& lens) {
  const EngineLens& values = lens.values;
  return {
      {"usePhysicalProperties", true},
      {"sensorSize", values.filmbackMm},
      {"focalLength", values.focalLengthMm},
      {"lensShift", lens.lensShift},
      {"gateFit", "None"},
      {"imageSize", values.imageSize},
      {"distortion",
       {{"model", "Brown-Conrady"},
        {"k1", values.k1},
        {"k2", values.k2},
        {"k3", values.k3},
        {"p1", values.p1},
        {"p2", values.p2},
        {"fxFy", values.fxFy},
        {"imageCenter", values.imageCenter}}},
  };
}

}  // namespace

UnityValues ToUnity(const ExportInput& input) {
  const ParentAxes axes = ParseParentAxes(
      input.parentAxes.empty() ? kUnityParentAxes : input.parentAxes, kUnityParentAxes);
  const CameraPlacement placement =
      InEngineAxes(PlacementInReportedAxes(input.calibration.transformCamTc), axes.fromReported,
                   RightUpForward());
  UnityValues values;
  values.localPosition = {placement.position.x(), placement.position.y(), placement.position.z()};
  values.localRotationXyzw = QuaternionXyzw(placement.rotation);
  values.localEulerAngles = EulerAngles(placement.rotation);
  values.lens = UnityLensOf(input);
  values.parentAxes = axes.text;
  return values;
}

Json UnityJson(const UnityValues& values) {
  return {
      {"parentAxes", values.parentAxes},
      {"localPosition", NumbersJson(values.localPosition)},
      {"localRotationXyzw", NumbersJson(values.localRotationXyzw)},
      {"localEulerAngles", NumbersJson(values.localEulerAngles)},
      {"lens", values.lens ? LensJson(*values.lens) : Json(nullptr)},
  };
}

}  // namespace trackedcam::host
