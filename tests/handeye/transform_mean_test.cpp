#include "handeye/transform_mean.h"

#include <cmath>

#include <gtest/gtest.h>

#include "support/random_transform.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using test::AngleBetweenDeg;

Eigen::Quaternionf AboutZ(double degrees) {
  return Eigen::Quaterniond(Eigen::AngleAxisd(degrees * EIGEN_PI / 180, Eigen::Vector3d::UnitZ()))
      .cast<float>();
}

Eigen::Matrix3d MeanRotation(const std::vector<Eigen::Quaternionf>& rotations) {
  return RotationFromQuaternion(QuaternionMean(rotations));
}

Eigen::Matrix3d Rotation(const Eigen::Quaternionf& quaternion) {
  return quaternion.cast<double>().toRotationMatrix();
}

TEST(QuaternionMeanTest, OfOneRotationIsThatRotation) {
  std::mt19937 random(5);
  for (int i = 0; i < 100; ++i) {
    const Eigen::Quaternionf q(
        Eigen::Matrix3f(test::RandomTransform(random).topLeftCorner<3, 3>().cast<float>()));
    EXPECT_LT(AngleBetweenDeg(MeanRotation({q}), Rotation(q)), 1e-4);
  }
}

TEST(QuaternionMeanTest, LiesBetweenTwoRotations) {
  EXPECT_LT(AngleBetweenDeg(MeanRotation({AboutZ(10), AboutZ(30)}), Rotation(AboutZ(20))), 1e-4);
}

TEST(QuaternionMeanTest, WeighsEachRotationAlike) {
  EXPECT_LT(AngleBetweenDeg(MeanRotation({AboutZ(1), AboutZ(1), AboutZ(4)}), Rotation(AboutZ(2))),
            1e-3);
}

TEST(QuaternionMeanTest, TakesQAndMinusQAsTheSameRotation) {
  const Eigen::Quaternionf q = AboutZ(75);
  const Eigen::Quaternionf minusQ(Eigen::Vector4f(-q.coeffs()));
  EXPECT_LT(AngleBetweenDeg(MeanRotation({q, minusQ, q, minusQ}), Rotation(q)), 1e-4);
}

TEST(QuaternionMeanTest, OfNothingIsNotANumber) {
  EXPECT_TRUE(QuaternionMean({}).coeffs().array().isNaN().all());
}

TEST(QuaternionMeanTest, OfARotationThatIsNotANumberIsNotANumber) {
  const Eigen::Quaternionf broken(Eigen::Vector4f::Constant(NAN));
  EXPECT_TRUE(QuaternionMean({AboutZ(3), broken}).coeffs().array().isNaN().all());
}

TEST(TransformMeanTest, DividesTheSumInSinglePrecision) {
  const Transform mean = TransformMean({AboutZ(0)}, {1.0F, 2.0F, -0.1F}, 3);
  EXPECT_EQ(mean(0, 3), static_cast<double>(1.0F / 3.0F));
  EXPECT_EQ(mean(1, 3), static_cast<double>(2.0F / 3.0F));
  EXPECT_EQ(mean(2, 3), static_cast<double>(-0.1F / 3.0F));
  EXPECT_EQ(Eigen::RowVector4d(mean.row(3)), Eigen::RowVector4d(0, 0, 0, 1));
}

TEST(TransformMeanTest, OfNothingIsNotANumber) {
  const Transform mean = TransformMean({}, Eigen::Vector3f::Zero(), 0);
  EXPECT_TRUE(mean.topRows<3>().array().isNaN().all());
}

}  // namespace
}  // namespace trackedcam
