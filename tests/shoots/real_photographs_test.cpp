// Photographs of a real chessboard, 9x6 inner corners, from the examples of the image library.

#include <cstdio>

#include <Eigen/Geometry>
#include <opencv2/calib3d.hpp>
#include <opencv2/core/eigen.hpp>
#include <opencv2/imgproc.hpp>

#include "shoots/calibrate_shoot.h"
#include "support/image_file.h"
#include "support/log_lines.h"
#include "support/random_transform.h"
#include "support/transform_matchers.h"

namespace trackedcam::test {
namespace {

namespace fs = std::filesystem;

constexpr double kSquare = 0.025;
const cv::Size kBoard(9, 6);

std::vector<fs::path> Photographs() {
  std::vector<fs::path> photographs;
  for (int i = 1; i <= 14; ++i) {
    const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
    const fs::path path = fs::absolute(TRACKEDCAM_REAL_PHOTOGRAPHS) / ("left" + number + ".jpg");
    if (fs::exists(path)) {
      photographs.push_back(path);
    }
  }
  return photographs;
}

// The chart's pose in the camera frame for each photograph, solved here from its corners.
std::vector<Eigen::Isometry3d> ChartPoses(const std::vector<fs::path>& photographs) {
  std::vector<cv::Point3f> board;
  for (int i = 0; i < kBoard.area(); ++i) {
    board.emplace_back(static_cast<float>(i % 9 * kSquare), static_cast<float>(i / 9 * kSquare),
                       0.0F);
  }
  std::vector<std::vector<cv::Point2f>> corners;
  for (const fs::path& photograph : photographs) {
    const cv::Mat grey = ReadImage(photograph.u8string(), cv::IMREAD_GRAYSCALE);
    EXPECT_TRUE(cv::findChessboardCorners(grey, kBoard, corners.emplace_back()));
    cv::cornerSubPix(grey, corners.back(), {5, 5}, {-1, -1}, {cv::TermCriteria::COUNT, 50, 0});
  }
  cv::Mat cameraMatrix;
  cv::Mat distortion;
  std::vector<cv::Vec3d> rotations;
  std::vector<cv::Vec3d> translations;
  cv::calibrateCamera(std::vector<std::vector<cv::Point3f>>(corners.size(), board), corners,
                      {640, 480}, cameraMatrix, distortion, rotations, translations,
                      cv::CALIB_ZERO_TANGENT_DIST | cv::CALIB_FIX_K3);
  std::vector<Eigen::Isometry3d> poses;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Eigen::Vector3d turn(rotations[i][0], rotations[i][1], rotations[i][2]);
    Eigen::Isometry3d pose(Eigen::AngleAxisd(turn.norm(), turn.normalized()));
    pose.pretranslate(Eigen::Vector3d(translations[i][0], translations[i][1], translations[i][2]));
    poses.push_back(pose);
  }
  return poses;
}

// A tracker's pose as the tracking system reports it, in the tracker's own axes.
std::string Reported(const Eigen::Isometry3d& pose) {
  Eigen::Matrix3d axes;
  axes << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  const Eigen::Quaterniond q(pose.linear() * axes);
  const Eigen::Vector3d p = pose.translation();
  char text[256];
  std::snprintf(text, sizeof text, ",%.12f,%.12f,%.12f,%.12f,%.12f,%.12f,%.12f", p.x(), p.y(),
                p.z(), q.w(), q.x(), q.y(), q.z());
  return text;
}

TEST(RealPhotographs, GiveTheirLensAndTheTransformThatWasPutIn) {
  const std::vector<fs::path> photographs = Photographs();
  ASSERT_EQ(photographs.size(), 13u)
      << "The photographs of the package opencv-doc are missing in " TRACKEDCAM_REAL_PHOTOGRAPHS;

  std::mt19937 random(1);
  const Eigen::Isometry3d Transform_Cam_Tc(
      Disturbed(Transform::Identity(), 115, {1, -2, 0.5}, {0.03, -0.12, 0.07}));
  std::string data = "Time,Image,Tc x,y,z,w,x,y,z,Tr x,y,z,w,x,y,z\n";
  const std::vector<Eigen::Isometry3d> chartPoses = ChartPoses(photographs);
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    // The chart's tracker sits in the chart's origin, turned like it.
    const Eigen::Isometry3d Transform_Base_Tr(RandomTransform(random));
    const Eigen::Isometry3d Transform_Base_Tc =
        Transform_Base_Tr * chartPoses[i].inverse() * Transform_Cam_Tc;
    data += std::to_string(i) + "," + photographs[i].u8string() + Reported(Transform_Base_Tc) +
            Reported(Transform_Base_Tr) + "\n";
  }
  const TemporaryFolder folder;
  WriteFile(folder.File("tracker_data.csv"), data);
  const Calibrated result = Calibrate({folder.File("tracker_data.csv"),
                                       4.8,
                                       3.6,
                                       kBoard.width,
                                       kBoard.height,
                                       kSquare,
                                       {0, 0, 0},
                                       {0, 0, 0},
                                       folder.Path().u8string(),
                                       false,
                                       13});

  EXPECT_EQ(result.code, 0);
  const auto start = std::find(result.log.begin(), result.log.end(), "Camera calibration start.");
  ASSERT_NE(start, result.log.end());
  EXPECT_TRUE(LogReads({start + 1, start + 6}, {{"Fx : 533.840000 pixel.", 0.005},
                                                {"Fy : 534.060000 pixel.", 0.005},
                                                {"Cx : 342.650000 pixel.", 0.005},
                                                {"Cy : 233.580000 pixel.", 0.005},
                                                {"reprojection error : 0.240700", 0.00005}}));
  EXPECT_NEAR(result.distortion[0], -0.2887, 0.00005);
  EXPECT_NEAR(result.distortion[1], 0.0996, 0.00005);
  EXPECT_THAT(result.Transform_Cam_Tc(), IsTransformNear(Transform_Cam_Tc.matrix(), 0.0005, 0.05));
}

}  // namespace
}  // namespace trackedcam::test
