#include "calib/intrinsic_calibration.h"

#include <cmath>

#include <opencv2/core.hpp>

#include "calib/calibrate_camera.h"
#include "simulator/write_shoot.h"
#include "support/log_lines.h"
#include "support/stage_test.h"

namespace trackedcam {
namespace {

namespace sim = simulator;

BoardTemplate TemplateOf(const sim::Chart& chart) {
  BoardTemplate boardTemplate;
  for (int r = 0; r < chart.rows; ++r) {
    for (int c = 0; c < chart.cols; ++c) {
      boardTemplate.emplace_back(static_cast<float>(c * chart.squareMetres),
                                 static_cast<float>(r * chart.squareMetres), 0.0F);
    }
  }
  return boardTemplate;
}

class IntrinsicCalibrationTest : public test::StageTest {
 protected:
  // Solves with the exact corners of a simulated shoot.
  ResultCode Solve(const sim::Shoot& shoot, float rmsLimit = 1.5F) {
    for (const sim::Photograph& photograph : shoot.photographs) {
      Corners corners;
      for (const Eigen::Vector2d& corner : photograph.corners) {
        corners.emplace_back(static_cast<float>(corner.x()), static_cast<float>(corner.y()));
      }
      imagePoints.push_back(corners);
    }
    return CalibrateIntrinsics(
        log, rms, cv::Size(shoot.options.imageWidth, shoot.options.imageHeight), cameraMatrix,
        distortion, rotations, translations,
        std::vector<BoardTemplate>(imagePoints.size(), TemplateOf(shoot.options.chart)),
        imagePoints, rmsLimit, Num_TrackerData);
  }

