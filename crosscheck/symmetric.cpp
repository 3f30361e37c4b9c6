#include "crosscheck/symmetric.h"

#include <Eigen/Eigenvalues>

namespace trackedcam::crosscheck {

Ldlt::Ldlt(const Matrix6d& matrix) : decomposition_(matrix) {}

Twist Ldlt::Solve(const Twist& right) const {
  return decomposition_.solve(right);
}

Matrix6d Ldlt::Solve(const Matrix6d& right) const {
  return decomposition_.solve(right);
}

Matrix6d Ldlt::Inverse() const {
  return Solve(Matrix6d(Matrix6d::Identity()));
}

double Ldlt::SmallestPivot() const {
  return decomposition_.vectorD().minCoeff();
}

Matrix6d Inverse(const Matrix6d& covariance) {
  return covariance.llt().solve(Matrix6d::Identity());
}

double SquaredDistance(const Twist& vector, const Matrix6d& covariance) {
  return vector.dot(covariance.llt().solve(vector));
}

std::optional<Matrix9d> Eigenvectors(const Matrix9d& matrix) {
  const Eigen::SelfAdjointEigenSolver<Matrix9d> solver(matrix);
  return solver.info() == Eigen::Success ? std::optional<Matrix9d>(solver.eigenvectors())
                                         : std::nullopt;
}

}  // namespace trackedcam::crosscheck
