#include "handeye/transform_mean.h"

#include <limits>

#include <Eigen/SVD>

namespace trackedcam {

Eigen::Quaternionf RotationAsFloats(const RunLog& log, const Transform& transform) {
  Eigen::Matrix3d rotation;
  RotationBlock(log, transform, rotation);
  return QuaternionFromRotation(rotation).cast<float>();
}

Eigen::Vector3f TranslationAsFloats(const Transform& transform) {
  return transform.topRightCorner<3, 1>().cast<float>();
}

Quaternion QuaternionMean(const std::vector<Eigen::Quaternionf>& quaternions) {
  Eigen::Matrix4f sum = Eigen::Matrix4f::Zero();
  for (const Eigen::Quaternionf& quaternion : quaternions) {
    sum += quaternion.coeffs() * quaternion.coeffs().transpose();
  }
  const Eigen::MatrixXf mean = sum / static_cast<float>(quaternions.size());
  if (!mean.allFinite()) {
    // For such a matrix the decomposition would leave its vectors unset.
    return Quaternion(Eigen::Vector4d::Constant(std::numeric_limits<double>::quiet_NaN()));
  }
  const Eigen::JacobiSVD<Eigen::MatrixXf> svd(mean, Eigen::ComputeThinU | Eigen::ComputeThinV);
  return Quaternion(Eigen::Vector4d(svd.matrixU().col(0).cast<double>()));
}

Transform TransformMean(const std::vector<Eigen::Quaternionf>& rotations,
                        const Eigen::Vector3f& translationSum, std::size_t count) {
  const Eigen::Vector3f translation = translationSum / static_cast<float>(count);
  return MakeTransform(RotationFromQuaternion(QuaternionMean(rotations)),
                       translation.cast<double>());
}

}  // namespace trackedcam
