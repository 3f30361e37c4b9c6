#include <cmath>

#include <Eigen/Geometry>
#include <gmock/gmock.h>

#include "crosscheck/corner_model.h"
#include "simulator/lens.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::IsNear;

const Lens kLens = {1920, 1080, 1500, 1510, 950, 545, -0.12, 0.03, 0.002, -0.001, 0.01};
const simulator::Lens kTruth = {1500, 1510, 950, 545, -0.12, 0.03, 0.002, -0.001, 0.01};
const Eigen::Vector3d kPoints[] = {{0, 0, 1}, {0.3, -0.2, 1.1}, {-0.6, 0.35, 0.9}, {1, 1, 4}};

TEST(ProjectionTest, ShowsPointsWhereTheSimulatorDoes) {
  for (const Eigen::Vector3d& point : kPoints) {
    EXPECT_THAT(Project(kLens, point), IsNear(kTruth.Project(point), 1e-10));
    EXPECT_THAT(ProjectWithDerivative(kLens, point).pixel, IsNear(kTruth.Project(point), 1e-10));
  }
}

TEST(ProjectionTest, DerivativesAreThoseOfDifferences) {
  for (const Eigen::Vector3d& point : kPoints) {
    const Projection projection = ProjectWithDerivative(kLens, point);
    for (int axis = 0; axis < 3; ++axis) {
      const Eigen::Vector3d step = 1e-6 * Eigen::Vector3d::Unit(axis);
      const Eigen::Vector2d difference =
          (kTruth.Project(point + step) - kTruth.Project(point - step)) / 2e-6;
      EXPECT_THAT(projection.byPoint.col(axis), IsNear(difference, 1e-4));
    }
    double simulator::Lens::*const values[] = {
        &simulator::Lens::fx, &simulator::Lens::fy, &simulator::Lens::cx,
        &simulator::Lens::cy, &simulator::Lens::k1, &simulator::Lens::k2,
        &simulator::Lens::p1, &simulator::Lens::p2, &simulator::Lens::k3};
    const auto byLens = PixelByLens(kLens, point);
    for (int k = 0; k < kAllLensParameters; ++k) {
      simulator::Lens more = kTruth;
      simulator::Lens less = kTruth;
      more.*values[k] += 1e-5;
      less.*values[k] -= 1e-5;
      const Eigen::Vector2d difference = (more.Project(point) - less.Project(point)) / 2e-5;
      EXPECT_THAT(byLens.col(k), IsNear(difference, 1e-4)) << "value " << k;
    }
  }
}

TEST(ProjectionTest, ARayIsSeenAtItsPixel) {
  for (double x = 0; x < 1920; x += 137) {
    for (double y = 0; y < 1080; y += 119) {
      const auto ray = Ray(kLens, {x, y});
      ASSERT_TRUE(ray);
      EXPECT_THAT(kTruth.Project(ray->homogeneous()), IsNear(Eigen::Vector2d(x, y), 1e-8));
    }
  }
  const auto centre = Ray(kLens, {950, 545});
  ASSERT_TRUE(centre);
  EXPECT_EQ(*centre, Eigen::Vector2d::Zero());
  EXPECT_FALSE(Ray(kLens, {std::nan(""), 545}));
}

TEST(ProjectionTest, ThereIsNoRayBeyondTheFold) {
  Lens folding = kLens;
  folding.k1 = -1;
  folding.k2 = folding.k3 = folding.p1 = folding.p2 = 0;
  // Radius r (1 - r²) is 0.385 at most.
  EXPECT_TRUE(Ray(folding, {950 + 0.37 * 1500, 545}));
  EXPECT_FALSE(Ray(folding, {950 + 0.40 * 1500, 545}));
  EXPECT_FALSE(Ray(folding, {std::nan(""), 545}));
}

}  // namespace
}  // namespace trackedcam::crosscheck
