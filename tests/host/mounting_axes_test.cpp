#include <gmock/gmock.h>

#include "host/input/reported_axes.h"

namespace trackedcam::host {
namespace {

using testing::DoubleNear;
using testing::Pointwise;

std::array<double, 9> Rotation(const std::array<double, 3>& degrees) {
  // Rx · Ry · Rz, multiplied out by hand.
  const auto sine = [&](int i) { return std::sin(degrees[i] * 3.14159265358979323846 / 180); };
  const auto cosine = [&](int i) { return std::cos(degrees[i] * 3.14159265358979323846 / 180); };
  const double sx = sine(0), sy = sine(1), sz = sine(2);
  const double cx = cosine(0), cy = cosine(1), cz = cosine(2);
  return {cy * cz,
          -cy * sz,
          sy,
          cx * sz + sx * sy * cz,
          cx * cz - sx * sy * sz,
          -sx * cy,
          sx * sz - cx * sy * cz,
          sx * cz + cx * sy * sz,
          cx * cy};
}

// Of the reported x, y, z the library uses -x, -z, -y: row 0 changes sign, rows 1 and 2 change sign
// and places.
std::array<double, 9> InOtherAxes(const std::array<double, 9>& r) {
  return {-r[0], -r[1], -r[2], -r[6], -r[7], -r[8], -r[3], -r[4], -r[5]};
}

TEST(MountingAxes, SaysTheSameMountingInReportedAxes) {
  for (const Mounting& fixed :
       {Mounting{{12, -8, 5}, {0.1, -0.05, 0.02}}, Mounting{{0, 0, 0}, {0, 0, 0}},
        Mounting{{-170, 80, 100}, {1, 2, 3}}, Mounting{{90, 0, 180}, {-1, 0, 0.5}},
        Mounting{{20, 90, 30}, {0, 0, 0}}, Mounting{{20, -90, -30}, {0, 0, 0}}}) {
    const Mounting reported = ToReportedAxes(fixed);
    EXPECT_THAT(Rotation(reported.rotationDegrees),
                Pointwise(DoubleNear(1e-12), InOtherAxes(Rotation(fixed.rotationDegrees))));
    EXPECT_EQ(reported.translationMetres[0], -fixed.translationMetres[0]);
    EXPECT_EQ(reported.translationMetres[1], -fixed.translationMetres[2]);
    EXPECT_EQ(reported.translationMetres[2], -fixed.translationMetres[1]);

    const Mounting again = FromReportedAxes(reported);
    EXPECT_THAT(Rotation(again.rotationDegrees),
                Pointwise(DoubleNear(1e-12), Rotation(fixed.rotationDegrees)));
    EXPECT_THAT(again.translationMetres, Pointwise(DoubleNear(0), fixed.translationMetres));
  }
}

}  // namespace
}  // namespace trackedcam::host
