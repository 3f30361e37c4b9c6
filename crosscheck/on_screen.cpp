#include "crosscheck/on_screen.h"

#include <array>
#include <cmath>

#include "crosscheck/comparison.h"
#include "crosscheck/distributions.h"
#include "crosscheck/projection.h"

namespace trackedcam::crosscheck {
namespace {

constexpr std::array<double, 5> kDistances = {1, 2, 4, 8, 16};  // metres

// The middle of the picture, and half way from it to each corner.
std::vector<Eigen::Vector3d> PointsAt(double distance, const Lens& lens) {
  std::vector<Eigen::Vector3d> points;
  const Eigen::Vector2d middle(0.5 * (lens.width - 1), 0.5 * (lens.height - 1));
  for (const double x : {-0.5, 0.0, 0.5}) {
    for (const double y : {-0.5, 0.0, 0.5}) {
      if ((x == 0) != (y == 0)) {
        continue;
      }
      const Eigen::Vector2d pixel = middle + Eigen::Vector2d(x * middle.x(), y * middle.y());
      if (const std::optional<Eigen::Vector2d> ray = Ray(lens, pixel)) {
        points.emplace_back(distance * ray->x(), distance * ray->y(), distance);
      }
    }
  }
  return points;
}

double RootMean(double squares, std::size_t count) {
  return std::sqrt(squares / static_cast<double>(count));
}

}  // namespace

std::vector<OnScreen> OnScreenOf(const Evidence& evidence, const Solution& solution,
                                 const std::optional<Pose>& library) {
  const double t95 = StudentHalfWidth95(Freedom(solution));
  const Matrix6d transform = solution.covariance.topLeftCorner<6, 6>();
  const Matrix6d byLens = solution.byLens.topRows<6>();
  std::vector<OnScreen> all;
  for (const double distance : kDistances) {
    const std::vector<Eigen::Vector3d> points = PointsAt(distance, evidence.lens);
    double fromTransform = 0;
    double fromLens = 0;
    double apart = 0;
    for (const Eigen::Vector3d& point : points) {
      const Projection seen = ProjectWithDerivatives(evidence.lens, point);
      Eigen::Matrix<double, 3, 6> moved;
      moved << -Cross(point), Eigen::Matrix3d::Identity();
      const Eigen::Matrix<double, 2, 6> byTransform = seen.byPoint * moved;
      // The lens counts twice: in the picture, and in the transform that was found with it.
      const Eigen::Matrix<double, 2, 6> byBoth = seen.byLens + byTransform * byLens;
      fromTransform += (byTransform * transform * byTransform.transpose()).trace();
      fromLens += (byBoth * evidence.lensCovariance * byBoth.transpose()).trace();
      if (library) {
        const Eigen::Vector3d other =
            *library * solution.Transform_Cam_Tc.inverse() * point;
        apart += (Project(evidence.lens, other) - seen.pixel).squaredNorm();
      }
    }
    OnScreen at;
    at.distanceMetres = distance;
    at.fromTransform = t95 * RootMean(fromTransform, points.size());
    at.fromLens = t95 * RootMean(fromLens, points.size());
    at.pixels = std::hypot(at.fromTransform, at.fromLens);
    if (library) {
      at.libraryApart = RootMean(apart, points.size());
    }
    all.push_back(at);
  }
  return all;
}

}  // namespace trackedcam::crosscheck
