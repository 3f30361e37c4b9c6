#include "simulator/chart.h"

#include <gtest/gtest.h>

#include "simulator/shoot.h"

namespace trackedcam::simulator {
namespace {

// The default chart: 9 x 6 inner corners of 30 mm, so 240 mm x 150 mm.
Eigen::Vector3d Corner(const Chart& chart, int col, int row) {
  return chart.Corners().at(static_cast<std::size_t>(row * chart.cols + col));
}

TEST(ChartTest, IsFlatAndSquareByDefault) {
  const Chart chart;
  EXPECT_EQ(Corner(chart, 0, 0), Eigen::Vector3d(0, 0, 0));
  EXPECT_EQ(Corner(chart, 8, 0), Eigen::Vector3d(0.24, 0, 0));
  EXPECT_EQ(Corner(chart, 8, 5), Eigen::Vector3d(0.24, 0.15, 0));
}

TEST(ChartTest, AStretchedPrintHasWiderSquares) {
  Chart chart;
  chart.stretch = 0.005;
  const double width = (Corner(chart, 5, 3) - Corner(chart, 4, 3)).norm();
  const double height = (Corner(chart, 4, 3) - Corner(chart, 4, 2)).norm();
  EXPECT_NEAR(width / height, 1.005, 1e-12);
  EXPECT_NEAR(height, 0.03, 1e-15);
}

// z points into the board. Half the bow is that of the width, half that of the height.
TEST(ChartTest, TheMiddleOfABowedChartIsBehindItsOutermostCorners) {
  Chart chart;
  chart.bowMetres = 0.002;
  EXPECT_NEAR(chart.At(4, 2.5).z(), 0.002, 1e-15);
  EXPECT_NEAR(chart.At(4, 0).z(), 0.001, 1e-15);
  EXPECT_NEAR(chart.At(8, 2.5).z(), 0.001, 1e-15);
  // A quarter of the width from the middle, a parabola has fallen by a quarter of its depth.
  EXPECT_NEAR(chart.At(6, 2.5).z(), 0.00175, 1e-15);
  for (const auto& [col, row] : {std::pair(0, 0), {8, 0}, {0, 5}, {8, 5}}) {
    EXPECT_NEAR(Corner(chart, col, row).z(), 0, 1e-15);
  }
  EXPECT_EQ(Corner(chart, 6, 4).head<2>(), Corner(Chart(), 6, 4).head<2>());
}

// With a lens of 1800 pixels and no distortion, a point at x, y, z of frame Cam is 1800 x / z and
// 1800 y / z pixels from the principal point.
TEST(ChartTest, PhotographsShowTheFlawedChart) {
  ShootOptions options;
  options.lens = Lens{1800, 1800, 960, 540, 0, 0};
  options.chart.stretch = 0.01;
  options.chart.bowMetres = 0.005;
  const Shoot shoot = SimulateShoot(options);
  // Column 8, row 2: 242.4 mm and 60 mm from the first corner. From the middle it is all of half
  // the width and a fifth of half the height away: 5 mm * (1 - (1 + 0.04) / 2) deep.
  const Eigen::Vector4d corner(0.2424, 0.06, 0.0024, 1);
  for (const Photograph& photograph : shoot.photographs) {
    const Eigen::Vector4d seen = photograph.Transform_Cam_Chart.matrix() * corner;
    EXPECT_NEAR(photograph.corners.at(2 * 9 + 8).x(), 960 + 1800 * seen.x() / seen.z(), 1e-9);
    EXPECT_NEAR(photograph.corners.at(2 * 9 + 8).y(), 540 + 1800 * seen.y() / seen.z(), 1e-9);
  }
}

TEST(ChartTest, PhotographsShowTheWholeFlawedPaper) {
  for (const std::uint64_t seed : {1, 2, 3}) {
    ShootOptions options;
    options.seed = seed;
    options.chart.stretch = 0.1;
    options.chart.bowMetres = -0.0075;
    const Shoot shoot = SimulateShoot(options);
    for (const Photograph& photograph : shoot.photographs) {
      for (const Eigen::Vector3d& point : options.chart.PaperOutline()) {
        const Eigen::Vector2d pixel = shoot.lens.Project(photograph.Transform_Cam_Chart * point);
        EXPECT_GT(pixel.minCoeff(), 0) << "seed " << seed;
        EXPECT_LT(pixel.x(), 1919) << "seed " << seed;
        EXPECT_LT(pixel.y(), 1079) << "seed " << seed;
      }
    }
  }
}

}  // namespace
}  // namespace trackedcam::simulator
