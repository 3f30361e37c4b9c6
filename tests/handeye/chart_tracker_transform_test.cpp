#include "handeye/chart_tracker_transform.h"

#include "support/pose_lists.h"
#include "support/stage_test.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

using test::ConsistentPoseLists;
using test::IsTransformNear;
using test::PoseLists;

class ChartTrackerTransformTest : public test::StageTest {
 protected:
  ResultCode Solve(const PoseLists& poses) {
    return Calculate_Transform_Chart_Tr(log, mean, poses.Transform_Cam_Chart_all,
                                        poses.Transform_Cam_Tc, poses.Transform_Base_Tc_all,
                                        poses.Transform_Tr_Base_all);
  }

  Transform mean;
};

TEST_F(ChartTrackerTransformTest, IsFoundFromConsistentPoses) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const PoseLists poses = ConsistentPoseLists(15, seed);
    EXPECT_EQ(Solve(poses), 0);
    EXPECT_THAT(mean, IsTransformNear(poses.Transform_Chart_Tr, 1e-6, 1e-3));
  }
}

TEST_F(ChartTrackerTransformTest, WeighsEachPhotographAlike) {
  PoseLists poses = ConsistentPoseLists(10, 3);
  // In one photograph the chart is 0.2 m off along its own x axis.
  Transform shift = Transform::Identity();
  shift(0, 3) = 0.2;
  poses.Transform_Cam_Chart_all[4] *= shift;
  EXPECT_EQ(Solve(poses), 0);
  Transform expected = poses.Transform_Chart_Tr;
  expected(0, 3) -= 0.2 / 10;
  EXPECT_THAT(mean, IsTransformNear(expected, 1e-6, 1e-3));
}

TEST_F(ChartTrackerTransformTest, IsLogged) {
  EXPECT_EQ(Solve(ConsistentPoseLists(3, 1)), 0);
  ASSERT_EQ(LogLines().size(), 5u);
  EXPECT_EQ(LogLines()[0], "Mean_Transform_Chart_Tr : ");
}

TEST_F(ChartTrackerTransformTest, OfListsThatDifferIsCodeTwelve) {
  PoseLists poses = ConsistentPoseLists(10, 1);
  poses.Transform_Base_Tc_all.pop_back();
  EXPECT_EQ(Solve(poses), 12);
  EXPECT_EQ(mean, Transform::Identity());
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{
                "Size of Transform_Cam_Chart_all : 10", "Size of Transform_Tr_Base_all : 10",
                "Size of Transform_Base_Tc_all : 9",
                "Error code 12: Data size is not same in Calculate_Transform_Chart_Tr"}));

  poses = ConsistentPoseLists(10, 1);
  poses.Transform_Cam_Chart_all.pop_back();
  EXPECT_EQ(Solve(poses), 12);
}

TEST_F(ChartTrackerTransformTest, OfNothingIsNotANumber) {
  EXPECT_EQ(Solve(ConsistentPoseLists(0, 1)), 0);
  EXPECT_TRUE(mean.topRows<3>().array().isNaN().all());
}

}  // namespace
}  // namespace trackedcam
