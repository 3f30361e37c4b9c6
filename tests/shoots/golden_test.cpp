// A whole run of one shoot, compared with the results of a plain reference (golden/README.md).

#include <map>
#include <sstream>

#include "shoots/calibrate_shoot.h"
#include "shoots/expected_log.h"
#include "support/log_lines.h"

namespace trackedcam::test {
namespace {

namespace sim = simulator;

using Log = std::vector<std::string>;

sim::Shoot GoldenShoot() {
  sim::ShootOptions options = SmallShoot(16);
  options.seed = 15;
  options.outliers = 2;
  options.trackerNoiseMm = 0.5;
  options.trackerNoiseDegrees = 0.05;
  options.mountingErrorMm = 5;
  options.mountingErrorDegrees = 1;
  return sim::SimulateShoot(options);
}

Log GoldenLines(const std::string& file) {
  std::istringstream content(ReadText(TRACKEDCAM_GOLDEN "/" + file));
  Log lines;
  for (std::string line; std::getline(content, line);) {
    lines.push_back(line);
  }
  return lines;
}

// Each line has a name and its numbers.
std::map<std::string, std::vector<double>> GoldenValues(const std::string& file) {
  std::map<std::string, std::vector<double>> values;
  for (const std::string& line : GoldenLines(file)) {
    std::istringstream words(line);
    std::string name;
    words >> name;
    for (double number = 0; words >> number;) {
      values[name].push_back(number);
    }
  }
  return values;
}

void ExpectNear(const std::vector<double>& values, const std::vector<double>& golden,
                double tolerance) {
  ASSERT_EQ(values.size(), golden.size());
  for (std::size_t i = 0; i < golden.size(); ++i) {
    EXPECT_NEAR(values[i], golden[i], tolerance) << "at " << i;
  }
}

TEST(GoldenRun, FindsWhatTheReferenceFinds) {
  const sim::Shoot shoot = GoldenShoot();
  const TemporaryFolder folder;
  const HostArguments arguments = ArgumentsFor(shoot, folder);
  const Calibrated result = CalibrateShoot(shoot, folder);
  const Log& log = result.log;

  // The reference had the same rows and corners.
  const Log input = GoldenLines("input.txt");
  ExpectedLog rawData;
  for (auto line = std::find(input.begin(), input.end(), "RAW DATA START"); line != input.end();
       ++line) {
    rawData.emplace_back(*line, 0.01);
  }
  const auto start = std::find(log.begin(), log.end(), "RAW DATA START");
  const auto end = std::find(start, log.end(), "Camera calibration start.");
  EXPECT_TRUE(LogReads({start, end}, rawData));
  std::vector<double> mounting = arguments.chartTrackerRotation;
  mounting.insert(mounting.end(), arguments.chartTrackerTranslation.begin(),
                  arguments.chartTrackerTranslation.end());
  ExpectNear(mounting, GoldenValues("input.txt").at("mounting"), 1e-12);

  auto golden = GoldenValues("figures.txt");
  ASSERT_EQ(golden.size(), 10u);
  constexpr double kPixels = 0.02;
  constexpr double kTransform = 2e-5;
  const double width = result.imageSize.at(0);
  const double height = result.imageSize.at(1);
  ExpectNear({result.normFocal[0] * width, result.normFocal[1] * height,
              result.normCenter[0] * width, result.normCenter[1] * height},
             {golden["lens"].begin(), golden["lens"].begin() + 4}, kPixels);
  ExpectNear({result.distortion[0], result.distortion[1]},
             {golden["lens"].begin() + 4, golden["lens"].end()}, 0.001);
  ExpectNear(NumbersBehind(log, "reprojection error : ", 0, 1), golden["lensError"], 0.002);
  ExpectNear(NumbersBehind(log, "Mean_Transform_Cam_Tc : ", 0, 5), golden["firstCamTc"],
             kTransform);
  ExpectNear(NumbersBehind(log, "Average reprojection error : ", 0, 1), golden["firstError"],
             kPixels);
  const std::vector<std::size_t> removed = RemovedIndices(log);
  EXPECT_EQ(std::vector<double>(removed.begin(), removed.end()), golden["removed"]);
  ExpectNear(NumbersBehind(log, "Mean_Transform_Chart_Tr : ", 0, 5), golden["chartTr"], kTransform);
  ExpectNear(result.transformCamTc, golden["camTc"], kTransform);
  ExpectNear(NumbersBehind(log, "Average reprojection error : ", 1, 1), golden["error"], kPixels);
  ExpectNear(NumbersBehind(log, "T_STD : ", 0, 1), golden["spread"], kTransform);
  ExpectNear({static_cast<double>(result.code)}, golden["code"], 0);
}

}  // namespace
}  // namespace trackedcam::test
