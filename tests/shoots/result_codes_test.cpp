// A shoot for every result code that a call can return, with its whole log.

#include <algorithm>
#include <stdexcept>

#include "shoots/calibrate_shoot.h"
#include "shoots/expected_log.h"
#include "simulator/write_shoot.h"
#include "support/log_lines.h"
#include "support/transform_matchers.h"

namespace trackedcam::test {
namespace {

namespace sim = simulator;

class ResultCodes : public testing::Test {
 protected:
  // Rotates the camera's tracker alternately to both sides about the axis of Transform_Cam_Tc.
  // Neither the filter nor the spread of the translations can see this.
  static void SwingCameraTracker(sim::Shoot& shoot, double degrees) {
    const Eigen::Vector3d axis = Eigen::AngleAxisd(shoot.Transform_Cam_Tc.linear()).axis();
    double angle = degrees * EIGEN_PI / 180;
    for (sim::Photograph& photograph : shoot.photographs) {
      photograph.trackedTc = photograph.trackedTc * Eigen::AngleAxisd(angle, axis);
      angle = -angle;
    }
  }

  void ExpectRun(const sim::Shoot& shoot, int code, const ExpectedLog& verdict) {
    const Calibrated result = CalibrateShoot(shoot, folder);
    EXPECT_EQ(result.code, code);
    EXPECT_TRUE(LogReads(result.log, RunLines(shoot, ArgumentsFor(shoot, folder),
                                              RemovedIndices(result.log), verdict)));
    EXPECT_EQ(result.imageSize.size(), 2u);
    EXPECT_EQ(result.normFocal.size(), 2u);
    EXPECT_EQ(result.normCenter.size(), 2u);
    EXPECT_EQ(result.distortion.size(), 5u);
    EXPECT_EQ(result.transformCamTc.size(), 16u);
    EXPECT_EQ(result.fieldOfView.size(), 2u);
    EXPECT_EQ(result.focalLengthMm.size(), 1u);
  }

  static void ExpectNothingFilled(const Calibrated& result) {
    EXPECT_TRUE(result.imageSize.empty());
    EXPECT_TRUE(result.normFocal.empty());
    EXPECT_TRUE(result.normCenter.empty());
    EXPECT_TRUE(result.distortion.empty());
    EXPECT_TRUE(result.transformCamTc.empty());
    EXPECT_TRUE(result.fieldOfView.empty());
    EXPECT_TRUE(result.focalLengthMm.empty());
  }

  static void ExpectOnlyTheLensFilled(const Calibrated& result) {
    EXPECT_EQ(result.imageSize.size(), 2u);
    EXPECT_EQ(result.distortion.size(), 5u);
    EXPECT_EQ(result.focalLengthMm.size(), 1u);
    EXPECT_TRUE(result.transformCamTc.empty());
  }

