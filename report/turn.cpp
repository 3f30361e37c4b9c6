#include "report/turn.h"

#include <cmath>

namespace trackedcam::report {
namespace {

const double kDegreesPerRadian = 180 / std::acos(-1.0);

}  // namespace

Rotation Product(const Rotation& a, const Rotation& b) {
  Rotation product = {};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      product[3 * r + c] = a[3 * r] * b[c] + a[3 * r + 1] * b[3 + c] + a[3 * r + 2] * b[6 + c];
    }
  }
  return product;
}

Rotation Inverse(const Rotation& a) {
  return {a[0], a[3], a[6], a[1], a[4], a[7], a[2], a[5], a[8]};
}

Rotation RotationOfAngles(const std::array<double, 3>& degrees) {
  std::array<double, 3> c = {};
  std::array<double, 3> s = {};
  for (std::size_t i = 0; i < 3; ++i) {
    c[i] = std::cos(degrees[i] / kDegreesPerRadian);
    s[i] = std::sin(degrees[i] / kDegreesPerRadian);
  }
  const Rotation aboutX = {1, 0, 0, 0, c[0], -s[0], 0, s[0], c[0]};
  const Rotation aboutY = {c[1], 0, s[1], 0, 1, 0, -s[1], 0, c[1]};
  const Rotation aboutZ = {c[2], -s[2], 0, s[2], c[2], 0, 0, 0, 1};
  return Product(Product(aboutX, aboutY), aboutZ);
}

std::array<double, 3> TurnDegrees(const Rotation& rotation) {
  // Twice the sine of the angle along the axis; atan2 keeps small angles exact.
  std::array<double, 3> turn = {rotation[7] - rotation[5], rotation[2] - rotation[6],
                                rotation[3] - rotation[1]};
  const double sine = std::hypot(turn[0], turn[1], turn[2]) / 2;
  const double cosine = (rotation[0] + rotation[4] + rotation[8] - 1) / 2;
  const double scale = sine > 0 ? std::atan2(sine, cosine) * kDegreesPerRadian / (2 * sine) : 0;
  for (double& part : turn) {
    part *= scale;
  }
  return turn;
}

}  // namespace trackedcam::report
