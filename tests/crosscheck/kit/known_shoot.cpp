#include "crosscheck/kit/known_shoot.h"

#include <algorithm>

#include "crosscheck/chart_pose.h"
#include "crosscheck/evidence.h"
#include "crosscheck/kit/lens_solve.h"
#include "simulator/random.h"

namespace trackedcam::test {
namespace {

using crosscheck::kDegree;
using crosscheck::Pose;
using crosscheck::Twist;

Pose TrueTransformOf(const crosscheck::Mounting& mounting) {
  const auto& angles = mounting.rotationDegrees;
  const auto& metres = mounting.translationMetres;
  return Eigen::Translation3d(metres[0], metres[1], metres[2]) *
         Eigen::AngleAxisd(angles[0] * kDegree, Eigen::Vector3d::UnitX()) *
         Eigen::AngleAxisd(angles[1] * kDegree, Eigen::Vector3d::UnitY()) *
         Eigen::AngleAxisd(angles[2] * kDegree, Eigen::Vector3d::UnitZ()) * Pose::Identity();
}

Pose MeanPose(const std::vector<Pose>& poses) {
  Pose mean = poses.front();
  for (int round = 0; round < 5; ++round) {
    Twist change;
    for (Eigen::Index k = 0; k < 6; ++k) {
      std::vector<double> values;
      for (const Pose& pose : poses) {
        values.push_back(crosscheck::Log(pose * mean.inverse())[k]);
      }
      const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
      std::nth_element(values.begin(), middle, values.end());
      change[k] = *middle;
    }
    mean = crosscheck::Exp(change) * mean;
  }
  return mean;
}

}  // namespace

crosscheck::TrackerPose Reported(const Pose& tracker) {
  Eigen::Matrix3d fix;
  fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  const Eigen::Quaterniond q(Eigen::Matrix3d(tracker.linear() * fix.transpose()));
  return {tracker.translation(), {q.w(), q.x(), q.y(), q.z()}};
}

simulator::ShootOptions FortyPhotographs(std::uint64_t seed) {
  simulator::ShootOptions options;
  options.seed = seed;
  options.photographs = 40;
  return options;
}

simulator::ShootOptions FortyNoisy(std::uint64_t seed) {
  simulator::ShootOptions options = FortyPhotographs(seed);
  options.trackerNoiseMm = 0.3;
  options.trackerNoiseDegrees = 0.05;
  return options;
}

KnownShoot MakeShoot(const simulator::ShootOptions& options, double cornerNoisePixels) {
  return MakeShoot(simulator::SimulateShoot(options), cornerNoisePixels);
}

KnownShoot MakeShoot(const simulator::Shoot& simulated, double cornerNoisePixels) {
  const simulator::ShootOptions& options = simulated.options;
  KnownShoot shoot;
  shoot.Transform_Cam_Tc = simulated.Transform_Cam_Tc;
  shoot.Transform_Tr_Chart = simulated.trueMounting.Transform();
  crosscheck::Observations& observations = shoot.observations;
  observations.boardColumns = options.chart.cols;
  observations.boardRows = options.chart.rows;
  observations.square = options.chart.squareMetres;
  observations.invertTrackerQuaternions = false;
  crosscheck::Mounting mounting;
  for (int i = 0; i < 3; ++i) {
    mounting.rotationDegrees.at(i) = simulated.nominalMounting.anglesDegrees[i];
    mounting.translationMetres.at(i) = simulated.nominalMounting.translationMetres[i];
  }
  observations.mounting = mounting;

  simulator::Random random(options.seed, simulator::Draw::kPicture);
  std::vector<Pose> poses;
  for (const simulator::Photograph& seen : simulated.photographs) {
    crosscheck::Photograph photograph;
    photograph.name = seen.path;
    photograph.seconds = simulator::kSecondsBetweenPhotographs *
                         static_cast<double>(observations.photographs.size());
    photograph.camera = Reported(seen.trackedTc);
    photograph.chart = Reported(seen.trackedTr);
    for (const Eigen::Vector2d& corner : seen.corners) {
      photograph.corners.push_back(corner + cornerNoisePixels * random.NormalVector().head<2>());
    }
    poses.push_back(seen.Transform_Cam_Chart);
    observations.photographs.push_back(photograph);
  }
  // A calibration believes that the board is flat and its squares are square.
  simulator::Chart stated = options.chart;
  stated.bowMetres = stated.stretch = 0;
  simulator::Lens lens = simulated.lens;
  const bool isExact = cornerNoisePixels == 0 && options.chart.bowMetres == 0 &&
                       options.chart.stretch == 0 && lens.p1 == 0 && lens.p2 == 0 && lens.k3 == 0;
  if (!isExact) {
    lens = SolveLens(lens, poses, stated.Corners(), observations.photographs);
  }
  observations.lens = {options.imageWidth,
                       options.imageHeight,
                       lens.fx,
                       lens.fy,
                       lens.cx,
                       lens.cy,
                       lens.k1,
                       lens.k2};
  return shoot;
}

crosscheck::Pose BelievingTheMounting(const KnownShoot& shoot) {
  const crosscheck::Observations& observations = shoot.observations;
  const Pose nominal = TrueTransformOf(*observations.mounting);
  // It does not know of flaws of chart and lens.
  const std::vector<Eigen::Vector3d> flat = crosscheck::Board{
      observations.boardColumns,
      observations.boardRows,
      observations.square,
      {}}.Points();
  std::vector<Pose> said;
  for (const crosscheck::Loop& loop : crosscheck::Gather(observations).loops) {
    const std::vector<Eigen::Vector2d>& corners =
        observations.photographs[loop.photographs.front()].corners;
    const auto seen = crosscheck::FindChartPose(observations.lens, flat, corners);
    if (seen) {
      said.push_back(seen->Transform_Cam_Chart * (loop.Transform_Tc_Tr * nominal).inverse());
    }
  }
  return MeanPose(said);
}

}  // namespace trackedcam::test
