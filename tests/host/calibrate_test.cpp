#include "host/calibrate.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "simulator/shoot.h"
#include "simulator/write_shoot.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::HasSubstr;

class CalibrateTest : public testing::Test {
 protected:
  Report WithoutMounting(const simulator::ShootOptions& options) {
    const simulator::Shoot shoot = simulator::SimulateShoot(options);
    simulator::WriteShoot(shoot, folder.Path() / "shoot", [](int, int) {});
    Inputs inputs;
    inputs.data = folder.Path() / "shoot" / "tracker_data.csv";
    inputs.workingFolder = inputs.data.parent_path();
    inputs.logFolder = folder.Path() / "logs";
    inputs.sensorMm = {options.sensorWidthMm, options.sensorHeightMm};
    inputs.board = {options.chart.cols, options.chart.rows};
    inputs.squareMetres = options.chart.squareMetres;
    return Calibrate(inputs);
  }

  static Report Calibrate(const Inputs& inputs) {
    return host::Calibrate(inputs, ReadShootData(inputs.data, {}), [](const Progress&) {});
  }

  static simulator::ShootOptions Small(int photographs) {
    simulator::ShootOptions options;
    options.photographs = photographs;
    options.imageWidth = 640;
    options.imageHeight = 360;
    return options;
  }

  test::TemporaryFolder folder;
};

// A run with zeros for an unknown mounting must not look like a result.
TEST_F(CalibrateTest, FailsWithoutAMountingWhereItCannotBeFound) {
  const Report report = WithoutMounting(Small(5));
  EXPECT_FALSE(report.mountingIsStated);
  EXPECT_EQ(report.firstRun, nullptr);
  EXPECT_EQ(report.verdict.level, Level::kFailed);
  EXPECT_THAT(report.verdict.message, HasSubstr(' ' + VerdictOf(kTooFewPhotographs).message));
  EXPECT_EQ(report.verdict.advice, VerdictOf(kTooFewPhotographs).advice);
}

TEST_F(CalibrateTest, CalibratesWithTheMountingThatItFound) {
  const Report report = WithoutMounting(Small(14));
  EXPECT_FALSE(report.mountingIsStated);
  ASSERT_NE(report.firstRun, nullptr);
  ASSERT_TRUE(report.inputs.mounting);
  EXPECT_NE(report.verdict.level, Level::kFailed);
  EXPECT_NE(report.run.folder, report.firstRun->run.folder);
}

// What the first run left out keeps its row and place, and says why.
TEST_F(CalibrateTest, ListsEveryRowInTheSecondRun) {
  simulator::ShootOptions options = Small(20);
  options.outliers = 2;
  options.missing = 1;
  const Report report = WithoutMounting(options);
  ASSERT_NE(report.firstRun, nullptr);
  ASSERT_EQ(report.photographs.size(), 20U);
  ASSERT_EQ(report.firstRun->photographs.size(), 20U);
  EXPECT_EQ(CountInState(report.photographs, PhotographState::kLeftOutByCrossCheck), 2U);
  EXPECT_EQ(CountInState(report.photographs, PhotographState::kNotLoaded), 1U);
  for (std::size_t i = 0; i < report.photographs.size(); ++i) {
    const PhotographEntry& entry = report.photographs[i];
    EXPECT_EQ(entry.row, i + 2);
    EXPECT_EQ(entry.name, report.firstRun->photographs[i].name);
    EXPECT_EQ(entry.reason.empty(), entry.state == PhotographState::kUsed) << entry.name;
    if (entry.inRun) {
      EXPECT_EQ(report.run.record.photographs.at(*entry.inRun).path, entry.name);
    }
    if (entry.state == PhotographState::kUsed) {
      EXPECT_THAT(report.run.images.at(*entry.inRun).u8string(),
                  HasSubstr(std::filesystem::u8path(entry.name).filename().u8string()));
      EXPECT_TRUE(report.run.record.photographs[*entry.inRun].errorPixels);
    }
  }
}

// A file that changes after it was checked does not change what is calibrated.
TEST_F(CalibrateTest, CalibratesWhatWasRead) {
  const Report before = WithoutMounting(Small(14));
  const ShootData shoot = ReadShootData(before.inputs.data, {});
  test::WriteFile(before.inputs.data.u8string(), "Time\n0,photos/img_000.jpg\n");
  Inputs inputs = before.inputs;
  inputs.mounting = std::nullopt;
  const Report after = host::Calibrate(inputs, shoot, [](const Progress&) {});
  EXPECT_EQ(after.run.outputs.transformCamTc, before.run.outputs.transformCamTc);
}

}  // namespace
}  // namespace trackedcam::host
