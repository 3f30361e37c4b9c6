#include "crosscheck/on_screen.h"

#include <algorithm>
#include <cmath>

#include "crosscheck/comparison.h"
#include "crosscheck/distributions.h"
#include "crosscheck/projection.h"

namespace trackedcam::crosscheck {
namespace {

// Points at a sixth, a half and five sixths of the picture's width and height.
std::vector<Eigen::Vector3d> PointsAt(double distance, const Lens& lens) {
  std::vector<Eigen::Vector3d> points;
  for (const double x : {1.0, 3.0, 5.0}) {
    for (const double y : {1.0, 3.0, 5.0}) {
      if (const auto ray = Ray(lens, {x / 6 * lens.width, y / 6 * lens.height})) {
        points.emplace_back(distance * ray->homogeneous());
      }
    }
  }
  return points;
}

double LargestVariance(const Eigen::Matrix2d& covariance) {
  const double half = 0.5 * covariance.trace();
  return half + std::sqrt(std::max(0.0, half * half - covariance.determinant()));
}

}  // namespace

OnScreen OnScreenAt(double distanceMetres, const Evidence& evidence, const Solution& solution,
                    const std::optional<Pose>& library) {
  const std::vector<Eigen::Vector3d> points = PointsAt(distanceMetres, evidence.lens);
  const Matrix6d noise = solution.covariance.topLeftCorner<6, 6>();
  const Matrix6d byLens = solution.byLens.topRows<6>();
  double both = 0;
  double transform = 0;
  double lens = 0;
  double apart = 0;
  for (const Eigen::Vector3d& point : points) {
    const Projection seen = ProjectWithDerivatives(evidence.lens, point);
    Eigen::Matrix<double, 2, 6> byTwist;
    byTwist << -seen.byPoint * Cross(point), seen.byPoint;
    // The lens moves the picture itself and, through the solve, the transform.
    const Eigen::Matrix<double, 2, 6> through = byTwist * byLens;
    const Eigen::Matrix<double, 2, 6> together = through + seen.byLens;
    const Eigen::Matrix2d own = byTwist * noise * byTwist.transpose();
    const Matrix6d& lensCovariance = evidence.lensCovariance;
    both += LargestVariance(own + together * lensCovariance * together.transpose());
    transform += LargestVariance(own + through * lensCovariance * through.transpose());
    lens += LargestVariance(seen.byLens * lensCovariance * seen.byLens.transpose());
    if (library) {
      const Eigen::Vector3d other = *library * (solution.Transform_Cam_Tc.inverse() * point);
      apart +=
          other.z() > 0 ? (Project(evidence.lens, other) - seen.pixel).squaredNorm() : HUGE_VAL;
    }
  }
  const auto count = static_cast<double>(points.size());
  const double t95 = StudentHalfWidth95(Freedom(solution));
  OnScreen onScreen;
  onScreen.distanceMetres = distanceMetres;
  onScreen.pixels = t95 * std::sqrt(both / count);
  onScreen.fromTransform = t95 * std::sqrt(transform / count);
  onScreen.fromLens = t95 * std::sqrt(lens / count);
  if (library) {
    onScreen.libraryApart = std::sqrt(apart / count);
  }
  return onScreen;
}

std::vector<OnScreen> OnScreenAtAll(const Evidence& evidence, const Solution& solution,
                                    const std::optional<Pose>& library) {
  std::vector<OnScreen> all;
  for (const double distance : {0.5, 1.0, 2.0, 5.0, 10.0}) {
    all.push_back(OnScreenAt(distance, evidence, solution, library));
  }
  return all;
}

}  // namespace trackedcam::crosscheck
