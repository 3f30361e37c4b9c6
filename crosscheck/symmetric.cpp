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

// Of the correlations, since the variances may differ by many orders of magnitude.
Eigen::MatrixXd SquareRoot(const Eigen::MatrixXd& covariance) {
  const Eigen::VectorXd errors = covariance.diagonal().cwiseSqrt();
  const Eigen::VectorXd scale =
      errors.unaryExpr([](double error) { return error > 0 ? 1 / error : 0; });
  const Eigen::MatrixXd correlation = scale.asDiagonal() * covariance * scale.asDiagonal();
  const Eigen::LDLT<Eigen::MatrixXd> decomposition(correlation);
  Eigen::MatrixXd root = decomposition.matrixL();
  root = decomposition.transpositionsP().transpose() * root;
  return errors.asDiagonal() * root * decomposition.vectorD().cwiseMax(0).cwiseSqrt().asDiagonal();
}

std::optional<Matrix9d> Eigenvectors(const Matrix9d& matrix) {
  const Eigen::SelfAdjointEigenSolver<Matrix9d> solver(matrix);
  return solver.info() == Eigen::Success ? std::optional<Matrix9d>(solver.eigenvectors())
                                         : std::nullopt;
}

}  // namespace trackedcam::crosscheck
