// The simulated lens: a pinhole camera with radial and tangential distortion.

#pragma once

#include <Eigen/Core>

namespace trackedcam::simulator {

struct Lens {
  double fx, fy;  // pixels
  double cx, cy;  // pixels; the centre of the first pixel is (0, 0)
  double k1, k2;  // radial distortion, second and fourth order
  // The rest of the distortion, which the calibration does not model.
  double p1 = 0, p2 = 0;  // tangential
  double k3 = 0;          // radial, sixth order

  /// Projects a point in front of the camera (frame Cam, metres) to pixels.
  Eigen::Vector2d Project(const Eigen::Vector3d& point) const;

  /// The point in the plane z = 1 of frame Cam that appears at this pixel.
  Eigen::Vector2d Ray(const Eigen::Vector2d& pixel) const;

  /// Whether every pixel from the principal point to this one has a unique ray. Strong distortion
  /// can fold the image.
  bool Reaches(const Eigen::Vector2d& pixel) const;

 private:
  Eigen::Vector2d Distorted(const Eigen::Vector2d& pixel) const;
};

/// A slightly distorted lens for images of this size, with its principal point off the centre.
Lens DefaultLens(int imageWidth, int imageHeight);

}  // namespace trackedcam::simulator
