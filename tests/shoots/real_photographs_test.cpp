// Photographs of a real chessboard, 9x6 inner corners, from the examples of the image library.

#include "support/real_photographs.h"

#include <filesystem>

#include <Eigen/Geometry>

#include "shoots/calibrate_shoot.h"
#include "support/log_lines.h"
#include "support/random_transform.h"
#include "support/transform_matchers.h"

namespace trackedcam::test {
namespace {

TEST(RealPhotographs, GiveTheirLensAndTheTransformThatWasPutIn) {
  const std::vector<std::filesystem::path> photographs =
      RealPhotographs(TRACKEDCAM_REAL_PHOTOGRAPHS);
  ASSERT_EQ(photographs.size(), 13u)
      << "The photographs of the package opencv-doc are missing in " TRACKEDCAM_REAL_PHOTOGRAPHS;

  std::mt19937 random(1);
  const Eigen::Isometry3d Transform_Cam_Tc(
      Disturbed(Transform::Identity(), 115, {1, -2, 0.5}, {0.03, -0.12, 0.07}));
  std::string data = "Time,Image,Tc x,y,z,w,x,y,z,Tr x,y,z,w,x,y,z\n";
  const std::vector<Eigen::Isometry3d> chartPoses = RealChartPoses(photographs);
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    // The chart's tracker has the pose of the chart.
    const Eigen::Isometry3d Transform_Base_Tr(RandomTransform(random));
    const Eigen::Isometry3d Transform_Base_Tc =
        Transform_Base_Tr * chartPoses[i].inverse() * Transform_Cam_Tc;
    data += std::to_string(i) + "," + photographs[i].u8string() +
            ReportedFields(Transform_Base_Tc) + ReportedFields(Transform_Base_Tr) + "\n";
  }
  const TemporaryFolder folder;
  WriteFile(folder.File("tracker_data.csv"), data);
  const Calibrated result = Calibrate({folder.File("tracker_data.csv"),
                                       4.8,
                                       3.6,
                                       kRealBoard.width,
                                       kRealBoard.height,
                                       kRealSquare,
                                       {0, 0, 0},
                                       {0, 0, 0},
                                       folder.Path().u8string(),
                                       false,
                                       13});

  EXPECT_EQ(result.code, 0);
  // Versions of the image library differ in the last digit here.
  const auto start = std::find(result.log.begin(), result.log.end(), "Camera calibration start.");
  ASSERT_NE(start, result.log.end());
  EXPECT_TRUE(LogReads({start + 1, start + 6}, {{"Fx : 533.840000 pixel.", 0.02},
                                                {"Fy : 534.060000 pixel.", 0.02},
                                                {"Cx : 342.650000 pixel.", 0.02},
                                                {"Cy : 233.580000 pixel.", 0.02},
                                                {"reprojection error : 0.240700", 0.0002}}));
  EXPECT_NEAR(result.distortion[0], -0.2887, 0.0003);
  EXPECT_NEAR(result.distortion[1], 0.0996, 0.0003);
  EXPECT_THAT(result.Transform_Cam_Tc(), IsTransformNear(Transform_Cam_Tc.matrix(), 0.0005, 0.05));
}

}  // namespace
}  // namespace trackedcam::test
