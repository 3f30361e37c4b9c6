#include "handeye/camera_tracker_transform.h"

#include "handeye/transform_mean.h"
#include "support/pose_lists.h"
#include "support/stage_test.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using test::ConsistentPoseLists;
using test::IsTransformNear;
using test::PoseLists;

class CameraTrackerTransformTest : public test::StageTest {
 protected:
  ResultCode Solve(const PoseLists& poses) {
    return Calculate_Transform_Cam_Tc(log, mean, Transform_Cam_Tc_all, rotations, translations,
                                      poses.Transform_Cam_Chart_all, poses.Transform_Chart_Tr,
                                      poses.Transform_Tr_Base_all, poses.Transform_Base_Tc_all);
  }

  Transform mean = Transform::Identity();
  TransformList Transform_Cam_Tc_all;
  std::vector<Eigen::Quaternionf> rotations;
  std::vector<Eigen::Vector3f> translations;
};

TEST_F(CameraTrackerTransformTest, OfOnePhotographIsThatPhotographs) {
  const PoseLists poses = ConsistentPoseLists(1, 1);
  EXPECT_EQ(Solve(poses), 0);
  ASSERT_EQ(Transform_Cam_Tc_all.size(), 1u);
  EXPECT_THAT(Transform_Cam_Tc_all[0], IsTransformNear(poses.Transform_Cam_Tc, 1e-12, 1e-6));
  EXPECT_THAT(mean, IsTransformNear(poses.Transform_Cam_Tc, 1e-6, 1e-4));
}

TEST_F(CameraTrackerTransformTest, IsFoundFromConsistentPoses) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const PoseLists poses = ConsistentPoseLists(15, seed);
    EXPECT_EQ(Solve(poses), 0);
    EXPECT_EQ(rotations.size(), 15u);
    EXPECT_EQ(translations.size(), 15u);
    EXPECT_THAT(mean, IsTransformNear(poses.Transform_Cam_Tc, 1e-6, 1e-3));
  }
}

TEST_F(CameraTrackerTransformTest, FollowsAWrongMounting) {
  PoseLists poses = ConsistentPoseLists(1, 4);
  const Transform truth = poses.Transform_Chart_Tr;
  poses.Transform_Chart_Tr = test::Disturbed(truth, 3, {1, 0, 0}, {0.01, 0, 0});
  EXPECT_EQ(Solve(poses), 0);
  // The error of the result is that of the mounting, expressed in frame Cam.
  const Transform& Transform_Cam_Chart = poses.Transform_Cam_Chart_all[0];
  const Transform expected = Transform_Cam_Chart * poses.Transform_Chart_Tr * truth.inverse() *
                             Transform_Cam_Chart.inverse() * poses.Transform_Cam_Tc;
  EXPECT_THAT(mean, IsTransformNear(expected, 1e-6, 1e-4));
  EXPECT_THAT(mean, testing::Not(IsTransformNear(poses.Transform_Cam_Tc, 1e-3, 1.0)));
}

TEST_F(CameraTrackerTransformTest, SumsTranslationsInSinglePrecision) {
  const PoseLists poses = ConsistentPoseLists(20, 9);
  EXPECT_EQ(Solve(poses), 0);
  for (int axis = 0; axis < 3; ++axis) {
    float sum = 0;
    for (const Transform& transform : Transform_Cam_Tc_all) {
      sum += static_cast<float>(transform(axis, 3));
    }
    EXPECT_EQ(mean(axis, 3), static_cast<double>(sum / 20.0F));
  }
}

TEST_F(CameraTrackerTransformTest, IsLogged) {
  const PoseLists poses = ConsistentPoseLists(2, 2);
  EXPECT_EQ(Solve(poses), 0);
  ASSERT_EQ(LogLines().size(), 5u);
  EXPECT_EQ(LogLines()[0], "Mean_Transform_Cam_Tc : ");
  EXPECT_EQ(LogLines()[4], " [0.000000, 0.000000, 0.000000, 1.000000]]");
}

TEST_F(CameraTrackerTransformTest, ReplacesWhatAnEarlierRunLeft) {
  EXPECT_EQ(Solve(ConsistentPoseLists(12, 1)), 0);
  const PoseLists second = ConsistentPoseLists(5, 2);
  EXPECT_EQ(Solve(second), 0);
  EXPECT_EQ(Transform_Cam_Tc_all.size(), 5u);
  EXPECT_EQ(rotations.size(), 5u);
  EXPECT_EQ(translations.size(), 5u);
  EXPECT_THAT(mean, IsTransformNear(second.Transform_Cam_Tc, 1e-6, 1e-3));
}

TEST_F(CameraTrackerTransformTest, OfListsThatDifferIsCodeEight) {
  for (TransformList PoseLists::*shorter :
       {&PoseLists::Transform_Cam_Chart_all, &PoseLists::Transform_Tr_Base_all,
        &PoseLists::Transform_Base_Tc_all}) {
    PoseLists poses = ConsistentPoseLists(12, 1);
    EXPECT_EQ(Solve(poses), 0);
    mean = Transform::Identity();
    (poses.*shorter).pop_back();
    EXPECT_EQ(Solve(poses), 8);
    EXPECT_TRUE(Transform_Cam_Tc_all.empty());
    EXPECT_TRUE(rotations.empty());
    EXPECT_TRUE(translations.empty());
    EXPECT_EQ(mean, Transform::Identity());
    EXPECT_EQ(LogLines().back(),
              "Error code 8: Data size is not same in Calculate_Transform_Cam_Tc.");
  }
}

TEST_F(CameraTrackerTransformTest, OfNothingIsNotANumber) {
  EXPECT_EQ(Solve(ConsistentPoseLists(0, 1)), 0);
  EXPECT_TRUE(mean.topRows<3>().array().isNaN().all());
}

}  // namespace
}  // namespace trackedcam
