#include "geometry/transform.h"

#include <Eigen/LU>

#include "core/number_text.h"

namespace trackedcam {

Transform TransformFromVector(const std::vector<double>& elements) {
  using RowMajor = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;
  return Eigen::Map<const RowMajor>(elements.data());
}

void AppendTransform(std::vector<double>& elements, const Transform& transform) {
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      elements.push_back(transform(r, c));
    }
  }
}

Transform MakeTransform(const Eigen::Matrix3d& rotation, const Eigen::Vector3d& translation) {
  Transform transform = Transform::Identity();
  transform.topLeftCorner<3, 3>() = rotation;
  transform.topRightCorner<3, 1>() = translation;
  return transform;
}

void LogTransform(const RunLog& log, const std::string& label, const Transform& transform) {
  WriteRunLogLine(log, label);
  for (int r = 0; r < 4; ++r) {
    std::string line = r == 0 ? "[[" : " [";
    for (int c = 0; c < 4; ++c) {
      line += (c == 0 ? "" : ", ") + ToSixDecimals(transform(r, c));
    }
    WriteRunLogLine(log, line + (r == 3 ? "]]" : "],"));
  }
}

ResultCode ChangeHand(RunLog /*log*/, const Transform& in, Transform& out) {
  const Transform mirror = Eigen::Vector4d(1, 1, -1, 1).asDiagonal();
  out = mirror * in * mirror;
  return result::kSuccess;
}

Transform InverseTransform(const Transform& transform) {
  return transform.inverse();
}

ResultCode RotationBlock(RunLog /*log*/, const Transform& in, Eigen::Matrix3d& out) {
  out = in.topLeftCorner<3, 3>();
  return result::kSuccess;
}

}  // namespace trackedcam
