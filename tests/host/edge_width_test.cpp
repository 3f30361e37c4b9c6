#include "host/input/edge_width.h"

#include <cmath>

#include <gtest/gtest.h>

#include "simulator/shoot.h"
#include "simulator/write_shoot.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

class EdgeWidth : public testing::Test {
 protected:
  simulator::Shoot Simulate(double blurPixels) {
    simulator::ShootOptions options;
    options.photographs = 3;
    options.imageWidth = 1280;
    options.imageHeight = 720;
    options.blurPixels = blurPixels;
    simulator::Shoot shoot = simulator::SimulateShoot(options);
    simulator::WriteShoot(shoot, folder.Path(), [](int, int) {});
    return shoot;
  }

  test::TemporaryFolder folder;
};

// Of a step that is blurred with a standard deviation, 10 % to 90 % are 2.563 of them apart. A
// pixel adds the deviation of a box, 0.29.
TEST_F(EdgeWidth, IsThatOfTheBlur) {
  for (const double blur : {1.0, 2.0, 4.0}) {
    SCOPED_TRACE(blur);
    const double expected = 2.563 * std::hypot(blur, 0.29);
    const simulator::Shoot shoot = Simulate(blur);
    for (const simulator::Photograph& photograph : shoot.photographs) {
      std::vector<std::array<double, 2>> corners;
      for (const Eigen::Vector2d& corner : photograph.corners) {
        corners.push_back({corner.x(), corner.y()});
      }
      const auto file = folder.Path() / photograph.path;
      const auto atCorners = MeasureSharpness(file, shoot.options.chart.cols, corners);
      ASSERT_TRUE(atCorners && atCorners->edgeWidthPixels);
      EXPECT_NEAR(*atCorners->edgeWidthPixels, expected, 0.15 * expected + 0.2);
      EXPECT_EQ(atCorners->heightPixels, 720);
      EXPECT_FALSE(atCorners->repeatsLastRow);
      // Without corners it smooths by one pixel more, against noise.
      const auto ofAll = MeasureSharpness(file, 0, {});
      ASSERT_TRUE(ofAll && ofAll->edgeWidthPixels);
      const double smoothed = 2.563 * std::hypot(blur, 0.29, 1.0);
      EXPECT_NEAR(*ofAll->edgeWidthPixels, smoothed, 0.25 * smoothed);
    }
  }
}

TEST_F(EdgeWidth, OfAFileThatIsCutShortIsWithRepeatedRows) {
  const simulator::Shoot shoot = Simulate(1);
  const auto file = folder.Path() / shoot.photographs[0].path;
  std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
  const auto sharpness = MeasureSharpness(file, 0, {});
  ASSERT_TRUE(sharpness);
  EXPECT_TRUE(sharpness->repeatsLastRow);
}

TEST_F(EdgeWidth, OfWhatIsNoPhotographIsNothing) {
  test::WriteFile(folder.File("a.jpg"), "no picture");
  test::WriteFile(folder.File("b.jpg"), "");
  for (const char* name : {"a.jpg", "b.jpg", "missing.jpg"}) {
    EXPECT_FALSE(MeasureSharpness(folder.Path() / name, 9, {})) << name;
  }
}

}  // namespace
}  // namespace trackedcam::host
