#include "api/lens_figures.h"

#include "support/stage_test.h"

namespace trackedcam {
namespace {

class LensFiguresTest : public test::StageTest {
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

TEST_F(LensFiguresTest, LensFiguresAreNormalisedByTheImageSize) {
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

TEST_F(LensFiguresTest, FieldOfViewUsesTheRoundedFactor) {
  fx = 960;
  fy = 540;
  HandOut(36, 24);
  EXPECT_EQ(LogLines()[5], "FoV_H : 90.000001 degree.");
  EXPECT_EQ(LogLines()[6], "FoV_V : 90.000001 degree.");
  EXPECT_NEAR(fieldOfView[0], 90.00000105, 5e-9);
}

TEST_F(LensFiguresTest, FocalLengthGoesByTheSmallerPixelPitch) {
  HandOut(36, 24);  // a pixel is 0.01875 mm wide and 0.0222 mm high
  EXPECT_DOUBLE_EQ(focalLengthMm[0], 0.01875 * 1920);
  HandOut(36, 16.2);  // a pixel is 0.01875 mm wide and 0.015 mm high
  EXPECT_DOUBLE_EQ(focalLengthMm[1], 0.015 * 1620);
}

TEST_F(LensFiguresTest, FocalLengthWithEqualPitchesIsTheVerticalOne) {
  HandOut(1920, 1080);
  EXPECT_EQ(focalLengthMm[0], 1620);
}

TEST_F(LensFiguresTest, LogsTheFirstFocalLengthInTheHostsList) {
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
