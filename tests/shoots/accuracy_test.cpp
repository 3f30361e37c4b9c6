// The results of whole runs compared with the truth.

#include <cmath>
#include <cstdlib>

#include "shoots/calibrate_shoot.h"
#include "shoots/expected_log.h"
#include "simulator/write_shoot.h"
#include "support/foreign_locale.h"
#include "support/image_file.h"
#include "support/transform_matchers.h"

namespace trackedcam::test {
namespace {

namespace sim = simulator;
namespace fs = std::filesystem;

void ExpectLens(const Calibrated& result, const sim::Shoot& shoot, double relative) {
  const double width = shoot.options.imageWidth;
  const double height = shoot.options.imageHeight;
  ASSERT_EQ(result.imageSize, (std::vector<double>{width, height}));
  EXPECT_NEAR(result.normFocal[0], shoot.lens.fx / width, relative * shoot.lens.fx / width);
  EXPECT_NEAR(result.normFocal[1], shoot.lens.fy / height, relative * shoot.lens.fy / height);
  EXPECT_NEAR(result.normCenter[0], shoot.lens.cx / width, relative);
  EXPECT_NEAR(result.normCenter[1], shoot.lens.cy / height, relative);
  const double focalLengthMm = shoot.lens.fy * shoot.options.sensorHeightMm / height;
  EXPECT_NEAR(result.focalLengthMm[0], focalLengthMm, relative * focalLengthMm);
}

struct Error {
  double metres;
  double degrees;
};

Error ErrorOf(const Eigen::Matrix4d& Transform_Cam_Tc, const sim::Shoot& shoot) {
  const Eigen::Matrix4d truth = shoot.Transform_Cam_Tc.matrix();
  return {(Transform_Cam_Tc - truth).topRightCorner<3, 1>().norm(),
          AngleBetweenDeg(Transform_Cam_Tc.topLeftCorner<3, 3>(), truth.topLeftCorner<3, 3>())};
}

Eigen::Matrix4d FirstSolve(const std::vector<std::string>& log) {
  const std::vector<double> numbers = NumbersBehind(log, "Mean_Transform_Cam_Tc : ", 0, 5);
  return Eigen::Matrix<double, 4, 4, Eigen::RowMajor>(numbers.data());
}

TEST(Accuracy, OfAPerfectShoot) {
  sim::ShootOptions options;
  options.noiseGreyLevels = 0;
  const sim::Shoot shoot = sim::SimulateShoot(options);
  SCOPED_TRACE("seed " + std::to_string(options.seed));
  const TemporaryFolder folder;
  const Calibrated result = CalibrateShoot(shoot, folder);
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.Transform_Cam_Tc(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 0.0002, 0.02));
  ExpectLens(result, shoot, 0.001);
  EXPECT_NEAR(result.distortion[0], shoot.lens.k1, 0.002);
  EXPECT_NEAR(result.distortion[1], shoot.lens.k2, 0.02);
}

TEST(Accuracy, OfATrackerThatIsNoisy) {
  sim::ShootOptions options;
  options.imageWidth = 1280;
  options.imageHeight = 720;
  options.photographs = 30;
  options.trackerNoiseMm = 1;
  options.trackerNoiseDegrees = 0.1;
  const sim::Shoot shoot = sim::SimulateShoot(options);
  const TemporaryFolder folder;
  const Calibrated result = CalibrateShoot(shoot, folder);
  EXPECT_EQ(result.code, 0);
  // The error of one photograph is 1 mm along each axis from each tracker, and 1.2 mm from 0.1
  // degree of the chart's tracker at the camera's distance of about 0.7 m. The limit is three times
  // the error of the mean over 30 photographs, of all axes together.
  const double metres = 3 * std::sqrt(3 * (2 * 1.0 + 1.2 * 1.2) / 30) / 1000;
  const double degrees = 3 * std::sqrt(3 * 2 * 0.1 * 0.1 / 30);
  EXPECT_THAT(result.Transform_Cam_Tc(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), metres, degrees));
  ExpectLens(result, shoot, 0.002);
}

TEST(Accuracy, IsNotSpoiledByOutliers) {
  sim::ShootOptions options;
  options.imageWidth = 1280;
  options.imageHeight = 720;
  options.outliers = 3;
  const sim::Shoot shoot = sim::SimulateShoot(options);
  const TemporaryFolder folder;
  const Calibrated result = CalibrateShoot(shoot, folder);
  EXPECT_EQ(result.code, 0);
  const std::vector<std::size_t> removed = RemovedIndices(result.log);
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    if (shoot.photographs[i].flaw == sim::Flaw::kSlippedTracker) {
      EXPECT_NE(std::find(removed.begin(), removed.end(), i), removed.end()) << i;
    }
  }
  // The outliers shift the first mean, and the mounting of the second solve is estimated with it.
  // Each outlier shifts it by a twentieth of its slip (40 mm, and 3 degrees at 0.7 m) in a random
  // direction. Twice the sum of three leaves room for chance.
  const double metres = 2 * std::sqrt(3) * std::hypot(0.04, 0.7 * 3 * EIGEN_PI / 180) / 20;
  const double degrees = 2 * std::sqrt(3) * 3.0 / 20;
  EXPECT_THAT(result.Transform_Cam_Tc(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), metres, degrees));
  const Error first = ErrorOf(FirstSolve(result.log), shoot);
  const Error second = ErrorOf(result.Transform_Cam_Tc(), shoot);
  EXPECT_LT(second.metres, first.metres);
  EXPECT_LT(second.degrees, first.degrees);
}

