#include "handeye/rotation_axis.h"

#include <cmath>

#include <opencv2/calib3d.hpp>
#include <opencv2/core/eigen.hpp>

#include "core/precision.h"

namespace trackedcam {
namespace {

bool IsVector(const cv::Mat& matrix) {
  return matrix.rows == 3 && matrix.cols == 1;
}

}  // namespace

ResultCode RotationAxis(RunLog log, const Transform& transform, cv::Mat& axis) {
  Eigen::Matrix3d rotation;
  RotationBlock(log, transform, rotation);
  cv::Mat block;
  cv::eigen2cv(rotation, block);
  cv::Rodrigues(block, axis);
  return Norm_Vec(log, axis);
}

ResultCode Norm_Vec(RunLog log, cv::Mat& vector) {
  if (!IsVector(vector)) {
    return LogError(log, result::kNormVecSize);
  }
  FloatSum squares;
  for (int k = 0; k < 3; ++k) {
    squares.AddSquare(vector.at<double>(k));
  }
  const float length = std::sqrt(squares.Value());
  for (int k = 0; k < 3; ++k) {
    vector.at<double>(k) /= length;
  }
  return result::kSuccess;
}

ResultCode Dot_Vec(RunLog log, float& product, const cv::Mat& Rot_Cam_Tc_vec,
                   const cv::Mat& Mean_Rot_Cam_Tc_vec) {
  product = 0;
  if (!IsVector(Rot_Cam_Tc_vec)) {
    return LogError(log, result::kDotVecSize, " Rot_Cam_Tc_vec");
  }
  if (!IsVector(Mean_Rot_Cam_Tc_vec)) {
    return LogError(log, result::kDotVecSize, " Mean_Rot_Cam_Tc_vec");
  }
  FloatSum sum;
  for (int k = 0; k < 3; ++k) {
    sum.Add(Rot_Cam_Tc_vec.at<double>(k) * Mean_Rot_Cam_Tc_vec.at<double>(k));
  }
  product = sum.Value();
  return result::kSuccess;
}

}  // namespace trackedcam
