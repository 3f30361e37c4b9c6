#include <array>
#include <cmath>

#include "api/input_length.h"
#include "core/float_environment.h"
#include "core/number_text.h"
#include "core/precision.h"
#include "core/version.h"
#include "geometry/axis_change.h"
#include "geometry/euler_angles.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam {
namespace {

constexpr std::size_t kTransformElements = 16;

RunLog BeginExport(const std::string& logFolder, const std::string& name) {
  RunLog log;
  OpenRunLog(log, logFolder);
  WriteRunLogLine(log, "Version : " + LibraryVersion);
  WriteRunLogLine(log, name + " start.");
  return log;
}

std::string Join(std::initializer_list<double> numbers) {
  std::string text;
  for (const double number : numbers) {
    text += (text.empty() ? "" : ", ") + ToSixDecimals(number);
  }
  return text;
}

using AxisChangeStage = ResultCode (*)(RunLog, const Transform&, Transform&);

// Converts the 16 numbers to the offset in the engine's axes, and logs both transforms.
Transform ChangeAxes(const RunLog& log, const std::string& engine, AxisChangeStage change,
                     const std::vector<double>& transformCamTc) {
  const Transform Transform_Cam_Tc = TransformFromVector(transformCamTc);
  LogTransform(log, "Transform_Cam_Tc : ", Transform_Cam_Tc);
  Transform Transform_Tc_Cam;
  change(log, Transform_Cam_Tc, Transform_Tc_Cam);  // cannot fail
  LogTransform(log, "Transform_Tc_Cam_" + engine + " : ", Transform_Tc_Cam);
  return Transform_Tc_Cam;
}

Quaternion RotationOf(const RunLog& log, const Transform& transform) {
  Eigen::Matrix3d rotation;
  RotationBlock(log, transform, rotation);
  return QuaternionFromRotation(rotation);
}

// Appends to the two outputs alternately; the order shows if the caller passes one vector for both.
void AppendInTurns(std::vector<double>& rotationDeg, const EulerAngles& angles,
                   std::vector<double>& translationCm, const Eigen::Vector3f& centimetres) {
  for (int i = 0; i < 3; ++i) {
    rotationDeg.push_back(angles[static_cast<std::size_t>(i)]);
    translationCm.push_back(centimetres[i]);
  }
}

void LogPlacement(const RunLog& log, const std::string& engine, const EulerAngles& angles,
                  const Eigen::Vector3f& centimetres) {
  WriteRunLogLine(
      log, "Rot_Tc_Cam_" + engine + "_Euler : " + Join({angles[0], angles[1], angles[2]}) + " deg");
  WriteRunLogLine(log, "Trans_Tc_Cam_" + engine + "_cm : " +
                           Join({centimetres.x(), centimetres.y(), centimetres.z()}) + " cm");
}

// The two exports for Unreal Engine 5 differ only in their axes and their name.
ResultCode ExportToUE5(const std::string& name, AxisChangeStage changeAxes,
                       const std::vector<double>& transformCamTc,
                       std::vector<double>& quaternionXyzw, std::vector<double>& translationCm,
                       const std::string& logFolder) {
  const DefaultFloatEnvironment environment;
  const RunLog log = BeginExport(logFolder, name);
  if (const ResultCode code =
          CheckLength(log, "transformCamTc", transformCamTc, kTransformElements)) {
    return code;
  }
  const Transform Transform_Tc_Cam = ChangeAxes(log, "UE5", changeAxes, transformCamTc);

  const Quaternion rotation = RotationOf(log, Transform_Tc_Cam);
  for (const double component : {rotation.x(), rotation.y(), rotation.z(), rotation.w()}) {
    quaternionXyzw.push_back(component);
  }
  for (int axis = 0; axis < 3; ++axis) {
    translationCm.push_back(Transform_Tc_Cam(axis, 3) * 100);
  }
  // The first elements of the vectors, which are the caller's if they were not empty.
  WriteRunLogLine(log, "UE5 Quat_Tc_Cam (xyzw): " + Join({quaternionXyzw[0], quaternionXyzw[1],
                                                          quaternionXyzw[2], quaternionXyzw[3]}));
  WriteRunLogLine(log, "UE5 Trans_Tc_Cam_cm (xyz): " +
                           Join({translationCm[0], translationCm[1], translationCm[2]}) + " cm");
  WriteRunLogLine(log, name + " successful.");
  return result::kSuccess;
}

}  // namespace
}  // namespace trackedcam

