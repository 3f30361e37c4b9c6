#include "crosscheck/projection.h"

#include <cmath>

namespace trackedcam::crosscheck {

Eigen::Vector2d Project(const Lens& lens, const Eigen::Vector3d& point) {
  const double x = point.x() / point.z();
  const double y = point.y() / point.z();
  const double r2 = x * x + y * y;
  const double stretch = 1 + r2 * (lens.k1 + r2 * lens.k2);
  return {lens.fx * stretch * x + lens.cx, lens.fy * stretch * y + lens.cy};
}

Projection ProjectWithDerivatives(const Lens& lens, const Eigen::Vector3d& point) {
  const double depth = 1 / point.z();
  const double x = point.x() * depth;
  const double y = point.y() * depth;
  const double r2 = x * x + y * y;
  const double stretch = 1 + r2 * (lens.k1 + r2 * lens.k2);
  const double growth = 2 * (lens.k1 + 2 * r2 * lens.k2);  // of the stretch, by r2, twice

  Projection projection;
  projection.pixel = {lens.fx * stretch * x + lens.cx, lens.fy * stretch * y + lens.cy};

  Eigen::Matrix2d byRay;
  byRay << lens.fx * (stretch + growth * x * x), lens.fx * growth * x * y, lens.fy * growth * x * y,
      lens.fy * (stretch + growth * y * y);
  projection.byPoint.leftCols<2>() = byRay * depth;
  projection.byPoint.col(2) = byRay * Eigen::Vector2d(-x, -y) * depth;

  projection.byLens << stretch * x, 0, 1, 0, lens.fx * x * r2, lens.fx * x * r2 * r2,  //
      0, stretch * y, 0, 1, lens.fy * y * r2, lens.fy * y * r2 * r2;
  return projection;
}

std::optional<Eigen::Vector2d> Ray(const Lens& lens, const Eigen::Vector2d& pixel) {
  const Eigen::Vector2d seen((pixel.x() - lens.cx) / lens.fx, (pixel.y() - lens.cy) / lens.fy);
  const double wanted = seen.norm();
  double radius = wanted;
  for (int step = 0; step < 30; ++step) {
    const double r2 = radius * radius;
    const double slope = 1 + r2 * (3 * lens.k1 + r2 * 5 * lens.k2);
    if (!(slope > 0.05)) {
      return std::nullopt;
    }
    const double change = (radius * (1 + r2 * (lens.k1 + r2 * lens.k2)) - wanted) / slope;
    radius -= change;
    if (std::abs(change) < 1e-12) {
      return wanted > 0 ? Eigen::Vector2d(seen * (radius / wanted)) : seen;
    }
  }
  return std::nullopt;
}

}  // namespace trackedcam::crosscheck
