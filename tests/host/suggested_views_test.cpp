// The views that the cross-check asks for are photographed, and calibrated with.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/lens_solve.h"
#include "crosscheck/views.h"
#include "host/run/library_stages.h"
#include "simulator/random.h"
#include "simulator/rendering.h"
#include "simulator/tracking.h"
#include "support/image_file.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using crosscheck::kDegree;
using crosscheck::Pose;

// Of Transform_Cam_Tc, at the distance of the charts.
double UncertaintyOf(const crosscheck::CrossCheck& check) {
  double distance = 0;
  for (const crosscheck::PerPhotograph& photograph : check.perPhotograph) {
    distance += photograph.view.distanceMetres / static_cast<double>(check.perPhotograph.size());
  }
  const Eigen::Matrix<double, 6, 1> variances = check.covarianceCamTcTwist.diagonal();
  return std::sqrt(variances.head<3>().sum() * distance * distance + variances.tail<3>().sum());
}

// A photographer who does what the program says, a few degrees and centimetres off.
class Photographer {
 public:
  explicit Photographer(const simulator::Shoot& shoot)
      : shoot_(shoot), random_(shoot.options.seed, simulator::Draw::kSeat) {}

  // Nothing for photographs in which the board is not found.
  std::vector<crosscheck::Photograph> Take(const crosscheck::SuggestedView& view) {
    const test::TemporaryFolder folder;
    const simulator::ShootOptions& options = shoot_.options;
    simulator::Shoot now = shoot_;
    now.photographs.clear();
    std::vector<std::filesystem::path> files;
    for (int i = 0; i < view.views; ++i) {
      now.photographs.push_back(Held(view));
    }
    const simulator::PhotographRenderer renderer(now);
    for (int i = 0; i < view.views; ++i) {
      files.push_back(folder.Path() / (std::to_string(i) + ".png"));
      test::WriteImage(files.back().u8string(), renderer.Render(i));
    }
    testing::internal::CaptureStdout();
    const auto boards = FindBoards(files, {options.chart.cols, options.chart.rows});
    testing::internal::GetCapturedStdout();
    std::vector<crosscheck::Photograph> taken;
    for (std::size_t i = 0; i < boards.size(); ++i) {
      ++asked;
      const simulator::Photograph& truth = now.photographs[i];
      // The true first corner, not that of the other end.
      if (!boards[i].empty() &&
          (boards[i].front() - Eigen::Vector2d(Seen(truth.Transform_Cam_Chart))).norm() < 1) {
        ++found;
        poses.push_back(truth.Transform_Cam_Chart);
        taken.push_back({});
        taken.back().name = "asked" + std::to_string(asked);
        taken.back().camera = test::Reported(truth.trackedTc);
        taken.back().chart = test::Reported(truth.trackedTr);
        taken.back().corners = boards[i];
      }
    }
    return taken;
  }

  int asked = 0;
  int found = 0;
  std::vector<Pose> poses;  // true ones, of those found

 private:
  Eigen::Vector2d Seen(const Pose& Transform_Cam_Chart) const {
    return shoot_.lens.Project(Transform_Cam_Chart * shoot_.options.chart.At(0, 0));
  }

  Pose Noisy(const Pose& pose) {
    const simulator::ShootOptions& options = shoot_.options;
    const Eigen::Vector3d turn = options.trackerNoiseDegrees * kDegree * random_.NormalVector();
    Pose noisy = pose;
    noisy.linear() =
        pose.linear() * Eigen::AngleAxisd(turn.norm(), turn.normalized()).toRotationMatrix();
    noisy.translation() += 1e-3 * options.trackerNoiseMm * random_.NormalVector();
    return noisy;
  }

  simulator::Photograph Held(crosscheck::View view) {
    view.tiltDegrees += random_.Uniform(-3, 3);
    view.rollDegrees += random_.Uniform(-3, 3);
    view.tiltDirectionDegrees += random_.Uniform(-5, 5);
    view.distanceMetres *= random_.Uniform(0.97, 1.03);
    simulator::Photograph held;
    held.Transform_Cam_Chart = crosscheck::PoseOfView(view, shoot_.options.chart.Corners());
    const auto stand = static_cast<std::size_t>(
        random_.Uniform(0, static_cast<double>(shoot_.photographs.size()) - 0.5));
    held.Transform_Base_Tc = shoot_.photographs[stand].Transform_Base_Tc;
    held.Transform_Base_Tr = held.Transform_Base_Tc * shoot_.Transform_Cam_Tc.inverse() *
                             held.Transform_Cam_Chart * shoot_.trueMounting.Transform().inverse();
    held.trackedTc = Noisy(held.Transform_Base_Tc);
    held.trackedTr = Noisy(held.Transform_Base_Tr);
    return held;
  }

  const simulator::Shoot& shoot_;
  simulator::Random random_;
};

// Of several shoots the mean, because the noise is estimated anew from each.
TEST(SuggestedViewsTest, CanBePhotographedAndKeepTheirPromise) {
  constexpr std::uint64_t kShoots = 3;
  int asked = 0;
  int found = 0;
  double promised = 0;  // logarithms
  double kept = 0;
  for (std::uint64_t seed = 61; seed < 61 + kShoots; ++seed) {
    simulator::ShootOptions options = test::FortyNoisy(seed);
    options.photographs = 20;
    options.imageWidth = 1280;
    options.imageHeight = 720;
    const simulator::Shoot simulated = simulator::SimulateShoot(options);
    test::KnownShoot shoot = test::MakeShoot(simulated, 0.03);
    const crosscheck::CrossCheck before = crosscheck::Check(shoot.observations);
    ASSERT_FALSE(before.suggestedViews.empty()) << seed;
    Photographer photographer(simulated);
    for (const crosscheck::SuggestedView& view : before.suggestedViews) {
      for (crosscheck::Photograph& photograph : photographer.Take(view)) {
        photograph.seconds = simulator::kSecondsBetweenPhotographs *
                             static_cast<double>(shoot.observations.photographs.size());
        shoot.observations.photographs.push_back(std::move(photograph));
      }
      promised += std::log(view.gain);
    }
    // The lens of all photographs, as the next calibration solves it.
    std::vector<Pose> poses;
    for (const simulator::Photograph& photograph : simulated.photographs) {
      poses.push_back(photograph.Transform_Cam_Chart);
    }
    poses.insert(poses.end(), photographer.poses.begin(), photographer.poses.end());
    const simulator::Lens lens = test::SolveLens(
        simulated.lens, poses, simulated.options.chart.Corners(), shoot.observations.photographs);
    shoot.observations.lens = {options.imageWidth,
                               options.imageHeight,
                               lens.fx,
                               lens.fy,
                               lens.cx,
                               lens.cy,
                               lens.k1,
                               lens.k2};
    const crosscheck::CrossCheck after = crosscheck::Check(shoot.observations);
    kept += std::log(UncertaintyOf(before) / UncertaintyOf(after));
    asked += photographer.asked;
    found += photographer.found;
  }
  EXPECT_GE(found, 0.95 * asked) << "of " << asked;
  EXPECT_NEAR(std::exp((kept - promised) / kShoots), 1, 0.2)
      << "promised " << std::exp(promised / kShoots) << ", kept " << std::exp(kept / kShoots);
}

}  // namespace
}  // namespace trackedcam::host
