#include <gtest/gtest.h>
#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include "simulator/rendering.h"

namespace trackedcam::simulator {
namespace {

ShootOptions ThreePhotographs() {
  ShootOptions options;
  options.photographs = 3;
  options.imageWidth = 640;
  options.imageHeight = 360;
  return options;
}

std::vector<cv::Point2f> FindCorners(const cv::Mat& picture, const Chart& chart) {
  const int flags =
      cv::CALIB_CB_ADAPTIVE_THRESH + cv::CALIB_CB_NORMALIZE_IMAGE + cv::CALIB_CB_FAST_CHECK;
  std::vector<cv::Point2f> corners;
  if (!cv::findChessboardCorners(picture, {chart.cols, chart.rows}, corners, flags)) {
    return {};
  }
  cv::cornerSubPix(picture, corners, {13, 13}, {-1, -1}, {cv::TermCriteria::MAX_ITER, 30, 0});
  return corners;
}

double MeanDistance(const std::vector<cv::Point2f>& found,
                    const std::vector<Eigen::Vector2d>& exact) {
  double sum = 0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    sum += (Eigen::Vector2d(found[i].x, found[i].y) - exact[i]).norm();
  }
  return sum / static_cast<double>(found.size());
}

// Mean and standard deviation of the difference between two images, grey levels.
std::pair<double, double> Difference(const cv::Mat& a, const cv::Mat& b) {
  cv::Mat difference;
  cv::subtract(a, b, difference, {}, CV_32F);
  cv::Scalar mean;
  cv::Scalar spread;
  cv::meanStdDev(difference, mean, spread);
  return {mean[0], spread[0]};
}

TEST(PhotographRendererTest, EveryCornerIsFoundInItsPlace) {
  ShootOptions options;
  options.noiseGreyLevels = 0;
  const Shoot shoot = SimulateShoot(options);
  SCOPED_TRACE("seed " + std::to_string(options.seed));
  const PhotographRenderer renderer(shoot);
  double sum = 0;
  for (int i = 0; i < options.photographs; ++i) {
    SCOPED_TRACE(i);
    const auto found = FindCorners(renderer.Render(i), options.chart);
    const auto& exact = shoot.photographs[static_cast<std::size_t>(i)].corners;
    ASSERT_EQ(found.size(), exact.size());
    const double distance = MeanDistance(found, exact);
    EXPECT_LT(distance, 0.03);
    sum += distance;
  }
  EXPECT_LT(sum / options.photographs, 0.02);
}

TEST(PhotographRendererTest, ChartsOfOtherShapesAreFoundInOrder) {
  for (const auto& [cols, rows] : {std::pair(8, 5), {7, 5}, {8, 6}, {6, 9}}) {
    ShootOptions options = ThreePhotographs();
    options.chart.cols = cols;
    options.chart.rows = rows;
    const Shoot shoot = SimulateShoot(options);
    const PhotographRenderer renderer(shoot);
    for (int i = 0; i < options.photographs; ++i) {
      SCOPED_TRACE(testing::Message() << cols << "x" << rows << ", photograph " << i);
      const auto found = FindCorners(renderer.Render(i), options.chart);
      const auto& exact = shoot.photographs[static_cast<std::size_t>(i)].corners;
      ASSERT_EQ(found.size(), exact.size());
      EXPECT_LT(MeanDistance(found, exact), 0.5);
    }
  }
}

// Each flaw moves corners by far more than the detector errs.
TEST(PhotographRendererTest, TheCornersOfAFlawedChartAreWhereItsShapePutsThem) {
  ShootOptions options;
  options.photographs = 2;
  options.imageWidth = 1280;
  options.imageHeight = 720;
  options.noiseGreyLevels = 0;
  const Shoot flat = SimulateShoot(options);
  const auto expectShown = [&](const Shoot& flawed) {
    const PhotographRenderer renderer(flawed);
    for (int i = 0; i < options.photographs; ++i) {
      SCOPED_TRACE(i);
      const auto found = FindCorners(renderer.Render(i), options.chart);
      const Photograph& photograph = flawed.photographs[static_cast<std::size_t>(i)];
      ASSERT_EQ(found.size(), photograph.corners.size());
      EXPECT_LT(MeanDistance(found, photograph.corners), 0.03);
      EXPECT_GT(MeanDistance(found, flat.photographs[static_cast<std::size_t>(i)].corners), 0.3);
    }
  };
  for (const double bowMetres : {0.007, -0.004}) {
    SCOPED_TRACE(bowMetres);
    ShootOptions bowed = options;
    bowed.chart.bowMetres = bowMetres;
    expectShown(SimulateShoot(bowed));
  }
  ShootOptions stretched = options;
  stretched.chart.stretch = 0.01;
  expectShown(SimulateShoot(stretched));
  ShootOptions crooked = options;
  crooked.lens = DefaultLens(options.imageWidth, options.imageHeight);
  crooked.lens->p1 = 0.004;
  crooked.lens->p2 = -0.003;
  crooked.lens->k3 = 0.3;
  expectShown(SimulateShoot(crooked));
}

TEST(PhotographRendererTest, APhotographWithoutChartShowsNone) {
  ShootOptions options = ThreePhotographs();
  options.withoutChart = options.photographs;
  const Shoot shoot = SimulateShoot(options);
  const PhotographRenderer renderer(shoot);
  for (int i = 0; i < options.photographs; ++i) {
    EXPECT_TRUE(FindCorners(renderer.Render(i), options.chart).empty());
  }
}

TEST(PhotographRendererTest, APictureDoesNotDependOnThoseBefore) {
  const Shoot shoot = SimulateShoot(ThreePhotographs());
  const PhotographRenderer forward(shoot);
  const cv::Mat first = forward.Render(0);
  const cv::Mat second = forward.Render(1);
  const PhotographRenderer backward(shoot);
  EXPECT_EQ(cv::norm(backward.Render(1), second, cv::NORM_INF), 0);
  EXPECT_EQ(cv::norm(backward.Render(0), first, cv::NORM_INF), 0);
  EXPECT_GT(cv::norm(first, second, cv::NORM_INF), 0);
}

TEST(PhotographRendererTest, NoiseHasTheStatedSpread) {
  ShootOptions options = ThreePhotographs();
  options.noiseGreyLevels = 0;
  const cv::Mat clean = PhotographRenderer(SimulateShoot(options)).Render(0);
  options.noiseGreyLevels = 4;
  const cv::Mat noisy = PhotographRenderer(SimulateShoot(options)).Render(0);
  const auto [mean, spread] = Difference(noisy, clean);
  EXPECT_NEAR(mean, 0, 0.1);
  EXPECT_NEAR(spread, 4, 0.1);
}

TEST(PhotographRendererTest, UnevenLightDarkensOneSide) {
  ShootOptions options = ThreePhotographs();
  options.noiseGreyLevels = 0;
  options.unevenLight = 0;
  const cv::Mat even = PhotographRenderer(SimulateShoot(options)).Render(0);
  options.unevenLight = 0.5;
  const cv::Mat uneven = PhotographRenderer(SimulateShoot(options)).Render(0);
  cv::Mat ratio;
  cv::divide(uneven, even, ratio, 1, CV_32F);
  cv::blur(ratio, ratio, {9, 9});
  double darkest = 0;
  double lightest = 0;
  cv::minMaxLoc(ratio, &darkest, &lightest);
  EXPECT_NEAR(darkest, 0.5, 0.03);
  EXPECT_NEAR(lightest, 1, 0.03);
}

TEST(PhotographRendererTest, BlurSoftensEdges) {
  ShootOptions options = ThreePhotographs();
  options.noiseGreyLevels = 0;
  const auto sharpest = [&](double blur) {
    options.blurPixels = blur;
    cv::Mat slope;
    cv::Sobel(PhotographRenderer(SimulateShoot(options)).Render(0), slope, CV_32F, 1, 0);
    return cv::norm(slope, cv::NORM_INF);
  };
  EXPECT_GT(sharpest(0), sharpest(1));
  EXPECT_GT(sharpest(1), 1.5 * sharpest(3));
}

}  // namespace
}  // namespace trackedcam::simulator
