#include "handeye/pose_sets.h"

#include <cmath>

#include "support/foreign_locale.h"
#include "support/stage_test.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using test::IsNear;
using test::IsTransformNear;

const double kPi = std::acos(-1.0);

// The axes of a tracker in the solving stages.
Transform PlainAxisFix() {
  Transform fix;
  fix << -1, 0, 0, 0,  //
      0, 0, -1, 0,     //
      0, -1, 0, 0,     //
      0, 0, 0, 1;
  return fix;
}

Eigen::Matrix3d PlainRotation(char axis, double degrees) {
  const double c = std::cos(degrees * kPi / 180);
  const double s = std::sin(degrees * kPi / 180);
  Eigen::Matrix3d rotation;
  if (axis == 'x') {
    rotation << 1, 0, 0, 0, c, -s, 0, s, c;
  } else if (axis == 'y') {
    rotation << c, 0, s, 0, 1, 0, -s, 0, c;
  } else {
    rotation << c, -s, 0, s, c, 0, 0, 0, 1;
  }
  return rotation;
}

class PoseSetsTest : public test::StageTest {
 protected:
  void Organize(const std::vector<TrackerRecord>& records, bool Flag_ModifyQuat = false) {
    EXPECT_EQ(OrganizeRT(log, Transform_Base_Tc_all, Transform_Tr_Base_all, Transform_Chart_Tr,
                         Transform_Cam_Chart_all, rotations, translations, mountingRotation,
                         mountingTranslation, records, Flag_ModifyQuat),
              0);
  }

  // The chart's poses in two photographs: no rotation, and 90 degrees about z.
  cv::Mat rotations = (cv::Mat_<cv::Vec3d>(2, 1) << cv::Vec3d(0, 0, 0), cv::Vec3d(0, 0, kPi / 2));
  cv::Mat translations = (cv::Mat_<cv::Vec3d>(2, 1) << cv::Vec3d(1, 2, 3), cv::Vec3d(4, 5, 6));
  std::vector<double> mountingRotation = {0, 0, 0};
  std::vector<double> mountingTranslation = {0, 0, 0};

  TransformList Transform_Base_Tc_all;
  TransformList Transform_Tr_Base_all;
  Transform Transform_Chart_Tr;
  TransformList Transform_Cam_Chart_all;
};

// Time; Tc at (0.1, 0.2, 0.3), rotated by 120 degrees about (1, 1, 1); Tr at (4, 5, 6), rotated by
// 180 degrees about y.
const TrackerRecord kRecord = {7, 0.1, 0.2, 0.3, 0.5, 0.5, 0.5, 0.5, 4, 5, 6, 0, 0, 1, 0};
const TrackerRecord kAtBase = {7, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};

TEST_F(PoseSetsTest, NoMountingIsTheIdentity) {
  Organize({});
  EXPECT_EQ(Transform_Chart_Tr, Transform::Identity());
  EXPECT_EQ(LogLines(), std::vector<std::string>{"Transform_Chart_Tr successful."});
}

TEST_F(PoseSetsTest, MountingIsComposedAboutXThenYThenZAndInverted) {
  mountingRotation = {10, 20, -130};
  mountingTranslation = {0.1, 0.2, 0.3};
  Organize({});
  const Eigen::Matrix3d rotation =
      PlainRotation('x', 10) * PlainRotation('y', 20) * PlainRotation('z', -130);
  const Transform Transform_Tr_Chart = MakeTransform(rotation, {0.1, 0.2, 0.3});
  EXPECT_THAT(Transform(Transform_Chart_Tr * Transform_Tr_Chart),
              IsNear(Transform(Transform::Identity()), 1e-9));
}

TEST_F(PoseSetsTest, MountingOfAQuarterTurnUsesTheTruncatedPi) {
  mountingRotation = {90, 0, 0};
  Organize({});
  // Rx(1.57079632675): 4.49e-11 less than 90 degrees.
  EXPECT_NEAR(Transform_Chart_Tr(1, 1), std::cos(1.57079632675), 1e-15);
  EXPECT_GT(Transform_Chart_Tr(1, 1), 4e-11);
  EXPECT_LT(Transform_Chart_Tr(1, 1), 5e-11);
}

TEST_F(PoseSetsTest, AxisFixActsOnTheTrackersOwnAxes) {
  const Transform pose = MakeTransform(PlainRotation('y', 33), {1, 2, 3});
  EXPECT_THAT(ApplyTrackerAxisFix(pose), IsNear(Transform(pose * PlainAxisFix()), 1e-9));
}

TEST_F(PoseSetsTest, AxisFixIsBuiltFromTheTruncatedPi) {
  // With the truncated pi, the sines in Rx(pi / 2) * Rz(pi) are about 1e-10, not 0.
  const Transform fix = ApplyTrackerAxisFix(Transform::Identity());
  EXPECT_NEAR(std::abs(fix(0, 2)) + std::abs(fix(0, 1)), std::sin(3.1415926535), 1e-14);
  EXPECT_GT(std::sin(3.1415926535), 8e-11);
}

