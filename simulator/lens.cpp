#include "simulator/lens.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Geometry>

namespace trackedcam::simulator {
namespace {

double Magnification(const Lens& lens, double r2) {
  return 1 + r2 * (lens.k1 + r2 * (lens.k2 + r2 * lens.k3));
}

double DistortedRadius(const Lens& lens, double radius) {
  return radius * Magnification(lens, radius * radius);
}

// The derivative of the distorted radius. Where it is not positive, the image folds back on itself.
double Growth(const Lens& lens, double radius) {
  const double r2 = radius * radius;
  return 1 + r2 * (3 * lens.k1 + r2 * 5 * lens.k2 + r2 * r2 * 7 * lens.k3);
}

Eigen::Vector2d Tangential(const Lens& lens, const Eigen::Vector2d& ray) {
  const double r2 = ray.squaredNorm();
  const double xy = 2 * ray.x() * ray.y();
  return {lens.p1 * xy + lens.p2 * (r2 + 2 * ray.x() * ray.x()),
          lens.p1 * (r2 + 2 * ray.y() * ray.y()) + lens.p2 * xy};
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
  const double magnification = Magnification(*this, ray.squaredNorm());
  const Eigen::Vector2d tangential = Tangential(*this, ray);
  return {fx * magnification * ray.x() + cx + fx * tangential.x(),
          fy * magnification * ray.y() + cy + fy * tangential.y()};
}

Eigen::Vector2d Lens::Distorted(const Eigen::Vector2d& pixel) const {
  return {(pixel.x() - cx) / fx, (pixel.y() - cy) / fy};
}

Eigen::Vector2d Lens::Ray(const Eigen::Vector2d& pixel) const {
  constexpr int kMostSteps = 20;
  const Eigen::Vector2d distorted = Distorted(pixel);
  // What the radial distortion makes of the ray; found step by step, because the tangential
  // distortion, which is small, depends on the ray.
  Eigen::Vector2d radial = distorted;
  for (int step = 0;; ++step) {
    const double radius = radial.norm();
    Eigen::Vector2d ray =
        radius == 0 ? radial
                    : Eigen::Vector2d(radial * (UndistortedRadius(*this, radius) / radius));
    const Eigen::Vector2d better = distorted - Tangential(*this, ray);
    if ((better - radial).norm() < 1e-14 || step == kMostSteps) {
      return ray;
    }
    radial = better;
  }
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
