#include "simulator/lens.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Geometry>

namespace trackedcam::simulator {
namespace {

double DistortedRadius(const Lens& lens, double radius) {
  const double r2 = radius * radius;
  return radius * (1 + r2 * (lens.k1 + r2 * lens.k2));
}

// The derivative of the distorted radius. Where it is not positive, the image folds back on itself.
double Growth(const Lens& lens, double radius) {
  const double r2 = radius * radius;
  return 1 + r2 * (3 * lens.k1 + r2 * 5 * lens.k2);
}

double UndistortedRadius(const Lens& lens, double distorted) {
  double radius = distorted;
  for (int step = 0; step < 20; ++step) {
    const double change = (DistortedRadius(lens, radius) - distorted) / Growth(lens, radius);
    radius -= change;
    if (std::abs(change) < 1e-14) {
      break;
    }
  }
  return radius;
}

}  // namespace

Eigen::Vector2d Lens::Project(const Eigen::Vector3d& point) const {
  const Eigen::Vector2d ray = point.hnormalized();
  const double r2 = ray.squaredNorm();
  const double stretch = 1 + r2 * (k1 + r2 * k2);
  return {fx * stretch * ray.x() + cx, fy * stretch * ray.y() + cy};
}

Eigen::Vector2d Lens::Distorted(const Eigen::Vector2d& pixel) const {
  return {(pixel.x() - cx) / fx, (pixel.y() - cy) / fy};
}

Eigen::Vector2d Lens::Ray(const Eigen::Vector2d& pixel) const {
  const Eigen::Vector2d distorted = Distorted(pixel);
  const double radius = distorted.norm();
  return radius == 0 ? distorted
                     : Eigen::Vector2d(distorted * (UndistortedRadius(*this, radius) / radius));
}

bool Lens::Reaches(const Eigen::Vector2d& pixel) const {
  constexpr int kSteps = 1000;
  const double target = Distorted(pixel).norm();
  for (int step = 0; step <= kSteps; ++step) {
    const double radius = 2 * target * step / kSteps;
    if (Growth(*this, radius) <= 0) {
      return false;
    }
    if (DistortedRadius(*this, radius) >= target) {
      return true;
    }
  }
  return false;
}

Lens DefaultLens(int imageWidth, int imageHeight) {
  const double longSide = std::max(imageWidth, imageHeight);
  const double centreX = (imageWidth - 1) / 2.0;
  const double centreY = (imageHeight - 1) / 2.0;
  return {0.9 * longSide,
          0.902 * longSide,
          centreX + 0.008 * longSide,
          centreY - 0.005 * longSide,
          -0.12,
          0.05};
}

}  // namespace trackedcam::simulator