TEST_F(PoseSetsTest, PairTheChartWithBothTrackers) {
  Organize({kRecord, kAtBase});
  ASSERT_EQ(Transform_Cam_Chart_all.size(), 2u);
  ASSERT_EQ(Transform_Tr_Base_all.size(), 2u);
  ASSERT_EQ(Transform_Base_Tc_all.size(), 2u);

  EXPECT_THAT(Transform_Cam_Chart_all[0],
              IsNear(MakeTransform(Eigen::Matrix3d::Identity(), {1, 2, 3}), 1e-15));
  EXPECT_THAT(Transform_Cam_Chart_all[1],
              IsNear(MakeTransform(PlainRotation('z', 90), {4, 5, 6}), 1e-15));

  Eigen::Matrix3d third;  // maps x to y, y to z and z to x
  third << 0, 0, 1, 1, 0, 0, 0, 1, 0;
  EXPECT_THAT(Transform_Base_Tc_all[0],
              IsNear(Transform(MakeTransform(third, {0.1, 0.2, 0.3}) * PlainAxisFix()), 1e-9));
  const Transform Transform_Base_Tr =
      MakeTransform(PlainRotation('y', 180), {4, 5, 6}) * PlainAxisFix();
  EXPECT_THAT(Transform(Transform_Tr_Base_all[0] * Transform_Base_Tr),
              IsNear(Transform(Transform::Identity()), 1e-9));
}

TEST_F(PoseSetsTest, OfATrackerAtTheBaseIsTheAxisFix) {
  Organize({kAtBase});
  EXPECT_THAT(Transform_Base_Tc_all[0], IsNear(PlainAxisFix(), 1e-9));
}

TEST_F(PoseSetsTest, InvertQuaternionsOnRequest) {
  TrackerRecord inverted = kRecord;
  for (const std::size_t i : {5, 6, 7, 12, 13, 14}) {
    inverted[i] = -inverted[i];
  }
  Organize({kRecord, inverted}, true);
  Organize({inverted, kRecord}, false);
  for (std::size_t i : {0, 1}) {
    EXPECT_EQ(Transform_Base_Tc_all[i], Transform_Base_Tc_all[i + 2]);
    EXPECT_EQ(Transform_Tr_Base_all[i], Transform_Tr_Base_all[i + 2]);
  }
  EXPECT_NE(Transform_Base_Tc_all[0], Transform_Base_Tc_all[1]);
}

TEST_F(PoseSetsTest, NormaliseQuaternions) {
  TrackerRecord twice = kRecord;
  for (const std::size_t i : {4, 5, 6, 7, 11, 12, 13, 14}) {
    twice[i] *= 2;
  }
  Organize({kRecord, twice});
  EXPECT_THAT(Transform_Base_Tc_all[1], IsNear(Transform_Base_Tc_all[0], 1e-15));
  EXPECT_THAT(Transform_Tr_Base_all[1], IsNear(Transform_Tr_Base_all[0], 1e-14));
}

TEST_F(PoseSetsTest, TakeAZeroQuaternionAsNoRotation) {
  TrackerRecord zero = kAtBase;
  zero[4] = 0;
  zero[11] = 0;
  Organize({zero, kAtBase});
  EXPECT_EQ(Transform_Base_Tc_all[0], Transform_Base_Tc_all[1]);
  EXPECT_EQ(Transform_Tr_Base_all[0], Transform_Tr_Base_all[1]);
}

TEST_F(PoseSetsTest, TakeTheRowsAfterTheEndOfAView) {
  Organize({kRecord, kAtBase});
  rotations = rotations(cv::Range(0, 1), cv::Range(0, 1));
  translations = translations(cv::Range(0, 1), cv::Range(0, 1));
  Organize({kRecord, kAtBase});
  for (const TransformList* list :
       {&Transform_Cam_Chart_all, &Transform_Tr_Base_all, &Transform_Base_Tc_all}) {
    ASSERT_EQ(list->size(), 4u);
    EXPECT_EQ((*list)[2], (*list)[0]);
    EXPECT_EQ((*list)[3], (*list)[1]);
  }
}

TEST_F(PoseSetsTest, AreAsShortAsTheMatrixOfAView) {
  rotations = rotations(cv::Range(0, 1), cv::Range(0, 1));
  Organize({kRecord, kAtBase, kRecord});
  EXPECT_EQ(Transform_Cam_Chart_all.size(), 2u);
  EXPECT_EQ(Transform_Tr_Base_all.size(), 2u);
  EXPECT_EQ(Transform_Base_Tc_all.size(), 2u);
}

TEST_F(PoseSetsTest, LeaveOutPosesWithoutRecords) {
  Organize({kAtBase});
  EXPECT_EQ(Transform_Cam_Chart_all.size(), 1u);
}

TEST_F(PoseSetsTest, OfAnEmptyViewAreNone) {
  rotations = rotations(cv::Range(0, 0), cv::Range(0, 1));
  translations = translations(cv::Range(0, 0), cv::Range(0, 1));
  Organize({kRecord, kAtBase});
  EXPECT_TRUE(Transform_Cam_Chart_all.empty());
  EXPECT_TRUE(Transform_Base_Tc_all.empty());
}

TEST_F(PoseSetsTest, PrintTheChartTrackersRotationToTheConsole) {
  const std::string console = ConsoleOf([&] { Organize({kAtBase, kAtBase}); });
  const std::string matrix = "1 0 0\n0 1 0\n0 0 1\n";
  const std::size_t first = console.find(matrix);
  ASSERT_NE(first, std::string::npos) << console;
  EXPECT_NE(console.find(matrix, first + 1), std::string::npos);
  EXPECT_EQ(LogLines().size(), 1u);
}

TEST_F(PoseSetsTest, PrintWithDecimalPointsInEveryLocale) {
  TrackerRecord turned = kAtBase;
  turned[11] = 0.6;
  turned[12] = 0.8;
  const test::ForeignLocale locale;
  const std::string console = ConsoleOf([&] { Organize({turned, turned}); });
  EXPECT_NE(console.find("-0.28"), std::string::npos) << console;
}

}  // namespace
}  // namespace trackedcam
