#include "host/lens_files/lens_model.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "host/input/inputs.h"

namespace trackedcam::host {
namespace {

using Eigen::Vector2d;

CalibrationOutputs Lens(const std::vector<double>& distortion) {
  CalibrationOutputs outputs;
  outputs.imageSize = {1920, 1080};
  outputs.normFocal = {0.9, 1.6};
  outputs.normCenter = {0.51, 0.48};
  outputs.distortion = distortion;
  return outputs;
}

TEST(LensModel, IsInPixels) {
  const LensModel lens = LensModelOf(Lens({-0.1, 0.02, 0.001, -0.002, 0.003}));
  EXPECT_EQ(lens.width, 1920);
  EXPECT_EQ(lens.height, 1080);
  EXPECT_EQ(lens.focal, Vector2d(1728, 1728));
  EXPECT_DOUBLE_EQ(lens.centre.x(), 979.2);
  EXPECT_DOUBLE_EQ(lens.centre.y(), 518.4);
  // By hand: r2 = 0.25, radial = 1 - 0.025 + 0.00125 + 0.000046875, tangential x
  // 2 p1 x y + p2 (r2 + 2 x2) = 0.00024 - 0.00086, y p1 (r2 + 2 y2) + 2 p2 x y = 0.00057 - 0.00048.
  const Vector2d seen = Distorted(lens, Vector2d(0.3, 0.4));
  EXPECT_NEAR(seen.x(), 0.976296875 * 0.3 - 0.00062, 1e-15);
  EXPECT_NEAR(seen.y(), 0.976296875 * 0.4 + 0.00009, 1e-15);
}

TEST(LensModel, UndistortsWhatItDistorts) {
  for (const std::vector<double>& distortion : {std::vector<double>{0, 0, 0, 0, 0},
                                                {-0.3, 0.1, 0.001, -0.002, 0},
                                                {0.2, 0, 0, 0, 0.05},
                                                {-0.12, 0.03, 0.0011, -0.0007, 0.004}}) {
    const LensModel lens = LensModelOf(Lens(distortion));
    for (double x = -0.7; x < 0.7; x += 0.1) {
      for (double y = -0.5; y < 0.5; y += 0.1) {
        const auto point = Undistorted(lens, Distorted(lens, Vector2d(x, y)));
        ASSERT_TRUE(point) << x << ' ' << y;
        EXPECT_LT((*point - Vector2d(x, y)).norm(), 1e-12);
      }
    }
  }
}

TEST(LensModel, KnowsWhereTheDistortionTurnsBack) {
  // r (1 - r2 / 3) is largest at r = 1, where it is 2 / 3.
  const LensModel lens = LensModelOf(Lens({-1.0 / 3, 0, 0, 0, 0}));
  EXPECT_NEAR(lens.foldRadius, 1, 1e-9);
  ASSERT_TRUE(Undistorted(lens, Vector2d(0, 0.666)));
  EXPECT_LT(Undistorted(lens, Vector2d(0, 0.666))->norm(), 1);
  EXPECT_FALSE(Undistorted(lens, Vector2d(0, 0.667)));
  EXPECT_FALSE(Undistorted(lens, Vector2d(3, 3)));
  // It turns back, and out again: the second half must not be found.
  const LensModel twice = LensModelOf(Lens({-0.5, 0.1, 0, 0, 0}));
  EXPECT_NEAR(twice.foldRadius, 1, 1e-9);  // 1 - 1.5 r2 + 0.5 r4
  EXPECT_FALSE(Undistorted(twice, Vector2d(1, 1)));
  EXPECT_EQ(LensModelOf(Lens({0.1, 0, 0, 0, 0})).foldRadius,
            std::numeric_limits<double>::infinity());
}

TEST(LensModel, RefusesWhatIsNoLens) {
  const auto refused = [](const CalibrationOutputs& outputs) {
    EXPECT_THROW(LensModelOf(outputs), InputError);
  };
  const CalibrationOutputs right = Lens({0, 0, 0, 0, 0});
  EXPECT_NO_THROW(LensModelOf(right));
  refused({});
  refused(Lens({0, 0, 0, 0}));
  refused(Lens({1e4, 0, 0, 0, 0}));
  refused(Lens({std::nan(""), 0, 0, 0, 0}));
  for (const std::vector<double>& size :
       {std::vector<double>{0, 1080}, {1920.5, 1080}, {-1920, -1080}, {1e9, 1e9}, {1920, 1e300}}) {
    CalibrationOutputs outputs = right;
    outputs.imageSize = size;
    refused(outputs);
  }
  CalibrationOutputs outputs = right;
  outputs.normFocal = {0.9, 0};
  refused(outputs);
  outputs = right;
  outputs.normCenter = {std::numeric_limits<double>::infinity(), 0.5};
  refused(outputs);
}

}  // namespace
}  // namespace trackedcam::host
