#include "host/engines/camera_placement.h"

#include <stdexcept>

#include "host/input/axis_fix.h"

namespace trackedcam::host {

using Eigen::Matrix3d;
using Eigen::Vector3d;
using RowMajor4d = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;

namespace {

const Vector3d kRight = Vector3d::UnitX();
const Vector3d kUp = -Vector3d::UnitY();
const Vector3d kForward = Vector3d::UnitZ();

Matrix3d Columns(const Vector3d& x, const Vector3d& y, const Vector3d& z) {
  Matrix3d columns;
  columns << x, y, z;
  return columns;
}

}  // namespace

Matrix3d ForwardRightUp() {
  return Columns(kForward, kRight, kUp);
}

Matrix3d RightUpForward() {
  return Columns(kRight, kUp, kForward);
}

bool IsPlacement(const std::vector<double>& transformCamTc) {
  constexpr double kRounded = 1e-3;  // a result that was typed off is still a rotation
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
    throw std::invalid_argument("transformCamTc is no rotation and translation");
  }
  const Eigen::Map<const RowMajor4d> transform(transformCamTc.data());
  const Matrix3d rotation = transform.topLeftCorner<3, 3>();
  const Matrix3d Rot_Tc_Cam =
      Eigen::Quaterniond(rotation).normalized().toRotationMatrix().transpose();
  return {AxisFix() * Rot_Tc_Cam, -AxisFix() * Rot_Tc_Cam * transform.topRightCorner<3, 1>()};
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

}  // namespace trackedcam::host
