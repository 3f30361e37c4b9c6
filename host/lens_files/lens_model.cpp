#include "host/lens_files/lens_model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <Eigen/LU>

#include "host/input/inputs.h"

namespace trackedcam::host {
namespace {

using Eigen::Matrix2d;
using Eigen::Vector2d;

constexpr double kMostImagePixels = 200e6;  // as of a photograph

// The factor of the radial distortion at the square of a radius, and its derivative by that square.
double RadialFactor(const LensModel& lens, double r2) {
  return 1 + r2 * (lens.k1 + r2 * (lens.k2 + r2 * lens.k3));
}

double RadialSlope(const LensModel& lens, double r2) {
  return lens.k1 + r2 * (2 * lens.k2 + r2 * 3 * lens.k3);
}

// How fast the distorted radius grows with the radius.
double Growth(const LensModel& lens, double radius) {
  const double r2 = radius * radius;
  return RadialFactor(lens, r2) + 2 * r2 * RadialSlope(lens, r2);
}

Matrix2d Derivative(const LensModel& lens, const Vector2d& point) {
  const double x = point.x(), y = point.y(), r2 = point.squaredNorm();
  const double cross = 2 * (lens.p1 * x + lens.p2 * y);
  Matrix2d tangential;
  tangential << 2 * lens.p1 * y + 6 * lens.p2 * x, cross, cross, 6 * lens.p1 * y + 2 * lens.p2 * x;
  return RadialFactor(lens, r2) * Matrix2d::Identity() +
         2 * RadialSlope(lens, r2) * point * point.transpose() + tangential;
}

double FoldRadius(const LensModel& lens) {
  constexpr double kFarthest = 20;  // 87 degrees off the axis
  constexpr double kStep = 0.005;
  double inside = 0;
  while (Growth(lens, inside + kStep) > 0) {
    inside += kStep;
    if (inside > kFarthest) {
      return std::numeric_limits<double>::infinity();
    }
  }
  double outside = inside + kStep;
  for (int i = 0; i < 50; ++i) {
    const double middle = (inside + outside) / 2;
    (Growth(lens, middle) > 0 ? inside : outside) = middle;
  }
  return inside;
}

}  // namespace

LensModel LensModelOf(const CalibrationOutputs& calibration) {
  const std::vector<double>& size = calibration.imageSize;
  const std::vector<double>& focal = calibration.normFocal;
  const std::vector<double>& centre = calibration.normCenter;
  const std::vector<double>& distortion = calibration.distortion;
  if (size.size() < 2 || focal.size() < 2 || centre.size() < 2 || distortion.size() < 5) {
    throw InputError(
        "the result does not have the whole lens (imageSize, normFocal, normCenter and "
        "distortion): calibrate again");
  }
  LensModel lens;
  const Vector2d pixels(size[0], size[1]);
  if (!(pixels.array() >= 1).all() || !(pixels.prod() <= kMostImagePixels) ||
      pixels != pixels.array().floor().matrix()) {
    throw InputError("the imageSize of the result is not that of a photograph");
  }
  lens.width = static_cast<int>(size[0]);
  lens.height = static_cast<int>(size[1]);
  lens.focal = Vector2d(focal[0], focal[1]).cwiseProduct(pixels);
  lens.centre = Vector2d(centre[0], centre[1]).cwiseProduct(pixels);
  lens.k1 = distortion[0];
  lens.k2 = distortion[1];
  lens.p1 = distortion[2];
  lens.p2 = distortion[3];
  lens.k3 = distortion[4];
  constexpr double kMost = 1e3;  // image sizes, or of a coefficient
  const auto isPossible = [](double number) { return std::abs(number) < kMost; };
  if (!std::all_of(distortion.begin(), distortion.end(), isPossible) ||
      !std::all_of(centre.begin(), centre.end(), isPossible) ||
      !(lens.focal.array() > pixels.array() / kMost).all() ||
      !(lens.focal.array() < pixels.array() * kMost).all()) {
    throw InputError("the lens of the result has an impossible value");
  }
  lens.foldRadius = FoldRadius(lens);
  return lens;
}

Vector2d Distorted(const LensModel& lens, const Vector2d& point) {
  const double x = point.x(), y = point.y(), r2 = point.squaredNorm();
  return RadialFactor(lens, r2) * point +
         Vector2d(2 * lens.p1 * x * y + lens.p2 * (r2 + 2 * x * x),
                  lens.p1 * (r2 + 2 * y * y) + 2 * lens.p2 * x * y);
}

std::optional<Vector2d> Undistorted(const LensModel& lens, const Vector2d& distorted) {
  constexpr int kMostSteps = 100;
  constexpr double kSmallestStep = 1e-13;
  Vector2d point = distorted;
  for (int i = 0; i < kMostSteps; ++i) {
    const Matrix2d derivative = Derivative(lens, point);
    if (!(derivative.determinant() > 0)) {
      return std::nullopt;
    }
    const Vector2d step = derivative.inverse() * (distorted - Distorted(lens, point));
    point += step;
    if (step.norm() <= kSmallestStep * (1 + point.norm())) {
      return point.norm() < lens.foldRadius ? std::optional<Vector2d>(point) : std::nullopt;
    }
  }
  return std::nullopt;
}

}  // namespace trackedcam::host
