#include "simulator/random.h"

#include <cmath>

namespace trackedcam::simulator {
namespace {

std::mt19937_64 Engine(std::uint64_t seed, Draw purpose, int photograph) {
  std::seed_seq sequence{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32),
                         static_cast<std::uint32_t>(purpose),
                         static_cast<std::uint32_t>(photograph)};
  return std::mt19937_64(sequence);
}

}  // namespace

Random::Random(std::uint64_t seed, Draw purpose, int photograph)
    : engine_(Engine(seed, purpose, photograph)) {}

double Random::Uniform(double low, double high) {
  const double fraction = static_cast<double>(engine_() >> 11) * 0x1p-53;
  return low + (high - low) * fraction;
}

double Random::Normal() {
  const double radius = std::sqrt(-2 * std::log(1 - Uniform(0, 1)));
  return radius * std::cos(Uniform(0, 2 * EIGEN_PI));
}

Eigen::Vector3d Random::NormalVector() {
  const double x = Normal();
  const double y = Normal();
  const double z = Normal();
  return {x, y, z};
}

Eigen::Isometry3d Random::Displacement(double radians, double metres) {
  Eigen::Isometry3d displacement = Eigen::Isometry3d::Identity();
  displacement.linear() = Eigen::AngleAxisd(radians, Direction()).toRotationMatrix();
  displacement.translation() = metres * Direction();
  return displacement;
}

}  // namespace trackedcam::simulator
