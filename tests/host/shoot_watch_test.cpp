#include "host/watch/shoot_watch.h"

#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>

#include "host/findings/finding.h"
#include "host/watch/watch_text.h"
#include "simulator/shoot.h"
#include "simulator/write_shoot.h"
#include "support/image_file.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kPhotographs = 14;

simulator::ShootOptions Options() {
  simulator::ShootOptions options;
  options.photographs = kPhotographs;
  options.imageWidth = 640;
  options.imageHeight = 360;
  options.trackerNoiseMm = 0.2;
  options.trackerNoiseDegrees = 0.03;
  return options;
}

// A shoot whose rows are appended by a recorder.
class ShootWatchTest : public testing::Test {
 protected:
  void SetUp() override {
    shoot_ = simulator::SimulateShoot(Options());
    simulator::WriteShoot(shoot_, folder_.Path());
    std::istringstream lines(simulator::TrackerDataText(shoot_));
    std::getline(lines, header_);
    for (std::string line; std::getline(lines, line);) {
      rows_.push_back(line);
    }
    SetData("");
  }

  Inputs InputsOf() const {
    Inputs inputs;
    inputs.data = folder_.Path() / "tracker_data.csv";
    inputs.workingFolder = folder_.Path();
    inputs.logFolder = folder_.Path() / "log";
    inputs.sensorMm = {shoot_.options.sensorWidthMm, shoot_.options.sensorHeightMm};
    inputs.board = {shoot_.options.chart.cols, shoot_.options.chart.rows};
    inputs.squareMetres = shoot_.options.chart.squareMetres;
    return inputs;
  }

  void SetData(const std::string& text) {
    data_ = text;
    test::WriteFile(folder_.File("tracker_data.csv"), data_);
  }
  void Append(const std::string& text) { SetData(data_ + text); }
  void AppendRows(std::size_t first, std::size_t end) {
    for (std::size_t i = first; i < end; ++i) {
      Append(rows_[i] + '\n');
    }
  }
  fs::path Photograph(std::size_t i) const {
    std::string number = std::to_string(i);
    number.insert(0, 3 - number.size(), '0');
    return folder_.Path() / "photos" / ("img_" + number + ".jpg");
  }

  test::TemporaryFolder folder_;
  simulator::Shoot shoot_;
  std::string header_;
  std::vector<std::string> rows_;
  std::string data_;
};

TEST_F(ShootWatchTest, WaitsForCompleteLines) {
  ShootWatch watch(InputsOf(), {1, 0.1});
  EXPECT_THAT(watch.Update(), IsEmpty());
  Append(header_ + '\n');
  EXPECT_THAT(watch.Update(), IsEmpty());
  Append(rows_[0].substr(0, 40));
  EXPECT_THAT(watch.Update(), IsEmpty());
  Append(rows_[0].substr(40));
  EXPECT_THAT(watch.Update(), IsEmpty());
  Append("\n");
  EXPECT_THAT(watch.Update(), ElementsAre(0U));
  EXPECT_EQ(watch.Progress().photographs.at(0).state, WatchedState::kBoardFound);
  EXPECT_EQ(watch.Progress().withBoard, 1U);
  EXPECT_FALSE(watch.Progress().known);
  EXPECT_THAT(watch.Update(), IsEmpty());
}

TEST_F(ShootWatchTest, WaitsForPhotographs) {
  ShootWatch watch(InputsOf(), {1, 0.1});
  const fs::path photograph = Photograph(0);
  const std::string bytes = test::ReadFile(photograph.u8string());
  fs::remove(photograph);
  AppendRows(0, 1);
  EXPECT_THAT(watch.Update(), ElementsAre(0U));
  EXPECT_EQ(watch.Progress().photographs.at(0).state, WatchedState::kAwaited);
  test::WriteFile(photograph.u8string(), bytes.substr(0, bytes.size() / 2));  // being written
  EXPECT_THAT(watch.Update(), IsEmpty());
  test::WriteFile(photograph.u8string(), bytes);
  EXPECT_THAT(watch.Update(), ElementsAre(0U));
  EXPECT_EQ(watch.Progress().photographs.at(0).state, WatchedState::kBoardFound);
}

