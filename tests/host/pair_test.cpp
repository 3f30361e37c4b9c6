#include "host/pair/pair.h"

#include <algorithm>
#include <utility>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host/calibrate.h"
#include "host/input/shoot_data.h"
#include "host/pair/paired_shoot.h"
#include "host/recording/pose_formats.h"
#include "simulator/recording.h"
#include "simulator/write_recording.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::HasSubstr;
using Json = nlohmann::json;

// A film of 24 s in 300 small frames, and what was recorded with it.
class PairTest : public testing::Test {
 protected:
  static simulator::RecordingOptions Small() {
    simulator::RecordingOptions small;
    small.shoot.seed = 7;
    small.shoot.imageWidth = 480;
    small.shoot.imageHeight = 270;
    small.shoot.trackerNoiseMm = 0.3;
    small.shoot.trackerNoiseDegrees = 0.05;
    small.seconds = 24;
    small.framesPerSecond = 12.5;
    small.delayMs = 60;
    return small;
  }

  static void SetUpTestSuite() {
    shared = new test::TemporaryFolder;
    options = new simulator::RecordingOptions(Small());
    recording = new simulator::Recording(simulator::SimulateRecording(*options));
    simulator::WriteRecording(*recording, shared->Path() / "film");
  }

  static void TearDownTestSuite() {
    delete recording;
    delete options;
    delete shared;
  }

  static PairInputs Inputs() {
    const auto film = shared->Path() / "film";
    PairInputs inputs;
    inputs.film = ReadFilm(film / "frames", film / "frames" / "times.csv");
    inputs.camera = ReadPoseRecording(film / "camera_poses.txt");
    inputs.chart = ReadPoseRecording(film / "chart_poses.txt");
    inputs.board = {options->shoot.chart.cols, options->shoot.chart.rows};
    inputs.squareMetres = options->shoot.chart.squareMetres;
    return inputs;
  }

  static PairReport Run(const PairInputs& inputs) {
    return Pair(inputs, [](std::size_t, std::size_t) {});
  }

  static std::string ErrorOf(const PairInputs& inputs) {
    try {
      Run(inputs);
    } catch (const InputError& error) {
      return error.what();
    }
    return "";
  }

  static test::TemporaryFolder* shared;
  static simulator::RecordingOptions* options;
  static simulator::Recording* recording;
  test::TemporaryFolder folder;
};

test::TemporaryFolder* PairTest::shared;
simulator::RecordingOptions* PairTest::options;
simulator::Recording* PairTest::recording;

TEST_F(PairTest, GivesAShootThatCalibratesToTheTransform) {
  const PairInputs inputs = Inputs();
  const PairReport report = Run(inputs);
  WritePairedShoot(inputs, report, {}, folder.Path() / "shoot");
  host::Inputs calibration;
  calibration.data = folder.Path() / "shoot" / "tracker_data.csv";
  calibration.workingFolder = calibration.data.parent_path();
  calibration.logFolder = folder.Path() / "logs";
  calibration.sensorMm = {36, 20.25};
  calibration.board = inputs.board;
  calibration.squareMetres = inputs.squareMetres;
  const Report result =
      Calibrate(calibration, ReadShootData(calibration.data, {}, {}), [](const Progress&) {});
  ASSERT_TRUE(result.crossCheck);
  const Eigen::Vector3d off = result.crossCheck->Transform_Cam_Tc.topRightCorner<3, 1>() -
                              recording->Transform_Cam_Tc.translation();
  EXPECT_LT(1e3 * off.norm(), 4);
}

TEST_F(PairTest, GivesAnAccountOfEachFrame) {
  PairInputs inputs = Inputs();
  inputs.photographs = 15;
  // A second without poses of the chart.
  std::vector<TimedPose>& poses = inputs.chart->poses;
  poses.erase(poses.begin() + 1000, poses.begin() + 1120);
  const PairReport report = Run(inputs);
  EXPECT_EQ(report.chart->gaps, 1U);
  EXPECT_EQ(report.camera.gaps, 0U);
  EXPECT_THAT(report.rows, testing::SizeIs(15));
  ASSERT_EQ(report.frames.size(), inputs.film.frames.size());
  for (std::size_t i = 0; i < report.frames.size(); ++i) {
    const double stamp = report.clock.PoseTime(inputs.film.frames[i].seconds);
    const double begin = inputs.chart->firstStamp - report.firstStamp;
    if (stamp > begin + poses[999].seconds && stamp < begin + poses[1000].seconds) {
      EXPECT_THAT(report.frames[i], testing::AnyOf(FrameState::kNoPoses, FrameState::kNoBoard))
          << i;
    }
  }
  WritePairedShoot(inputs, report, {}, folder.Path() / "shoot");
  const auto json = Json::parse(test::ReadFile(folder.File("shoot/pairing.json")));
  EXPECT_NEAR(json["delaySeconds"].get<double>(), 0.060, 0.002);
  EXPECT_LT(json["delayHalfMs"].get<double>(), 2);
  EXPECT_EQ(json["chartPoses"]["gaps"], 1);
  EXPECT_EQ(json["frames"].size(), report.frames.size());
  std::size_t chosen = 0;
  for (const Json& frame : json["frames"]) {
    chosen += frame["state"] == "chosen" ? 1 : 0;
  }
  EXPECT_EQ(chosen, 15U);
}

