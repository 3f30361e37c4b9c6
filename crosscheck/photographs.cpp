#include "crosscheck/photographs.h"

#include <cmath>

#include "crosscheck/projection.h"
#include "crosscheck/slips.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kDegree = EIGEN_PI / 180;

Eigen::Vector3d MiddleOf(const std::vector<Eigen::Vector3d>& board) {
  return 0.5 * (board.front() + board.back());
}

// In a tracker's own frame: what it would have to be moved by for the corners to fit.
Twist OffInFrame(const Pose& Transform_Cam_Tracker, const Twist& residual) {
  return Adjoint(Transform_Cam_Tracker.inverse()) * residual;
}

void SetOff(const Loop& loop, std::size_t index, const Solution& solution,
            PerPhotograph& photograph) {
  const Twist residual = Residual(loop, index, solution);
  const Twist camera = OffInFrame(solution.Transform_Cam_Tc, residual);
  const Twist chart =
      OffInFrame(solution.Transform_Cam_Tc * loop.Transform_Tc_Tr, residual);
  const Twist& less = camera.tail<3>().norm() < chart.tail<3>().norm() ? camera : chart;
  photograph.mm = less.tail<3>().norm() * 1e3;
  photograph.degrees = residual.head<3>().norm() / kDegree;
}

void SetPrediction(const Evidence& evidence, const Pose& predicted,
                   const std::vector<Eigen::Vector2d>& corners, PerPhotograph& photograph) {
  double squares = 0;
  for (std::size_t i = 0; i < evidence.board.size(); ++i) {
    photograph.predicted.push_back(Project(evidence.lens, predicted * evidence.board[i]));
    squares += (photograph.predicted.back() - corners[i]).squaredNorm();
  }
  photograph.predictedPixels = std::sqrt(squares / static_cast<double>(evidence.board.size()));
}

bool Fits(const Loop& loop, const Pose& Transform_Cam_Chart, const Pose& Transform_Tc_Tr,
          std::size_t index, const Solution& solution) {
  Loop other = loop;
  other.Transform_Cam_Chart = Transform_Cam_Chart;
  other.Transform_Tc_Tr = Transform_Tc_Tr;
  const Twist residual = Residual(other, index, solution);
  const double disagreement = residual.dot(CovarianceOf(other, solution).llt().solve(residual));
  return disagreement <= DisagreementLimit();
}

// Another photograph's trackers fit by chance where the camera stood still: those of a neighbour
// that fits itself do not count.
void FindReason(const Loops& loops, std::size_t index, const Solution& solution,
                const Pose& halfTurn, PerPhotograph& photograph) {
  const Loop& loop = loops[index];
  if (Fits(loop, loop.Transform_Cam_Chart * halfTurn, loop.Transform_Tc_Tr, index, solution)) {
    photograph.why = "firstCornerAtOtherEnd";
    return;
  }
  for (std::size_t other = 0; other < loops.size(); ++other) {
    if (other != index && Fits(loop, loop.Transform_Cam_Chart, loops[other].Transform_Tc_Tr,
                               index, solution)) {
      photograph.why = "fitsTrackersOf";
      photograph.fitsTrackersOf = loops[other].photograph;
      return;
    }
  }
}

}  // namespace

View ViewOf(const Pose& Transform_Cam_Chart, const Eigen::Vector3d& middle) {
  // Towards the camera: the board's z axis points into it.
  const Eigen::Vector3d normal = -Transform_Cam_Chart.linear().col(2);
  const Eigen::Vector3d along = Transform_Cam_Chart.linear().col(0);
  View view;
  view.tiltDegrees = std::acos(std::min(1.0, std::abs(normal.z()))) / kDegree;
  view.tiltDirectionDegrees = std::atan2(normal.y(), normal.x()) / kDegree;
  view.rollDegrees = std::atan2(along.y(), along.x()) / kDegree;
  view.distanceMetres = (Transform_Cam_Chart * middle).norm();
  return view;
}

std::vector<PerPhotograph> PhotographsAgainst(const Observations& observations,
                                              const Evidence& evidence, const Solution* solution) {
  const Eigen::Vector3d middle = MiddleOf(evidence.board);
  std::vector<PerPhotograph> all(observations.photographs.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    const double unknown = std::nan("");
    all[i].mm = all[i].degrees = all[i].predictedPixels = unknown;
    all[i].why = "notNumbers";
    if (const std::optional<ChartPose>& pose = evidence.chartPoses[i]) {
      all[i].Transform_Cam_Chart = pose->Transform_Cam_Chart.matrix();
      all[i].view = ViewOf(pose->Transform_Cam_Chart, middle);
    } else {
      all[i].why = "noPose";
    }
  }
  for (std::size_t index = 0; index < evidence.loops.size(); ++index) {
    const Loop& loop = evidence.loops[index];
    PerPhotograph& photograph = all[loop.photograph];
    photograph.why = std::nullopt;
    photograph.Transform_Tc_Tr = loop.Transform_Tc_Tr.matrix();
    if (solution == nullptr) {
      continue;
    }
    photograph.used = solution->used[index];
    SetOff(loop, index, *solution, photograph);
    Pose predicted = Predicted(loop, index, *solution);
    SetPrediction(evidence, predicted, observations.photographs[loop.photograph].corners,
                  photograph);
    if (!photograph.used) {
      FindReason(evidence.loops, index, *solution, HalfTurnOfBoard(observations), photograph);
    }
  }
  return all;
}

}  // namespace trackedcam::crosscheck
