#include "host/engines/unreal.h"

#include <cmath>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

using Eigen::Matrix3d;
using Json = nlohmann::ordered_json;

// rotation = Rz(yaw) * Ry(-pitch) * Rx(-roll). The roll is computed from the rotation without the
// yaw, so that it fits the yaw even if the yaw is arbitrary (gimbal lock).
std::vector<double> RollPitchYaw(const Matrix3d& rotation) {
  const double yaw = std::atan2(rotation(1, 0), rotation(0, 0));
  const double c = std::cos(yaw);
  const double s = std::sin(yaw);
  const double pitch = std::atan2(rotation(2, 0), c * rotation(0, 0) + s * rotation(1, 0));
  const double roll =
      -std::atan2(s * rotation(0, 2) - c * rotation(1, 2), c * rotation(1, 1) - s * rotation(0, 1));
  constexpr double kDegrees = 180 / EIGEN_PI;
  return {roll * kDegrees, pitch * kDegrees, yaw * kDegrees};
}

Json LensJson(const EngineLens& lens) {
  return {
      {"model", "Spherical"},
      {"imageSize", lens.imageSize},
      {"filmbackMm", lens.filmbackMm},
      {"focalLengthMm", lens.focalLengthMm},
      {"fxFy", lens.fxFy},
      {"imageCenter", lens.imageCenter},
      {"distortion",
       {{"K1", lens.k1}, {"K2", lens.k2}, {"K3", lens.k3}, {"P1", lens.p1}, {"P2", lens.p2}}},
  };
}

// A table of one row, at focus 0 and zoom 0, holds for every focus and zoom. Plain decimals,
// because not every version of the editor reads exponents.
Json TableJson(const char* name, const std::string& columns, const std::vector<double>& values) {
  std::string row = "0, 0";
  for (const double value : values) {
    row += ", " + Fixed(value, 9);
  }
  return {
      {"parameterName", name}, {"header", "FocusEncoder, ZoomEncoder, " + columns}, {"data", row}};
}

// In the file the nodal offset is in the axes x right, y down, z forward on both sides; the editor
// converts it to its own axes on import.
std::vector<double> NodalOffset(const UnrealValues& values) {
  const std::vector<double>& q = values.quaternionXyzw;
  const std::vector<double>& t = values.locationCm;
  return {-q[1], q[2], -q[0], q[3], t[1], -t[2], t[0]};
}

}  // namespace

UnrealValues ToUnreal(const ExportInput& input) {
  constexpr double kCentimetresPerMetre = 100;
  const ParentAxes axes = ParseParentAxes(
      input.parentAxes.empty() ? kUnrealParentAxes : input.parentAxes, kUnrealParentAxes);
  const CameraPlacement placement =
      InEngineAxes(PlacementInReportedAxes(input.calibration.transformCamTc), axes.fromReported,
                   ForwardRightUp());
  const Eigen::Vector3d location = placement.position * kCentimetresPerMetre;
  UnrealValues values;
  values.locationCm = {location.x(), location.y(), location.z()};
  values.rotationDeg = RollPitchYaw(placement.rotation);
  values.quaternionXyzw = QuaternionXyzw(placement.rotation);
  values.lens = LensOf(input);
  values.parentAxes = axes.text;
  return values;
}

Json UnrealJson(const UnrealValues& values) {
  return {
      {"parentAxes", values.parentAxes},
      {"locationCm", NumbersJson(values.locationCm)},
      {"rotationDeg", NumbersJson(values.rotationDeg)},
      {"quaternionXyzw", NumbersJson(values.quaternionXyzw)},
      {"lens", values.lens ? LensJson(*values.lens) : Json(nullptr)},
  };
}

std::string LensFileText(const UnrealValues& values, const std::string& name, bool hasNodalOffset) {
  if (!values.lens) {
    throw std::runtime_error(
        "the lens is unknown, so no Lens File can be written: calibrate again");
  }
  const EngineLens& lens = *values.lens;
  const Json empty = Json::array();
  const auto encoder = [](const char* table, const char* columns) {
    return Json{{"parameterName", table}, {"header", columns}, {"data", ""}};
  };
  Json tables = Json::array(
      {TableJson("FocalLengthTable", "Fx, Fy", {lens.fxFy[0], lens.fxFy[1]}),
       TableJson("ImageCenterTable", "Cx, Cy", {lens.imageCenter[0], lens.imageCenter[1]}),
       TableJson("DistortionTable", "K1, K2, K3, P1, P2",
                 {lens.k1, lens.k2, lens.k3, lens.p1, lens.p2})});
  if (hasNodalOffset) {
    tables.push_back(
        TableJson("NodalOffsetTable", "Qx, Qy, Qz, Qw, Tx, Ty, Tz", NodalOffset(values)));
  }
  return JsonText({
      {"metadata",
       {{"type", "LensFile"},
        {"version", "0.0.0"},
        {"lensInfo", {{"serialNumber", ""}, {"modelName", name}, {"distortionModel", "Spherical"}}},
        {"name", name},
        {"nodalOffsetCoordinateSystem", "OpenCV"},
        {"fxFyUnits", "Normalized"},
        {"cxCyUnits", "Normalized"},
        {"userMetadata", empty}}},
      {"sensorDimensions",
       {{"width", lens.filmbackMm[0]}, {"height", lens.filmbackMm[1]}, {"units", "Millimeters"}}},
      {"imageDimensions", {{"width", lens.imageSize[0]}, {"height", lens.imageSize[1]}}},
      {"cameraParameterTables", tables},
      {"encoderTables", Json::array({encoder("Focus", "FocusEncoder, FocusCM"),
                                     encoder("Iris", "IrisEncoder, IrisFstop")})},
  });
}

}  // namespace trackedcam::host