TEST_F(PairTest, WritesWhatACalibrationNeedsBesides) {
  const PairInputs inputs = Inputs();
  const PairReport report = Run(inputs);
  ShootSettings settings;
  settings.sensorMm = {23.5, 13.2};
  settings.chartRotationDegrees = {12, -8, 5};
  settings.chartTranslationMetres = {0.1, -0.05, 0.02};
  WritePairedShoot(inputs, report, settings, folder.Path() / "shoot");
  const std::string config = test::ReadFile(folder.File("shoot/shoot.toml"));
  EXPECT_THAT(config, HasSubstr("sensor = \"23.5x13.2\""));
  EXPECT_THAT(config, HasSubstr("chart-rotation = \"12,-8,5\""));
  EXPECT_THAT(config, HasSubstr("chart-translation = \"0.1,-0.05,0.02\""));
}

// The camera as the chart's tracker sees it: as if that had never moved.
TEST_F(PairTest, TakesAChartThatDidNotMove) {
  PairInputs inputs = Inputs();
  inputs.chart.reset();
  const simulator::Path path = PathOf(*options);
  for (TimedPose& timed : inputs.camera.poses) {
    const double stamp = inputs.camera.firstStamp + timed.seconds;
    const simulator::Moment moment = path.At(stamp - 1e-3 * options->delayMs);
    const Eigen::Isometry3d pose = moment.Transform_Base_Tr.inverse() * moment.Transform_Base_Tc;
    const Eigen::Quaterniond q(pose.linear());
    timed.pose = {pose.translation(), {q.w(), q.x(), q.y(), q.z()}};
  }
  const PairReport report = Run(inputs);
  EXPECT_FALSE(report.chart);
  EXPECT_NEAR(report.DelaySeconds(), 0.060, 0.002);
  for (const RecordedRow& row : report.rows) {
    EXPECT_EQ(row.chart, (TrackerPose{0, 0, 0, 1, 0, 0, 0}));
  }
}

TEST_F(PairTest, SaysThatTheFilesAreSwapped) {
  PairInputs inputs = Inputs();
  std::swap(inputs.camera, *inputs.chart);
  EXPECT_THAT(ErrorOf(inputs), HasSubstr("swapped"));
}

TEST_F(PairTest, PrintsBothSpansWhereTheyDoNotOverlap) {
  PairInputs inputs = Inputs();
  inputs.camera.poses.resize(inputs.camera.poses.size() / 4);
  EXPECT_THAT(ErrorOf(inputs), testing::AllOf(HasSubstr("overlap"), HasSubstr("1.00 to 24.92 s"),
                                              HasSubstr("to 6.5")));
}

TEST_F(PairTest, SaysThatTheMotionIsAnother) {
  simulator::RecordingOptions other = *options;
  other.shoot.seed = 8;
  PairInputs inputs = Inputs();
  const simulator::Recording recorded = simulator::SimulateRecording(other);
  for (std::size_t i = 0; i < inputs.camera.poses.size(); ++i) {
    const Eigen::Quaterniond q(recorded.camera[i].pose.linear());
    inputs.camera.poses[i].pose.quaternionWxyz << q.w(), q.x(), q.y(), q.z();
  }
  EXPECT_THAT(ErrorOf(inputs), HasSubstr("nod the camera three times"));
}

TEST_F(PairTest, SaysThatNothingMoves) {
  PairInputs inputs = Inputs();
  const auto seen = std::find_if(recording->frames.begin(), recording->frames.end(),
                                 [](const auto& frame) { return frame.isChartInside; });
  const std::string name =
      inputs.film.frames[static_cast<std::size_t>(seen - recording->frames.begin())].name;
  for (FilmFrame& frame : inputs.film.frames) {
    frame.name = name;
  }
  EXPECT_THAT(ErrorOf(inputs), HasSubstr("nod the camera three times"));
}

TEST_F(PairTest, SaysThatTheBoardIsNotThere) {
  PairInputs inputs = Inputs();
  inputs.board = {7, 5};
  EXPECT_THAT(ErrorOf(inputs), HasSubstr("--board"));
}

}  // namespace
}  // namespace trackedcam::host
