#include "geometry/quaternion.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using test::IsNear;

struct Xyzw {
  double x, y, z, w;
};

Xyzw Parts(const Quaternion& q) {
  return {q.x(), q.y(), q.z(), q.w()};
}

// The conversion as plain formulas. If the trace is not positive, they start from the largest
// diagonal element.
Xyzw PlainQuaternion(const Eigen::Matrix3d& m) {
  double q[3];
  double w = 0;
  const double trace = m(0, 0) + m(1, 1) + m(2, 2);
  if (trace > 0) {
    double s = std::sqrt(trace + 1);
    w = s / 2;
    s = 0.5 / s;
    q[0] = (m(2, 1) - m(1, 2)) * s;
    q[1] = (m(0, 2) - m(2, 0)) * s;
    q[2] = (m(1, 0) - m(0, 1)) * s;
  } else {
    int i = 0;
    if (m(1, 1) > m(0, 0)) {
      i = 1;
    }
    if (m(2, 2) > m(i, i)) {
      i = 2;
    }
    const int j = (i + 1) % 3;
    const int k = (j + 1) % 3;
    double s = std::sqrt(m(i, i) - m(j, j) - m(k, k) + 1);
    q[i] = s / 2;
    s = 0.5 / s;
    w = (m(k, j) - m(j, k)) * s;
    q[j] = (m(j, i) + m(i, j)) * s;
    q[k] = (m(k, i) + m(i, k)) * s;
  }
  return {q[0], q[1], q[2], w};
}

Eigen::Matrix3d PlainRotation(const Xyzw& q) {
  const auto [x, y, z, w] = q;
  Eigen::Matrix3d m;
  m << 1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y),  //
      2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x),   //
      2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y);
  return m;
}

void ExpectNear(const Xyzw& a, const Xyzw& b, double tolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
  EXPECT_NEAR(a.w, b.w, tolerance);
}

TEST(QuaternionTest, OfTheIdentityIsTheUnit) {
  ExpectNear(Parts(QuaternionFromRotation(Eigen::Matrix3d::Identity())), {0, 0, 0, 1}, 0);
}

TEST(QuaternionTest, OfAHalfTurnHasNoScalarPart) {
  const Eigen::Matrix3d aboutX = Eigen::Vector3d(1, -1, -1).asDiagonal();
  const Eigen::Matrix3d aboutY = Eigen::Vector3d(-1, 1, -1).asDiagonal();
  const Eigen::Matrix3d aboutZ = Eigen::Vector3d(-1, -1, 1).asDiagonal();
  ExpectNear(Parts(QuaternionFromRotation(aboutX)), {1, 0, 0, 0}, 0);
  ExpectNear(Parts(QuaternionFromRotation(aboutY)), {0, 1, 0, 0}, 0);
  ExpectNear(Parts(QuaternionFromRotation(aboutZ)), {0, 0, 1, 0}, 0);
}

TEST(QuaternionTest, AgreesWithThePlainFormulas) {
  std::mt19937 random(11);
  std::normal_distribution<double> number;
  for (int i = 0; i < 10000; ++i) {
    // Not of unit length, because neither conversion normalises.
    const Xyzw q = {number(random), number(random), number(random), number(random)};
    const Eigen::Matrix3d rotation = RotationFromQuaternion(Quaternion(q.w, q.x, q.y, q.z));
    ASSERT_EQ(rotation, PlainRotation(q));
    const double norm = std::hypot(std::hypot(q.x, q.y), std::hypot(q.z, q.w));
    const Eigen::Matrix3d unit = PlainRotation({q.x / norm, q.y / norm, q.z / norm, q.w / norm});
    ExpectNear(Parts(QuaternionFromRotation(unit)), PlainQuaternion(unit), 1e-15);
  }
}

TEST(QuaternionTest, OfZeroLengthGivesTheIdentity) {
  EXPECT_EQ(RotationFromQuaternion(Quaternion(0, 0, 0, 0)), Eigen::Matrix3d::Identity());
}

TEST(QuaternionTest, OfThreeAnglesTurnsAboutXThenYThenZ) {
  const double a = 0.3;
  const double b = -0.7;
  const double c = 1.9;
  Eigen::Matrix3d rx;
  Eigen::Matrix3d ry;
  Eigen::Matrix3d rz;
  rx << 1, 0, 0, 0, std::cos(a), -std::sin(a), 0, std::sin(a), std::cos(a);
  ry << std::cos(b), 0, std::sin(b), 0, 1, 0, -std::sin(b), 0, std::cos(b);
  rz << std::cos(c), -std::sin(c), 0, std::sin(c), std::cos(c), 0, 0, 0, 1;
  EXPECT_THAT(RotationFromQuaternion(QuaternionFromAnglesXyz({a, b, c})),
              IsNear(Eigen::Matrix3d(rx * ry * rz), 1e-15));
}

}  // namespace
}  // namespace trackedcam