int CamAxisToUE4(std::vector<double> transformCamTc, std::vector<double>& rotationDeg,
                 std::vector<double>& translationCm, std::string logFolder) noexcept(false) {
  using namespace trackedcam;

  const DefaultFloatEnvironment environment;
  const RunLog log = BeginExport(logFolder, "CamAxisToUE4");
  if (const ResultCode code =
          CheckLength(log, "transformCamTc", transformCamTc, kTransformElements)) {
    return code;
  }
  const Transform Transform_Tc_Cam = ChangeAxes(log, "UE4", AxisChangeUE4, transformCamTc);

  EulerAngles angles = {};
  if (const ResultCode code = QuatToEulerUE(log, RotationOf(log, Transform_Tc_Cam), angles)) {
    return code;
  }
  const Eigen::Vector3f metres = Transform_Tc_Cam.topRightCorner<3, 1>().cast<float>();
  const Eigen::Vector3f centimetres = metres * 100.0F;
  AppendInTurns(rotationDeg, angles, translationCm, centimetres);
  LogPlacement(log, "UE4", angles, centimetres);
  WriteRunLogLine(log, "CamAxisToUE4 successful.");
  return result::kSuccess;
}

int CamAxisToUE5(std::vector<double> transformCamTc, std::vector<double>& quaternionXyzw,
                 std::vector<double>& translationCm, std::string logFolder) noexcept(false) {
  return trackedcam::ExportToUE5("CamAxisToUE5", trackedcam::AxisChangeUE5, transformCamTc,
                                 quaternionXyzw, translationCm, logFolder);
}

int CamAxisToUE5_ExportxN(std::vector<double> transformCamTc, std::vector<double>& quaternionXyzw,
                          std::vector<double>& translationCm,
                          std::string logFolder) noexcept(false) {
  return trackedcam::ExportToUE5("CamAxisToUE5_ExportxN", trackedcam::AxisChangeUE5xN,
                                 transformCamTc, quaternionXyzw, translationCm, logFolder);
}

int CamAxisToAximmetry(std::vector<double> normFocal, std::vector<double> normCenter,
                       std::vector<double> transformCamTc, std::vector<double>& fovX,
                       std::vector<double>& lensCentre, std::vector<double>& rotationDeg,
                       std::vector<double>& translationCm, std::string logFolder) noexcept(false) {
  using namespace trackedcam;

  const DefaultFloatEnvironment environment;
  const RunLog log = BeginExport(logFolder, "CamAxisToAximmetry");
  if (const ResultCode code = CheckLength(log, "normFocal", normFocal, 2)) {
    return code;
  }
  if (const ResultCode code = CheckLength(log, "normCenter", normCenter, 2)) {
    return code;
  }
  if (const ResultCode code =
          CheckLength(log, "transformCamTc", transformCamTc, kTransformElements)) {
    return code;
  }
  WriteRunLogLine(log, "Norm_Fxy : " + Join({normFocal[0], normFocal[1]}));
  WriteRunLogLine(log, "Norm_Cxy : " + Join({normCenter[0], normCenter[1]}));
  fovX.push_back(2 * std::atan(1 / (2 * normFocal[0])) / kShortPi * 180.0);
  lensCentre.push_back(normCenter[0] - 0.5);
  lensCentre.push_back(-(normCenter[1] - 0.5));
  // The first elements of the vectors, which are the caller's if they were not empty.
  WriteRunLogLine(log, "FoVX : " + ToSixDecimals(fovX[0]));
  WriteRunLogLine(log, "AximmetryCxy : " + Join({lensCentre[0], lensCentre[1]}));

  const Transform Transform_Tc_Cam = ChangeAxes(log, "AX", AxisChangeAximmetry, transformCamTc);

  EulerAngles angles = {};
  if (const ResultCode code =
          QuatToEulerAximmetry(log, RotationOf(log, Transform_Tc_Cam), angles)) {
    return code;
  }
  for (float& angle : angles) {
    angle = -angle;
  }
  const Eigen::Vector3f metres = Transform_Tc_Cam.topRightCorner<3, 1>().cast<float>();
  const Eigen::Vector3f centimetres =
      Eigen::Vector3f(metres.x(), -metres.y(), -metres.z()) * 100.0F;
  AppendInTurns(rotationDeg, angles, translationCm, centimetres);
  LogPlacement(log, "AX", angles, centimetres);
  return result::kSuccess;
}
