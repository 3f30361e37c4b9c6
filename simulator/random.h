// Random numbers that are the same on every machine. The standard defines the engine's output but
// not that of its distributions.

#pragma once

#include <cstdint>
#include <random>

#include <Eigen/Geometry>

namespace trackedcam::simulator {

/// The purpose of random numbers. Each purpose has its own sequence, so that more noise, for
/// example, does not move the camera.
enum class Draw : std::uint32_t {
  kRig,
  kFlaws,
  kPose,
  kTrackers,
  kPicture,
  kSeat,
  kFrozen,
  kRoad,
  kHands,
  kStream,
  kDropped,
  kTremor
};

class Random {
 public:
  Random(std::uint64_t seed, Draw purpose, int photograph = 0);

  std::uint64_t Bits() { return engine_(); }
  double Uniform(double low, double high);
  /// Standard deviation 1 around 0.
  double Normal();
  Eigen::Vector3d NormalVector();
  /// A unit vector; all directions are equally likely.
  Eigen::Vector3d Direction() { return NormalVector().normalized(); }
  /// A rotation by this angle about a random axis and a translation by this length in a random
  /// direction.
  Eigen::Isometry3d Displacement(double radians, double metres);

 private:
  std::mt19937_64 engine_;
};

}  // namespace trackedcam::simulator