  TemporaryFolder folder;
};

TEST_F(ResultCodes, ZeroForPhotographsThatAgree) {
  sim::ShootOptions options = SmallShoot(18);
  options.missing = 1;
  options.notAnImage = 1;
  options.withoutChart = 1;
  options.outliers = 1;
  options.windowsLineEnds = true;
  options.byteOrderMark = true;
  options.invertedQuaternions = true;
  ExpectRun(sim::SimulateShoot(options), 0, {"Camera and Tracker Calibration successful."});
}

TEST_F(ResultCodes, OneForADataFileThatDoesNotOpen) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  const HostArguments arguments = ArgumentsFor(shoot, folder);
  const Calibrated result = Calibrate(arguments);
  EXPECT_EQ(result.code, 1);
  ExpectedLog expected = OpeningLines(arguments);
  expected.emplace_back("Error code 1 : The raw data csv file path is wrong.");
  EXPECT_TRUE(LogReads(result.log, expected));
  ExpectNothingFilled(result);
}

TEST_F(ResultCodes, FourForElevenUsablePhotographs) {
  sim::ShootOptions options = SmallShoot(14);
  options.missing = 1;
  options.notAnImage = 1;
  options.withoutChart = 1;
  const sim::Shoot shoot = sim::SimulateShoot(options);
  const Calibrated result = CalibrateShoot(shoot, folder);
  EXPECT_EQ(result.code, 4);
  ExpectedLog expected = OpeningLines(ArgumentsFor(shoot, folder));
  for (const ExpectedLine& line : CornerLines(shoot)) {
    expected.push_back(line);
  }
  EXPECT_TRUE(LogReads(result.log, expected));
  ExpectNothingFilled(result);
}

TEST_F(ResultCodes, FiveForPhotographsOfTwoLenses) {
  sim::ShootOptions options = SmallShoot();
  sim::Shoot shoot = sim::SimulateShoot(options);
  sim::WriteShoot(shoot, folder.Path());
  // Every second photograph is taken with a lens that stretches it.
  options.lens = sim::DefaultLens(options.imageWidth, options.imageHeight);
  options.lens->fx *= 1.3;
  const TemporaryFolder other;
  sim::WriteShoot(sim::SimulateShoot(options), other.Path());
  for (std::size_t i = 0; i < shoot.photographs.size(); i += 2) {
    const auto path = std::filesystem::u8path(shoot.photographs[i].path);
    std::filesystem::remove(folder.Path() / path);
    std::filesystem::copy_file(other.Path() / path, folder.Path() / path);
  }
  const Calibrated result = Calibrate(ArgumentsFor(shoot, folder));
  EXPECT_EQ(result.code, 5);
  const std::vector<std::string> tail(result.log.end() - 8, result.log.end());
  EXPECT_TRUE(LogReads(
      tail, {"Camera calibration start.", "Fx : # pixel.", "Fy : # pixel.", "Cx : # pixel.",
             "Cy : # pixel.", "reprojection error : #",
             " Camera calibration failed, reporjection too large. (> 1.500000 pixel)",
             "Error code 5: Camera calibration failed, reporjection too large. (> 1.5 pixel)"}));
  ExpectNothingFilled(result);
}

TEST_F(ResultCodes, SixForTranslationsThatSpread) {
  sim::ShootOptions options = SmallShoot();
  options.trackerNoiseMm = 40;
  ExpectRun(sim::SimulateShoot(options), 6,
            {"T_STD too large. ( # > 0.015000 )",
             "Error code 6: Camera tracker calibration failed, Translation STD too large. "
             "(> 1.5cm)"});
}

TEST_F(ResultCodes, SevenForNoRecords) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  sim::WriteShoot(shoot, folder.Path());
  HostArguments arguments = ArgumentsFor(shoot, folder);
  arguments.Num_TrackerData = 0;
  const Calibrated result = Calibrate(arguments);
  EXPECT_EQ(result.code, 7);
  EXPECT_EQ(result.log.back(), "Error code 7: Data size is not same in Cal_Reproj_Error.");
  EXPECT_NE(std::find(result.log.begin(), result.log.end(), "size of Rot_Cam_Chart_vec : 0"),
            result.log.end());
  ExpectOnlyTheLensFilled(result);
}

TEST_F(ResultCodes, ZeroForFewerRecordsThanPhotographs) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  const Calibrated all = CalibrateShoot(shoot, folder);
  ASSERT_EQ(all.code, 0);
  const TemporaryFolder logFolder;
  HostArguments arguments = ArgumentsFor(shoot, folder);
  arguments.Num_TrackerData = 15;
  arguments.logFolder = logFolder.Path().u8string();
  const Calibrated result = Calibrate(arguments);
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.transformCamTc, all.transformCamTc);
  // The log differs in three lines only.
  std::vector<std::string> log = all.log;
  std::replace(log.begin(), log.end(), std::string("Num_TrackerData : 16"),
               std::string("Num_TrackerData : 15"));
  for (const std::string label :
       {"size of Rot_Cam_Chart_vec : ", "size of Trans_Cam_Chart_vec : "}) {
    std::replace(log.begin(), log.end(), label + "16", label + "15");
  }
  EXPECT_EQ(result.log, log);
}

TEST_F(ResultCodes, ZeroForAHeaderThatIsNotRecognised) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  sim::WriteShoot(shoot, folder.Path());
  const HostArguments arguments = ArgumentsFor(shoot, folder);
  WriteFile(arguments.dataPath, " " + ReadFile(arguments.dataPath));
  const Calibrated result = Calibrate(arguments);
  EXPECT_EQ(result.code, 0);
  // The header counts as one of the 16 rows that were announced, and drops out.
  EXPECT_NE(std::find(result.log.begin(), result.log.end(), "size of Rot_Cam_Chart_vec : 15"),
            result.log.end());
  EXPECT_THAT(result.Transform_Cam_Tc(),
              IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 0.001, 0.1));
}

