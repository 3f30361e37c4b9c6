#include "crosscheck/evidence.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

// Corners come in single precision or with six decimals; none are more accurate than this.
constexpr double kLeastCornerNoise = 1e-3;  // pixels

// The information of all corners about the lens, without what each photograph uses for its pose.
Matrix6d LensCovariance(const Evidence& evidence) {
  Matrix6d information = Matrix6d::Zero();
  for (const std::optional<ChartPose>& pose : evidence.chartPoses) {
    if (pose) {
      const CornerEquations& equations = pose->equations;
      information += equations.byLens - equations.byPoseLens.transpose() *
                                            Ldlt(equations.byPose).Solve(equations.byPoseLens);
    }
  }
  // Pixels and distortion differ by orders of magnitude.
  const Eigen::Matrix<double, 6, 1> scale = information.diagonal().cwiseSqrt().cwiseInverse();
  if (!scale.allFinite()) {
    return Matrix6d::Constant(std::numeric_limits<double>::quiet_NaN());
  }
  const Matrix6d scaled = scale.asDiagonal() * information * scale.asDiagonal();
  const Ldlt solver(scaled);
  if (solver.SmallestPivot() < 1e-12) {
    return Matrix6d::Constant(std::numeric_limits<double>::quiet_NaN());
  }
  const Matrix6d inverse = solver.Inverse();
  const double variance = evidence.cornerNoisePixels * evidence.cornerNoisePixels;
  return variance * scale.asDiagonal() * inverse * scale.asDiagonal();
}

double CornerNoise(const Evidence& evidence) {
  double squares = 0;
  double freedom = -6;  // the lens was fitted to the same corners
  for (const std::optional<ChartPose>& pose : evidence.chartPoses) {
    if (pose) {
      squares += pose->equations.squares;
      freedom += 2.0 * static_cast<double>(evidence.board.size()) - 6;
    }
  }
  return freedom > 0 ? std::max(std::sqrt(squares / freedom), kLeastCornerNoise)
                     : kLeastCornerNoise;
}

bool AreFinite(const std::vector<Eigen::Vector2d>& corners) {
  return std::all_of(corners.begin(), corners.end(),
                     [](const Eigen::Vector2d& corner) { return corner.allFinite(); });
}

}  // namespace

double MeanDistance(const Loops& loops) {
  double sum = 0;
  for (const Loop& loop : loops) {
    sum += loop.Transform_Cam_Chart.translation().norm();
  }
  return sum / static_cast<double>(loops.size());
}

Evidence Gather(const Observations& observations) {
  Evidence evidence;
  evidence.lens = observations.lens;
  evidence.board =
      BoardPoints(observations.boardColumns, observations.boardRows, observations.square);
  for (const Photograph& photograph : observations.photographs) {
    evidence.chartPoses.push_back(
        AreFinite(photograph.corners)
            ? FindChartPose(observations.lens, evidence.board, photograph.corners)
            : std::nullopt);
  }
  evidence.cornerNoisePixels = CornerNoise(evidence);
  evidence.lensCovariance = LensCovariance(evidence);

  const double variance = evidence.cornerNoisePixels * evidence.cornerNoisePixels;
  for (std::size_t i = 0; i < observations.photographs.size(); ++i) {
    const std::optional<Pose> Transform_Tc_Tr =
        TransformOfRow(observations.photographs[i], observations.invertTrackerQuaternions);
    const std::optional<ChartPose>& pose = evidence.chartPoses[i];
    if (!pose || !Transform_Tc_Tr) {
      continue;
    }
    const Ldlt solver(pose->equations.byPose);
    Loop loop;
    loop.photograph = i;
    loop.Transform_Cam_Chart = pose->Transform_Cam_Chart;
    loop.Transform_Tc_Tr = *Transform_Tc_Tr;
    loop.cornerCovariance = variance * solver.Inverse();
    // When the lens changes, the pose follows it to keep the residuals smallest.
    loop.byLens = -solver.Solve(pose->equations.byPoseLens);
    if (loop.cornerCovariance.allFinite() && loop.byLens.allFinite()) {
      evidence.loops.push_back(loop);
    }
  }
  return evidence;
}

BoardDistance::BoardDistance(const Evidence& evidence) : moments_(Eigen::Matrix4d::Zero()) {
  const Eigen::Vector3d last = evidence.board.back();
  for (const double x : {0.0, last.x()}) {
    for (const double y : {0.0, last.y()}) {
      const Eigen::Vector4d point(x, y, 0, 1);
      moments_ += 0.25 * point * point.transpose();
    }
  }
}

double BoardDistance::Squared(const Pose& a, const Pose& b) const {
  const Eigen::Matrix<double, 3, 4> difference = a.matrix().topRows<3>() - b.matrix().topRows<3>();
  return std::max(0.0, (difference * moments_).cwiseProduct(difference).sum());
}

}  // namespace trackedcam::crosscheck
