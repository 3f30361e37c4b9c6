#include "host/calibrate.h"

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
    return Calibrate(inputs, [](const Progress&) {});
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

// Its zeros for a mounting that nobody stated must not look like a result.
TEST_F(CalibrateTest, FailsWithoutAMountingWhereItCannotBeFound) {
  const Report report = WithoutMounting(Small(5));
  EXPECT_FALSE(report.mountingIsStated);
  EXPECT_EQ(report.firstRun, nullptr);
  EXPECT_EQ(report.verdict.level, Level::kFailed);
  EXPECT_EQ(report.verdict.words,
            "The mounting of the chart's tracker was not stated, and cannot be found from this "
            "shoot. Fewer than 12 photographs can be used.");
  EXPECT_THAT(report.verdict.advice, HasSubstr("at least 12 times"));
}

TEST_F(CalibrateTest, CalibratesWithTheMountingThatItFound) {
  const Report report = WithoutMounting(Small(14));
  EXPECT_FALSE(report.mountingIsStated);
  ASSERT_NE(report.firstRun, nullptr);
  ASSERT_TRUE(report.inputs.mounting);
  EXPECT_NE(report.verdict.level, Level::kFailed);
  EXPECT_NE(report.run.folder, report.firstRun->run.folder);
}

}  // namespace
}  // namespace trackedcam::host
