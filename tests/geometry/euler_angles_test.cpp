#include "geometry/euler_angles.h"

#include <cmath>

#include "support/random_transform.h"
#include "support/stage_test.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using EulerAnglesTest = test::StageTest;

constexpr float kUntouched = 7;
const float kHalfRoot = static_cast<float>(std::sqrt(0.5));

// A quaternion from x, y, z, w.
Quaternion Xyzw(double x, double y, double z, double w) {
  return Quaternion(w, x, y, z);
}

Eigen::Matrix3d Rotation(const Eigen::Vector3d& axis, double degrees) {
  return Eigen::AngleAxisd(degrees * EIGEN_PI / 180, axis).toRotationMatrix();
}

const Eigen::Vector3d kX = Eigen::Vector3d::UnitX();
const Eigen::Vector3d kY = Eigen::Vector3d::UnitY();
const Eigen::Vector3d kZ = Eigen::Vector3d::UnitZ();

void ExpectNegativeZero(float number) {
  EXPECT_EQ(number, 0);
  EXPECT_TRUE(std::signbit(number));
}

void ExpectPositiveZero(float number) {
  EXPECT_EQ(number, 0);
  EXPECT_FALSE(std::signbit(number));
}

TEST_F(EulerAnglesTest, OfTheIdentityAreZerosOfTheirSigns) {
  EulerAngles angles = {kUntouched, kUntouched, kUntouched};
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, 0, 0, 1), angles), 0);
  ExpectNegativeZero(angles[0]);
  ExpectPositiveZero(angles[1]);
  ExpectPositiveZero(angles[2]);
  EXPECT_EQ(QuatToEulerAximmetry(log, Xyzw(0, 0, 0, 1), angles), 0);
  for (const float angle : angles) {
    ExpectNegativeZero(angle);
  }
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(EulerAnglesTest, ComposeTheRotationUE) {
  std::mt19937 random(1);
  for (int i = 0; i < 10000; ++i) {
    const Eigen::Matrix3d rotation = test::RandomTransform(random).topLeftCorner<3, 3>();
    EulerAngles angles = {};
    if (QuatToEulerUE(log, QuaternionFromRotation(rotation), angles) == 3) {
      continue;
    }
    const auto [roll, pitch, yaw] = angles;
    const Eigen::Matrix3d composed = Rotation(kZ, yaw) * Rotation(kY, -pitch) * Rotation(kX, -roll);
    // Single precision is least accurate near a pitch of 90 degrees.
    ASSERT_LT(test::AngleBetweenDeg(composed, rotation), std::abs(pitch) < 89 ? 2e-3 : 0.1);
  }
}

TEST_F(EulerAnglesTest, ComposeTheRotationAximmetry) {
  std::mt19937 random(2);
  for (int i = 0; i < 10000; ++i) {
    const Eigen::Matrix3d rotation = test::RandomTransform(random).topLeftCorner<3, 3>();
    EulerAngles angles = {};
    QuatToEulerAximmetry(log, QuaternionFromRotation(rotation), angles);
    const Eigen::Matrix3d composed =
        Rotation(kY, -angles[1]) * Rotation(kX, -angles[0]) * Rotation(kZ, -angles[2]);
    ASSERT_LT(test::AngleBetweenDeg(composed, rotation), std::abs(angles[0]) < 89 ? 2e-3 : 0.2);
  }
}

TEST_F(EulerAnglesTest, InGimbalLockUEAreRefused) {
  EulerAngles angles = {kUntouched, kUntouched, kUntouched};
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, -0.7071068, 0, 0.7071068), angles), 3);
  EXPECT_EQ(angles, (EulerAngles{kUntouched, kUntouched, kUntouched}));
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{"Encountered Gimbal lock : ", "SingularityTest : 0.500000",
                                      "x : 0.000000, y : -0.707107, z : 0.000000",
                                      "Error code 3 : Encountered Gimbal lock."}));
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, 0.7071068, 0, 0.7071068), angles), 3);
  EXPECT_EQ(LogLines()[5], "SingularityTest : -0.500000");
}