  std::vector<Corners> imagePoints;
  double rms = -1;
  cv::Mat cameraMatrix;
  cv::Mat distortion;
  cv::Mat rotations;
  cv::Mat translations;
  int Num_TrackerData = 100;
};

TEST_F(IntrinsicCalibrationTest, FindsTheLensFromExactCorners) {
  const sim::Shoot shoot = sim::SimulateShoot({});
  SCOPED_TRACE("seed " + std::to_string(shoot.options.seed));
  ASSERT_EQ(Solve(shoot), 0);
  EXPECT_LT(rms, 1e-3);
  EXPECT_NEAR(cameraMatrix.at<double>(0, 0), shoot.lens.fx, 0.01);
  EXPECT_NEAR(cameraMatrix.at<double>(1, 1), shoot.lens.fy, 0.01);
  EXPECT_NEAR(cameraMatrix.at<double>(0, 2), shoot.lens.cx, 0.01);
  EXPECT_NEAR(cameraMatrix.at<double>(1, 2), shoot.lens.cy, 0.01);
  EXPECT_NEAR(distortion.at<double>(0), shoot.lens.k1, 1e-4);
  EXPECT_NEAR(distortion.at<double>(1), shoot.lens.k2, 1e-3);
  for (const int held : {2, 3, 4}) {
    EXPECT_EQ(distortion.at<double>(held), 0.0);
  }
}

TEST_F(IntrinsicCalibrationTest, FindsTheChartInTheCameraFrame) {
  const sim::Shoot shoot = sim::SimulateShoot({});
  ASSERT_EQ(Solve(shoot), 0);
  ASSERT_EQ(translations.rows, 20);
  ASSERT_EQ(translations.type(), CV_64FC3);
  ASSERT_EQ(rotations.type(), CV_64FC3);
  for (int i = 0; i < 20; ++i) {
    const Eigen::Isometry3d& truth =
        shoot.photographs[static_cast<std::size_t>(i)].Transform_Cam_Chart;
    const Eigen::AngleAxisd turn(truth.linear());
    for (int axis = 0; axis < 3; ++axis) {
      EXPECT_NEAR(translations.at<cv::Vec3d>(i)[axis], truth.translation()[axis], 1e-5);
      EXPECT_NEAR(rotations.at<cv::Vec3d>(i)[axis], turn.angle() * turn.axis()[axis], 1e-5);
    }
  }
}

TEST_F(IntrinsicCalibrationTest, LogsPixelsAndTheNumberOfPoses) {
  const sim::Shoot shoot = sim::SimulateShoot({});
  ASSERT_EQ(Solve(shoot), 0);
  const auto pixels = [](const std::string& label, double value) {
    return test::ExpectedLine(label + " : " + std::to_string(value) + " pixel.", 0.01);
  };
  EXPECT_TRUE(test::LogReads(LogLines(), {"Camera calibration start.",
                                          pixels("Fx", shoot.lens.fx),
                                          pixels("Fy", shoot.lens.fy),
                                          pixels("Cx", shoot.lens.cx),
                                          pixels("Cy", shoot.lens.cy),
                                          {"reprojection error : 0.000000", 0.001},
                                          "size of Rot_Cam_Chart_vec : 20",
                                          "size of Trans_Cam_Chart_vec : 20",
                                          "Camera calibration successful."}));
}

TEST_F(IntrinsicCalibrationTest, BeyondTheLimitIsCodeFive) {
  EXPECT_EQ(Solve(sim::SimulateShoot({}), 0.0F), 5);
  EXPECT_GT(rms, 0);
  EXPECT_EQ(rotations.rows, 20);
  EXPECT_EQ(Num_TrackerData, 100);
  const std::vector<std::string> lines = LogLines();
  EXPECT_EQ(lines[6], " Camera calibration failed, reporjection too large. (> 0.000000 pixel)");
  EXPECT_EQ(lines[7],
            "Error code 5: Camera calibration failed, reporjection too large. (> 1.5 pixel)");
}

TEST_F(IntrinsicCalibrationTest, PassesAnErrorThatEqualsTheLimit) {
  EXPECT_EQ(CheckLensError(log, 1.5, 1.5F), 0);
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ(CheckLensError(log, 1.5000001, 1.5F), 5);
  EXPECT_EQ(LogLines()[0],
            " Camera calibration failed, reporjection too large. (> 1.500000 pixel)");
}

TEST_F(IntrinsicCalibrationTest, LowersTheCountToTheNumberOfPoses) {
  cv::Mat poses = cv::Mat::zeros(14, 1, CV_64FC3);
  cv::Mat others = cv::Mat::ones(14, 1, CV_64FC3);
  int count = 15;
  CutPoses(poses, others, count);
  EXPECT_EQ(count, 14);
  EXPECT_EQ(poses.rows, 14);
  EXPECT_EQ(others.rows, 14);
}

TEST_F(IntrinsicCalibrationTest, CutsThePosesToTheCount) {
  for (int rows : {13, 0}) {
    cv::Mat poses = cv::Mat::zeros(14, 1, CV_64FC3);
    cv::Mat others = cv::Mat::ones(14, 1, CV_64FC3);
    int count = rows;
    CutPoses(poses, others, count);
    EXPECT_EQ(count, rows);
    EXPECT_EQ(poses.rows, rows);
    EXPECT_EQ(others.rows, rows);
  }
}

TEST_F(IntrinsicCalibrationTest, PassesANegativeCountToTheImageLibrary) {
  cv::Mat poses = cv::Mat::zeros(14, 1, CV_64FC3);
  cv::Mat others = cv::Mat::ones(14, 1, CV_64FC3);
  int count = -1;
  EXPECT_THROW(CutPoses(poses, others, count), cv::Exception);
}

TEST_F(IntrinsicCalibrationTest, IsInPixelsOfTheFullPhotograph) {
  sim::ShootOptions options;
  options.photographs = 12;
  options.imageWidth = 2560;
  options.imageHeight = 1440;
  const sim::Shoot shoot = sim::SimulateShoot(options);
  sim::WriteShoot(shoot, folder.Path());
  std::vector<std::string> imagePaths;
  for (const sim::Photograph& photograph : shoot.photographs) {
    imagePaths.push_back(folder.File(photograph.path));
  }
  std::vector<TrackerRecord> records(imagePaths.size(), TrackerRecord(15));
  std::vector<BoardTemplate> objectPoints;
  cv::Size imageSize;
  EXPECT_EQ(
      Calibrate_Camera(log, rms, imageSize, cameraMatrix, distortion, rotations, translations,
                       imagePaths, records, objectPoints, TemplateOf(options.chart), imagePoints,
                       options.chart.cols, options.chart.rows, 11, 11, 1.5F, 1, Num_TrackerData),
      0);
  EXPECT_EQ(imageSize, cv::Size(2560, 1440));
  EXPECT_NEAR(cameraMatrix.at<double>(0, 0), shoot.lens.fx, 0.001 * shoot.lens.fx);
  EXPECT_NEAR(cameraMatrix.at<double>(0, 2), shoot.lens.cx, 3);
  EXPECT_EQ(Num_TrackerData, 12);
}

}  // namespace
}  // namespace trackedcam