// Each of them must not stop the others.
TEST_F(ShootWatchTest, SaysWhyAPhotographDoesNotCount) {
  ShootWatch watch(InputsOf(), {1, 0.1});
  AppendRows(0, 1);
  std::string withoutPose = rows_[1];
  withoutPose.replace(withoutPose.find(',', withoutPose.find(',') + 1), std::string::npos,
                      ",0,0,0,0,0,0,0,0,0,0,0,0,0,0");
  Append(withoutPose + '\n');
  test::WriteFile(Photograph(2).u8string(), "no photograph");
  test::WriteImage(Photograph(3).u8string(), cv::Mat(360, 640, CV_8U, cv::Scalar(128)));
  test::WriteImage(Photograph(4).u8string(), cv::Mat(720, 1280, CV_8U, cv::Scalar(128)));
  AppendRows(2, 6);
  EXPECT_THAT(watch.Update(), ElementsAre(0U, 1U, 2U, 3U, 4U, 5U));
  std::vector<WatchedState> states;
  for (const WatchedPhotograph& photograph : watch.Progress().photographs) {
    states.push_back(photograph.state);
  }
  EXPECT_THAT(states, ElementsAre(WatchedState::kBoardFound, WatchedState::kNoPose,
                                  WatchedState::kUnreadable, WatchedState::kNoBoard,
                                  WatchedState::kOtherSize, WatchedState::kBoardFound));
  EXPECT_EQ(watch.Progress().withBoard, 2U);
}

TEST_F(ShootWatchTest, SaysWhenItIsEnough) {
  ShootWatch watch(InputsOf(), {3, 0.4});
  AppendRows(0, 8);
  EXPECT_EQ(watch.Update().size(), 8U);  // a burst is solved once
  EXPECT_FALSE(IsEnough(watch.Progress()));
  ASSERT_TRUE(watch.Progress().stillNeeded);
  EXPECT_GE(*watch.Progress().stillNeeded, kLeastPhotographs - 8);
  AppendRows(8, kPhotographs);
  watch.Update();
  const ShootProgress& progress = watch.Progress();
  ASSERT_TRUE(progress.known);
  EXPECT_TRUE(IsEnough(progress)) << progress.known->mm << " mm, " << progress.known->degrees;
  const Eigen::Matrix4d truth = shoot_.Transform_Cam_Tc.matrix();
  const Eigen::Vector3d off = (progress.check->Transform_Cam_Tc - truth).topRightCorner<3, 1>();
  EXPECT_LT(1e3 * off.cwiseAbs().maxCoeff(), 2 * progress.known->mm);
  EXPECT_THAT(ProgressText(progress, {3, 0.4}).back(), HasSubstr("Enough"));
}

TEST_F(ShootWatchTest, AsksForMoreAndForAView) {
  ShootWatch watch(InputsOf(), {0.1, 0.01});
  AppendRows(0, kPhotographs);
  watch.Update();
  ASSERT_TRUE(watch.Progress().known);
  EXPECT_GT(*watch.Progress().stillNeeded, 20U);
  EXPECT_THAT(ProgressText(watch.Progress(), {0.1, 0.01}),
              testing::Contains(HasSubstr("Next: 1 photograph from")));
}

TEST_F(ShootWatchTest, NamesThePhotographThatContradictsTheOthers) {
  ShootWatch watch(InputsOf(), {3, 0.4});
  AppendRows(0, kPhotographs - 1);
  // The row of another moment.
  const std::string& name = rows_.back();
  const std::size_t poses = rows_[2].find(',', rows_[2].find(',') + 1);
  const std::size_t own = name.find(',', name.find(',') + 1);
  Append(name.substr(0, own) + rows_[2].substr(poses) + '\n');
  watch.Update();
  const WatchedPhotograph& last = watch.Progress().photographs.back();
  ASSERT_TRUE(last.checked);
  EXPECT_FALSE(watch.Progress().check->perPhotograph.at(*last.checked).used);
  EXPECT_THAT(PhotographText(watch.Progress(), kPhotographs - 1), HasSubstr("contradicts"));
}

TEST_F(ShootWatchTest, RefusesWhatIsImpossible) {
  Inputs inputs = InputsOf();
  inputs.board = {2, 2};
  EXPECT_THROW(ShootWatch(inputs, {1, 0.1}), InputError);
  EXPECT_THROW(ShootWatch(InputsOf(), {0, 0.1}), InputError);
  ShootWatch watch(InputsOf(), {1, 0.1});
  fs::remove(folder_.Path() / "tracker_data.csv");
  EXPECT_THROW(watch.Update(), InputError);
}

}  // namespace
}  // namespace trackedcam::host
