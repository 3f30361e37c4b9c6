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
  const EngineLens& figures = lens.figures;
  return {
      {"usePhysicalProperties", true},
      {"sensorSize", figures.filmbackMm},
      {"focalLength", figures.focalLengthMm},
      {"lensShift", lens.lensShift},
      {"gateFit", "None"},
      {"imageSize", figures.imageSize},
      {"distortion",
       {{"model", "Brown-Conrady"},
        {"k1", figures.k1},
        {"k2", figures.k2},
        {"k3", figures.k3},
        {"p1", figures.p1},
        {"p2", figures.p2},
        {"fxFy", figures.fxFy},
        {"imageCenter", figures.imageCenter}}},
  };
}

}  // namespace

UnityFigures ToUnity(const ExportInput& input) {
  const ParentAxes axes = ParseParentAxes(
      input.parentAxes.empty() ? kUnityParentAxes : input.parentAxes, kUnityParentAxes);
  const CameraPlacement placement =
      InEngineAxes(PlacementInReportedAxes(input.calibration.transformCamTc), axes.fromReported,
                   RightUpForward());
  UnityFigures figures;
  figures.localPosition = {placement.position.x(), placement.position.y(), placement.position.z()};
  figures.localRotationXyzw = QuaternionXyzw(placement.rotation);
  figures.localEulerAngles = EulerAngles(placement.rotation);
  figures.lens = UnityLensOf(input);
  figures.parentAxes = axes.text;
  return figures;
}

Json UnityJson(const UnityFigures& figures) {
  return {
      {"parentAxes", figures.parentAxes},
      {"localPosition", NumbersJson(figures.localPosition)},
      {"localRotationXyzw", NumbersJson(figures.localRotationXyzw)},
      {"localEulerAngles", NumbersJson(figures.localEulerAngles)},
      {"lens", figures.lens ? LensJson(*figures.lens) : Json(nullptr)},
  };
}

}  // namespace trackedcam::host
