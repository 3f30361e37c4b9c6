// Random numbers that are the same on every machine. The standard fixes what the engine draws, but
// not what its distributions make of it.

#pragma once

#include <cstdint>
#include <random>

#include <Eigen/Geometry>

namespace trackedcam::simulator {

/// What numbers are drawn for. Each purpose has a sequence of its own, so that more noise, say,
/// does not move the camera.
enum class Draw : std::uint32_t { kRig, kFlaws, kPose, kTrackers, kPicture };

class Random {
 public:
  Random(std::uint64_t seed, Draw purpose, int photograph = 0);

  std::uint64_t Bits() { return engine_(); }
  double Uniform(double low, double high);
  /// Of spread 1 about 0.
  double Normal();
  Eigen::Vector3d NormalVector();
  /// A unit vector, each direction as likely as another.
  Eigen::Vector3d Direction() { return NormalVector().normalized(); }
  /// A turn by this angle about any axis, and a shift by this length in any direction.
  Eigen::Isometry3d Displacement(double radians, double metres);

 private:
  std::mt19937_64 engine_;
};

}  // namespace trackedcam::simulator
