#include "crosscheck/kit/information.h"

#include <array>
#include <cmath>
#include <functional>

#include <Eigen/Cholesky>
#include <Eigen/Geometry>
#include <Eigen/QR>

#include "simulator/lens.h"

namespace trackedcam::test {
namespace {

using Eigen::Isometry3d;
using Eigen::MatrixXd;
using Eigen::VectorXd;
using simulator::Lens;
using simulator::Photograph;
using simulator::Shoot;

constexpr Eigen::Index kPose = 6;
constexpr Eigen::Index kTransforms = 12;
constexpr Eigen::Index kLens = 6;
constexpr Eigen::Index kShared = kTransforms + kLens;

// Rotated and displaced by small amounts: radians, metres.
Isometry3d Moved(const VectorXd& by) {
  const Eigen::Vector3d rotation = by.head<3>();
  Isometry3d pose = Isometry3d::Identity();
  if (rotation.norm() > 0) {
    pose.linear() = Eigen::AngleAxisd(rotation.norm(), rotation.normalized()).toRotationMatrix();
  }
  pose.translation() = by.tail<3>();
  return pose;
}

VectorXd Movement(const Isometry3d& pose) {
  const Eigen::AngleAxisd rotation(pose.linear());
  VectorXd by(kPose);
  by << rotation.angle() * rotation.axis(), pose.translation();
  return by;
}

MatrixXd Derivative(const std::function<VectorXd(const VectorXd&)>& function, Eigen::Index size) {
  constexpr double kStep = 1e-6;
  MatrixXd derivative;
  for (Eigen::Index k = 0; k < size; ++k) {
    const VectorXd step = kStep * VectorXd::Unit(size, k);
    const VectorXd column = (function(step) - function(-step)) / (2 * kStep);
    derivative.conservativeResize(column.size(), size);
    derivative.col(k) = column;
  }
  return derivative;
}

// What is seen in one photograph, by unknowns that differ from the truth by a little.
class Seen {
 public:
  Seen(const Shoot& flawless, std::size_t index, double cornerNoisePixels)
      : shoot_(flawless), seen_(flawless.photographs[index]), noise_(cornerNoisePixels) {
    constexpr double kRadians = EIGEN_PI / 180;
    const VectorXd noise = (VectorXd(2 * kPose) << VectorXd::Constant(
                                3, shoot_.options.trackerNoiseDegrees * kRadians),
                            VectorXd::Constant(3, shoot_.options.trackerNoiseMm * 1e-3),
                            VectorXd::Constant(3, shoot_.options.trackerNoiseDegrees * kRadians),
                            VectorXd::Constant(3, shoot_.options.trackerNoiseMm * 1e-3))
                               .finished();
    const MatrixXd byNoise =
        Derivative([&](const VectorXd& by) { return Loop(by, VectorXd::Zero(kPose + kShared)); },
                   2 * kPose) *
        noise.asDiagonal();
    loopNoise_ = (byNoise * byNoise.transpose()).llt();
  }

  // In standard deviations: by the pose of the chart, both transforms, and the lens.
  MatrixXd ByUnknowns() const {
    return Derivative(
        [&](const VectorXd& by) {
          Lens lens = shoot_.lens;
          lens.fx += by[18];
          lens.fy += by[19];
          lens.cx += by[20];
          lens.cy += by[21];
          lens.k1 += by[22];
          lens.k2 += by[23];
          return Whitened(Corners(lens, shoot_.options.chart, by.head(kPose)),
                          Loop(VectorXd::Zero(2 * kPose), by));
        },
        kPose + kShared);
  }

  // The same by the flaw.
  VectorXd ByFlaw(const Shoot& flawed, std::size_t index) const {
    const Photograph& other = flawed.photographs[index];
    VectorXd byTrackers(2 * kPose);
    byTrackers << Movement(other.Transform_Base_Tc.inverse() * other.trackedTc),
        Movement(other.Transform_Base_Tr.inverse() * other.trackedTr);
    const VectorXd still = VectorXd::Zero(kPose + kShared);
    return Whitened(Corners(flawed.lens, flawed.options.chart, still.head(kPose)) -
                        Corners(shoot_.lens, shoot_.options.chart, still.head(kPose)),
                    Loop(byTrackers, still) - Loop(VectorXd::Zero(2 * kPose), still));
  }

 private:
  VectorXd Corners(const Lens& lens, const simulator::Chart& chart, const VectorXd& byPose) const {
    const auto points = chart.Corners();
    VectorXd pixels(2 * static_cast<Eigen::Index>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
      pixels.segment<2>(2 * static_cast<Eigen::Index>(i)) =
          lens.Project(seen_.Transform_Cam_Chart * Moved(byPose) * points[i]);
    }
    return pixels;
  }

  // Zero where trackers, transforms and the pose of the chart agree.
  VectorXd Loop(const VectorXd& byTrackers, const VectorXd& by) const {
    const Isometry3d Transform_Base_Tc = seen_.Transform_Base_Tc * Moved(byTrackers.head(kPose));
    const Isometry3d Transform_Base_Tr = seen_.Transform_Base_Tr * Moved(byTrackers.tail(kPose));
    const Isometry3d Transform_Cam_Chart =
        Moved(by.segment(kPose, kPose)) * shoot_.Transform_Cam_Tc * Transform_Base_Tc.inverse() *
        Transform_Base_Tr * shoot_.trueMounting.Transform() * Moved(by.segment(2 * kPose, kPose));
    return Movement((seen_.Transform_Cam_Chart * Moved(by.head(kPose))).inverse() *
                    Transform_Cam_Chart);
  }

  VectorXd Whitened(const VectorXd& corners, const VectorXd& loop) const {
    VectorXd whitened(corners.size() + kPose);
    whitened << corners / noise_, loopNoise_.matrixL().solve(loop);
    return whitened;
  }

  const Shoot& shoot_;
  const Photograph& seen_;
  double noise_;
  Eigen::LLT<MatrixXd> loopNoise_;
};

// The triangle that says the same of the unknowns.
MatrixXd Triangle(const MatrixXd& rows) {
  const Eigen::HouseholderQR<MatrixXd> qr(rows);
  return qr.matrixQR().topRows(rows.cols()).triangularView<Eigen::Upper>();
}

}  // namespace

double StandardErrorsAtBest(const Shoot& flawed, const Shoot& flawless, double cornerNoisePixels) {
  // What is left of the flaw where each photograph has chosen the pose of its chart, ...
  MatrixXd shared = MatrixXd::Zero(kShared + 1, kShared + 1);
  for (std::size_t i = 0; i < flawless.photographs.size(); ++i) {
    const Seen seen(flawless, i, cornerNoisePixels);
    const MatrixXd byUnknowns = seen.ByUnknowns();
    MatrixXd rows(byUnknowns.rows(), byUnknowns.cols() + 1);
    rows << byUnknowns, seen.ByFlaw(flawed, i);
    MatrixXd both(2 * (kShared + 1), kShared + 1);
    both << shared, Triangle(rows).bottomRightCorner(kShared + 1, kShared + 1);
    shared = Triangle(both);
  }
  // ... and all of them together lens and transforms.
  return std::abs(shared(kShared, kShared));
}

}  // namespace trackedcam::test
