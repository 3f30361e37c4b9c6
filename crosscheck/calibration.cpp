#include "crosscheck/calibration.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Cholesky>

namespace trackedcam::crosscheck {

Eigen::Index CovarianceSize(const std::vector<Eigen::Index>& parameters) {
  return static_cast<Eigen::Index>(parameters.size()) + 1 + kTwistsOfBoth;
}

CameraCovariance CovarianceOfCamera(const Calibration& calibration) {
  std::vector<Eigen::Index> from;  // in the calibration
  std::vector<Eigen::Index> to;
  const auto count = static_cast<Eigen::Index>(calibration.parameters.size());
  for (Eigen::Index i = 0; i < count; ++i) {
    const Eigen::Index parameter = calibration.parameters[static_cast<std::size_t>(i)];
    if (parameter < kAllLensParameters) {
      from.push_back(i);
      to.push_back(parameter);
    }
  }
  for (Eigen::Index i = 0; i < 6; ++i) {
    from.push_back(count + 1 + i);
    to.push_back(kAllLensParameters + i);
  }
  CameraCovariance covariance = CameraCovariance::Zero();
  for (std::size_t i = 0; i < from.size(); ++i) {
    for (std::size_t k = 0; k < from.size(); ++k) {
      covariance(to[i], to[k]) = calibration.covariance(from[i], from[k]);
    }
  }
  return covariance;
}

bool IsSound(const Calibration& calibration) {
  const auto isRigid = [](const Pose& pose) {
    const Eigen::Matrix3d rotation = pose.linear();
    return pose.matrix().allFinite() && (rotation.transpose() * rotation).isIdentity(1e-6) &&
           rotation.determinant() > 0;
  };
  const auto isPositive = [](double value) { return std::isfinite(value) && value > 0; };
  CornerModel model{calibration.lens, calibration.board};
  const Eigen::MatrixXd& covariance = calibration.covariance;
  const std::vector<Eigen::Index>& parameters = calibration.parameters;
  const bool areParameters =
      parameters.size() >= kLensParameters && parameters.size() <= kCornerParameters &&
      std::all_of(parameters.begin(), parameters.end(),
                  [](Eigen::Index i) { return i >= 0 && i < kCornerParameters; });
  if (!areParameters || covariance.rows() != CovarianceSize(parameters) ||
      covariance.cols() != covariance.rows() || !covariance.allFinite()) {
    return false;
  }
  // The variances differ by many orders of magnitude; those of the scale may be 0.
  const Eigen::VectorXd errors = covariance.diagonal().cwiseMax(1e-300).cwiseSqrt();
  const Eigen::MatrixXd correlation =
      errors.cwiseInverse().asDiagonal() * covariance * errors.cwiseInverse().asDiagonal();
  const Eigen::LDLT<Eigen::MatrixXd> decomposition(correlation);
  return (covariance.diagonal().array() >= 0).all() &&
         correlation.isApprox(correlation.transpose(), 1e-6) &&
         decomposition.vectorD().minCoeff() > -1e-6 && model.Parameters().allFinite() &&
         calibration.lens.width > 0 && calibration.lens.height > 0 &&
         isPositive(calibration.lens.fx) && isPositive(calibration.lens.fy) &&
         calibration.board.columns >= 2 && calibration.board.rows >= 2 &&
         isPositive(calibration.board.square) && isPositive(calibration.square) &&
         isRigid(calibration.Transform_Cam_Tc) && isRigid(calibration.Transform_Tr_Chart) &&
         std::isfinite(calibration.scaleUncertainty) && calibration.scaleUncertainty >= 0 &&
         isPositive(calibration.rotationVariance) && isPositive(calibration.translationVariance) &&
         isPositive(calibration.freedom) && isPositive(calibration.cornerNoisePixels) &&
         std::isfinite(calibration.cornerInflation) && calibration.cornerInflation >= 1 &&
         calibration.quaternionAxes.allFinite();
}

}  // namespace trackedcam::crosscheck
