#include "simulator/lens.h"

#include <gtest/gtest.h>
#include <opencv2/calib3d.hpp>

namespace trackedcam::simulator {
namespace {

const Lens kStrongLens = {800, 810, 330, 220, -0.25, 0.08};
const Lens kCrookedLens = {800, 810, 330, 220, -0.25, 0.08, 0.004, -0.007, 0.03};

TEST(LensTest, ProjectsAsTheImageLibraryDoes) {
  const std::vector<cv::Point3d> points = {{0, 0, 1}, {0.3, -0.2, 1.1}, {-0.5, 0.4, 2}};
  for (const Lens& lens : {kStrongLens, kCrookedLens}) {
    const cv::Matx33d camera(lens.fx, 0, lens.cx, 0, lens.fy, lens.cy, 0, 0, 1);
    const cv::Vec<double, 5> distortion(lens.k1, lens.k2, lens.p1, lens.p2, lens.k3);
    std::vector<cv::Point2d> expected;
    cv::projectPoints(points, cv::Vec3d(), cv::Vec3d(), camera, distortion, expected);
    for (std::size_t i = 0; i < points.size(); ++i) {
      const Eigen::Vector2d pixel = lens.Project({points[i].x, points[i].y, points[i].z});
      EXPECT_NEAR(pixel.x(), expected[i].x, 1e-9);
      EXPECT_NEAR(pixel.y(), expected[i].y, 1e-9);
    }
  }
}

TEST(LensTest, TheRayOfAPixelIsSeenAtThatPixel) {
  for (const Lens& lens : {kStrongLens, kCrookedLens}) {
    for (const Eigen::Vector2d& pixel :
         {Eigen::Vector2d(330, 220), {-0.5, -0.5}, {639.5, 479.5}, {12, 400}}) {
      const Eigen::Vector2d ray = lens.Ray(pixel);
      EXPECT_LT((lens.Project({ray.x(), ray.y(), 1}) - pixel).norm(), 1e-9) << pixel;
    }
  }
}

TEST(LensTest, KnowsHowFarItReaches) {
  EXPECT_TRUE(kStrongLens.Reaches({640, 480}));
  // Without k2 the image folds where 1 + 3 * k1 * r² = 0, at r = 1.155: 77 pixels from the centre.
  const Lens folding = {100, 100, 320, 240, -0.25, 0};
  EXPECT_TRUE(folding.Reaches({320 + 76, 240}));
  EXPECT_FALSE(folding.Reaches({320 + 78, 240}));
  // With k3 it folds where 1 - 1.8 * r² + 0.84 * r^6 = 0, at r = 0.873: 52 pixels from the centre.
  // Farther out it unfolds, and 62 pixels are reached again.
  const Lens wavy = {100, 100, 320, 240, -0.6, 0, 0, 0, 0.12};
  EXPECT_TRUE(wavy.Reaches({320 + 51, 240}));
  EXPECT_FALSE(wavy.Reaches({320 + 62, 240}));
}

TEST(LensTest, TheDefaultLensSeesTheSameInPicturesOfAllSizes) {
  const Lens large = DefaultLens(1920, 1080);
  const Lens small = DefaultLens(640, 360);
  const Eigen::Vector3d point(0.2, -0.1, 1);
  const Eigen::Vector2d halfPixel(0.5, 0.5);
  EXPECT_LT(((large.Project(point) + halfPixel) / 3 - (small.Project(point) + halfPixel)).norm(),
            1e-9);
}

}  // namespace
}  // namespace trackedcam::simulator
