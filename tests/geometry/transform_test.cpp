#include "geometry/transform.h"

#include <random>

#include <Eigen/Geometry>

#include "support/stage_test.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using test::IsNear;
using TransformTest = test::StageTest;

// Rotation by 90 degrees about z, translation (0.1, 0.2, 0.3), row by row.
const std::vector<double> kElements = {0, -1, 0, 0.1, 1, 0, 0, 0.2, 0, 0, 1, 0.3, 0, 0, 0, 1};

TEST_F(TransformTest, IsReadRowByRow) {
  const Transform transform = TransformFromVector(kElements);
  EXPECT_EQ(Eigen::Vector4d(transform.col(3)), Eigen::Vector4d(0.1, 0.2, 0.3, 1));
  EXPECT_EQ(transform(0, 1), -1);
  EXPECT_EQ(transform(1, 0), 1);
}

TEST_F(TransformTest, IgnoresElementsAfterTheSixteenth) {
  std::vector<double> elements = kElements;
  elements.push_back(99);
  EXPECT_EQ(TransformFromVector(elements), TransformFromVector(kElements));
}

TEST_F(TransformTest, KeepsABottomRowThatIsNotOne) {
  std::vector<double> elements = kElements;
  elements[12] = 7;
  EXPECT_EQ(TransformFromVector(elements)(3, 0), 7);
}

TEST_F(TransformTest, IsAppendedAsItWasRead) {
  std::vector<double> elements = {42};
  AppendTransform(elements, TransformFromVector(kElements));
  EXPECT_EQ(elements.front(), 42);
  elements.erase(elements.begin());
  EXPECT_EQ(elements, kElements);
}

TEST_F(TransformTest, IsLoggedAsALabelAndFourRows) {
  LogTransform(log, "Transform_Cam_Tc : ", TransformFromVector(kElements));
  EXPECT_EQ(LogLines(), (std::vector<std::string>{
                            "Transform_Cam_Tc : ", "[[0.000000, -1.000000, 0.000000, 0.100000],",
                            " [1.000000, 0.000000, 0.000000, 0.200000],",
                            " [0.000000, 0.000000, 1.000000, 0.300000],",
                            " [0.000000, 0.000000, 0.000000, 1.000000]]"}));
}

TEST_F(TransformTest, ChangesHandByMirroringZOnBothSides) {
  Transform in;
  in << 1, 2, 3, 0.1,  //
      4, 5, 6, 0.2,    //
      7, 8, 9, 0.3,    //
      0, 0, 0, 1;
  Transform expected;
  expected << 1, 2, -3, 0.1,  //
      4, 5, -6, 0.2,          //
      -7, -8, 9, -0.3,        //
      0, 0, 0, 1;
  Transform out;
  EXPECT_EQ(ChangeHand(log, in, out), 0);
  EXPECT_EQ(out, expected);
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(TransformTest, HasARotationBlock) {
  Eigen::Matrix3d block;
  EXPECT_EQ(RotationBlock(log, TransformFromVector(kElements), block), 0);
  Eigen::Matrix3d expected;
  expected << 0, -1, 0, 1, 0, 0, 0, 0, 1;
  EXPECT_EQ(block, expected);
}

TEST_F(TransformTest, InvertsAsAGeneralMatrix) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> number(-1, 1);
  for (int i = 0; i < 1000; ++i) {
    const Transform transform =
        Transform::NullaryExpr([&] { return number(random); }) + 3 * Transform::Identity();
    EXPECT_THAT(Transform(InverseTransform(transform) * transform),
                IsNear(Transform(Transform::Identity()), 1e-12));
  }
}

TEST_F(TransformTest, WithoutAnInverseIsNotFinite) {
  EXPECT_FALSE(InverseTransform(Transform::Zero()).allFinite());
}

}  // namespace
}  // namespace trackedcam
