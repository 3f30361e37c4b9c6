// Symmetric matrices. Eigen's decompositions take seconds to compile, so those that several files
// need are compiled here only.

#pragma once

#include <optional>

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include "crosscheck/twist.h"

namespace trackedcam::crosscheck {

using Matrix9d = Eigen::Matrix<double, 9, 9>;

/// The LDLᵀ decomposition.
class Ldlt {
 public:
  explicit Ldlt(const Matrix6d& matrix);

  Twist Solve(const Twist& right) const;
  Matrix6d Solve(const Matrix6d& right) const;
  Matrix6d Inverse() const;
  double SmallestPivot() const;

 private:
  Eigen::LDLT<Matrix6d> decomposition_;
};

/// Of a covariance, by Cholesky's decomposition.
Matrix6d Inverse(const Matrix6d& covariance);

/// vectorᵀ · covariance⁻¹ · vector, by Cholesky's decomposition.
double SquaredDistance(const Twist& vector, const Matrix6d& covariance);

/// A matrix that times its transpose is this covariance, which may be singular.
Eigen::MatrixXd SquareRoot(const Eigen::MatrixXd& covariance);

/// That of the smallest eigenvalue first; nothing if the matrix is not finite.
std::optional<Matrix9d> Eigenvectors(const Matrix9d& matrix);

}  // namespace trackedcam::crosscheck
