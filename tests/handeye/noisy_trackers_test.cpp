// The effect of tracker noise on the result of all solving stages.

#include <cmath>

#include "handeye/camera_tracker_transform.h"
#include "handeye/chart_tracker_transform.h"
#include "handeye/outlier_filter.h"
#include "simulator/shoot.h"
#include "support/stage_test.h"
#include "support/transform_matchers.h"

namespace trackedcam {
namespace {

namespace sim = simulator;

struct Error {
  double metres = 0;
  double degrees = 0;
};

class NoisyTrackersTest : public test::StageTest {
 protected:
  Error ErrorOfSolving(int photographs, std::uint64_t seed) {
    sim::ShootOptions options;
    options.photographs = photographs;
    options.trackerNoiseMm = 1;
    options.trackerNoiseDegrees = 0.1;
    options.seed = seed;
    const sim::Shoot shoot = sim::SimulateShoot(options);
    TransformList Transform_Cam_Chart_all = shoot.Matrices(&sim::Photograph::Transform_Cam_Chart);
    TransformList Transform_Base_Tc_all = shoot.Matrices(&sim::Photograph::trackedTc);
    TransformList Transform_Tr_Base_all;
    for (const Transform& Transform_Base_Tr : shoot.Matrices(&sim::Photograph::trackedTr)) {
      Transform_Tr_Base_all.push_back(Transform_Base_Tr.inverse());
    }
    std::vector<std::string> Image_name(Transform_Cam_Chart_all.size());
    std::vector<std::vector<cv::Point2f>> ImageCoordinate(Image_name.size());

    Transform Transform_Chart_Tr = shoot.nominalMounting.Transform().matrix().inverse();
    Transform mean;
    TransformList Transform_Cam_Tc_all;
    std::vector<Eigen::Quaternionf> rotations;
    std::vector<Eigen::Vector3f> translations;
    const auto solve = [&] {
      EXPECT_EQ(
          Calculate_Transform_Cam_Tc(silent, mean, Transform_Cam_Tc_all, rotations, translations,
                                     Transform_Cam_Chart_all, Transform_Chart_Tr,
                                     Transform_Tr_Base_all, Transform_Base_Tc_all),
          0);
    };
    solve();
    EXPECT_EQ(
        RT_Filt_Outlier(silent, Transform_Cam_Tc_all, mean, ImageCoordinate, Image_name,
                        Transform_Tr_Base_all, Transform_Base_Tc_all, Transform_Cam_Chart_all),
        0);
    EXPECT_EQ(Calculate_Transform_Chart_Tr(silent, Transform_Chart_Tr, Transform_Cam_Chart_all,
                                           mean, Transform_Base_Tc_all, Transform_Tr_Base_all),
              0);
    solve();

    const Eigen::Matrix4d truth = shoot.Transform_Cam_Tc.matrix();
    return {(mean - truth).topRightCorner<3, 1>().norm(),
            test::AngleBetweenDeg(mean.topLeftCorner<3, 3>(), truth.topLeftCorner<3, 3>())};
  }

  // The root mean square of the error over shoots.
  Error ErrorOver(int shoots, int photographs) {
    Error squares;
    for (int seed = 1; seed <= shoots; ++seed) {
      const Error error = ErrorOfSolving(photographs, static_cast<std::uint64_t>(seed));
      squares.metres += error.metres * error.metres;
      squares.degrees += error.degrees * error.degrees;
    }
    return {std::sqrt(squares.metres / shoots), std::sqrt(squares.degrees / shoots)};
  }

  RunLog silent;
};

TEST_F(NoisyTrackersTest, DisturbTheResultLessWithMorePhotographs) {
  Error few;
  Error many;
  ConsoleOf([&] {
    few = ErrorOver(20, 15);
    many = ErrorOver(20, 150);
  });
  // Ten times the photographs give about a third of the error; half of it leaves room for chance.
  EXPECT_LT(many.metres, 0.5 * few.metres);
  EXPECT_LT(many.degrees, 0.5 * few.degrees);

  // The error expected from the noise. Translation: 1 mm along each axis from each tracker, and 1.7
  // mm in two directions from 0.1 degree of the chart's tracker at a distance of a metre. Rotation:
  // 0.1 degree about each axis from each tracker.
  const double metres = std::sqrt(3 * 2 * 0.001 * 0.001 + 2 * 0.0017 * 0.0017);
  const double degrees = std::sqrt(3 * 2 * 0.1 * 0.1);
  EXPECT_LT(few.metres, 1.5 * metres / std::sqrt(15));
  EXPECT_LT(few.degrees, 1.5 * degrees / std::sqrt(15));
  EXPECT_LT(many.metres, 1.5 * metres / std::sqrt(150));
  EXPECT_LT(many.degrees, 1.5 * degrees / std::sqrt(150));
}

}  // namespace
}  // namespace trackedcam
