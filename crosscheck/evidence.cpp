#include "crosscheck/evidence.h"

#include <algorithm>
#include <array>
#include <map>

#include "crosscheck/symmetric.h"

namespace trackedcam::crosscheck {
namespace {

// Which edge of a stretched board was measured is not known.
double ScaleVariance(const Observations& observations, const Board& board) {
  const double stretch = 0.5 * board.shape.stretch;
  return observations.scaleUncertainty * observations.scaleUncertainty + stretch * stretch;
}

Eigen::MatrixXd NuisanceCovariance(const Observations& observations, const CornerFit& corners) {
  const Eigen::Index count = corners.covariance.rows() + 1;
  Eigen::MatrixXd covariance = Eigen::MatrixXd::Zero(count, count);
  covariance.topLeftCorner(count - 1, count - 1) = corners.covariance;
  covariance(count - 1, count - 1) = ScaleVariance(observations, corners.model.board);
  return covariance;
}

ByNuisances ByNuisancesOf(const CornerFit& corners, std::size_t photograph) {
  ByNuisances by(6, static_cast<Eigen::Index>(corners.parameters.size()) + 1);
  by.leftCols(by.cols() - 1) = corners.equations[photograph]->pose(Eigen::all, corners.parameters);
  by.rightCols<1>() << Eigen::Vector3d::Zero(),
      corners.poses[photograph]->Transform_Cam_Chart.translation();
  return by;
}

std::optional<Loop> LoopOf(const Observations& observations, const CornerFit& corners,
                           std::size_t photograph) {
  const Photograph& row = observations.photographs[photograph];
  const std::optional<ChartPose>& pose = corners.poses[photograph];
  const std::optional<Pose> Transform_Tc_Tr = TransformOfRow(row, FormOf(observations));
  const std::optional<Pose> Transform_Base_Tc =
      Transform_Base_Tracker(row.camera, FormOf(observations));
  if (!pose || !Transform_Tc_Tr || !Transform_Base_Tc) {
    return std::nullopt;
  }
  Loop loop;
  loop.photographs = {photograph};
  loop.Transform_Base_Tc = *Transform_Base_Tc;
  loop.seconds = row.seconds;
  loop.Transform_Cam_Chart = pose->Transform_Cam_Chart;
  loop.Transform_Tc_Tr = *Transform_Tc_Tr;
  loop.cornerCovariance =
      corners.noisePixels * corners.noisePixels * Ldlt(pose->equations.byPose).Inverse();
  loop.byNuisances = ByNuisancesOf(corners, photograph);
  const bool isFinite = loop.cornerCovariance.allFinite() && loop.byNuisances.allFinite();
  return isFinite ? std::optional<Loop>(loop) : std::nullopt;
}

using Row = std::array<double, 14>;

Row RowOf(const Photograph& photograph) {
  Row row;
  auto* next = row.data();
  for (const TrackerPose* tracker : {&photograph.camera, &photograph.chart}) {
    next = std::copy_n(tracker->position.data(), 3, next);
    next = std::copy_n(tracker->quaternionWxyz.data(), 4, next);
  }
  return row;
}

// If the corners show another pose although the row is the same, the tracking was lost.
bool IsSamePose(const Loop& a, const Loop& b) {
  constexpr double kMetres = 0.002;
  constexpr double kRadians = 0.002;
  const Twist between = Log(a.Transform_Cam_Chart * b.Transform_Cam_Chart.inverse());
  return (a.Transform_Cam_Chart.translation() - b.Transform_Cam_Chart.translation()).norm() <
             kMetres &&
         between.head<3>().norm() < kRadians;
}

// The mean of what the corners of both say, by their accuracy.
void Merge(const Loop& more, Loop& loop) {
  const Matrix6d weight = Inverse(loop.cornerCovariance);
  const Matrix6d added = Inverse(more.cornerCovariance);
  loop.cornerCovariance = Inverse(weight + added);
  const Matrix6d share = loop.cornerCovariance * added;
  const Twist between = Log(more.Transform_Cam_Chart * loop.Transform_Cam_Chart.inverse());
  loop.Transform_Cam_Chart = Exp(share * between) * loop.Transform_Cam_Chart;
  loop.byNuisances += share * (more.byNuisances - loop.byNuisances);
  loop.photographs.insert(loop.photographs.end(), more.photographs.begin(), more.photographs.end());
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
  CornerModel model;
  model.lens = observations.lens;
  model.board = {observations.boardColumns, observations.boardRows, observations.square, {}};
  std::vector<std::vector<Eigen::Vector2d>> corners;
  for (const Photograph& photograph : observations.photographs) {
    corners.push_back(photograph.corners);
  }
  Evidence evidence;
  evidence.libraryLens = observations.lens;
  evidence.corners = FitCorners(model, corners);
  evidence.nuisanceCovariance = NuisanceCovariance(observations, evidence.corners);
  evidence.nuisanceRoot = SquareRoot(evidence.nuisanceCovariance);

  std::map<Row, std::vector<std::size_t>> loopsOfRow;
  for (std::size_t i = 0; i < observations.photographs.size(); ++i) {
    const std::optional<Loop> loop = LoopOf(observations, evidence.corners, i);
    if (!loop) {
      continue;
    }
    std::vector<std::size_t>& same = loopsOfRow[RowOf(observations.photographs[i])];
    const auto repeated = std::find_if(same.begin(), same.end(), [&](std::size_t other) {
      return IsSamePose(evidence.loops[other], *loop);
    });
    if (repeated != same.end()) {
      Merge(*loop, evidence.loops[*repeated]);
    } else {
      same.push_back(evidence.loops.size());
      evidence.loops.push_back(*loop);
    }
  }
  return evidence;
}

BoardDistance::BoardDistance(const Evidence& evidence) : moments_(Eigen::Matrix4d::Zero()) {
  const Eigen::Vector3d last = evidence.corners.board.back();
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