TEST_F(EulerAnglesTest, AtTheLimitOfGimbalLockUEAreGiven) {
  const float limit = 0.4999995F;
  EulerAngles angles = {};
  // With these values z * x - w * y is exactly -y.
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, -limit, 0, 1), angles), 0);
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, limit, 0, 1), angles), 0);
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, -std::nextafter(limit, 0.0F), 0, 1), angles), 0);
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, -std::nextafter(limit, 1.0F), 0, 1), angles), 3);
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, std::nextafter(limit, 1.0F), 0, 1), angles), 3);
}

TEST_F(EulerAnglesTest, InGimbalLockAximmetryAreGivenAndLogged) {
  EulerAngles angles = {};
  EXPECT_EQ(QuatToEulerAximmetry(log, Xyzw(0.7071068, 0, 0, 0.7071068), angles), 0);
  EXPECT_EQ(angles[0], -90);
  ExpectNegativeZero(angles[1]);
  ExpectNegativeZero(angles[2]);
  EXPECT_EQ(QuatToEulerAximmetry(log, Xyzw(-0.7071068, 0, 0, 0.7071068), angles), 0);
  EXPECT_EQ(angles[0], 90);
  ExpectNegativeZero(angles[1]);
  ExpectNegativeZero(angles[2]);  // atan2(0 * x, 1) with x < 0
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{"Encountered Gimbal lock", "Encountered Gimbal lock"}));
}

TEST_F(EulerAnglesTest, InGimbalLockAximmetryFillTheThirdAngle) {
  // 40 degrees about z, then 90 or -90 degrees about x.
  for (const double quarter : {90.0, -90.0}) {
    const Eigen::Matrix3d rotation = Rotation(kX, quarter) * Rotation(kZ, 40);
    EulerAngles angles = {};
    EXPECT_EQ(QuatToEulerAximmetry(log, QuaternionFromRotation(rotation), angles), 0);
    EXPECT_EQ(angles[0], -quarter);
    EXPECT_NEAR(angles[2], -40, 1e-4);
  }
}

TEST_F(EulerAnglesTest, AtTheLimitOfGimbalLockAximmetryTakeTheUsualPath) {
  // With w = 1/2, 2 * (w * x) is exactly x. The limit is between two neighbouring floats.
  const double limit = 0.9999987;
  auto below = static_cast<float>(limit);
  if (static_cast<double>(below) > limit) {
    below = std::nextafter(below, 0.0F);
  }
  const float above = std::nextafter(below, 1.0F);
  ASSERT_GT(static_cast<double>(above), limit);
  EulerAngles angles = {};
  QuatToEulerAximmetry(log, Xyzw(below, 0, 0, 0.5), angles);
  QuatToEulerAximmetry(log, Xyzw(-below, 0, 0, 0.5), angles);
  EXPECT_TRUE(LogLines().empty());
  QuatToEulerAximmetry(log, Xyzw(above, 0, 0, 0.5), angles);
  EXPECT_EQ(angles[0], -90);
  QuatToEulerAximmetry(log, Xyzw(-above, 0, 0, 0.5), angles);
  EXPECT_EQ(angles[0], 90);
  EXPECT_EQ(LogLines().size(), 2u);
}

TEST_F(EulerAnglesTest, AximmetryConvertTheFirstAngleWithTheTruncatedPi) {
  EulerAngles angles = {};
  // 2 * (w * x) is exactly the sine. Volatile, because the compiler would round it differently.
  volatile float sine = 0.8F;
  QuatToEulerAximmetry(log, Xyzw(sine, 0, 0, 0.5), angles);
  EXPECT_EQ(angles[0],
            static_cast<float>(static_cast<double>(-std::asin(static_cast<float>(sine))) /
                               3.1415926535 * 180.0));
}

TEST_F(EulerAnglesTest, OfAHalfTurnAboutZ) {
  EulerAngles angles = {};
  EXPECT_EQ(QuatToEulerUE(log, Xyzw(0, 0, 1, 0), angles), 0);
  EXPECT_NEAR(angles[2], 180, 1e-4);
  QuatToEulerAximmetry(log, Xyzw(0, 0, kHalfRoot, kHalfRoot), angles);
  EXPECT_NEAR(angles[2], -90, 1e-4);
}

}  // namespace
}  // namespace trackedcam
