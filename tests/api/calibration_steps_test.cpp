#include "api/calibration_steps.h"

#include "support/stage_test.h"

namespace trackedcam {
namespace {

class CalibrationStepsTest : public test::StageTest {
 protected:
  void HandOut(double sensorWidth, double sensorHeight) {
    CalibrationData data;
    data.imageSize = {width, height};
    data.cameraMatrix = (cv::Mat_<double>(3, 3) << fx, 0, cx, 0, fy, cy, 0, 0, 1);
    data.distortion = (cv::Mat_<double>(1, 5) << -0.1, 0.2, 0, 0, 0);
    HandOutLens(log, data, sensorWidth, sensorHeight,
                {imageSize, normFocal, normCenter, distortion, fieldOfView, focalLengthMm});
  }

  int width = 1920;
  int height = 1080;
  double fx = 1920;
  double fy = 1620;
  double cx = 960;
  double cy = 270;
  std::vector<double> imageSize, normFocal, normCenter, distortion, fieldOfView, focalLengthMm;
};

TEST_F(CalibrationStepsTest, BoardHasItsCornersRowByRow) {
  const BoardTemplate board = MakeBoardTemplate(log, 9, 6, 0.025);
  ASSERT_EQ(board.size(), 54u);
  EXPECT_EQ(board.front(), cv::Point3f(0, 0, 0));
  EXPECT_EQ(board[1], cv::Point3f(0.025F, 0, 0));
  EXPECT_EQ(board[9], cv::Point3f(0, 0.025F, 0));
  EXPECT_EQ(board.back(),
            cv::Point3f(static_cast<float>(8 * 0.025), static_cast<float>(5 * 0.025), 0));
  const std::vector<std::string> lines = LogLines();
  ASSERT_EQ(lines.size(), 56u);
  EXPECT_EQ(lines.front(), "CALIBRATION BOARD INDEX START");
  EXPECT_EQ(lines[1], "0.000000 0.000000 0");
  EXPECT_EQ(lines[54], "0.200000 0.125000 0");
  EXPECT_EQ(lines.back(), "CALIBRATION BOARD INDEX END");
}

TEST_F(CalibrationStepsTest, BoardWithoutRowsOrColumnsIsEmpty) {
  EXPECT_TRUE(MakeBoardTemplate(log, 0, 6, 0.025).empty());
  EXPECT_TRUE(MakeBoardTemplate(log, 9, -1, 0.025).empty());
}

TEST_F(CalibrationStepsTest, RecordsMustBeAsManyAsPhotographs) {
  EXPECT_EQ(CheckRecords(log, {"a", "b"}, {TrackerRecord(15)}), 2);
  EXPECT_EQ(CheckRecords(log, {"a"}, {TrackerRecord(15), TrackerRecord(15)}), 2);
  EXPECT_EQ(LogLines().back(),
            "Error code 2 : The amount of Tracker data and images do not match.");
  EXPECT_EQ(CheckRecords(log, {"a"}, {TrackerRecord(15)}), 0);
  EXPECT_EQ(LogLines().back(), "Read the csv file successfully.");
}

TEST_F(CalibrationStepsTest, LensFiguresAreNormalisedByTheImageSize) {
  HandOut(36, 20.25);
  EXPECT_EQ(imageSize, (std::vector<double>{1920, 1080}));
  EXPECT_EQ(normFocal, (std::vector<double>{1, 1.5}));
  EXPECT_EQ(normCenter, (std::vector<double>{0.5, 0.25}));
  EXPECT_EQ(distortion, (std::vector<double>{-0.1, 0.2, 0, 0, 0}));
  EXPECT_EQ(LogLines(),
            (std::vector<std::string>{
                "Image Width : 1920 pixel.", "Image Height : 1080 pixel.",
                "Norm F : (1.000000, 1.500000).", "Norm C : (0.500000, 0.250000).",
                "Distortion (k1, k2, p1, p2, k3) : -0.100000, 0.200000, 0.000000, 0.000000, "
                "0.000000",
                "FoV_H : 53.130103 degree.", "FoV_V : 36.869898 degree.",
                "Focal length (mm) : 30.375000 mm."}));
}

TEST_F(CalibrationStepsTest, FieldOfViewUsesTheRoundedFactor) {
  fx = 960;
  fy = 540;
  HandOut(36, 24);
  EXPECT_EQ(LogLines()[5], "FoV_H : 90.000001 degree.");
  EXPECT_EQ(LogLines()[6], "FoV_V : 90.000001 degree.");
  EXPECT_NEAR(fieldOfView[0], 90.00000105, 5e-9);
}

TEST_F(CalibrationStepsTest, FocalLengthGoesByTheSmallerPixelPitch) {
  HandOut(36, 24);  // 0.01875 and 0.0222 mm for a pixel
  EXPECT_DOUBLE_EQ(focalLengthMm[0], 0.01875 * 1920);
  HandOut(36, 16.2);  // 0.01875 and 0.015
  EXPECT_DOUBLE_EQ(focalLengthMm[1], 0.015 * 1620);
}

TEST_F(CalibrationStepsTest, FocalLengthWithEqualPitchesIsTheVerticalOne) {
  HandOut(1920, 1080);
  EXPECT_EQ(focalLengthMm[0], 1620);
}

TEST_F(CalibrationStepsTest, LogsTheFirstFocalLengthInTheHostsList) {
  focalLengthMm = {77};
  normFocal = {0.5, 0.5};
  HandOut(36, 20.25);
  EXPECT_EQ(focalLengthMm.size(), 2u);
  EXPECT_EQ(LogLines()[2], "Norm F : (1.000000, 1.500000).");
  EXPECT_EQ(LogLines()[5], "FoV_H : 90.000001 degree.");
  EXPECT_EQ(LogLines()[7], "Focal length (mm) : 77.000000 mm.");
}

}  // namespace
}  // namespace trackedcam
