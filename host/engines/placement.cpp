#include "host/engines/placement.h"

#include <cmath>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <Eigen/LU>

#include "crosscheck/reported_poses.h"
#include "host/input/inputs.h"

namespace trackedcam::host {
namespace {

using crosscheck::AxisFix;
using Eigen::Matrix3d;
using Eigen::Vector3d;
using RowMajor4d = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;

const Vector3d kRight = Vector3d::UnitX();
const Vector3d kUp = -Vector3d::UnitY();
const Vector3d kForward = Vector3d::UnitZ();

Matrix3d Columns(const Vector3d& x, const Vector3d& y, const Vector3d& z) {
  Matrix3d columns;
  columns << x, y, z;
  return columns;
}

std::optional<Eigen::RowVector3d> AxisFrom(std::string word) {
  const bool isOpposite = !word.empty() && word.front() == '-';
  word.erase(0, isOpposite ? 1 : 0);
  if (word.size() != 1 || word[0] < 'x' || word[0] > 'z') {
    return std::nullopt;
  }
  return (isOpposite ? -1 : 1) * Eigen::RowVector3d::Unit(word[0] - 'x');
}

std::optional<Matrix3d> AxesFrom(const std::string& text) {
  Matrix3d axes;
  std::istringstream words(text + ',');
  int row = 0;
  for (std::string word; std::getline(words, word, ','); ++row) {
    const auto axis = AxisFrom(word);
    if (!axis || row == 3) {
      return std::nullopt;
    }
    axes.row(row) = *axis;
  }
  return row == 3 ? std::optional<Matrix3d>(axes) : std::nullopt;
}

std::string TextOf(const Matrix3d& axes) {
  std::string text;
  for (int row = 0; row < 3; ++row) {
    Eigen::Index col = 0;
    axes.row(row).cwiseAbs().maxCoeff(&col);
    text += std::string(row == 0 ? "" : ",") + (axes(row, col) < 0 ? "-" : "") +
            static_cast<char>('x' + col);
  }
  return text;
}

}  // namespace

bool IsPlacement(const std::vector<double>& transformCamTc) {
  constexpr double kRounded = 1e-3;  // accepts a result with rounded numbers
  constexpr double kFarthest = 1e6;  // metres
  if (transformCamTc.size() < 16) {
    return false;
  }
  const Eigen::Map<const RowMajor4d> transform(transformCamTc.data());
  const Matrix3d rotation = transform.topLeftCorner<3, 3>();
  return transform.allFinite() && transform.cwiseAbs().maxCoeff() <= kFarthest &&
         (rotation * rotation.transpose()).isIdentity(kRounded) && rotation.determinant() > 0;
}

CameraPlacement PlacementInReportedAxes(const std::vector<double>& transformCamTc) {
  if (transformCamTc.size() < 16) {
    throw std::invalid_argument("transformCamTc has " + std::to_string(transformCamTc.size()) +
                                " elements, needs 16");
  }
  if (!IsPlacement(transformCamTc)) {
    throw std::invalid_argument("transformCamTc is not a rotation and translation");
  }
  const Eigen::Map<const RowMajor4d> transform(transformCamTc.data());
  const Matrix3d rotation = transform.topLeftCorner<3, 3>();
  const Matrix3d Rot_Tc_Cam =
      Eigen::Quaterniond(rotation).normalized().toRotationMatrix().transpose();
  return {AxisFix() * Rot_Tc_Cam, -AxisFix() * Rot_Tc_Cam * transform.topRightCorner<3, 1>()};
}

Matrix3d ForwardRightUp() {
  return Columns(kForward, kRight, kUp);
}

Matrix3d RightUpForward() {
  return Columns(kRight, kUp, kForward);
}

Matrix3d RightForwardUp() {
  return Columns(kRight, kForward, kUp);
}

CameraPlacement InEngineAxes(const CameraPlacement& reported, const Matrix3d& fromReported,
                             const Matrix3d& axesAtCamera) {
  return {fromReported * reported.rotation * axesAtCamera, fromReported * reported.position};
}

std::vector<double> QuaternionXyzw(const Matrix3d& rotation) {
  Eigen::Quaterniond quaternion(rotation);
  quaternion.normalize();
  if (quaternion.w() < 0) {
    quaternion.coeffs() *= -1;
  }
  return {quaternion.x(), quaternion.y(), quaternion.z(), quaternion.w()};
}

ParentAxes ParseParentAxes(const std::string& text, const std::string& zForward) {
  std::optional<Matrix3d> axes = AxesFrom(text);
  if (text == kZForward || text == kMinusZForward) {
    axes = AxesFrom(zForward);
    if (text == kMinusZForward) {
      axes->col(0) *= -1;
      axes->col(2) *= -1;
    }
  }
  if (!axes || axes->determinant() == 0) {
    throw InputError(text + " is not a list X,Y,Z of reported axes, such as " + zForward +
                     ", and not " + kZForward + " or " + kMinusZForward);
  }
  const bool isRightHanded = axes->determinant() > 0;
  if (isRightHanded != (AxesFrom(zForward)->determinant() > 0)) {
    throw InputError(text + " is " + (isRightHanded ? "right" : "left") +
                     "-handed, but the axes of the parent are " +
                     (isRightHanded ? "left" : "right") +
                     "-handed: change one sign, or exchange two axes");
  }
  return {TextOf(*axes), *axes};
}

std::optional<EngineLens> LensOf(const ExportInput& input) {
  const CalibrationOutputs& calibration = input.calibration;
  if (!input.sensorMm || calibration.imageSize.size() < 2 || calibration.normFocal.size() < 2 ||
      calibration.normCenter.size() < 2 || calibration.distortion.size() < 5) {
    return std::nullopt;
  }
  constexpr double kHalfAPixel = 0.5;
  EngineLens lens;
  for (std::size_t i = 0; i < 2; ++i) {
    lens.imageSize[i] = static_cast<int>(calibration.imageSize[i]);
    lens.fxFy[i] = calibration.normFocal[i];
    lens.imageCenter[i] = calibration.normCenter[i] + kHalfAPixel / calibration.imageSize[i];
  }
  lens.focalLengthMm = lens.fxFy[0] * (*input.sensorMm)[0];
  lens.filmbackMm = {(*input.sensorMm)[0], lens.focalLengthMm / lens.fxFy[1]};
  lens.k1 = calibration.distortion[0];
  lens.k2 = calibration.distortion[1];
  lens.p1 = calibration.distortion[2];
  lens.p2 = calibration.distortion[3];
  lens.k3 = calibration.distortion[4];
  return lens;
}

}  // namespace trackedcam::host
