#include "crosscheck/photographs.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "crosscheck/chart_pose.h"
#include "crosscheck/reported_poses.h"
#include "crosscheck/views.h"

namespace trackedcam::crosscheck {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The smaller displacement of a tracker that makes the photograph fit.
void MeasureDistance(const Loop& loop, const Solution& solution, PerPhotograph& photograph) {
  const Pose& Transform_Cam_Tc = solution.Transform_Cam_Tc;
  const Pose& Transform_Tr_Chart = solution.Transform_Tr_Chart;
  const Pose& seen = loop.Transform_Cam_Chart;
  const Pose camera =
      Transform_Cam_Tc.inverse() * seen * (loop.Transform_Tc_Tr * Transform_Tr_Chart).inverse();
  const Pose chart =
      (Transform_Cam_Tc * loop.Transform_Tc_Tr).inverse() * seen * Transform_Tr_Chart.inverse();
  photograph.mm = 1e3 * std::min(camera.translation().norm(), chart.translation().norm());
  photograph.degrees = RotationDegrees(camera);
}

// Where the corners of a photograph should be, and how far they are from there.
struct Predictions {
  std::vector<Eigen::Vector2d> corners;  // pixels
  double pixels = 0;                     // root mean square
};

Predictions Predict(const Pose& Transform_Cam_Chart, const Lens& lens,
                    const std::vector<Eigen::Vector3d>& board,
                    const std::vector<Eigen::Vector2d>& corners) {
  Predictions predictions;
  double squares = 0;
  for (std::size_t i = 0; i < board.size(); ++i) {
    const Eigen::Vector3d point = Transform_Cam_Chart * board[i];
    const Eigen::Vector2d pixel =
        point.z() > 1e-6 ? Project(lens, point) : Eigen::Vector2d::Constant(kNan);
    predictions.corners.push_back(pixel);
    squares += (pixel - corners[i]).squaredNorm();
  }
  predictions.pixels = std::sqrt(squares / static_cast<double>(corners.size()));
  return predictions;
}

// As a result does that takes board and mounting for what they are stated to be.
std::optional<Predictions> PredictByResult(const Observations& observations,
                                           const Evidence& evidence, const Loop& loop,
                                           const std::vector<Eigen::Vector2d>& corners) {
  if (!observations.library || !observations.library->allFinite() || !observations.mounting) {
    return std::nullopt;
  }
  const Board stated = {observations.boardColumns, observations.boardRows, observations.square, {}};
  return Predict(
      PoseOf(*observations.library) * loop.Transform_Tc_Tr * TransformOf(*observations.mounting),
      evidence.libraryLens, stated.Points(), corners);
}

// Why a photograph contradicts the others, if it would fit otherwise.
void Explain(std::size_t index, const Evidence& evidence, const Solution& solution,
             PerPhotograph& photograph) {
  const double limit = DisagreementLimit(solution.Used());
  Loop reversed = evidence.loops[index];
  reversed.Transform_Cam_Chart =
      reversed.Transform_Cam_Chart * ReversedBoard(evidence.corners.board);
  if (DisagreementOf(reversed, index, solution, solution.noise) <= limit) {
    photograph.whyLeftOut = WhyLeftOut::kFirstCornerAtOtherEnd;
    return;
  }
  double least = limit;
  for (std::size_t other = 0; other < evidence.loops.size(); ++other) {
    Loop exchanged = evidence.loops[index];
    exchanged.Transform_Tc_Tr = evidence.loops[other].Transform_Tc_Tr;
    const double disagreement =
        other == index ? HUGE_VAL : DisagreementOf(exchanged, index, solution, solution.noise);
    if (disagreement <= least) {
      least = disagreement;
      photograph.whyLeftOut = WhyLeftOut::kFitsTrackersOf;
      photograph.fitsTrackersOf = evidence.loops[other].photographs.front();
    }
  }
}

}  // namespace

std::vector<PerPhotograph> DescribePhotographs(const Observations& observations,
                                               const Evidence& evidence) {
  std::vector<PerPhotograph> photographs(observations.photographs.size());
  for (std::size_t i = 0; i < photographs.size(); ++i) {
    PerPhotograph& photograph = photographs[i];
    photograph.mm = photograph.degrees = photograph.predictedPixels = kNan;
    photograph.Transform_Cam_Chart.setConstant(kNan);
    photograph.Transform_Tc_Tr.setConstant(kNan);
    photograph.view = {kNan, kNan, kNan, kNan};
    if (const auto& pose = evidence.corners.poses[i]) {
      photograph.Transform_Cam_Chart = pose->Transform_Cam_Chart.matrix();
      photograph.view = ViewOf(pose->Transform_Cam_Chart, evidence.corners.board);
    } else {
      photograph.whyLeftOut = WhyLeftOut::kNoPose;
    }
    if (const auto pose = TransformOfRow(observations.photographs[i], FormOf(observations))) {
      photograph.Transform_Tc_Tr = pose->matrix();
    } else {
      photograph.whyLeftOut = WhyLeftOut::kNotNumbers;
    }
  }
  return photographs;
}

void ComparePhotographs(const Observations& observations, const Evidence& evidence,
                        const Solution& solution, std::vector<PerPhotograph>& photographs) {
  for (std::size_t i = 0; i < evidence.loops.size(); ++i) {
    for (const std::size_t index : evidence.loops[i].photographs) {
      Loop loop = evidence.loops[i];
      loop.Transform_Cam_Chart = evidence.corners.poses[index]->Transform_Cam_Chart;
      PerPhotograph& photograph = photographs[index];
      photograph.used = solution.used[i];
      MeasureDistance(loop, solution, photograph);
      const std::vector<Eigen::Vector2d>& corners = observations.photographs[index].corners;
      const Predictions predictions =
          Predict(Predicted(loop, i, solution), evidence.corners.model.lens, evidence.corners.board,
                  corners);
      photograph.predicted = predictions.corners;
      photograph.predictedPixels = predictions.pixels;
      if (const auto byResult = PredictByResult(observations, evidence, loop, corners)) {
        photograph.byResult = byResult->corners;
        photograph.resultPixels = byResult->pixels;
      }
      if (!photograph.used) {
        Explain(i, evidence, solution, photograph);
      }
    }
  }
}

}  // namespace trackedcam::crosscheck
