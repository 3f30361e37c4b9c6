// A pinhole with radial distortion.

#pragma once

#include <Eigen/Core>

namespace trackedcam::simulator {

struct Lens {
  double fx, fy;  // pixels
  double cx, cy;  // pixels; the centre of the first pixel is (0, 0)
  double k1, k2;  // radial distortion of second and fourth order

  /// The pixel of a point in front of the camera, given in frame Cam.
  Eigen::Vector2d Project(const Eigen::Vector3d& point) const;

  /// The point in the plane z = 1 of frame Cam that is seen at this pixel.
  Eigen::Vector2d Ray(const Eigen::Vector2d& pixel) const;

  /// False where the distortion is so strong that a pixel up to this one has no ray of its own.
  bool Reaches(const Eigen::Vector2d& pixel) const;

 private:
  Eigen::Vector2d Distorted(const Eigen::Vector2d& pixel) const;
};

/// A slightly distorted lens for photographs of this size, its principal point off the centre.
Lens DefaultLens(int imageWidth, int imageHeight);

}  // namespace trackedcam::simulator