TEST_F(ResultCodes, ThirteenForAxesThatDisagree) {
  sim::ShootOptions options = SmallShoot();
  options.trackerNoiseDegrees = 20;
  const Calibrated result = CalibrateShoot(sim::SimulateShoot(options), folder);
  EXPECT_EQ(result.code, 13);
  const std::vector<std::string> tail(result.log.end() - 6, result.log.end());
  const std::string left = tail[4].substr(tail[4].size() - 6, 1);
  EXPECT_TRUE(left == "0" || left == "1") << tail[4];
  EXPECT_TRUE(LogReads(
      tail, {"STD_R : # degree.", "STD_T : #, #, # meter.",
             "Remove outlier data number : " + std::to_string(16 - std::stoi(left)),
             "Size list : (init) 16", "Filtered data number not enough : " + left + " <= 2",
             "Error code 13: Filtered data not enough (<2)"}));
  ExpectOnlyTheLensFilled(result);
}

TEST_F(ResultCodes, FourteenForAReprojectionErrorThatFails) {
  sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  SwingCameraTracker(shoot, 1.2);
  ExpectRun(shoot, 14,
            {"Reprojection error too large. ( # > 0.016667 )",
             "Error code 14: Reprojection error too large (>18 pixel in 1080p)"});
}

TEST_F(ResultCodes, NinetyNineForAReprojectionErrorThatWarns) {
  sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  SwingCameraTracker(shoot, 0.5);
  ExpectRun(shoot, 99,
            {"Recalibration recommended. ( Reprojection error # > 0.011111 )",
             "Error code 99: Recalibration is recommended."});
}

TEST_F(ResultCodes, NinetyNineForASpreadThatWarns) {
  sim::ShootOptions options = SmallShoot();
  options.trackerNoiseMm = 8.5;
  ExpectRun(sim::SimulateShoot(options), 99,
            {"Recalibration recommended. ( T_STD # > 0.010000 )",
             "Error code 99: Recalibration is recommended."});
}

TEST_F(ResultCodes, MinusOneForAMountingThatIsTooShort) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  const auto expectRefused = [&](HostArguments arguments, const std::string& line) {
    const TemporaryFolder logFolder;
    arguments.logFolder = logFolder.Path().u8string();
    const Calibrated result = Calibrate(arguments);
    EXPECT_EQ(result.code, -1);
    EXPECT_TRUE(
        LogReads(result.log, {"Version : v" TRACKEDCAM_VERSION, "Flag_ModifyQuat : 0",
                              "Num_TrackerData : 16", "Camera Tracker Calibration start.", line}));
    ExpectNothingFilled(result);
  };
  HostArguments rotation = ArgumentsFor(shoot, folder);
  rotation.chartTrackerRotation.pop_back();
  expectRefused(rotation, "chartTrackerRotation has 2 elements, needs 3.");
  HostArguments translation = ArgumentsFor(shoot, folder);
  translation.chartTrackerTranslation.clear();
  expectRefused(translation, "chartTrackerTranslation has 0 elements, needs 3.");
}

TEST_F(ResultCodes, PassOnExceptionsOfTheLibrariesUnderneath) {
  const sim::Shoot shoot = sim::SimulateShoot(SmallShoot());
  sim::WriteShoot(shoot, folder.Path());
  HostArguments negative = ArgumentsFor(shoot, folder);
  negative.Num_TrackerData = -1;
  EXPECT_THROW(Calibrate(negative), std::exception);

  HostArguments notUtf8 = ArgumentsFor(shoot, folder);
  notUtf8.dataPath = folder.File("tracker_data.csv") + "\xE9";
  EXPECT_THROW(Calibrate(notUtf8), std::range_error);
  notUtf8 = ArgumentsFor(shoot, folder);
  notUtf8.logFolder = "\xE9";
  EXPECT_THROW(Calibrate(notUtf8), std::range_error);
}

}  // namespace
}  // namespace trackedcam::test
