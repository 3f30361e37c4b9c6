#include "crosscheck/kit/shoot_flaws.h"

#include <cmath>
#include <random>

namespace trackedcam::test {
namespace {

using crosscheck::kDegree;
using crosscheck::Pose;

// The camera and its tracker move; the tracker's noise stays.
void ShowChartAt(const Pose& Transform_Cam_Chart, const simulator::Shoot& shoot,
                 simulator::Photograph& photograph) {
  const Pose noise = photograph.Transform_Base_Tc.inverse() * photograph.trackedTc;
  const Pose Transform_Base_Chart = photograph.Transform_Base_Tc *
                                    shoot.Transform_Cam_Tc.inverse() *
                                    photograph.Transform_Cam_Chart;
  photograph.Transform_Cam_Chart = Transform_Cam_Chart;
  photograph.Transform_Base_Tc =
      Transform_Base_Chart * Transform_Cam_Chart.inverse() * shoot.Transform_Cam_Tc;
  photograph.trackedTc = photograph.Transform_Base_Tc * noise;
  const std::vector<Eigen::Vector3d> corners = shoot.options.chart.Corners();
  for (std::size_t i = 0; i < corners.size(); ++i) {
    photograph.corners[i] = shoot.lens.Project(Transform_Cam_Chart * corners[i]);
  }
}

void StepBack(const simulator::Shoot& shoot, simulator::Photograph& photograph, double factor) {
  Pose pose = photograph.Transform_Cam_Chart;
  pose.translation() *= factor;
  ShowChartAt(pose, shoot, photograph);
}

}  // namespace

void Displace(crosscheck::TrackerPose& tracker, const Pose& displacement) {
  const Eigen::Vector4d& q = tracker.quaternionWxyz;
  const Eigen::Quaterniond rotation(q[0], q[1], q[2], q[3]);
  tracker.position += rotation * displacement.translation();
  const Eigen::Quaterniond turned = rotation * Eigen::Quaterniond(displacement.linear());
  tracker.quaternionWxyz = {turned.w(), turned.x(), turned.y(), turned.z()};
}

void MoveTracker(KnownShoot& shoot, crosscheck::Tracker tracker, std::size_t before, double mm,
                 double degrees) {
  const Pose moved = Eigen::Translation3d(mm * 1e-3 * Eigen::Vector3d(2, -1, 2) / 3) *
                     Eigen::AngleAxisd(degrees * kDegree, Eigen::Vector3d(1, 2, -2) / 3) *
                     Pose::Identity();
  auto& photographs = shoot.observations.photographs;
  for (std::size_t i = before; i < photographs.size(); ++i) {
    const bool isCamera = tracker == crosscheck::Tracker::kCamera;
    Displace(isCamera ? photographs[i].camera : photographs[i].chart, moved);
  }
}

void Creep(KnownShoot& shoot, double mm) {
  auto& photographs = shoot.observations.photographs;
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(photographs.size() - 1);
    Displace(photographs[i].camera,
             Pose(Eigen::Translation3d(share * mm * 1e-3 * Eigen::Vector3d::UnitX())));
  }
}

void StepBack(simulator::Shoot& shoot, double factor) {
  for (simulator::Photograph& photograph : shoot.photographs) {
    StepBack(shoot, photograph, factor);
  }
}

void MixDistances(simulator::Shoot& shoot, double factor) {
  for (std::size_t i = 1; i < shoot.photographs.size(); i += 2) {
    StepBack(shoot, shoot.photographs[i], factor);
  }
}

void FattenTails(simulator::Shoot& shoot) {
  std::mt19937 random(static_cast<unsigned>(shoot.options.seed));
  std::chi_squared_distribution<> chiSquared(3);
  const auto fatten = [&](const Pose& truth, Pose& tracked) {
    const double times = std::sqrt(3 / chiSquared(random));
    tracked = truth * crosscheck::Exp(times * crosscheck::Log(truth.inverse() * tracked));
  };
  for (simulator::Photograph& photograph : shoot.photographs) {
    fatten(photograph.Transform_Base_Tc, photograph.trackedTc);
    fatten(photograph.Transform_Base_Tr, photograph.trackedTr);
  }
}

void TurnLess(simulator::Shoot& shoot, double share) {
  const Eigen::Vector3d middle = shoot.options.chart.Centre();
  const Eigen::Matrix3d first = shoot.photographs.front().Transform_Cam_Chart.linear();
  for (simulator::Photograph& photograph : shoot.photographs) {
    Pose pose = photograph.Transform_Cam_Chart;
    const Eigen::Vector3d place = pose * middle;
    Eigen::AngleAxisd turn(Eigen::Matrix3d(first.transpose() * pose.linear()));
    turn.angle() *= share;
    pose.linear() = first * turn.toRotationMatrix();
    pose.translation() = place - pose.linear() * middle;
    ShowChartAt(pose, shoot, photograph);
  }
}

void MisstateSquares(KnownShoot& shoot, double factor) {
  shoot.observations.square /= factor;
}

}  // namespace trackedcam::test