TEST(Accuracy, IsTheSameForEveryFormOfTheDataFile) {
  sim::ShootOptions options = SmallShoot(14);
  const TemporaryFolder plainFolder;
  const Calibrated plain = CalibrateShoot(sim::SimulateShoot(options), plainFolder);
  EXPECT_EQ(plain.code, 0);

  options.windowsLineEnds = true;
  options.byteOrderMark = true;
  const TemporaryFolder windowsFolder;
  const ForeignLocale locale;
  const Calibrated windows = CalibrateShoot(sim::SimulateShoot(options), windowsFolder);
  EXPECT_EQ(windows.transformCamTc, plain.transformCamTc);
  EXPECT_EQ(windows.log, plain.log);
}

TEST(Accuracy, ImprovesOnANominalMountingThatIsWrong) {
  sim::ShootOptions options = SmallShoot(16);
  options.mountingErrorMm = 3;
  options.mountingErrorDegrees = 0.3;
  const sim::Shoot shoot = sim::SimulateShoot(options);
  const TemporaryFolder folder;
  const Calibrated result = CalibrateShoot(shoot, folder);
  EXPECT_EQ(result.code, 0);
  // The error of the mounting goes into the result, but not more than that.
  EXPECT_THAT(result.Transform_Cam_Tc(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 0.008, 0.6));
}

// The refinement of the mounting between the two solves removes a part of its error.
TEST(Accuracy, IsBetterThanThatOfTheFirstSolve) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    sim::ShootOptions options = SmallShoot(13);
    options.seed = seed;
    options.mountingErrorMm = 5;
    options.mountingErrorDegrees = 1;
    const sim::Shoot shoot = sim::SimulateShoot(options);
    const TemporaryFolder folder;
    const Calibrated result = CalibrateShoot(shoot, folder);
    const Error first = ErrorOf(FirstSolve(result.log), shoot);
    const Error second = ErrorOf(result.Transform_Cam_Tc(), shoot);
    EXPECT_LT(second.metres, first.metres);
    EXPECT_LT(second.degrees, first.degrees);
  }
}

TEST(Outputs, AreAppendedToWhatTheHostPassesIn) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot(14));
  const TemporaryFolder folder;
  const Calibrated first = CalibrateShoot(shoot, folder);
  ASSERT_EQ(first.code, 0);
  ASSERT_EQ(fs::remove(fs::u8path(OnlyLogIn(folder.Path().u8string()))), true);

  Calibrated filled;
  filled.normFocal = {0.5, 0.5};
  filled.focalLengthMm = {1000};
  const Calibrated second = Calibrate(ArgumentsFor(shoot, folder), filled);
  EXPECT_EQ(second.normFocal.size(), 4u);
  EXPECT_EQ(second.normFocal[2], first.normFocal[0]);
  // The fields of view come from the first elements, which are the host's: 90 degrees each.
  EXPECT_NEAR(second.fieldOfView[0], 90.00000105, 1e-8);
  EXPECT_NEAR(second.fieldOfView[1], 90.00000105, 1e-8);
  EXPECT_EQ(second.focalLengthMm, (std::vector<double>{1000, first.focalLengthMm[0]}));
  EXPECT_NE(std::find(second.log.begin(), second.log.end(), "FoV_H : 90.000001 degree."),
            second.log.end());
  EXPECT_NE(std::find(second.log.begin(), second.log.end(), "Focal length (mm) : 1000.000000 mm."),
            second.log.end());
}

TEST(ReprojectedImages, AreWrittenForThePhotographsThatAreLeft) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot(14));
  const TemporaryFolder folder;
  fs::create_directories(folder.Path() / "Reproject_photos");
  const Calibrated result = CalibrateShoot(shoot, folder);
  ASSERT_EQ(result.code, 0);
  const std::vector<std::size_t> removed = RemovedIndices(result.log);
  EXPECT_FALSE(removed.empty());
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    const std::string image = folder.File("Reproject_" + shoot.photographs[i].path);
    const bool isLeft = std::find(removed.begin(), removed.end(), i) == removed.end();
    EXPECT_EQ(fs::exists(fs::u8path(image)), isLeft) << i;
    if (isLeft) {
      EXPECT_EQ(ReadImage(image).size(), cv::Size(960, 540));
    }
  }
}

}  // namespace
}  // namespace trackedcam::test
