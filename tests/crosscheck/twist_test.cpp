#include "crosscheck/twist.h"

#include <gmock/gmock.h>

#include "simulator/random.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::IsNear;

using Generator = Eigen::Matrix4d;

// The slow way: the power series of the generator's matrix.
Eigen::Matrix4d SeriesOf(const Twist& twist) {
  Generator generator = Generator::Zero();
  generator.topLeftCorner<3, 3>() << 0, -twist[2], twist[1], twist[2], 0, -twist[0], -twist[1],
      twist[0], 0;
  generator.topRightCorner<3, 1>() = twist.tail<3>();
  Eigen::Matrix4d sum = Eigen::Matrix4d::Identity();
  Eigen::Matrix4d term = Eigen::Matrix4d::Identity();
  for (int n = 1; n < 40; ++n) {
    term = term * generator / n;
    sum += term;
  }
  return sum;
}

Twist Drawn(simulator::Random& random, double angle) {
  Twist twist;
  twist << angle * random.Direction(), random.NormalVector();
  return twist;
}

// Beyond and below where the closed forms change over, and near half a turn.
const double kAngles[] = {0, 1e-9, 9e-5, 1.1e-4, 1.9e-4, 2.1e-4, 1e-2, 1, 3, 3.14159};

TEST(TwistTest, ExpIsTheSeriesOfItsGenerator) {
  simulator::Random random(3, simulator::Draw::kRig);
  for (const double angle : kAngles) {
    SCOPED_TRACE("angle " + std::to_string(angle));
    const Twist twist = Drawn(random, angle);
    EXPECT_THAT(Exp(twist).matrix(), IsNear(SeriesOf(twist), 1e-11));
  }
}

TEST(TwistTest, LogUndoesExp) {
  simulator::Random random(4, simulator::Draw::kRig);
  for (const double angle : kAngles) {
    SCOPED_TRACE("angle " + std::to_string(angle));
    const Twist twist = Drawn(random, angle);
    EXPECT_THAT(Log(Exp(twist)), IsNear(twist, 1e-9));
  }
}

TEST(TwistTest, LogTurnsByHalfATurnAtMost) {
  const Twist beyond = (Twist() << 0, 0, 4, 0, 0, 0).finished();
  EXPECT_NEAR(Log(Exp(beyond))[2], 4 - 2 * EIGEN_PI, 1e-12);
}

TEST(TwistTest, TheAdjointCarriesATwistThroughAPose) {
  simulator::Random random(5, simulator::Draw::kRig);
  for (int i = 0; i < 10; ++i) {
    const Pose pose = Exp(Drawn(random, 2));
    const Twist twist = Drawn(random, 0.3);
    EXPECT_THAT((pose * Exp(twist)).matrix(),
                IsNear((Exp(Adjoint(pose) * twist) * pose).matrix(), 1e-12));
  }
}

TEST(TwistTest, CrossIsTheCrossProduct) {
  const Eigen::Vector3d a(1, -2, 3);
  const Eigen::Vector3d b(0.5, 4, -1);
  EXPECT_THAT(Cross(a) * b, IsNear(a.cross(b), 1e-15));
}

TEST(TwistTest, TheNearestRotationIsNearerThanItsNeighbours) {
  simulator::Random random(6, simulator::Draw::kRig);
  Eigen::Matrix3d matrix = Exp(Drawn(random, 1)).linear();
  for (int i = 0; i < 9; ++i) {
    matrix(i) += 0.1 * random.Normal();
  }
  const Eigen::Matrix3d nearest = NearestRotation(matrix);
  EXPECT_NEAR(nearest.determinant(), 1, 1e-12);
  EXPECT_THAT(nearest * nearest.transpose(), IsNear(Eigen::Matrix3d::Identity().eval(), 1e-12));
  for (int i = 0; i < 50; ++i) {
    const Eigen::Matrix3d other = Exp(Drawn(random, 1e-3)).linear() * nearest;
    EXPECT_LT((matrix - nearest).norm(), (matrix - other).norm());
  }
}

TEST(TwistTest, TheNearestRotationOfAMirrorIsNoMirror) {
  const Eigen::Matrix3d mirror = Eigen::Vector3d(1, 1, -1).asDiagonal();
  EXPECT_NEAR(NearestRotation(mirror).determinant(), 1, 1e-12);
}

TEST(TwistTest, APoseOfAMatrixIsRigid) {
  Eigen::Matrix4d matrix = Eigen::Matrix4d::Identity();
  matrix(0, 1) = 1e-3;
  matrix(0, 3) = 2;
  EXPECT_TRUE(test::IsRigid(PoseOf(matrix).matrix()));
  EXPECT_EQ(PoseOf(matrix).translation(), Eigen::Vector3d(2, 0, 0));
}

}  // namespace
}  // namespace trackedcam::crosscheck
